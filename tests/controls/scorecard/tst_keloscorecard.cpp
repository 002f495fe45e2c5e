// The score card: its scale, grades and pictures, persistence, tool tips,
// events, and the gauges it draws.

#include "GaugePainter_p.h"
#include <Kelocontrols/ImageList.h>
#include <Kelocontrols/KeloscoreCard.h>
#include <Kelocontrols/PictureBox.h>
#include <Kelocontrols/PropertyBag.h>
#include <Kelocontrols/PropertyTable.h>
#include <Kelocontrols/RuntimeError.h>

#include <QSignalSpy>
#include <QTest>

#include "KeloTestSupport.h"

using namespace Kelocontrols;
using KeloTest::errorNumberOf;

namespace {

QWidget *surface(const KeloscoreCard &card)
{
    return card.findChild<QWidget *>(QStringLiteral("Picture1"));
}

const QColor black(0, 0, 0), red(255, 0, 0), yellow(255, 255, 0), green(0, 255, 0), cyan(0, 255, 255),
    white(255, 255, 255), blue(0, 0, 255);

// A gauge card 204 x 34 pixels: with its 2-pixel border the drawing area is
// 200 x 30, so a score s lies at x = 200 * s.
struct GaugeCard
{
    explicit GaugeCard(keloScoreCardStyle style)
    {
        card.setStyle(style);
        card.setBackColor(0x00FFFFFF); // white
        card.setForeColor(0x00FF0000); // blue
        card.resize(204, 34);
        card.show();
    }
    QImage image() const { return card.findChild<PictureBox *>(QStringLiteral("Picture1"))->rendered(); }
    KeloscoreCard card;
};

QColor at(const QImage &image, int x, int y)
{
    return QColor(image.pixel(x, y)).toRgb();
}

// The x positions of the middle row whose colour is `color`.
QList<int> columnsOf(const QImage &image, const QColor &color)
{
    QList<int> xs;
    for (int x = 0; x < image.width(); ++x) {
        if (at(image, x, image.height() / 2) == color) {
            xs << x;
        }
    }
    return xs;
}

// The colours of the middle row at `xs`, for one comparison.
QList<QColor> alongMiddle(const QImage &image, const QList<int> &xs)
{
    QList<QColor> colours;
    for (int x : xs) {
        colours << at(image, x, image.height() / 2);
    }
    return colours;
}

int countInColumn(const QImage &image, int x, const QColor &color)
{
    int n = 0;
    for (int y = 0; y < image.height(); ++y) {
        n += at(image, x, y) == color;
    }
    return n;
}

using Writes = QList<QPair<QByteArray, double>>;
using Scale = QList<double>; // ScoreMin, ScoreMax, ScoreBad, ScoreMaybe, ScoreGood, ScoreStar

} // namespace

