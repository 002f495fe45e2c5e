#include "ListView.h"

#include "FileListModel.h"
#include "IconView.h"
#include "MousePointer.h"
#include "ReportView.h"
#include "RuntimeError.h"

#include <QEvent>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QStackedLayout>

namespace Kelocontrols {

namespace {

void requireOneOf(int value, int first, int last)
{
    if (value < first || value > last) {
        throw RuntimeError(ErrorNumber::InvalidPropertyValue);
    }
}

} // namespace

ListView::ListView(QWidget *parent)
    : QFrame(parent)
    , m_model(new FileListModel(this))
    , m_selection(new QItemSelectionModel(m_model, this))
    , m_report(new ReportView(this))
    , m_icons(new IconView(this))
    , m_stack(new QStackedLayout(this))
    , m_backColor(0x80000005)
    , m_foreColor(0x80000008)
{
    m_report->setObjectName(QStringLiteral("reportView"));
    m_icons->setObjectName(QStringLiteral("iconView"));
    m_report->setBackground(&m_background);
    m_icons->setBackground(&m_background);
    m_stack->setContentsMargins(0, 0, 0, 0);
    m_stack->addWidget(m_report);
    m_stack->addWidget(m_icons);
    setFocusProxy(m_report);
    for (int c = 0; c < FileListModel::ColumnCount; ++c) {
        m_widths << FileListModel::columnSpec(c).width;
    }

    for (QAbstractItemView *view : views()) {
        view->setFrameShape(QFrame::NoFrame);
        view->setEditTriggers(QAbstractItemView::NoEditTriggers);
        connect(view, &QAbstractItemView::clicked, this, [this](const QModelIndex &i) { Q_EMIT itemClicked(i.row()); });
        connect(view, &QAbstractItemView::doubleClicked, this,
            [this](const QModelIndex &i) { Q_EMIT itemDoubleClicked(i.row()); });
        connect(view, &QAbstractItemView::entered, this, &ListView::selectOnHover);
    }
    connect(m_report->header(), &QHeaderView::sectionClicked, this, &ListView::columnClicked);
    connect(m_report->header(), &QHeaderView::sectionResized, this, [this](int column, int, int pixels) {
        if (!m_applyingWidths && pixels > 0 && column < m_widths.size()) {
            m_widths[column] = pixelsToHimetric(pixels);
        }
    });

    attachModel(m_report);
    applyFrame();
    applyPalette();
    applySelectionMode();
    applyIconViewMode();
}

ListView::~ListView() = default;

QList<QAbstractItemView *> ListView::views() const
{
    return {m_report, m_icons};
}

QAbstractItemView *ListView::currentView() const
{
    return m_view == Report ? static_cast<QAbstractItemView *>(m_report) : static_cast<QAbstractItemView *>(m_icons);
}

void ListView::attachModel(QAbstractItemView *view)
{
    QAbstractItemView *other
        = view == m_report ? static_cast<QAbstractItemView *>(m_icons) : static_cast<QAbstractItemView *>(m_report);
    if (other->model() == m_model) {
        other->setModel(nullptr);
    }
    if (view->model() != m_model) {
        view->setModel(m_model);
        QItemSelectionModel *own = view->selectionModel();
        view->setSelectionModel(m_selection);
        if (own != m_selection) {
            delete own;
        }
    }
    m_stack->setCurrentWidget(view);
    setFocusProxy(view);
    applyColumnWidths();
    applyCursor();
}

void ListView::setImageLists(ImageList *large, ImageList *small)
{
    m_model->setImageLists(large, small);
}

void ListView::setColumnWidth(int column, int himetric)
{
    if (column < 0 || column >= m_widths.size()) {
        throw RuntimeError(ErrorNumber::InvalidPropertyValue);
    }
    m_widths[column] = std::max(0, himetric);
    applyColumnWidths();
}

int ListView::columnWidth(int column) const
{
    return m_widths.value(column);
}

int ListView::pixelsToHimetric(int pixels) const
{
    return qRound(pixels * 2540.0 / logicalDpiX());
}

int ListView::himetricToPixels(int himetric) const
{
    // HIMETRIC is 1/100 mm: 2540 units to the inch.
    return qRound(himetric * logicalDpiX() / 2540.0);
}

void ListView::applyColumnWidths()
{
    if (m_report->model() != m_model) {
        return;
    }
    m_applyingWidths = true;
    for (int c = 0; c < m_widths.size(); ++c) {
        const int width = m_widths[c];
        m_report->setColumnHidden(c, width <= 0);
        if (width > 0) {
            m_report->setColumnWidth(c, himetricToPixels(width));
        }
    }
    m_applyingWidths = false;
    m_report->header()->setVisible(!m_hideColumnHeaders);
    m_report->header()->setSectionsMovable(m_allowColumnReorder);
}

void ListView::setViewMode(int view)
{
    requireOneOf(view, Icon, Report);
    m_view = view;
    m_model->setLargeIcons(view == Icon);
    applyIconViewMode();
    attachModel(currentView());
}

void ListView::applyIconViewMode()
{
    switch (m_view) {
    case Icon:
        m_icons->setViewMode(QListView::IconMode);
        m_icons->setIconSize(QSize(32, 32));
        m_icons->setGridSize(QSize(m_labelWrap ? 84 : 120, m_labelWrap ? 72 : 56));
        m_icons->setFlow(m_arrange == 1 ? QListView::TopToBottom : QListView::LeftToRight);
        m_icons->setWrapping(true);
        m_icons->setWordWrap(m_labelWrap);
        break;
    case SmallIcon:
        m_icons->setViewMode(QListView::ListMode);
        m_icons->setIconSize(QSize(16, 16));
        m_icons->setGridSize(QSize(160, 20));
        m_icons->setFlow(m_arrange == 1 ? QListView::TopToBottom : QListView::LeftToRight);
        m_icons->setWrapping(true);
        m_icons->setWordWrap(false);
        break;
    case List:
        m_icons->setViewMode(QListView::ListMode);
        m_icons->setIconSize(QSize(16, 16));
        m_icons->setGridSize(QSize());
        m_icons->setFlow(QListView::TopToBottom);
        m_icons->setWrapping(true);
        m_icons->setWordWrap(false);
        break;
    default:
        break;
    }
    m_icons->setMovement(QListView::Static);
}

void ListView::setBackColor(OleColor color)
{
    m_backColor = color;
    applyPalette();
}

void ListView::setForeColor(OleColor color)
{
    m_foreColor = color;
    applyPalette();
}

void ListView::applyPalette()
{
    for (QAbstractItemView *view : views()) {
        QPalette p = palette();
        const QColor back = toQColor(m_backColor);
        const QColor fore = toQColor(m_foreColor);
        p.setColor(QPalette::Base, back);
        p.setColor(QPalette::Window, back);
        p.setColor(QPalette::Text, fore);
        p.setColor(QPalette::WindowText, fore);
        if (m_hideSelection) {
            // Without focus the selection is not shown at all.
            p.setColor(QPalette::Inactive, QPalette::Highlight, back);
            p.setColor(QPalette::Inactive, QPalette::HighlightedText, fore);
        }
        view->setPalette(p);
    }
}

void ListView::setBorderStyle(int style)
{
    requireOneOf(style, 0, 1);
    m_borderStyle = style;
    applyFrame();
}

void ListView::setAppearance(int appearance)
{
    requireOneOf(appearance, 0, 1);
    m_appearance = appearance;
    applyFrame();
}

void ListView::applyFrame()
{
    if (m_borderStyle == 0) {
        setFrameStyle(QFrame::NoFrame);
    } else if (m_appearance == 0) {
        setFrameStyle(QFrame::Box | QFrame::Plain);
        setLineWidth(1);
    } else {
        setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    }
}

void ListView::setMousePointer(int pointer)
{
    if (!MousePointer::isValid(pointer)) {
        throw RuntimeError(ErrorNumber::InvalidPropertyValue);
    }
    m_mousePointer = pointer;
    applyCursor();
}

void ListView::setMouseIcon(const QPixmap &icon)
{
    m_mouseIcon = icon;
    applyCursor();
}

void ListView::applyCursor()
{
    QWidget *surface = currentView()->viewport();
    if (m_mousePointer == MousePointer::Default) {
        surface->unsetCursor();
    } else {
        surface->setCursor(MousePointer::cursor(m_mousePointer, m_mouseIcon));
    }
}

void ListView::setPicture(const QPixmap &picture)
{
    m_background.picture = picture;
    currentView()->viewport()->update();
}

void ListView::setPictureAlignment(int alignment)
{
    requireOneOf(alignment, ListBackground::TopLeft, ListBackground::Tile);
    m_background.alignment = alignment;
    currentView()->viewport()->update();
}

void ListView::setArrange(int arrange)
{
    requireOneOf(arrange, 0, 2);
    m_arrange = arrange;
    applyIconViewMode();
}

void ListView::setHideColumnHeaders(bool hide)
{
    m_hideColumnHeaders = hide;
    m_report->header()->setVisible(!hide);
}

void ListView::setHideSelection(bool hide)
{
    m_hideSelection = hide;
    applyPalette();
}

void ListView::setMultiSelect(bool multi)
{
    m_multiSelect = multi;
    applySelectionMode();
}

void ListView::setAllowColumnReorder(bool allow)
{
    m_allowColumnReorder = allow;
    m_report->header()->setSectionsMovable(allow);
}

void ListView::setFullRowSelect(bool full)
{
    m_fullRowSelect = full;
    applySelectionMode();
}

void ListView::applySelectionMode()
{
    const auto mode = m_multiSelect ? QAbstractItemView::ExtendedSelection : QAbstractItemView::SingleSelection;
    m_report->setSelectionMode(mode);
    m_icons->setSelectionMode(mode);
    m_report->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_report->setAllColumnsShowFocus(m_fullRowSelect);
    m_model->setFirstColumnSelectable(!m_fullRowSelect);
    m_report->viewport()->update();
}

void ListView::setGridLines(bool on)
{
    m_gridLines = on;
    m_report->setGridLines(on);
}

void ListView::setHotTracking(bool on)
{
    m_hotTracking = on;
    for (QAbstractItemView *view : views()) {
        view->setMouseTracking(m_hotTracking || m_hoverSelection);
        view->viewport()->setAttribute(Qt::WA_Hover, on);
    }
}

void ListView::setHoverSelection(bool on)
{
    m_hoverSelection = on;
    setHotTracking(m_hotTracking);
}

void ListView::selectOnHover(const QModelIndex &index)
{
    if (m_hoverSelection && index.isValid()) {
        selectRow(index.row());
    }
}

void ListView::setLabelWrap(bool wrap)
{
    m_labelWrap = wrap;
    applyIconViewMode();
}

int ListView::sortKey() const
{
    return m_model->sortKey();
}

void ListView::setSortKey(int column)
{
    requireOneOf(column, 0, FileListModel::ColumnCount - 1);
    m_model->setSortKey(column);
}

int ListView::sortOrder() const
{
    return m_model->sortOrder();
}

void ListView::setSortOrder(int order)
{
    requireOneOf(order, 0, 1);
    m_model->setSortOrder(order);
}

bool ListView::sorted() const
{
    return m_model->sorted();
}

void ListView::setSorted(bool sorted)
{
    m_model->setSorted(sorted);
}

int ListView::selectedRow() const
{
    const QModelIndexList rows = m_selection->selectedRows(0);
    int first = -1;
    for (const QModelIndex &i : rows) {
        if (first < 0 || i.row() < first) {
            first = i.row();
        }
    }
    return first;
}

void ListView::selectRow(int row)
{
    if (row < 0 || row >= m_model->rowCount()) {
        m_selection->clearSelection();
        return;
    }
    const QModelIndex index = m_model->index(row, 0);
    m_selection->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

bool ListView::isRowSelected(int row) const
{
    return row >= 0 && row < m_model->rowCount() && m_selection->isSelected(m_model->index(row, 0));
}

void ListView::changeEvent(QEvent *event)
{
    QFrame::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        applyFont();
    } else if (event->type() == QEvent::PaletteChange) {
        applyPalette();
    }
}

void ListView::applyFont()
{
    m_model->setBaseFont(font());
}

} // namespace Kelocontrols
