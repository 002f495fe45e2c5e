#include "PictureBox.h"

#include "RuntimeError.h"
#include "StockEventFilter.h"

#include <QPainter>
#include <QResizeEvent>

namespace Kelocontrols {

namespace {

// Refuses a colour the surface could not paint (a system colour index the
// palette has no role for, or a high byte other than 0x00 and 0x80): found
// only at paint time, it would raise out of the paint event.
void requirePaintableColor(OleColor color)
{
    try {
        OleTranslateColor(color);
    } catch (const RuntimeError &) {
        throw RuntimeError(ErrorNumber::InvalidPropertyValue);
    }
}

} // namespace

PictureBox::PictureBox(QWidget *parent)
    : QFrame(parent)
    , m_events(new StockEventFilter(this))
{
    setBorderStyle(1);
    setFocusPolicy(Qt::StrongFocus);
    m_canvas = QImage(contentsRect().size().expandedTo(QSize(1, 1)), QImage::Format_ARGB32_Premultiplied);
    m_canvas.fill(Qt::transparent);
}

void PictureBox::setBackColor(OleColor color)
{
    requirePaintableColor(color);
    m_backColor = color;
    update();
}

void PictureBox::setForeColor(OleColor color)
{
    requirePaintableColor(color);
    m_foreColor = color;
    update();
}

void PictureBox::setBorderStyle(int style)
{
    if (style != 0 && style != 1) {
        throw RuntimeError(ErrorNumber::InvalidPropertyValue);
    }
    m_borderStyle = style;
    if (style == 1) {
        setFrameStyle(QFrame::WinPanel | QFrame::Sunken);
    } else {
        setFrameStyle(QFrame::NoFrame);
    }
    setLineWidth(2);
}

void PictureBox::setPicture(const QPixmap &picture)
{
    m_picture = picture;
    update();
}

int PictureBox::scaleWidth() const
{
    syncCanvasSize();
    return m_canvas.width();
}

int PictureBox::scaleHeight() const
{
    syncCanvasSize();
    return m_canvas.height();
}

QImage &PictureBox::beginPaint()
{
    syncCanvasSize();
    return m_canvas;
}

void PictureBox::cls()
{
    syncCanvasSize();
    m_canvas.fill(Qt::transparent);
    update();
}

void PictureBox::fillBox(const QRectF &rect, OleColor color)
{
    syncCanvasSize();
    QPainter painter(&m_canvas);
    painter.fillRect(rect, toQColor(color));
    painter.end();
    update();
}

QImage PictureBox::rendered() const
{
    syncCanvasSize();
    QImage image(m_canvas.size(), QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    paintContents(painter);
    return image;
}

void PictureBox::paintContents(QPainter &painter) const
{
    painter.fillRect(QRect(QPoint(0, 0), m_canvas.size()), toQColor(m_backColor));
    if (!m_picture.isNull()) {
        painter.drawPixmap(0, 0, m_picture);
    }
    painter.drawImage(0, 0, m_canvas);
}

void PictureBox::paintEvent(QPaintEvent *event)
{
    QFrame::paintEvent(event);
    syncCanvasSize();
    QPainter painter(this);
    const QRect area = contentsRect();
    painter.setClipRect(area);
    painter.translate(area.topLeft());
    paintContents(painter);
}

void PictureBox::resizeEvent(QResizeEvent *event)
{
    QFrame::resizeEvent(event);
    syncCanvasSize();
}

void PictureBox::syncCanvasSize() const
{
    const QSize size = contentsRect().size().expandedTo(QSize(1, 1));
    if (size == m_canvas.size()) {
        return;
    }
    // The drawing is kept where it was; new room shows the background.
    QImage grown(size, QImage::Format_ARGB32_Premultiplied);
    grown.fill(Qt::transparent);
    QPainter painter(&grown);
    painter.drawImage(0, 0, m_canvas);
    painter.end();
    m_canvas = grown;
}

} // namespace Kelocontrols
