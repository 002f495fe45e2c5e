#include "KeloEnums.h"
#include "PicturePlacement_p.h"

#include <QTest>

using namespace Kelocontrols;

using Positions = QList<QPointF>;

class TestPicturePlacement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void positions_data();
    void positions();
};

void TestPicturePlacement::positions_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<QSizeF>("form");
    QTest::addColumn<QSizeF>("picture");
    QTest::addColumn<Positions>("expected");

    const auto row = [](const char *name, keloPictureStyle style, QSizeF form, QSizeF picture, Positions expected) {
        QTest::newRow(name) << int(style) << form << picture << expected;
    };
    // One copy on a 3000 x 2000 twip form.
    const QSizeF form(3000, 2000);
    const QSizeF picture(600, 400);
    row("TopLeft", keloPictureStyle::TopLeft, form, picture, {{0, 0}});
    row("TopMiddle", keloPictureStyle::TopMiddle, form, picture, {{1200, 0}});
    row("TopRight", keloPictureStyle::TopRight, form, picture, {{2400, 0}});
    row("BottomLeft", keloPictureStyle::BottomLeft, form, picture, {{0, 1600}});
    row("BottomMiddle", keloPictureStyle::BottomMiddle, form, picture, {{1200, 1600}});
    row("BottomRight", keloPictureStyle::BottomRight, form, picture, {{2400, 1600}});
    row("Center", keloPictureStyle::Center, form, picture, {{1200, 800}});
    row("Center, odd difference", keloPictureStyle::Center, form, QSizeF(601, 401), {{1199.5, 799.5}});
    row("larger than the form: cut", keloPictureStyle::Center, form, QSizeF(4000, 3000), {{-500, -500}});
    row("larger, right and bottom", keloPictureStyle::BottomRight, form, QSizeF(4000, 3000), {{-1000, -1000}});
    row("None", keloPictureStyle::None, form, picture, {});
    row("unknown 9", keloPictureStyle(9), form, picture, {});
    row("unknown -1", keloPictureStyle(-1), form, picture, {});
    // Tiled: column by column, the last column and row overhanging the edge.
    row("tiled 250 on 100", keloPictureStyle::Tiled, QSizeF(250, 250), QSizeF(100, 100),
        {{0, 0}, {0, 100}, {0, 200}, {100, 0}, {100, 100}, {100, 200}, {200, 0}, {200, 100}, {200, 200}});
    row("tiled exact fit overhangs by one", keloPictureStyle::Tiled, QSizeF(200, 100), QSizeF(100, 100),
        {{0, 0}, {0, 100}, {100, 0}, {100, 100}, {200, 0}, {200, 100}});
    row("tiled picture larger than form", keloPictureStyle::Tiled, QSizeF(50, 50), QSizeF(100, 100), {{0, 0}});
    row("tiled empty form still gets the corner", keloPictureStyle::Tiled, QSizeF(0, 0), QSizeF(100, 100), {{0, 0}});
    row("tiled, no width places nothing", keloPictureStyle::Tiled, QSizeF(250, 250), QSizeF(0, 100), {});
    row("tiled, no height places nothing", keloPictureStyle::Tiled, QSizeF(250, 250), QSizeF(100, 0), {});
}

void TestPicturePlacement::positions()
{
    QFETCH(int, style);
    QFETCH(QSizeF, form);
    QFETCH(QSizeF, picture);
    QFETCH(Positions, expected);
    QCOMPARE(PicturePlacement::positions(
                 style, float(form.width()), float(form.height()), float(picture.width()), float(picture.height())),
        expected);
}

QTEST_APPLESS_MAIN(TestPicturePlacement)
#include "tst_pictureplacement.moc"
