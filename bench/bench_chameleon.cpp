// The chameleon's two periodic costs: one timer tick recolouring a form of
// 200 widgets, and one wand advance with all 21 elements alive.

#include "Kelochameleon.h"
#include "WandLayerDisplay_p.h"
#include "WandPool_p.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace Kelocontrols;

namespace {

// 200 widgets in a grid: labels, line edits (which keep their white face),
// buttons and check boxes, in turn.
std::unique_ptr<QWidget> makeForm(int widgets)
{
    auto form = std::make_unique<QWidget>();
    form->resize(1000, 800);
    for (int i = 0; i < widgets; ++i) {
        QWidget *w = nullptr;
        switch (i % 4) {
        case 0:
            w = new QLabel(QStringLiteral("Label %1").arg(i), form.get());
            break;
        case 1:
            w = new QLineEdit(QStringLiteral("Text %1").arg(i), form.get());
            break;
        case 2:
            w = new QPushButton(QStringLiteral("Button %1").arg(i), form.get());
            break;
        default:
            w = new QCheckBox(QStringLiteral("Check %1").arg(i), form.get());
            break;
        }
        w->setObjectName(QStringLiteral("control%1").arg(i));
        w->setGeometry((i % 10) * 100, (i / 10) * 40, 95, 30);
    }
    return form;
}

} // namespace

class BenchChameleon : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void variedColourTick();
    void variedColourTickAndRepaint();
    void wandAdvance_data();
    void wandAdvance();
};

void BenchChameleon::variedColourTick()
{
    std::unique_ptr<QWidget> form = makeForm(200);
    auto *chameleon = new Kelochameleon(form.get());
    chameleon->setObjectName(QStringLiteral("Kelochameleon1"));
    chameleon->setBackgroundStyle(keloBackgroundStyle::VariedColor);
    chameleon->setInterval(0); // a colour step on every tick
    form->show();
    auto *timer = chameleon->findChild<QTimer *>(QStringLiteral("Timer1"));
    timer->stop();
    const OleColor before = chameleon->backColor();
    QBENCHMARK
    {
        QMetaObject::invokeMethod(timer, "timeout");
    }
    QVERIFY(chameleon->backColor() != before);
}

// For comparison: the tick followed by a full paint of the form (rendered
// into a pixmap, as the offscreen platform does not paint windows), the
// work Qt does later from the event loop.
void BenchChameleon::variedColourTickAndRepaint()
{
    std::unique_ptr<QWidget> form = makeForm(200);
    auto *chameleon = new Kelochameleon(form.get());
    chameleon->setBackgroundStyle(keloBackgroundStyle::VariedColor);
    chameleon->setInterval(0);
    form->show();
    auto *timer = chameleon->findChild<QTimer *>(QStringLiteral("Timer1"));
    timer->stop();
    QBENCHMARK
    {
        QMetaObject::invokeMethod(timer, "timeout");
        const QPixmap frame = form->grab();
        Q_UNUSED(frame);
    }
}

void BenchChameleon::wandAdvance_data()
{
    QTest::addColumn<int>("style");
    QTest::newRow("Stars") << int(keloWandStyle::Stars);
    QTest::newRow("Ripples") << int(keloWandStyle::Ripples);
    QTest::newRow("Atom") << int(keloWandStyle::Atom);
    QTest::newRow("Starburst") << int(keloWandStyle::Starburst);
    QTest::newRow("Lightning") << int(keloWandStyle::Lightning);
}

void BenchChameleon::wandAdvance()
{
    QFETCH(int, style);
    QWidget surface;
    surface.resize(600, 400);
    surface.show();
    WandLayerDisplay display;
    WandPool pool(&display);
    for (int i = 0; i < WandPool::Size; ++i) {
        pool.startElement(i, &surface, float(20 + 27 * i), float(50 + 15 * i), keloWandStyle(style));
    }
    QCOMPARE(pool.activeCount(), WandPool::Size);
    // Every round starts from the full pool again, so the elements never age
    // out (lightning lives a single tick).
    const WandPool full = pool;
    QBENCHMARK
    {
        pool = full;
        pool.advance();
    }
}

QTEST_MAIN(BenchChameleon)
#include "bench_chameleon.moc"
