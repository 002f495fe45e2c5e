#pragma once

#include <kelocontrols_export.h>

#include "ListBackground.h"

#include <QTreeView>

namespace Kelocontrols {

/**
 * The details (report) view of a ListView: a flat QTreeView with one row per
 * item, optional grid lines and a background picture.
 */
class KELOCONTROLS_EXPORT ReportView : public QTreeView
{
    Q_OBJECT
public:
    explicit ReportView(QWidget *parent = nullptr);

    void setGridLines(bool on);
    bool gridLines() const { return m_gridLines; }
    void setBackground(const ListBackground *background) { m_background = background; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void drawRow(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    bool m_gridLines = false;
    const ListBackground *m_background = nullptr;
};

} // namespace Kelocontrols
