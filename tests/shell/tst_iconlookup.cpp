#include "IconLookup.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>

#include "KeloTestSupport.h"

using namespace Kelocontrols;
using KeloTest::centreOf;
using KeloTest::writeFile;
using BuiltinIcon = IconLookup::BuiltinIcon;

namespace {

void writePng(const QString &path, int size, QColor colour)
{
    QDir().mkpath(QFileInfo(path).path());
    QImage image(size, size, QImage::Format_ARGB32);
    image.fill(colour);
    QVERIFY(image.save(path, "PNG"));
}

} // namespace

class tst_IconLookup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void choosesBestFile_data();
    void choosesBestFile();
    void pixmapsAreExactSquares();
    void themesAreIndexedOnceAndAnswersCached();
    void builtinFallback();
    void systemThemesAreFound();

private:
    IconLookup *makeLookup() { return new IconLookup({m_root.path()}, {u"Adwaita"_qs, u"hicolor"_qs}, false); }

    QTemporaryDir m_root;
};

void tst_IconLookup::initTestCase()
{
    QVERIFY(m_root.isValid());
    const QString adwaita = m_root.filePath(u"Adwaita"_qs);
    QVERIFY(writeFile(adwaita + u"/index.theme"_qs,
        "[Icon Theme]\nName=Test\nInherits=hicolor\n"
        "Directories=16x16/places,32x32/places,scalable/places,16x16/apps,16x16@2/places,22x22/devices\n\n"
        "[16x16/places]\nContext=Places\nSize=16\nType=Fixed\n\n"
        "[32x32/places]\nContext=Places\nSize=32\nType=Fixed\n\n"
        "[scalable/places]\nContext=Places\nSize=16\nMinSize=8\nMaxSize=512\nType=Scalable\n\n"
        "[16x16/apps]\nContext=Applications\nSize=16\nType=Fixed\n\n"
        "[16x16@2/places]\nContext=Places\nSize=16\nScale=2\nType=Fixed\n\n"
        "[22x22/devices]\nContext=Devices\nSize=22\nThreshold=3\n"));
    writePng(adwaita + u"/16x16/places/folder.png"_qs, 16, Qt::red);
    writePng(adwaita + u"/32x32/places/folder.png"_qs, 32, Qt::green);
    writePng(adwaita + u"/16x16/places/small-only.png"_qs, 16, Qt::blue);
    writePng(adwaita + u"/16x16/apps/app-icon.png"_qs, 16, Qt::red);
    writePng(adwaita + u"/16x16@2/places/doubled.png"_qs, 32, Qt::red);
    writePng(adwaita + u"/22x22/devices/threshold.png"_qs, 22, Qt::cyan);
    QVERIFY(writeFile(adwaita + u"/scalable/places/vector.svg"_qs,
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"16\" height=\"16\">"
        "<rect width=\"16\" height=\"16\" fill=\"#ffff00\"/></svg>"));
    QVERIFY(writeFile(adwaita + u"/16x16/places/broken.png"_qs, "not a picture"));
    // hicolor without index.theme: found by its folder layout.
    const QString hicolor = m_root.filePath(u"hicolor"_qs);
    writePng(hicolor + u"/48x48/mimetypes/text-x-kelo.png"_qs, 48, Qt::magenta);
    writePng(hicolor + u"/16x16/places/folder.png"_qs, 16, Qt::black);
    writePng(hicolor + u"/16x16/places/broken.png"_qs, 16, Qt::darkGreen);
}

void tst_IconLookup::choosesBestFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("expected");
    QTest::newRow("exact 16") << "folder" << 16 << "Adwaita/16x16/places/folder.png";
    QTest::newRow("exact 32") << "folder" << 32 << "Adwaita/32x32/places/folder.png";
    QTest::newRow("between: larger wins") << "folder" << 24 << "Adwaita/32x32/places/folder.png";
    QTest::newRow("above all") << "folder" << 64 << "Adwaita/32x32/places/folder.png";
    QTest::newRow("scalable") << "vector" << 32 << "Adwaita/scalable/places/vector.svg";
    QTest::newRow("threshold range") << "threshold" << 24 << "Adwaita/22x22/devices/threshold.png";
    QTest::newRow("inherited theme") << "text-x-kelo" << 16 << "hicolor/48x48/mimetypes/text-x-kelo.png";
    QTest::newRow("other context left out") << "app-icon" << 16 << QString();
    QTest::newRow("scaled folder left out") << "doubled" << 16 << QString();
    QTest::newRow("unknown") << "no-such-icon" << 16 << QString();
}

void tst_IconLookup::choosesBestFile()
{
    QFETCH(QString, name);
    QFETCH(int, size);
    QFETCH(QString, expected);
    std::unique_ptr<IconLookup> lookup(makeLookup());
    QCOMPARE(lookup->themeFile(name, size), expected.isEmpty() ? QString() : m_root.filePath(expected));
    QCOMPARE(lookup->pixmap(name, size).isNull(), expected.isEmpty());
}

