#include "FormPictureLayer_p.h"

#include <QEvent>
#include <QPainter>
#include <QWidget>

namespace Kelocontrols {

FormPictureLayer::FormPictureLayer(QObject *parent)
    : QObject(parent)
{
}

// A filter that is destroyed leaves its form's filter list by itself; the
// form may be in the middle of its own destruction, so it is not touched.
FormPictureLayer::~FormPictureLayer() = default;

void FormPictureLayer::attach(QWidget *form)
{
    if (m_form == form) {
        return;
    }
    if (m_form) {
        m_form->removeEventFilter(this);
        m_form->update();
    }
    m_form = form;
    if (m_form) {
        m_form->installEventFilter(this);
    }
}

void FormPictureLayer::paint(QWidget *form, const QPixmap &picture, const QList<QPointF> &positions)
{
    attach(form);
    m_layer = QPixmap();
    m_copies = 0;
    if (form && !picture.isNull() && !positions.isEmpty() && !form->size().isEmpty()) {
        const qreal ratio = form->devicePixelRatioF();
        m_layer = QPixmap(form->size() * ratio);
        m_layer.setDevicePixelRatio(ratio);
        m_layer.fill(Qt::transparent);
        QPainter painter(&m_layer);
        for (const QPointF &position : positions) {
            painter.drawPixmap(position, picture);
        }
        m_copies = int(positions.size());
    }
    if (form) {
        form->update();
    }
}

void FormPictureLayer::clear()
{
    const bool hadDrawing = !m_layer.isNull();
    m_layer = QPixmap();
    m_copies = 0;
    if (m_form && hadDrawing) {
        m_form->update();
    }
}

bool FormPictureLayer::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Paint && watched == m_form && !m_layer.isNull()) {
        QPainter painter(m_form);
        painter.drawPixmap(QPointF(0, 0), m_layer);
    }
    return QObject::eventFilter(watched, event);
}

} // namespace Kelocontrols
