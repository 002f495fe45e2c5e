#include "CommonFile.h"
#include "FileIcon.h"
#include "FileNameCodec.h"
#include "FileSystem.h"
#include "FileTypes.h"
#include "MsgBox.h"
#include "PictureBox.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPainter>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include "KeloTestSupport.h"
#include "XdgTestSandbox.h"

#include <fcntl.h>
#include <unistd.h>

using namespace Kelocontrols;

namespace {

// A lone surrogate of the lossless file-name decoding: the byte 0x80 + n that is not valid UTF-8.
QString invalidByte(uchar byte)
{
    return QString(QChar(char16_t(0xDC00 + byte)));
}

using KeloTest::hasVisiblePixel;
using Boxes = KeloTest::MsgBoxRecorder;

} // namespace

class tst_FileIcon : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void iconsAndTypeKeys_data();
    void iconsAndTypeKeys();
    void missingPathLeavesPictureUntouched();
    void drawSizesAndReplacesPicture_data();
    void drawSizesAndReplacesPicture();
    void openFolderHasItsOwnPicture();
    void everyDriveRootIsKeyedByItsType();
    void ghostChannelValues_data();
    void ghostChannelValues();
    void ghostKeepsTransparentColourAndAlpha();
    void ghostPictureBox();
    void openPassesExactPath();
    void openFailuresShowTheirBox_data();
    void openFailuresShowTheirBox();
    void printFeedsFileToLp();
    void printFailures();

private:
    QTemporaryDir m_files;
};

