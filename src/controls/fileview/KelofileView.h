#pragma once

#include "ClassicFace.h"
#include "ControlBase.h"
#include "FileListFilter.h"
#include "OleColor.h"
#include "PropertyTable.h"

#include <kelocontrols_export.h>

#include <QFont>
#include <QMimeData>
#include <QPixmap>
#include <QString>
#include <QStringList>

#include <memory>

namespace Kelocontrols {
class FileViewCommands;
class FileViewDragDrop;
class FileViewFill;
class FileViewLabelEdit;
class FileViewRefresh;
class FileViewSearch;
class FileViewWatch;
class ImageList;
class ListView;
} // namespace Kelocontrols

/**
 * An explorer-like file list: the sub-folders and files of a folder with
 * their icons, sizes, types and dates; or the drives ("My Computer"); or a
 * set of favourite folders the host supplies ("My Folders").
 *
 * Set PathRoot to a folder and the list shows it at once; Path alone is
 * stored and shown at the next fill (showing the control, PathRoot,
 * ShowFolders). In a form designer (UserMode false) the list shows a
 * message instead of listing files.
 *
 * A fill raises ChangedFolder(Cancel) and BeforePaint(Cancel) (either may
 * stop it, leaving the list as it was), clears the list, then adds the
 * sub-folders (when ShowFolders) and files whose names match Filter (the
 * Like pattern language, without regard to case), each with
 * BeforeAddItem(Cancel) and AfterAddItem(Index), and ends with AfterPaint.
 * Entries come in name order without regard to case, folders first. Hidden
 * (dot files and names in the folder's ".hidden") and system entries
 * (devices, sockets, FIFOs, pseudo file-system mounts) are left out unless
 * AllowHiddenFiles / AllowSystemFiles; TotalSize still counts the bytes of
 * matching hidden and system files.
 *
 * Inner widgets, found by objectName: `ListFiles` (a Kelocontrols::ListView
 * with 13 columns: Name, Size, Type, Modified, Created, Changed and the
 * hidden Folder, SortedSize, SortedModified, SortedCreated, RealName,
 * Refresh, SortName; the columns of Kelocontrols::FileListModel), the image
 * lists `Image32` and `Image16` (children of the control,
 * Kelocontrols::ImageList), the message line `txtMessage` and the timer
 * `RefreshTimer`.
 *
 * A click on a column header sorts the list by that column (Name sorts by
 * SortName, so folders come before files; Size by SortedSize, where a
 * folder counts its files; Modified and Created by their sortable forms;
 * Type and Changed by their own text); a second click on the same header
 * reverses the order. The clicked header shows the Image16 picture
 * "SortDown" while ascending and "SortUp" while descending, the others none.
 * The order is ListFiles' SortKey / SortOrder / Sorted; items added while
 * Sorted is true go to their sorted place.
 *
 * Navigation: GoUp() shows the parent folder (see there). A double click
 * raises DblClick and then opens the selected item: a file with its
 * associated application, a folder or a drive by showing it. Keys on the
 * list: Enter opens the selected item as a double click does (without
 * DblClick), Backspace and Alt+Up call GoUp(); KeyDown is raised first.
 * ItemClick(Index) sets ItemIndex to the clicked item before it is raised.
 *
 * Event handlers may change the list at any event (ItemClear, ItemRemove,
 * ItemAddNew, PathRoot): a fill or refresh goes on with the list as it is
 * then. A fill, a refresh or a timer tick that starts while another fill or
 * refresh runs (from a handler, or from a modal box's event loop) does
 * nothing.
 *
 * Commands: the popup menus `popOnFile` (the selected items: &Open,
 * &Print, Cu&t, &Copy, Create &Shortcut, &Delete, Rena&me, Prope&rties) and
 * `popOnBack` (the folder shown: &View with the submenu `popView`,
 * R&efresh, &Paste, Paste &Shortcut, &Undo, Ne&w Folder, P&roperties) are
 * QMenu children of the control; a right click on an item selects it and
 * shows popOnFile, one on the background popOnBack, and Shift+F10 or the
 * Menu key the one that fits the selection. Entries that cannot act are
 * greyed; Create Shortcut, Paste Shortcut and Undo do nothing. Keys on the
 * list: Delete deletes the selected items (with the confirmations), F2
 * renames the selected item, Ctrl+C copies and Ctrl+X cuts them to the
 * clipboard, Ctrl+V pastes into the folder shown, F5 fills the list afresh.
 * Delete removes from the file system itself, or moves to the desktop's
 * trash when DeleteToTrash is true. An error of the file system during a
 * command chosen from a menu or by a key is shown in a box (style 16);
 * what was done before it stays done.
 *
 * Renaming: F2, Rena&me or a click on the selected item's label edits it in
 * place (a QLineEdit; Return commits, Escape drops) unless AllowLabelEdit
 * is false or a BeforeLabelEdit handler cancels. AfterLabelEdit(Cancel,
 * NewString) may cancel or change the name. An empty name, or the present
 * name in any case, renames nothing; a name holding "/" or a NUL (the only
 * characters Linux file names cannot hold) is refused with
 * ShowInvalidNameChars(); a change of the extension is asked about ("Rename",
 * Yes/No). A rename never replaces an existing entry: a name that is taken is
 * refused with the box "Error Renaming File".
 *
 * Drag and drop: with OLEDropMode 2 (the default) files dropped on the list
 * are moved into the folder shown, or into the folder item they are dropped
 * on; with Ctrl held they are copied (each through TransferItem()). While
 * dragging, only file lists over a folder item or the folder shown are
 * accepted, and the target folder item is outlined. OLEDropMode 1 hands the
 * drop to OLEDragOver / OLEDragDrop and touches nothing; 0 refuses drops.
 * With OLEDragMode 2 dragging selected items offers their paths (as
 * text/uri-list, x-special/gnome-copied-files and the file-drop block);
 * with 1 the host starts a drag with OLEDrag(). A drag raises OLEStartDrag,
 * OLESetData, OLEGiveFeedback (whenever the target's effect changes) and
 * OLECompleteDrag; a move completed by the target refreshes the list.
 *
 * Item members address the item at ItemIndex (1-based; 0 = none); image
 * members address the image at ImageIndex of Image16 (ImageSmall) or
 * Image32. Writing an item member, or calling ItemAddNew / ItemRemove /
 * ItemClear, in design mode raises RuntimeError 387.
 *
 * \code
 * auto *files = new KelofileView(form);
 * files->setObjectName("Files");
 * connect(files, &KelofileView::BeforeAddItem, [](int &Cancel) { ... });
 * files->setFilter("*.txt");
 * files->setPathRoot(QDir::homePath());   // lists the folder now
 * \endcode
 */
