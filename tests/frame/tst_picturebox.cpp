#include "PictureBox.h"
#include "RuntimeError.h"

#include <QApplication>
#include <QPainter>
#include <QTest>

#include "KeloTestSupport.h"

#include <memory>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;

namespace {

const QColor buttonFace(0x12, 0x34, 0x56);
const QColor windowBase(0xF0, 0xE0, 0xD0);
const QColor red(255, 0, 0);
const QColor green(0, 255, 0);

/// The points of `image` whose colour is not the one given for their area (a null area: the whole image), as
/// "(x,y)=#rrggbb" texts, at most a few per area.
QStringList pointsNotOf(const QImage &image, std::initializer_list<std::pair<QRect, QColor>> areas)
{
    QStringList wrong;
    for (const auto &[area, expected] : areas) {
        const QRect rect = area.isNull() ? image.rect() : area;
        qsizetype found = 0;
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
            for (int x = rect.left(); x <= rect.right(); ++x) {
                if (image.pixelColor(x, y).rgb() != expected.rgb() && found++ < 5)
                    wrong << u"(%1,%2)=%3"_qs.arg(x).arg(y).arg(image.pixelColor(x, y).name());
            }
        }
    }
    return wrong;
}

QImage grabbed(QWidget &widget)
{
    return widget.grab().toImage();
}

} // namespace

