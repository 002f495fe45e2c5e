#include "ImageList.h"
#include "RuntimeError.h"

#include <QPainter>
#include <QTest>

using namespace Kelocontrols;

namespace {

template<typename Call>
int errorNumberOf(Call call)
{
    try {
        call();
    } catch (const RuntimeError &error) {
        return error.number();
    }
    return 0;
}

QPixmap filled(QSize size, QColor color)
{
    QPixmap pixmap(size);
    pixmap.fill(color);
    return pixmap;
}

QRgb centreOf(const QPixmap &pixmap)
{
    const QImage image = pixmap.toImage();
    return image.pixel(image.width() / 2, image.height() / 2);
}

} // namespace

class TestImageList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void renamingAndLookupsAfterRemoval();
    void indexesCountFromOne();
    void keysIgnoreCase();
    void duplicateKeyIsRefused();
    void emptyKeysMayRepeat();
    void removeShiftsLaterIndexes();
    void picturesTakeTheListSize();
    void tagsTravelWithTheirPicture();
    void badIndexOrKeyRaises_data();
    void badIndexOrKeyRaises();
};

void TestImageList::indexesCountFromOne()
{
    ImageList list(QSize(16, 16));
    QCOMPARE(list.count(), 0);
    QCOMPARE(list.imageSize(), QSize(16, 16));

    QCOMPARE(list.add(filled(QSize(16, 16), Qt::red), QStringLiteral("txt")), 1);
    QCOMPARE(list.add(filled(QSize(16, 16), Qt::green), QStringLiteral("doc")), 2);
    QCOMPARE(list.add(filled(QSize(16, 16), Qt::blue)), 3);
    QCOMPARE(list.count(), 3);

    QCOMPARE(centreOf(list.picture(1)), QColor(Qt::red).rgb());
    QCOMPARE(centreOf(list.picture(2)), QColor(Qt::green).rgb());
    QCOMPARE(centreOf(list.picture(3)), QColor(Qt::blue).rgb());
    QCOMPARE(list.key(1), QStringLiteral("txt"));
    QCOMPARE(list.key(2), QStringLiteral("doc"));
    QVERIFY(list.key(3).isEmpty());
    QCOMPARE(list.indexOf(QStringLiteral("txt")), 1);
    QCOMPARE(list.indexOf(QStringLiteral("doc")), 2);

    list.clear();
    QCOMPARE(list.count(), 0);
    QCOMPARE(list.add(filled(QSize(16, 16), Qt::black), QStringLiteral("txt")), 1);
}

void TestImageList::keysIgnoreCase()
{
    ImageList list(QSize(8, 8));
    list.add(filled(QSize(8, 8), Qt::red), QStringLiteral("HIDDEN_OPEN_Folder"));
    list.add(filled(QSize(8, 8), Qt::green), QStringLiteral("My Computer"));

    QCOMPARE(list.indexOf(QStringLiteral("hidden_open_folder")), 1);
    QCOMPARE(list.indexOf(QStringLiteral("MY COMPUTER")), 2);
    QVERIFY(list.contains(QStringLiteral("my computer")));
    QVERIFY(!list.contains(QStringLiteral("My Computer ")));
    QVERIFY(!list.contains(QStringLiteral("My")));
    QCOMPARE(list.indexOf(QStringLiteral("Folder")), 0);
    QCOMPARE(centreOf(list.picture(QStringLiteral("hidden_OPEN_folder"))), QColor(Qt::red).rgb());
    // The key keeps the spelling it was added with.
    QCOMPARE(list.key(2), QStringLiteral("My Computer"));

    list.remove(QStringLiteral("MY computer"));
    QCOMPARE(list.count(), 1);
    QVERIFY(!list.contains(QStringLiteral("My Computer")));
}

void TestImageList::duplicateKeyIsRefused()
{
    ImageList list(QSize(8, 8));
    list.add(filled(QSize(8, 8), Qt::red), QStringLiteral("SortUp"));
    QCOMPARE(errorNumberOf([&] { list.add(filled(QSize(8, 8), Qt::blue), QStringLiteral("SortUp")); }),
        ErrorNumber::KeyNotUnique);
    QCOMPARE(errorNumberOf([&] { list.add(filled(QSize(8, 8), Qt::blue), QStringLiteral("SORTUP")); }),
        ErrorNumber::KeyNotUnique);
    // Nothing was added and the first picture stays.
    QCOMPARE(list.count(), 1);
    QCOMPARE(centreOf(list.picture(QStringLiteral("sortup"))), QColor(Qt::red).rgb());

    // Once removed, the key is free again.
    list.remove(1);
    QCOMPARE(list.add(filled(QSize(8, 8), Qt::blue), QStringLiteral("SORTUP")), 1);
}