class KELOCONTROLS_EXPORT KelofileView : public Kelocontrols::ControlBase
{
    Q_OBJECT
    Q_CLASSINFO("Interface", "_KelofileView")
    Q_CLASSINFO("EventInterface", "__KelofileView")
    Q_CLASSINFO("HelpFile", "Kelocontrols.hlp")
    Q_CLASSINFO("Help:BorderStyle", "Returns/sets the border style for an object.")
    Q_CLASSINFO("Help:Path", "The folder shown, or \"My Computer\" or \"My Folders\".")
    Q_CLASSINFO("Help:PathRoot", "The root folder of the view: setting it shows that folder.")
    Q_CLASSINFO("Help:LimitToRoot", "Keeps navigation inside PathRoot.")
    Q_CLASSINFO("Help:ShowFolders", "Lists sub-folders as well as files.")
    Q_CLASSINFO("Help:MouseIcon", "Sets a custom mouse icon.")
    Q_CLASSINFO("Help:Picture", "Returns/sets the background picture of the list.")
    Q_CLASSINFO("Help:PictureAlignment", "Returns/sets the position of the background picture.")
    Q_CLASSINFO("Help:Arrange", "Returns/sets how the icons are arranged in the icon views.")
    Q_CLASSINFO("Help:Appearance", "Returns/sets whether or not an object is painted at run time with 3-D effects.")
    Q_CLASSINFO("Help:HideColumnHeaders", "Returns/sets whether the column headers are hidden in the details view.")
    Q_CLASSINFO("Help:HideSelection", "Returns/sets whether the selection is hidden when the list loses the focus.")
    Q_CLASSINFO("Help:MultiSelect", "Returns/sets whether more than one item can be selected.")
    Q_CLASSINFO("Help:AllowColumnReorder", "Returns/sets whether the user can reorder the columns.")
    Q_CLASSINFO("Help:FlatScrollBar", "Returns/sets whether the scroll bars are flat.")
    Q_CLASSINFO("Help:FullRowSelect", "Returns/sets whether selecting an item highlights its whole row.")
    Q_CLASSINFO("Help:GridLines", "Returns/sets whether grid lines are drawn between rows and columns.")
    Q_CLASSINFO("Help:HotTracking", "Returns/sets whether items are highlighted as the mouse passes over them.")
    Q_CLASSINFO("Help:HoverSelection", "Returns/sets whether an item is selected when the mouse rests on it.")
    Q_CLASSINFO("Help:LabelWrap", "Returns/sets whether labels wrap in the icon view.")
    Q_CLASSINFO("Help:View", "Returns/sets the view: 0 large icons, 1 small icons, 2 list, 3 details.")
    Q_CLASSINFO("Help:ShowFolderDetails", "Shows the file count and dates of folders in the detail columns.")
    Q_CLASSINFO("Help:RefreshInterval", "Milliseconds between automatic refreshes of the list, 0 for none.")
    Q_CLASSINFO("Help:Filter", "A name pattern (* ? # [list]) that listed items must match.")
    Q_CLASSINFO("Help:TotalSize", "Total size in bytes of the files that matched Filter in the last listing.")
    Q_CLASSINFO("Help:AllowHiddenFiles", "Lists hidden files and folders.")
    Q_CLASSINFO("Help:AllowSystemFiles", "Lists system files and folders.")
    Q_CLASSINFO("Help:AllowLabelEdit", "Allows renaming items by editing their labels.")
    Q_CLASSINFO("Help:GoUp", "Shows the parent of the folder shown.")
    Q_CLASSINFO("Help:Search", "Lists the files and folders below a folder whose names match a pattern.")
    Q_CLASSINFO("Help:StopSearch", "Ends a running search; what was found so far is listed.")
    Q_CLASSINFO("Help:Refresh", "Brings the list up to date with the folder on disk.")
    Q_CLASSINFO("Help:ItemIndex", "Index for referencing items in the FileView control")
    Q_CLASSINFO("Help:ItemDisplayName", "Display name of the item referenced by ItemIndex")
    Q_CLASSINFO("Help:ItemName", "Name of the current (ItemIndex) item")
    Q_CLASSINFO("Help:ItemCount", "Count of items in the FileView")
    Q_CLASSINFO("Help:ItemIcon", "Key for the current (ItemIndex) items image.")
    Q_CLASSINFO("Help:ItemSmallIcon", "Key for the small item used by the current (ItemIndex) item")
    Q_CLASSINFO("Help:ItemSelected", "Index of the currently selected item in the list (by user not ItemIndex)")
    Q_CLASSINFO("Help:ItemTag", "Tag of the current (ItemIndex) item.")
    Q_CLASSINFO("Help:ItemBold", "Causes the current item (ItemIndex) to appear bold.")
    Q_CLASSINFO("Help:ItemAddNew", "Adds a new file or folder item to the list.  Allows virtual directories.")
    Q_CLASSINFO("Help:ItemRemove", "Removes the current (ItemIndex) item")
    Q_CLASSINFO("Help:ItemClear", "Clears all the items from the FileView.")
    Q_CLASSINFO("Help:ImageIndex", "Index to the current image used for programming")
    Q_CLASSINFO("Help:ImageCount", "Count of the number of images in the list")
    Q_CLASSINFO("Help:ImageSmall", "Flag to point to the small image list if set, the large image list if not.")
    Q_CLASSINFO("Help:ImageKey", "Key of the current image (using ImageIndex)")
    Q_CLASSINFO("Help:ImageTag", "Tag for the current (ImageIndex) image.")
    Q_CLASSINFO("Help:ImageAddNew", "Adds a new image to the list of images")
    Q_CLASSINFO("Help:ImageRemove", "Removes the current (ImageIndex) image from the list of images")
    Q_CLASSINFO("Help:OLEDragMode",
        "Returns/Sets whether this control can act as an OLE drag/drop source, and whether this process is started "
        "automatically or under programmatic control.")
    Q_CLASSINFO("Help:OLEDropMode", "Returns/Sets whether this control can act as an OLE drop target.")
    Q_CLASSINFO(
        "Help:DeleteToTrash", "Moves deleted items to the desktop's trash instead of removing them from the disk.")
    Q_CLASSINFO("DispId:OLEStartDrag", "5")
    Q_CLASSINFO("DispId:OLESetData", "6")
    Q_CLASSINFO("DispId:OLEGiveFeedback", "7")
    Q_CLASSINFO("DispId:OLEDragOver", "8")
    Q_CLASSINFO("DispId:OLEDragDrop", "9")
    Q_CLASSINFO("DispId:OLECompleteDrag", "10")
    Q_CLASSINFO("DispId:NeedMyFolders", "1")
    Q_CLASSINFO("DispId:ItemClick", "2")
    Q_CLASSINFO("DispId:RefreshFoundChanges", "3")
    Q_CLASSINFO("DispId:ChangedFolder", "4")
    Q_CLASSINFO("DispId:AfterLabelEdit", "11")
    Q_CLASSINFO("DispId:BeforeLabelEdit", "12")
    Q_CLASSINFO("DispId:AfterAddItem", "13")
    Q_CLASSINFO("DispId:BeforeAddItem", "14")
    Q_CLASSINFO("DispId:BeforePaint", "15")
    Q_CLASSINFO("DispId:AfterPaint", "16")
    Q_CLASSINFO("DispId:Click", "17")
    Q_CLASSINFO("DispId:DblClick", "18")
    Q_CLASSINFO("DispId:KeyDown", "19")
    Q_CLASSINFO("DispId:KeyPress", "20")
    Q_CLASSINFO("DispId:KeyUp", "21")
    Q_CLASSINFO("DispId:MouseDown", "22")
    Q_CLASSINFO("DispId:MouseMove", "23")
    Q_CLASSINFO("DispId:MouseUp", "24")

