#pragma once

#include <QString>

class KelofileView;

namespace Kelocontrols {

struct DriveInfo;
struct FileEntry;
struct FileListRow;

/**
 * Fills a KelofileView's list afresh for its Path: the sub-folders and
 * files of a folder, the drives of "My Computer", or the host's "My
 * Folders", each item with BeforeAddItem(Cancel) and AfterAddItem(Index);
 * ChangedFolder and BeforePaint before, AfterPaint after.
 *
 * Handlers may change the list at every event: items are appended to the
 * list as it is then, and no row number is kept across an event.
 */
class FileViewFill
{
public:
    explicit FileViewFill(KelofileView &view);

    /// The full fill; does nothing while another fill or refresh runs.
    void fill();
    /// Asks the host for the set when it is empty, then lists it.
    void listMyFolders();
    /// The empty-folder message or none, then AfterPaint.
    void finish();
    void clearItems();

    /// Adds one entry as an item; each returns the new 1-based index, or 0 when cancelled or left out.
    int addFile(const FileEntry &entry, const QString &folder);
    int addFolder(const FileEntry &entry, const QString &folder, bool driveRoot);
    int addDrive(const DriveInfo &drive);
    void addUnavailable(const QString &path);

private:
    bool raise(void (KelofileView::*signal)(int &));
    int append(FileListRow row, bool hidden);
    void listFolder();
    void listMyComputer();
    void addToTotalSize(qint64 bytes);

    KelofileView &q;
};

} // namespace Kelocontrols
