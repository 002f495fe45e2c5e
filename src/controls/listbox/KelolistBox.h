#pragma once

#include "ClassicFace.h"
#include "ControlBase.h"
#include "OleColor.h"
#include "PropertyTable.h"

#include <kelocontrols_export.h>

#include <QFont>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include <memory>

class QAbstractItemModel;
class QLabel;
class QListView;

namespace Kelocontrols {
class Recordset;
} // namespace Kelocontrols

/**
 * A list box whose lines carry hidden 32-bit integer values (keys), filled
 * in one call from a database query, with a locked, read-only display.
 *
 * - Populate() fills the list from a QSqlQuery, from any QAbstractItemModel
 *   (QSqlQueryModel, QStandardItemModel ...) or from a Kelocontrols::Recordset:
 *   one column gives the texts, another the values. It never throws; it
 *   returns "" on success or an error text, and leaves the list as it was
 *   when the query or a column is wrong.
 * - Text and Value select by text (first match, without regard to case) or
 *   by value (first match); when nothing matches they select the default
 *   entry, the one whose value is DefaultValue, if the list has it.
 *   Read with nothing selected, they give DefaultText and DefaultValue.
 * - Locked (or LockedAlways) replaces the list by a label that shows the
 *   current text.
 *
 * Selecting an entry, by the user or through Text, Value or Populate's
 * default entry, is the list's click: it raises Click, except while
 * Populate or AddItem fill the list, and the label then takes the list's
 * current text, always.
 *
 * Inner widgets: `listItems`, a QListView over a Kelocontrols::ListBoxModel
 * (text in Qt::DisplayRole, value in Qt::UserRole), and `labItem`, the QLabel
 * of the locked display.
 *
 * \code
 * QSqlQuery query(QStringLiteral("SELECT name, code FROM countries ORDER BY name"), db);
 * const QString error = countries->Populate(query, QStringLiteral("name"), QStringLiteral("code"),
 *                                           QStringLiteral("(none)"), 0);
 * if (!error.isEmpty())
 *     qWarning() << error;
 * countries->setValue(250);          // selects France
 * countries->setLocked(true);        // shows "France" as a label
 * \endcode
 */
class KELOCONTROLS_EXPORT KelolistBox : public Kelocontrols::ControlBase
{
    Q_OBJECT
    Q_CLASSINFO("Interface", "_KelolistBox")
    Q_CLASSINFO("EventInterface", "__KelolistBox")
    Q_CLASSINFO("HelpFile", "Kelocontrols.hlp")
    Q_CLASSINFO("Help:Refresh", "Forces a complete repaint of a object.")
    Q_CLASSINFO("Help:ListCount", "Returns the number of items in the list portion of a control.")
    Q_CLASSINFO("Help:Populate",
        "Fills the list from a recordset: one column gives the texts, another the values.  Returns \"\" or an error "
        "text.")
    Q_CLASSINFO("Help:Text", "Returns/sets the text of the selected item.")
    Q_CLASSINFO("Help:Locked", "Shows the selected text as a label that cannot be changed.")
    Q_CLASSINFO("Help:Value", "Returns/sets the value of the selected item.")
    Q_CLASSINFO("Help:Appearance", "Returns/sets whether or not an object is painted at run time with 3-D effects.")
    Q_CLASSINFO("Help:LockedAlways", "Always shows the selected text as a label, whatever Locked says.")
    Q_CLASSINFO("Help:AddItem", "Adds an item with its value to the list.")
    Q_CLASSINFO("Help:DefaultValue",
        "The default value returned when a user has not selected anything.  Overridden if defaults specified in "
        "Populate method.")
    Q_CLASSINFO("Help:Clear", "Clears all items from the list.")
    Q_CLASSINFO("Help:RemoveItem", "Removes the requested item from the list.")
    Q_CLASSINFO("Help:Sorted", "Indicates whether the elements of a control are automatically sorted alphabetically.")
    Q_CLASSINFO("Help:ToolTipText", "Returns/sets the text displayed when the mouse is paused over the control.")
    Q_CLASSINFO("Help:DefaultText",
        "The default text returned when a user has not selected anything.  Overridden if defaults specified in "
        "Populate method.")
    KELO_CLASSIC_STOCK_CLICK_IDS
    KELO_CLASSIC_STOCK_KEY_IDS

