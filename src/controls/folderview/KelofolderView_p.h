#pragma once

#include "ClassicFace_p.h"
#include "DriveInfo.h"
#include "FileListFilter.h"
#include "FolderTreeModel_p.h"
#include "KelofolderView.h"

#include <QHash>
#include <QSet>

#include <optional>

class QTimer;

namespace Kelocontrols {
class FolderTreeView;
} // namespace Kelocontrols

/**
 * What a KelofolderView keeps and the steps that fill the tree.
 *
 * Events go to host handlers that may change the tree at any point (remove
 * nodes, build a new root), so the steps hold node keys across events and
 * look the nodes up again afterwards; a node that went meanwhile ends the
 * step that was about it.
 */
class KelofolderView::Private
{
public:
    using Node = Kelocontrols::FolderTreeModel::Node;

    explicit Private(KelofolderView &view);

    // Building and filling
    void build();
    void buildSample();
    /// Adds a node (duplicates skipped, BeforeAddItem / AfterAddItem raised); answers its key, "" when none was added.
    QString addNode(const QString &parentKey, const QString &key, const QString &text, const QString &image,
        const QString &selected);
    /// addNode() for a folder, with the folder pictures (ghosted when @p hidden).
    QString addFolder(const QString &parentKey, const QString &key, const QString &text, bool hidden);
    QString addDrive(const QString &parentKey, const Kelocontrols::DriveInfo &drive);
    /// Adds the sub-folders of the folder of @p key that have no node yet; false when the node went meanwhile.
    bool addSubFolders(const QString &key);
    /// The node's sub-folders, then each child's, so every child shows whether it can be expanded.
    void fillAhead(const QString &key);
    void expanded(const QString &key);
    /// Step of selecting: @p click raises NodeClick first.
    void select(const QString &key, bool click);
    /// Removes @p node and its sub-tree, keeping the selection where it was.
    void removeNode(Node *node);
    /// Shows @p node as the selected one in TreeFolders without any event.
    void showSelected(const Node *node);
    void refresh();
    /// Selects the node of @p path, filling the nodes on the way to it when they are in the tree.
    Node *reveal(const QString &path);

    // Commands
    void cut();
    void copy();
    void paste();
    void deleteFolder();
    void rename();
    void newFolder();
    void properties();
    bool keyCommand(short keyCode, short shift);
    bool commitLabel(Node *node, QString &text);
    bool labelEditAllowed(const QModelIndex &index);
    void startDrag();
    void dragMoved(QDragMoveEvent *event);
    void dropped(QDropEvent *event);

    // Questions about nodes
    static bool isPseudoRoot(const QString &key);
    bool isDriveNode(const Node *node) const;
    bool isFavourite(const Node *node) const;
    /// A node whose key is a folder or drive on disk (not a pseudo-root, not an unavailable favourite).
    bool isRealFolder(const Node *node) const;
    bool exists(const Node *node) const;
    Node *selectedNode() const;
    Node *currentItem() const { return model->at(itemIndex); }

    // Images
    QString folderType();
    void ensureImage(const QString &key, const QPixmap &picture);
    void ensureFolderImages(bool hidden);
    void ensureDriveImage(const Kelocontrols::DriveInfo &drive);
    /// The mount points of the drives, read once per top-level step.
    const QSet<QString> &mountPoints();
    void applyFrame();
    void applyPalette();
    void applyLabelEdit();

    /// Keeps the per-step caches (the mounts) for its scope.
    class Step
    {
    public:
        explicit Step(Private &d)
            : m_d(d)
        {
            ++m_d.depth;
        }
        ~Step()
        {
            if (--m_d.depth == 0) {
                m_d.mountCache.reset();
                m_d.systemMountCache.reset();
            }
        }
        Step(const Step &) = delete;
        Step &operator=(const Step &) = delete;

    private:
        Private &m_d;
    };

    KelofolderView &q;
    Kelocontrols::ImageList *images;
    Kelocontrols::FolderTreeModel *model;
    Kelocontrols::FolderTreeView *tree;
    QMenu *menu;
    QTimer *refreshTimer;
    Kelocontrols::ClassicFace face; ///< Enabled and Font on TreeFolders

    Kelocontrols::FileListFilter rules; ///< AllowHiddenFolders, AllowSystemFolders
    QString pathRoot;
    QString path;
    QStringList myFolders;
    bool cutFlag = false;
    bool building = false; ///< the root is being opened by build()
    bool showingSelection = false; ///< TreeFolders' selection is being set by the control
    int depth = 0;
    std::optional<QSet<QString>> mountCache;
    std::optional<QSet<QByteArray>> systemMountCache; ///< the System mount points, read once per step
    QString folderTypeText;

    Kelocontrols::OleColor foreColor = 0x80000012;
    int borderStyle = 0;
    int appearance = 1;
    int mousePointer = 0;
    QPixmap mouseIcon;
    bool fullRowSelect = false;
    bool hotTracking = false;
    int labelEdit = 0;
    int oleDropMode = 2;
    int oleDragMode = 1;
    bool allowLabelEdit = true;

    int itemIndex = 0;
    int imageIndex = 0;
    // The values the item and image members were last given (and load and save).
    QString itemTag;
    bool itemExpanded = false;
    QString itemIcon;
    QString itemName;
    QString itemDisplayName;
    bool itemSelected = false;
    QString itemPath;
    QString imageTag;
    QString imageKey;
};