void tst_FileIcon::initTestCase()
{
    QVERIFY(m_files.isValid());
    QDir(m_files.path()).mkdir(u"sub"_qs);
    for (const char *name : {"notes.txt", "photo.png", "README", "archive.tar.gz", "Mixed.TxT"}) {
        QFile file(m_files.filePath(QString::fromLatin1(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("hello\n");
    }
}

void tst_FileIcon::iconsAndTypeKeys_data()
{
    QTest::addColumn<QString>("relative");
    QTest::addColumn<QString>("expected");
    QTest::newRow("extension") << u"notes.txt"_qs << u"txt"_qs;
    QTest::newRow("png") << u"photo.png"_qs << u"png"_qs;
    QTest::newRow("case kept") << u"Mixed.TxT"_qs << u"TxT"_qs;
    QTest::newRow("last extension") << u"archive.tar.gz"_qs << u"gz"_qs;
    QTest::newRow("no extension") << u"README"_qs << QString();
    QTest::newRow("folder") << u"sub"_qs << FileTypes::instance().folderTypeText();
    QTest::newRow("drive") << u"/"_qs << DriveTypeName(FileSystem::instance().getDrive(u"/"_qs));
}

void tst_FileIcon::iconsAndTypeKeys()
{
    QFETCH(QString, relative);
    QFETCH(QString, expected);
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
    }
    QVERIFY(fileIconPixmap(path, 0, false).isNull());
}

void tst_FileIcon::missingPathLeavesPictureUntouched()
{
    PictureBox picture;
    picture.resize(70, 50);
    QPixmap before(10, 10);
    before.fill(Qt::red);
    picture.setPicture(before);
    for (const QString &path : {m_files.filePath(u"gone.txt"_qs), QString(), m_files.filePath(u"nofolder/x.txt"_qs)}) {
        QString typeKey = u"stale"_qs;
        DrawFileIcon(path, true, picture, typeKey, false);
        QCOMPARE(typeKey, QString());
        QCOMPARE(picture.size(), QSize(70, 50));
        QCOMPARE(picture.picture().cacheKey(), before.cacheKey());
        QVERIFY(fileIconPixmap(path, 32, false).isNull());
    }
}

void tst_FileIcon::drawSizesAndReplacesPicture_data()
{
    QTest::addColumn<bool>("large");
    QTest::addColumn<int>("borderStyle");
    QTest::addColumn<int>("pixels");
    QTest::newRow("large, border") << true << 1 << 32;
    QTest::newRow("small, border") << false << 1 << 16;
    QTest::newRow("large, no border") << true << 0 << 32;
    QTest::newRow("small, no border") << false << 0 << 16;
}

void tst_FileIcon::drawSizesAndReplacesPicture()
{
    QFETCH(bool, large);
    QFETCH(int, borderStyle);
    QFETCH(int, pixels);
    PictureBox picture;
    picture.setBorderStyle(borderStyle);
    picture.resize(100, 80);
    QPixmap old(50, 50);
    old.fill(Qt::blue);
    picture.setPicture(old);
    picture.fillBox(QRectF(0, 0, 5, 5), 0x0000FF);
    QString typeKey;
    DrawFileIcon(m_files.filePath(u"notes.txt"_qs), large, picture, typeKey, false);
    QCOMPARE(picture.scaleWidth(), pixels);
    QCOMPARE(picture.scaleHeight(), pixels);
    QCOMPARE(picture.picture().size(), QSize(pixels, pixels));
    QVERIFY(picture.picture().cacheKey() != old.cacheKey());
    QVERIFY(picture.picture().hasAlphaChannel());
    // The canvas was cleared: only the icon shows over the back colour.
    QCOMPARE(picture.canvas().pixel(0, 0), 0u);
    QVERIFY(hasVisiblePixel(picture.picture().toImage()));
}

void tst_FileIcon::openFolderHasItsOwnPicture()
{
    const QString folder = m_files.filePath(u"sub"_qs);
    QString closedKey;
    QString openKey;
    const QImage closed = fileIconPixmap(folder, 16, false, &closedKey).toImage();
    const QImage open = fileIconPixmap(folder, 16, true, &openKey).toImage();
    QCOMPARE(openKey, closedKey);
    QVERIFY(closed != open);
    // Files and drives have no open variant.
    const QString file = m_files.filePath(u"notes.txt"_qs);
    QCOMPARE(fileIconPixmap(file, 16, true).toImage(), fileIconPixmap(file, 16, false).toImage());
}

void tst_FileIcon::everyDriveRootIsKeyedByItsType()
{
    int roots = 0;
    for (const DriveInfo &drive : FileSystem::instance().drives()) {
        if (!QFileInfo(drive.rootPath).isDir()) {
            continue;
        }
        ++roots;
        QString typeKey;
        QVERIFY(!fileIconPixmap(drive.rootPath, 32, false, &typeKey).isNull());
        QCOMPARE(typeKey, DriveTypeName(drive));
    }
    QVERIFY(roots > 0);
    // A folder on a drive is a folder, whatever the drive.
    QString typeKey;
    fileIconPixmap(u"/usr/bin"_qs, 16, false, &typeKey);
    if (!FileSystem::instance().driveExists(u"/usr/bin"_qs)) {
        QCOMPARE(typeKey, FileTypes::instance().folderTypeText());
    }
}

void tst_FileIcon::ghostChannelValues_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("after");
    QTest::newRow("0") << 0 << 128; // 127.5 to even
    QTest::newRow("1") << 1 << 128;
    QTest::newRow("2") << 2 << 128; // 128.5 to even
    QTest::newRow("3") << 3 << 129;
    QTest::newRow("127") << 127 << 191;
    QTest::newRow("128") << 128 << 192; // 191.5 to even
    QTest::newRow("129") << 129 << 192;
    QTest::newRow("254") << 254 << 254; // 254.5 to even
    QTest::newRow("255") << 255 << 255;
}

void tst_FileIcon::ghostChannelValues()
{
    QFETCH(int, before);
    QFETCH(int, after);
    QImage image(3, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgb(before, 0, 255));
    image.setPixel(1, 0, qRgb(255, before, 0));
    image.setPixel(2, 0, qRgb(0, 255, before));
    const QImage ghost = ghostImage(image, qRgb(1, 2, 3));
    QCOMPARE(ghost.size(), image.size());
    QCOMPARE(ghost.pixel(0, 0), qRgb(after, 128, 255));
    QCOMPARE(ghost.pixel(1, 0), qRgb(255, after, 128));
    QCOMPARE(ghost.pixel(2, 0), qRgb(128, 255, after));
}

void tst_FileIcon::ghostKeepsTransparentColourAndAlpha()
{
    QImage image(5, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgb(10, 20, 30)); // the transparent colour
    image.setPixel(1, 0, qRgba(10, 20, 30, 0x40)); // the same colour, alpha ignored when comparing
    image.setPixel(2, 0, qRgba(0, 0, 0, 0)); // fully transparent
    image.setPixel(3, 0, qRgba(0, 0, 0, 200)); // half transparent: colour washed, alpha kept
    image.setPixel(4, 0, qRgb(10, 20, 31)); // one off the key
    const QImage ghost = ghostImage(image, qRgba(10, 20, 30, 0xFF));
    QCOMPARE(ghost.pixel(0, 0), qRgb(10, 20, 30));
    QCOMPARE(ghost.pixel(1, 0), qRgba(10, 20, 30, 0x40));
    QCOMPARE(ghost.pixel(2, 0), qRgba(0, 0, 0, 0));
    QCOMPARE(ghost.pixel(3, 0), qRgba(128, 128, 128, 200));
    QCOMPARE(ghost.pixel(4, 0), qRgb(132, 138, 143));
    QVERIFY(ghostImage(QImage(), 0).isNull());

    // Any input format works; the result is ARGB32.
    QImage rgb(1, 1, QImage::Format_RGB32);
    rgb.setPixel(0, 0, qRgb(0, 0, 0));
    QCOMPARE(ghostImage(rgb, qRgb(255, 255, 255)).pixel(0, 0), qRgb(128, 128, 128));
}

void tst_FileIcon::ghostPictureBox()
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

void tst_FileIcon::openPassesExactPath()
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
    const QByteArray folder = QFile::encodeName(sandbox.path(u"files"_qs));
    const QByteArray bytes = folder + "/bad\xff\xfe-\xc3(name.txt";
    const int fd = ::open(bytes.constData(), O_CREAT | O_WRONLY, 0644);
    QVERIFY(fd >= 0);
    // QTemporaryDir cannot remove a name it cannot decode.
    const auto removeFile = qScopeGuard([&bytes] { ::unlink(bytes.constData()); });
    QCOMPARE(::write(fd, "x\n", 2), ssize_t(2));
    ::close(fd);
    const QString path = QFile::decodeName(folder) + u"/bad"_qs + invalidByte(0xFF) + invalidByte(0xFE) + u"-"_qs
        + invalidByte(0xC3) + u"(name.txt"_qs;
    QCOMPARE(path, FileNameCodec::decode(bytes));
    QCOMPARE(shellExecute(path, false), ShellResult::Success);
    QCOMPARE(sandbox.waitForArguments(u"kelo-viewer"_qs), (QList<QByteArray>{"--view", bytes}));
    QString typeKey;
    QVERIFY(!fileIconPixmap(path, 16, false, &typeKey).isNull());
    QCOMPARE(typeKey, u"txt"_qs);
}