class TestPictureBox : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // A 40 x 30 box on screen: a 36 x 26 drawing area inside the two-pixel border.
    void init()
    {
        m_savedPalette = QApplication::palette();
        QPalette palette = m_savedPalette;
        palette.setColor(QPalette::Button, buttonFace);
        palette.setColor(QPalette::Base, windowBase);
        QApplication::setPalette(palette);
        m_box = std::make_unique<PictureBox>();
        m_box->resize(40, 30);
        m_box->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_box.get()));
    }

    void cleanup()
    {
        m_box.reset();
        QApplication::setPalette(m_savedPalette);
    }

    void clsShowsTheBackColor()
    {
        PictureBox &box = *m_box;
        QCOMPARE(box.backColor(), 0x8000000Fu);
        box.cls();
        QCOMPARE(box.rendered().size(), QSize(36, 26));
        QCOMPARE(pointsNotOf(box.rendered(), {{QRect(), buttonFace}}), QStringList());
        QCOMPARE(pointsNotOf(grabbed(box), {{QRect(2, 2, 36, 26), buttonFace}}), QStringList());

        // A system colour follows the palette of the moment.
        QPalette palette = QApplication::palette();
        palette.setColor(QPalette::Button, QColor(0x65, 0x43, 0x21));
        QApplication::setPalette(palette);
        QCOMPARE(pointsNotOf(box.rendered(), {{QRect(), QColor(0x65, 0x43, 0x21)}}), QStringList());
        box.setBackColor(0x80000005);
        QCOMPARE(pointsNotOf(grabbed(box), {{QRect(2, 2, 36, 26), windowBase}}), QStringList());

        // A plain colour is 0x00BBGGRR.
        box.setBackColor(0x00FF0000);
        QCOMPARE(box.backColor(), 0x00FF0000u);
        QCOMPARE(pointsNotOf(box.rendered(), {{QRect(), QColor(0, 0, 255)}}), QStringList());
    }

    void fillBoxPaintsExactPixels()
    {
        PictureBox &box = *m_box;
        box.fillBox(QRectF(2, 3, 4, 5), 0x000000FF);
        // Nothing outside the box.
        QCOMPARE(pointsNotOf(box.rendered(),
                     {{QRect(2, 3, 4, 5), red}, {QRect(0, 0, 36, 3), buttonFace}, {QRect(0, 8, 36, 18), buttonFace},
                         {QRect(0, 3, 2, 5), buttonFace}, {QRect(6, 3, 30, 5), buttonFace}}),
            QStringList());
        // On screen the drawing area starts inside the two-pixel border.
        QCOMPARE(pointsNotOf(grabbed(box),
                     {{QRect(4, 5, 4, 5), red}, {QRect(8, 5, 1, 1), buttonFace}, {QRect(3, 5, 1, 1), buttonFace},
                         {QRect(4, 10, 1, 1), buttonFace}}),
            QStringList());

        // Drawing with a painter of one's own shows after endPaint().
        QPainter(&box.beginPaint()).fillRect(QRect(30, 20, 6, 6), green);
        box.endPaint();
        QCOMPARE(pointsNotOf(grabbed(box), {{QRect(32, 22, 6, 6), green}, {QRect(4, 5, 4, 5), red}}), QStringList());

        box.cls();
        QCOMPARE(pointsNotOf(box.rendered(), {{QRect(), buttonFace}}), QStringList());
        QCOMPARE(pointsNotOf(grabbed(box), {{QRect(2, 2, 36, 26), buttonFace}}), QStringList());
    }

    void drawingStaysUntilCleared()
    {
        PictureBox &box = *m_box;
        box.fillBox(QRectF(0, 0, 10, 10), 0x000000FF);
        // Repaints from outside change nothing: the canvas is what shows.
        box.repaint();
        box.update();
        QApplication::processEvents();
        box.setBackColor(0x0000FF00);
        QCOMPARE(pointsNotOf(grabbed(box), {{QRect(2, 2, 10, 10), red}, {QRect(20, 20, 1, 1), green}}), QStringList());
        QCOMPARE(box.canvas().pixelColor(5, 5).rgb(), red.rgb());
    }

    void resizeKeepsTheDrawingAtTopLeft()
    {
        PictureBox &box = *m_box;
        QCOMPARE(QSize(box.scaleWidth(), box.scaleHeight()), QSize(36, 26));
        box.fillBox(QRectF(0, 0, 10, 10), 0x000000FF);
        box.fillBox(QRectF(30, 20, 6, 6), 0x0000FF00);

        // The new room shows the back colour.
        box.resize(80, 60);
        QApplication::processEvents();
        QCOMPARE(QSize(box.scaleWidth(), box.scaleHeight()), QSize(76, 56));
        QCOMPARE(box.rendered().size(), QSize(76, 56));
        QCOMPARE(pointsNotOf(box.rendered(),
                     {{QRect(0, 0, 10, 10), red}, {QRect(30, 20, 6, 6), green}, {QRect(36, 0, 40, 56), buttonFace},
                         {QRect(0, 26, 76, 30), buttonFace}}),
            QStringList());
        QCOMPARE(
            pointsNotOf(grabbed(box), {{QRect(2, 2, 10, 10), red}, {QRect(38, 2, 40, 56), buttonFace}}), QStringList());

        // Drawing into the new room works.
        box.fillBox(QRectF(70, 50, 6, 6), 0x000000FF);
        QCOMPARE(pointsNotOf(box.rendered(), {{QRect(70, 50, 6, 6), red}}), QStringList());

        // Shrinking keeps what still fits, at the same place.
        box.resize(20, 16);
        QApplication::processEvents();
        QCOMPARE(QSize(box.scaleWidth(), box.scaleHeight()), QSize(16, 12));
        QCOMPARE(pointsNotOf(box.rendered(), {{QRect(0, 0, 10, 10), red}, {QRect(10, 0, 6, 12), buttonFace}}),
            QStringList());
    }

    void resizeWhileHiddenKeepsTheDrawing()
    {
        // Controls size and draw their surface before it is ever shown.
        PictureBox box;
        box.resize(50, 40);
        QCOMPARE(QSize(box.scaleWidth(), box.scaleHeight()), QSize(46, 36));
        box.fillBox(QRectF(40, 30, 6, 6), 0x000000FF);
        QCOMPARE(box.rendered().size(), QSize(46, 36));
        QCOMPARE(pointsNotOf(box.rendered(), {{QRect(40, 30, 6, 6), red}}), QStringList());

        box.show();
        QVERIFY(QTest::qWaitForWindowExposed(&box));
        QCOMPARE(
            pointsNotOf(grabbed(box), {{QRect(42, 32, 6, 6), red}, {QRect(2, 2, 38, 28), buttonFace}}), QStringList());
    }

    void borderStyleSetsTheFrameAndKeepsTheSurfaceFilled()
    {
        PictureBox &box = *m_box;
        QCOMPARE(box.borderStyle(), 1);
        QCOMPARE(box.frameWidth(), 2);
        box.fillBox(QRectF(0, 0, 4, 4), 0x000000FF);
        for (const auto &[style, frame] : {std::pair{0, 0}, {1, 2}}) {
            box.setBorderStyle(style);
            QApplication::processEvents();
            QCOMPARE(box.frameWidth(), frame);
            const int width = 40 - 2 * frame;
            const int height = 30 - 2 * frame;
            QCOMPARE(QSize(box.scaleWidth(), box.scaleHeight()), QSize(width, height));
            QCOMPARE(pointsNotOf(grabbed(box),
                         {{QRect(frame, frame, 4, 4), red}, {QRect(frame + 4, frame, width - 4, height), buttonFace},
                             {QRect(frame, frame + 4, width, height - 4), buttonFace}}),
                QStringList());
            // Other values are refused and leave the border as it was.
            for (int bad : {2, -1, 255}) {
                QCOMPARE(errorNumberOf([&] { box.setBorderStyle(bad); }), ErrorNumber::InvalidPropertyValue);
                QCOMPARE(box.borderStyle(), style);
                QCOMPARE(box.frameWidth(), frame);
            }
        }
    }

    void pictureLiesBetweenBackColorAndDrawing()
    {
        PictureBox &box = *m_box;
        QPixmap picture(8, 6);
        picture.fill(green);
        box.setPicture(picture);
        QCOMPARE(box.picture().size(), QSize(8, 6));
        QCOMPARE(pointsNotOf(box.rendered(),
                     {{QRect(0, 0, 8, 6), green}, {QRect(8, 0, 28, 26), buttonFace}, {QRect(0, 6, 8, 20), buttonFace}}),
            QStringList());
        box.fillBox(QRectF(4, 3, 10, 10), 0x000000FF);
        QCOMPARE(pointsNotOf(box.rendered(), {{QRect(4, 3, 10, 10), red}, {QRect(0, 0, 4, 6), green}}), QStringList());

        // Cls clears the drawing, not the picture.
        box.cls();
        QCOMPARE(
            pointsNotOf(grabbed(box), {{QRect(2, 2, 8, 6), green}, {QRect(10, 2, 28, 26), buttonFace}}), QStringList());
        box.setPicture(QPixmap());
        QCOMPARE(pointsNotOf(box.rendered(), {{QRect(), buttonFace}}), QStringList());
    }

    void invalidColoursAreRefused()
    {
        PictureBox &box = *m_box;
        box.setBackColor(0x0000FF00);
        box.setForeColor(0x80000008);
        for (OleColor bad : {0x80000099u, 0x8000FFFFu, 0x01000000u, 0xFF000000u}) {
            QCOMPARE(errorNumberOf([&] { box.setBackColor(bad); }), ErrorNumber::InvalidPropertyValue);
            QCOMPARE(errorNumberOf([&] { box.setForeColor(bad); }), ErrorNumber::InvalidPropertyValue);
        }
        QCOMPARE(box.backColor(), 0x0000FF00u);
        QCOMPARE(box.foreColor(), 0x80000008u);
        // The surface still paints.
        QApplication::processEvents();
        QCOMPARE(pointsNotOf(grabbed(box), {{QRect(2, 2, 36, 26), green}}), QStringList());
        // The highest system colour is still good.
        box.setBackColor(0x80000018);
        QCOMPARE(box.backColor(), 0x80000018u);
    }

private:
    QPalette m_savedPalette;
    std::unique_ptr<PictureBox> m_box;
};

QTEST_MAIN(TestPictureBox)
#include "tst_picturebox.moc"
