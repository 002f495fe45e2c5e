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

/// Adds a picture filled with `color` in the list's size.
int add(ImageList &list, Qt::GlobalColor color, const QString &key = {}, const QVariant &tag = {})
{
    return list.add(filled(list.imageSize(), color), key, tag);
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
    void indexesCountFromOneAndFollowRemovals()
    {
        ImageList list(QSize(8, 8));
        QCOMPARE(list.count(), 0);
        QCOMPARE(list.imageSize(), QSize(8, 8));
        QCOMPARE(add(list, Qt::red, u"a"_qs, u"first"_qs), 1);
        QCOMPARE(add(list, Qt::green, u"Green"_qs), 2);
        QCOMPARE(add(list, Qt::blue, u"Blue"_qs, 42), 3);
        QCOMPARE(add(list, Qt::yellow), 4);
        list.setTag(2, 1.5);
        QCOMPARE(contents(list), QStringList({"a #ff0000 first", "Green #00ff00 1.5", "Blue #0000ff 42", " #ffff00 "}));

        // Keys, pictures and tags all move up together, and the key index follows the shift.
        list.remove(1);
        QCOMPARE(contents(list), QStringList({"Green #00ff00 1.5", "Blue #0000ff 42", " #ffff00 "}));
        QCOMPARE(list.indexOf(u"blue"_qs), 2);
        QCOMPARE(list.indexOf(u"a"_qs), 0);
        list.setKey(2, u"Navy"_qs);
        QCOMPARE(list.indexOf(u"NAVY"_qs), 2);
        QCOMPARE(list.indexOf(u"Blue"_qs), 0);
        list.setKey(2, u"navy"_qs); // its own key in another case is no clash
        QCOMPARE(errorNumberOf([&] { list.setKey(2, u"green"_qs); }), int(ErrorNumber::KeyNotUnique));
        QCOMPARE(errorNumberOf([&] { list.setKey(4, u"x"_qs); }), int(ErrorNumber::ElementNotFound));
        list.remove(u"GREEN"_qs);
        list.remove(list.count());
        QCOMPARE(contents(list), QStringList{"navy #0000ff 42"});
        // A new picture goes to the end.
        QCOMPARE(add(list, Qt::black, u"a"_qs), 2);
        QCOMPARE(list.indexOf(u"A"_qs), 2);
        QVERIFY(!list.tag(2).isValid());
        list.clear();
        QCOMPARE(list.indexOf(u"a"_qs), 0);
        QCOMPARE(add(list, Qt::black, u"a"_qs), 1);
    }

    void keysIgnoreCase()
    {
        ImageList list(QSize(8, 8));
        add(list, Qt::red, u"HIDDEN_OPEN_Folder"_qs);
        add(list, Qt::green, u"My Computer"_qs);
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
        QVERIFY(!list.contains(u"My Computer"_qs));

        // A key taken in any case is refused; nothing is added and the first picture stays.
        for (const QString &taken : {u"hidden_open_folder"_qs, u"HIDDEN_OPEN_Folder"_qs})
            QCOMPARE(errorNumberOf([&] { add(list, Qt::blue, taken); }), ErrorNumber::KeyNotUnique);
        QCOMPARE(contents(list), QStringList{"HIDDEN_OPEN_Folder #ff0000 "});
        // Once removed, the key is free again.
        list.remove(1);
        QCOMPARE(add(list, Qt::blue, u"hidden_open_folder"_qs), 1);

        // Empty keys may repeat and name no picture.
        list.clear();
        QCOMPARE(add(list, Qt::red), 1);
        QCOMPARE(add(list, Qt::green, u""_qs), 2);
        QCOMPARE(list.count(), 2);
        QCOMPARE(list.indexOf(QString()), 0);
        QVERIFY(!list.contains(QString()));
        QCOMPARE(errorNumberOf([&] { list.picture(QString()); }), ErrorNumber::ElementNotFound);
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
        add(list, Qt::red, u"txt"_qs, 1);
        add(list, Qt::green, u"doc"_qs, 2);

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
