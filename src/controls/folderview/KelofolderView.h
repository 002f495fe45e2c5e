#pragma once

#include "ClassicFace.h"
#include "ControlBase.h"
#include "OleColor.h"

#include <kelocontrols_export.h>

#include <QFont>
#include <QPixmap>
#include <QString>
#include <QStringList>

#include <memory>

class QMimeData;
class QMenu;
class QTreeView;

namespace Kelocontrols {
class ImageList;
class PropertyTableBase;
template<class Control>
class PropertyTable;
} // namespace Kelocontrols

/**
 * A folder tree: the drives of the machine under a "My Computer" root, the
 * host's favourite folders under a "My Folders" root, or the sub-tree of
 * one folder. The folder-side companion of KelofileView; a host connects
 * the two through NodeClick / ChangedFolder and their Path properties.
 *
 * Setting PathRoot at run time builds the tree ("My Computer" and
 * "My Folders" in any letter case; a folder that does not exist builds
 * "My Computer"; the empty default builds nothing, so a new control reads
 * no disk until the host names its root). Loading saved properties builds
 * it too, and selects the saved Path when that node is there. Nodes are keyed by their folder's full path (a drive's by
 * its mount point; the pseudo-roots by their names), compared without
 * regard to case; their texts are FolderDisplayName() / DriveDisplayName().
 * The tree is filled one level ahead: every visible node already holds its
 * sub-folders, so it shows whether it can be expanded. Expanding a node
 * raises Expand(Node) and then lists the sub-folders of its children; a
 * folder that vanished meanwhile is reported ("Folder Not Accessible") and
 * its node removed. Children are kept sorted by text without regard to
 * case. Hidden folders (dot names and names in the folder's ".hidden")
 * and system folders (pseudo file-system mounts) show only with
 * AllowHiddenFolders / AllowSystemFolders; hidden ones are ghosted.
 *
 * Drives are the mounts FileSystem lists (the file view's "My Computer"),
 * captioned by DriveDisplayName(); Refresh() adds drives that appeared and
 * removes those that went. A drive mounted inside a listed folder shows
 * under its folder name with its drive picture.
 *
 * Every node below the root raises BeforeAddItem(Cancel) (a handler that
 * sets Cancel keeps it out) and then AfterAddItem(Index) with the node's
 * index; the root itself is always there. Node
 * indexes (ItemIndex, 1-based) count the nodes in the order they were
 * added; removing a node closes the gap.
 *
 * Inner parts, found by objectName: `TreeFolders` (a QTreeView, node text
 * in column 0; the check mark of a node is the unavailable mark of a
 * favourite), the image list `ImageList1` (16-pixel pictures keyed by the
 * folder type, drive type names, "OPEN_", "HIDDEN_", "HIDDEN_OPEN_" forms and
 * the fixed keys), the popup menu `popOnFolder` and the timer
 * `RefreshTimer`.
 *
 * The popup menu (right button on a node) and its keys on the tree:
 * Cu&t (Ctrl+X), &Copy (Ctrl+C), &Paste (Ctrl+V), &Delete (Delete),
 * Rena&me (F2), &New folder, P&roperties; F5 refreshes. Cut and copy put
 * the selected folder on the clipboard; one cut flag decides whether the
 * next paste moves. Deleting asks first (a read-only folder with its own
 * question) and removes the folder with all its contents.
 *
 * In a form designer (UserMode false) the tree shows a small sample and
 * never reads the disk; writing Path or an item member there raises
 * RuntimeError 387.
 *
 * \code
 * auto *folders = new KelofolderView(form);
 * folders->setPathRoot(QStringLiteral("My Computer"));
 * connect(folders, &KelofolderView::NodeClick, files,
 *     [folders, files](const QString &) { files->setPathRoot(folders->Path()); });
 * \endcode
 */
