#include "KelofileView.h"

#include "CommonFile.h"
#include "Conversions.h"
#include "FileItemSource.h"
#include "FileSystem.h"
#include "FileTypes.h"
#include "FileViewImages.h"
#include "FileViewPropertyTable.h"
#include "ImageList.h"
#include "Like.h"
#include "ListView.h"
#include "ListViewModel.h"
#include "PictureBox.h"
#include "ReportView.h"
#include "RuntimeError.h"
#include "StockEventFilter.h"

#include <QLineEdit>
#include <QSet>
#include <QShowEvent>
#include <QTimer>

#include <limits>

using namespace Kelocontrols;

namespace {

// Layout of the message line, in twips as the control's geometry was
// designed (15 twips to the pixel).
constexpr int TwipsPerPixel = 15;
constexpr int MessageLeft = 120;
constexpr int MessageTopReport = 180; // plus 30 twips per point of font size: below the headers
constexpr int MessageTwipsPerPoint = 30;
constexpr int MessageTopOther = 120;

// Files without an extension share this image key; no extension can hold a dot.
const QString NoExtensionKey = QStringLiteral(".");
const QString ExeTag = QStringLiteral("exe");
constexpr int RealNameSubItem = 10;

bool isPseudoPath(const QString &path, const QString &pseudo)
{
    return path.compare(pseudo, Qt::CaseInsensitive) == 0;
}

// Publishes the items a fill appended to the views in one go, however the fill ends.
class BatchGuard
{
public:
    explicit BatchGuard(ListViewModel *model)
        : m_model(model)
    {
        m_model->beginBatch();
    }
    ~BatchGuard() { m_model->endBatch(); }
    BatchGuard(const BatchGuard &) = delete;
    BatchGuard &operator=(const BatchGuard &) = delete;

private:
    ListViewModel *m_model;
};

QList<ColumnHeader> fileColumns()
{
    const auto right = Qt::AlignRight | Qt::AlignVCenter;
    const auto left = Qt::AlignLeft | Qt::AlignVCenter;
    return {
        {QStringLiteral("Name"), QString(), QStringLiteral("13"), 1305, left, QString()},
        {QStringLiteral("Size"), QString(), QStringLiteral("8"), 2540, right, QString()},
        {QStringLiteral("Type"), QString(), QString(), 2540, left, QString()},
        {QStringLiteral("Modified"), QString(), QStringLiteral("9"), 2540, left, QString()},
        {QStringLiteral("Created"), QString(), QStringLiteral("10"), 582, left, QString()},
        {QStringLiteral("Changed"), QString(), QString(), 6068, left, QString()},
        {QStringLiteral("Folder"), QStringLiteral("Folder"), QString(), 0, left, QString()},
        {QStringLiteral("SortedSize"), QString(), QString(), 0, left, QString()},
        {QStringLiteral("SortedModified"), QString(), QString(), 0, left, QString()},
        {QStringLiteral("SortedCreated"), QString(), QString(), 0, left, QString()},
        {QStringLiteral("RealName"), QStringLiteral("RealName"), QString(), 0, left, QString()},
        {QStringLiteral("Refresh"), QStringLiteral("Refresh"), QString(), 0, left, QString()},
        {QStringLiteral("SortName"), QString(), QString(), 0, left, QString()},
    };
}

} // namespace

