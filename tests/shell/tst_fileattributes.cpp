#include "FileAttributes.h"
#include "FileEntry.h"
#include "FileNameCodec.h"
#include "FileSystem.h"
#include "RuntimeError.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "KeloTestSupport.h"

#include <sys/stat.h>
#include <unistd.h>

using namespace Kelocontrols;

class tst_FileAttributes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void editedHiddenList_data();
    void editedHiddenList();
    void writesOnDisk();
    void refusals();
};

void tst_FileAttributes::editedHiddenList_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("hidden");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("no final newline") << QByteArray("x") << QByteArray("a") << true << QByteArray("x\na\n");
    QTest::newRow("already listed with a blank") << QByteArray("a \n") << QByteArray("a") << true << QByteArray("a \n");
    QTest::newRow("prefix is another name") << QByteArray("ab\n") << QByteArray("a") << true << QByteArray("ab\na\n");
    QTest::newRow("remove keeps blank lines")
        << QByteArray("\nx\r\na\t\n\n") << QByteArray("a") << false << QByteArray("\nx\r\n\n");
}

void tst_FileAttributes::editedHiddenList()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, name);
    QFETCH(bool, hidden);
    QTEST(FileAttributes::editedHiddenList(content, name, hidden), "expected");
}

void tst_FileAttributes::writesOnDisk()
{
    QTemporaryDir dir;
    const QString target = dir.filePath(QStringLiteral("target"));
    const QString link = dir.filePath(QStringLiteral("link"));
    QFile(target).open(QIODevice::WriteOnly);
    QCOMPARE(::chmod(QFile::encodeName(target).constData(), 0664), 0);
    QCOMPARE(::symlink("target", QFile::encodeName(link).constData()), 0);

    // A link's read-only attribute is its target's, so that is the bit written.
    FileAttributes::setAttributes(link, FileAttribute::ReadOnly | FileAttribute::Archive | FileAttribute::System);
    struct stat info
    {
    };
    ::stat(QFile::encodeName(target).constData(), &info);
    QCOMPARE(int(info.st_mode & 07777), 0464);
    QVERIFY(!(FileSystem::instance().entry(link)->attributes & FileAttribute::Hidden));

    // Hiding the link lists the link's own name.
    FileAttributes::setAttributes(link, FileAttribute::Hidden | FileAttribute::ReadOnly);
    QFile list(dir.filePath(QStringLiteral(".hidden")));
    QVERIFY(list.open(QIODevice::ReadOnly));
    QCOMPARE(list.readAll(), QByteArray("link\n"));
    QCOMPARE(FileSystem::instance().entry(link)->attributes & (FileAttribute::Hidden | FileAttribute::ReadOnly),
        FileAttribute::Hidden | FileAttribute::ReadOnly);
}

void tst_FileAttributes::refusals()
{
    QTemporaryDir dir;
    const QString missing = dir.filePath(QStringLiteral("missing"));
    QCOMPARE(KeloTest::errorNumberOf([&] { FileAttributes::setReadOnly(missing, true); }), ErrorNumber::PathNotFound);
    QCOMPARE(KeloTest::errorNumberOf([&] { FileAttributes::setHidden(missing, true); }), ErrorNumber::PathNotFound);
    QCOMPARE(KeloTest::errorNumberOf([&] { FileAttributes::setAttributes(missing, 0); }), ErrorNumber::PathNotFound);
    QCOMPARE(KeloTest::errorNumberOf([] { FileAttributes::setHidden(QStringLiteral("/"), true); }),
        ErrorNumber::InvalidProcedureCall);
    const QString odd = dir.filePath(QStringLiteral("odd\rname"));
    QFile(odd).open(QIODevice::WriteOnly);
    QCOMPARE(KeloTest::errorNumberOf([&] { FileAttributes::setHidden(odd, true); }), ErrorNumber::InvalidProcedureCall);
    FileAttributes::setHidden(odd, false); // nothing to remove, nothing written
    QVERIFY(!QFile::exists(dir.filePath(QStringLiteral(".hidden"))));
}

QTEST_GUILESS_MAIN(tst_FileAttributes)
#include "tst_fileattributes.moc"
