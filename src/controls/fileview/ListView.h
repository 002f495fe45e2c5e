#pragma once

#include <kelocontrols_export.h>

#include "ListBackground.h"
#include "OleColor.h"

#include <QFrame>
#include <QPixmap>

class QAbstractItemView;
class QItemSelectionModel;
class QStackedLayout;

namespace Kelocontrols {

class IconView;
class ImageList;
class FileListModel;
class ReportView;

/**
 * A list of items with icons and columns in four views, the way explorer
 * windows show files: large icons, small icons, list, and details (report).
 *
 * The rows and columns live in one FileListModel. The details view is a
 * ReportView (QTreeView), the three other views share an IconView
 * (QListView) set up for the mode; only the visible one is attached to the
 * model, so a hidden view never lays out a large list. The selection is one
 * QItemSelectionModel carried over when the view changes.
 *
 * Setters take the classic values and raise RuntimeError
 * (InvalidPropertyValue, 380) for values outside them.
 */
class KELOCONTROLS_EXPORT ListView : public QFrame
{
    Q_OBJECT
    Q_PROPERTY(int View READ viewMode WRITE setViewMode)
    Q_PROPERTY(uint BackColor READ backColor WRITE setBackColor)
    Q_PROPERTY(uint ForeColor READ foreColor WRITE setForeColor)
    Q_PROPERTY(int BorderStyle READ borderStyle WRITE setBorderStyle)
    Q_PROPERTY(int Appearance READ appearance WRITE setAppearance)
    Q_PROPERTY(int MousePointer READ mousePointer WRITE setMousePointer)
    Q_PROPERTY(QPixmap MouseIcon READ mouseIcon WRITE setMouseIcon)
    Q_PROPERTY(QPixmap Picture READ picture WRITE setPicture)
    Q_PROPERTY(int PictureAlignment READ pictureAlignment WRITE setPictureAlignment)
    Q_PROPERTY(int Arrange READ arrange WRITE setArrange)
    Q_PROPERTY(bool HideColumnHeaders READ hideColumnHeaders WRITE setHideColumnHeaders)
    Q_PROPERTY(bool HideSelection READ hideSelection WRITE setHideSelection)
    Q_PROPERTY(bool MultiSelect READ multiSelect WRITE setMultiSelect)
    Q_PROPERTY(bool AllowColumnReorder READ allowColumnReorder WRITE setAllowColumnReorder)
    Q_PROPERTY(bool FlatScrollBar READ flatScrollBar WRITE setFlatScrollBar)
    Q_PROPERTY(bool FullRowSelect READ fullRowSelect WRITE setFullRowSelect)
    Q_PROPERTY(bool GridLines READ gridLines WRITE setGridLines)
    Q_PROPERTY(bool HotTracking READ hotTracking WRITE setHotTracking)
    Q_PROPERTY(bool HoverSelection READ hoverSelection WRITE setHoverSelection)
    Q_PROPERTY(bool LabelWrap READ labelWrap WRITE setLabelWrap)
    Q_PROPERTY(int SortKey READ sortKey WRITE setSortKey)
    Q_PROPERTY(int SortOrder READ sortOrder WRITE setSortOrder)
    Q_PROPERTY(bool Sorted READ sorted WRITE setSorted)

public:
    /// The four views of View.
    enum ViewMode { Icon = 0, SmallIcon = 1, List = 2, Report = 3 };

    explicit ListView(QWidget *parent = nullptr);
    ~ListView() override;

    FileListModel *model() const { return m_model; }
    /// The view now shown (the ReportView in Report mode, else the IconView).
    QAbstractItemView *currentView() const;
    ReportView *reportView() const { return m_report; }
    IconView *iconView() const { return m_icons; }
    QItemSelectionModel *selectionModel() const { return m_selection; }
    /// Both views, the report view first.
    QList<QAbstractItemView *> views() const;

    /// The image lists item keys refer to: large for Icon mode, small for the others and the headers.
    void setImageLists(ImageList *large, ImageList *small);

    /// Sets the width of @p column (0-based) in HIMETRIC units; 0 hides it.
    void setColumnWidth(int column, int himetric);
    /// The width of @p column in HIMETRIC units as the user or the program left it.
    int columnWidth(int column) const;
    /// The width of a column in pixels for a HIMETRIC width, at this widget's resolution.
    int himetricToPixels(int himetric) const;
    int pixelsToHimetric(int pixels) const;

