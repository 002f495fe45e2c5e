#include "WandLayer_p.h"

#include "ControlAccess_p.h"

#include <QEvent>
#include <QPainter>

namespace Kelocontrols {

WandLayer::WandLayer(QWidget *surface)
    : QWidget(surface)
{
    setObjectName(QStringLiteral("WandLayer"));
    ControlAccess::markInternal(this);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::NoFocus);
    setGeometry(surface->rect());
    surface->installEventFilter(this);
    show();
    lower();
}

void WandLayer::setFrame(int element, const WandFrame &frame)
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
        keepAtBottom();
    }
    if (!dirty.isEmpty()) {
        update(dirty.toAlignedRect());
    }
}

bool WandLayer::isBlank() const
{
    for (const WandFrame &frame : m_frames) {
        if (!frame.strokes.isEmpty()) {
            return false;
        }
    }
    return true;
}

// Widgets added later stack above the layer by themselves; only one that
// the program lowers gets beneath it, until the layer is lowered again.
void WandLayer::keepAtBottom()
{
    for (const QObject *sibling : parentWidget()->children()) {
        if (sibling->isWidgetType()) {
            if (sibling != this) {
                lower();
            }
            return;
        }
    }
}

void WandLayer::paintEvent(QPaintEvent *)
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

bool WandLayer::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        setGeometry(parentWidget()->rect());
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace Kelocontrols
