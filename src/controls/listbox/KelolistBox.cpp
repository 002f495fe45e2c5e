#include "KelolistBox.h"

#include "KelolistBox_p.h"
#include "PropertyValues.h"

#include "ClassicFaceEntries_p.h"
#include "Conversions.h"
#include "ItemModelRecordset_p.h"
#include "ListBoxModel_p.h"
#include "RuntimeError.h"
#include "SqlQueryRecordset_p.h"

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

// The list box saves one value it never loads: "Text", the list's current
// text, written with the default "listItems". Loading applies the lock
// display as soon as "Locked", "LockedAlways" and the properties before them
// are in, before "ToolTipText" and "DefaultText". InitProperties resets only
// the properties the control owns itself (Locked, the saved Value,
// DefaultValue, LockedAlways, DefaultText); colours, font, Enabled,
// Appearance and ToolTipText keep what the list already has.
const PropertyTable<KelolistBox> &KelolistBox::table()
{
    static const PropertyTable<KelolistBox> properties = [] {
        using C = KelolistBox;
        PropertyTable<C> t;
        ClassicFaceEntries<C>(t, [](C &c) -> ClassicFace & { return c.d->face; })
            .backColor(0x80000005)
            .foreColor(0x80000008)
            .enabled()
            .font();
        // The list's current text: saved for the form file's reader, never loaded.
        t.add(
            "Text", QVariant(QStringLiteral("listItems")), [](const C &c) { return QVariant(c.listText()); },
            PropertyTable<C>::Storer());
        t.add(
            "Locked", QVariant(false), [](const C &c) { return QVariant(c.d->locked); },
            [](C &c, const QVariant &v) { c.d->locked = CBool(v); });
        // Kept as it was saved (any type the bag holds); it does not select anything.
        t.add(
            "Value", QVariant::fromValue(qint16(0)), [](const C &c) { return c.d->savedValue; },
            [](C &c, const QVariant &v) { c.d->savedValue = v; });
        t.add(
            "Appearance", QVariant(1), [](const C &c) { return QVariant(c.d->appearance); },
            [](C &c, const QVariant &v) {
                const int appearance = CInt(v);
                if (appearance != 0 && appearance != 1) {
                    throw RuntimeError(ErrorNumber::InvalidPropertyValue);
                }
                c.d->appearance = appearance;
                c.applyAppearance();
            });
        t.add(
            "LockedAlways", QVariant(false), [](const C &c) { return QVariant(c.d->lockedAlways); },
            [](C &c, const QVariant &v) { c.d->lockedAlways = CBool(v); });
        t.add(
            "DefaultValue", QVariant(0), [](const C &c) { return QVariant(c.d->defaultValue); },
            [](C &c, const QVariant &v) { c.d->defaultValue = CLng(v); });
        t.add(
            "ToolTipText", QVariant(QString()), [](const C &c) { return QVariant(c.ToolTipText()); },
            [](C &c, const QVariant &v) { c.d->list->setToolTip(textFromVariant(v)); });
        t.add(
            "DefaultText", QVariant(QString()), [](const C &c) { return QVariant(c.d->defaultText); },
            [](C &c, const QVariant &v) { c.d->defaultText = textFromVariant(v); });
        t.setInitialiseOrder({"Locked", "Value", "DefaultValue", "LockedAlways", "DefaultText"});
        t.setAfterReading("DefaultValue", [](C &c) { c.applyLockDisplay(); });
        return t;
    }();
    return properties;
}

