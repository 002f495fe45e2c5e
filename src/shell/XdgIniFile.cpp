#include "XdgIniFile.h"

#include <QFile>

namespace Kelocontrols {

XdgIniFile XdgIniFile::load(const QString &filePath)
{
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return parse(file.readAll());
}

XdgIniFile XdgIniFile::parse(const QByteArray &text)
{
    XdgIniFile result;
    int current = -1;
    for (const QByteArray &rawLine : text.split('\n')) {
        const QString line = QString::fromUtf8(rawLine).trimmed();
        if (line.isEmpty() || line.startsWith(u'#')) {
            continue;
        }
        if (line.startsWith(u'[')) {
            if (!line.endsWith(u']') || line.size() < 3) {
                current = -1; // a broken header: its lines belong to no group
                continue;
            }
            const QString name = line.mid(1, line.size() - 2);
            current = result.m_index.value(name, -1);
            if (current < 0) {
                current = int(result.m_groups.size());
                result.m_groups.append(Group{name, {}, {}});
                result.m_index.insert(name, current);
            }
            continue;
        }
        const qsizetype equals = line.indexOf(u'=');
        if (current < 0 || equals <= 0) {
            continue;
        }
        const QString key = line.left(equals).trimmed();
        Group &group = result.m_groups[current];
        if (key.isEmpty() || group.values.contains(key)) {
            continue;
        }
        group.keys.append(key);
        group.values.insert(key, line.mid(equals + 1).trimmed());
    }
    return result;
}

QStringList XdgIniFile::groups() const
{
    QStringList names;
    for (const Group &group : m_groups) {
        names.append(group.name);
    }
    return names;
}

QStringList XdgIniFile::keys(const QString &group) const
{
    const int at = m_index.value(group, -1);
    return at < 0 ? QStringList() : m_groups.at(at).keys;
}

QString XdgIniFile::rawValue(const QString &group, const QString &key, const QString &fallback) const
{
    const int at = m_index.value(group, -1);
    if (at < 0) {
        return fallback;
    }
    return m_groups.at(at).values.value(key, fallback);
}

bool XdgIniFile::contains(const QString &group, const QString &key) const
{
    const int at = m_index.value(group, -1);
    return at >= 0 && m_groups.at(at).values.contains(key);
}

QString XdgIniFile::string(const QString &group, const QString &key) const
{
    return unescape(rawValue(group, key));
}

bool XdgIniFile::boolean(const QString &group, const QString &key) const
{
    const QString value = rawValue(group, key);
    return value == u"true" || value == u"1";
}

QStringList XdgIniFile::list(const QString &group, const QString &key) const
{
    QStringList items;
    for (const QString &item : splitList(rawValue(group, key))) {
        items.append(unescape(item));
    }
    return items;
}

QString XdgIniFile::unescape(const QString &raw)
{
    QString result;
    result.reserve(raw.size());
    for (qsizetype i = 0; i < raw.size(); ++i) {
        const QChar c = raw.at(i);
        if (c != u'\\' || i + 1 >= raw.size()) {
            result.append(c);
            continue;
        }
        const QChar next = raw.at(i + 1);
        switch (next.unicode()) {
        case 's':
            result.append(u' ');
            break;
        case 'n':
            result.append(u'\n');
            break;
        case 't':
            result.append(u'\t');
            break;
        case 'r':
            result.append(u'\r');
            break;
        case '\\':
            result.append(u'\\');
            break;
        default:
            // Not a string escape: kept for the next reader (Exec quoting, list "\;").
            result.append(c);
            result.append(next);
            break;
        }
        ++i;
    }
    return result;
}

QStringList XdgIniFile::splitList(const QString &raw)
{
    QStringList items;
    QString item;
    for (qsizetype i = 0; i < raw.size(); ++i) {
        const QChar c = raw.at(i);
        if (c == u'\\' && i + 1 < raw.size()) {
            if (raw.at(i + 1) == u';') {
                item.append(u';');
            } else {
                item.append(c);
                item.append(raw.at(i + 1));
            }
            ++i;
        } else if (c == u';') {
            if (!item.isEmpty()) {
                items.append(item);
            }
            item.clear();
        } else {
            item.append(c);
        }
    }
    if (!item.isEmpty()) {
        items.append(item);
    }
    return items;
}

} // namespace Kelocontrols
