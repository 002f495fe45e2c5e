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

// The points of `image` whose colour is not `expected`, as "(x,y)" texts (at most a few).
QStringList pointsNotOf(const QImage &image, const QRect &area, const QColor &expected)
{
    QStringList wrong;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (image.pixelColor(x, y).rgb() != expected.rgb() && wrong.size() < 5) {
                wrong << u"(%1,%2)=%3"_qs.arg(x).arg(y).arg(image.pixelColor(x, y).name());
            }
        }
    }
    return wrong;
}

/// The same for several areas at once, each with its colour.
QStringList pointsNotOf(const QImage &image, std::initializer_list<std::pair<QRect, QColor>> areas)
{
    QStringList wrong;
    for (const auto &[area, expected] : areas)
        wrong << pointsNotOf(image, area, expected);
    return wrong;
}

QImage grabbed(QWidget &widget)
{
    return widget.grab().toImage();
}

// A 40 x 30 box on screen: a 36 x 26 drawing area inside the two-pixel border.
std::unique_ptr<PictureBox> shownBox()
{
    auto box = std::make_unique<PictureBox>();
    box->resize(40, 30);
    box->show();
    return QTest::qWaitForWindowExposed(box.get()) ? std::move(box) : nullptr;
}

} // namespace

class TestPictureBox : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void clsShowsTheBackColor();
    void fillBoxPaintsExactPixels();
    void drawingStaysUntilCleared();
    void resizeKeepsTheDrawingAtTopLeft();
    void resizeWhileHiddenKeepsTheDrawing();
    void borderStyle_data();
    void borderStyle();
    void changingTheBorderKeepsTheSurfaceFilled();
    void pictureLiesBetweenBackColorAndDrawing();
    void invalidColoursAreRefused();

private:
    QPalette m_savedPalette;
};

void TestPictureBox::init()
{
    m_savedPalette = QApplication::palette();
    QPalette palette = m_savedPalette;
    palette.setColor(QPalette::Button, buttonFace);
    palette.setColor(QPalette::Base, windowBase);
    QApplication::setPalette(palette);
}

void TestPictureBox::cleanup()
{
    QApplication::setPalette(m_savedPalette);
}

void TestPictureBox::clsShowsTheBackColor()
{
    const std::unique_ptr<PictureBox> shown = shownBox();
    QVERIFY(shown);
    PictureBox &box = *shown;
    QCOMPARE(box.backColor(), 0x8000000Fu);

    box.cls();
    QImage image = box.rendered();
    QCOMPARE(image.size(), QSize(36, 26));
    QCOMPARE(pointsNotOf(image, image.rect(), buttonFace), QStringList());
    image = grabbed(box);
    QCOMPARE(pointsNotOf(image, QRect(2, 2, 36, 26), buttonFace), QStringList());

    // A system colour follows the palette of the moment.
    QPalette palette = QApplication::palette();
    palette.setColor(QPalette::Button, QColor(0x65, 0x43, 0x21));
    QApplication::setPalette(palette);
    image = box.rendered();
    QCOMPARE(pointsNotOf(image, image.rect(), QColor(0x65, 0x43, 0x21)), QStringList());

    box.setBackColor(0x80000005);
    image = grabbed(box);
    QCOMPARE(pointsNotOf(image, QRect(2, 2, 36, 26), windowBase), QStringList());

    // A plain colour is 0x00BBGGRR.
    box.setBackColor(0x00FF0000);
    QCOMPARE(box.backColor(), 0x00FF0000u);
    image = box.rendered();
    QCOMPARE(pointsNotOf(image, image.rect(), QColor(0, 0, 255)), QStringList());
}

