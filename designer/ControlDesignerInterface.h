#pragma once

#include <QIcon>
#include <QString>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

#include <functional>

class QWidget;

namespace Kelocontrols::Designer {

/**
 * What Qt Designer needs to know about one control: its class, the header a
 * generated form includes, the texts and the icon of its widget-box entry,
 * and how to create an instance.
 */
struct ControlEntry
{
    QString className;
    QString includeFile;
    QString toolTip;
    QString whatsThis;
    std::function<QIcon()> icon;
    std::function<QWidget *(QWidget *parent)> create;
};

/**
 * The entry of control class `Control`: the class name comes from its
 * meta-object and the header is the installed <Kelocontrols/ClassName.h>,
 * so neither can drift from the class.
 */
template<class Control>
ControlEntry controlEntry(const QString &toolTip, const QString &whatsThis, std::function<QIcon()> icon)
{
    const QString className = QString::fromLatin1(Control::staticMetaObject.className());
    return ControlEntry{className, QStringLiteral("Kelocontrols/") + className + QStringLiteral(".h"), toolTip,
        whatsThis, std::move(icon), [](QWidget *parent) -> QWidget * { return new Control(parent); }};
}

/**
 * One control in Qt Designer's widget box, described by a ControlEntry.
 *
 * Qt Designer and QUiLoader share this object: Designer calls initialize()
 * with its form editor, QUiLoader never does (or passes none). Controls are
 * therefore created in design mode (UserMode false) only once a form editor
 * has been handed over, and in run mode for a loaded form in a program.
 */
class ControlDesignerInterface
    : public QObject
    , public QDesignerCustomWidgetInterface
{
    Q_OBJECT
    Q_INTERFACES(QDesignerCustomWidgetInterface)

public:
    /// The widget-box group of every Kelocontrols control.
    static QString groupName() { return QStringLiteral("Kelocontrols"); }

    explicit ControlDesignerInterface(ControlEntry entry, QObject *parent = nullptr);

    QString name() const override { return m_entry.className; }
    QString group() const override { return groupName(); }
    QString toolTip() const override { return m_entry.toolTip; }
    QString whatsThis() const override { return m_entry.whatsThis; }
    QString includeFile() const override { return m_entry.includeFile; }
    QIcon icon() const override;
    bool isContainer() const override { return false; }

    /// A new control; in design mode when Designer has initialised this interface.
    QWidget *createWidget(QWidget *parent) override;

    bool isInitialized() const override { return m_initialized; }
    /// Remembers whether a form designer (non-null `core`) is the host.
    void initialize(QDesignerFormEditorInterface *core) override;

    /// The widget Designer drops on a form: the class, a default object name
    /// and the control's preferred size as geometry.
    QString domXml() const override;

    /// The object name of a newly dropped control: the class name with a
    /// lower-case first letter ("keloscoreCard").
    QString defaultObjectName() const;

private:
    QSize preferredSize() const;

    ControlEntry m_entry;
    QDesignerFormEditorInterface *m_core = nullptr;
    bool m_initialized = false;
    mutable QIcon m_icon;
};

} // namespace Kelocontrols::Designer
