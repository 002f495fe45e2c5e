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

QStringList changes(const QSignalSpy &spy)
{
    QStringList names;
    for (const auto &args : spy) {
        names << args.at(0).toString();
    }
    return names;
}

} // namespace

class tst_KeloscoreCard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaults_data();
    void defaults();
    void artwork();
    void grade_data();
    void grade();
    void thresholdClamping();
    void rangeClamping();
    void formWritesKeepAScaleInOrder_data();
    void formWritesKeepAScaleInOrder();
    void lateBoundWrites_data();
    void lateBoundWrites();
    void propertyChangedNames();
    void toolTips();
    void designTimeLeavesToolTipAlone();
    void persistenceOrders();
    void loadingKeepsValuesAsSaved();
    void loadingRejectsBadValues();
    void lateBoundAccess();
    void pictureStylesFitThePicture();
    void stockEvents();
};

void tst_KeloscoreCard::defaults_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QVariant>("expected");
    const QList<QPair<const char *, QVariant>> rows{{"BackColor", 0x8000000Fu}, {"ForeColor", 0x80000012u},
        {"Enabled", true}, {"BorderStyle", 1}, {"Value", 0.5}, {"Style", 0}, {"ScoreStar", double(0.8f)},
        {"ScoreGood", double(0.6f)}, {"ScoreMaybe", double(0.4f)}, {"ScoreBad", double(0.2f)}, {"ScoreMin", 0.0},
        {"ScoreMax", 1.0}, {"ShowLimitLines", false}, {"ShowTickLinesEvery", 0.0}, {"TickLineColor", 0u},
        {"FontColor", 0u}, {"ShowValue", 0}, {"ToolTipStyle", 3}, {"ToolTip", QString()}, {"ShowMarker", 0},
        {"ShowBlocks", 0}, {"GaugeOrientation", 0}, {"Font", QApplication::font()}};
    for (const auto &[name, value] : rows) {
        QTest::newRow(name) << QByteArray(name) << value;
    }
}

void tst_KeloscoreCard::defaults()
{
    QFETCH(QByteArray, property);
    QFETCH(QVariant, expected);
    const KeloscoreCard card;
    QVariant actual = card.property(property.constData());
    if (actual.metaType().flags().testFlag(QMetaType::IsEnumeration)) {
        actual = actual.toInt();
    }
    QCOMPARE(actual, expected);
}

void tst_KeloscoreCard::artwork()
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
    for (const QString &family : {QStringLiteral("ScoreCard"), QStringLiteral("Smiley"), QStringLiteral("Traffic")}) {
        for (int grade = 1; grade <= 5; ++grade) {
            QVERIFY(images16->contains(family + QString::number(grade)));
            QCOMPARE(images32->picture(family + QString::number(grade)).size(), QSize(32, 32));
        }
    }
    QCOMPARE(images16->count(), 15);
}

void tst_KeloscoreCard::grade_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("grade");
    QTest::newRow("below bad") << 0.1 << 1;
    QTest::newRow("at bad") << 0.2 << 2;
    QTest::newRow("just below good") << 0.5999 << 3;
    QTest::newRow("at good") << 0.6 << 4;
    QTest::newRow("at star") << 0.8 << 5;
    QTest::newRow("above max") << 7.0 << 5;
    QTest::newRow("below min") << -3.0 << 1;
}

void tst_KeloscoreCard::grade()
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

void tst_KeloscoreCard::thresholdClamping()
{
    KeloscoreCard card;
    card.setScoreGood(0.9); // above ScoreStar
    QCOMPARE(float(card.ScoreGood()), 0.8f);
    card.setScoreGood(0.1); // below ScoreMaybe
    QCOMPARE(float(card.ScoreGood()), 0.4f);
    card.setScoreGood(0.6);

    card.setScoreStar(1.5); // above ScoreMax
    QCOMPARE(card.ScoreStar(), 1.0);
    card.setScoreStar(0.3); // below ScoreGood
    QCOMPARE(float(card.ScoreStar()), 0.6f);

    card.setScoreBad(-1); // below ScoreMin
    QCOMPARE(card.ScoreBad(), 0.0);
    card.setScoreBad(0.55); // above ScoreMaybe
    QCOMPARE(float(card.ScoreBad()), 0.4f);

    card.setScoreMaybe(0.05); // below ScoreBad
    QCOMPARE(float(card.ScoreMaybe()), 0.4f);
    card.setScoreMaybe(0.95); // above ScoreGood
    QCOMPARE(float(card.ScoreMaybe()), 0.6f);
}