void tst_IconLookup::pixmapsAreExactSquares()
{
    std::unique_ptr<IconLookup> lookup(makeLookup());
    QCOMPARE(centreOf(lookup->pixmap(u"folder"_qs, 16)), qRgb(255, 0, 0));
    QCOMPARE(centreOf(lookup->pixmap(u"folder"_qs, 32)), qRgb(0, 255, 0));
    for (const auto &[name, size, colour] :
        {std::tuple{u"small-only"_qs, 32, qRgb(0, 0, 255)}, std::tuple{u"vector"_qs, 48, qRgb(255, 255, 0)},
            std::tuple{u"text-x-kelo"_qs, 16, qRgb(255, 0, 255)}, std::tuple{u"folder"_qs, 20, qRgb(255, 0, 0)}}) {
        const QPixmap pixmap = lookup->pixmap(name, size);
        QVERIFY2(!pixmap.isNull(), qPrintable(name));
        QCOMPARE(pixmap.size(), QSize(size, size));
        QCOMPARE(pixmap.devicePixelRatio(), 1.0);
        QCOMPARE(centreOf(pixmap), colour);
    }
    // An unreadable file in the first theme gives way to the next theme.
    QCOMPARE(centreOf(lookup->pixmap(u"broken"_qs, 16)), QColor(Qt::darkGreen).rgb());
    QVERIFY(lookup->pixmap(u"folder"_qs, 0).isNull());
    QVERIFY(lookup->pixmap(QString(), 16).isNull());
}

void tst_IconLookup::themesAreIndexedOnceAndAnswersCached()
{
    std::unique_ptr<IconLookup> lookup(makeLookup());
    QCOMPARE(lookup->directoryScans(), 0);
    const QPixmap first = lookup->pixmap(u"small-only"_qs, 16);
    const int scans = lookup->directoryScans();
    // Adwaita: 16x16/places, 32x32/places, scalable/places, 22x22/devices; hicolor: two folders.
    QCOMPARE(scans, 6);
    for (int i = 0; i < 50; ++i) {
        lookup->pixmap(u"small-only"_qs, 16);
        lookup->pixmap(u"folder"_qs, 16 + i);
        lookup->pixmap(u"missing-" + QString::number(i), 16);
    }
    QCOMPARE(lookup->directoryScans(), scans);
    QCOMPARE(lookup->pixmap(u"small-only"_qs, 16).cacheKey(), first.cacheKey());

    // The picture is kept: a file gone from disk is still answered from the cache,
    // while another lookup reads the disk afresh.
    const QString file = m_root.filePath(u"Adwaita/16x16/places/small-only.png"_qs);
    const QByteArray saved = [&] {
        QFile in(file);
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }();
    QVERIFY(QFile::remove(file));
    QCOMPARE(centreOf(lookup->pixmap(u"small-only"_qs, 16)), qRgb(0, 0, 255));
    std::unique_ptr<IconLookup> fresh(makeLookup());
    QVERIFY(fresh->pixmap(u"small-only"_qs, 16).isNull());
    QVERIFY(writeFile(file, saved));
}

void tst_IconLookup::builtinFallback()
{
    std::unique_ptr<IconLookup> lookup(makeLookup());
    const QList<BuiltinIcon> kinds{BuiltinIcon::File, BuiltinIcon::Folder, BuiltinIcon::OpenFolder, BuiltinIcon::Drive};
    for (const int size : {16, 32}) {
        QList<QImage> pictures;
        for (const BuiltinIcon kind : kinds) {
            const QPixmap builtin = IconLookup::builtinPixmap(kind, size);
            QCOMPARE(builtin.size(), QSize(size, size));
            const QImage image = builtin.toImage();
            QCOMPARE(qAlpha(image.pixel(0, 0)), 0); // transparent ground
            QVERIFY(!pictures.contains(image));
            pictures.append(image);
            const QPixmap fallback = lookup->pixmapOrBuiltin({u"nothing-here"_qs, QString()}, kind, size);
            QCOMPARE(fallback.toImage(), image);
        }
    }
    // The first name that exists wins over later ones and over the painted picture.
    QCOMPARE(centreOf(lookup->pixmapOrBuiltin({u"nothing"_qs, u"small-only"_qs, u"folder"_qs}, BuiltinIcon::File, 16)),
        qRgb(0, 0, 255));
    QVERIFY(IconLookup::builtinPixmap(BuiltinIcon::File, 0).isNull());
    QVERIFY(lookup->pixmapOrBuiltin({}, BuiltinIcon::File, -1).isNull());
}

void tst_IconLookup::systemThemesAreFound()
{
    // scripts/setup installs adwaita-icon-theme: without it, a user's program shows no theme icons.
    QVERIFY2(QFileInfo(u"/usr/share/icons/Adwaita/index.theme"_qs).exists(), "the Adwaita icon theme is missing");
    IconLookup lookup({u"/usr/share/icons"_qs}, {u"Adwaita"_qs, u"hicolor"_qs}, false);
    for (const QString &name : {u"folder"_qs, u"text-x-generic"_qs, u"drive-harddisk"_qs}) {
        for (const int size : {16, 32}) {
            const QString file = lookup.themeFile(name, size);
            QVERIFY2(file.startsWith(u"/usr/share/icons/Adwaita/"_qs), qPrintable(name + u": "_qs + file));
            QCOMPARE(lookup.pixmap(name, size).size(), QSize(size, size));
        }
    }
    QVERIFY(IconLookup::defaultSearchRoots().contains(u"/usr/share/icons"_qs));
}

QTEST_MAIN(tst_IconLookup)
#include "tst_iconlookup.moc"