KelofileView::KelofileView(QWidget *parent)
    : ControlBase(parent)
    , m_list(new ListView(this))
    , m_image32(new ImageList(QSize(32, 32), this))
    , m_image16(new ImageList(QSize(16, 16), this))
    , m_message(new QLineEdit(this))
    , m_tempPic(new PictureBox(this))
    , m_refreshTimer(new QTimer(this))
    , m_rows(std::make_unique<FileItemSource>())
    , m_images(std::make_unique<FileViewImages>(*m_image32, *m_image16, *m_tempPic))
{
    m_list->setObjectName(QStringLiteral("ListFiles"));
    m_image32->setObjectName(QStringLiteral("Image32"));
    m_image16->setObjectName(QStringLiteral("Image16"));
    m_message->setObjectName(QStringLiteral("txtMessage"));
    m_tempPic->setObjectName(QStringLiteral("TempPic"));
    m_refreshTimer->setObjectName(QStringLiteral("RefreshTimer"));

    m_message->setReadOnly(true);
    m_message->setFrame(false);
    m_message->setFocusPolicy(Qt::NoFocus);
    m_message->hide();
    m_tempPic->hide();
    m_tempPic->setBorderStyle(0);

    m_images->preload();
    m_list->setImageLists(m_image32, m_image16);
    m_list->model()->setSubItemSource(m_rows.get());
    m_list->setColumns(fileColumns());
    m_list->setFont(ambientFont());
    setFocusProxy(m_list);

    connect(m_refreshTimer, &QTimer::timeout, this, &KelofileView::refreshTick);
    connect(m_list, &ListView::itemClicked, this, [this](int row) {
        int index = row + 1;
        Q_EMIT ItemClick(index);
    });
    forwardStockEvents();
    InitProperties();
}

KelofileView::~KelofileView()
{
    // The model may still be asked for texts while the widgets go; the rows must outlive those calls.
    m_list->model()->setSubItemSource(nullptr);
}

const PropertyTableBase &KelofileView::propertyTable() const
{
    return FileViewPropertyTable::instance();
}

QSize KelofileView::sizeHint() const
{
    return QSize(480, 240);
}

// Keys reach the view that has the focus, mouse events its viewport; both views forward.
void KelofileView::forwardStockEvents()
{
    for (QAbstractItemView *view : m_list->views()) {
        auto *keys = new StockEventFilter(view);
        connect(keys, &StockEventFilter::KeyDown, this, &KelofileView::KeyDown);
        connect(keys, &StockEventFilter::KeyPress, this, &KelofileView::KeyPress);
        connect(keys, &StockEventFilter::KeyUp, this, &KelofileView::KeyUp);
        auto *mouse = new StockEventFilter(view->viewport());
        connect(mouse, &StockEventFilter::Click, this, &KelofileView::Click);
        connect(mouse, &StockEventFilter::DblClick, this, &KelofileView::DblClick);
        connect(mouse, &StockEventFilter::MouseDown, this, &KelofileView::MouseDown);
        connect(mouse, &StockEventFilter::MouseMove, this, &KelofileView::MouseMove);
        connect(mouse, &StockEventFilter::MouseUp, this, &KelofileView::MouseUp);
    }
}

// ---------------------------------------------------------------------------
// Life cycle

void KelofileView::propertiesLoaded()
{
    applyRefreshTimer();
    placeMessage();
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
    m_list->setGeometry(rect());
    placeMessage();
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
        fill();
    } catch (const RuntimeError &error) {
        showMessage(error.description());
    }
}

void KelofileView::changeEvent(QEvent *event)
{
    ControlBase::changeEvent(event);
    if (event->type() == QEvent::ParentChange && !m_list->font().resolveMask()) {
        m_list->setFont(ambientFont());
    }
}

// ---------------------------------------------------------------------------
// Filling the list

bool KelofileView::raiseCancellable(void (KelofileView::*signal)(int &))
{
    int cancel = 0;
    (this->*signal)(cancel);
    return cancel == 0;
}

void KelofileView::clearItems()
{
    m_list->model()->clear();
    m_rows->clear();
}

void KelofileView::fill()
{
    if (!UserMode()) {
        clearItems();
        showMessage(objectName() + QStringLiteral(": PathRoot set to '") + m_pathRoot + QLatin1Char('\''));
        return;
    }
    if (!raiseCancellable(&KelofileView::ChangedFolder)) {
        return;
    }
    if (!raiseCancellable(&KelofileView::BeforePaint)) {
        return;
    }
    clearItems();
    m_images->removeTagged(ExeTag);
    if (isPseudoPath(m_path, MyComputer)) {
        listMyComputer();
    } else if (isPseudoPath(m_path, MyFolders)) {
        listMyFolders();
    } else if (!m_path.isEmpty()) {
        listFolder();
    } else {
        return;
    }
    finishFill();
}