void tst_FileIcon::openFailuresShowTheirBox_data()
{
    QTest::addColumn<QString>("relative");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("no association") << u"files/data.kelonoassoc"_qs << 31 << u"No application associated with file"_qs;
    QTest::newRow("missing file") << u"files/gone.txt"_qs << 2 << u"Unable to find file"_qs;
    QTest::newRow("missing folder") << u"nofolder/gone.txt"_qs << 3 << u"Unable to find file"_qs;
    QTest::newRow("program missing") << u"files/page.html"_qs << 31 << u"No application associated with file"_qs;
    QTest::newRow("malformed Exec") << u"files/sheet.csv"_qs << 31 << u"No application associated with file"_qs;
}

void tst_FileIcon::openFailuresShowTheirBox()
{
    QFETCH(QString, relative);
    QFETCH(int, code);
    QFETCH(QString, text);
    XdgTestSandbox sandbox;
    for (const char *name : {"files/data.kelonoassoc", "files/page.html", "files/sheet.csv"}) {
        sandbox.write(QString::fromLatin1(name), "\x01\x02 binary\n");
    }
    // Entries that cannot run are passed over as if they were not there.
    sandbox.addEntry(u"ghost.desktop"_qs, u"kelo-no-such-program %f"_qs, u"text/html;"_qs);
    sandbox.addRecorder(u"kelo-viewer"_qs);
    sandbox.addEntry(u"broken.desktop"_qs, u"kelo-viewer \"%f"_qs, u"text/csv;"_qs);
    const QString path = sandbox.path(relative);
    Boxes boxes;
    OpenWithAssociatedApp(path, nullptr, false);
    QCOMPARE(boxes.prompts(),
        QStringList{u"Error "_qs + QString::number(code) + u": "_qs + text + u" '"_qs + path + u"'"_qs});
    QCOMPARE(boxes.styles(), QList<int>{0});
    QCOMPARE(boxes.titles(), QStringList{QString()});
    QCOMPARE(shellExecute(path, false), code);
}

