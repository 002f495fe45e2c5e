#include "WandOverlay.h"

#include "ControlAccess.h"

#include <QEvent>
#include <QPainter>

namespace Kelocontrols {

WandOverlay::WandOverlay(QWidget *surface)
    : QWidget(surface)
{
    setObjectName(QStringLiteral("WandOverlay"));
    ControlAccess::markInternal(this);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::NoFocus);
    setGeometry(surface->rect());
    surface->installEventFilter(this);
    show();
    raise();
}

void WandOverlay::setFrame(int element, const WandFrame &frame)
{
    if (element < 0 || element >= Elements) {
        return;
    }
    WandFrame &shown = m_frames[size_t(element)];
    QRectF dirty = shown.bounds();
    if (frame.erasing) {
        shown = WandFrame();
    } else {
        shown = frame;
        dirty = dirty.united(frame.bounds());
        keepOnTop();
    }
    if (!dirty.isEmpty()) {
        update(dirty.toAlignedRect());
    }
}

bool WandOverlay::isBlank() const
{
    for (const WandFrame &frame : m_frames) {
        if (!frame.strokes.isEmpty()) {
            return false;
        }
    }
    return true;
}

// Widgets added to the surface later lie above the overlay until it is
// raised again.
void WandOverlay::keepOnTop()
{
    const QObjectList &siblings = parentWidget()->children();
    if (!siblings.isEmpty() && siblings.constLast() != this) {
        raise();
    }
}

void WandOverlay::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    for (const WandFrame &frame : m_frames) {
        if (frame.strokes.isEmpty()) {
            continue;
        }
        painter.setCompositionMode(
            frame.exclusiveOr ? QPainter::RasterOp_SourceXorDestination : QPainter::CompositionMode_SourceOver);
        for (const WandStroke &stroke : frame.strokes) {
            painter.setPen(QPen(toQColor(stroke.colour), 0));
            painter.setBrush(Qt::NoBrush);
            if (stroke.kind == WandStroke::Kind::Line) {
                painter.drawLine(stroke.from, stroke.to);
            } else {
                painter.drawEllipse(stroke.from, stroke.radiusX(), stroke.radiusY());
            }
        }
    }
}

bool WandOverlay::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        setGeometry(parentWidget()->rect());
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace Kelocontrols