void KelofileView::finishFill()
{
    showMessage(m_list->model()->count() == 0 ? EmptyFolderMessage : QString());
    Q_EMIT AfterPaint();
}

void KelofileView::listFolder()
{
    m_totalSize = 0;
    const FolderContents contents = FileSystem::instance().listFolder(m_path);
    BatchGuard batch(m_list->model());
    if (m_showFolders) {
        for (const FileEntry &folder : contents.folders) {
            if (matchesFilter(folder.name)) {
                addFolderItem(folder, contents.path, false);
            }
        }
    }
    for (const FileEntry &file : contents.files) {
        if (matchesFilter(file.name)) {
            addToTotalSize(file.size);
            addFileItem(file, contents.path);
        }
    }
}

void KelofileView::listMyComputer()
{
    const QList<DriveInfo> drives = FileSystem::instance().drives();
    BatchGuard batch(m_list->model());
    for (const DriveInfo &drive : drives) {
        addDriveItem(drive);
    }
}

void KelofileView::listMyFolders()
{
    if (m_myFolders.isEmpty()) {
        Q_EMIT NeedMyFolders(m_myFolders);
    }
    m_totalSize = 0;
    clearItems();
    const FileSystem &fs = FileSystem::instance();
    BatchGuard batch(m_list->model());
    const QStringList folders = m_myFolders; // a handler may edit the set while we walk it
    for (const QString &path : folders) {
        const std::optional<FileEntry> entry = fs.folderExists(path) ? fs.entry(path) : std::nullopt;
        if (!entry) {
            addUnavailableItem(path);
            continue;
        }
        FileEntry folder = *entry;
        const QString cleaned = FileSystem::cleanPath(path);
        if (folder.name.isEmpty()) {
            folder.name = cleaned; // the root of everything has no name of its own
        }
        addFolderItem(folder, FileSystem::parentFolderName(cleaned), fs.driveExists(cleaned));
    }
}

bool KelofileView::matchesFilter(const QString &name) const
{
    return m_filter.isEmpty() || Like(name, m_filter);
}

void KelofileView::addToTotalSize(qint64 bytes)
{
    const qint64 sum = qint64(m_totalSize) + bytes;
    if (sum > std::numeric_limits<qint32>::max()) {
        throw RuntimeError(ErrorNumber::Overflow);
    }
    m_totalSize = qint32(sum);
}

bool KelofileView::passesAttributeRules(const FileEntry &entry) const
{
    if (!m_allowHiddenFiles && (entry.attributes & FileAttribute::Hidden)) {
        return false;
    }
    return m_allowSystemFiles || !(entry.attributes & FileAttribute::System);
}

int KelofileView::appendItem(const QString &text, const QString &key, const QString &path, bool folder, bool hidden,
    int token, const QString &imageTag)
{
    if (m_list->model()->count() == 0) {
        showMessage(QString());
    }
    ListItem item;
    item.text = text;
    item.icon = m_images->ensure(key, path, folder, hidden, imageTag);
    item.smallIcon = item.icon;
    item.sourceToken = token;
    int index = m_list->model()->append(std::move(item)) + 1;
    Q_EMIT AfterAddItem(index);
    return index;
}