    /// The list's background colour, an OLE colour (system colours follow the palette).
    /// Default: 0x80000005 (window background).
    KELO_CLASSIC_PROPERTY(BackColor)
    /// The colour of the list's texts, an OLE colour.
    /// Default: 0x80000008 (window text).
    KELO_CLASSIC_PROPERTY(ForeColor)
    /// Whether ListFiles responds to the user: its effective state, so a disabled form reads as disabled.
    /// Default: true.
    KELO_CLASSIC_PROPERTY(Enabled)
    /// The font of the list.
    /// Default: the container's font.
    KELO_CLASSIC_PROPERTY(Font)
    /// 0 none, 1 fixed single.
    /// Default: 1.
    Q_PROPERTY(int BorderStyle READ BorderStyle WRITE setBorderStyle)
    /// The folder shown, or "My Computer" or "My Folders"; setting it lists nothing until the next fill.
    /// Default: "".
    Q_PROPERTY(QString Path READ Path WRITE setPath)
    /// The root of the view; setting it makes it the Path and lists it.
    /// Default: "".
    Q_PROPERTY(QString PathRoot READ PathRoot WRITE setPathRoot)
    /// Keeps GoUp() inside PathRoot.
    /// Default: true.
    Q_PROPERTY(bool LimitToRoot READ LimitToRoot WRITE setLimitToRoot)
    /// Lists sub-folders as well as files; setting it lists the folder again.
    /// Default: true.
    Q_PROPERTY(bool ShowFolders READ ShowFolders WRITE setShowFolders)
    /// The mouse pointer over the list, one of the Kelocontrols::MousePointer codes.
    /// Default: 0.
    KELO_CLASSIC_PROPERTY(MousePointer)
    /// The picture of the Custom (99) mouse pointer.
    /// Default: none.
    Q_PROPERTY(QPixmap MouseIcon READ MouseIcon WRITE setMouseIcon)
    /// The background picture of the list.
    /// Default: none.
    Q_PROPERTY(QPixmap Picture READ Picture WRITE setPicture)
    /// Where the background picture goes: 0 top left, 1 top right, 2 bottom left, 3 bottom right, 4 centre, 5 tiled.
    /// Default: 0.
    Q_PROPERTY(int PictureAlignment READ PictureAlignment WRITE setPictureAlignment)
    /// How the icon views arrange their items: 0 none, 1 left, 2 top.
    /// Default: 0.
    Q_PROPERTY(int Arrange READ Arrange WRITE setArrange)
    /// 0 flat, 1 3-D.
    /// Default: 1.
    Q_PROPERTY(int Appearance READ Appearance WRITE setAppearance)
    /// Hides the column headers of the details view.
    /// Default: false.
    Q_PROPERTY(bool HideColumnHeaders READ HideColumnHeaders WRITE setHideColumnHeaders)
    /// Hides the selection while the list does not have the focus.
    /// Default: false.
    Q_PROPERTY(bool HideSelection READ HideSelection WRITE setHideSelection)
    /// Lets the user select more than one item (Ctrl-click adds items).
    /// Default: false.
    Q_PROPERTY(bool MultiSelect READ MultiSelect WRITE setMultiSelect)
    /// Lets the user drag the columns of the details view into another order.
    /// Default: false.
    Q_PROPERTY(bool AllowColumnReorder READ AllowColumnReorder WRITE setAllowColumnReorder)
    /// Draws flat scroll bars.
    /// Default: false.
    Q_PROPERTY(bool FlatScrollBar READ FlatScrollBar WRITE setFlatScrollBar)
    /// Highlights the whole row of a selected item in the details view.
    /// Default: false.
    Q_PROPERTY(bool FullRowSelect READ FullRowSelect WRITE setFullRowSelect)
    /// Draws grid lines between the rows and columns of the details view.
    /// Default: false.
    Q_PROPERTY(bool GridLines READ GridLines WRITE setGridLines)
    /// Highlights the item under the mouse.
    /// Default: false.
    Q_PROPERTY(bool HotTracking READ HotTracking WRITE setHotTracking)
    /// Selects the item the mouse rests on.
    /// Default: false.
    Q_PROPERTY(bool HoverSelection READ HoverSelection WRITE setHoverSelection)
    /// The item that the item members address, 1-based; 0 for none. Saved as it is, dropped on loading.
    /// Default: 0.
    Q_PROPERTY(int ItemIndex READ ItemIndex WRITE setItemIndex DESIGNABLE false STORED false)
    /// The display name last given to an item.
    /// Default: "".
    Q_PROPERTY(QString ItemDisplayName READ ItemDisplayName WRITE setItemDisplayName DESIGNABLE false STORED false)
    /// The real name of the item at ItemIndex.
    /// Default: "".
    Q_PROPERTY(QString ItemName READ ItemName WRITE setItemName DESIGNABLE false STORED false)
    /// The number of items. Saved as it is, dropped on loading.
    /// Default: 0.
    Q_PROPERTY(int ItemCount READ ItemCount DESIGNABLE false STORED false)
    /// Wraps long names in the icon views.
    /// Default: true.
    Q_PROPERTY(bool LabelWrap READ LabelWrap WRITE setLabelWrap)
    /// 0 large icons, 1 small icons, 2 list, 3 details (report).
    /// Default: 3.
    Q_PROPERTY(int View READ View WRITE setView)
    /// The large image key last given to an item.
    /// Default: "".
    Q_PROPERTY(QString ItemIcon READ ItemIcon WRITE setItemIcon DESIGNABLE false STORED false)
    /// The small image key last given to an item.
    /// Default: "0".
    Q_PROPERTY(QString ItemSmallIcon READ ItemSmallIcon WRITE setItemSmallIcon DESIGNABLE false STORED false)
    /// The index of the first item the user selected, 0 for none.
    /// Default: 0.
    Q_PROPERTY(int ItemSelected READ ItemSelected WRITE setItemSelected DESIGNABLE false STORED false)
    /// The tag last given to an item.
    /// Default: "".
    Q_PROPERTY(QString ItemTag READ ItemTag WRITE setItemTag DESIGNABLE false STORED false)
    /// The image that the image members address, 1-based. Saved as it is, dropped on loading.
    /// Default: 0.
    Q_PROPERTY(int ImageIndex READ ImageIndex WRITE setImageIndex DESIGNABLE false STORED false)
    /// The number of images in the image list addressed. Saved as it is, dropped on loading.
    /// Default: 0.
    Q_PROPERTY(int ImageCount READ ImageCount DESIGNABLE false STORED false)
    /// Whether the image members address Image16 (true) or Image32 (false).
    /// Default: false.
    Q_PROPERTY(bool ImageSmall READ ImageSmall WRITE setImageSmall DESIGNABLE false STORED false)
    /// The key last given to an image.
    /// Default: "".
    Q_PROPERTY(QString ImageKey READ ImageKey WRITE setImageKey DESIGNABLE false STORED false)
    /// Shows the file count and dates of folders in the detail columns.
    /// Default: false.
    Q_PROPERTY(bool ShowFolderDetails READ ShowFolderDetails WRITE setShowFolderDetails)
    /// Whether the item at ItemIndex is drawn bold.
    /// Default: false.
    Q_PROPERTY(bool ItemBold READ ItemBold WRITE setItemBold DESIGNABLE false STORED false)
    /// 0 manual, 1 automatic: whether dragging items starts by itself.
    /// Default: 1.
    Q_PROPERTY(int OLEDragMode READ OLEDragMode WRITE setOLEDragMode)
    /// 0 none, 1 manual, 2 automatic: whether and how the list takes dropped files.
    /// Default: 2.
    Q_PROPERTY(int OLEDropMode READ OLEDropMode WRITE setOLEDropMode)
    /// Milliseconds between automatic refreshes at run time, 0 for none.
    /// Default: 0.
    Q_PROPERTY(int RefreshInterval READ RefreshInterval WRITE setRefreshInterval)
    /// A name pattern (* ? # [list]) that listed files must match; "" lists everything.
    /// Default: "".
    Q_PROPERTY(QString Filter READ Filter WRITE setFilter)
    /// The bytes in the files that matched Filter in the last listing.
    /// Default: 0.
    Q_PROPERTY(int TotalSize READ TotalSize WRITE setTotalSize DESIGNABLE false STORED false)
    /// Lists hidden files and folders (dot names and names in the folder's ".hidden").
    /// Default: false.
    Q_PROPERTY(bool AllowHiddenFiles READ AllowHiddenFiles WRITE setAllowHiddenFiles)
    /// Lists system entries (devices, sockets, FIFOs, pseudo file-system mounts).
    /// Default: false.
    Q_PROPERTY(bool AllowSystemFiles READ AllowSystemFiles WRITE setAllowSystemFiles)
    /// Lets the user rename items by editing their labels.
    /// Default: true.
    Q_PROPERTY(bool AllowLabelEdit READ AllowLabelEdit WRITE setAllowLabelEdit)
    /// The tag last given to an image.
    /// Default: "0".
    Q_PROPERTY(QString ImageTag READ ImageTag WRITE setImageTag DESIGNABLE false STORED false)
    /// Delete moves items to the desktop's trash (freedesktop.org layout, restorable
    /// by file managers) instead of removing them from the disk.
    /// Default: false.
    Q_PROPERTY(bool DeleteToTrash READ DeleteToTrash WRITE setDeleteToTrash)

public:
    /// The pseudo-paths, compared without regard to case.
    static inline const QString MyComputer = Kelocontrols::FileListFilter::MyComputer;
    static inline const QString MyFolders = Kelocontrols::FileListFilter::MyFolders;
    /// The message shown when a fill lists nothing.
    static inline const QString EmptyFolderMessage = QStringLiteral("There are no items to show in this folder.");

