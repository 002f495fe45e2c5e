#include "KelofileView_p.h"

#include "FileIcon.h"
#include "FileIconProvider.h"
#include "FileListModel.h"
#include "FileSystem.h"
#include "FileViewCommands_p.h"
#include "FileViewDragDrop_p.h"
#include "FileViewLabelEdit_p.h"
#include "ImageList.h"
#include "ListView.h"
#include "RuntimeError.h"
#include "StockEventFilter.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QShowEvent>
#include <QTimer>

using namespace Kelocontrols;

KelofileView::Private::Private(KelofileView &view)
    : list(new ListView(&view))
    , image32(new ImageList(QSize(32, 32), &view))
    , image16(new ImageList(QSize(16, 16), &view))
    , refreshTimer(new QTimer(&view))
    , message(view, *list)
    , images(*image32, *image16)
    , filler(view)
    , refresher(view)
    , searcher(view)
    , face(view)
    , watch(view)
{
    face.keepColorsOn(list);
    face.keepEnabledOn(list);
    face.keepFontOn(list);
    face.keepMousePointerOn(list);
    face.setAppliedStep([this](ClassicFace::Member member) {
        if (member == ClassicFace::Member::Font) {
            message.place();
        }
    });
}

FileListModel *KelofileView::Private::model() const
{
    return list->model();
}

bool KelofileView::Private::currentItemValid() const
{
    return itemIndex >= 1 && itemIndex <= model()->count();
}

ImageList *KelofileView::Private::currentImageList() const
{
    return imageSmall ? image16 : image32;
}

KelofileView::KelofileView(QWidget *parent)
    : ControlBase(parent)
    , d(std::make_unique<Private>(*this))
{
    d->list->setObjectName(QStringLiteral("ListFiles"));
    d->image32->setObjectName(QStringLiteral("Image32"));
    d->image16->setObjectName(QStringLiteral("Image16"));
    d->refreshTimer->setObjectName(QStringLiteral("RefreshTimer"));

    d->images.preload();
    d->list->setImageLists(d->image32, d->image16);
    d->list->setFont(ambientFont());
    setFocusProxy(d->list);

    connect(d->refreshTimer, &QTimer::timeout, this, &KelofileView::refreshTick);
    connect(d->list, &ListView::itemClicked, this, [this](int row) {
        d->itemIndex = row + 1;
        int index = d->itemIndex;
        Q_EMIT ItemClick(index);
    });
    connect(d->list, &ListView::columnClicked, this, &KelofileView::sortByHeader);
    connect(d->list, &ListView::itemDoubleClicked, this, &KelofileView::openSelectedItem);
    // Filters run last-installed first: this one goes before the stock events', so KeyDown comes first.
    for (QAbstractItemView *view : d->list->views()) {
        view->installEventFilter(this);
    }
    forwardStockEvents();
    d->commands = new FileViewCommands(*this);
    d->labelEdit = new FileViewLabelEdit(*this);
    d->dragDrop = new FileViewDragDrop(*this);
    InitProperties();
}

KelofileView::~KelofileView()
{
    // The helpers watch the inner views, which see events until the QWidget part is gone: they go first.
    delete d->dragDrop;
    delete d->labelEdit;
    delete d->commands;
}

const PropertyTableBase &KelofileView::propertyTable() const
{
    return table();
}

QSize KelofileView::sizeHint() const
{
    return QSize(480, 240);
}

ListView *KelofileView::listFiles() const
{
    return d->list;
}

ImageList *KelofileView::image32() const
{
    return d->image32;
}

ImageList *KelofileView::image16() const
{
    return d->image16;
}

// Keys reach the view that has the focus, mouse events its viewport; both views forward.
void KelofileView::forwardStockEvents()
{
    for (QAbstractItemView *view : d->list->views()) {
        forwardKeyEvents(new StockEventFilter(view), this);
        forwardMouseEvents(new StockEventFilter(view->viewport()), this);
    }
}

