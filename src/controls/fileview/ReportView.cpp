#include "ReportView.h"

#include <QHeaderView>
#include <QPainter>

namespace Kelocontrols {

ReportView::ReportView(QWidget *parent)
    : QTreeView(parent)
{
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true); // lets 100,000 rows lay out without asking each one its height
    setSortingEnabled(false);
    setTextElideMode(Qt::ElideRight);
    header()->setStretchLastSection(false);
    header()->setSectionsClickable(true);
    header()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void ReportView::setGridLines(bool on)
{
    m_gridLines = on;
    viewport()->update();
}

void ReportView::paintEvent(QPaintEvent *event)
{
    if (m_background && !m_background->picture.isNull()) {
        QPainter painter(viewport());
        m_background->paint(painter, viewport()->rect());
    }
    QTreeView::paintEvent(event);
}

void ReportView::drawRow(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QTreeView::drawRow(painter, option, index);
    if (!m_gridLines) {
        return;
    }
    painter->save();
    painter->setPen(palette().color(QPalette::Mid));
    const QRect row = option.rect;
    painter->drawLine(row.left(), row.bottom(), row.right(), row.bottom());
    const QHeaderView *h = header();
    for (int visual = 0; visual < h->count(); ++visual) {
        const int logical = h->logicalIndex(visual);
        if (h->isSectionHidden(logical)) {
            continue;
        }
        const int x = h->sectionViewportPosition(logical) + h->sectionSize(logical) - 1;
        painter->drawLine(x, row.top(), x, row.bottom());
    }
    painter->restore();
}

} // namespace Kelocontrols