void TestImageList::emptyKeysMayRepeat()
{
    ImageList list(QSize(8, 8));
    QCOMPARE(list.add(filled(QSize(8, 8), Qt::red)), 1);
    QCOMPARE(list.add(filled(QSize(8, 8), Qt::green), QString()), 2);
    QCOMPARE(list.add(filled(QSize(8, 8), Qt::blue), QStringLiteral("")), 3);
    QCOMPARE(list.count(), 3);
    // An empty key names no picture.
    QCOMPARE(list.indexOf(QString()), 0);
    QVERIFY(!list.contains(QString()));
    QCOMPARE(errorNumberOf([&] { list.picture(QString()); }), ErrorNumber::ElementNotFound);
}

void TestImageList::removeShiftsLaterIndexes()
{
    ImageList list(QSize(8, 8));
    list.add(filled(QSize(8, 8), Qt::red), QStringLiteral("a"));
    list.add(filled(QSize(8, 8), Qt::green), QStringLiteral("b"));
    list.add(filled(QSize(8, 8), Qt::blue), QStringLiteral("c"));
    list.add(filled(QSize(8, 8), Qt::yellow), QStringLiteral("d"));

    list.remove(2);
    QCOMPARE(list.count(), 3);
    QCOMPARE(list.key(1), QStringLiteral("a"));
    QCOMPARE(list.key(2), QStringLiteral("c"));
    QCOMPARE(list.key(3), QStringLiteral("d"));
    QCOMPARE(list.indexOf(QStringLiteral("d")), 3);
    QCOMPARE(list.indexOf(QStringLiteral("b")), 0);
    QCOMPARE(centreOf(list.picture(2)), QColor(Qt::blue).rgb());

    list.remove(QStringLiteral("A"));
    QCOMPARE(list.key(1), QStringLiteral("c"));
    list.remove(list.count());
    QCOMPARE(list.count(), 1);
    QCOMPARE(list.key(1), QStringLiteral("c"));
    // A new picture goes to the end.
    QCOMPARE(list.add(filled(QSize(8, 8), Qt::black), QStringLiteral("e")), 2);
}

void TestImageList::picturesTakeTheListSize()
{
    ImageList list(QSize(16, 16));

    // A 32x32 picture, left half red, right half blue.
    QPixmap big(32, 32);
    big.fill(Qt::blue);
    QPainter(&big).fillRect(0, 0, 16, 32, Qt::red);
    list.add(big, QStringLiteral("big"));
    const QPixmap scaled = list.picture(QStringLiteral("big"));
    QCOMPARE(scaled.size(), QSize(16, 16));
    const QImage image = scaled.toImage();
    QCOMPARE(image.pixelColor(2, 8), QColor(Qt::red));
    QCOMPARE(image.pixelColor(13, 8), QColor(Qt::blue));

    // Another shape is stretched to fill the size.
    list.add(filled(QSize(40, 10), Qt::green), QStringLiteral("wide"));
    QCOMPARE(list.picture(2).size(), QSize(16, 16));
    QCOMPARE(list.picture(2).toImage().pixelColor(0, 0), QColor(Qt::green));
    QCOMPARE(list.picture(2).toImage().pixelColor(15, 15), QColor(Qt::green));

    // A picture of the right size is kept pixel for pixel.
    QImage exact(16, 16, QImage::Format_ARGB32);
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) {
            exact.setPixel(x, y, x == 0 ? qRgba(0, 0, 0, 0) : qRgb(x * 16, y * 16, (x + y) * 8));
        }
    }
    list.add(QPixmap::fromImage(exact), QStringLiteral("exact"));
    const QImage kept = list.picture(QStringLiteral("exact")).toImage().convertToFormat(QImage::Format_ARGB32);
    QCOMPARE(kept, exact);

    // A null picture stays null rather than turning into a blank one.
    list.add(QPixmap(), QStringLiteral("none"));
    QVERIFY(list.picture(QStringLiteral("none")).isNull());

    // A 32-pixel list scales up.
    ImageList large(QSize(32, 32));
    large.add(filled(QSize(16, 16), Qt::red));
    QCOMPARE(large.picture(1).size(), QSize(32, 32));
}