class KELOCONTROLS_EXPORT KelofolderView : public Kelocontrols::ControlBase
{
    Q_OBJECT
    Q_CLASSINFO("Interface", "_KelofolderView")
    Q_CLASSINFO("EventInterface", "__KelofolderView")
    Q_CLASSINFO("HelpFile", "Kelocontrols.hlp")
    Q_CLASSINFO("Help:BorderStyle", "Returns/sets the border style for an object.")
    Q_CLASSINFO("Help:Appearance", "Returns/sets whether or not an object is painted at run time with 3-D effects.")
    Q_CLASSINFO("Help:BackColor", "Returns the background color used to display text and graphics in an object.")
    Q_CLASSINFO("Help:MouseIcon", "Sets a custom mouse icon.")
    Q_CLASSINFO("Help:Refresh", "Forces a complete repaint of a object.")
    Q_CLASSINFO("Help:FullRowSelect", "Returns/sets whether selecting a node highlights its whole row.")
    Q_CLASSINFO("Help:HotTracking", "Returns/sets whether nodes are highlighted as the mouse passes over them.")
    Q_CLASSINFO("Help:LabelEdit",
        "Returns/sets whether editing a label starts by clicking the selected node (0, automatic) or only by code and "
        "F2 (1, manual).")
    Q_CLASSINFO("Help:AddNewFolder",
        "Adds a new folder to the list of folders under the special virtual folder  'My Folders'.  PathRoot must be "
        "set to 'My Folders'.")
    Q_CLASSINFO("Help:PathRoot",
        "Shows or sets the root path for the control.  Used to initialise the control.  Special folders are 'My "
        "Computer' and 'My Folders'.")
    Q_CLASSINFO("Help:OLEDrag", "Starts an OLE drag/drop event with the given control as the source.")
    Q_CLASSINFO("Help:OLEDropMode", "Returns/Sets whether this control can act as an OLE drop target.")
    Q_CLASSINFO("Help:OLEDragMode",
        "Returns/Sets whether this control can act as an OLE drag/drop source, and whether this process is started "
        "automatically or under programmatic control.")
    Q_CLASSINFO("Help:AllowLabelEdit", "If set TRUE allows the user to edit folder names.")
    Q_CLASSINFO("Help:AllowHiddenFolders", "When set true, hidden folders are shown as well as normal folders")
    Q_CLASSINFO("Help:AllowSystemFolders", "When set true, system folders are shown as well as normal folders")
    Q_CLASSINFO("Help:ImageCount", "Count of the number of images in the list")
    Q_CLASSINFO("Help:ImageIndex", "Index to the current image used for programming")
    Q_CLASSINFO("Help:ImageTag", "Tag for the current (ImageIndex) image.")
    Q_CLASSINFO("Help:ImageKey", "Key of the current image (using ImageIndex)")
    Q_CLASSINFO("Help:ImageAddNew", "Adds a new image to the list of images")
    Q_CLASSINFO("Help:ImageRemove", "Removes the current (ImageIndex) image from the list of images")
    Q_CLASSINFO("Help:RefreshInterval",
        "Returns/sets the number of milliseconds between automatic refreshes.  0 is none. 1000 is 1 second.")
    Q_CLASSINFO("Help:GoUp",
        "Moves up one level in the tree.  Returns the index of the newly selected folder or 0 if at the root top (no "
        "movement).")
    Q_CLASSINFO("Help:ItemIndex", "Index for referencing nodes in the FolderView control")
    Q_CLASSINFO("Help:ItemTag", "Tag of the current (ItemIndex) node.")
    Q_CLASSINFO("Help:ItemExpanded", "Whether the current (ItemIndex) node is expanded.")
    Q_CLASSINFO("Help:ItemIcon", "Key for the current (ItemIndex) node's image.")
    Q_CLASSINFO("Help:ItemCount", "Count of nodes in the FolderView")
    Q_CLASSINFO("Help:ItemName", "Name of the current (ItemIndex) node's folder")
    Q_CLASSINFO("Help:ItemDisplayName", "Display name of the node referenced by ItemIndex")
    Q_CLASSINFO("Help:ItemSelected", "Whether the current (ItemIndex) node is the selected one.")
    Q_CLASSINFO("Help:ItemPath", "Full path (key) of the current (ItemIndex) node.")
    Q_CLASSINFO("Help:Path", "Shows the current path by the current folder selected.")
    Q_CLASSINFO("Help:GetMyFolders", "Returns the collection of folders added under 'My Folders'.")
    Q_CLASSINFO("Help:AfterAddItem", "Occurs after a new folder has been added")
    Q_CLASSINFO("Help:BeforeAddItem", "Occurs before an item has been added to the list")
    Q_CLASSINFO("Help:ChangedFolder", "Occurs when the current control path is changed")
    Q_CLASSINFO("DispId:BeforeLabelEdit", "1")
    Q_CLASSINFO("DispId:AfterLabelEdit", "2")
    Q_CLASSINFO("DispId:OLECompleteDrag", "3")
    Q_CLASSINFO("DispId:OLEDragDrop", "4")
    Q_CLASSINFO("DispId:OLEDragOver", "5")
    Q_CLASSINFO("DispId:OLEGiveFeedback", "6")
    Q_CLASSINFO("DispId:OLESetData", "7")
    Q_CLASSINFO("DispId:OLEStartDrag", "8")
    KELO_CLASSIC_STOCK_CLICK_IDS
    KELO_CLASSIC_STOCK_KEY_IDS
    KELO_CLASSIC_STOCK_MOUSE_IDS
    Q_CLASSINFO("DispId:Collapse", "9")
    Q_CLASSINFO("DispId:Expand", "10")
    Q_CLASSINFO("DispId:NodeClick", "11")
    Q_CLASSINFO("DispId:BeforePaint", "12")
    Q_CLASSINFO("DispId:AfterPaint", "13")
    Q_CLASSINFO("DispId:AfterAddItem", "14")
    Q_CLASSINFO("DispId:BeforeAddItem", "15")
    Q_CLASSINFO("DispId:ChangedFolder", "16")

