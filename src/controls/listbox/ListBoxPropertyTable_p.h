#pragma once

#include <kelocontrols_export.h>

#include "PropertyTable.h"

#include <QList>
#include <QString>
#include <QVariant>

#include <functional>

class KelolistBox;

namespace Kelocontrols {

/**
 * The persisted properties of KelolistBox.
 *
 * The list box saves one value it never loads: "Text", the list's current
 * text, written with the default "listItems". Loading reads the other
 * properties, and applies the lock display as soon as "Locked",
 * "LockedAlways" and the properties before them are in, before
 * "ToolTipText" and "DefaultText". InitProperties resets only the
 * properties the control owns itself (Locked, the saved Value,
 * DefaultValue, LockedAlways, DefaultText); colours, font, Enabled,
 * Appearance and ToolTipText keep what the list already has.
 */
class KELOCONTROLS_TESTS_EXPORT ListBoxPropertyTable final : public PropertyTableBase
{
public:
    /// The one table of the class.
    static const ListBoxPropertyTable &instance();

    void initialise(QObject &control) const override;
    void read(QObject &control, const PropertyBag &bag) const override;
    void write(const QObject &control, PropertyBag &bag) const override;
    QStringList readOrder() const override;
    QStringList writeOrder() const override;
    QVariant defaultValue(const QObject &control, const QString &name) const override;

    /// The properties InitProperties() sets, in the order it sets them.
    QStringList initialiseOrder() const;

private:
    using Getter = std::function<QVariant(const KelolistBox &)>;
    using Storer = std::function<void(KelolistBox &, const QVariant &)>;
    using DefaultFn = std::function<QVariant(const KelolistBox &)>;

    struct Entry
    {
        QString name;
        DefaultFn defaultValue;
        Getter get;
        Storer store; ///< empty for a property that is saved but never loaded
    };

    ListBoxPropertyTable();
    void add(const QString &name, const QVariant &defaultValue, Getter get, Storer store);
    void add(const QString &name, DefaultFn defaultValue, Getter get, Storer store);
    const Entry &entry(const QString &name) const;
    static QStringList namesOf(std::initializer_list<const char *> names);

    QList<Entry> m_entries;
    QStringList m_readOrder;
    QStringList m_writeOrder;
    QStringList m_initialiseOrder;
    QString m_lockDisplayAfter;
};

} // namespace Kelocontrols