void TestImageList::tagsTravelWithTheirPicture()
{
    ImageList list(QSize(8, 8));
    list.add(filled(QSize(8, 8), Qt::red), QStringLiteral("a"), QStringLiteral("first"));
    list.add(filled(QSize(8, 8), Qt::green), QStringLiteral("b"));
    list.add(filled(QSize(8, 8), Qt::blue), QStringLiteral("c"), 42);

    QCOMPARE(list.tag(1), QVariant(QStringLiteral("first")));
    QVERIFY(!list.tag(2).isValid());
    QCOMPARE(list.tag(3), QVariant(42));

    list.setTag(2, 1.5);
    QCOMPARE(list.tag(2), QVariant(1.5));
    list.remove(1);
    QCOMPARE(list.tag(1), QVariant(1.5));
    QCOMPARE(list.tag(2), QVariant(42));
}

void TestImageList::badIndexOrKeyRaises_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("key");

    for (const char *call : {"picture", "key", "tag", "setTag", "remove"}) {
        QTest::addRow("%s(0)", call) << QString::fromLatin1(call) << 0 << QString();
        QTest::addRow("%s(-1)", call) << QString::fromLatin1(call) << -1 << QString();
        QTest::addRow("%s(count+1)", call) << QString::fromLatin1(call) << 3 << QString();
    }
    for (const char *call : {"picture", "remove"}) {
        QTest::addRow("%s(unknown key)", call) << QString::fromLatin1(call) << 0 << QStringLiteral("zip");
        QTest::addRow("%s(key with a space)", call) << QString::fromLatin1(call) << 0 << QStringLiteral("txt ");
    }
}

void TestImageList::badIndexOrKeyRaises()
{
    QFETCH(QString, call);
    QFETCH(int, index);
    QFETCH(QString, key);

    ImageList list(QSize(8, 8));
    list.add(filled(QSize(8, 8), Qt::red), QStringLiteral("txt"), 1);
    list.add(filled(QSize(8, 8), Qt::green), QStringLiteral("doc"), 2);

    const bool byKey = !key.isEmpty();
    const int number = errorNumberOf([&] {
        if (call == QLatin1String("picture")) {
            byKey ? list.picture(key) : list.picture(index);
        } else if (call == QLatin1String("key")) {
            list.key(index);
        } else if (call == QLatin1String("tag")) {
            list.tag(index);
        } else if (call == QLatin1String("setTag")) {
            list.setTag(index, 99);
        } else if (byKey) {
            list.remove(key);
        } else {
            list.remove(index);
        }
    });
    QCOMPARE(number, ErrorNumber::ElementNotFound);

    // The list is left as it was.
    QCOMPARE(list.count(), 2);
    QCOMPARE(list.key(1), QStringLiteral("txt"));
    QCOMPARE(list.key(2), QStringLiteral("doc"));
    QCOMPARE(list.tag(1), QVariant(1));
    QCOMPARE(list.tag(2), QVariant(2));
}

void TestImageList::renamingAndLookupsAfterRemoval()
{
    ImageList list(QSize(16, 16));
    list.add(filled(QSize(16, 16), Qt::red), QStringLiteral("Red"));
    list.add(filled(QSize(16, 16), Qt::green), QStringLiteral("Green"));
    list.add(filled(QSize(16, 16), Qt::blue), QStringLiteral("Blue"));
    list.remove(1);
    QCOMPARE(list.indexOf(QStringLiteral("blue")), 2); // the key index follows the shift
    QCOMPARE(list.indexOf(QStringLiteral("red")), 0);
    list.setKey(2, QStringLiteral("Navy"));
    QCOMPARE(list.indexOf(QStringLiteral("NAVY")), 2);
    QCOMPARE(list.indexOf(QStringLiteral("Blue")), 0);
    list.setKey(2, QStringLiteral("navy")); // its own key in another case is no clash
    QCOMPARE(errorNumberOf([&] { list.setKey(2, QStringLiteral("green")); }), int(ErrorNumber::KeyNotUnique));
    QCOMPARE(errorNumberOf([&] { list.setKey(3, QStringLiteral("x")); }), int(ErrorNumber::ElementNotFound));
    list.add(filled(QSize(16, 16), Qt::red), QStringLiteral("Red"));
    QCOMPARE(list.indexOf(QStringLiteral("Red")), 3);
    list.clear();
    QCOMPARE(list.indexOf(QStringLiteral("Red")), 0);
}

QTEST_MAIN(TestImageList)
#include "tst_imagelist.moc"