int KelofileView::addFileItem(const FileEntry &entry, const QString &folder)
{
    if (!raiseCancellable(&KelofileView::BeforeAddItem) || !passesAttributeRules(entry)) {
        return 0;
    }
    const QString extension = FileSystem::extensionName(entry.name);
    const bool program = extension.compare(ExeTag, Qt::CaseInsensitive) == 0;
    // Each program has its own icon, so its key is its name; the tag lets the next fill drop them.
    const QString key = program ? entry.name : (extension.isEmpty() ? NoExtensionKey : extension);
    FileItemSource::Row row;
    row.entry = entry;
    row.folder = folder;
    row.typeText = FileTypes::instance().fileTypeText(entry.name);
    row.kind = FileItemSource::Kind::File;
    const int token = m_rows->add(std::move(row));
    return appendItem(entry.name, key, FileSystem::buildPath(folder, entry.name), false,
        entry.attributes & FileAttribute::Hidden, token, program ? ExeTag : QString());
}

int KelofileView::addFolderItem(const FileEntry &entry, const QString &folder, bool driveRoot)
{
    if (!raiseCancellable(&KelofileView::BeforeAddItem)) {
        return 0;
    }
    const QString path = FileSystem::buildPath(folder, entry.name);
    // A drive's root is never hidden by the attribute rules; asking costs a mount-table read,
    // so only entries the rules would drop are asked.
    const bool dropped = !passesAttributeRules(entry);
    const bool hiddenOrDropped = dropped || (entry.attributes & FileAttribute::Hidden);
    const bool isDriveRoot = driveRoot || (hiddenOrDropped && FileSystem::instance().driveExists(path));
    if (dropped && !isDriveRoot) {
        return 0;
    }
    FileItemSource::Row row;
    row.entry = entry;
    row.folder = folder;
    row.typeText = FileTypes::instance().folderTypeText();
    row.kind = FileItemSource::Kind::Folder;
    row.details = m_showFolderDetails;
    const int token = m_rows->add(std::move(row));
    const bool hidden = !isDriveRoot && (entry.attributes & FileAttribute::Hidden);
    return appendItem(entry.name, FileTypes::instance().folderTypeText(), path, true, hidden, token);
}

int KelofileView::addDriveItem(const DriveInfo &drive)
{
    if (!raiseCancellable(&KelofileView::BeforeAddItem)) {
        return 0;
    }
    const QString typeName = DriveTypeName(drive);
    FileItemSource::Row row;
    row.entry.name = drive.rootPath;
    row.entry.attributes = FileAttribute::Directory;
    row.typeText = typeName;
    row.kind = FileItemSource::Kind::Drive;
    const int token = m_rows->add(std::move(row));
    return appendItem(drive.rootPath, typeName, drive.rootPath, false, false, token);
}

void KelofileView::addUnavailableItem(const QString &path)
{
    FileItemSource::Row row;
    row.entry.name = path;
    row.kind = FileItemSource::Kind::Unavailable;
    ListItem item;
    item.text = path + QStringLiteral(" (Unavailable)");
    item.icon = QStringLiteral("FolderUnavailable");
    item.smallIcon = item.icon;
    item.sourceToken = m_rows->add(std::move(row));
    if (m_list->model()->count() == 0) {
        showMessage(QString());
    }
    m_list->model()->append(std::move(item));
}

// ---------------------------------------------------------------------------
// Message line

void KelofileView::showMessage(const QString &text)
{
    if (text.isEmpty()) {
        m_message->hide();
        return;
    }
    m_message->setText(text);
    m_message->setFont(m_list->font());
    QPalette p = m_message->palette();
    p.setColor(QPalette::Base, toQColor(m_list->backColor()));
    p.setColor(QPalette::Text, toQColor(m_list->foreColor()));
    m_message->setPalette(p);
    placeMessage();
    m_message->show();
    m_message->raise();
}

void KelofileView::placeMessage()
{
    const QFont font = m_list->font();
    const double points = font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize() * 0.75;
    const int topTwips = m_list->viewMode() == ListView::Report ? MessageTopReport + int(MessageTwipsPerPoint * points)
                                                                : MessageTopOther;
    const int left = MessageLeft / TwipsPerPixel;
    // ListFiles fills the control; the control's own width is right even before a hidden control is laid out.
    const int width = std::max(0, this->width() - 2 * MessageLeft / TwipsPerPixel);
    m_message->setGeometry(left, topTwips / TwipsPerPixel, width, m_message->sizeHint().height());
}