void tst_FileIcon::printFeedsFileToLp()
{
    XdgTestSandbox sandbox;
    sandbox.addRecorder(u"lp"_qs, true);
    const char raw[] = "page one\n\x00\xff binary tail";
    const QByteArray content(raw, sizeof raw - 1);
    const QString file = sandbox.write(u"files/-report.txt"_qs, content);
    Boxes boxes;
    OpenWithAssociatedApp(file, nullptr, true);
    QCOMPARE(boxes.prompts(), QStringList());
    // Printing waits for lp: the record is there when the call returns.
    QVERIFY(QFile::exists(sandbox.recordPath(u"lp"_qs)));
    QCOMPARE(sandbox.waitForArguments(u"lp"_qs), (QList<QByteArray>{"-t", "-report.txt"}));
    QCOMPARE(sandbox.readRecord(u"lp"_qs, ".stdin"), content);
    QCOMPARE(XdgTestSandbox::childCount(), 0);
}

void tst_FileIcon::printFailures()
{
    XdgTestSandbox sandbox;
    const QString file = sandbox.write(u"files/report.txt"_qs, "text\n");
    Boxes boxes;

    // An empty path does nothing at all, shows no box.
    OpenWithAssociatedApp(QString(), nullptr, false);
    OpenWithAssociatedApp(QString(), nullptr, true);
    QCOMPARE(shellExecute(QString(), false), ShellResult::FileNotFound);

    // No lp at all: PATH holds only the sandbox's bin folder.
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(sandbox.path(u"bin"_qs)));
    OpenWithAssociatedApp(file, nullptr, true);
    qputenv("PATH", path);

    // lp that reports an error.
    sandbox.addRecorder(u"lp"_qs, true, 1);
    OpenWithAssociatedApp(file, nullptr, true);

    // A folder and a missing file.
    OpenWithAssociatedApp(sandbox.path(u"files"_qs), nullptr, true);
    OpenWithAssociatedApp(sandbox.path(u"files/none.txt"_qs), nullptr, true);

    QCOMPARE(boxes.prompts(),
        (QStringList{u"Error 31: No application associated with file '"_qs + file + u"'"_qs,
            u"Error 29: Unable to view file '"_qs + file + u"'"_qs,
            u"Error 31: No application associated with file '"_qs + sandbox.path(u"files"_qs) + u"'"_qs,
            u"Error 2: Unable to find file '"_qs + sandbox.path(u"files/none.txt"_qs) + u"'"_qs}));
}

QTEST_MAIN(tst_FileIcon)
#include "tst_fileicon.moc"
