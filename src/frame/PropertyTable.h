#pragma once

#include <kelocontrols_export.h>

#include "PropertyBag.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <initializer_list>

class QObject;

namespace Kelocontrols {

/**
 * The persisted properties of a control class, declared once.
 *
 * Each entry names a property, its default and two accessors: `get` reads
 * the value to save, `store` puts a loaded value into the control without
 * the setter's validation (loading keeps what was saved, even thresholds
 * out of order). InitProperties, ReadProperties and WriteProperties are then
 * three walks over the same table, so a name, default or order cannot differ
 * between them.
 *
 * Properties are read in the order they are added. A control that saves in
 * another order (the score card writes ScoreBad late) gives that order with
 * setWriteOrder(). An entry without `store` is saved but never loaded (the
 * list box's Text). InitProperties sets every loadable property unless the
 * control names its own subset and order with setInitialiseOrder(), and
 * setAfterReading() runs a step of the control's own right after one
 * property has been read (the list box shows its lock once Locked and the
 * properties before it are in).
 *
 * A control declares its table once, in its source file, as a static
 * member function returning `const PropertyTable<Control> &` (so that the
 * accessors reach its private data), and answers propertyTable() with it.
 */
class KELOCONTROLS_EXPORT PropertyTableBase
{
public:
    virtual ~PropertyTableBase() = default;

    /// Sets every property of `control` to its default.
    virtual void initialise(QObject &control) const = 0;
    /// Reads every property from `bag` (defaults for the missing ones), in read order.
    virtual void read(QObject &control, const PropertyBag &bag) const = 0;
    /// Writes every property into `bag`, in write order; defaults are not stored.
    virtual void write(const QObject &control, PropertyBag &bag) const = 0;

    virtual QStringList readOrder() const = 0;
    virtual QStringList writeOrder() const = 0;
    /// The properties InitProperties() sets, in the order it sets them.
    virtual QStringList initialiseOrder() const { return readOrder(); }
    /// The default of `name` for `control` (an invalid QVariant for an unknown name).
    virtual QVariant defaultValue(const QObject &control, const QString &name) const = 0;
};

template<class Control>
class PropertyTable : public PropertyTableBase
{
public:
    using Getter = std::function<QVariant(const Control &)>;
    using Storer = std::function<void(Control &, const QVariant &)>;
    using DefaultFn = std::function<QVariant(const Control &)>;
    using Step = std::function<void(Control &)>;

    /// A property with a fixed default.
    PropertyTable &add(const QString &name, const QVariant &defaultValue, Getter get, Storer store)
    {
        return add(name, DefaultFn([defaultValue](const Control &) { return defaultValue; }), std::move(get),
            std::move(store));
    }

    /// A property whose default depends on the control (the ambient font, say).
    PropertyTable &add(const QString &name, DefaultFn defaultValue, Getter get, Storer store)
    {
        m_entries.append({name, std::move(defaultValue), std::move(get), std::move(store)});
        m_writeOrder.append(int(m_entries.size()) - 1);
        return *this;
    }

    /// Saves in this order instead of the read order; it must name every property once.
    PropertyTable &setWriteOrder(std::initializer_list<const char *> names)
    {
        m_writeOrder = indexesOf(names);
        Q_ASSERT(m_writeOrder.size() == m_entries.size());
        return *this;
    }

    /// InitProperties sets only these properties, in this order.
    PropertyTable &setInitialiseOrder(std::initializer_list<const char *> names)
    {
        m_initialiseOrder = indexesOf(names);
        return *this;
    }

    /// Runs `step` on the control right after `name` has been read.
    PropertyTable &setAfterReading(const char *name, Step step)
    {
        m_afterReading = indexOf(QString::fromLatin1(name));
        Q_ASSERT_X(m_afterReading >= 0, "PropertyTable::setAfterReading", name);
        m_afterReadingStep = std::move(step);
        return *this;
    }

    void initialise(QObject &control) const override
    {
        auto &c = static_cast<Control &>(control);
        for (int i : initialiseIndexes()) {
            const Entry &e = m_entries.at(i);
            e.store(c, e.defaultValue(c));
        }
    }

    void read(QObject &control, const PropertyBag &bag) const override
    {
        auto &c = static_cast<Control &>(control);
        for (int i = 0; i < m_entries.size(); ++i) {
            const Entry &e = m_entries.at(i);
            if (!e.store) {
                continue;
            }
            e.store(c, bag.ReadProperty(e.name, e.defaultValue(c)));
            if (i == m_afterReading) {
                m_afterReadingStep(c);
            }
        }
    }

    void write(const QObject &control, PropertyBag &bag) const override
    {
        const auto &c = static_cast<const Control &>(control);
        for (int i : m_writeOrder) {
            const Entry &e = m_entries.at(i);
            bag.WriteProperty(e.name, e.get(c), e.defaultValue(c));
        }
    }

    QStringList readOrder() const override
    {
        QStringList names;
        for (const Entry &e : m_entries) {
            if (e.store) {
                names << e.name;
            }
        }
        return names;
    }

    QStringList initialiseOrder() const override
    {
        QStringList names;
        for (int i : initialiseIndexes()) {
            names << m_entries.at(i).name;
        }
        return names;
    }

    QStringList writeOrder() const override
    {
        QStringList names;
        for (int i : m_writeOrder) {
            names << m_entries.at(i).name;
        }
        return names;
    }

    QVariant defaultValue(const QObject &control, const QString &name) const override
    {
        const int i = indexOf(name);
        return i < 0 ? QVariant() : m_entries.at(i).defaultValue(static_cast<const Control &>(control));
    }

private:
    struct Entry
    {
        QString name;
        DefaultFn defaultValue;
        Getter get;
        Storer store;
    };

    QList<int> indexesOf(std::initializer_list<const char *> names) const
    {
        QList<int> indexes;
        for (const char *name : names) {
            const int i = indexOf(QString::fromLatin1(name));
            Q_ASSERT_X(i >= 0, "PropertyTable", name);
            indexes.append(i);
        }
        return indexes;
    }

    /// The initialise order: the control's own, or every loadable entry.
    QList<int> initialiseIndexes() const
    {
        if (!m_initialiseOrder.isEmpty()) {
            return m_initialiseOrder;
        }
        QList<int> indexes;
        for (int i = 0; i < m_entries.size(); ++i) {
            if (m_entries.at(i).store) {
                indexes.append(i);
            }
        }
        return indexes;
    }

    int indexOf(const QString &name) const
    {
        for (int i = 0; i < m_entries.size(); ++i) {
            if (m_entries.at(i).name == name) {
                return i;
            }
        }
        return -1;
    }

    QList<Entry> m_entries;
    QList<int> m_writeOrder;
    QList<int> m_initialiseOrder;
    int m_afterReading = -1;
    Step m_afterReadingStep;
};

} // namespace Kelocontrols