KelolistBox::KelolistBox(QWidget *parent)
    : ControlBase(parent)
    , d(new Private(this))
{
    d->model->setObjectName(QStringLiteral("listItemsModel"));
    d->list->setObjectName(QStringLiteral("listItems"));
    d->list->setModel(d->model);
    d->list->setSelectionMode(QAbstractItemView::SingleSelection);
    d->list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    // A list box's lines all have the same height; saying so spares the view
    // from measuring every entry of a long list.
    d->list->setUniformItemSizes(true);
    d->label->setObjectName(QStringLiteral("labItem"));
    d->label->setTextFormat(Qt::PlainText);
    d->label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    d->label->hide();
    setFocusProxy(d->list);
    connect(
        d->list->selectionModel(), &QItemSelectionModel::selectionChanged, this, &KelolistBox::onListSelectionChanged);
    // Keys reach the list itself, mouse clicks its viewport; the list's Click is its own (listItemsClick).
    forwardKeyEvents(new StockEventFilter(d->list), this);
    connect(new StockEventFilter(d->list->viewport()), &StockEventFilter::DblClick, this, &KelolistBox::DblClick);
    // InitProperties leaves the colours alone: a new list starts from their saved defaults.
    d->face.paintColorsInto(d->list, QPalette::Base, QPalette::Text,
        colorFromVariant(table().defaultValue(*this, QStringLiteral("BackColor"))),
        colorFromVariant(table().defaultValue(*this, QStringLiteral("ForeColor"))));
    applyAppearance();
    layoutChildren();
    InitProperties();
}

KelolistBox::~KelolistBox()
{
    // The inner widgets outlive this part of the object while QWidget
    // deletes them; their selection changes must not reach it any more.
    d->list->selectionModel()->disconnect(this);
}

bool KelolistBox::Locked() const
{
    return d->locked;
}

int KelolistBox::Appearance() const
{
    return d->appearance;
}

bool KelolistBox::LockedAlways() const
{
    return d->lockedAlways;
}

int KelolistBox::DefaultValue() const
{
    return d->defaultValue;
}

QString KelolistBox::DefaultText() const
{
    return d->defaultText;
}

const PropertyTableBase &KelolistBox::propertyTable() const
{
    return table();
}

// ---- the list's click ------------------------------------------------------

void KelolistBox::onListSelectionChanged()
{
    if (!d->quietSelection) {
        listItemsClick();
    }
}

// Whatever selected the entry, the label shows the list's text afterwards;
// only the host's Click waits until the list is filled.
void KelolistBox::listItemsClick()
{
    if (!d->populating) {
        Q_EMIT Click();
    }
    d->label->setText(listText());
}

int KelolistBox::listIndex() const
{
    const QModelIndexList selected = d->list->selectionModel()->selectedIndexes();
    return selected.isEmpty() ? -1 : selected.first().row();
}

QString KelolistBox::listText() const
{
    const int row = listIndex();
    return row < 0 ? QString() : d->model->text(row);
}

// Selecting an entry from code is a click on the list, as a user's would be.
void KelolistBox::selectRow(int row)
{
    {
        QScopedValueRollback<bool> quiet(d->quietSelection, true);
        const QModelIndex entry = d->model->index(row);
        if (entry.isValid()) {
            d->list->selectionModel()->setCurrentIndex(entry, QItemSelectionModel::ClearAndSelect);
            d->list->scrollTo(entry);
        } else {
            d->list->selectionModel()->clearSelection();
        }
    }
    listItemsClick();
}

// The default entry is the one holding DefaultValue; without one the
// selection stays as it is.
void KelolistBox::selectDefault()
{
    const int row = d->model->findValue(d->defaultValue);
    if (row >= 0) {
        selectRow(row);
    }
}

// ---- colours, font, appearance ---------------------------------------------

KELO_CLASSIC_FORWARD(KelolistBox, BackColor, d->face)
KELO_CLASSIC_FORWARD(KelolistBox, ForeColor, d->face)
KELO_CLASSIC_FORWARD(KelolistBox, Enabled, d->face)
KELO_CLASSIC_FORWARD(KelolistBox, Font, d->face)

void KelolistBox::setAppearance(int appearance)
{
    if (appearance != 0 && appearance != 1) {
        throw RuntimeError(ErrorNumber::InvalidPropertyValue);
    }
    d->appearance = appearance;
    applyAppearance();
    propertyChanged("Appearance");
}

void KelolistBox::applyAppearance()
{
    if (d->appearance == 0) {
        d->list->setFrameStyle(QFrame::Box | QFrame::Plain);
        d->list->setLineWidth(1);
    } else {
        d->list->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    }
}