// ---------------------------------------------------------------------------
// Properties passed to ListFiles

OleColor KelofileView::BackColor() const
{
    return m_list->backColor();
}

void KelofileView::setBackColor(OleColor color)
{
    m_list->setBackColor(color);
    propertyChanged("BackColor");
}

OleColor KelofileView::ForeColor() const
{
    return m_list->foreColor();
}

void KelofileView::setForeColor(OleColor color)
{
    m_list->setForeColor(color);
    propertyChanged("ForeColor");
}

bool KelofileView::Enabled() const
{
    return m_list->isEnabled();
}

void KelofileView::setEnabled(bool enabled)
{
    m_list->setEnabled(enabled);
    propertyChanged("Enabled");
}

QFont KelofileView::Font() const
{
    return m_list->font();
}

void KelofileView::setFont(const QFont &font)
{
    m_list->setFont(font);
    placeMessage();
    propertyChanged("Font");
}

#define KELO_LIST_PROPERTY(Type, Name, getter, setter)                                                                 \
    Type KelofileView::Name() const                                                                                    \
    {                                                                                                                  \
        return m_list->getter();                                                                                       \
    }                                                                                                                  \
    void KelofileView::set##Name(Type value)                                                                           \
    {                                                                                                                  \
        m_list->setter(value);                                                                                         \
        propertyChanged(#Name);                                                                                        \
    }

KELO_LIST_PROPERTY(int, BorderStyle, borderStyle, setBorderStyle)
KELO_LIST_PROPERTY(int, MousePointer, mousePointer, setMousePointer)
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
    return m_list->mouseIcon();
}

void KelofileView::setMouseIcon(const QPixmap &icon)
{
    m_list->setMouseIcon(icon);
    propertyChanged("MouseIcon");
}

QPixmap KelofileView::Picture() const
{
    return m_list->picture();
}

void KelofileView::setPicture(const QPixmap &picture)
{
    m_list->setPicture(picture);
    propertyChanged("Picture");
}

int KelofileView::View() const
{
    return m_list->viewMode();
}

void KelofileView::setView(int view)
{
    m_list->setViewMode(view);
    placeMessage();
    propertyChanged("View");
}

// ---------------------------------------------------------------------------
// What is listed

void KelofileView::setPath(const QString &path)
{
    m_path = path;
    propertyChanged("Path");
}

void KelofileView::setPathRoot(const QString &pathRoot)
{
    m_pathRoot = pathRoot;
    propertyChanged("PathRoot");
    m_path = pathRoot;
    propertyChanged("Path");
    fill();
}

void KelofileView::setLimitToRoot(bool limit)
{
    m_limitToRoot = limit;
    propertyChanged("LimitToRoot");
}

void KelofileView::setShowFolders(bool show)
{
    m_showFolders = show;
    propertyChanged("ShowFolders");
    fill();
}

void KelofileView::setShowFolderDetails(bool show)
{
    m_showFolderDetails = show;
    propertyChanged("ShowFolderDetails");
}

void KelofileView::setFilter(const QString &filter)
{
    m_filter = filter;
    propertyChanged("Filter");
}

void KelofileView::setTotalSize(int bytes)
{
    m_totalSize = bytes;
    propertyChanged("TotalSize");
}

void KelofileView::setAllowHiddenFiles(bool allow)
{
    m_allowHiddenFiles = allow;
    propertyChanged("AllowHiddenFiles");
}

void KelofileView::setAllowSystemFiles(bool allow)
{
    m_allowSystemFiles = allow;
    propertyChanged("AllowSystemFiles");
}

void KelofileView::setAllowLabelEdit(bool allow)
{
    m_allowLabelEdit = allow;
    propertyChanged("AllowLabelEdit");
}

void KelofileView::setOLEDragMode(int mode)
{
    m_oleDragMode = mode;
    propertyChanged("OLEDragMode");
}

