// Icons and types of files: the theme look-up, the provider's pictures,
// DrawFileIcon and its ghosting, the type texts, and opening or printing a
// file with the program associated with it.

#include "CommonFile.h"
#include "FileIcon.h"
#include "FileIconProvider.h"
#include "FileNameCodec.h"
#include "FileSystem.h"
#include "FileTypes.h"
#include "IconLookup.h"
#include "MsgBox.h"
#include "PictureBox.h"

#include <QApplication>
#include <QDir>
#include <QLocale>
#include <QMimeDatabase>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include "FileTreeFixture.h"
#include "KeloTestSupport.h"
#include "XdgTestSandbox.h"

#include <functional>

using namespace Kelocontrols;
using KeloTest::centreOf;
using KeloTest::hasVisiblePixel;
using Boxes = KeloTest::MsgBoxRecorder;
using BuiltinIcon = IconLookup::BuiltinIcon;
using Picture = std::function<QPixmap(int size, bool ghosted)>;
Q_DECLARE_METATYPE(Picture)

namespace {

bool writePng(const QString &path, int size, QColor colour)
{
    QImage image(size, size, QImage::Format_ARGB32);
    image.fill(colour);
    return QDir().mkpath(QFileInfo(path).path()) && image.save(path, "PNG");
}

// The summed brightness of the opaque pixels: a ghosted picture is lighter.
qint64 brightness(const QPixmap &pixmap)
{
    const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    qint64 sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb p = image.pixel(x, y);
            sum += qAlpha(p) > 0 ? qRed(p) + qGreen(p) + qBlue(p) : 0;
        }
    }
    return sum;
}

} // namespace

class tst_FileIcon : public QObject
{
    Q_OBJECT

    QTemporaryDir m_files; // plain files and a folder "sub"
    QTemporaryDir m_themes; // icon themes "Adwaita" and "hicolor"
    std::unique_ptr<IconLookup> makeLookup() const
    {
        return std::make_unique<IconLookup>(QStringList{m_themes.path()}, QStringList{"Adwaita", "hicolor"}, false);
    }

private Q_SLOTS:
    void initTestCase()
    {
        // The comments are localized; the expected texts below are the English ones of shared-mime-info.
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        QVERIFY2(QMimeDatabase().mimeTypeForName(u"text/plain"_qs).isValid(), "no shared MIME database");
        QVERIFY(KeloTest::makeTree(m_files.path(),
            {"sub/", "notes.txt=hello", "photo.png=hello", "README=hello", "archive.tar.gz=hello", "Mixed.TxT=hello"}));

        const QString adwaita = m_themes.filePath(u"Adwaita"_qs);
        QVERIFY(KeloTest::writeFile(adwaita + u"/index.theme"_qs,
            "[Icon Theme]\nName=Test\nInherits=hicolor\n"
            "Directories=16x16/places,32x32/places,scalable/places,16x16/apps,16x16@2/places,22x22/devices\n\n"
            "[16x16/places]\nContext=Places\nSize=16\nType=Fixed\n\n"
            "[32x32/places]\nContext=Places\nSize=32\nType=Fixed\n\n"
            "[scalable/places]\nContext=Places\nSize=16\nMinSize=8\nMaxSize=512\nType=Scalable\n\n"
            "[16x16/apps]\nContext=Applications\nSize=16\nType=Fixed\n\n"
            "[16x16@2/places]\nContext=Places\nSize=16\nScale=2\nType=Fixed\n\n"
            "[22x22/devices]\nContext=Devices\nSize=22\nThreshold=3\n"));
        QVERIFY(writePng(adwaita + u"/16x16/places/folder.png"_qs, 16, Qt::red));
        QVERIFY(writePng(adwaita + u"/32x32/places/folder.png"_qs, 32, Qt::green));
        QVERIFY(writePng(adwaita + u"/16x16/places/small-only.png"_qs, 16, Qt::blue));
        QVERIFY(writePng(adwaita + u"/16x16/apps/app-icon.png"_qs, 16, Qt::red));
        QVERIFY(writePng(adwaita + u"/16x16@2/places/doubled.png"_qs, 32, Qt::red));
        QVERIFY(writePng(adwaita + u"/22x22/devices/threshold.png"_qs, 22, Qt::cyan));
        QVERIFY(KeloTest::writeFile(adwaita + u"/scalable/places/vector.svg"_qs,
            "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"16\" height=\"16\">"
            "<rect width=\"16\" height=\"16\" fill=\"#ffff00\"/></svg>"));
        QVERIFY(KeloTest::writeFile(adwaita + u"/16x16/places/broken.png"_qs, "not a picture"));
        // hicolor without index.theme: found by its folder layout.
        const QString hicolor = m_themes.filePath(u"hicolor"_qs);
        QVERIFY(writePng(hicolor + u"/48x48/mimetypes/text-x-kelo.png"_qs, 48, Qt::magenta));
        QVERIFY(writePng(hicolor + u"/16x16/places/folder.png"_qs, 16, Qt::black));
        QVERIFY(writePng(hicolor + u"/16x16/places/broken.png"_qs, 16, Qt::darkGreen));
    }

