#include "ControlAccess_p.h"
#include "Random.h"
#include "WandFrame_p.h"
#include "WandLayerDisplay_p.h"
#include "WandLayer_p.h"
#include "WandPool_p.h"

#include <QLabel>
#include <QPainter>
#include <QPushButton>
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

class TestWandLayer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { resetRandomGenerator(); }

    void framesShowAndEraseWithoutATrace();
    void exclusiveOrInvertsWhatLiesBeneath();
    void layerLiesBeneathTheSurfacesWidgets();
    void elementsLeaveNoTraceWhenTheyDie_data();
    void elementsLeaveNoTraceWhenTheyDie();
};

void TestWandLayer::framesShowAndEraseWithoutATrace()
{
    auto surface = makeSurface();
    surface->show();
    const QImage before = surface->grab().toImage();
    WandLayerDisplay display;
    display.showFrame(surface.get(), 3, cross(0x0000FFFF, false));
    WandLayer *layer = display.layerOf(surface.get());
    QVERIFY(layer);
    QCOMPARE(layer->geometry(), surface->rect());
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
    QVERIFY(layer->isBlank());
    QCOMPARE(differingPixels(surface->grab().toImage(), before), 0);

    // The surface grows: so does the layer.
    surface->resize(300, 260);
    QCOMPARE(layer->geometry(), QRect(0, 0, 300, 260));
}

void TestWandLayer::exclusiveOrInvertsWhatLiesBeneath()
{
    auto surface = makeSurface();
    surface->show();
    WandLayerDisplay display;
    display.showFrame(surface.get(), 0, cross(0x00FFFFFF, true));
    const QImage shot = surface->grab().toImage();
    // 0x204060 exclusive-or white.
    QCOMPARE(shot.pixelColor(50, 50), QColor(0xDF, 0xBF, 0x9F));
    QCOMPARE(shot.pixelColor(50, 60), QColor(0x20, 0x40, 0x60));
}

void TestWandLayer::layerLiesBeneathTheSurfacesWidgets()
{
    auto surface = makeSurface();
    auto *button = new QPushButton(QStringLiteral("OK"), surface.get());
    button->setGeometry(30, 40, 60, 30);
    surface->show();
    const QImage before = surface->grab().toImage();
    WandLayerDisplay display;
    // A line across the button and out on both sides.
    WandFrame frame(false, false);
    frame.line(QPointF(10, 55), QPointF(120, 55), 0x000000FF);
    display.showFrame(surface.get(), 0, frame);
    WandLayer *layer = display.layerOf(surface.get());
    const QImage shot = surface->grab().toImage();
    // Drawn on the surface, covered by the button.
    QCOMPARE(shot.pixelColor(15, 55), QColor(255, 0, 0));
    QCOMPARE(shot.pixelColor(110, 55), QColor(255, 0, 0));
    for (int x = 31; x < 89; ++x) {
        QCOMPARE(shot.pixel(x, 55), before.pixel(x, 55));
    }
    QVERIFY(layer->testAttribute(Qt::WA_TransparentForMouseEvents));
    QVERIFY(ControlAccess::isInternal(layer));
    QVERIFY(!ControlAccess::parentControls(surface.get()).contains(layer));
    QCOMPARE(surface->childAt(50, 55), button);
    QCOMPARE(surface->childAt(15, 55), nullptr);

    // A widget added later covers it too; one the program lowers beneath
    // the layer is under it again only until the next frame.
    auto *late = new QLabel(QStringLiteral("Late"), surface.get());
    late->setGeometry(0, 50, 20, 20);
    late->setAutoFillBackground(true);
    late->show();
    late->lower();
    display.showFrame(surface.get(), 0, frame);
    QVERIFY(surface->grab().toImage().pixelColor(15, 55) != QColor(255, 0, 0));
    // Only one layer per surface.
    QCOMPARE(surface->findChildren<WandLayer *>().size(), 1);
}

void TestWandLayer::elementsLeaveNoTraceWhenTheyDie_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<bool>("pictureMode");
    for (int style = 1; style <= 5; ++style) {
        for (bool picture : {false, true}) {
            QTest::addRow("style %d%s", style, picture ? ", picture" : "") << style << picture;
        }
    }
}

void TestWandLayer::elementsLeaveNoTraceWhenTheyDie()
{
    QFETCH(int, style);
    QFETCH(bool, pictureMode);
    auto surface = makeSurface();
    surface->show();
    const QImage before = surface->grab().toImage();
    WandLayerDisplay display;
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

QTEST_MAIN(TestWandLayer)
#include "tst_wandlayer.moc"