void KelofileView::setOLEDropMode(int mode)
{
    m_oleDropMode = mode;
    propertyChanged("OLEDropMode");
}

int KelofileView::RefreshInterval() const
{
    return m_refreshTimer->interval();
}

void KelofileView::setRefreshInterval(int milliseconds)
{
    m_refreshTimer->setInterval(std::max(0, milliseconds));
    applyRefreshTimer();
    propertyChanged("RefreshInterval");
}

// ---------------------------------------------------------------------------
// Item members

bool KelofileView::currentItemValid() const
{
    return m_itemIndex >= 1 && m_itemIndex <= m_list->model()->count();
}

void KelofileView::setItemIndex(int index)
{
    requireRunMode();
    if (index < 0) {
        return;
    }
    m_itemIndex = index;
    propertyChanged("ItemIndex");
}

int KelofileView::ItemCount() const
{
    return m_list->model()->count();
}

QString KelofileView::ItemDisplayName() const
{
    return currentItemValid() ? m_list->model()->item(currentRow()).text : QString();
}

void KelofileView::setItemDisplayName(const QString &text)
{
    requireRunMode();
    m_itemDisplayName = text;
    if (currentItemValid()) {
        m_list->model()->setText(currentRow(), text);
    }
    propertyChanged("ItemDisplayName");
}

QString KelofileView::ItemName() const
{
    return currentItemValid() ? m_list->model()->subItem(currentRow(), RealNameSubItem) : QString();
}

void KelofileView::setItemName(const QString &name)
{
    requireRunMode();
    m_itemName = name;
    if (currentItemValid()) {
        m_list->model()->setSubItem(currentRow(), RealNameSubItem, name);
    }
    propertyChanged("ItemName");
}

QString KelofileView::ItemIcon() const
{
    return currentItemValid() ? m_list->model()->item(currentRow()).icon : QString();
}

void KelofileView::setItemIcon(const QString &key)
{
    requireRunMode();
    if (currentItemValid()) {
        if (!m_image32->contains(key)) {
            throw RuntimeError(ErrorNumber::ElementNotFound);
        }
        m_list->model()->setIcon(currentRow(), key);
    }
    m_itemIcon = key;
    propertyChanged("ItemIcon");
}

QString KelofileView::ItemSmallIcon() const
{
    return currentItemValid() ? m_list->model()->item(currentRow()).smallIcon : QString();
}

void KelofileView::setItemSmallIcon(const QString &key)
{
    requireRunMode();
    if (currentItemValid()) {
        if (!m_image16->contains(key)) {
            throw RuntimeError(ErrorNumber::ElementNotFound);
        }
        m_list->model()->setSmallIcon(currentRow(), key);
    }
    m_itemSmallIcon = key;
    propertyChanged("ItemSmallIcon");
}

int KelofileView::ItemSelected() const
{
    return m_list->selectedRow() + 1;
}

void KelofileView::setItemSelected(int index)
{
    requireRunMode();
    if (index < 0 || index > ItemCount()) {
        return;
    }
    m_itemSelected = index;
    m_list->selectRow(index - 1);
    propertyChanged("ItemSelected");
}

QString KelofileView::ItemTag() const
{
    return currentItemValid() ? m_list->model()->tag(currentRow()) : QString();
}

void KelofileView::setItemTag(const QString &tag)
{
    requireRunMode();
    m_itemTag = tag;
    if (currentItemValid()) {
        m_list->model()->setTag(currentRow(), tag);
    }
    propertyChanged("ItemTag");
}

bool KelofileView::ItemBold() const
{
    return currentItemValid() && m_list->model()->item(currentRow()).bold;
}