class tst_KeloscoreCard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void artwork()
    {
        KeloscoreCard card;
        // Grade 3: the small score card picture "ScoreCard3" is on the surface.
        QCOMPARE(card.grade(), 3);
        auto *picture = card.findChild<PictureBox *>(QStringLiteral("Picture1"));
        QVERIFY(picture);
        auto *images16 = card.findChild<ImageList *>(QStringLiteral("ImageList16"));
        auto *images32 = card.findChild<ImageList *>(QStringLiteral("ImageList32"));
        QVERIFY(images16 && images32);
        QCOMPARE(picture->picture().toImage(), images16->picture(QStringLiteral("ScoreCard3")).toImage());
        for (const QString &family :
            {QStringLiteral("ScoreCard"), QStringLiteral("Smiley"), QStringLiteral("Traffic")}) {
            for (int grade = 1; grade <= 5; ++grade) {
                QVERIFY(images16->contains(family + QString::number(grade)));
                QCOMPARE(images32->picture(family + QString::number(grade)).size(), QSize(32, 32));
            }
        }
        QCOMPARE(images16->count(), 15);
    }

    void grade_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("grade");
        QTest::newRow("below bad") << 0.1 << 1;
        QTest::newRow("at bad") << 0.2 << 2;
        QTest::newRow("just below good") << 0.5999 << 3;
        QTest::newRow("at good") << 0.6 << 4;
        QTest::newRow("at star") << 0.8 << 5;
    }

    void grade()
    {
        QFETCH(double, value);
        QFETCH(int, grade);
        KeloscoreCard card;
        card.setStyle(keloScoreCardStyle::SmileyLarge);
        card.setValue(value);
        QCOMPARE(card.grade(), grade);
        auto *picture = card.findChild<PictureBox *>(QStringLiteral("Picture1"));
        auto *images32 = card.findChild<ImageList *>(QStringLiteral("ImageList32"));
        QCOMPARE(picture->picture().toImage(), images32->picture(QStringLiteral("Smiley%1").arg(grade)).toImage());
    }

    // Each write is clamped between its neighbours on the scale (ScoreMin <=
    // ScoreBad <= ScoreMaybe <= ScoreGood <= ScoreStar <= ScoreMax, ScoreMin at
    // least one whole unit below ScoreMax). A form sets its properties one by one
    // in declaration order before the event loop runs: a scale that is in order
    // once all are set is kept exactly, whatever each write alone would give.
    void scaleWrites_data()
    {
        QTest::addColumn<bool>("afterEventLoop");
        QTest::addColumn<Writes>("writes");
        QTest::addColumn<Scale>("expected");

        const double bad = double(0.2f), maybe = double(0.4f), good = double(0.6f), star = double(0.8f);
        const auto clamped = [](const char *name, const Writes &writes, const Scale &expected) {
            QTest::newRow(name) << true << writes << expected;
        };
        clamped("Good above Star", {{"ScoreGood", 0.9}}, {0, 1, bad, maybe, star, star});
        clamped("Good below Maybe", {{"ScoreGood", 0.1}}, {0, 1, bad, maybe, maybe, star});
        clamped("Star above Max", {{"ScoreStar", 1.5}}, {0, 1, bad, maybe, good, 1});
        clamped("Star below Good", {{"ScoreStar", 0.3}}, {0, 1, bad, maybe, good, good});
        clamped("Bad below Min", {{"ScoreBad", -1}}, {0, 1, 0, maybe, good, star});
        clamped("Bad above Maybe", {{"ScoreBad", 0.55}}, {0, 1, maybe, maybe, good, star});
        clamped("Maybe below Bad", {{"ScoreMaybe", 0.05}}, {0, 1, bad, bad, good, star});
        clamped("Maybe above Good", {{"ScoreMaybe", 0.95}}, {0, 1, bad, good, good, star});
        clamped("Min reaching Max", {{"ScoreMin", 1}}, {0, 1, bad, maybe, good, star});
        clamped("Min pushes the thresholds up", {{"ScoreMin", 0.5}}, {0.5, 1, 0.5, 0.5, good, star});
        clamped("Max pulls the thresholds down", {{"ScoreMax", 0.3}},
            {0, double(0.3f), bad, double(0.3f), double(0.3f), double(0.3f)});
        clamped("Max at or below Min", {{"ScoreMax", -5}}, {0, 1, bad, maybe, good, star});
        clamped("Min equal to Max", {{"ScoreMax", 10}, {"ScoreMin", 10}}, {9, 10, 9, 9, 9, 9});

        const Writes below{
            {"ScoreStar", 0.125}, {"ScoreGood", 0.0625}, {"ScoreMaybe", 0.03125}, {"ScoreBad", 0.015625}};
        QTest::newRow("form: all below their defaults")
            << false << below << Scale{0, 1, 0.015625, 0.03125, 0.0625, 0.125};
        QTest::newRow("form: all above their defaults")
            << false
            << Writes{{"ScoreStar", 0.96875}, {"ScoreGood", 0.9375}, {"ScoreMaybe", 0.875}, {"ScoreBad", 0.84375}}
            << Scale{0, 1, 0.84375, 0.875, 0.9375, 0.96875};
        QTest::newRow("form: range below zero") << false
                                                << Writes{{"ScoreMin", -2}, {"ScoreMax", -1}, {"ScoreStar", -1.125},
                                                       {"ScoreGood", -1.25}, {"ScoreMaybe", -1.5}, {"ScoreBad", -1.75}}
                                                << Scale{-2, -1, -1.75, -1.5, -1.25, -1.125};
        // What is not in order as a whole is clamped write by write.
        QTest::newRow("form: one threshold alone")
            << false << Writes{{"ScoreStar", 0.125}} << Scale{0, 1, bad, maybe, good, good};
        // A write against declaration order is no form's: the writes before it
        // are taken as they stand, and it is clamped.
        QTest::newRow("form: against declaration order")
            << false << Writes{{"ScoreBad", 0.015625}, {"ScoreMaybe", 0.03125}}
            << Scale{0, 1, 0.015625, 0.03125, good, star};
        QTest::newRow("form: written twice")
            << false << Writes{{"ScoreGood", 0.3}, {"ScoreGood", 0.3}, {"ScoreMaybe", bad}}
            << Scale{0, 1, bad, bad, maybe, star};
        QTest::newRow("once the event loop ran") << true << below << Scale{0, 1, 0.015625, bad, maybe, good};
    }

    void scaleWrites()
    {
        QFETCH(bool, afterEventLoop);
        QFETCH(Writes, writes);
        QFETCH(Scale, expected);

        KeloscoreCard card;
        if (afterEventLoop) {
            QCoreApplication::processEvents();
        }
        for (const auto &[name, value] : writes) {
            QVERIFY(card.setProperty(name.constData(), value));
        }
        const auto scale = [&] {
            return Scale{card.ScoreMin(), card.ScoreMax(), card.ScoreBad(), card.ScoreMaybe(), card.ScoreGood(),
                card.ScoreStar()};
        };
        QCOMPARE(scale(), expected);
        QCoreApplication::processEvents(); // the batch ends: nothing moves
        QCOMPARE(scale(), expected);
    }

    // Late-bound writes by name (a host, QUiLoader) behave like the typed
    // setters: conversions, ranges that ignore a write, and PropertyChanged.
    void lateBoundWrites_data()
    {
        QTest::addColumn<QString>("property");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<bool>("written");
        QTest::addColumn<QVariant>("expected");
        QTest::addColumn<bool>("emits");

        QTest::newRow("single precision kept")
            << "ScoreStar" << QVariant(0.9) << true << QVariant(double(0.9f)) << true;
        QTest::newRow("system colour as signed 32 bits")
            << "BackColor" << QVariant(qint32(-2147483633)) << true << QVariant(0x8000000Fu) << true;
        QTest::newRow("system colour as 64 bits")
            << "FontColor" << QVariant(qint64(0x80000012)) << true << QVariant(0x80000012u) << true;
        QTest::newRow("RGB colour from int")
            << "TickLineColor" << QVariant(0x00FF8040) << true << QVariant(0x00FF8040u) << true;
        QTest::newRow("enum at current value is silent") << "Style" << QVariant(0) << true << QVariant(0) << false;
        QTest::newRow("ShowValue last member") << "ShowValue" << QVariant(6) << true << QVariant(6) << true;
        QTest::newRow("ToolTipStyle out of range ignored")
            << "ToolTipStyle" << QVariant(4) << true << QVariant(3) << false;
        QTest::newRow("ShowBlocks upper bound") << "ShowBlocks" << QVariant(100) << true << QVariant(100) << true;
        QTest::newRow("ShowBlocks above range ignored")
            << "ShowBlocks" << QVariant(101) << true << QVariant(0) << false;
        QTest::newRow("ShowBlocks negative ignored") << "ShowBlocks" << QVariant(-1) << true << QVariant(0) << false;
        QTest::newRow("negative tick interval clamps")
            << "ShowTickLinesEvery" << QVariant(-0.5) << true << QVariant(0.0) << true;
        QTest::newRow("text that is no number refused")
            << "Value" << QVariant(QStringLiteral("abc")) << false << QVariant(0.5) << false;
        QTest::newRow("ToolTipStyle below range ignored")
            << "ToolTipStyle" << QVariant(-1) << true << QVariant(3) << false;
        QTest::newRow("value outside the scale kept") << "Value" << QVariant(-2.5) << true << QVariant(-2.5) << true;
        QTest::newRow("a clamped write is still reported")
            << "ScoreGood" << QVariant(99) << true << QVariant(double(0.8f)) << true;
    }

    void lateBoundWrites()
    {
        QFETCH(QString, property);
        QFETCH(QVariant, value);
        QFETCH(bool, written);
        QFETCH(QVariant, expected);
        QFETCH(bool, emits);

        KeloscoreCard card;
        QSignalSpy changes(&card, &ControlBase::PropertyChanged);
        QCOMPARE(card.setProperty(property.toLatin1().constData(), value), written);
        QVariant actual = card.property(property.toLatin1().constData());
        if (actual.metaType().flags().testFlag(QMetaType::IsEnumeration)) {
            actual = actual.toInt();
        }
        QCOMPARE(actual, expected);
        QCOMPARE(changes.size(), emits ? 1 : 0);
        if (emits) {
            QCOMPARE(changes.at(0).at(0).toString(), property);
        }
    }

    void toolTips()
    {
        KeloscoreCard card;
        QCOMPARE(surface(card)->toolTip(), QStringLiteral(" 50%")); // both, with the empty text

        card.setToolTip(QStringLiteral("Score"));
        QCOMPARE(surface(card)->toolTip(), QStringLiteral(" 50%")); // rebuilt only at the next redraw
        card.Refresh(); // repaints without redrawing
        QCOMPARE(surface(card)->toolTip(), QStringLiteral(" 50%"));
        card.setValue(0.93);
        QCOMPARE(surface(card)->toolTip(), QStringLiteral("Score 93%"));

        card.setToolTipStyle(keloToolTipStyle::ShowValueAsTip);
        card.setValue(0.125);
        QCOMPARE(surface(card)->toolTip(), QStringLiteral("13%"));
        card.setToolTipStyle(keloToolTipStyle::ShowTextAsTip);
        card.setValue(1.5);
        QCOMPARE(surface(card)->toolTip(), QStringLiteral("Score"));
        card.setToolTipStyle(keloToolTipStyle::None);
        card.setValue(0.2);
        QCOMPARE(surface(card)->toolTip(), QString());

        // A style code that only loading can bring in shows no tip.
        PropertyBag bag;
        bag.WriteProperty(QStringLiteral("ToolTipStyle"), 7, 3);
        bag.WriteProperty(QStringLiteral("ToolTip"), QStringLiteral("Loaded"), QString());
        card.ReadProperties(bag);
        QCOMPARE(card.ToolTipStyle(), keloToolTipStyle(7));
        QCOMPARE(surface(card)->toolTip(), QString());
    }

    void designTimeLeavesToolTipAlone()
    {
        ControlBase::DesignModeScope designer;
        KeloscoreCard card;
        QVERIFY(!card.UserMode());
        QCOMPARE(surface(card)->toolTip(), QString());
        card.setToolTip(QStringLiteral("Score"));
        card.setValue(0.93);
        QCOMPARE(surface(card)->toolTip(), QString());

        // Switching to run mode builds the tip for what the card shows.
        card.setUserMode(true);
        QCOMPARE(surface(card)->toolTip(), QStringLiteral("Score 93%"));
    }

    // Saved in the control's own order (ScoreBad after ToolTip), and read back
    // through the text form into an equal control.
    void persistenceOrders()
    {
        KeloscoreCard card;
        KeloTest::setProperties(&card,
            {{"BackColor", 0x00FFFFFFu}, {"ForeColor", 0x000000FFu}, {"Enabled", false},
                {"Font", QFont(QStringLiteral("DejaVu Serif"), 15, QFont::Bold)}, {"BorderStyle", 0}, {"Value", 0.75},
                {"Style", 8}, {"ScoreMin", -1}, {"ScoreMax", 2}, {"ScoreStar", 1.5}, {"ScoreGood", 0.9},
                {"ScoreMaybe", 0.45}, {"ScoreBad", 0.1}, {"ShowLimitLines", true}, {"ShowTickLinesEvery", 0.1},
                {"TickLineColor", 0x00808080u}, {"FontColor", 0x80000008u}, {"ShowValue", 6}, {"ToolTipStyle", 0},
                {"ToolTip", QStringLiteral("Quality \"A\"\r\nline two")}, {"ShowMarker", 3}, {"ShowBlocks", 25},
                {"GaugeOrientation", 1}});
        PropertyBag bag;
        card.WriteProperties(bag);
        QCOMPARE(bag.names(),
            QStringList({"BackColor", "ForeColor", "Enabled", "Font", "BorderStyle", "Value", "Style", "ScoreStar",
                "ScoreGood", "ScoreMaybe", "ScoreMin", "ScoreMax", "ShowLimitLines", "ShowTickLinesEvery",
                "TickLineColor", "FontColor", "ShowValue", "ToolTipStyle", "ToolTip", "ScoreBad", "ShowMarker",
                "ShowBlocks", "GaugeOrientation"}));
        QCOMPARE(bag.ReadProperty(QStringLiteral("FontColor")).toUInt(), 0x80000008u);

        KeloscoreCard restored;
        restored.ReadProperties(PropertyBag::fromText(bag.toText()));
        PropertyBag again;
        restored.WriteProperties(again);
        QCOMPARE(again.toText(), bag.toText());
        QCOMPARE(restored.ToolTip(), QStringLiteral("Quality \"A\"\r\nline two"));
        QCOMPARE(float(restored.ScoreBad()), 0.1f);
    }

    void loadingKeepsValuesAsSaved()
    {
        PropertyBag bag;
        bag.WriteProperty(QStringLiteral("ScoreBad"), 0.9f, 0.2f);
        bag.WriteProperty(QStringLiteral("ScoreStar"), 0.1f, 0.8f);
        bag.WriteProperty(QStringLiteral("ShowBlocks"), 500, 0);
        bag.WriteProperty(QStringLiteral("ShowTickLinesEvery"), -3, 0);
        bag.WriteProperty(QStringLiteral("Value"), 0.5f, 0.5f);
        KeloscoreCard card;
        QSignalSpy spy(&card, &KeloscoreCard::PropertyChanged);
        card.ReadProperties(bag);
        QCOMPARE(spy.count(), 0);
        QCOMPARE(float(card.ScoreBad()), 0.9f);
        QCOMPARE(float(card.ScoreStar()), 0.1f);
        QCOMPARE(card.ShowBlocks(), 500);
        QCOMPARE(card.ShowTickLinesEvery(), -3.0);
        // Value 0.5 reaches ScoreStar (0.1) and ScoreMaybe but not ScoreBad (0.9):
        // the last test that holds wins.
        QCOMPARE(card.grade(), 5);
        card.setValue(0.05);
        QCOMPARE(card.grade(), 1);

        // InitProperties puts every default back.
        card.InitProperties();
        QCOMPARE(float(card.ScoreBad()), 0.2f);
        QCOMPARE(card.ShowBlocks(), 0);
    }

    void loadingRejectsBadValues()
    {
        KeloscoreCard card;
        const auto load = [&](const char *name, const QVariant &value) {
            PropertyBag bag;
            bag.WriteProperty(QString::fromLatin1(name), value);
            return errorNumberOf([&] { card.ReadProperties(bag); });
        };
        QCOMPARE(load("Value", QStringLiteral("abc")), int(ErrorNumber::TypeMismatch));
        QCOMPARE(load("Value", QStringLiteral("0.25")), 0);
        QCOMPARE(card.Value(), 0.25);
        QCOMPARE(load("BorderStyle", 3), int(ErrorNumber::InvalidPropertyValue));
        QCOMPARE(load("Style", 70000), int(ErrorNumber::Overflow));
        QCOMPARE(load("Font", 12), int(ErrorNumber::TypeMismatch));
        // A write the control refuses raises out of a late-bound setProperty() as well.
        QCOMPARE(errorNumberOf([&] { card.setProperty("BorderStyle", 2); }), int(ErrorNumber::InvalidPropertyValue));
        QCOMPARE(card.BorderStyle(), 1);
    }

    void pictureStylesFitThePicture()
    {
        KeloscoreCard card;
        card.resize(200, 100);
        card.show();
        card.setStyle(keloScoreCardStyle::ScoreCardLarge);
        QCOMPARE(card.size(), QSize(36, 36)); // 32 pixels and a two-pixel border each side
        QCOMPARE(surface(card)->geometry(), QRect(0, 0, 36, 36));
        card.setStyle(keloScoreCardStyle::TrafficLightSmall);
        QCOMPARE(card.size(), QSize(20, 20));
        card.setBorderStyle(0);
        card.setStyle(keloScoreCardStyle::SmileyLarge);
        QCOMPARE(card.size(), QSize(32, 32));

        // Other styles fill the control.
        card.setStyle(keloScoreCardStyle::Gauge);
        card.resize(150, 24);
        QCOMPARE(surface(card)->geometry(), QRect(0, 0, 150, 24));
    }

    void stockEvents()
    {
        KeloscoreCard card;
        card.setStyle(keloScoreCardStyle::Gauge);
        card.resize(100, 30);
        card.show();
        QVERIFY(QTest::qWaitForWindowExposed(&card));
        QStringList events;
        QObject::connect(&card, &KeloscoreCard::Click, [&] { events << QStringLiteral("Click"); });
        QObject::connect(&card, &KeloscoreCard::MouseDown, [&](short &button, short &shift, float &x, float &y) {
            events << QStringLiteral("MouseDown %1 %2 %3 %4").arg(button).arg(shift).arg(x).arg(y);
        });
        QObject::connect(&card, &KeloscoreCard::MouseUp,
            [&](short &button, short &, float &, float &) { events << QStringLiteral("MouseUp %1").arg(button); });
        QObject::connect(&card, &KeloscoreCard::KeyDown,
            [&](short &code, short &shift) { events << QStringLiteral("KeyDown %1 %2").arg(code).arg(shift); });
        QObject::connect(
            &card, &KeloscoreCard::KeyPress, [&](short &ascii) { events << QStringLiteral("KeyPress %1").arg(ascii); });

        QTest::mouseClick(surface(card), Qt::LeftButton, Qt::ShiftModifier, QPoint(10, 5));
        QTest::keyClick(surface(card), Qt::Key_A);
        QCOMPARE(events, QStringList({"MouseDown 1 1 10 5", "MouseUp 1", "Click", "KeyDown 65 0", "KeyPress 97"}));

        events.clear();
        card.setEnabled(false);
        QTest::mouseClick(surface(card), Qt::LeftButton, {}, QPoint(10, 5));
        QCOMPARE(events, QStringList());
    }

    // ---- drawing ----
    void flashCardFillsWithTheGradeColour_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QColor>("color");
        QTest::newRow("grade 1") << 0.1 << black;
        QTest::newRow("grade 5") << 0.85 << cyan;
    }

    void flashCardFillsWithTheGradeColour()
    {
        QFETCH(double, value);
        QFETCH(QColor, color);
        KeloscoreCard card;
        card.resize(40, 30);
        card.setStyle(keloScoreCardStyle::FlashCard);
        card.setValue(value);
        const QImage drawn = card.findChild<PictureBox *>(QStringLiteral("Picture1"))->rendered();
        QCOMPARE(drawn.size(), QSize(36, 26));
        for (int y = 0; y < drawn.height(); ++y) {
            for (int x = 0; x < drawn.width(); ++x) {
                QCOMPARE(at(drawn, x, y), color);
            }
        }
        // And on screen, inside the border.
        const QImage screen = card.grab().toImage();
        QCOMPARE(at(screen, 20, 15), color);
        QCOMPARE(at(screen, 2, 2), color);
    }

    void rainbowBarTakesTheGradeColour()
    {
        GaugeCard gauge(keloScoreCardStyle::GaugeRainbow);
        const QList<std::pair<double, QColor>> cases
            = {{0.1, black}, {0.3, red}, {0.5, yellow}, {0.7, green}, {0.9, cyan}};
        for (const auto &[value, color] : cases) {
            gauge.card.setValue(value);
            const QImage image = gauge.image();
            QCOMPARE(at(image, 5, 15), color);
            QCOMPARE(at(image, int(200 * value) - 2, 15), color);
            QCOMPARE(at(image, int(200 * value) + 2, 15), white);
        }
    }

    void plainBarAndOverrun()
    {
        GaugeCard gauge(keloScoreCardStyle::Gauge);
        gauge.card.setValue(0.9);
        QCOMPARE(alongMiddle(gauge.image(), {170, 185}), (QList<QColor>{blue, white})); // no overrun
        // Over ScoreStar (x = 160) up to the value in red.
        gauge.card.setStyle(keloScoreCardStyle::GaugeOverrun);
        QCOMPARE(alongMiddle(gauge.image(), {150, 158, 162, 177, 182}), (QList<QColor>{blue, blue, red, red, white}));
        gauge.card.setValue(0.7); // not beyond ScoreStar: no red
        QVERIFY(columnsOf(gauge.image(), red).isEmpty());
        gauge.card.setValue(1.5); // beyond the scale: the bar runs to the edge
        QCOMPARE(at(gauge.image(), 199, 15), red);
    }

    void limitLines()
    {
        GaugeCard gauge(keloScoreCardStyle::Gauge);
        gauge.card.setValue(0); // no bar
        QVERIFY(columnsOf(gauge.image(), red).isEmpty());
        gauge.card.setShowLimitLines(true);
        const QImage image = gauge.image();
        // Two pixels wide, across the whole bar, at 0.2, 0.4, 0.6 and 0.8.
        QCOMPARE(columnsOf(image, red) + columnsOf(image, yellow) + columnsOf(image, green) + columnsOf(image, cyan),
            QList<int>({39, 40, 79, 80, 119, 120, 159, 160}));
        QCOMPARE(countInColumn(image, 39, red), 30);
        // A threshold at the very end of the scale stays visible.
        gauge.card.setScoreStar(1.0);
        QCOMPARE(columnsOf(gauge.image(), cyan), QList<int>({198, 199}));
    }

    void verticalGaugeGrowsFromTheBottom()
    {
        KeloscoreCard card;
        card.setStyle(keloScoreCardStyle::GaugeRainbow);
        card.setGaugeOrientation(keloGaugeOrientation::Vertical);
        card.setBackColor(0x00FFFFFF);
        card.resize(34, 204); // drawing area 30 x 200
        card.show();
        card.setValue(0.25);
        const QImage image = card.findChild<PictureBox *>(QStringLiteral("Picture1"))->rendered();
        QCOMPARE((QList<QColor>{at(image, 15, 199), at(image, 15, 152), at(image, 15, 147), at(image, 15, 2)}),
            (QList<QColor>{red, red, white, white}));
    }

    void blocks()
    {
        QList<int> widths;
        for (int blocks : {1, 10, 11, 20, 21, 100}) {
            widths << GaugePainter::blockPenWidth(blocks);
        }
        QCOMPARE(widths, (QList<int>{3, 3, 2, 2, 1, 1}));
        GaugeCard gauge(keloScoreCardStyle::Gauge);
        gauge.card.setValue(1);
        gauge.card.setShowBlocks(4);
        // Dividers in the back colour, three pixels wide, at 50, 100 and 150.
        QCOMPARE(columnsOf(gauge.image(), white), QList<int>({49, 50, 51, 99, 100, 101, 149, 150, 151}));
        gauge.card.setShowBlocks(20);
        QCOMPARE(columnsOf(gauge.image(), white).size(), 19 * 2);
        gauge.card.setShowBlocks(1); // one block: nothing to divide
        QVERIFY(columnsOf(gauge.image(), white).isEmpty());
    }

    void ticks()
    {
        QCOMPARE(GaugePainter::tickScores(0, 1, 0.25f, 200), QList<float>({0.25f, 0.5f, 0.75f, 1.0f}));
        QCOMPARE(GaugePainter::tickScores(0, 1, 0, 200), QList<float>());
        QCOMPARE(GaugePainter::tickScores(2, 3, 0.5f, 200), QList<float>({2.5f, 3.0f}));
        // A step too small to move a float ends the count instead of looping.
        QVERIFY(GaugePainter::tickScores(1000, 2000, 1e-6f, 200).size() <= 200);
        GaugeCard gauge(keloScoreCardStyle::Gauge);
        gauge.card.setValue(0);
        gauge.card.setTickLineColor(0x000000FF); // red
        gauge.card.setShowTickLinesEvery(0.1);
        const QImage image = gauge.image();
        // The centre line runs along the whole axis.
        QCOMPARE(alongMiddle(image, {3, 195}) << at(image, 3, 10), (QList<QColor>{red, red, white}));
        // Ordinary ticks span 0.3 of the thickness, every fifth one 0.5 of it; none at ScoreMin.
        QCOMPARE(
            (QList<int>{countInColumn(image, 20, red), countInColumn(image, 100, red), countInColumn(image, 0, red)}),
            (QList<int>{9, 15, 1}));
    }

    void valueTextPlacement()
    {
        GaugeCard gauge(keloScoreCardStyle::Gauge);
        gauge.card.setValue(0);
        gauge.card.setFontColor(0x000000FF);
        auto inkIn = [&](int from, int to) {
            const QImage image = gauge.image();
            int n = 0;
            for (int x = from; x < to; ++x) {
                for (int y = 0; y < image.height(); ++y) {
                    const QColor c = at(image, x, y);
                    n += c.red() > 128 && c.green() < 100;
                }
            }
            return n;
        };
        QCOMPARE(inkIn(0, 200), 0);
        gauge.card.setShowValue(keloShowValue::AtLeft);
        QVERIFY(inkIn(0, 40) > 0);
        QCOMPARE(inkIn(60, 200), 0);
        gauge.card.setShowValue(keloShowValue::AtRight);
        QVERIFY(inkIn(160, 200) > 0);
        QCOMPARE(inkIn(0, 140), 0);
        gauge.card.setShowValue(keloShowValue::AtMiddle);
        QVERIFY(inkIn(80, 120) > 0);
        QCOMPARE(inkIn(0, 60) + inkIn(140, 200), 0);
        // Adjust follows the end of the bar.
        gauge.card.setShowValue(keloShowValue::Adjust);
        gauge.card.setValue(0.5);
        QVERIFY(inkIn(100, 150) > 0);
        QCOMPARE(inkIn(0, 95) + inkIn(160, 200), 0);
        gauge.card.setValue(0.98); // no room beyond the end: inside the bar
        QVERIFY(inkIn(150, 196) > 0);
    }

    void nothingNewIsDrawnWhenThereIsNothingToDraw()
    {
        KeloscoreCard card;
        card.resize(40, 30);
        card.setStyle(keloScoreCardStyle::FlashCard);
        card.setValue(0.85);
        auto *surface = card.findChild<PictureBox *>(QStringLiteral("Picture1"));
        QCOMPARE(at(surface->rendered(), 10, 10), cyan);
        // A gauge whose scale is empty (only loading can make one) draws nothing.
        PropertyBag emptyScale;
        emptyScale.WriteProperty(QStringLiteral("Style"), 7, 0);
        emptyScale.WriteProperty(QStringLiteral("ScoreMin"), 1.0f, 0.0f);
        emptyScale.WriteProperty(QStringLiteral("Value"), 0.1f, 0.5f);
        card.ReadProperties(emptyScale);
        QCOMPARE(at(surface->rendered(), 10, 10), cyan);
        // An unknown style only rebuilds the tool tip.
        PropertyBag unknownStyle;
        unknownStyle.WriteProperty(QStringLiteral("Style"), 12, 0);
        unknownStyle.WriteProperty(QStringLiteral("Value"), 0.1f, 0.5f);
        card.ReadProperties(unknownStyle);
        QCOMPARE(at(surface->rendered(), 10, 10), cyan);
        QCOMPARE(surface->toolTip(), QStringLiteral(" 10%"));
    }
};

QTEST_MAIN(tst_KeloscoreCard)
#include "tst_keloscorecard.moc"
