#pragma once

#include <QString>
#include <QStringList>

#include <memory>

namespace Kelocontrols {

/**
 * Supplies the sub-item texts of list items that were added with a source
 * token instead of their texts.
 *
 * A file list of 100,000 entries would spend more time formatting sizes and
 * dates than reading the disk; with a source the texts are made only for
 * the rows a view paints or a caller reads.
 */
class SubItemSource
{
public:
    virtual ~SubItemSource() = default;
    /// The text of sub-item @p subItem (1-based, column 2 is sub-item 1) of the item added with @p token.
    virtual QString subItemText(int token, int subItem) const = 0;
    /**
     * Keeps a written text for sub-item @p subItem of the item with
     * @p token, if the source stores that sub-item itself; false makes the
     * model copy all the item's texts out and keep them with the item.
     */
    virtual bool storeSubItemText(int token, int subItem, const QString &text)
    {
        Q_UNUSED(token);
        Q_UNUSED(subItem);
        Q_UNUSED(text);
        return false;
    }
};

/**
 * One item of a ListView: its text (first column), image keys, and sub-items
 * either written one by one or supplied by a SubItemSource.
 */
struct ListItem
{
    QString text;
    QString icon; ///< key in the large image list
    QString smallIcon; ///< key in the small image list
    int sourceToken = -1; ///< token for the model's SubItemSource, -1 for none
    bool bold = false;

    /// Rarely used parts, kept out of line so that a large list stays small.
    struct Extras
    {
        QString key;
        QString tag;
        QStringList subItems; ///< written sub-items; empty while the source supplies them
    };
    std::unique_ptr<Extras> extras;

    Extras &ensureExtras()
    {
        if (!extras) {
            extras = std::make_unique<Extras>();
        }
        return *extras;
    }
};

/// One column header of a ListView.
struct ColumnHeader
{
    QString text; ///< caption
    QString key;
    QString tag; ///< for the file list: the number of the column that holds this column's sort key
    int width = 0; ///< in HIMETRIC units (1/100 mm), 0 for a column that is never seen
    Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter;
    QString icon; ///< key of the header's picture in the small image list, "" for none
};

} // namespace Kelocontrols