void tst_KeloscoreCard::rangeClamping()
{
    {
        KeloscoreCard card;
        card.setScoreMin(1); // would reach ScoreMax: one whole unit below it
        QCOMPARE(card.ScoreMin(), 0.0);
        QCOMPARE(float(card.ScoreBad()), 0.2f);
        card.setScoreMin(0.5); // pushes ScoreBad and ScoreMaybe up
        QCOMPARE(card.ScoreMin(), 0.5);
        QCOMPARE(card.ScoreBad(), 0.5);
        QCOMPARE(card.ScoreMaybe(), 0.5);
        QCOMPARE(float(card.ScoreGood()), 0.6f);
    }
    {
        KeloscoreCard card;
        card.setScoreMax(0.3); // pulls ScoreMaybe, ScoreGood, ScoreStar down
        QCOMPARE(float(card.ScoreMax()), 0.3f);
        QCOMPARE(float(card.ScoreMaybe()), 0.3f);
        QCOMPARE(float(card.ScoreGood()), 0.3f);
        QCOMPARE(float(card.ScoreStar()), 0.3f);
        QCOMPARE(float(card.ScoreBad()), 0.2f);
        card.setScoreMax(-5); // at or below ScoreMin: ScoreMin + 1
        QCOMPARE(card.ScoreMax(), 1.0);
    }
    {
        KeloscoreCard card;
        card.setScoreMax(10);
        card.setScoreMin(10); // equal to ScoreMax
        QCOMPARE(card.ScoreMin(), 9.0);
        QCOMPARE(card.ScoreBad(), 9.0);
        QCOMPARE(card.ScoreStar(), 9.0);
    }
}

using Writes = QList<QPair<QByteArray, double>>;
using Scale = QList<double>; // ScoreMin, ScoreMax, ScoreBad, ScoreMaybe, ScoreGood, ScoreStar

void tst_KeloscoreCard::formWritesKeepAScaleInOrder_data()
{
    QTest::addColumn<bool>("afterEventLoop");
    QTest::addColumn<Writes>("writes");
    QTest::addColumn<Scale>("expected");

    const Writes below{{"ScoreStar", 0.125}, {"ScoreGood", 0.0625}, {"ScoreMaybe", 0.03125}, {"ScoreBad", 0.015625}};
    QTest::newRow("all below their defaults") << false << below << Scale{0, 1, 0.015625, 0.03125, 0.0625, 0.125};
    QTest::newRow("all above their defaults")
        << false << Writes{{"ScoreStar", 0.96875}, {"ScoreGood", 0.9375}, {"ScoreMaybe", 0.875}, {"ScoreBad", 0.84375}}
        << Scale{0, 1, 0.84375, 0.875, 0.9375, 0.96875};
    QTest::newRow("range below zero") << false
                                      << Writes{{"ScoreMin", -2}, {"ScoreMax", -1}, {"ScoreStar", -1.125},
                                             {"ScoreGood", -1.25}, {"ScoreMaybe", -1.5}, {"ScoreBad", -1.75}}
                                      << Scale{-2, -1, -1.75, -1.5, -1.25, -1.125};
    // What is not in order as a whole is clamped write by write.
    QTest::newRow("one threshold alone") << false << Writes{{"ScoreStar", 0.125}}
                                         << Scale{0, 1, double(0.2f), double(0.4f), double(0.6f), double(0.6f)};
    // A write against declaration order is no form's: the writes before it
    // are taken as they stand, and it is clamped.
    QTest::newRow("against declaration order") << false << Writes{{"ScoreBad", 0.015625}, {"ScoreMaybe", 0.03125}}
                                               << Scale{0, 1, 0.015625, 0.03125, double(0.6f), double(0.8f)};
    QTest::newRow("written twice") << false
                                   << Writes{{"ScoreGood", 0.3}, {"ScoreGood", 0.3}, {"ScoreMaybe", double(0.2f)}}
                                   << Scale{0, 1, double(0.2f), double(0.2f), double(0.4f), double(0.8f)};
    QTest::newRow("once the event loop ran")
        << true << below << Scale{0, 1, 0.015625, double(0.2f), double(0.4f), double(0.6f)};
}