QString KelolistBox::ToolTipText() const
{
    return d->list->toolTip();
}

void KelolistBox::setToolTipText(const QString &text)
{
    d->list->setToolTip(text);
    propertyChanged("ToolTipText");
}

void KelolistBox::Refresh()
{
    d->list->viewport()->repaint();
}

// ---- entries ----------------------------------------------------------------

int KelolistBox::ListCount() const
{
    return d->model->count();
}

bool KelolistBox::Sorted() const
{
    return d->model->isSorted();
}

void KelolistBox::AddItem(const QString &Item, const QVariant &Value)
{
    d->populating = true;
    qint32 value = 0;
    try {
        value = CLng(Value);
    } catch (const RuntimeError &) {
        // a value that is not a number leaves the entry's value 0
    }
    {
        QScopedValueRollback<bool> quiet(d->quietSelection, true);
        d->model->addEntry(Item, value);
    }
    QCoreApplication::processEvents();
    d->populating = false;
}

QVariant KelolistBox::Clear()
{
    QScopedValueRollback<bool> quiet(d->quietSelection, true);
    d->model->clear();
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
    const int row = d->model->findValue(qint32(number));
    if (row < 0) {
        return false;
    }
    const bool wasSelected = row == listIndex();
    QScopedValueRollback<bool> quiet(d->quietSelection, true);
    d->model->removeEntry(row);
    if (wasSelected) {
        // The view would move the selection to a neighbour; a list box has
        // no selection left once its selected entry is gone.
        d->list->selectionModel()->clear();
    }
    return true;
}

// ---- Text and Value ---------------------------------------------------------

QString KelolistBox::Text() const
{
    const int row = listIndex();
    return row < 0 ? d->defaultText : d->model->text(row);
}

void KelolistBox::setText(const QString &text)
{
    const int row = d->model->findText(text);
    if (row >= 0) {
        d->label->setText(d->model->text(row));
        selectRow(row);
    } else {
        selectDefault();
    }
    propertyChanged("Text");
}

int KelolistBox::Value() const
{
    const int row = listIndex();
    return row < 0 ? d->defaultValue : d->model->value(row);
}

void KelolistBox::setValue(int value)
{
    requireRunMode();
    const int row = d->model->findValue(value);
    if (row >= 0) {
        d->label->setText(d->model->text(row));
        selectRow(row);
    } else {
        selectDefault();
    }
    propertyChanged("Value");
}

void KelolistBox::setDefaultValue(int value)
{
    d->defaultValue = value;
    propertyChanged("DefaultValue");
}

void KelolistBox::setDefaultText(const QString &text)
{
    d->defaultText = text;
    propertyChanged("DefaultText");
}

// ---- the locked display -------------------------------------------------------

void KelolistBox::setLocked(bool locked)
{
    d->locked = locked;
    applyLockDisplay();
    propertyChanged("Locked");
}

void KelolistBox::setLockedAlways(bool lockedAlways)
{
    d->lockedAlways = lockedAlways;
    applyLockDisplay();
    propertyChanged("LockedAlways");
}

void KelolistBox::applyLockDisplay()
{
    const bool showLabel = d->lockedAlways || d->locked;
    d->label->setVisible(showLabel);
    d->list->setVisible(!showLabel);
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

    d->populating = true;
    Clear();
    if (DefaultText.isValid()) {
        addDefaultEntry(DefaultText, DefaultValue);
    }
    readRecords(ListRecordset, textField, valueField);
    QCoreApplication::processEvents();
    d->populating = false;
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
            d->defaultValue = *number;
            propertyChanged("DefaultValue");
        }
    }
    if (!entryText) {
        return;
    }
    int row = 0;
    {
        QScopedValueRollback<bool> quiet(d->quietSelection, true);
        row = d->model->addEntry(*entryText, d->defaultValue);
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
    QScopedValueRollback<bool> quiet(d->quietSelection, true);
    d->model->addEntries(std::move(entries));
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
    d->list->setGeometry(rect());
    d->label->setGeometry(rect());
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
        d->face.repaintColors();
    }
}