// A header sorts by the column that holds its sort key (Name by SortName, Size by SortedSize, ...), else by
// itself; clicking the header of the present sort column again reverses the order.
void KelofileView::sortByHeader(int column)
{
    FileListModel *model = d->model();
    for (int c = 0; c < FileListModel::ColumnCount; ++c) {
        model->setColumnIcon(c, QString());
    }
    const int tagged = FileListModel::columnSpec(column).sortColumn;
    const int sortColumn = tagged > 0 ? tagged : column + 1; // 1-based
    ListView *list = d->list;
    if (sortColumn == list->sortKey() + 1 && list->sorted()) {
        const bool ascending = list->sortOrder() == 0;
        list->setSortOrder(ascending ? 1 : 0);
        model->setColumnIcon(column, ascending ? FileIconProvider::SortUp : FileIconProvider::SortDown);
    } else {
        model->setColumnIcon(column, FileIconProvider::SortDown);
        list->setSortKey(sortColumn - 1);
        list->setSortOrder(0);
    }
    list->setSorted(true);
}

// ---------------------------------------------------------------------------
// Navigation

void KelofileView::GoUp()
{
    QString newPath;
    if (QString::compare(d->path, d->myFoldersEntry, Qt::CaseInsensitive) != 0) {
        newPath = FileSystem::parentFolderName(d->path);
        if (newPath.isEmpty()) {
            newPath = d->pathRoot;
        }
    } else {
        newPath = MyFolders;
    }
    const bool realRoot = !FileListFilter::isMyComputer(d->pathRoot) && !FileListFilter::isMyFolders(d->pathRoot);
    if (realRoot && d->limitToRoot
        && QString::compare(newPath.left(d->pathRoot.size()), d->pathRoot, Qt::CaseInsensitive) != 0) {
        return;
    }
    setPath(newPath);
    d->filler.fill();
}

void KelofileView::Search(const QString &SearchFor, const QString &SearchRoot, bool SearchSubdirectories)
{
    d->searcher.run(SearchFor, SearchRoot, SearchSubdirectories);
}

void KelofileView::StopSearch()
{
    d->searcher.stop();
}

// The selected item, not the one under the mouse: a double click has selected it already.
void KelofileView::openSelectedItem()
{
    const int row = d->list->selectedRow();
    if (row < 0 || row >= d->model()->count()) {
        return;
    }
    const FileListRow &item = d->model()->row(row);
    const QString path = FileSystem::buildPath(item.folder, item.realName());
    if (d->enteredFromMyFolders) {
        d->myFoldersEntry = path;
        d->enteredFromMyFolders = false;
    }
    const FileSystem &fs = FileSystem::instance();
    if (fs.fileExists(path)) {
        OpenWithAssociatedApp(path, d->list, false);
    } else if (fs.folderExists(path)) {
        setPath(path);
        d->filler.fill();
    }
}

bool KelofileView::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && d->list->views().contains(watched)) {
        return navigationKey(static_cast<QKeyEvent *>(event));
    }
    return ControlBase::eventFilter(watched, event);
}

bool KelofileView::navigationKey(QKeyEvent *event)
{
    if (d->commands->editing()) {
        return false; // keys the label editor passes on (Return, Escape) are not the list's
    }
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const int key = event->key();
    if ((key == Qt::Key_Return || key == Qt::Key_Enter) && modifiers == Qt::NoModifier) {
        openSelectedItem();
        return true;
    }
    if ((key == Qt::Key_Backspace && modifiers == Qt::NoModifier)
        || (key == Qt::Key_Up && modifiers == Qt::AltModifier)) {
        GoUp();
        return true;
    }
    return d->commands->handleKey(event);
}

// ---------------------------------------------------------------------------
// Life cycle

void KelofileView::propertiesLoaded()
{
    applyRefreshTimer();
    d->message.place();
}