    int viewMode() const { return m_view; }
    void setViewMode(int view);
    OleColor backColor() const { return m_backColor; }
    void setBackColor(OleColor color);
    OleColor foreColor() const { return m_foreColor; }
    void setForeColor(OleColor color);
    int borderStyle() const { return m_borderStyle; }
    void setBorderStyle(int style);
    int appearance() const { return m_appearance; }
    void setAppearance(int appearance);
    int mousePointer() const { return m_mousePointer; }
    void setMousePointer(int pointer);
    QPixmap mouseIcon() const { return m_mouseIcon; }
    void setMouseIcon(const QPixmap &icon);
    QPixmap picture() const { return m_background.picture; }
    void setPicture(const QPixmap &picture);
    int pictureAlignment() const { return m_background.alignment; }
    void setPictureAlignment(int alignment);
    /// 0 none, 1 along the left, 2 along the top (the icon views).
    int arrange() const { return m_arrange; }
    void setArrange(int arrange);
    bool hideColumnHeaders() const { return m_hideColumnHeaders; }
    void setHideColumnHeaders(bool hide);
    bool hideSelection() const { return m_hideSelection; }
    void setHideSelection(bool hide);
    bool multiSelect() const { return m_multiSelect; }
    void setMultiSelect(bool multi);
    bool allowColumnReorder() const { return m_allowColumnReorder; }
    void setAllowColumnReorder(bool allow);
    /// Kept for form files; Qt styles draw their own scroll bars.
    bool flatScrollBar() const { return m_flatScrollBar; }
    void setFlatScrollBar(bool flat) { m_flatScrollBar = flat; }
    bool fullRowSelect() const { return m_fullRowSelect; }
    void setFullRowSelect(bool full);
    bool gridLines() const { return m_gridLines; }
    void setGridLines(bool on);
    bool hotTracking() const { return m_hotTracking; }
    void setHotTracking(bool on);
    bool hoverSelection() const { return m_hoverSelection; }
    void setHoverSelection(bool on);
    bool labelWrap() const { return m_labelWrap; }
    void setLabelWrap(bool wrap);

    /// The column the items are sorted by, 0-based (default 0).
    int sortKey() const;
    void setSortKey(int column);
    /// 0 ascending (default), 1 descending.
    int sortOrder() const;
    void setSortOrder(int order);
    /// Whether the items are kept sorted (default false); setting it true sorts them at once.
    bool sorted() const;
    void setSorted(bool sorted);

    /// The first selected row (0-based), or -1.
    int selectedRow() const;
    /// Makes @p row the selected and current item (-1 clears the selection).
    void selectRow(int row);
    /// Whether @p row is selected.
    bool isRowSelected(int row) const;

Q_SIGNALS:
    /// The user clicked a column header (0-based column).
    void columnClicked(int column);
    /// The user clicked an item (0-based row).
    void itemClicked(int row);
    /// The user double-clicked an item (0-based row).
    void itemDoubleClicked(int row);

protected:
    void changeEvent(QEvent *event) override;

private:
    void attachModel(QAbstractItemView *view);
    void applyIconViewMode();
    void applyPalette();
    void applyFrame();
    void applyCursor();
    void applySelectionMode();
    void applyColumnWidths();
    void applyFont();
    void selectOnHover(const QModelIndex &index);

    FileListModel *m_model;
    QList<int> m_widths; ///< per column, HIMETRIC; starts at the designed widths
    QItemSelectionModel *m_selection;
    ReportView *m_report;
    IconView *m_icons;
    QStackedLayout *m_stack;
    ListBackground m_background;

    int m_view = Report;
    OleColor m_backColor;
    OleColor m_foreColor;
    int m_borderStyle = 1;
    int m_appearance = 1;
    int m_mousePointer = 0;
    QPixmap m_mouseIcon;
    int m_arrange = 0;
    bool m_hideColumnHeaders = false;
    bool m_hideSelection = false;
    bool m_multiSelect = false;
    bool m_allowColumnReorder = false;
    bool m_flatScrollBar = false;
    bool m_fullRowSelect = false;
    bool m_gridLines = false;
    bool m_hotTracking = false;
    bool m_hoverSelection = false;
    bool m_labelWrap = true;
    bool m_applyingWidths = false;
};

} // namespace Kelocontrols
