#pragma once

#include <kelocontrols_export.h>

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace Kelocontrols {

/**
 * A file in the freedesktop "desktop entry" format: `[Group]` headers and
 * `Key=Value` lines, as used by .desktop files, mimeapps.list and icon
 * themes' index.theme.
 *
 * Lines are UTF-8; blank lines and lines starting with '#' are skipped,
 * blanks around '=' are dropped, and a key repeated in a group keeps its
 * first value (the format forbids repeats; the first wins as in GLib). A
 * group repeated later is merged into the first one. Lines before the first
 * group and malformed lines are ignored: reading never fails, a missing or
 * unreadable file simply has no groups.
 */
class KELOCONTROLS_EXPORT XdgIniFile
{
public:
    XdgIniFile() = default;

    /// Reads @p filePath; an unreadable file gives an empty XdgIniFile.
    static XdgIniFile load(const QString &filePath);
    /// Parses file text.
    static XdgIniFile parse(const QByteArray &text);

    bool isEmpty() const { return m_groups.isEmpty(); }
    bool hasGroup(const QString &group) const { return m_index.contains(group); }
    /// The groups in the order of their first appearance.
    QStringList groups() const;
    /// The keys of @p group in file order.
    QStringList keys(const QString &group) const;

    /// The raw value of @p key in @p group (escapes left as written), or @p fallback.
    QString rawValue(const QString &group, const QString &key, const QString &fallback = QString()) const;
    bool contains(const QString &group, const QString &key) const;

    /// A string value with the escapes \s \n \t \r \\ resolved.
    QString string(const QString &group, const QString &key) const;
    /// A boolean value: "true" (or "1") is true, anything else false.
    bool boolean(const QString &group, const QString &key) const;
    /// A list value split at unescaped ';' (a trailing ';' adds no item, empty items are dropped), escapes resolved.
    QStringList list(const QString &group, const QString &key) const;

    /// Resolves \s \n \t \r \\ in @p raw; other backslash pairs are kept as written.
    static QString unescape(const QString &raw);
    /// Splits @p raw at ';' not preceded by a backslash ("\;" is a literal ';'), dropping empty items.
    static QStringList splitList(const QString &raw);

private:
    struct Group
    {
        QString name;
        QStringList keys;
        QHash<QString, QString> values;
    };
    QList<Group> m_groups;
    QHash<QString, int> m_index;
};

} // namespace Kelocontrols
