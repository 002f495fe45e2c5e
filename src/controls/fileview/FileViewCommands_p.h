#pragma once

#include <kelocontrols_export.h>

#include <QList>
#include <QObject>
#include <QStringList>

#include <functional>

class KelofileView;
class QAction;
class QKeyEvent;
class QMenu;
class QPoint;

namespace Kelocontrols {

/**
 * The commands of a KelofileView: its popup menus `popOnFile`, `popOnBack`
 * and `popView` (QMenu children of the control, entries in menu order with
 * separators), the keys that do what entries do, and the commands
 * themselves.
 *
 * Menus open from the context-menu events of the inner views: a click on
 * an item selects it (when it was not selected) and opens popOnFile, a
 * click on the background popOnBack, the keyboard (Shift+F10, Menu) the
 * one that fits the selection. Entries are greyed just before a menu opens.
 *
 * The command functions raise RuntimeError when the file system refuses
 * (their callers decide how to tell); entries and keys run them through
 * run(), which shows the error's text in a box (style 16) instead, since
 * nobody could catch it there.
 *
 * The cut flag: Cut remembers the paths it put on the clipboard, Copy
 * forgets them; Paste moves when the clipboard still holds exactly the
 * paths last cut in any file view of the process (or a file manager's
 * "cut" list), and copies otherwise, so a clipboard another program
 * replaced is never moved by accident.
 */
class KELOCONTROLS_TESTS_EXPORT FileViewCommands : public QObject
{
    Q_OBJECT
public:
    /// The entries of popOnFile, popOnBack and popView by index (separators count).
    enum FileMenuEntry {
        Open = 0,
        Print = 1,
        Cut = 3,
        Copy = 4,
        CreateShortcut = 6,
        Delete = 7,
        Rename = 8,
        FileProperties = 10
    };
    enum BackMenuEntry {
        View = 0,
        Refresh = 2,
        Paste = 4,
        PasteShortcut = 5,
        Undo = 6,
        NewFolder = 8,
        BackProperties = 10
    };

    explicit FileViewCommands(KelofileView &view);

    QMenu *popOnFile() const { return m_onFile; }
    QMenu *popOnBack() const { return m_onBack; }
    QMenu *popView() const { return m_view; }

    /// Greys the entries that cannot act now.
    void updateMenus();
    /// Delete, F2, Ctrl+C, Ctrl+X, Ctrl+V, F5, Shift+F10 and Menu; true when @p event was one of them.
    bool handleKey(QKeyEvent *event);

    /// The selected rows (0-based, ascending) and their full paths.
    QList<int> selectedRows() const;
    QStringList selectedPaths() const;
    /// The full path of a row: its folder and its RealName.
    QString pathOf(int row) const;
    /// Whether an item's label is being edited.
    bool editing() const;
    /// Whether a real folder is shown (not "", "My Computer" or "My Folders").
    bool folderShown() const;

    // The commands; each raises RuntimeError when the file system refuses.
    void openSelected(bool print);
    void cut();
    void copy();
    void paste();
    void newFolder();
    void properties(bool folderShown);
    void refill();
    /// Deletes the selected items, asking first when @p confirm; see the class notes of KelofileView.
    void deleteSelected(bool confirm);
    void renameSelected();

    /// Runs @p command, showing a RuntimeError it raises in a box.
    void run(const std::function<void()> &command);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QAction *addEntry(QMenu *menu, const QString &caption, void (FileViewCommands::*command)());
    void showMenu(bool onItem, const QPoint &globalPos);
    void deletePath(const QString &path, const QString &text);
    int confirmDelete(const QList<int> &rows);

    KelofileView &q;
    QMenu *m_onFile;
    QMenu *m_onBack;
    QMenu *m_view;
};

} // namespace Kelocontrols
