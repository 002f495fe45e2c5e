#pragma once

#include <kelocontrols_export.h>

#include "OleColor.h"

#include <QFrame>
#include <QImage>
#include <QPixmap>

namespace Kelocontrols {

class StockEventFilter;

/**
 * A drawing surface that keeps what is drawn on it.
 *
 * Drawing goes into a persistent canvas (beginPaint() / endPaint() or the
 * helpers), so the surface repaints itself from the canvas whenever Qt asks
 * and only changes when its owner draws again: a redraw that decides to draw
 * nothing leaves the old picture in place. Below the canvas lie the
 * BackColor and the Picture; Cls() clears the canvas so both show again.
 *
 * Colours are OLE colours (system colours resolve through the palette at
 * paint time); setting one that names no colour raises
 * RuntimeError(InvalidPropertyValue) and keeps the old one. BorderStyle 1 is
 * a sunken 3D border two pixels wide, 0 none. Its input arrives as the stock
 * events of stockEvents().
 */
class KELOCONTROLS_EXPORT PictureBox : public QFrame
{
    Q_OBJECT
public:
    explicit PictureBox(QWidget *parent = nullptr);

    OleColor backColor() const { return m_backColor; }
    void setBackColor(OleColor color);
    OleColor foreColor() const { return m_foreColor; }
    void setForeColor(OleColor color);

    /// 0 none or 1 fixed single; any other value raises RuntimeError(InvalidPropertyValue).
    int borderStyle() const { return m_borderStyle; }
    void setBorderStyle(int style);

    QPixmap picture() const { return m_picture; }
    void setPicture(const QPixmap &picture);

    /// The width and height of the drawing area in pixels (inside the border).
    int scaleWidth() const;
    int scaleHeight() const;

    /// Clears the drawing: BackColor and Picture show again.
    void cls();
    /// Fills a rectangle of the canvas with a colour.
    void fillBox(const QRectF &rect, OleColor color);

    /// The canvas to draw on; call endPaint() after drawing so the surface updates.
    QImage &beginPaint();
    void endPaint() { update(); }
    const QImage &canvas() const { return m_canvas; }

    /// The stock events of this surface.
    StockEventFilter *stockEvents() const { return m_events; }

    /// The surface as it shows now (background, picture and canvas), at its drawing size.
    QImage rendered() const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void paintContents(QPainter &painter) const;
    // Qt delivers the resize event of a hidden widget only when it is shown;
    // the canvas follows the geometry at once so drawing never uses a stale size.
    void syncCanvasSize() const;

    OleColor m_backColor = 0x8000000F;
    OleColor m_foreColor = 0x80000012;
    int m_borderStyle = 1;
    QPixmap m_picture;
    mutable QImage m_canvas;
    StockEventFilter *m_events;
};

} // namespace Kelocontrols