// A form sets its properties one by one in declaration order: a scale that
// is in order once all are set is kept exactly, whatever each write alone
// would have been clamped to.
void tst_KeloscoreCard::formWritesKeepAScaleInOrder()
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
    const Scale actual{
        card.ScoreMin(), card.ScoreMax(), card.ScoreBad(), card.ScoreMaybe(), card.ScoreGood(), card.ScoreStar()};
    QCOMPARE(actual, expected);
    QCoreApplication::processEvents(); // the batch ends: nothing moves
    const Scale settled{
        card.ScoreMin(), card.ScoreMax(), card.ScoreBad(), card.ScoreMaybe(), card.ScoreGood(), card.ScoreStar()};
    QCOMPARE(settled, expected);
}

// Late-bound writes by name (a host, QUiLoader) behave like the typed
// setters: conversions, ranges that ignore a write, and PropertyChanged.
void tst_KeloscoreCard::lateBoundWrites_data()
{
    QTest::addColumn<QString>("property");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("written");
    QTest::addColumn<QVariant>("expected");
    QTest::addColumn<bool>("emits");

    QTest::newRow("double") << "Value" << QVariant(0.25) << true << QVariant(0.25) << true;
    QTest::newRow("single precision kept") << "ScoreStar" << QVariant(0.9) << true << QVariant(double(0.9f)) << true;
    QTest::newRow("system colour") << "BackColor" << QVariant(0x8000000Fu) << true << QVariant(0x8000000Fu) << true;
    QTest::newRow("system colour as signed 32 bits")
        << "BackColor" << QVariant(qint32(-2147483633)) << true << QVariant(0x8000000Fu) << true;
    QTest::newRow("system colour as 64 bits")
        << "FontColor" << QVariant(qint64(0x80000012)) << true << QVariant(0x80000012u) << true;
    QTest::newRow("RGB colour from int") << "TickLineColor" << QVariant(0x00FF8040) << true << QVariant(0x00FF8040u)
                                         << true;
    QTest::newRow("enum from int") << "Style" << QVariant(7) << true << QVariant(7) << true;
    QTest::newRow("enum from key") << "Style" << QVariant(QStringLiteral("GaugeRainbow")) << true << QVariant(9)
                                   << true;
    QTest::newRow("enum at current value is silent") << "Style" << QVariant(0) << true << QVariant(0) << false;
    QTest::newRow("ShowValue last member") << "ShowValue" << QVariant(6) << true << QVariant(6) << true;
    QTest::newRow("ToolTipStyle out of range ignored") << "ToolTipStyle" << QVariant(4) << true << QVariant(3) << false;
    QTest::newRow("ShowBlocks upper bound") << "ShowBlocks" << QVariant(100) << true << QVariant(100) << true;
    QTest::newRow("ShowBlocks above range ignored") << "ShowBlocks" << QVariant(101) << true << QVariant(0) << false;
    QTest::newRow("ShowBlocks negative ignored") << "ShowBlocks" << QVariant(-1) << true << QVariant(0) << false;
    QTest::newRow("negative tick interval clamps")
        << "ShowTickLinesEvery" << QVariant(-0.5) << true << QVariant(0.0) << true;
    QTest::newRow("text that is no number refused")
        << "Value" << QVariant(QStringLiteral("abc")) << false << QVariant(0.5) << false;
    QTest::newRow("text") << "ToolTip" << QVariant(QStringLiteral("Release quality")) << true
                          << QVariant(QStringLiteral("Release quality")) << true;
    QTest::newRow("bool") << "ShowLimitLines" << QVariant(true) << true << QVariant(true) << true;
    QTest::newRow("orientation") << "GaugeOrientation" << QVariant(1) << true << QVariant(1) << true;
    QTest::newRow("ToolTipStyle below range ignored") << "ToolTipStyle" << QVariant(-1) << true << QVariant(3) << false;
    QTest::newRow("value outside the scale kept") << "Value" << QVariant(-2.5) << true << QVariant(-2.5) << true;
}

void tst_KeloscoreCard::lateBoundWrites()
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