    /// Whether the tree answers the user.
    /// Default: true.
    KELO_CLASSIC_PROPERTY(Enabled)
    /// The tree's font.
    /// Default: the container's font.
    KELO_CLASSIC_PROPERTY(Font)
    /// 0 none, 1 fixed single; other values raise 380.
    /// Default: 0.
    Q_PROPERTY(int BorderStyle READ BorderStyle WRITE setBorderStyle)
    /// 0 flat, 1 3-D; other values raise 380.
    /// Default: 1.
    Q_PROPERTY(int Appearance READ Appearance WRITE setAppearance)
    /// The nodes' text colour (an OLE colour; system colours follow the palette).
    /// Default: 0x80000012.
    KELO_CLASSIC_PROPERTY(ForeColor)
    /// The tree's background colour (read-only; it follows the palette).
    /// Default: the palette's base colour.
    Q_PROPERTY(uint BackColor READ BackColor STORED false)
    /// The pointer shown over the tree (a Kelocontrols::MousePointer code; 99 uses MouseIcon).
    /// Default: 0.
    KELO_CLASSIC_PROPERTY(MousePointer)
    /// The custom pointer picture used when MousePointer is 99.
    /// Default: none.
    Q_PROPERTY(QPixmap MouseIcon READ MouseIcon WRITE setMouseIcon)
    /// Selecting a node highlights its whole row.
    /// Default: false.
    Q_PROPERTY(bool FullRowSelect READ FullRowSelect WRITE setFullRowSelect)
    /// Nodes are highlighted as the mouse passes over them.
    /// Default: false.
    Q_PROPERTY(bool HotTracking READ HotTracking WRITE setHotTracking)
    /// 0: a click on the selected node starts renaming it; 1: only code and F2 do.
    /// Default: 0.
    Q_PROPERTY(int LabelEdit READ LabelEdit WRITE setLabelEdit)
    /// What the tree shows: "My Computer", "My Folders" or the sub-tree of a folder.
    /// Default: "".
    Q_PROPERTY(QString PathRoot READ PathRoot WRITE setPathRoot)
    /// 0 no drops, 1 drops raised to the host (OLEDragOver / OLEDragDrop), 2 folders dropped are copied (Ctrl) or moved
    /// into the node under the pointer. Default: 2.
    Q_PROPERTY(int OLEDropMode READ OLEDropMode WRITE setOLEDropMode)
    /// 1 drags start only through OLEDrag(), 2 dragging a node starts one.
    /// Default: 1.
    Q_PROPERTY(int OLEDragMode READ OLEDragMode WRITE setOLEDragMode)
    /// Lets the user rename folders by editing their labels.
    /// Default: true.
    Q_PROPERTY(bool AllowLabelEdit READ AllowLabelEdit WRITE setAllowLabelEdit)
    /// Shows hidden folders (dot names and names in the parent's ".hidden").
    /// Default: false.
    Q_PROPERTY(bool AllowHiddenFolders READ AllowHiddenFolders WRITE setAllowHiddenFolders)
    /// Shows system folders (pseudo file-system mounts such as /proc).
    /// Default: false.
    Q_PROPERTY(bool AllowSystemFolders READ AllowSystemFolders WRITE setAllowSystemFolders)
    /// The number of images in the image list (read-only).
    /// Default: 0.
    Q_PROPERTY(int ImageCount READ ImageCount DESIGNABLE false STORED false)
    /// The current image (1-based) for the image members.
    /// Default: 0.
    Q_PROPERTY(int ImageIndex READ ImageIndex WRITE setImageIndex DESIGNABLE false STORED false)
    /// The tag of the current image.
    /// Default: "".
    Q_PROPERTY(QString ImageTag READ ImageTag WRITE setImageTag DESIGNABLE false STORED false)
    /// The key of the current image.
    /// Default: "".
    Q_PROPERTY(QString ImageKey READ ImageKey WRITE setImageKey DESIGNABLE false STORED false)
    /// Milliseconds between automatic refreshes; 0 none.
    /// Default: 0.
    Q_PROPERTY(int RefreshInterval READ RefreshInterval WRITE setRefreshInterval)
    /// The current node (1-based, in the order nodes were added) for the item members.
    /// Default: 0.
    Q_PROPERTY(int ItemIndex READ ItemIndex WRITE setItemIndex DESIGNABLE false STORED false)
    /// The tag of the current node.
    /// Default: "".
    Q_PROPERTY(QString ItemTag READ ItemTag WRITE setItemTag DESIGNABLE false STORED false)
    /// Whether the current node is expanded.
    /// Default: false.
    Q_PROPERTY(bool ItemExpanded READ ItemExpanded WRITE setItemExpanded DESIGNABLE false STORED false)
    /// The image key of the current node.
    /// Default: "".
    Q_PROPERTY(QString ItemIcon READ ItemIcon WRITE setItemIcon DESIGNABLE false STORED false)
    /// The number of nodes in the tree (read-only).
    /// Default: 0.
    Q_PROPERTY(int ItemCount READ ItemCount DESIGNABLE false STORED false)
    /// The folder name of the current node.
    /// Default: "".
    Q_PROPERTY(QString ItemName READ ItemName WRITE setItemName DESIGNABLE false STORED false)
    /// The text of the current node.
    /// Default: "".
    Q_PROPERTY(QString ItemDisplayName READ ItemDisplayName WRITE setItemDisplayName DESIGNABLE false STORED false)
    /// Whether the current node is the selected one.
    /// Default: false.
    Q_PROPERTY(bool ItemSelected READ ItemSelected WRITE setItemSelected DESIGNABLE false STORED false)
    /// The full path (key) of the current node (read-only).
    /// Default: "".
    Q_PROPERTY(QString ItemPath READ ItemPath DESIGNABLE false STORED false)
    /// The folder selected; writing it selects (and if need be adds) its node. Raises 387 at design time.
    /// Default: "".
    Q_PROPERTY(QString Path READ Path WRITE setPath DESIGNABLE false)

public:
    /// The pseudo-roots' keys and texts, compared without regard to case.
    static inline const QString MyComputer = QStringLiteral("My Computer");
    static inline const QString MyFolders = QStringLiteral("My Folders");
    /// What follows the path of a favourite whose folder is missing.
    static inline const QString UnavailableSuffix = QStringLiteral(" (Unavailable)");