void KelofileView::userModeChanged()
{
    applyRefreshTimer();
    if (UserMode() && isVisible()) {
        fillAfterShow();
    }
}

void KelofileView::resizeEvent(QResizeEvent *event)
{
    ControlBase::resizeEvent(event);
    d->list->setGeometry(rect());
    d->message.place();
}

void KelofileView::showEvent(QShowEvent *event)
{
    ControlBase::showEvent(event);
    // A window coming back from the task bar is not a new showing of the control.
    if (UserMode() && !event->spontaneous()) {
        fillAfterShow();
    }
}

// Nobody can catch an error of a fill that showing started, so it is told on the message line.
void KelofileView::fillAfterShow()
{
    try {
        d->filler.fill();
    } catch (const RuntimeError &error) {
        d->message.show(error.description());
    }
}

void KelofileView::changeEvent(QEvent *event)
{
    ControlBase::changeEvent(event);
    if (event->type() == QEvent::ParentChange && !d->list->font().resolveMask()) {
        d->list->setFont(ambientFont());
    }
}

// ---------------------------------------------------------------------------
// Properties passed to ListFiles

KELO_CLASSIC_FORWARD(KelofileView, BackColor, d->face)
KELO_CLASSIC_FORWARD(KelofileView, ForeColor, d->face)
KELO_CLASSIC_FORWARD(KelofileView, Enabled, d->face)
KELO_CLASSIC_FORWARD(KelofileView, Font, d->face)
KELO_CLASSIC_FORWARD(KelofileView, MousePointer, d->face)