void tst_KeloscoreCard::propertyChangedNames()
{
    KeloscoreCard card;
    QSignalSpy spy(&card, &KeloscoreCard::PropertyChanged);
    card.setBackColor(0xFF);
    card.setForeColor(0xFF00);
    card.setEnabled(false);
    card.setFont(QFont(QStringLiteral("DejaVu Serif"), 14));
    card.setBorderStyle(0);
    card.setValue(0.3);
    card.setStyle(keloScoreCardStyle::Gauge);
    card.setScoreStar(0.9);
    card.setScoreGood(0.7);
    card.setScoreMaybe(0.5);
    card.setScoreBad(0.3);
    card.setScoreMin(-1);
    card.setScoreMax(2);
    card.setShowLimitLines(true);
    card.setShowTickLinesEvery(0.5);
    card.setTickLineColor(0x123456);
    card.setFontColor(0x654321);
    card.setShowValue(keloShowValue::AtTop);
    card.setToolTipStyle(keloToolTipStyle::ShowValueAsTip);
    card.setToolTip(QStringLiteral("x"));
    card.setShowMarker(keloMarkerStyle::ShowBar);
    card.setShowBlocks(5);
    card.setGaugeOrientation(keloGaugeOrientation::Vertical);
    QCOMPARE(changes(spy),
        QStringList({"BackColor", "ForeColor", "Enabled", "Font", "BorderStyle", "Value", "Style", "ScoreStar",
            "ScoreGood", "ScoreMaybe", "ScoreBad", "ScoreMin", "ScoreMax", "ShowLimitLines", "ShowTickLinesEvery",
            "TickLineColor", "FontColor", "ShowValue", "ToolTipStyle", "ToolTip", "ShowMarker", "ShowBlocks",
            "GaugeOrientation"}));

    // Writes that change nothing, or are refused, are not reported.
    spy.clear();
    card.setStyle(keloScoreCardStyle::Gauge);
    card.setShowValue(keloShowValue::AtTop);
    card.setShowBlocks(101);
    card.setToolTipStyle(keloToolTipStyle(9));
    QCOMPARE(changes(spy), QStringList());

    // A clamped write is still a write.
    card.setScoreGood(99);
    QCOMPARE(changes(spy), QStringList({"ScoreGood"}));
}

void tst_KeloscoreCard::toolTips()
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

void tst_KeloscoreCard::designTimeLeavesToolTipAlone()
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

