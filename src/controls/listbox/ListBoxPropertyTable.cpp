#include "ListBoxPropertyTable_p.h"

#include "KelolistBox_p.h"

#include "Conversions.h"
#include "KelolistBox.h"
#include "PropertyValues.h"
#include "RuntimeError.h"

#include <QFont>
#include <QListView>
#include <QWidget>

namespace Kelocontrols {

const ListBoxPropertyTable &ListBoxPropertyTable::instance()
{
    static const ListBoxPropertyTable table;
    return table;
}

ListBoxPropertyTable::ListBoxPropertyTable()
{
    using C = KelolistBox;
    add(
        "BackColor", QVariant(uint(0x80000005)), [](const C &c) { return QVariant(c.d->backColor); },
        [](C &c, const QVariant &v) {
            c.d->backColor = colorFromVariant(v);
            c.applyColors();
        });
    add(
        "ForeColor", QVariant(uint(0x80000008)), [](const C &c) { return QVariant(c.d->foreColor); },
        [](C &c, const QVariant &v) {
            c.d->foreColor = colorFromVariant(v);
            c.applyColors();
        });
    add(
        "Enabled", QVariant(true), [](const C &c) { return QVariant(c.Enabled()); },
        [](C &c, const QVariant &v) { c.QWidget::setEnabled(CBool(v)); });
    add(
        "Font", [](const C &c) { return QVariant(c.ambientFont()); }, [](const C &c) { return QVariant(c.Font()); },
        [](C &c, const QVariant &v) { c.d->list->setFont(fontFromVariant(v)); });
    // The list's current text: saved for the form file's reader, never loaded.
    add(
        "Text", QVariant(QStringLiteral("listItems")), [](const C &c) { return QVariant(c.listText()); }, Storer());
    add(
        "Locked", QVariant(false), [](const C &c) { return QVariant(c.d->locked); },
        [](C &c, const QVariant &v) { c.d->locked = CBool(v); });
    // Kept as it was saved (any type the bag holds); it does not select anything.
    add(
        "Value", QVariant::fromValue(qint16(0)), [](const C &c) { return c.d->savedValue; },
        [](C &c, const QVariant &v) { c.d->savedValue = v; });
    add(
        "Appearance", QVariant(1), [](const C &c) { return QVariant(c.d->appearance); },
        [](C &c, const QVariant &v) {
            const int appearance = CInt(v);
            if (appearance != 0 && appearance != 1) {
                throw RuntimeError(ErrorNumber::InvalidPropertyValue);
            }
            c.d->appearance = appearance;
            c.applyAppearance();
        });
    add(
        "LockedAlways", QVariant(false), [](const C &c) { return QVariant(c.d->lockedAlways); },
        [](C &c, const QVariant &v) { c.d->lockedAlways = CBool(v); });
    add(
        "DefaultValue", QVariant(0), [](const C &c) { return QVariant(c.d->defaultValue); },
        [](C &c, const QVariant &v) { c.d->defaultValue = CLng(v); });
    add(
        "ToolTipText", QVariant(QString()), [](const C &c) { return QVariant(c.ToolTipText()); },
        [](C &c, const QVariant &v) { c.d->list->setToolTip(textFromVariant(v)); });
    add(
        "DefaultText", QVariant(QString()), [](const C &c) { return QVariant(c.d->defaultText); },
        [](C &c, const QVariant &v) { c.d->defaultText = textFromVariant(v); });

    m_readOrder = namesOf({"BackColor", "ForeColor", "Enabled", "Font", "Locked", "Value", "Appearance", "LockedAlways",
        "DefaultValue", "ToolTipText", "DefaultText"});
    m_lockDisplayAfter = QStringLiteral("DefaultValue");
    m_writeOrder = namesOf({"BackColor", "ForeColor", "Enabled", "Font", "Text", "Locked", "Value", "Appearance",
        "LockedAlways", "DefaultValue", "ToolTipText", "DefaultText"});
    m_initialiseOrder = namesOf({"Locked", "Value", "DefaultValue", "LockedAlways", "DefaultText"});
}

void ListBoxPropertyTable::add(const QString &name, const QVariant &defaultValue, Getter get, Storer store)
{
    add(name, DefaultFn([defaultValue](const KelolistBox &) { return defaultValue; }), std::move(get),
        std::move(store));
}

void ListBoxPropertyTable::add(const QString &name, DefaultFn defaultValue, Getter get, Storer store)
{
    m_entries.append({name, std::move(defaultValue), std::move(get), std::move(store)});
}

void ListBoxPropertyTable::initialise(QObject &control) const
{
    auto &box = static_cast<KelolistBox &>(control);
    for (const QString &name : m_initialiseOrder) {
        const Entry &e = entry(name);
        e.store(box, e.defaultValue(box));
    }
}

void ListBoxPropertyTable::read(QObject &control, const PropertyBag &bag) const
{
    auto &box = static_cast<KelolistBox &>(control);
    for (const QString &name : m_readOrder) {
        const Entry &e = entry(name);
        e.store(box, bag.ReadProperty(e.name, e.defaultValue(box)));
        if (name == m_lockDisplayAfter) {
            box.applyLockDisplay();
        }
    }
}

void ListBoxPropertyTable::write(const QObject &control, PropertyBag &bag) const
{
    const auto &box = static_cast<const KelolistBox &>(control);
    for (const QString &name : m_writeOrder) {
        const Entry &e = entry(name);
        bag.WriteProperty(e.name, e.get(box), e.defaultValue(box));
    }
}

QStringList ListBoxPropertyTable::readOrder() const
{
    return m_readOrder;
}

QStringList ListBoxPropertyTable::writeOrder() const
{
    return m_writeOrder;
}

QStringList ListBoxPropertyTable::initialiseOrder() const
{
    return m_initialiseOrder;
}

QVariant ListBoxPropertyTable::defaultValue(const QObject &control, const QString &name) const
{
    for (const Entry &e : m_entries) {
        if (e.name == name) {
            return e.defaultValue(static_cast<const KelolistBox &>(control));
        }
    }
    return QVariant();
}

const ListBoxPropertyTable::Entry &ListBoxPropertyTable::entry(const QString &name) const
{
    for (const Entry &e : m_entries) {
        if (e.name == name) {
            return e;
        }
    }
    Q_UNREACHABLE(); // the orders above only name entries of the table
}

QStringList ListBoxPropertyTable::namesOf(std::initializer_list<const char *> names)
{
    QStringList list;
    for (const char *name : names) {
        list << QString::fromLatin1(name);
    }
    return list;
}

} // namespace Kelocontrols