    /// The list's background colour, an OLE colour (system colours follow the palette).
    /// Default: 0x80000005 (window background).
    KELO_CLASSIC_PROPERTY(BackColor)
    /// The colour of the list's texts, an OLE colour.
    /// Default: 0x80000008 (window text).
    KELO_CLASSIC_PROPERTY(ForeColor)
    /// Whether the whole control responds to the user; setEnabled() emits PropertyChanged("Enabled").
    /// Default: true.
    KELO_CLASSIC_PROPERTY(Enabled)
    /// The font of the list.
    /// Default: the container's font.
    KELO_CLASSIC_PROPERTY(Font)
    Q_PROPERTY(int ListCount READ ListCount STORED false)
    /// The selected entry's text (see Text()). Saving writes the list's current text, loading ignores it.
    /// Default: "listItems" (the saved value's default).
    Q_PROPERTY(QString Text READ Text WRITE setText STORED false)
    /// Shows the selected text as a label instead of the list.
    /// Default: false.
    Q_PROPERTY(bool Locked READ Locked WRITE setLocked)
    /// The selected entry's value (see Value()). Saving keeps the value loaded with the control as it was; it selects
    /// nothing. Default: 0.
    Q_PROPERTY(int Value READ Value WRITE setValue DESIGNABLE false STORED false)
    /// 0 flat, 1 3-D; other values raise RuntimeError 380.
    /// Default: 1.
    Q_PROPERTY(int Appearance READ Appearance WRITE setAppearance)
    /// Shows the label instead of the list whatever Locked says.
    /// Default: false.
    Q_PROPERTY(bool LockedAlways READ LockedAlways WRITE setLockedAlways)
    /// The value that Value gives with nothing selected, and the value of the default entry.
    /// Default: 0.
    Q_PROPERTY(int DefaultValue READ DefaultValue WRITE setDefaultValue)
    Q_PROPERTY(bool Sorted READ Sorted STORED false)
    /// The tool tip of the list.
    /// Default: "".
    Q_PROPERTY(QString ToolTipText READ ToolTipText WRITE setToolTipText)
    /// The text that Text gives with nothing selected.
    /// Default: "".
    Q_PROPERTY(QString DefaultText READ DefaultText WRITE setDefaultText)

public:
    explicit KelolistBox(QWidget *parent = nullptr);
    ~KelolistBox() override;

    KELO_CLASSIC_ACCESSORS(BackColor)
    KELO_CLASSIC_ACCESSORS(ForeColor)
    KELO_CLASSIC_ACCESSORS(Enabled)
    KELO_CLASSIC_ACCESSORS(Font)

    /// Repaints the list now.
    Q_INVOKABLE void Refresh();

    /// The number of entries.
    int ListCount() const;