void TestPictureBox::fillBoxPaintsExactPixels()
{
    const std::unique_ptr<PictureBox> shown = shownBox();
    QVERIFY(shown);
    PictureBox &box = *shown;

    box.fillBox(QRectF(2, 3, 4, 5), 0x000000FF);
    QImage image = box.rendered();
    QCOMPARE(pointsNotOf(image, QRect(2, 3, 4, 5), red), QStringList());
    // Nothing outside the box.
    for (const QPoint p : {QPoint(1, 3), QPoint(6, 3), QPoint(2, 2), QPoint(2, 8), QPoint(6, 8), QPoint(0, 0)}) {
        QCOMPARE(image.pixelColor(p).rgb(), buttonFace.rgb());
    }

    // On screen the drawing area starts inside the two-pixel border.
    image = grabbed(box);
    QCOMPARE(pointsNotOf(image, QRect(4, 5, 4, 5), red), QStringList());
    QCOMPARE(image.pixelColor(8, 5).rgb(), buttonFace.rgb());
    QCOMPARE(image.pixelColor(3, 5).rgb(), buttonFace.rgb());
    QCOMPARE(image.pixelColor(4, 10).rgb(), buttonFace.rgb());

    // Drawing with a painter of one's own shows after endPaint().
    {
        QPainter painter(&box.beginPaint());
        painter.fillRect(QRect(30, 20, 6, 6), green);
    }
    box.endPaint();
    image = grabbed(box);
    QCOMPARE(pointsNotOf(image, {{QRect(32, 22, 6, 6), green}, {QRect(4, 5, 4, 5), red}}), QStringList());

    box.cls();
    image = box.rendered();
    QCOMPARE(pointsNotOf(image, image.rect(), buttonFace), QStringList());
    image = grabbed(box);
    QCOMPARE(pointsNotOf(image, QRect(2, 2, 36, 26), buttonFace), QStringList());
}

void TestPictureBox::drawingStaysUntilCleared()
{
    const std::unique_ptr<PictureBox> shown = shownBox();
    QVERIFY(shown);
    PictureBox &box = *shown;

    box.fillBox(QRectF(0, 0, 10, 10), 0x000000FF);
    // Repaints from outside change nothing: the canvas is what shows.
    box.repaint();
    box.update();
    QApplication::processEvents();
    box.setBackColor(0x0000FF00);
    QImage image = grabbed(box);
    QCOMPARE(pointsNotOf(image, QRect(2, 2, 10, 10), red), QStringList());
    QCOMPARE(image.pixelColor(20, 20).rgb(), green.rgb());
    QCOMPARE(box.canvas().pixelColor(5, 5).rgb(), red.rgb());
}

void TestPictureBox::resizeKeepsTheDrawingAtTopLeft()
{
    const std::unique_ptr<PictureBox> shown = shownBox();
    QVERIFY(shown);
    PictureBox &box = *shown;
    QCOMPARE(box.scaleWidth(), 36);
    QCOMPARE(box.scaleHeight(), 26);
    box.fillBox(QRectF(0, 0, 10, 10), 0x000000FF);
    box.fillBox(QRectF(30, 20, 6, 6), 0x0000FF00);

    box.resize(80, 60);
    QApplication::processEvents();
    QCOMPARE(box.scaleWidth(), 76);
    QCOMPARE(box.scaleHeight(), 56);
    QImage image = box.rendered();
    QCOMPARE(image.size(), QSize(76, 56));
    QCOMPARE(pointsNotOf(image, {{QRect(0, 0, 10, 10), red}, {QRect(30, 20, 6, 6), green}}), QStringList());
    // The new room shows the back colour.
    QCOMPARE(
        pointsNotOf(image, {{QRect(36, 0, 40, 56), buttonFace}, {QRect(0, 26, 76, 30), buttonFace}}), QStringList());
    image = grabbed(box);
    QCOMPARE(pointsNotOf(image, {{QRect(2, 2, 10, 10), red}, {QRect(38, 2, 40, 56), buttonFace}}), QStringList());

    // Drawing into the new room works.
    box.fillBox(QRectF(70, 50, 6, 6), 0x000000FF);
    QCOMPARE(pointsNotOf(box.rendered(), QRect(70, 50, 6, 6), red), QStringList());

    // Shrinking keeps what still fits, at the same place.
    box.resize(20, 16);
    QApplication::processEvents();
    QCOMPARE(box.scaleWidth(), 16);
    QCOMPARE(box.scaleHeight(), 12);
    image = box.rendered();
    QCOMPARE(pointsNotOf(image, {{QRect(0, 0, 10, 10), red}, {QRect(10, 0, 6, 12), buttonFace}}), QStringList());
}

void TestPictureBox::resizeWhileHiddenKeepsTheDrawing()
{
    // Controls size and draw their surface before it is ever shown.
    PictureBox box;
    box.resize(50, 40);
    QCOMPARE(box.scaleWidth(), 46);
    QCOMPARE(box.scaleHeight(), 36);
    box.fillBox(QRectF(40, 30, 6, 6), 0x000000FF);
    QImage image = box.rendered();
    QCOMPARE(image.size(), QSize(46, 36));
    QCOMPARE(pointsNotOf(image, QRect(40, 30, 6, 6), red), QStringList());

    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    image = grabbed(box);
    QCOMPARE(pointsNotOf(image, {{QRect(42, 32, 6, 6), red}, {QRect(2, 2, 38, 28), buttonFace}}), QStringList());
}

