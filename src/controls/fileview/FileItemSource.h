#pragma once

#include "FileEntry.h"
#include "ListItem.h"

#include <QString>

#include <vector>

namespace Kelocontrols {

/**
 * The raw facts behind the file list's rows (names, sizes, dates, types)
 * and the column texts made from them on demand.
 *
 * A fill stores one FileRow per item and hands its index to the list as the
 * item's source token; sizes and dates become text only when a view paints
 * the row or a caller reads a sub-item. Sub-items (1-based, column 2 is
 * sub-item 1):
 *
 * | # | column | file | folder (details only where marked) |
 * |---|---|---|---|
 * | 1 | Size | SizeInKB + "KB" | file count (details) |
 * | 2 | Type | type text | type text |
 * | 3 | Modified | default date-time text | (details) |
 * | 4 | Created | default date-time text | (details) |
 * | 5 | Changed | "Yes" when the two differ to the second | (details) |
 * | 6 | Folder | parent folder path | parent folder path |
 * | 7 | SortedSize | bytes, 12 digits | file count, 12 digits |
 * | 8, 9 | SortedModified, SortedCreated | "yyyy-mm-dd hh:nn:ss" | same |
 * | 10 | RealName | name | name |
 * | 11 | Refresh | the refresh mark | the refresh mark |
 * | 12 | SortName | name | one blank + name |
 *
 * A drive row has its root as RealName and SortName, its type name as Type
 * and nothing else; an unavailable "My Folders" entry has only its
 * SortName, one blank + the stored path.
 */
class FileItemSource : public SubItemSource
{
public:
    enum class Kind : quint8 { File, Folder, Drive, Unavailable };

    struct Row
    {
        FileEntry entry; ///< for a drive: name = its root path; for an unavailable entry: name = the stored path
        QString folder; ///< parent folder path ("" for drives)
        QString typeText;
        /// Folders: files directly inside; counted on first use (-1 until then), since
        /// counting reads each sub-folder and most rows are never looked at.
        mutable qint64 fileCount = -1;
        Kind kind = Kind::File;
        bool details = false; ///< folders: fill the detail columns
        QString refreshMark; ///< the "Refresh" sub-item, written by the in-place refresh
    };

    /// Stores a row and returns its token.
    int add(Row row);
    void clear();
    const Row &row(int token) const { return m_rows[size_t(token)]; }
    int count() const { return int(m_rows.size()); }

    QString subItemText(int token, int subItem) const override;
    /// Stores the "Refresh" sub-item (11) itself, so marking every row for a refresh copies no texts.
    bool storeSubItemText(int token, int subItem, const QString &text) override;
    /// The texts of sub-items 1 to 12 of @p row, as a new item would show them.
    QStringList texts(const Row &row) const;

    /// "0KB", "1KB", "2KB" for 0, 1 and 1,025 bytes.
    static QString sizeText(qint64 bytes);
    /// A count or size as twelve zero-filled digits.
    static QString sortedNumber(qint64 value);
    /// Whether two times (ms since the epoch) fall in different seconds.
    static bool differInSeconds(qint64 a, qint64 b);

private:
    QString text(const Row &row, int subItem) const;
    QString fileText(const Row &row, int subItem) const;
    QString folderText(const Row &row, int subItem) const;
    static qint64 fileCountOf(const Row &row);

    std::vector<Row> m_rows;
};

} // namespace Kelocontrols