    explicit KelofileView(QWidget *parent = nullptr);
    ~KelofileView() override;

    // Appearance, passed to ListFiles
    KELO_CLASSIC_ACCESSORS(BackColor)
    KELO_CLASSIC_ACCESSORS(ForeColor)
    KELO_CLASSIC_ACCESSORS(Enabled)
    KELO_CLASSIC_ACCESSORS(Font)
    int BorderStyle() const;
    void setBorderStyle(int style);
    KELO_CLASSIC_ACCESSORS(MousePointer)
    QPixmap MouseIcon() const;
    void setMouseIcon(const QPixmap &icon);
    QPixmap Picture() const;
    void setPicture(const QPixmap &picture);
    int PictureAlignment() const;
    void setPictureAlignment(int alignment);
    int Arrange() const;
    void setArrange(int arrange);
    int Appearance() const;
    void setAppearance(int appearance);
    bool HideColumnHeaders() const;
    void setHideColumnHeaders(bool hide);
    bool HideSelection() const;
    void setHideSelection(bool hide);
    bool MultiSelect() const;
    void setMultiSelect(bool multi);
    bool AllowColumnReorder() const;
    void setAllowColumnReorder(bool allow);
    bool FlatScrollBar() const;
    void setFlatScrollBar(bool flat);
    bool FullRowSelect() const;
    void setFullRowSelect(bool full);
    bool GridLines() const;
    void setGridLines(bool on);
    bool HotTracking() const;
    void setHotTracking(bool on);
    bool HoverSelection() const;
    void setHoverSelection(bool on);
    bool LabelWrap() const;
    void setLabelWrap(bool wrap);
    /// 0 large icons, 1 small icons, 2 list, 3 details (report).
    int View() const;
    void setView(int view);

