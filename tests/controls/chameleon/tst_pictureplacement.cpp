#include "KeloEnums.h"
#include "PicturePlacement_p.h"

#include <QTest>

using namespace Kelocontrols;

using Positions = QList<QPointF>;

class TestPicturePlacement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void placesOneCopy_data();
    void placesOneCopy();
    void tilesColumnByColumn_data();
    void tilesColumnByColumn();
    void tiledTwipPictureOnTwipForm();
};

void TestPicturePlacement::placesOneCopy_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<float>("pictureWidth");
    QTest::addColumn<float>("pictureHeight");
    QTest::addColumn<Positions>("expected");

    // A 3000 x 2000 twip form.
    QTest::newRow("TopLeft") << int(keloPictureStyle::TopLeft) << 600.0f << 400.0f << Positions{{0, 0}};
    QTest::newRow("TopMiddle") << int(keloPictureStyle::TopMiddle) << 600.0f << 400.0f << Positions{{1200, 0}};
    QTest::newRow("TopRight") << int(keloPictureStyle::TopRight) << 600.0f << 400.0f << Positions{{2400, 0}};
    QTest::newRow("BottomLeft") << int(keloPictureStyle::BottomLeft) << 600.0f << 400.0f << Positions{{0, 1600}};
    QTest::newRow("BottomMiddle") << int(keloPictureStyle::BottomMiddle) << 600.0f << 400.0f << Positions{{1200, 1600}};
    QTest::newRow("BottomRight") << int(keloPictureStyle::BottomRight) << 600.0f << 400.0f << Positions{{2400, 1600}};
    QTest::newRow("Center") << int(keloPictureStyle::Center) << 600.0f << 400.0f << Positions{{1200, 800}};
    QTest::newRow("Center, odd difference")
        << int(keloPictureStyle::Center) << 601.0f << 401.0f << Positions{{1199.5, 799.5}};
    QTest::newRow("larger than the form: cut")
        << int(keloPictureStyle::Center) << 4000.0f << 3000.0f << Positions{{-500, -500}};
    QTest::newRow("larger, right and bottom")
        << int(keloPictureStyle::BottomRight) << 4000.0f << 3000.0f << Positions{{-1000, -1000}};
    QTest::newRow("None") << int(keloPictureStyle::None) << 600.0f << 400.0f << Positions{};
    QTest::newRow("unknown 9") << 9 << 600.0f << 400.0f << Positions{};
    QTest::newRow("unknown -1") << -1 << 600.0f << 400.0f << Positions{};
}

void TestPicturePlacement::placesOneCopy()
{
    QFETCH(int, style);
    QFETCH(float, pictureWidth);
    QFETCH(float, pictureHeight);
    QFETCH(Positions, expected);
    QCOMPARE(PicturePlacement::positions(style, 3000, 2000, pictureWidth, pictureHeight), expected);
}

void TestPicturePlacement::tilesColumnByColumn_data()
{
    QTest::addColumn<float>("formWidth");
    QTest::addColumn<float>("formHeight");
    QTest::addColumn<float>("pictureWidth");
    QTest::addColumn<float>("pictureHeight");
    QTest::addColumn<Positions>("expected");

    QTest::newRow("exact fit overhangs by one")
        << 200.0f << 100.0f << 100.0f << 100.0f
        << Positions{{0, 0}, {0, 100}, {100, 0}, {100, 100}, {200, 0}, {200, 100}};
    QTest::newRow("picture larger than form") << 50.0f << 50.0f << 100.0f << 100.0f << Positions{{0, 0}};
    QTest::newRow("empty form still gets the corner") << 0.0f << 0.0f << 100.0f << 100.0f << Positions{{0, 0}};
    QTest::newRow("no width places nothing") << 250.0f << 250.0f << 0.0f << 100.0f << Positions{};
    QTest::newRow("no height places nothing") << 250.0f << 250.0f << 100.0f << 0.0f << Positions{};
}

void TestPicturePlacement::tilesColumnByColumn()
{
    QFETCH(float, formWidth);
    QFETCH(float, formHeight);
    QFETCH(float, pictureWidth);
    QFETCH(float, pictureHeight);
    QFETCH(Positions, expected);
    QCOMPARE(
        PicturePlacement::positions(int(keloPictureStyle::Tiled), formWidth, formHeight, pictureWidth, pictureHeight),
        expected);
}

void TestPicturePlacement::tiledTwipPictureOnTwipForm()
{
    const Positions copies = PicturePlacement::positions(int(keloPictureStyle::Tiled), 250, 250, 100, 100);
    QCOMPARE(copies.size(), 9);
    const Positions expected{
        {0, 0}, {0, 100}, {0, 200}, {100, 0}, {100, 100}, {100, 200}, {200, 0}, {200, 100}, {200, 200}};
    QCOMPARE(copies, expected);
}

QTEST_APPLESS_MAIN(TestPicturePlacement)
#include "tst_pictureplacement.moc"
