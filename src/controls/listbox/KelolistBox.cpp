#include "KelolistBox.h"

#include "Conversions.h"
#include "ItemModelRecordset.h"
#include "ListBoxModel.h"
#include "ListBoxPropertyTable.h"
#include "RuntimeError.h"
#include "SqlQueryRecordset.h"
#include "StockEventFilter.h"

#include <QCoreApplication>
#include <QEvent>
#include <QItemSelectionModel>
#include <QLabel>
#include <QListView>
#include <QScopedValueRollback>

#include <cmath>
#include <optional>

using namespace Kelocontrols;

namespace {

// A value as text, the way the classic runtime's CStr writes it: Booleans
// are "True" and "False", nothing (an invalid QVariant) is "".
QString variantText(const QVariant &value)
{
    if (value.typeId() == QMetaType::Bool) {
        return value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    }
    return value.toString();
}

// The text of a record's field, or nothing for a NULL or a value that has no text.
std::optional<QString> recordText(const QVariant &value)
{
    if (value.isNull()) {
        return std::nullopt;
    }
    if (value.typeId() == QMetaType::QString) {
        return value.toString();
    }
    if (value.typeId() != QMetaType::Bool && !value.canConvert<QString>()) {
        return std::nullopt;
    }
    return variantText(value);
}

// The 32-bit value of a record's field, or nothing for a NULL or a value that
// is not a number within range.
std::optional<qint32> recordValue(const QVariant &value)
{
    if (value.isNull()) {
        return std::nullopt;
    }
    try {
        return CLng(value);
    } catch (const RuntimeError &) {
        return std::nullopt;
    }
}

// The current record's text in `field`; nothing when it cannot be read.
std::optional<QString> fieldText(const Recordset &records, int field)
{
    try {
        return recordText(records.FieldValue(field));
    } catch (const RuntimeError &) {
        return std::nullopt;
    }
}

// The current record's value in `field`; nothing when it cannot be read.
std::optional<qint32> fieldValue(const Recordset &records, int field)
{
    try {
        return recordValue(records.FieldValue(field));
    } catch (const RuntimeError &) {
        return std::nullopt;
    }
}

QString successText()
{
    return QStringLiteral("");
}

} // namespace

KelolistBox::KelolistBox(QWidget *parent)
    : ControlBase(parent)
    , m_model(new ListBoxModel(this))
    , m_list(new QListView(this))
    , m_label(new QLabel(this))
    , m_backColor(0x80000005)
    , m_foreColor(0x80000008)
{
    m_model->setObjectName(QStringLiteral("listItemsModel"));
    m_list->setObjectName(QStringLiteral("listItems"));
    m_list->setModel(m_model);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    // A list box's lines all have the same height; saying so spares the view
    // from measuring every entry of a long list.
    m_list->setUniformItemSizes(true);
    m_label->setObjectName(QStringLiteral("labItem"));
    m_label->setTextFormat(Qt::PlainText);
    m_label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_label->hide();
    setFocusProxy(m_list);
    connect(
        m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this, &KelolistBox::onListSelectionChanged);
    forwardStockEvents();
    applyColors();
    applyAppearance();
    layoutChildren();
    InitProperties();
}

KelolistBox::~KelolistBox()
{
    // The inner widgets outlive this part of the object while QWidget
    // deletes them; their selection changes must not reach it any more.
    m_list->selectionModel()->disconnect(this);
}

const PropertyTableBase &KelolistBox::propertyTable() const
{
    return ListBoxPropertyTable::instance();
}

// Keys reach the list itself, mouse clicks its viewport.
void KelolistBox::forwardStockEvents()
{
    auto *keys = new StockEventFilter(m_list);
    connect(keys, &StockEventFilter::KeyDown, this, &KelolistBox::KeyDown);
    connect(keys, &StockEventFilter::KeyPress, this, &KelolistBox::KeyPress);
    connect(keys, &StockEventFilter::KeyUp, this, &KelolistBox::KeyUp);
    auto *mouse = new StockEventFilter(m_list->viewport());
    connect(mouse, &StockEventFilter::DblClick, this, &KelolistBox::DblClick);
}

// ---- the list's click ------------------------------------------------------

void KelolistBox::onListSelectionChanged()
{
    if (!m_quietSelection) {
        listItemsClick();
    }
}

// Whatever selected the entry, the label shows the list's text afterwards;
// only the host's Click waits until the list is filled.
void KelolistBox::listItemsClick()
{
    if (!m_populating) {
        Q_EMIT Click();
    }
    m_label->setText(listText());
}

int KelolistBox::listIndex() const
{
    const QModelIndexList selected = m_list->selectionModel()->selectedIndexes();
    return selected.isEmpty() ? -1 : selected.first().row();
}

QString KelolistBox::listText() const
{
    const int row = listIndex();
    return row < 0 ? QString() : m_model->text(row);
}