void KelofileView::setItemBold(bool bold)
{
    requireRunMode();
    m_itemBold = bold;
    if (currentItemValid()) {
        m_list->model()->setBold(currentRow(), bold);
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
        return addFileItem(*entry, folder);
    }
    if (entry) {
        return addFolderItem(*entry, folder, fs.driveExists(path));
    }
    // A virtual folder: a name the host wants listed with nothing on disk behind it.
    FileEntry virtualFolder;
    virtualFolder.name = Filename.section(QLatin1Char('/'), -1, -1, QString::SectionSkipEmpty);
    if (virtualFolder.name.isEmpty()) {
        virtualFolder.name = Filename;
    }
    virtualFolder.attributes = FileAttribute::Directory;
    return addFolderItem(virtualFolder, folder, false);
}

void KelofileView::ItemRemove(int Index)
{
    requireRunMode();
    const int index = Index == 0 ? m_itemIndex : Index;
    if (index >= 1 && index <= ItemCount()) {
        m_list->model()->remove(index - 1);
    }
}

void KelofileView::ItemClear()
{
    requireRunMode();
    clearItems();
}

// ---------------------------------------------------------------------------
// Image members

ImageList *KelofileView::currentImageList() const
{
    return m_imageSmall ? m_image16 : m_image32;
}

void KelofileView::setImageIndex(int index)
{
    if (index < 0 || index > ImageCount()) {
        return;
    }
    m_imageIndex = index;
    propertyChanged("ImageIndex");
}

int KelofileView::ImageCount() const
{
    return currentImageList()->count();
}

void KelofileView::setImageSmall(bool small)
{
    m_imageSmall = small;
    propertyChanged("ImageSmall");
}

QString KelofileView::ImageKey() const
{
    const ImageList *list = currentImageList();
    return m_imageIndex >= 1 && m_imageIndex <= list->count() ? list->key(m_imageIndex) : QString();
}

void KelofileView::setImageKey(const QString &key)
{
    ImageList *list = currentImageList();
    if (m_imageIndex >= 1 && m_imageIndex <= list->count()) {
        list->setKey(m_imageIndex, key);
        m_list->model()->picturesChanged();
    }
    m_imageKey = key;
    propertyChanged("ImageKey");
}

QString KelofileView::ImageTag() const
{
    const ImageList *list = currentImageList();
    return m_imageIndex >= 1 && m_imageIndex <= list->count() ? list->tag(m_imageIndex).toString() : QString();
}

void KelofileView::setImageTag(const QString &tag)
{
    ImageList *list = currentImageList();
    if (m_imageIndex >= 1 && m_imageIndex <= list->count()) {
        list->setTag(m_imageIndex, tag);
    }
    m_imageTag = tag;
    propertyChanged("ImageTag");
}

int KelofileView::ImageAddNew(const QPixmap &MyImage, const QString &MyKey)
{
    const int index = currentImageList()->add(MyImage, MyKey);
    m_list->model()->picturesChanged();
    return index;
}

void KelofileView::ImageRemove(const QString &MyKey)
{
    ImageList *list = currentImageList();
    if (list->contains(MyKey)) {
        list->remove(MyKey);
        m_list->model()->picturesChanged();
    }
}

// ---------------------------------------------------------------------------
// Bringing the list up to date in place

namespace {
constexpr int RefreshSubItem = 11;
const QString RemoveMark = QStringLiteral("RemoveThis");
} // namespace

void KelofileView::Refresh()
{
    if (isPseudoPath(m_path, MyFolders)) {
        m_myFolders.clear(); // the host supplies the folders afresh
        listMyFolders();
        finishFill();
    } else if (!isPseudoPath(m_path, MyComputer)) {
        refreshInPlace();
    }
}

void KelofileView::refreshTick()
{
    if (!UserMode() || isPseudoPath(m_path, MyFolders) || isPseudoPath(m_path, MyComputer)) {
        return;
    }
    try {
        refreshInPlace();
    } catch (const RuntimeError &error) {
        showMessage(error.description()); // a tick has no caller to raise to
    }
}