void tst_KeloscoreCard::persistenceOrders()
{
    KeloscoreCard card;
    QCOMPARE(card.propertyTable().readOrder(),
        QStringList({"BackColor", "ForeColor", "Enabled", "Font", "BorderStyle", "Value", "Style", "ScoreStar",
            "ScoreGood", "ScoreMaybe", "ScoreBad", "ScoreMin", "ScoreMax", "ShowLimitLines", "ShowTickLinesEvery",
            "TickLineColor", "FontColor", "ShowValue", "ToolTipStyle", "ToolTip", "ShowMarker", "ShowBlocks",
            "GaugeOrientation"}));

    // Nothing changed: nothing stored.
    PropertyBag empty;
    card.WriteProperties(empty);
    QVERIFY2(empty.isEmpty(), qPrintable(empty.toText()));

    card.setBackColor(0x00FFFFFF);
    card.setForeColor(0x000000FF);
    card.setEnabled(false);
    card.setFont(QFont(QStringLiteral("DejaVu Serif"), 15, QFont::Bold));
    card.setBorderStyle(0);
    card.setValue(0.75);
    card.setStyle(keloScoreCardStyle::GaugeOverrun);
    card.setScoreMin(-1);
    card.setScoreMax(2);
    card.setScoreStar(1.5);
    card.setScoreGood(0.9);
    card.setScoreMaybe(0.45);
    card.setScoreBad(0.1);
    card.setShowLimitLines(true);
    card.setShowTickLinesEvery(0.1);
    card.setTickLineColor(0x00808080);
    card.setFontColor(0x80000008);
    card.setShowValue(keloShowValue::Adjust);
    card.setToolTipStyle(keloToolTipStyle::None);
    card.setToolTip(QStringLiteral("Quality \"A\"\r\nline two"));
    card.setShowMarker(keloMarkerStyle::ShowFlatBar);
    card.setShowBlocks(25);
    card.setGaugeOrientation(keloGaugeOrientation::Vertical);

    PropertyBag bag;
    card.WriteProperties(bag);
    // ScoreBad is saved after ToolTip, unlike the read order.
    QCOMPARE(bag.names(),
        QStringList({"BackColor", "ForeColor", "Enabled", "Font", "BorderStyle", "Value", "Style", "ScoreStar",
            "ScoreGood", "ScoreMaybe", "ScoreMin", "ScoreMax", "ShowLimitLines", "ShowTickLinesEvery", "TickLineColor",
            "FontColor", "ShowValue", "ToolTipStyle", "ToolTip", "ScoreBad", "ShowMarker", "ShowBlocks",
            "GaugeOrientation"}));
    QCOMPARE(bag.ReadProperty(QStringLiteral("FontColor")).toUInt(), 0x80000008u);
    QCOMPARE(bag.ReadProperty(QStringLiteral("Style")).toInt(), 8);

    // Through the text form and back into a new control: equal in every property.
    const PropertyBag restoredBag = PropertyBag::fromText(bag.toText());
    KeloscoreCard restored;
    restored.ReadProperties(restoredBag);
    PropertyBag again;
    restored.WriteProperties(again);
    QCOMPARE(again.toText(), bag.toText());
    QVERIFY(!restored.Enabled());
    QCOMPARE(restored.ToolTip(), QStringLiteral("Quality \"A\"\r\nline two"));
    QCOMPARE(float(restored.ScoreBad()), 0.1f);

    // A property set back to its default is no longer stored.
    restored.setShowBlocks(0);
    PropertyBag fewer;
    restored.WriteProperties(fewer);
    QVERIFY(!fewer.contains(QStringLiteral("ShowBlocks")));
    QCOMPARE(fewer.count(), bag.count() - 1);
}

void tst_KeloscoreCard::loadingKeepsValuesAsSaved()
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

void tst_KeloscoreCard::loadingRejectsBadValues()
{
    KeloscoreCard card;
    PropertyBag bag;
    bag.WriteProperty(QStringLiteral("Value"), QStringLiteral("abc"), 0.5f);
    QCOMPARE(errorNumberOf([&] { card.ReadProperties(bag); }), int(ErrorNumber::TypeMismatch));

    PropertyBag numericText;
    numericText.WriteProperty(QStringLiteral("Value"), QStringLiteral("0.25"), 0.5f);
    card.ReadProperties(numericText);
    QCOMPARE(card.Value(), 0.25);

    PropertyBag border;
    border.WriteProperty(QStringLiteral("BorderStyle"), 3, 1);
    QCOMPARE(errorNumberOf([&] { card.ReadProperties(border); }), int(ErrorNumber::InvalidPropertyValue));

    PropertyBag style;
    style.WriteProperty(QStringLiteral("Style"), 70000, 0);
    QCOMPARE(errorNumberOf([&] { card.ReadProperties(style); }), int(ErrorNumber::Overflow));

    PropertyBag font;
    font.WriteProperty(QStringLiteral("Font"), 12, QVariant());
    QCOMPARE(errorNumberOf([&] { card.ReadProperties(font); }), int(ErrorNumber::TypeMismatch));
}

void tst_KeloscoreCard::lateBoundAccess()
{
    KeloscoreCard card;
    QVERIFY(card.setProperty("Style", 7));
    // A refused write raises out of setProperty() as well.
    QCOMPARE(errorNumberOf([&] { card.setProperty("BorderStyle", 2); }), int(ErrorNumber::InvalidPropertyValue));
    QCOMPARE(card.BorderStyle(), 1);

    QVERIFY(QMetaObject::invokeMethod(&card, "Refresh"));
    PropertyBag bag;
    QVERIFY(QMetaObject::invokeMethod(&card, "WriteProperties", Q_ARG(Kelocontrols::PropertyBag &, bag)));
    QCOMPARE(bag.ReadProperty(QStringLiteral("Style")).toInt(), 7);
}

void tst_KeloscoreCard::pictureStylesFitThePicture()
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

void tst_KeloscoreCard::stockEvents()
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

QTEST_MAIN(tst_KeloscoreCard)
#include "tst_keloscorecard.moc"
