#pragma once

#include <QHash>
#include <QList>
#include <QMultiHash>
#include <QSet>
#include <QString>

class KelofileView;

namespace Kelocontrols {

struct FileEntry;

/// A name that hashes and compares without regard to case, without a folded copy being made.
struct CaseInsensitiveName
{
    QString name;
};
size_t qHash(const CaseInsensitiveName &key, size_t seed = 0) noexcept;
bool operator==(const CaseInsensitiveName &a, const CaseInsensitiveName &b) noexcept;

/**
 * Brings a KelofileView's list up to date in place with its folder on disk.
 *
 * Every item is marked; each entry on disk that passes Filter (sub-folders
 * first when ShowFolders) is looked for by RealName without regard to case
 * and, when found, brought up to date from its raw facts (a change only
 * when a column text would change) and unmarked; an entry not found is
 * added (BeforeAddItem / AfterAddItem; a change). Marked items are then
 * removed (a change), AfterPaint is raised, and RefreshFoundChanges when
 * anything changed.
 *
 * The match is the first item whose RealName equals the name. Only when
 * the folder holds names that differ in case alone (a.txt and A.TXT, which
 * Linux allows) does each of them take the item of exactly its name that
 * the pass has not met yet, else the first such item not yet met, else it
 * is added: so neither item is lost and they do not trade facts every pass.
 *
 * While the entries are found row after row in order (a list that mirrors
 * its folder), no index is needed; at the first entry that is not, the pass
 * goes on with an index of the names.
 *
 * Handlers may change the list at every raised event: the name index is
 * checked against the model's layout generation before each look-up and
 * rebuilt when rows went or were renamed, so no row number outlives an
 * event.
 */
class FileViewRefresh
{
public:
    explicit FileViewRefresh(KelofileView &view);

    /// One in-place pass (false when none ran: another runs, or Path is ""); raises the file system's error
    /// for a missing or unreadable folder.
    bool run();

private:
    bool update(const FileEntry &entry, const QString &folder, bool isFolder, bool caseTwins);
    int find(const QString &name, bool caseTwins);
    void startInOrder();
    int findInOrder(const QString &name, bool caseTwins);
    void syncIndex();
    void forgetIndex();

    KelofileView &q;
    QHash<CaseInsensitiveName, int> m_firstRow; ///< RealName -> first row with it
    QHash<CaseInsensitiveName, QList<int>> m_laterRows; ///< RealName -> further rows with it, in order
    quint64 m_generation = 0;
    int m_indexed = 0;
    bool m_inOrder = false; ///< every entry so far was found at the next row
    int m_cursor = 0;
    quint64 m_orderGeneration = 0;
};

} // namespace Kelocontrols