    explicit KelofolderView(QWidget *parent = nullptr);
    ~KelofolderView() override;

    // Appearance, passed to TreeFolders
    KELO_CLASSIC_ACCESSORS(Enabled)
    KELO_CLASSIC_ACCESSORS(Font)
    int BorderStyle() const; ///< 0 none (default), 1 fixed single; other values raise 380
    void setBorderStyle(int style);
    int Appearance() const; ///< 0 flat, 1 3-D (default); other values raise 380
    void setAppearance(int appearance);
    KELO_CLASSIC_ACCESSORS(ForeColor)
    Kelocontrols::OleColor BackColor() const; ///< the tree's background, read-only
    KELO_CLASSIC_ACCESSORS(MousePointer)
    QPixmap MouseIcon() const; ///< default none
    void setMouseIcon(const QPixmap &icon);
    bool FullRowSelect() const; ///< default false
    void setFullRowSelect(bool full);
    bool HotTracking() const; ///< default false
    void setHotTracking(bool on);
    int LabelEdit() const; ///< 0 automatic (default), 1 manual
    void setLabelEdit(int mode);

    /**
     * Brings the tree up to date with the disk: drive captions again,
     * vanished folders removed, favourites marked unavailable or restored.
     * Also what F5 and RefreshTimer do.
     */
    Q_INVOKABLE void Refresh();

    /**
     * Adds @p FolderName under "My Folders": with its display name when the
     * folder exists, else as "<FolderName> (Unavailable)" with the
     * "FolderUnavailable" picture and the check mark. Either way the name
     * joins GetMyFolders(). Nothing is added to the tree when the root is
     * not "My Folders" (the name is still remembered).
     */
    Q_INVOKABLE void AddNewFolder(const QString &FolderName);

