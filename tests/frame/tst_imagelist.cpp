#include "ImageList.h"
#include "RuntimeError.h"

#include <QPainter>
#include <QTest>

#include "KeloTestSupport.h"

using namespace Kelocontrols;
using KeloTest::centreOf;
using KeloTest::errorNumberOf;

namespace {

QPixmap filled(QSize size, QColor color)
{
    QPixmap pixmap(size);
    pixmap.fill(color);
    return pixmap;
}

/// The list as "key colour tag" texts in index order, the colour that of the picture's centre.
QStringList contents(const ImageList &list)
{
    QStringList texts;
    for (int i = 1; i <= list.count(); ++i)
        texts << u"%1 %2 %3"_qs.arg(list.key(i), QColor(centreOf(list.picture(i))).name(), list.tag(i).toString());
    return texts;
}

} // namespace

class TestImageList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void renamingAndLookupsAfterRemoval()
    {
        ImageList list(QSize(16, 16));
        list.add(filled(QSize(16, 16), Qt::red), u"Red"_qs);
        list.add(filled(QSize(16, 16), Qt::green), u"Green"_qs);
        list.add(filled(QSize(16, 16), Qt::blue), u"Blue"_qs);
        list.remove(1);
        QCOMPARE(list.indexOf(u"blue"_qs), 2); // the key index follows the shift
        QCOMPARE(list.indexOf(u"red"_qs), 0);
        list.setKey(2, u"Navy"_qs);
        QCOMPARE(list.indexOf(u"NAVY"_qs), 2);
        QCOMPARE(list.indexOf(u"Blue"_qs), 0);
        list.setKey(2, u"navy"_qs); // its own key in another case is no clash
        QCOMPARE(errorNumberOf([&] { list.setKey(2, u"green"_qs); }), int(ErrorNumber::KeyNotUnique));
        QCOMPARE(errorNumberOf([&] { list.setKey(3, u"x"_qs); }), int(ErrorNumber::ElementNotFound));
        list.add(filled(QSize(16, 16), Qt::red), u"Red"_qs);
        QCOMPARE(list.indexOf(u"Red"_qs), 3);
        list.clear();
        QCOMPARE(list.indexOf(u"Red"_qs), 0);
    }

    void indexesCountFromOne()
    {
        ImageList list(QSize(16, 16));
        QCOMPARE(list.count(), 0);
        QCOMPARE(list.imageSize(), QSize(16, 16));

        QCOMPARE(list.add(filled(QSize(16, 16), Qt::red), u"txt"_qs), 1);
        QCOMPARE(list.add(filled(QSize(16, 16), Qt::green), u"doc"_qs), 2);
        QCOMPARE(list.add(filled(QSize(16, 16), Qt::blue)), 3);
        QCOMPARE(contents(list), QStringList({"txt #ff0000 ", "doc #00ff00 ", " #0000ff "}));
        QCOMPARE(list.indexOf(u"txt"_qs), 1);
        QCOMPARE(list.indexOf(u"doc"_qs), 2);

        list.clear();
        QCOMPARE(list.count(), 0);
        QCOMPARE(list.add(filled(QSize(16, 16), Qt::black), u"txt"_qs), 1);
    }

    void keysIgnoreCase()
    {
        ImageList list(QSize(8, 8));
        list.add(filled(QSize(8, 8), Qt::red), u"HIDDEN_OPEN_Folder"_qs);
        list.add(filled(QSize(8, 8), Qt::green), u"My Computer"_qs);

        QCOMPARE(list.indexOf(u"hidden_open_folder"_qs), 1);
        QCOMPARE(list.indexOf(u"MY COMPUTER"_qs), 2);
        QVERIFY(list.contains(u"my computer"_qs));
        QVERIFY(!list.contains(u"My Computer "_qs));
        QVERIFY(!list.contains(u"My"_qs));
        QCOMPARE(list.indexOf(u"Folder"_qs), 0);
        QCOMPARE(centreOf(list.picture(u"hidden_OPEN_folder"_qs)), QColor(Qt::red).rgb());
        // The key keeps the spelling it was added with.
        QCOMPARE(list.key(2), u"My Computer"_qs);

        list.remove(u"MY computer"_qs);
        QCOMPARE(list.count(), 1);
        QVERIFY(!list.contains(u"My Computer"_qs));

        // A key taken in any case is refused; nothing is added and the first picture stays.
        QCOMPARE(errorNumberOf([&] { list.add(filled(QSize(8, 8), Qt::blue), u"hidden_open_folder"_qs); }),
            ErrorNumber::KeyNotUnique);
        QCOMPARE(errorNumberOf([&] { list.add(filled(QSize(8, 8), Qt::blue), u"HIDDEN_OPEN_Folder"_qs); }),
            ErrorNumber::KeyNotUnique);
        QCOMPARE(contents(list), QStringList{"HIDDEN_OPEN_Folder #ff0000 "});
        // Once removed, the key is free again.
        list.remove(1);
        QCOMPARE(list.add(filled(QSize(8, 8), Qt::blue), u"hidden_open_folder"_qs), 1);

        // Empty keys may repeat and name no picture.
        list.clear();
        QCOMPARE(list.add(filled(QSize(8, 8), Qt::red)), 1);
        QCOMPARE(list.add(filled(QSize(8, 8), Qt::green), QString()), 2);
        QCOMPARE(list.add(filled(QSize(8, 8), Qt::blue), u""_qs), 3);
        QCOMPARE(list.count(), 3);
        QCOMPARE(list.indexOf(QString()), 0);
        QVERIFY(!list.contains(QString()));
        QCOMPARE(errorNumberOf([&] { list.picture(QString()); }), ErrorNumber::ElementNotFound);
    }

    void removeShiftsLaterIndexes()
    {
        ImageList list(QSize(8, 8));
        list.add(filled(QSize(8, 8), Qt::red), u"a"_qs, u"first"_qs);
        list.add(filled(QSize(8, 8), Qt::green), u"b"_qs);
        list.add(filled(QSize(8, 8), Qt::blue), u"c"_qs, 42);
        list.add(filled(QSize(8, 8), Qt::yellow), u"d"_qs);
        list.setTag(2, 1.5);

        // Keys, pictures and tags all move up together.
        list.remove(1);
        QCOMPARE(contents(list), QStringList({"b #00ff00 1.5", "c #0000ff 42", "d #ffff00 "}));
        QCOMPARE(list.indexOf(u"d"_qs), 3);
        QCOMPARE(list.indexOf(u"a"_qs), 0);

        list.remove(u"B"_qs);
        list.remove(list.count());
        QCOMPARE(contents(list), QStringList{"c #0000ff 42"});
        // A new picture goes to the end.
        QCOMPARE(list.add(filled(QSize(8, 8), Qt::black), u"e"_qs), 2);
        QVERIFY(!list.tag(2).isValid());
    }

    void picturesTakeTheListSize()
    {
        ImageList list(QSize(16, 16));

        // A 32x32 picture, left half red, right half blue.
        QPixmap big(32, 32);
        big.fill(Qt::blue);
        QPainter(&big).fillRect(0, 0, 16, 32, Qt::red);
        list.add(big, u"big"_qs);
        const QPixmap scaled = list.picture(u"big"_qs);
        QCOMPARE(scaled.size(), QSize(16, 16));
        const QImage image = scaled.toImage();
        QCOMPARE(image.pixelColor(2, 8), QColor(Qt::red));
        QCOMPARE(image.pixelColor(13, 8), QColor(Qt::blue));

        // Another shape is stretched to fill the size.
        list.add(filled(QSize(40, 10), Qt::green), u"wide"_qs);
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
        list.add(QPixmap::fromImage(exact), u"exact"_qs);
        const QImage kept = list.picture(u"exact"_qs).toImage().convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(kept, exact);

        // A null picture stays null rather than turning into a blank one.
        list.add(QPixmap(), u"none"_qs);
        QVERIFY(list.picture(u"none"_qs).isNull());

        // A 32-pixel list scales up.
        ImageList large(QSize(32, 32));
        large.add(filled(QSize(16, 16), Qt::red));
        QCOMPARE(large.picture(1).size(), QSize(32, 32));
    }

    void badIndexOrKeyRaises_data()
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
            QTest::addRow("%s(unknown key)", call) << QString::fromLatin1(call) << 0 << u"zip"_qs;
            QTest::addRow("%s(key with a space)", call) << QString::fromLatin1(call) << 0 << u"txt "_qs;
        }
    }

    void badIndexOrKeyRaises()
    {
        QFETCH(QString, call);
        QFETCH(int, index);
        QFETCH(QString, key);

        ImageList list(QSize(8, 8));
        list.add(filled(QSize(8, 8), Qt::red), u"txt"_qs, 1);
        list.add(filled(QSize(8, 8), Qt::green), u"doc"_qs, 2);

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
        QCOMPARE(contents(list), QStringList({"txt #ff0000 1", "doc #00ff00 2"}));
    }
};

QTEST_MAIN(TestImageList)
#include "tst_imagelist.moc"