    void themeChoosesBestFile_data()
    {
        KeloTest::addColumns<QString, int, QString>({"name", "size", "expected"});
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

    void themeChoosesBestFile()
    {
        const auto [name, size, expected] = KeloTest::fetch<QString, int, QString>({"name", "size", "expected"});
        const auto lookup = makeLookup();
        QCOMPARE(lookup->themeFile(name, size), expected.isEmpty() ? QString() : m_themes.filePath(expected));
        QCOMPARE(lookup->pixmap(name, size).isNull(), expected.isEmpty());
    }

    void themePixmapsAreExactSquares()
    {
        const auto lookup = makeLookup();
        for (const auto &[name, size, colour] :
            {std::tuple{u"folder"_qs, 16, qRgb(255, 0, 0)}, std::tuple{u"folder"_qs, 32, qRgb(0, 255, 0)},
                std::tuple{u"small-only"_qs, 32, qRgb(0, 0, 255)}, std::tuple{u"vector"_qs, 48, qRgb(255, 255, 0)},
                std::tuple{u"text-x-kelo"_qs, 16, qRgb(255, 0, 255)}, std::tuple{u"folder"_qs, 20, qRgb(255, 0, 0)},
                // An unreadable file in the first theme gives way to the next theme.
                std::tuple{u"broken"_qs, 16, QColor(Qt::darkGreen).rgb()}}) {
            const QPixmap pixmap = lookup->pixmap(name, size);
            QCOMPARE(pixmap.size(), QSize(size, size));
            QCOMPARE(pixmap.devicePixelRatio(), 1.0);
            QCOMPARE(centreOf(pixmap), colour);
        }
        QVERIFY(lookup->pixmap(u"folder"_qs, 0).isNull());
        QVERIFY(lookup->pixmap(QString(), 16).isNull());
    }

    void themesAreIndexedOnceAndAnswersCached()
    {
        const auto lookup = makeLookup();
        QCOMPARE(lookup->directoryScans(), 0);
        const QPixmap first = lookup->pixmap(u"small-only"_qs, 16);
        // Adwaita: 16x16/places, 32x32/places, scalable/places, 22x22/devices; hicolor: two folders.
        QCOMPARE(lookup->directoryScans(), 6);
        for (int i = 0; i < 50; ++i) {
            lookup->pixmap(u"small-only"_qs, 16);
            lookup->pixmap(u"folder"_qs, 16 + i);
            lookup->pixmap(u"missing-" + QString::number(i), 16);
        }
        QCOMPARE(lookup->directoryScans(), 6);
        QCOMPARE(lookup->pixmap(u"small-only"_qs, 16).cacheKey(), first.cacheKey());

        // The picture is kept: a file gone from disk is still answered from the cache,
        // while another lookup reads the disk afresh.
        const QString file = m_themes.filePath(u"Adwaita/16x16/places/small-only.png"_qs);
        QVERIFY(QFile::rename(file, file + ".away"));
        QCOMPARE(centreOf(lookup->pixmap(u"small-only"_qs, 16)), qRgb(0, 0, 255));
        QVERIFY(makeLookup()->pixmap(u"small-only"_qs, 16).isNull());
        QVERIFY(QFile::rename(file + ".away", file));
    }

    void builtinFallback()
    {
        const auto lookup = makeLookup();
        for (const int size : {16, 32}) {
            QList<QImage> pictures;
            for (const BuiltinIcon kind :
                {BuiltinIcon::File, BuiltinIcon::Folder, BuiltinIcon::OpenFolder, BuiltinIcon::Drive}) {
                const QImage image = IconLookup::builtinPixmap(kind, size).toImage();
                QCOMPARE(image.size(), QSize(size, size));
                QCOMPARE(qAlpha(image.pixel(0, 0)), 0); // transparent ground
                QVERIFY(!pictures.contains(image));
                pictures.append(image);
                QCOMPARE(lookup->pixmapOrBuiltin({u"nothing-here"_qs, QString()}, kind, size).toImage(), image);
            }
        }
        // The first name that exists wins over later ones and over the painted picture.
        QCOMPARE(centreOf(lookup->pixmapOrBuiltin({"nothing", "small-only", "folder"}, BuiltinIcon::File, 16)),
            qRgb(0, 0, 255));
        QVERIFY(IconLookup::builtinPixmap(BuiltinIcon::File, 0).isNull());
        QVERIFY(lookup->pixmapOrBuiltin({}, BuiltinIcon::File, -1).isNull());
    }

    void systemThemesAreFound()
    {
        // scripts/setup installs adwaita-icon-theme: without it, a user's program shows no theme icons.
        QVERIFY2(QFileInfo::exists(u"/usr/share/icons/Adwaita/index.theme"_qs), "the Adwaita icon theme is missing");
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

    void providerKinds_data()
    {
        QTest::addColumn<Picture>("picture");
        QTest::newRow("file by name, nothing on disk")
            << Picture([](int size, bool g) { return FileIconProvider::file(u"nowhere/x.txt"_qs, size, g); });
        QTest::newRow("folder") << Picture([](int size, bool g) { return FileIconProvider::folder(size, false, g); });
        QTest::newRow("open folder") << Picture(
            [](int size, bool g) { return FileIconProvider::folder(size, true, g); });
        QTest::newRow("removable drive") << Picture(
            [](int size, bool g) { return FileIconProvider::drive(DriveType::Removable, size, g); });
        QTest::newRow("unknown drive") << Picture(
            [](int size, bool g) { return FileIconProvider::drive(DriveType::Unknown, size, g); });
    }

    void providerKinds()
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

    void providerFixedKeys()
    {
        QStringList known;
        for (const char *key : {"SortUp", "SortDown", "Drive Unavailable", "FolderUnavailable", "My Computer",
                 "My Folders", "txt", "sortup"}) {
            for (const int size : {16, 32}) {
                const QPixmap picture = FileIconProvider::fixedPicture(key, size);
                if (!picture.isNull() && picture.size() == QSize(size, size))
                    known << key + QString::number(size);
            }
        }
        QCOMPARE(known,
            QStringList({"SortUp16", "SortUp32", "SortDown16", "SortDown32", "Drive Unavailable16",
                "Drive Unavailable32", "FolderUnavailable16", "FolderUnavailable32", "My Computer16", "My Computer32",
                "My Folders16", "My Folders32"}));
        QVERIFY(FileIconProvider::fixedPicture(u"SortDown"_qs, 16).toImage()
            != FileIconProvider::fixedPicture(u"SortUp"_qs, 16).toImage());
    }

    void iconsAndTypeKeys_data()
    {
        KeloTest::addColumns<QString, QString>({"relative", "expected"});
        QTest::newRow("extension") << u"notes.txt"_qs << u"txt"_qs;
        QTest::newRow("png") << u"photo.png"_qs << u"png"_qs;
        QTest::newRow("case kept") << u"Mixed.TxT"_qs << u"TxT"_qs;
        QTest::newRow("last extension") << u"archive.tar.gz"_qs << u"gz"_qs;
        QTest::newRow("no extension") << u"README"_qs << QString();
        QTest::newRow("folder") << u"sub"_qs << FileTypes::instance().folderTypeText();
        QTest::newRow("drive") << u"/"_qs << DriveTypeName(FileSystem::instance().getDrive(u"/"_qs));
    }

    void iconsAndTypeKeys()
    {
        const auto [relative, expected] = KeloTest::fetch<QString, QString>({"relative", "expected"});
        const QString path = relative.startsWith('/') ? relative : m_files.filePath(relative);
        for (const bool large : {false, true}) {
            PictureBox picture;
            QString typeKey = u"stale"_qs;
            DrawFileIcon(path, large, picture, typeKey, false);
            QCOMPARE(typeKey, expected);
            QVERIFY(!picture.picture().isNull()); // a file without extension still gets its picture
        }
        for (const int size : {16, 32}) {
            QString viaPixmap = u"stale"_qs;
            const QPixmap icon = fileIconPixmap(path, size, false, &viaPixmap);
            QCOMPARE(viaPixmap, expected);
            QCOMPARE(icon.size(), QSize(size, size));
            QCOMPARE(icon.devicePixelRatio(), 1.0);
            QVERIFY(hasVisiblePixel(icon.toImage()));
            // A second request is served from the cache: the very same pixmap.
            QCOMPARE(fileIconPixmap(path, size, false).cacheKey(), icon.cacheKey());
            // The provider's picture, for a file the one of its type.
            QString key;
            QCOMPARE(FileIconProvider::forPath(path, size, false, false, &key).toImage(), icon.toImage());
            QCOMPARE(key, expected);
            if (relative == u"notes.txt"_qs)
                QCOMPARE(icon.toImage(), FileIconProvider::file(u"other.txt"_qs, size).toImage());
        }
        QVERIFY(fileIconPixmap(path, 0, false).isNull());
    }

    void missingPathLeavesPictureUntouched()
    {
        PictureBox picture;
        picture.resize(70, 50);
        QPixmap before(10, 10);
        before.fill(Qt::red);
        picture.setPicture(before);
        for (const QString &path : {m_files.filePath(u"gone.txt"_qs), QString(), m_files.filePath(u"no/x.txt"_qs)}) {
            QString typeKey = u"stale"_qs;
            DrawFileIcon(path, true, picture, typeKey, false);
            QCOMPARE(typeKey, QString());
            QCOMPARE(picture.size(), QSize(70, 50));
            QCOMPARE(picture.picture().cacheKey(), before.cacheKey());
            QVERIFY(fileIconPixmap(path, 32, false).isNull());
            QVERIFY(FileIconProvider::forPath(path, 16, false, false, &typeKey).isNull());
            QCOMPARE(typeKey, QString());
        }
    }

    void drawSizesAndReplacesPicture_data()
    {
        KeloTest::addColumns<bool, int>({"large", "borderStyle"});
        QTest::newRow("large, border") << true << 1;
        QTest::newRow("small, border") << false << 1;
        QTest::newRow("large, no border") << true << 0;
    }

    void drawSizesAndReplacesPicture()
    {
        const auto [large, borderStyle] = KeloTest::fetch<bool, int>({"large", "borderStyle"});
        const int pixels = large ? 32 : 16;
        PictureBox picture;
        picture.setBorderStyle(borderStyle);
        picture.resize(100, 80);
        QPixmap old(50, 50);
        old.fill(Qt::blue);
        picture.setPicture(old);
        picture.fillBox(QRectF(0, 0, 5, 5), 0x0000FF);
        QString typeKey;
        DrawFileIcon(m_files.filePath(u"notes.txt"_qs), large, picture, typeKey, false);
        QCOMPARE(QSize(picture.scaleWidth(), picture.scaleHeight()), QSize(pixels, pixels));
        QCOMPARE(picture.picture().size(), QSize(pixels, pixels));
        QVERIFY(picture.picture().cacheKey() != old.cacheKey());
        QVERIFY(picture.picture().hasAlphaChannel());
        // The canvas was cleared: only the icon shows over the back colour.
        QCOMPARE(picture.canvas().pixel(0, 0), 0u);
        QVERIFY(hasVisiblePixel(picture.picture().toImage()));
    }

    void openFolderHasItsOwnPicture()
    {
        const QString folder = m_files.filePath(u"sub"_qs);
        QString closedKey, openKey;
        const QImage closed = fileIconPixmap(folder, 16, false, &closedKey).toImage();
        QCOMPARE(fileIconPixmap(folder, 16, true, &openKey).toImage(), FileIconProvider::folder(16, true).toImage());
        QCOMPARE(openKey, closedKey);
        QVERIFY(closed != FileIconProvider::folder(16, true).toImage());
        // Files have no open variant.
        const QString file = m_files.filePath(u"notes.txt"_qs);
        QCOMPARE(fileIconPixmap(file, 16, true).toImage(), fileIconPixmap(file, 16, false).toImage());
    }

    void everyDriveRootIsKeyedByItsType()
    {
        int roots = 0;
        for (const DriveInfo &drive : FileSystem::instance().drives()) {
            if (!QFileInfo(drive.rootPath).isDir())
                continue;
            ++roots;
            QString typeKey;
            QVERIFY(!fileIconPixmap(drive.rootPath, 32, false, &typeKey).isNull());
            QCOMPARE(typeKey, DriveTypeName(drive));
        }
        QVERIFY(roots > 0);
        // A folder on a drive is a folder, whatever the drive.
        QString typeKey;
        fileIconPixmap(u"/usr/bin"_qs, 16, false, &typeKey);
        if (!FileSystem::instance().driveExists(u"/usr/bin"_qs))
            QCOMPARE(typeKey, FileTypes::instance().folderTypeText());
    }

    void ghostChannelValues()
    {
        // Each channel moves half way to white, halves rounded to even; the key colour and alpha stay.
        const QList<int> before = {0, 1, 2, 3, 127, 128, 129, 254, 255};
        const QList<int> after = {128, 128, 128, 129, 191, 192, 192, 254, 255};
        QImage image(int(before.size()), 3, QImage::Format_ARGB32);
        for (int x = 0; x < image.width(); ++x) {
            image.setPixel(x, 0, qRgb(before[x], 0, 255));
            image.setPixel(x, 1, qRgb(255, before[x], 0));
            image.setPixel(x, 2, qRgb(0, 255, before[x]));
        }
        const QImage ghost = ghostImage(image, qRgb(1, 2, 3));
        QCOMPARE(ghost.size(), image.size());
        for (int x = 0; x < image.width(); ++x) {
            QCOMPARE(ghost.pixel(x, 0), qRgb(after[x], 128, 255));
            QCOMPARE(ghost.pixel(x, 1), qRgb(255, after[x], 128));
            QCOMPARE(ghost.pixel(x, 2), qRgb(128, 255, after[x]));
        }

        QImage keyed(5, 1, QImage::Format_ARGB32);
        const QList<QRgb> pixels = {qRgb(10, 20, 30), // the transparent colour
            qRgba(10, 20, 30, 0x40), // the same colour, alpha ignored when comparing
            qRgba(0, 0, 0, 0), // fully transparent
            qRgba(0, 0, 0, 200), // half transparent: colour washed, alpha kept
            qRgb(10, 20, 31)}; // one off the key
        for (int x = 0; x < 5; ++x)
            keyed.setPixel(x, 0, pixels[x]);
        const QImage washed = ghostImage(keyed, qRgba(10, 20, 30, 0xFF));
        QCOMPARE((QList<QRgb>{washed.pixel(0, 0), washed.pixel(1, 0), washed.pixel(2, 0), washed.pixel(3, 0),
                     washed.pixel(4, 0)}),
            (QList<QRgb>{pixels[0], pixels[1], pixels[2], qRgba(128, 128, 128, 200), qRgb(132, 138, 143)}));
        QVERIFY(ghostImage(QImage(), 0).isNull());
        // Any input format works; the result is ARGB32.
        QImage rgb(1, 1, QImage::Format_RGB32);
        rgb.setPixel(0, 0, qRgb(0, 0, 0));
        QCOMPARE(ghostImage(rgb, qRgb(255, 255, 255)).pixel(0, 0), qRgb(128, 128, 128));
    }

    void ghostPictureBox()
    {
        PictureBox picture;
        picture.setBorderStyle(0);
        picture.resize(4, 4);
        QImage source(4, 4, QImage::Format_ARGB32);
        source.fill(qRgb(255, 0, 255)); // the key colour
        source.setPixel(1, 1, qRgb(0, 0, 0));
        source.setPixel(2, 2, qRgb(3, 127, 254));
        picture.setPicture(QPixmap::fromImage(source));
        picture.fillBox(QRectF(3, 0, 1, 1), 0x000000); // drawn on the canvas: black
        GhostPicture(picture, qRgb(255, 0, 255));
        const QImage after = picture.picture().toImage().convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(after.pixel(0, 0), qRgb(255, 0, 255));
        QCOMPARE(after.pixel(1, 1), qRgb(128, 128, 128));
        QCOMPARE(after.pixel(2, 2), qRgb(129, 191, 254));
        QCOMPARE(picture.canvas().pixel(3, 0), qRgb(128, 128, 128));
        QCOMPARE(qAlpha(picture.canvas().pixel(0, 3)), 0); // untouched transparent canvas
    }

    void fileTypeText_data()
    {
        KeloTest::addColumns<QString, QString, QString>({"fileName", "mimeType", "text"});
        const auto row = [](const char *name, const char *fileName, const char *mimeType, const char *text) {
            QTest::newRow(name) << QString(fileName) << QString(mimeType) << QString(text);
        };
        row("txt", "notes.txt", "text/plain", "plain text document");
        row("upper-case extension", "NOTES.TXT", "text/plain", "plain text document");
        row("png", "photo.png", "image/png", "PNG image");
        row("pdf, not on disk", "/no/such/report.pdf", "application/pdf", "PDF document");
        row("c source", "main.c", "text/x-csrc", "C source code");
        row("c++ source", "main.cpp", "text/x-c++src", "C++ source code");
        row("shell script", "run.sh", "application/x-shellscript", "shell script");
        row("program", "setup.exe", "application/x-ms-dos-executable", "DOS/Windows executable");
        row("backup", "notes.txt~", "application/x-trash", "backup file");
        // Only the last extension counts, the way Windows names types.
        row("last extension only", "archive.tar.gz", "application/gzip", "Gzip archive");
        row("whole name, Makefile", "Makefile", "text/x-makefile", "Makefile build file");
        row("whole name, README", "README", "text/x-readme", "README document");
        row("whole name in a folder with a dot", "/src/project.d/Makefile", "text/x-makefile", "Makefile build file");
        row("dot file: the text after its dot", ".txt", "text/plain", "plain text document");
        row("unknown extension", "data.qqqzz", "application/octet-stream", "unknown");
        row("unknown name", "no-extension-known", "application/octet-stream", "unknown");
        row("trailing dot", "trailing.", "application/octet-stream", "unknown");
        row("empty", "", "application/octet-stream", "unknown");
    }

    void fileTypeText()
    {
        QFETCH(QString, fileName);
        FileTypes &types = FileTypes::instance();
        QTEST(types.mimeTypeForFileName(fileName).name(), "mimeType");
        QTEST(types.fileTypeText(fileName), "text");
        // A second question is answered from the cache, with the same answer.
        QTEST(types.fileTypeText(fileName), "text");
    }

    void typesOfOneExtensionAndFolders()
    {
        FileTypes &types = FileTypes::instance();
        // Whichever is asked first, every name with the extension gets the same type.
        QCOMPARE(types.mimeTypeForFileName("b.gz"), types.mimeTypeForFileName("a.tar.gz"));
        QCOMPARE(types.fileTypeText("CMakeLists.txt"), types.fileTypeText("x.txt"));
        // Names that are not UTF-8 carry escapes; they are typed like any other.
        QCOMPARE(types.fileTypeText(QString("caf") + QChar(0xDCE9) + ".txt"), u"plain text document"_qs);
        QCOMPARE(types.folderTypeText(), u"folder"_qs);
        QCOMPARE(types.folderTypeText(), QMimeDatabase().mimeTypeForName(u"inode/directory"_qs).comment());
    }

    void openPassesExactPath()
    {
        XdgTestSandbox sandbox;
        sandbox.addRecorder(u"kelo-viewer"_qs);
        sandbox.addEntry(u"viewer.desktop"_qs, u"kelo-viewer --view %f"_qs, u"text/plain;"_qs);
        const QString file = sandbox.write(u"files/my notes (1).txt"_qs, "text\n");
        Boxes boxes;
        OpenWithAssociatedApp(file, nullptr, false);
        QCOMPARE(XdgTestSandbox::childCount(), 0); // started detached: not a child of this process
        QCOMPARE(boxes.prompts(), QStringList());
        QCOMPARE(sandbox.waitForArguments(u"kelo-viewer"_qs), (QList<QByteArray>{"--view", QFile::encodeName(file)}));

        // A name that is not UTF-8 reaches the program byte for byte, and has its icon and type key.
        QVERIFY(QFile::remove(sandbox.recordPath(u"kelo-viewer"_qs)));
        const QByteArray bytes = QFile::encodeName(sandbox.path(u"files"_qs)) + "/bad\xff\xfe-\xc3(name.txt";
        const QString path = FileNameCodec::decode(bytes);
        QVERIFY(KeloTest::writeFileAt(path, "x\n"));
        // QTemporaryDir cannot remove a name it cannot decode.
        const auto removeFile = qScopeGuard([&] { ::unlink(bytes.constData()); });
        QCOMPARE(shellExecute(path, false), ShellResult::Success);
        QCOMPARE(sandbox.waitForArguments(u"kelo-viewer"_qs), (QList<QByteArray>{"--view", bytes}));
        QString typeKey;
        QVERIFY(!fileIconPixmap(path, 16, false, &typeKey).isNull());
        QCOMPARE(typeKey, u"txt"_qs);
    }

    void openAndPrintFailuresShowTheirBox_data()
    {
        // box: "%1" for the path; empty for none
        // code: of shellExecute, when not printing
        KeloTest::addColumns<QString, bool, QString, int>({"relative", "print", "box", "code"});
        const auto row = [](const char *name, const char *relative, bool print, const char *box, int code) {
            QTest::newRow(name) << QString(relative) << print << QString(box) << code;
        };
        const char *none = "Error 31: No application associated with file '%1'";
        const char *missing = "Error 2: Unable to find file '%1'";
        row("no association", "files/data.kelonoassoc", false, none, 31);
        row("missing file", "files/gone.txt", false, missing, 2);
        row("missing folder", "nofolder/gone.txt", false, "Error 3: Unable to find file '%1'", 3);
        row("program missing", "files/page.html", false, none, 31);
        row("malformed Exec", "files/sheet.csv", false, none, 31);
        row("empty path", "", false, "", int(ShellResult::FileNotFound));
        row("print an empty path", "", true, "", 0);
        row("print without lp", "files/report.txt", true, none, 0);
        row("print, lp fails", "files/report.txt", true, "Error 29: Unable to view file '%1'", 0);
        row("print a folder", "files", true, none, 0);
        row("print a missing file", "files/none.txt", true, missing, 0);
    }

    void openAndPrintFailuresShowTheirBox()
    {
        const auto [relative, print, box] = KeloTest::fetch<QString, bool, QString>({"relative", "print", "box"});
        XdgTestSandbox sandbox;
        for (const char *name : {"files/data.kelonoassoc", "files/page.html", "files/sheet.csv", "files/report.txt"})
            sandbox.write(QString::fromLatin1(name), "\x01\x02 binary\n");
        // Entries that cannot run are passed over as if they were not there.
        sandbox.addEntry(u"ghost.desktop"_qs, u"kelo-no-such-program %f"_qs, u"text/html;"_qs);
        sandbox.addRecorder(u"kelo-viewer"_qs);
        sandbox.addEntry(u"broken.desktop"_qs, u"kelo-viewer \"%f"_qs, u"text/csv;"_qs);
        // PATH holds only the sandbox's bin folder: no lp unless the row makes one.
        qputenv("PATH", QFile::encodeName(sandbox.path(u"bin"_qs)));
        if (QTest::currentDataTag() == QByteArray("print, lp fails"))
            sandbox.addRecorder(u"lp"_qs, true, 1);
        const QString path = relative.isEmpty() ? QString() : sandbox.path(relative);
        Boxes boxes;
        OpenWithAssociatedApp(path, nullptr, print);
        QCOMPARE(boxes.prompts(), box.isEmpty() ? QStringList() : QStringList{box.arg(path)});
        QCOMPARE(boxes.styles(), box.isEmpty() ? QList<int>() : QList<int>{0});
        QCOMPARE(boxes.titles(), box.isEmpty() ? QStringList() : QStringList{QString()});
        if (!print)
            QTEST(int(shellExecute(path, false)), "code");
    }

    void printFeedsFileToLp()
    {
        XdgTestSandbox sandbox;
        sandbox.addRecorder(u"lp"_qs, true);
        const QString file = sandbox.write(u"files/-report.txt"_qs, "page one\n\xff binary tail");
        Boxes boxes;
        OpenWithAssociatedApp(file, nullptr, true);
        QCOMPARE(boxes.prompts(), QStringList());
        // Printing waits for lp: the record is there when the call returns.
        QVERIFY(QFile::exists(sandbox.recordPath(u"lp"_qs)));
        QCOMPARE(sandbox.waitForArguments(u"lp"_qs), (QList<QByteArray>{"-t", "-report.txt"}));
        QCOMPARE(sandbox.readRecord(u"lp"_qs, ".stdin"), QByteArray("page one\n\xff binary tail"));
        QCOMPARE(XdgTestSandbox::childCount(), 0);
    }
};

QTEST_MAIN(tst_FileIcon)
#include "tst_fileicon.moc"
