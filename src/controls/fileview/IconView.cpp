#include "IconView.h"

#include <QPainter>

namespace Kelocontrols {

IconView::IconView(QWidget *parent)
    : QListView(parent)
{
    setUniformItemSizes(true); // one size for all items: no per-item measuring on large folders
    setMovement(QListView::Static);
    setResizeMode(QListView::Adjust);
    setLayoutMode(QListView::Batched);
    setBatchSize(2000);
}

void IconView::paintEvent(QPaintEvent *event)
{
    if (m_background && !m_background->picture.isNull()) {
        QPainter painter(viewport());
        m_background->paint(painter, viewport()->rect());
    }
    QListView::paintEvent(event);
}

} // namespace Kelocontrols