#define KELO_LIST_PROPERTY(Type, Name, getter, setter)                                                                 \
    Type KelofileView::Name() const                                                                                    \
    {                                                                                                                  \
        return d->list->getter();                                                                                      \
    }                                                                                                                  \
    void KelofileView::set##Name(Type value)                                                                           \
    {                                                                                                                  \
        d->list->setter(value);                                                                                        \
        propertyChanged(#Name);                                                                                        \
    }

KELO_LIST_PROPERTY(int, BorderStyle, borderStyle, setBorderStyle)
KELO_LIST_PROPERTY(int, PictureAlignment, pictureAlignment, setPictureAlignment)
KELO_LIST_PROPERTY(int, Arrange, arrange, setArrange)
KELO_LIST_PROPERTY(int, Appearance, appearance, setAppearance)
KELO_LIST_PROPERTY(bool, HideColumnHeaders, hideColumnHeaders, setHideColumnHeaders)
KELO_LIST_PROPERTY(bool, HideSelection, hideSelection, setHideSelection)
KELO_LIST_PROPERTY(bool, MultiSelect, multiSelect, setMultiSelect)
KELO_LIST_PROPERTY(bool, AllowColumnReorder, allowColumnReorder, setAllowColumnReorder)
KELO_LIST_PROPERTY(bool, FlatScrollBar, flatScrollBar, setFlatScrollBar)
KELO_LIST_PROPERTY(bool, FullRowSelect, fullRowSelect, setFullRowSelect)
KELO_LIST_PROPERTY(bool, GridLines, gridLines, setGridLines)
KELO_LIST_PROPERTY(bool, HotTracking, hotTracking, setHotTracking)
KELO_LIST_PROPERTY(bool, HoverSelection, hoverSelection, setHoverSelection)
KELO_LIST_PROPERTY(bool, LabelWrap, labelWrap, setLabelWrap)

#undef KELO_LIST_PROPERTY

QPixmap KelofileView::MouseIcon() const
{
    return d->list->mouseIcon();
}

void KelofileView::setMouseIcon(const QPixmap &icon)
{
    d->list->setMouseIcon(icon);
    propertyChanged("MouseIcon");
}

QPixmap KelofileView::Picture() const
{
    return d->list->picture();
}

void KelofileView::setPicture(const QPixmap &picture)
{
    d->list->setPicture(picture);
    propertyChanged("Picture");
}

int KelofileView::View() const
{
    return d->list->viewMode();
}

void KelofileView::setView(int view)
{
    d->list->setViewMode(view);
    d->message.place();
    propertyChanged("View");
}

// ---------------------------------------------------------------------------
// What is listed

QString KelofileView::Path() const
{
    return d->path;
}

void KelofileView::setPath(const QString &path)
{
    d->path = path;
    propertyChanged("Path");
}

QString KelofileView::PathRoot() const
{
    return d->pathRoot;
}

void KelofileView::setPathRoot(const QString &pathRoot)
{
    d->pathRoot = pathRoot;
    propertyChanged("PathRoot");
    d->path = pathRoot;
    propertyChanged("Path");
    d->filler.fill();
}

bool KelofileView::LimitToRoot() const
{
    return d->limitToRoot;
}

void KelofileView::setLimitToRoot(bool limit)
{
    d->limitToRoot = limit;
    propertyChanged("LimitToRoot");
}

bool KelofileView::ShowFolders() const
{
    return d->showFolders;
}

void KelofileView::setShowFolders(bool show)
{
    d->showFolders = show;
    propertyChanged("ShowFolders");
    d->filler.fill();
}

bool KelofileView::ShowFolderDetails() const
{
    return d->showFolderDetails;
}

void KelofileView::setShowFolderDetails(bool show)
{
    d->showFolderDetails = show;
    propertyChanged("ShowFolderDetails");
}

QString KelofileView::Filter() const
{
    return d->rules.pattern;
}

void KelofileView::setFilter(const QString &filter)
{
    d->rules.pattern = filter;
    propertyChanged("Filter");
}

int KelofileView::TotalSize() const
{
    return d->totalSize;
}

void KelofileView::setTotalSize(int bytes)
{
    d->totalSize = bytes;
    propertyChanged("TotalSize");
}

bool KelofileView::AllowHiddenFiles() const
{
    return d->rules.allowHidden;
}

void KelofileView::setAllowHiddenFiles(bool allow)
{
    d->rules.allowHidden = allow;
    propertyChanged("AllowHiddenFiles");
}

bool KelofileView::AllowSystemFiles() const
{
    return d->rules.allowSystem;
}

void KelofileView::setAllowSystemFiles(bool allow)
{
    d->rules.allowSystem = allow;
    propertyChanged("AllowSystemFiles");
}

bool KelofileView::AllowLabelEdit() const
{
    return d->allowLabelEdit;
}

void KelofileView::setAllowLabelEdit(bool allow)
{
    d->allowLabelEdit = allow;
    propertyChanged("AllowLabelEdit");
}

int KelofileView::OLEDragMode() const
{
    return d->oleDragMode;
}

void KelofileView::setOLEDragMode(int mode)
{
    d->oleDragMode = mode;
    propertyChanged("OLEDragMode");
}

int KelofileView::OLEDropMode() const
{
    return d->oleDropMode;
}

void KelofileView::setOLEDropMode(int mode)
{
    d->oleDropMode = mode;
    propertyChanged("OLEDropMode");
}

bool KelofileView::DeleteToTrash() const
{
    return d->deleteToTrash;
}

void KelofileView::setDeleteToTrash(bool toTrash)
{
    d->deleteToTrash = toTrash;
    propertyChanged("DeleteToTrash");
}

void KelofileView::OLEDrag()
{
    d->dragDrop->startDrag();
}

int KelofileView::RefreshInterval() const
{
    return d->refreshTimer->interval();
}

void KelofileView::setRefreshInterval(int milliseconds)
{
    d->refreshTimer->setInterval(std::max(0, milliseconds));
    applyRefreshTimer();
    propertyChanged("RefreshInterval");
}

QStringList &KelofileView::MyFoldersList()
{
    return d->myFolders;
}

// ---------------------------------------------------------------------------
// Item members

int KelofileView::ItemIndex() const
{
    return d->itemIndex;
}

void KelofileView::setItemIndex(int index)
{
    requireRunMode();
    if (index < 0) {
        return;
    }
    d->itemIndex = index;
    propertyChanged("ItemIndex");
}

int KelofileView::ItemCount() const
{
    return d->model()->count();
}

QString KelofileView::ItemDisplayName() const
{
    return d->currentItemValid() ? d->model()->row(d->currentRow()).text() : QString();
}

void KelofileView::setItemDisplayName(const QString &text)
{
    requireRunMode();
    d->itemDisplayName = text;
    if (d->currentItemValid()) {
        d->model()->setText(d->currentRow(), text);
    }
    propertyChanged("ItemDisplayName");
}

QString KelofileView::ItemName() const
{
    return d->currentItemValid() ? d->model()->row(d->currentRow()).realName() : QString();
}

void KelofileView::setItemName(const QString &name)
{
    requireRunMode();
    d->itemName = name;
    if (d->currentItemValid()) {
        d->model()->setRealName(d->currentRow(), name);
    }
    propertyChanged("ItemName");
}

QString KelofileView::ItemIcon() const
{
    return d->currentItemValid() ? d->model()->row(d->currentRow()).largeIcon : QString();
}

void KelofileView::setItemIcon(const QString &key)
{
    requireRunMode();
    if (d->currentItemValid()) {
        if (!d->image32->contains(key)) {
            throw RuntimeError(ErrorNumber::ElementNotFound);
        }
        d->model()->setIcon(d->currentRow(), key);
    }
    d->itemIcon = key;
    propertyChanged("ItemIcon");
}

QString KelofileView::ItemSmallIcon() const
{
    return d->currentItemValid() ? d->model()->row(d->currentRow()).smallIcon : QString();
}

void KelofileView::setItemSmallIcon(const QString &key)
{
    requireRunMode();
    if (d->currentItemValid()) {
        if (!d->image16->contains(key)) {
            throw RuntimeError(ErrorNumber::ElementNotFound);
        }
        d->model()->setSmallIcon(d->currentRow(), key);
    }
    d->itemSmallIcon = key;
    propertyChanged("ItemSmallIcon");
}

int KelofileView::ItemSelected() const
{
    return d->list->selectedRow() + 1;
}

void KelofileView::setItemSelected(int index)
{
    requireRunMode();
    if (index < 0 || index > ItemCount()) {
        return;
    }
    d->itemSelected = index;
    d->list->selectRow(index - 1);
    propertyChanged("ItemSelected");
}

QString KelofileView::ItemTag() const
{
    return d->currentItemValid() ? d->model()->tag(d->currentRow()) : QString();
}

void KelofileView::setItemTag(const QString &tag)
{
    requireRunMode();
    d->itemTag = tag;
    if (d->currentItemValid()) {
        d->model()->setTag(d->currentRow(), tag);
    }
    propertyChanged("ItemTag");
}

bool KelofileView::ItemBold() const
{
    return d->currentItemValid() && d->model()->row(d->currentRow()).bold;
}

void KelofileView::setItemBold(bool bold)
{
    requireRunMode();
    d->itemBold = bold;
    if (d->currentItemValid()) {
        d->model()->setBold(d->currentRow(), bold);
    }
    propertyChanged("ItemBold");
}

int KelofileView::ItemAddNew(const QString &Filename)
{
    requireRunMode();
    const FileSystem &fs = FileSystem::instance();
    const QString path = FileSystem::cleanPath(Filename);
    const QString folder = FileSystem::parentFolderName(path);
    const std::optional<FileEntry> entry = fs.entry(path);
    if (entry && !entry->isFolder()) {
        return d->filler.addFile(*entry, folder);
    }
    if (entry) {
        return d->filler.addFolder(*entry, folder, fs.driveExists(path));
    }
    // A virtual folder: a name the host wants listed with nothing on disk behind it.
    FileEntry virtualFolder;
    virtualFolder.name = Filename.section(QLatin1Char('/'), -1, -1, QString::SectionSkipEmpty);
    if (virtualFolder.name.isEmpty()) {
        virtualFolder.name = Filename;
    }
    virtualFolder.attributes = FileAttribute::Directory;
    return d->filler.addFolder(virtualFolder, folder, false);
}

void KelofileView::ItemRemove(int Index)
{
    requireRunMode();
    const int index = Index == 0 ? d->itemIndex : Index;
    if (index >= 1 && index <= ItemCount()) {
        d->model()->remove(index - 1);
    }
}

void KelofileView::ItemClear()
{
    requireRunMode();
    d->filler.clearItems();
}

// ---------------------------------------------------------------------------
// Image members

int KelofileView::ImageIndex() const
{
    return d->imageIndex;
}

bool KelofileView::ImageSmall() const
{
    return d->imageSmall;
}

void KelofileView::setImageIndex(int index)
{
    if (index < 0 || index > ImageCount()) {
        return;
    }
    d->imageIndex = index;
    propertyChanged("ImageIndex");
}

int KelofileView::ImageCount() const
{
    return d->currentImageList()->count();
}

void KelofileView::setImageSmall(bool small)
{
    d->imageSmall = small;
    propertyChanged("ImageSmall");
}

QString KelofileView::ImageKey() const
{
    const ImageList *list = d->currentImageList();
    return d->imageIndex >= 1 && d->imageIndex <= list->count() ? list->key(d->imageIndex) : QString();
}

void KelofileView::setImageKey(const QString &key)
{
    ImageList *list = d->currentImageList();
    if (d->imageIndex >= 1 && d->imageIndex <= list->count()) {
        list->setKey(d->imageIndex, key);
        d->model()->picturesChanged();
    }
    d->imageKey = key;
    propertyChanged("ImageKey");
}

QString KelofileView::ImageTag() const
{
    const ImageList *list = d->currentImageList();
    return d->imageIndex >= 1 && d->imageIndex <= list->count() ? list->tag(d->imageIndex).toString() : QString();
}

void KelofileView::setImageTag(const QString &tag)
{
    ImageList *list = d->currentImageList();
    if (d->imageIndex >= 1 && d->imageIndex <= list->count()) {
        list->setTag(d->imageIndex, tag);
    }
    d->imageTag = tag;
    propertyChanged("ImageTag");
}

int KelofileView::ImageAddNew(const QPixmap &MyImage, const QString &MyKey)
{
    const int index = d->currentImageList()->add(MyImage, MyKey);
    d->model()->picturesChanged();
    return index;
}

void KelofileView::ImageRemove(const QString &MyKey)
{
    ImageList *list = d->currentImageList();
    if (list->contains(MyKey)) {
        list->remove(MyKey);
        d->model()->picturesChanged();
    }
}

// ---------------------------------------------------------------------------
// Bringing the list up to date in place

void KelofileView::Refresh()
{
    if (d->busy) {
        return; // a handler's or a modal box's call during a fill or refresh
    }
    if (FileListFilter::isMyFolders(d->path)) {
        KelofileView::Private::Busy busy(*d);
        d->myFolders.clear(); // the host supplies the folders afresh
        d->filler.listMyFolders();
        d->filler.finish();
    } else if (!FileListFilter::isMyComputer(d->path)) {
        d->watch.pass();
    }
}

void KelofileView::refreshTick()
{
    if (!UserMode() || FileListFilter::isMyFolders(d->path) || FileListFilter::isMyComputer(d->path)) {
        return;
    }
    try {
        d->watch.tick(); // the pass only when the folder may have changed
    } catch (const RuntimeError &error) {
        d->message.show(error.description()); // a tick has no caller to raise to
    }
}

void KelofileView::applyRefreshTimer()
{
    if (UserMode() && d->refreshTimer->interval() > 0) {
        d->refreshTimer->start();
    } else {
        d->refreshTimer->stop();
    }
}