    /**
     * Fills the list from the rows of `ListRecordset`, an executed query.
     *
     * `TextColumn` and `ValueColumn` name a field (a text, compared without
     * regard to case) or give its 0-based position (a number). An invalid
     * QVariant means an optional argument was not passed.
     *
     * 1. The query goes to its first row. If it cannot (the query failed, was
     *    never run, or is forward-only and already past its first row), the
     *    result is the recordset's error description and nothing changes.
     * 2. If `TextColumn` names no field, the result is "TextColumn=", the
     *    argument as text, " - " and the error description, and nothing
     *    changes; likewise "ValueColumn=..." for `ValueColumn`.
     * 3. The list is emptied. If `DefaultText` is passed, it becomes the first
     *    entry and is selected; its value is `DefaultValue` when that is
     *    passed too (which then also becomes the DefaultValue property),
     *    else the DefaultValue property. `DefaultValue` alone is ignored;
     *    `DefaultText` never changes the DefaultText property.
     * 4. Each row adds its text and its value (rounded to a 32-bit integer).
     *    A row whose text is NULL or cannot be shown as text adds no entry;
     *    a value that is NULL or not a number leaves the entry's value 0.
     * 5. Pending events are processed once; the result is "".
     *
     * Click is not raised while the list fills.
     */
    Q_INVOKABLE QString Populate(QSqlQuery &ListRecordset, const QVariant &TextColumn, const QVariant &ValueColumn,
        const QVariant &DefaultText = QVariant(), const QVariant &DefaultValue = QVariant());
    /// Populate() from the rows of a model (a QSqlQueryModel, QStandardItemModel ...);
    /// fields are the model's columns, named by their headers.
    Q_INVOKABLE QString Populate(QAbstractItemModel *ListRecordset, const QVariant &TextColumn,
        const QVariant &ValueColumn, const QVariant &DefaultText = QVariant(),
        const QVariant &DefaultValue = QVariant());
    /// Populate() from any recordset adapter.
    QString Populate(Kelocontrols::Recordset &ListRecordset, const QVariant &TextColumn, const QVariant &ValueColumn,
        const QVariant &DefaultText = QVariant(), const QVariant &DefaultValue = QVariant());

    /// The selected entry's text, or DefaultText when nothing is selected.
    QString Text() const;
    /// Selects the first entry whose text equals `text` without regard to case, else the default entry.
    void setText(const QString &text);

    bool Locked() const;
    /// Shows the label instead of the list (unless LockedAlways already does).
    void setLocked(bool locked);

    /// The selected entry's value, or DefaultValue when nothing is selected.
    int Value() const;
    /// Selects the first entry with `value`, else the default entry.
    /// @throws Kelocontrols::RuntimeError 387 in design mode (UserMode false).
    void setValue(int value);

    /// 0 flat, 1 3-D.
    int Appearance() const;
    /// @throws Kelocontrols::RuntimeError 380 for values other than 0 and 1.
    void setAppearance(int appearance);

    bool LockedAlways() const;
    /// Shows the label instead of the list whatever Locked says.
    void setLockedAlways(bool lockedAlways);

    /// Adds an entry (in sorted place if the list is sorted). A value that is
    /// not a number leaves the entry's value 0. Never throws. Click is not
    /// raised meanwhile; pending events are processed once.
    Q_INVOKABLE void AddItem(const QString &Item, const QVariant &Value);

    int DefaultValue() const;
    void setDefaultValue(int value);

    /// Empties the list; returns an empty QVariant.
    Q_INVOKABLE QVariant Clear();

    /**
     * Removes the first entry whose value equals `Value` and returns true, or
     * returns false (and changes nothing) when no entry has it. Removal is
     * by value, never by position.
     * @throws Kelocontrols::RuntimeError 13 when `Value` is not a number.
     */
    Q_INVOKABLE bool RemoveItem(const QVariant &Value);

    /// Whether the list keeps its entries sorted (a setting of `listItems`' model).
    bool Sorted() const;

    QString ToolTipText() const;
    void setToolTipText(const QString &text);

    QString DefaultText() const;
    void setDefaultText(const QString &text);

    const Kelocontrols::PropertyTableBase &propertyTable() const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    KELO_CLASSIC_CLICK_EVENTS
    KELO_CLASSIC_KEY_EVENTS

protected:
    void propertiesLoaded() override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    static const Kelocontrols::PropertyTable<KelolistBox> &table();

    void onListSelectionChanged();
    void listItemsClick();
    int listIndex() const;
    QString listText() const;
    void selectRow(int row);
    void selectDefault();
    void applyLockDisplay();
    void applyAppearance();
    void layoutChildren();
    void addDefaultEntry(const QVariant &text, const QVariant &value);
    void readRecords(Kelocontrols::Recordset &records, int textField, int valueField);

    class Private;
    std::unique_ptr<Private> const d;
};