void TestPictureBox::borderStyle_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<int>("frameWidth");

    QTest::newRow("fixed single") << 1 << 2;
    QTest::newRow("none") << 0 << 0;
}

void TestPictureBox::borderStyle()
{
    QFETCH(int, style);
    QFETCH(int, frameWidth);

    PictureBox box;
    QCOMPARE(box.borderStyle(), 1);
    QCOMPARE(box.frameWidth(), 2);

    box.setBorderStyle(style);
    QCOMPARE(box.borderStyle(), style);
    QCOMPARE(box.frameWidth(), frameWidth);

    // Other values are refused and leave the border as it was.
    for (int bad : {2, -1, 3, 255}) {
        QCOMPARE(errorNumberOf([&] { box.setBorderStyle(bad); }), ErrorNumber::InvalidPropertyValue);
        QCOMPARE(box.borderStyle(), style);
        QCOMPARE(box.frameWidth(), frameWidth);
    }
}

void TestPictureBox::changingTheBorderKeepsTheSurfaceFilled()
{
    const std::unique_ptr<PictureBox> shown = shownBox();
    QVERIFY(shown);
    PictureBox &box = *shown;
    box.fillBox(QRectF(0, 0, 4, 4), 0x000000FF);

    box.setBorderStyle(0);
    QApplication::processEvents();
    QCOMPARE(box.scaleWidth(), 40);
    QCOMPARE(box.scaleHeight(), 30);
    QImage image = grabbed(box);
    QCOMPARE(pointsNotOf(image,
                 {{QRect(0, 0, 4, 4), red}, {QRect(4, 0, 36, 30), buttonFace}, {QRect(0, 4, 40, 26), buttonFace}}),
        QStringList());

    box.setBorderStyle(1);
    QApplication::processEvents();
    QCOMPARE(box.scaleWidth(), 36);
    QCOMPARE(box.scaleHeight(), 26);
    image = grabbed(box);
    QCOMPARE(pointsNotOf(image, {{QRect(2, 2, 4, 4), red}, {QRect(6, 2, 32, 26), buttonFace}}), QStringList());
}

void TestPictureBox::pictureLiesBetweenBackColorAndDrawing()
{
    const std::unique_ptr<PictureBox> shown = shownBox();
    QVERIFY(shown);
    PictureBox &box = *shown;

    QPixmap picture(8, 6);
    picture.fill(green);
    box.setPicture(picture);
    QCOMPARE(box.picture().size(), QSize(8, 6));
    QImage image = box.rendered();
    QCOMPARE(pointsNotOf(image,
                 {{QRect(0, 0, 8, 6), green}, {QRect(8, 0, 28, 26), buttonFace}, {QRect(0, 6, 8, 20), buttonFace}}),
        QStringList());

    box.fillBox(QRectF(4, 3, 10, 10), 0x000000FF);
    image = box.rendered();
    QCOMPARE(pointsNotOf(image, {{QRect(4, 3, 10, 10), red}, {QRect(0, 0, 4, 6), green}}), QStringList());

    // Cls clears the drawing, not the picture.
    box.cls();
    image = grabbed(box);
    QCOMPARE(pointsNotOf(image, {{QRect(2, 2, 8, 6), green}, {QRect(10, 2, 28, 26), buttonFace}}), QStringList());

    box.setPicture(QPixmap());
    image = box.rendered();
    QCOMPARE(pointsNotOf(image, image.rect(), buttonFace), QStringList());
}

void TestPictureBox::invalidColoursAreRefused()
{
    const std::unique_ptr<PictureBox> shown = shownBox();
    QVERIFY(shown);
    PictureBox &box = *shown;
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
    QCOMPARE(pointsNotOf(grabbed(box), QRect(2, 2, 36, 26), green), QStringList());

    // The highest system colour is still good.
    box.setBackColor(0x80000018);
    QCOMPARE(box.backColor(), 0x80000018u);
}

QTEST_MAIN(TestPictureBox)
#include "tst_picturebox.moc"