    // What is listed
    QString Path() const;
    /// Stores the folder to show; the list follows at the next fill.
    void setPath(const QString &path);
    QString PathRoot() const;
    /// Stores the root, makes it the Path and fills the list.
    void setPathRoot(const QString &pathRoot);
    bool LimitToRoot() const;
    void setLimitToRoot(bool limit);
    bool ShowFolders() const;
    /// Stores the flag and fills the list.
    void setShowFolders(bool show);
    bool ShowFolderDetails() const;
    void setShowFolderDetails(bool show);
    QString Filter() const;
    void setFilter(const QString &filter);
    /// Bytes in the files that matched Filter in the last listing, hidden and system ones included.
    int TotalSize() const;
    void setTotalSize(int bytes);
    bool AllowHiddenFiles() const;
    void setAllowHiddenFiles(bool allow);
    bool AllowSystemFiles() const;
    void setAllowSystemFiles(bool allow);
    bool AllowLabelEdit() const;
    void setAllowLabelEdit(bool allow);
    /// 0 none, 1 manual (the host calls OLEDrag(); the default), 2 automatic (dragging selected items).
    int OLEDragMode() const;
    void setOLEDragMode(int mode);
    /// 0 none, 1 manual (OLEDragOver / OLEDragDrop decide), 2 automatic (the default: copy or move files in).
    int OLEDropMode() const;
    void setOLEDropMode(int mode);
    /// Whether Delete moves items to the desktop's trash instead of removing them (default false).
    bool DeleteToTrash() const;
    void setDeleteToTrash(bool toTrash);
    /// Milliseconds between automatic refreshes, 0 for none.
    int RefreshInterval() const;
    void setRefreshInterval(int milliseconds);

