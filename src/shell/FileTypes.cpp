#include "FileTypes.h"

namespace Kelocontrols {

namespace {

/// Marks cache keys made of whole names, which no extension key can equal (names hold no "/").
constexpr QChar wholeNameMark = QLatin1Char('/');

/// The last component of @p path.
QStringView nameOf(const QString &path)
{
    return QStringView(path).mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

/// The text after the last "." of @p name; empty when there is none or nothing follows it.
QStringView extensionOf(QStringView name)
{
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? QStringView() : name.mid(dot + 1);
}

bool isLowerCaseAscii(QStringView text)
{
    for (QChar c : text) {
        if (c.unicode() >= 0x80 || (c >= QLatin1Char('A') && c <= QLatin1Char('Z')))
            return false;
    }
    return true;
}

} // namespace

FileTypes &FileTypes::instance()
{
    static FileTypes types;
    return types;
}

const FileTypes::Type &FileTypes::typeFor(const QString &fileName)
{
    const QStringView name = nameOf(fileName);
    const QStringView extension = extensionOf(name);
    // The common case, a lower-case ASCII extension already seen, is looked
    // up without building a key of its own.
    if (!extension.isEmpty() && isLowerCaseAscii(extension)) {
        const auto found = m_byKey.constFind(QString::fromRawData(extension.data(), extension.size()));
        if (found != m_byKey.cend())
            return *found;
    }
    const QString key = extension.isEmpty() ? wholeNameMark + name : extension.toString().toLower();
    const auto found = m_byKey.constFind(key);
    if (found != m_byKey.cend())
        return *found;
    // Matching a stand-in name makes every file with this extension get the
    // same answer, whichever of them is asked about first: "a.tar.gz" and
    // "b.gz" both read as a gzip archive.
    const QString globName = extension.isEmpty() ? name.toString() : QStringLiteral("x.") + key;
    Type type;
    type.mimeType = m_database.mimeTypeForFile(globName, QMimeDatabase::MatchExtension);
    type.text = type.mimeType.comment();
    return *m_byKey.insert(key, type);
}

QString FileTypes::fileTypeText(const QString &fileName)
{
    return typeFor(fileName).text;
}

QMimeType FileTypes::mimeTypeForFileName(const QString &fileName)
{
    return typeFor(fileName).mimeType;
}

QString FileTypes::folderTypeText()
{
    if (m_folderText.isEmpty())
        m_folderText = m_database.mimeTypeForName(QStringLiteral("inode/directory")).comment();
    return m_folderText;
}

} // namespace Kelocontrols
