#include "FileTypes.h"

#include <QLocale>
#include <QTest>

using namespace Kelocontrols;

class tst_FileTypes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void fileTypeText_data();
    void fileTypeText();
    void sameExtensionSameType();
    void unknownNames();
    void folderTypeText();
};

void tst_FileTypes::initTestCase()
{
    // The comments are localized; the expected texts below are the English ones of shared-mime-info.
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    // scripts/setup installs shared-mime-info: without it, no file has a type.
    QVERIFY2(QMimeDatabase().mimeTypeForName(u"text/plain"_qs).isValid(), "no shared MIME database");
}

void tst_FileTypes::fileTypeText_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("mimeType");
    QTest::addColumn<QString>("text");

    const auto row = [](const char *name, const char *fileName, const char *mimeType, const char *text) {
        QTest::newRow(name) << QString(fileName) << QString(mimeType) << QString(text);
    };
    row("txt", "notes.txt", "text/plain", "plain text document");
    row("upper-case extension", "NOTES.TXT", "text/plain", "plain text document");
    row("png", "photo.png", "image/png", "PNG image");
    row("pdf", "/home/user/report.pdf", "application/pdf", "PDF document");
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
}

void tst_FileTypes::fileTypeText()
{
    QFETCH(QString, fileName);
    FileTypes &types = FileTypes::instance();
    QTEST(types.mimeTypeForFileName(fileName).name(), "mimeType");
    QTEST(types.fileTypeText(fileName), "text");
    // A second question is answered from the cache, with the same answer.
    QTEST(types.fileTypeText(fileName), "text");
}

void tst_FileTypes::sameExtensionSameType()
{
    FileTypes &types = FileTypes::instance();
    // Whichever is asked first, every name with the extension gets the same type.
    QCOMPARE(types.mimeTypeForFileName("b.gz"), types.mimeTypeForFileName("a.tar.gz"));
    QCOMPARE(types.fileTypeText("CMakeLists.txt"), types.fileTypeText("x.txt"));
    QCOMPARE(types.fileTypeText("X.TXT"), u"plain text document"_qs);
    // The type is found from the name alone; no file is read (these do not exist).
    QCOMPARE(types.mimeTypeForFileName("/no/such/folder/picture.jpg").name(), u"image/jpeg"_qs);
}

void tst_FileTypes::unknownNames()
{
    FileTypes &types = FileTypes::instance();
    const QString unknown = u"application/octet-stream"_qs;
    QCOMPARE(types.mimeTypeForFileName("data.qqqzz").name(), unknown);
    QCOMPARE(types.mimeTypeForFileName("no-extension-known").name(), unknown);
    QCOMPARE(types.mimeTypeForFileName("trailing.").name(), unknown);
    QCOMPARE(types.mimeTypeForFileName(QString()).name(), unknown);
    QCOMPARE(types.fileTypeText("data.qqqzz"), u"unknown"_qs);
    // A dot file is typed by the text after its dot.
    QCOMPARE(types.mimeTypeForFileName(".txt").name(), u"text/plain"_qs);
    // Names that are not UTF-8 carry escapes; they are typed like any other.
    QCOMPARE(types.fileTypeText(QString("caf") + QChar(0xDCE9) + ".txt"), u"plain text document"_qs);
}

void tst_FileTypes::folderTypeText()
{
    QCOMPARE(FileTypes::instance().folderTypeText(), u"folder"_qs);
    QCOMPARE(FileTypes::instance().folderTypeText(), QMimeDatabase().mimeTypeForName(u"inode/directory"_qs).comment());
}

QTEST_GUILESS_MAIN(tst_FileTypes)
#include "tst_filetypes.moc"