void KelofileView::applyRefreshTimer()
{
    if (UserMode() && m_refreshTimer->interval() > 0) {
        m_refreshTimer->start();
    } else {
        m_refreshTimer->stop();
    }
}

void KelofileView::refreshInPlace()
{
    if (m_path.isEmpty()) {
        return;
    }
    const FolderContents contents = FileSystem::instance().listFolder(m_path);
    ListViewModel *model = m_list->model();
    model->setSubItemOfAll(RefreshSubItem, RemoveMark);
    // Folded RealName -> the first row with it (walking backwards, the first row is written last).
    QHash<QString, int> rowsByName;
    rowsByName.reserve(model->count());
    for (int row = model->count() - 1; row >= 0; --row) {
        rowsByName[model->subItem(row, RealNameSubItem).toCaseFolded()] = row;
    }

    bool changed = false;
    {
        BatchGuard batch(model);
        if (m_showFolders) {
            for (const FileEntry &folder : contents.folders) {
                if (matchesFilter(folder.name)) {
                    changed |= updateItem(folder, contents.path, true, rowsByName);
                }
            }
        }
        for (const FileEntry &file : contents.files) {
            if (matchesFilter(file.name)) {
                changed |= updateItem(file, contents.path, false, rowsByName);
            }
        }
    }
    for (int row = model->count() - 1; row >= 0; --row) {
        if (model->subItem(row, RefreshSubItem) == RemoveMark) {
            model->remove(row);
            changed = true;
        }
    }
    finishFill();
    if (changed) {
        Q_EMIT RefreshFoundChanges();
    }
}

// Whether the item at @p row still shows a file exactly as @p fresh describes it.
bool KelofileView::sameFileRow(int row, const FileItemSource::Row &fresh) const
{
    const ListViewModel *model = m_list->model();
    const int token = model->item(row).sourceToken;
    if (token < 0 || model->hasWrittenSubItems(row)) {
        return false;
    }
    const FileItemSource::Row &old = m_rows->row(token);
    return old.kind == fresh.kind && old.folder == fresh.folder && old.typeText == fresh.typeText
        && old.entry.name == fresh.entry.name && old.entry.size == fresh.entry.size
        && old.entry.modified == fresh.entry.modified && old.entry.created == fresh.entry.created;
}

// Updates the item of one entry on disk, or adds it; true when that changed the list.
bool KelofileView::updateItem(
    const FileEntry &entry, const QString &folder, bool folderItem, QHash<QString, int> &rowsByName)
{
    ListViewModel *model = m_list->model();
    const QString key = entry.name.toCaseFolded();
    const auto found = rowsByName.constFind(key);
    if (found == rowsByName.constEnd()) {
        const int countBefore = model->count();
        folderItem ? addFolderItem(entry, folder, false) : addFileItem(entry, folder);
        if (model->count() > countBefore) {
            rowsByName.insert(key, model->count() - 1);
        }
        return true;
    }
    const int row = *found;
    FileItemSource::Row fresh;
    fresh.entry = entry;
    fresh.folder = folder;
    fresh.kind = folderItem ? FileItemSource::Kind::Folder : FileItemSource::Kind::File;
    fresh.typeText
        = folderItem ? FileTypes::instance().folderTypeText() : FileTypes::instance().fileTypeText(entry.name);
    fresh.details = m_showFolderDetails;
    if (!folderItem && sameFileRow(row, fresh)) {
        model->setSubItem(row, RefreshSubItem, QString(), false);
        return false; // same facts, same texts: nothing to format and compare
    }
    const QStringList texts = m_rows->texts(fresh);
    bool changed = false;
    for (int n = 1; n <= texts.size(); ++n) {
        if (n == RefreshSubItem) {
            continue;
        }
        const QString &now = texts.at(n - 1);
        if (model->subItem(row, n).compare(now, Qt::CaseInsensitive) != 0) {
            model->setSubItem(row, n, now);
            changed = true;
        }
    }
    model->setSubItem(row, RefreshSubItem, QString(), false);
    return changed;
}