    /// The "My Folders" set the host fills in NeedMyFolders.
    QStringList &MyFoldersList();

    // Item members (ItemIndex is 1-based; 0 or an index past the end addresses nothing)
    int ItemIndex() const;
    void setItemIndex(int index);
    int ItemCount() const;
    QString ItemDisplayName() const;
    void setItemDisplayName(const QString &text);
    /// The real name of the item (the file or folder name; a drive's root).
    QString ItemName() const;
    void setItemName(const QString &name);
    QString ItemIcon() const;
    /// Sets the item's large image key; raises 35601 when Image32 has no such key.
    void setItemIcon(const QString &key);
    QString ItemSmallIcon() const;
    /// Sets the item's small image key; raises 35601 when Image16 has no such key.
    void setItemSmallIcon(const QString &key);
    /// The index of the first item the user selected, 0 for none.
    int ItemSelected() const;
    /// Selects the item at @p index (0 clears the selection).
    void setItemSelected(int index);
    QString ItemTag() const;
    void setItemTag(const QString &tag);
    bool ItemBold() const;
    void setItemBold(bool bold);
    /**
     * Adds @p Filename (a full path) as a file item when a file exists
     * there, else as a folder item; a name with nothing on disk behind it
     * is added as a folder item anyway (a "virtual" folder, type "Folder").
     * Raises BeforeAddItem / AfterAddItem; returns the new index, or 0 when
     * a handler cancelled or the entry is hidden or system and not allowed.
     */
    Q_INVOKABLE int ItemAddNew(const QString &Filename);
    /// Removes the item at @p Index (0: at ItemIndex); nothing happens for an index out of range.
    Q_INVOKABLE void ItemRemove(int Index = 0);
    Q_INVOKABLE void ItemClear();