    QString PathRoot() const; ///< default ""
    /// Stores the root and, at run time, builds the tree.
    void setPathRoot(const QString &pathRoot);

    /// Starts dragging the selected folder, as OLEDragMode 1 does when the user drags a node.
    Q_INVOKABLE void OLEDrag();
    int OLEDropMode() const; ///< 0 none, 1 manual (events only), 2 automatic (default)
    void setOLEDropMode(int mode);
    int OLEDragMode() const; ///< 0 manual, 1 automatic (default)
    void setOLEDragMode(int mode);
    bool AllowLabelEdit() const; ///< default true
    void setAllowLabelEdit(bool allow);
    bool AllowHiddenFolders() const; ///< default false
    void setAllowHiddenFolders(bool allow);
    bool AllowSystemFolders() const; ///< default false
    void setAllowSystemFolders(bool allow);

    // Image members (ImageList1, 1-based)
    int ImageCount() const;
    int ImageIndex() const; ///< default 0
    void setImageIndex(int index);
    QString ImageTag() const;
    void setImageTag(const QString &tag);
    QString ImageKey() const;
    void setImageKey(const QString &key);
    /// Adds @p MyImage under @p MyKey and returns its index; raises 35602 for a key already there.
    Q_INVOKABLE int ImageAddNew(const QPixmap &MyImage, const QString &MyKey);
    /// Removes the image with key @p MyKey; nothing happens when there is none.
    Q_INVOKABLE void ImageRemove(const QString &MyKey);

    int RefreshInterval() const; ///< milliseconds, default 0 (none)
    void setRefreshInterval(int milliseconds);

    /// Selects the parent of the selected node and answers its index; 0 at a root (nothing moves).
    Q_INVOKABLE int GoUp();

    // Item members: the node at ItemIndex (1-based; 0 or past the end addresses nothing)
    int ItemIndex() const; ///< default 0
    void setItemIndex(int index);
    QString ItemTag() const;
    void setItemTag(const QString &tag);
    bool ItemExpanded() const;
    /// Expands (raising Expand and filling one level ahead) or collapses the node.
    void setItemExpanded(bool expanded);
    QString ItemIcon() const;
    /// Sets the node's image key; raises 35601 when ImageList1 has no such key.
    void setItemIcon(const QString &key);
    int ItemCount() const;
    /// The last component of the node's key (the mount point for a drive, the name for a pseudo-root).
    QString ItemName() const;
    void setItemName(const QString &name);
    QString ItemDisplayName() const;
    void setItemDisplayName(const QString &text);
    bool ItemSelected() const;
    /// Selecting a node makes it current as a click does (ChangedFolder when the path changes).
    void setItemSelected(bool selected);
    QString ItemPath() const;

    QString Path() const; ///< default ""
    /// Raises 387 at design time; at run time selects the node keyed @p path (when there is one).
    void setPath(const QString &path);

    /// The favourites in the order AddNewFolder() added them.
    Q_INVOKABLE QStringList GetMyFolders() const;

    QTreeView *treeFolders() const;
    Kelocontrols::ImageList *imageList() const;
    QMenu *popOnFolder() const;

    static const Kelocontrols::PropertyTable<KelofolderView> &table();
    const Kelocontrols::PropertyTableBase &propertyTable() const override;
    QSize sizeHint() const override;

Q_SIGNALS:
    void BeforeLabelEdit(int &Cancel);
    void AfterLabelEdit(int &Cancel, QString &NewString);
    void OLECompleteDrag(int &Effect);
    void OLEDragDrop(QMimeData *Data, int &Effect, short &Button, short &Shift, float &X, float &Y);
    void OLEDragOver(QMimeData *Data, int &Effect, short &Button, short &Shift, float &X, float &Y, short &State);
    void OLEGiveFeedback(int &Effect, bool &DefaultCursors);
    void OLESetData(QMimeData *Data, short &DataFormat);
    void OLEStartDrag(QMimeData *Data, int &AllowedEffects);
    KELO_CLASSIC_CLICK_EVENTS
    KELO_CLASSIC_KEY_EVENTS
    KELO_CLASSIC_MOUSE_EVENTS
    void Collapse(const QString &Node);
    void Expand(const QString &Node);
    void NodeClick(const QString &Node);
    void BeforePaint(int &Cancel);
    void AfterPaint();
    void AfterAddItem(int &Index);
    void BeforeAddItem(int &Cancel);
    void ChangedFolder();

protected:
    void propertiesLoaded() override;
    void userModeChanged() override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    class Private;
    friend class Private;

    std::unique_ptr<Private> const d;
};
