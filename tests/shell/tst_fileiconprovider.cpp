#include "KeloTestSupport.h"

#include <Kelocontrols/DriveInfo.h>
#include <Kelocontrols/FileIcon.h>
#include <Kelocontrols/FileIconProvider.h>
#include <Kelocontrols/FileTypes.h>

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

using namespace Kelocontrols;
using Picture = std::function<QPixmap(int size, bool ghosted)>;
Q_DECLARE_METATYPE(Picture)

namespace {

// The summed brightness of the opaque pixels: a ghosted picture is lighter.
qint64 brightness(const QPixmap &pixmap)
{
    const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    qint64 sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb p = image.pixel(x, y);
            if (qAlpha(p) > 0) {
                sum += qRed(p) + qGreen(p) + qBlue(p);
            }
        }
    }
    return sum;
}

} // namespace

class TestFileIconProvider : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKindAtBothSizesPlainAndGhosted_data();
    void everyKindAtBothSizesPlainAndGhosted();
    void pathsAndTheirKeys();
    void fixedKeys_data();
    void fixedKeys();
    void fileIconPixmapIsTheProvidersPicture();
};

void TestFileIconProvider::everyKindAtBothSizesPlainAndGhosted_data()
{
    QTest::addColumn<Picture>("picture");
    QTest::newRow("file by name, nothing on disk")
        << Picture([](int size, bool g) { return FileIconProvider::file(u"nowhere/x.txt"_qs, size, g); });
    QTest::newRow("folder") << Picture([](int size, bool g) { return FileIconProvider::folder(size, false, g); });
    QTest::newRow("open folder") << Picture([](int size, bool g) { return FileIconProvider::folder(size, true, g); });
    QTest::newRow("removable drive") << Picture(
        [](int size, bool g) { return FileIconProvider::drive(DriveType::Removable, size, g); });
    QTest::newRow("unknown drive") << Picture(
        [](int size, bool g) { return FileIconProvider::drive(DriveType::Unknown, size, g); });
}

void TestFileIconProvider::everyKindAtBothSizesPlainAndGhosted()
{
    QFETCH(Picture, picture);
    for (const int size : {16, 32}) {
        const QPixmap plain = picture(size, false);
        const QPixmap ghosted = picture(size, true);
        QCOMPARE(plain.size(), QSize(size, size));
        QCOMPARE(ghosted.size(), QSize(size, size));
        QVERIFY(brightness(ghosted) > brightness(plain));
        QCOMPARE(FileIconProvider::ghost(plain).toImage(), ghosted.toImage());
    }
    QVERIFY(picture(0, false).isNull());
}

void TestFileIconProvider::pathsAndTheirKeys()
{
    QTemporaryDir dir;
    QDir(dir.path()).mkpath(u"sub"_qs);
    QVERIFY(KeloTest::writeFile(dir.filePath(u"a.txt"_qs), 1));
    QString key;
    QPixmap file = FileIconProvider::forPath(dir.filePath(u"a.txt"_qs), 32, false, false, &key);
    QCOMPARE(key, u"txt"_qs);
    QCOMPARE(file.toImage(), FileIconProvider::file(u"b.txt"_qs, 32).toImage()); // a type, one picture
    const QPixmap folder = FileIconProvider::forPath(dir.filePath(u"sub"_qs), 16, true, false, &key);
    QCOMPARE(key, FileTypes::instance().folderTypeText());
    QCOMPARE(folder.toImage(), FileIconProvider::folder(16, true).toImage());
    QVERIFY(FileIconProvider::forPath(dir.filePath(u"missing"_qs), 16, false, false, &key).isNull());
    QCOMPARE(key, QString());
    QVERIFY(FileIconProvider::forPath(QString(), 16).isNull());
}

void TestFileIconProvider::fixedKeys_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("known");
    QTest::newRow("SortUp") << "SortUp" << true;
    QTest::newRow("SortDown") << "SortDown" << true;
    QTest::newRow("Drive Unavailable") << "Drive Unavailable" << true;
    QTest::newRow("FolderUnavailable") << "FolderUnavailable" << true;
    QTest::newRow("My Computer") << "My Computer" << true;
    QTest::newRow("My Folders") << "My Folders" << true;
    QTest::newRow("an extension") << "txt" << false;
    QTest::newRow("other case") << "sortup" << false;
}

void TestFileIconProvider::fixedKeys()
{
    QFETCH(QString, key);
    QFETCH(bool, known);
    for (const int size : {16, 32}) {
        const QPixmap picture = FileIconProvider::fixedPicture(key, size);
        QCOMPARE(picture.isNull(), !known);
        if (known) {
            QCOMPARE(picture.size(), QSize(size, size));
        }
    }
    QVERIFY(FileIconProvider::fixedPicture(u"SortDown"_qs, 16).toImage()
        != FileIconProvider::fixedPicture(u"SortUp"_qs, 16).toImage());
}

void TestFileIconProvider::fileIconPixmapIsTheProvidersPicture()
{
    // DrawFileIcon draws the provider's picture into the box it is given.
    QTemporaryDir dir;
    QVERIFY(KeloTest::writeFile(dir.filePath(u"n.txt"_qs), 1));
    QString key;
    QCOMPARE(fileIconPixmap(dir.filePath(u"n.txt"_qs), 16, false, &key).toImage(),
        FileIconProvider::file(u"n.txt"_qs, 16).toImage());
    QCOMPARE(key, u"txt"_qs);
}

QTEST_MAIN(TestFileIconProvider)
#include "tst_fileiconprovider.moc"