    // Image members (on Image16 when ImageSmall, else Image32)
    int ImageIndex() const;
    void setImageIndex(int index);
    int ImageCount() const;
    bool ImageSmall() const;
    void setImageSmall(bool small);
    QString ImageKey() const;
    void setImageKey(const QString &key);
    QString ImageTag() const;
    void setImageTag(const QString &tag);
    /// Adds @p MyImage under @p MyKey and returns its index; raises 35602 for a key already there.
    Q_INVOKABLE int ImageAddNew(const QPixmap &MyImage, const QString &MyKey);
    /// Removes the image with key @p MyKey; nothing happens when there is none.
    Q_INVOKABLE void ImageRemove(const QString &MyKey);

    /**
     * Brings the list up to date in place: for a folder, items whose file
     * or folder changed get their new texts, new entries are added at the
     * end (with BeforeAddItem / AfterAddItem), vanished ones removed, then
     * AfterPaint, and RefreshFoundChanges when anything changed. Items are
     * matched by their RealName without regard to case. For "My Folders"
     * the set is dropped and listed again (NeedMyFolders is raised); for
     * "My Computer" nothing happens. RefreshTimer does the same for
     * folders every RefreshInterval milliseconds at run time.
     */
    Q_INVOKABLE void Refresh();

    /**
     * Shows the parent of Path: the parent folder, or PathRoot when Path is
     * the root of the file system (or "", after a search, once an entry of
     * "My Folders" was opened); "My Folders" when Path is the "My Folders"
     * entry the user went down through (or "" with none remembered). With
     * LimitToRoot and a real PathRoot, a new path that does not begin with
     * PathRoot (without regard to case; a plain prefix test, so /data2 is
     * inside /data) is refused silently.
     */
    Q_INVOKABLE void GoUp();