// Selecting an entry from code is a click on the list, as a user's would be.
void KelolistBox::selectRow(int row)
{
    {
        QScopedValueRollback<bool> quiet(m_quietSelection, true);
        const QModelIndex entry = m_model->index(row);
        if (entry.isValid()) {
            m_list->selectionModel()->setCurrentIndex(entry, QItemSelectionModel::ClearAndSelect);
            m_list->scrollTo(entry);
        } else {
            m_list->selectionModel()->clearSelection();
        }
    }
    listItemsClick();
}

// The default entry is the one holding DefaultValue; without one the
// selection stays as it is.
void KelolistBox::selectDefault()
{
    const int row = m_model->findValue(m_defaultValue);
    if (row >= 0) {
        selectRow(row);
    }
}

// ---- colours, font, appearance ---------------------------------------------

void KelolistBox::setBackColor(OleColor color)
{
    m_backColor = color;
    applyColors();
    propertyChanged("BackColor");
}

void KelolistBox::setForeColor(OleColor color)
{
    m_foreColor = color;
    applyColors();
    propertyChanged("ForeColor");
}

void KelolistBox::applyColors()
{
    QPalette palette = m_list->palette();
    palette.setColor(QPalette::Base, toQColor(m_backColor));
    palette.setColor(QPalette::Text, toQColor(m_foreColor));
    m_list->setPalette(palette);
}

bool KelolistBox::Enabled() const
{
    return !testAttribute(Qt::WA_ForceDisabled);
}

void KelolistBox::setEnabled(bool enabled)
{
    QWidget::setEnabled(enabled);
    propertyChanged("Enabled");
}

QFont KelolistBox::Font() const
{
    return m_list->font();
}

void KelolistBox::setFont(const QFont &font)
{
    m_list->setFont(font);
    propertyChanged("Font");
}

void KelolistBox::setAppearance(int appearance)
{
    if (appearance != 0 && appearance != 1) {
        throw RuntimeError(ErrorNumber::InvalidPropertyValue);
    }
    m_appearance = appearance;
    applyAppearance();
    propertyChanged("Appearance");
}

void KelolistBox::applyAppearance()
{
    if (m_appearance == 0) {
        m_list->setFrameStyle(QFrame::Box | QFrame::Plain);
        m_list->setLineWidth(1);
    } else {
        m_list->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    }
}

QString KelolistBox::ToolTipText() const
{
    return m_list->toolTip();
}

void KelolistBox::setToolTipText(const QString &text)
{
    m_list->setToolTip(text);
    propertyChanged("ToolTipText");
}

void KelolistBox::Refresh()
{
    m_list->viewport()->repaint();
}

// ---- entries ----------------------------------------------------------------

int KelolistBox::ListCount() const
{
    return m_model->count();
}

bool KelolistBox::Sorted() const
{
    return m_model->isSorted();
}

void KelolistBox::AddItem(const QString &Item, const QVariant &Value)
{
    m_populating = true;
    qint32 value = 0;
    try {
        value = CLng(Value);
    } catch (const RuntimeError &) {
        // a value that is not a number leaves the entry's value 0
    }
    {
        QScopedValueRollback<bool> quiet(m_quietSelection, true);
        m_model->addEntry(Item, value);
    }
    QCoreApplication::processEvents();
    m_populating = false;
}

QVariant KelolistBox::Clear()
{
    QScopedValueRollback<bool> quiet(m_quietSelection, true);
    m_model->clear();
    return QVariant();
}

bool KelolistBox::RemoveItem(const QVariant &Value)
{
    if (Value.isValid() && Value.isNull()) {
        return false; // a NULL equals nothing
    }
    const double number = CDbl(Value);
    if (std::trunc(number) != number || number < -2147483648.0 || number > 2147483647.0) {
        return false; // no 32-bit value can equal it
    }
    const int row = m_model->findValue(qint32(number));
    if (row < 0) {
        return false;
    }
    const bool wasSelected = row == listIndex();
    QScopedValueRollback<bool> quiet(m_quietSelection, true);
    m_model->removeEntry(row);
    if (wasSelected) {
        // The view would move the selection to a neighbour; a list box has
        // no selection left once its selected entry is gone.
        m_list->selectionModel()->clear();
    }
    return true;
}

// ---- Text and Value ---------------------------------------------------------

QString KelolistBox::Text() const
{
    const int row = listIndex();
    return row < 0 ? m_defaultText : m_model->text(row);
}

void KelolistBox::setText(const QString &text)
{
    const int row = m_model->findText(text);
    if (row >= 0) {
        m_label->setText(m_model->text(row));
        selectRow(row);
    } else {
        selectDefault();
    }
    propertyChanged("Text");
}

int KelolistBox::Value() const
{
    const int row = listIndex();
    return row < 0 ? m_defaultValue : m_model->value(row);
}

void KelolistBox::setValue(int value)
{
    requireRunMode();
    const int row = m_model->findValue(value);
    if (row >= 0) {
        m_label->setText(m_model->text(row));
        selectRow(row);
    } else {
        selectDefault();
    }
    propertyChanged("Value");
}

