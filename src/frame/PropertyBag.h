#pragma once

#include <kelocontrols_export.h>

#include <QList>
#include <QMetaType>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace Kelocontrols {

/**
 * The saved properties of one control: ordered name -> value pairs.
 *
 * A host persists a control by handing it an empty bag to WriteProperties()
 * and restores it by handing the filled bag to ReadProperties(). Names are
 * the exact public property names; they are looked up without regard to
 * case, as hosts have always done. A property equal to its default is not
 * stored at all, so a bag only records what the developer changed.
 *
 * The bag has a text form, one property a line:
 *
 *     ScoreStar = float:0.9
 *     ToolTip = string:"Needs \"review\"\r\n"
 *     Font = font:"DejaVu Sans,10,-1,5,700,0,0,0,0,0,0,0,0,0,0,1"
 *
 * toText() writes it and fromText() reads it back to equal values of the
 * same types (numbers, strings, booleans, fonts, colours, pictures, byte
 * arrays, string lists, dates). Malformed text is rejected with a
 * RuntimeError (ErrorNumber::InvalidFileFormat) naming the line.
 */
class KELOCONTROLS_EXPORT PropertyBag
{
public:
    PropertyBag() = default;

    /// The stored value of `name`, or `defaultValue` when the bag has none.
    QVariant ReadProperty(const QString &name, const QVariant &defaultValue = QVariant()) const;

    /// Stores `value` under `name`, replacing an earlier value of that name;
    /// stores nothing (and forgets an earlier value) when `value` equals `defaultValue`.
    /// A name that is not an identifier (letters, digits, '_') raises RuntimeError(InvalidProcedureCall).
    void WriteProperty(const QString &name, const QVariant &value, const QVariant &defaultValue = QVariant());

    bool contains(const QString &name) const;
    /// The stored names in the order they were first written.
    QStringList names() const;
    int count() const { return int(m_entries.size()); }
    bool isEmpty() const { return m_entries.isEmpty(); }
    void clear() { m_entries.clear(); }

    QString toText() const;
    /// Parses the text form; raises RuntimeError(InvalidFileFormat) on malformed text.
    static PropertyBag fromText(const QString &text);

    bool operator==(const PropertyBag &other) const;
    bool operator!=(const PropertyBag &other) const { return !(*this == other); }

    /// Whether two property values count as equal for the "store nothing at
    /// the default" rule: numbers compare by value across numeric types.
    static bool sameValue(const QVariant &a, const QVariant &b);

private:
    qsizetype indexOf(const QString &name) const;

    QList<QPair<QString, QVariant>> m_entries;
};

} // namespace Kelocontrols

Q_DECLARE_METATYPE(Kelocontrols::PropertyBag)
