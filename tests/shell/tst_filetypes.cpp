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

    QTest::newRow("txt") << QString("notes.txt") << QString("text/plain") << QString("plain text document");
    QTest::newRow("upper-case extension")
        << QString("NOTES.TXT") << QString("text/plain") << QString("plain text document");
    QTest::newRow("png") << QString("photo.png") << QString("image/png") << QString("PNG image");
    QTest::newRow("pdf") << QString("/home/user/report.pdf") << QString("application/pdf") << QString("PDF document");
    QTest::newRow("c source") << QString("main.c") << QString("text/x-csrc") << QString("C source code");
    QTest::newRow("c++ source") << QString("main.cpp") << QString("text/x-c++src") << QString("C++ source code");
    QTest::newRow("shell script") << QString("run.sh") << QString("application/x-shellscript")
                                  << QString("shell script");
    QTest::newRow("program") << QString("setup.exe") << QString("application/x-ms-dos-executable")
                             << QString("DOS/Windows executable");
    QTest::newRow("backup") << QString("notes.txt~") << QString("application/x-trash") << QString("backup file");
    // Only the last extension counts, the way Windows names types.
    QTest::newRow("last extension only") << QString("archive.tar.gz") << QString("application/gzip")
                                         << QString("Gzip archive");
    QTest::newRow("whole name, Makefile")
        << QString("Makefile") << QString("text/x-makefile") << QString("Makefile build file");
    QTest::newRow("whole name, README") << QString("README") << QString("text/x-readme") << QString("README document");
    QTest::newRow("whole name in a folder with a dot")
        << QString("/src/project.d/Makefile") << QString("text/x-makefile") << QString("Makefile build file");
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