void KelolistBox::setDefaultValue(int value)
{
    m_defaultValue = value;
    propertyChanged("DefaultValue");
}

void KelolistBox::setDefaultText(const QString &text)
{
    m_defaultText = text;
    propertyChanged("DefaultText");
}

// ---- the locked display -------------------------------------------------------

void KelolistBox::setLocked(bool locked)
{
    m_locked = locked;
    applyLockDisplay();
    propertyChanged("Locked");
}

void KelolistBox::setLockedAlways(bool lockedAlways)
{
    m_lockedAlways = lockedAlways;
    applyLockDisplay();
    propertyChanged("LockedAlways");
}

void KelolistBox::applyLockDisplay()
{
    const bool showLabel = m_lockedAlways || m_locked;
    m_label->setVisible(showLabel);
    m_list->setVisible(!showLabel);
}

// ---- Populate -------------------------------------------------------------------

QString KelolistBox::Populate(QSqlQuery &ListRecordset, const QVariant &TextColumn, const QVariant &ValueColumn,
    const QVariant &DefaultText, const QVariant &DefaultValue)
{
    SqlQueryRecordset records(ListRecordset);
    return Populate(records, TextColumn, ValueColumn, DefaultText, DefaultValue);
}

QString KelolistBox::Populate(QAbstractItemModel *ListRecordset, const QVariant &TextColumn,
    const QVariant &ValueColumn, const QVariant &DefaultText, const QVariant &DefaultValue)
{
    ItemModelRecordset records(ListRecordset);
    return Populate(records, TextColumn, ValueColumn, DefaultText, DefaultValue);
}

QString KelolistBox::Populate(Recordset &ListRecordset, const QVariant &TextColumn, const QVariant &ValueColumn,
    const QVariant &DefaultText, const QVariant &DefaultValue)
{
    try {
        ListRecordset.MoveFirst();
    } catch (const RuntimeError &error) {
        return error.description();
    }
    int textField = 0;
    try {
        const Recordset::Field field = ListRecordset.Fields(TextColumn);
        field.Name();
        textField = field.Position();
    } catch (const RuntimeError &error) {
        return QStringLiteral("TextColumn=") + variantText(TextColumn) + QStringLiteral(" - ") + error.description();
    }
    int valueField = 0;
    try {
        const Recordset::Field field = ListRecordset.Fields(ValueColumn);
        field.Name();
        valueField = field.Position();
    } catch (const RuntimeError &error) {
        return QStringLiteral("ValueColumn=") + variantText(ValueColumn) + QStringLiteral(" - ") + error.description();
    }

    m_populating = true;
    Clear();
    if (DefaultText.isValid()) {
        addDefaultEntry(DefaultText, DefaultValue);
    }
    readRecords(ListRecordset, textField, valueField);
    QCoreApplication::processEvents();
    m_populating = false;
    return successText();
}

// The default entry heads the list and is selected. A DefaultValue passed
// with it replaces the property; a text that cannot be shown adds no entry,
// while a value that is not a number keeps the property as it is.
void KelolistBox::addDefaultEntry(const QVariant &text, const QVariant &value)
{
    const std::optional<QString> entryText = recordText(text);
    if (value.isValid()) {
        if (const std::optional<qint32> number = recordValue(value)) {
            m_defaultValue = *number;
            propertyChanged("DefaultValue");
        }
    }
    if (!entryText) {
        return;
    }
    int row = 0;
    {
        QScopedValueRollback<bool> quiet(m_quietSelection, true);
        row = m_model->addEntry(*entryText, m_defaultValue);
    }
    selectRow(row);
}

// Reads every record into one batch, so that the views see one insertion.
// A record whose text cannot be read adds no entry; a value that cannot be
// read leaves its entry's value 0. An error while moving on ends the list.
void KelolistBox::readRecords(Recordset &records, int textField, int valueField)
{
    QList<ListBoxModel::Entry> entries;
    while (!records.Eof()) {
        if (std::optional<QString> text = fieldText(records, textField)) {
            entries.append({std::move(*text), fieldValue(records, valueField).value_or(0)});
        }
        try {
            records.MoveNext();
        } catch (const RuntimeError &) {
            break;
        }
    }
    QScopedValueRollback<bool> quiet(m_quietSelection, true);
    m_model->addEntries(std::move(entries));
}

// ---- life cycle and layout ----------------------------------------------------------

void KelolistBox::propertiesLoaded()
{
    applyLockDisplay();
}

QSize KelolistBox::sizeHint() const
{
    return QSize(160, 120);
}

QSize KelolistBox::minimumSizeHint() const
{
    return QSize(40, 20);
}

void KelolistBox::layoutChildren()
{
    m_list->setGeometry(rect());
    m_label->setGeometry(rect());
}

void KelolistBox::resizeEvent(QResizeEvent *event)
{
    ControlBase::resizeEvent(event);
    layoutChildren();
}

// System colours follow the desktop's palette: resolve them again when it changes.
void KelolistBox::changeEvent(QEvent *event)
{
    ControlBase::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        applyColors();
    }
}