    /**
     * Lists the entries below @p SearchRoot whose names match @p SearchFor
     * (a Like pattern without regard to case; "" matches everything)
     * instead of one folder: in each folder its matching files, then each
     * sub-folder's matches (when @p SearchSubdirectories) followed by the
     * sub-folder itself when its name matches. Path becomes "" (so Refresh
     * and the timer leave the result alone) and TotalSize the bytes of the
     * matching files. Raises BeforeAddItem / AfterAddItem per item and
     * AfterPaint at the end, not ChangedFolder or BeforePaint; shows
     * "There are no items to show in this folder." when nothing matched.
     *
     * Symbolic links to folders are listed when they match but never
     * searched into, so a search neither loops nor leaves the tree;
     * unreadable folders are skipped; pseudo file-system mounts are
     * searched into only with AllowSystemFiles. Raises PathNotFound (76)
     * or PermissionDenied (70) when SearchRoot itself cannot be listed.
     *
     * While it walks a large tree the search handles pending events every
     * few tens of milliseconds, so the window keeps painting; a host button
     * or handler calls StopSearch() to end it early. Fills, refreshes and
     * another Search started meanwhile do nothing.
     */
    Q_INVOKABLE void Search(
        const QString &SearchFor = QString(), const QString &SearchRoot = QString(), bool SearchSubdirectories = false);
    /// Ends a running Search at the next folder; what was found so far is listed. Nothing happens otherwise.
    Q_INVOKABLE void StopSearch();

    /**
     * Starts dragging the selected items' paths (OLEStartDrag, OLESetData,
     * OLEGiveFeedback, OLECompleteDrag); returns when the drag ends.
     * Nothing happens with OLEDragMode 0.
     */
    Q_INVOKABLE void OLEDrag();

    Kelocontrols::ListView *listFiles() const;
    Kelocontrols::ImageList *image32() const;
    Kelocontrols::ImageList *image16() const;

    const Kelocontrols::PropertyTableBase &propertyTable() const override;
    QSize sizeHint() const override;

Q_SIGNALS:
    void NeedMyFolders(QStringList &MyFolders);
    void ItemClick(int &Index);
    void RefreshFoundChanges();
    void ChangedFolder(int &Cancel);
    void AfterLabelEdit(int &Cancel, QString &NewString);
    void BeforeLabelEdit(int &Cancel);
    void AfterAddItem(int &Index);
    void BeforeAddItem(int &Cancel);
    void BeforePaint(int &Cancel);
    void AfterPaint();
    KELO_CLASSIC_CLICK_EVENTS
    KELO_CLASSIC_KEY_EVENTS
    KELO_CLASSIC_MOUSE_EVENTS
    /// A drag from the list begins; AllowedEffects (1 copy + 2 move) set to 0 cancels it.
    void OLEStartDrag(QMimeData *Data, int &AllowedEffects);
    /// The drag's data is asked for in DataFormat (15, the file list); the host may add to Data.
    void OLESetData(QMimeData *Data, short &DataFormat);
    void OLEGiveFeedback(int &Effect, bool &DefaultCursors);
    /// State: 0 entering, 1 leaving, 2 over. Raised with OLEDropMode 1.
    void OLEDragOver(QMimeData *Data, int &Effect, short &Button, short &Shift, float &X, float &Y, short &State);
    /// Raised with OLEDropMode 1; the Effect the handler leaves is the drop's.
    void OLEDragDrop(QMimeData *Data, int &Effect, short &Button, short &Shift, float &X, float &Y);
    void OLECompleteDrag(int &Effect);

protected:
    void propertiesLoaded() override;
    void userModeChanged() override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    friend class Kelocontrols::FileViewCommands;
    friend class Kelocontrols::FileViewDragDrop;
    friend class Kelocontrols::FileViewLabelEdit;
    friend class Kelocontrols::FileViewFill;
    friend class Kelocontrols::FileViewRefresh;
    friend class Kelocontrols::FileViewSearch;
    friend class Kelocontrols::FileViewWatch;
    class Private;

    void forwardStockEvents();
    void sortByHeader(int column);
    void openSelectedItem();
    bool navigationKey(QKeyEvent *event);
    bool eventFilter(QObject *watched, QEvent *event) override;
    void fillAfterShow();
    void refreshTick();
    void applyRefreshTimer();

    static const Kelocontrols::PropertyTable<KelofileView> &table();

    std::unique_ptr<Private> const d;
};
