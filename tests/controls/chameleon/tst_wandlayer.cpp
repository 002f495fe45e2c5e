#include "ControlAccess.h"
#include "Random.h"
#include "WandFrame.h"
#include "WandOverlay.h"
#include "WandOverlayDisplay.h"
#include "WandPool.h"

#include <QLabel>
#include <QPainter>
#include <QTest>

#include <memory>

using namespace Kelocontrols;

namespace {

// A surface with a plain dark background and a label in one corner.
std::unique_ptr<QWidget> makeSurface()
{
    auto surface = std::make_unique<QWidget>();
    surface->resize(200, 200);
    QPalette palette = surface->palette();
    palette.setColor(QPalette::Window, QColor(0x20, 0x40, 0x60));
    surface->setPalette(palette);
    surface->setAutoFillBackground(true);
    auto *label = new QLabel(QStringLiteral("Label"), surface.get());
    label->setGeometry(150, 150, 50, 50);
    return surface;
}

WandFrame cross(OleColor colour, bool exclusiveOr)
{
    WandFrame frame(false, exclusiveOr);
    frame.line(QPointF(20, 50), QPointF(80, 50), colour);
    frame.circle(QPointF(50, 120), 20, colour);
    return frame;
}

int differingPixels(const QImage &a, const QImage &b)
{
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            count += a.pixel(x, y) != b.pixel(x, y) ? 1 : 0;
        }
    }
    return count;
}

} // namespace

class TestWandOverlay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { resetRandomGenerator(); }

    void framesShowAndEraseWithoutATrace();
    void exclusiveOrInvertsWhatLiesBeneath();
    void overlayStaysOnTopOutOfTheWayAndOutOfTheControls();
    void elementsLeaveNoTraceWhenTheyDie_data();
    void elementsLeaveNoTraceWhenTheyDie();
};

void TestWandOverlay::framesShowAndEraseWithoutATrace()
{
    auto surface = makeSurface();
    surface->show();
    const QImage before = surface->grab().toImage();
    WandOverlayDisplay display;
    display.showFrame(surface.get(), 3, cross(0x0000FFFF, false));
    WandOverlay *overlay = display.overlayOf(surface.get());
    QVERIFY(overlay);
    QCOMPARE(overlay->geometry(), surface->rect());
    const QImage drawn = surface->grab().toImage();
    QCOMPARE(drawn.pixelColor(50, 50), QColor(255, 255, 0));
    QCOMPARE(drawn.pixelColor(70, 120), QColor(255, 255, 0));
    QCOMPARE(drawn.pixelColor(50, 60), before.pixelColor(50, 60));

    // A second element beside it, then the first erased.
    WandFrame other(false, false);
    other.line(QPointF(10, 10), QPointF(10, 30), 0x00FF00FF);
    display.showFrame(surface.get(), 7, other);
    display.showFrame(surface.get(), 3, WandFrame(true, false));
    const QImage after = surface->grab().toImage();
    QCOMPARE(after.pixelColor(50, 50), before.pixelColor(50, 50));
    QCOMPARE(after.pixelColor(10, 20), QColor(255, 0, 255));
    display.showFrame(surface.get(), 7, WandFrame(true, false));
    QVERIFY(overlay->isBlank());
    QCOMPARE(differingPixels(surface->grab().toImage(), before), 0);

    // The surface grows: so does the overlay.
    surface->resize(300, 260);
    QCOMPARE(overlay->geometry(), QRect(0, 0, 300, 260));
}

void TestWandOverlay::exclusiveOrInvertsWhatLiesBeneath()
{
    auto surface = makeSurface();
    surface->show();
    WandOverlayDisplay display;
    display.showFrame(surface.get(), 0, cross(0x00FFFFFF, true));
    const QImage shot = surface->grab().toImage();
    // 0x204060 exclusive-or white.
    QCOMPARE(shot.pixelColor(50, 50), QColor(0xDF, 0xBF, 0x9F));
    QCOMPARE(shot.pixelColor(50, 60), QColor(0x20, 0x40, 0x60));
}

void TestWandOverlay::overlayStaysOnTopOutOfTheWayAndOutOfTheControls()
{
    auto surface = makeSurface();
    surface->show();
    WandOverlayDisplay display;
    display.showFrame(surface.get(), 0, cross(0x000000FF, false));
    WandOverlay *overlay = display.overlayOf(surface.get());
    QVERIFY(overlay->testAttribute(Qt::WA_TransparentForMouseEvents));
    QVERIFY(ControlAccess::isInternal(overlay));
    QVERIFY(!ControlAccess::parentControls(surface.get()).contains(overlay));
    QCOMPARE(surface->childAt(160, 160)->metaObject()->className(), "QLabel");

    // A widget added later is covered again at the next frame.
    auto *late = new QLabel(QStringLiteral("Late"), surface.get());
    late->setGeometry(0, 40, 100, 20);
    late->setAutoFillBackground(true);
    late->show();
    display.showFrame(surface.get(), 0, cross(0x000000FF, false));
    QCOMPARE(surface->children().constLast(), overlay);
    QCOMPARE(surface->grab().toImage().pixelColor(50, 50), QColor(255, 0, 0));
    // Only one overlay per surface.
    QCOMPARE(surface->findChildren<WandOverlay *>().size(), 1);
}

void TestWandOverlay::elementsLeaveNoTraceWhenTheyDie_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<bool>("pictureMode");
    for (int style = 1; style <= 5; ++style) {
        for (bool picture : {false, true}) {
            QTest::addRow("style %d%s", style, picture ? ", picture" : "") << style << picture;
        }
    }
}

void TestWandOverlay::elementsLeaveNoTraceWhenTheyDie()
{
    QFETCH(int, style);
    QFETCH(bool, pictureMode);
    auto surface = makeSurface();
    surface->show();
    const QImage before = surface->grab().toImage();
    WandOverlayDisplay display;
    WandPool pool(&display);
    pool.setPictureMode(pictureMode);
    // An atom starts every other movement on average.
    for (int attempt = 0; attempt < 20 && pool.activeCount() == 0; ++attempt) {
        pool.advance();
        pool.movement(surface.get(), 100, 100, keloWandStyle(style));
    }
    QCOMPARE(pool.activeCount(), 1);
    QVERIFY(differingPixels(surface->grab().toImage(), before) > 0);
    const int index = pool.element(20).isActive() ? 20 : 0;
    const int life = pool.element(index).life;
    for (int tick = 0; tick < life; ++tick) {
        pool.advance();
    }
    QCOMPARE(pool.element(index).life, qint16(0));
    QCOMPARE(differingPixels(surface->grab().toImage(), before), 0);
}

QTEST_MAIN(TestWandOverlay)
#include "tst_wandoverlay.moc"
