#pragma once

#include <kelocontrols_export.h>

#include "PropertyBag.h"

#include <QFont>
#include <QWidget>

namespace Kelocontrols {

class PropertyTableBase;

/**
 * What the five controls share: the life cycle a host drives and the
 * design-time / run-time switch.
 *
 * - Constructing a control initialises it and runs InitProperties().
 * - ReadProperties() loads a saved control from a PropertyBag,
 *   WriteProperties() saves it; both walk the control's PropertyTable.
 * - UserMode is false in a form designer and true in a running program.
 *   A control created while a DesignModeScope is alive (Qt Designer's plugin
 *   opens one) starts in design mode, so not even its constructor does
 *   run-time work such as starting timers.
 * - Every property write emits PropertyChanged with the property's exact name.
 * - A form (uic's setupUi(), QUiLoader, Qt Designer) sets the properties of
 *   a new control one by one, each once, in declaration order. The writes a
 *   new control gets in that pattern form its first batch, so a control
 *   whose properties constrain each other (the score card's thresholds) can
 *   check the batch as a whole instead of write by write. The batch ends
 *   when a write breaks the pattern (noteFirstWrite()), when the control is
 *   polished (shown) or when the event loop runs; firstWritesSettled() is
 *   then called once.
 */
class KELOCONTROLS_EXPORT ControlBase : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(bool UserMode READ UserMode WRITE setUserMode DESIGNABLE false STORED false)

public:
    ~ControlBase() override;

    /// Sets every persisted property to its default, then refreshes the display.
    Q_INVOKABLE void InitProperties();
    /// Loads every persisted property from `PropBag`, then refreshes the display.
    Q_INVOKABLE void ReadProperties(const Kelocontrols::PropertyBag &PropBag);
    /// Saves every persisted property into `PropBag`; properties at their default are left out.
    Q_INVOKABLE void WriteProperties(Kelocontrols::PropertyBag &PropBag) const;

    /// True in a running program, false in a form designer.
    bool UserMode() const { return m_userMode; }
    Q_INVOKABLE void setUserMode(bool userMode);

    /// The persisted properties of this control class.
    virtual const PropertyTableBase &propertyTable() const = 0;

    /// The font a newly placed control takes: its container's font (the
    /// application's font when it has no parent).
    QFont ambientFont() const;

    /// The user mode that controls created from now on start in.
    static bool defaultUserMode();

    /// While alive, newly created controls start in design mode.
    class DesignModeScope
    {
    public:
        DesignModeScope();
        ~DesignModeScope();
        DesignModeScope(const DesignModeScope &) = delete;
        DesignModeScope &operator=(const DesignModeScope &) = delete;
    };

Q_SIGNALS:
    /// Emitted by every property write, with the property's exact name.
    void PropertyChanged(const QString &name);

protected:
    explicit ControlBase(QWidget *parent = nullptr);

    /// Called after InitProperties() and ReadProperties() have stored their values.
    virtual void propertiesLoaded() { }
    /// Called when UserMode changes after construction.
    virtual void userModeChanged() { }

    void propertyChanged(const char *name) { Q_EMIT PropertyChanged(QString::fromLatin1(name)); }
    /// Raises error 387 when the control is in design mode.
    void requireRunMode() const;

    /// Whether the first batch of writes is still open.
    bool inFirstWrites() const { return m_firstWritesOpen; }
    /// To be called by a setter before it writes `property`: ends the first
    /// batch when this write does not follow the declaration order.
    void noteFirstWrite(const char *property);
    /// Ends the first batch of writes (nothing when it has ended already).
    void settleFirstWrites();
    /// Called once when the first batch of writes ends.
    virtual void firstWritesSettled() { }

    bool event(QEvent *event) override;

private:
    bool m_userMode;
    bool m_firstWritesOpen = true;
    int m_lastFirstWrite = -1; // declaration index of the batch's last noted write
};

} // namespace Kelocontrols
