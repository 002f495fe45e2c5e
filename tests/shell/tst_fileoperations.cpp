// The file-system operations under faults: another file system, a full
// disk, refused permissions, a read-only mount, a source that vanishes, a
// cancel in the middle. Each case asserts exactly what is on disk afterwards:
// nothing of the source lost, no partial target, no temporary left behind.
//
// Runs in a mount namespace of its own (entered before anything else starts)
// so it can mount a small tmpfs and read-only binds; cases that need that, or
// root, are skipped with the reason where it is not possible.

#include "FileTreeFixture.h"

#include <Kelocontrols/FileNameCodec.h>
#include <Kelocontrols/FileOperations.h>
#include <Kelocontrols/FileProgressDialog.h>
#include <Kelocontrols/FileTransfer.h>
#include <Kelocontrols/MsgBox.h>
#include <Kelocontrols/TransferMonitor.h>

#include <QApplication>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <functional>

using namespace Kelocontrols;
using KeloTest::diskPath;
using KeloTest::makeTree;
using KeloTest::readTree;
using KeloTest::sorted;

namespace {

bool g_privateMounts = false;
QString g_privateMountsReason;

/// Enters a mount namespace of the process's own, its mounts private; must run before any thread starts.
void enterPrivateMountNamespace()
{
    if (::geteuid() != 0) {
        g_privateMountsReason = QStringLiteral("mounting needs root");
    } else if (::unshare(CLONE_NEWNS) != 0) {
        g_privateMountsReason
            = QStringLiteral("unshare(CLONE_NEWNS) failed: ") + QString::fromLocal8Bit(strerror(errno));
    } else if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
        g_privateMountsReason
            = QStringLiteral("cannot make the mounts private: ") + QString::fromLocal8Bit(strerror(errno));
    } else {
        g_privateMounts = true;
    }
}

QString big(int kilobytes, char fill)
{
    return QString(kilobytes * 1024, QLatin1Char(fill));
}

bool runOperation(const QString &op, const QString &source, const QString &target, bool flag, TransferMonitor *monitor)
{
    if (op == "copyFile")
        return FileOperations::copyFile(source, target, flag, monitor);
    if (op == "copyFolder")
        return FileOperations::copyFolder(source, target, flag, monitor);
    if (op == "moveFile")
        return FileOperations::moveFile(source, target, flag, monitor);
    if (op == "moveFolder")
        return FileOperations::moveFolder(source, target, monitor);
    if (op == "deleteFolder")
        return FileOperations::deleteFolder(source);
    if (op == "deleteFile")
        return FileOperations::deleteFile(source, flag);
    qFatal("unknown operation %s", qPrintable(op));
}

/// In a child process: one operation on the arguments, "1" or "0" on standard output.
int runChild(int argc, char **argv)
{
    if (argc < 4)
        return 2;
    const QString b = argc > 4 ? FileNameCodec::decode(QByteArray(argv[4])) : QString();
    const bool ok = runOperation(QString::fromLatin1(argv[2]), FileNameCodec::decode(QByteArray(argv[3])), b,
        argc > 5 && argv[5][0] == '1', nullptr);
    ::write(1, ok ? "1" : "0", 1);
    return 0;
}

/// A monitor that runs @p action at a chosen moment and can cancel.
class ScriptedMonitor : public TransferMonitor
{
public:
    std::function<void(const QString &name)> onBegin;
    std::function<bool(qint64 bytesSoFar)> cancelAfterBytes = [](qint64) { return false; };
    qint64 bytes = 0;
    bool cancelled = false;

    void beginItem(const QString &name, qint64) override
    {
        if (onBegin)
            onBegin(name);
    }
    void addBytes(qint64 n) override
    {
        bytes += n;
        cancelled = cancelled || cancelAfterBytes(bytes);
    }
    void endItem() override { }
    bool isCancelled() override { return cancelled; }
};

/// One row of the operation tables: `what` is "<operation> <source> -> <target>" (the target left out for a
/// delete), relative to the test folder; "@" at the start of a target is the other file system.
QTestData &opRow(
    const char *name, const QStringList &tree, const QString &what, bool flag, bool ok, const QStringList &after)
{
    const qsizetype blank = what.indexOf(' '), arrow = what.indexOf(" -> ");
    const QString source = arrow < 0 ? what.mid(blank + 1) : what.mid(blank + 1, arrow - blank - 1);
    return QTest::newRow(name) << tree << what.left(blank) << source << (arrow < 0 ? QString() : what.mid(arrow + 4))
                               << flag << ok << after;
}

} // namespace

class TestFileOperations : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir; // on /tmp
    std::unique_ptr<QTemporaryDir> m_other; // on another file system
    QString at(const QString &relative) const { return m_dir.path() + '/' + relative; }
    QString root() const { return m_dir.path(); }

    void columns()
    {
        QTest::addColumn<QStringList>("tree");
        QTest::addColumn<QString>("op");
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("target");
        QTest::addColumn<bool>("flag");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QStringList>("after");
    }

    /// One row of the tables that columns() declares.
    struct Case
    {
        QStringList tree;
        QString op, source, target;
        bool flag, ok;
        QStringList after;
    };

    /// The current row of a columns() table.
    static Case currentCase()
    {
        QFETCH(QStringList, tree);
        QFETCH(QString, op);
        QFETCH(QString, source);
        QFETCH(QString, target);
        QFETCH(bool, flag);
        QFETCH(bool, ok);
        QFETCH(QStringList, after);
        return {tree, op, source, target, flag, ok, after};
    }

    /// Makes a small tmpfs at root()/small (size in kilobytes); false with the reason when it cannot.
    bool mountSmallDisk(int kilobytes, QString &reason)
    {
        if (!g_privateMounts) {
            reason = g_privateMountsReason;
            return false;
        }
        const QByteArray options = "size=" + QByteArray::number(kilobytes) + "k";
        if (::mount("tmpfs", diskPath(at("small")).constData(), "tmpfs", 0, options.constData()) != 0) {
            reason = QStringLiteral("mounting a tmpfs failed: ") + QString::fromLocal8Bit(strerror(errno));
            return false;
        }
        return true;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QVERIFY(::chmod(diskPath(root()).constData(), 0755) == 0); // reachable for the unprivileged child
        m_other = std::make_unique<QTemporaryDir>(QStringLiteral("/dev/shm/kelo-ops-XXXXXX"));
    }
    void init()
    {
        ::umount2(diskPath(at("small")).constData(), MNT_DETACH);
        ::umount2(diskPath(at("ro")).constData(), MNT_DETACH);
        QVERIFY(KeloTest::emptyFolder(root()));
        if (m_other && m_other->isValid())
            QVERIFY(KeloTest::emptyFolder(m_other->path()));
    }
    void cleanupTestCase()
    {
        ::umount2(diskPath(at("small")).constData(), MNT_DETACH);
        ::umount2(diskPath(at("ro")).constData(), MNT_DETACH);
        KeloTest::emptyFolder(root());
        if (m_other && m_other->isValid())
            KeloTest::emptyFolder(m_other->path());
    }

    void keepsModesAndTimes();
    void crossFileSystem_data();
    void crossFileSystem();
    void fullDisk_data();
    void fullDisk();
    void permissionDenied_data();
    void permissionDenied();
    void readOnlyMount_data();
    void readOnlyMount();
    void vanishingSource_data();
    void vanishingSource();
    void cancel_data();
    void cancel();
    void namesThatAreNotUtf8();
    void deleting_data();
    void deleting();
    void progressDialog();
};

void TestFileOperations::keepsModesAndTimes()
{
    QVERIFY(makeTree(root(), {"a/", "a/d/", "a/d/f=1", "a/d/ln->f", "a/x=2", "b/"}));
    QVERIFY(::chmod(diskPath(at("a/d/f")).constData(), 0640) == 0);
    QVERIFY(::chmod(diskPath(at("a/x")).constData(), 0700) == 0);
    const timespec old[2] = {{1000000000, 0}, {1200000000, 123456789}};
    QVERIFY(::utimensat(AT_FDCWD, diskPath(at("a/d/f")).constData(), old, 0) == 0);
    QVERIFY(::utimensat(AT_FDCWD, diskPath(at("a/d/ln")).constData(), old, AT_SYMLINK_NOFOLLOW) == 0);
    QVERIFY(::utimensat(AT_FDCWD, diskPath(at("a/x")).constData(), old, 0) == 0);
    QVERIFY(::chmod(diskPath(at("a/d")).constData(), 0750) == 0);
    QVERIFY(::utimensat(AT_FDCWD, diskPath(at("a/d")).constData(), old, 0) == 0);

    QVERIFY(FileOperations::copyFolder(at("a/d"), at("b/d"), false));
    QVERIFY(FileOperations::copyFile(at("a/x"), at("b/x"), false));
    const auto check = [](const QString &path, mode_t mode) {
        struct stat info;
        QVERIFY(::lstat(diskPath(path).constData(), &info) == 0);
        if (mode)
            QCOMPARE(info.st_mode & 07777, mode);
        QCOMPARE(qint64(info.st_mtim.tv_sec), qint64(1200000000));
        QCOMPARE(qint64(info.st_mtim.tv_nsec), qint64(123456789));
    };
    check(at("b/d/f"), 0640);
    check(at("b/d/ln"), 0);
    check(at("b/d"), 0750);
    check(at("b/x"), 0700);
    if (m_other && m_other->isValid()) {
        QVERIFY(FileOperations::moveFile(at("b/x"), m_other->path() + "/x", false));
        check(m_other->path() + "/x", 0700);
        QVERIFY(FileOperations::moveFolder(at("b/d"), m_other->path() + "/d"));
        check(m_other->path() + "/d/f", 0640);
        check(m_other->path() + "/d", 0750);
    }
}

void TestFileOperations::crossFileSystem_data()
{
    columns();
    QTest::addColumn<QStringList>("there");
    const QStringList tree = {"a/", "a/d/", "a/d/f=1", "a/d/s/", "a/d/s/g=2", "a/d/ln->s", "a/x=3"};
    const QStringList folder = {"a/", "a/d/", "a/d/f=1", "a/d/s/", "a/d/s/g=2", "a/d/ln->s"};
    const QStringList there = {"keep/", "keep/k=0", "old=old"};
    opRow("move file", tree, "moveFile a/x -> x", false, true, folder) << there + QStringList{"x=3"};
    opRow("move folder", tree, "moveFolder a/d -> d", false, true, {"a/", "a/x=3"})
        << there + QStringList{"d/", "d/f=1", "d/s/", "d/s/g=2", "d/ln->s"};
    opRow("move file onto a file, replacing", tree, "moveFile a/x -> old", true, true, folder)
        << QStringList{"keep/", "keep/k=0", "old=3"};
    opRow("move file onto a file, not replacing", tree, "moveFile a/x -> old", false, false, tree) << there;
    opRow("move folder onto a folder", tree, "moveFolder a/d -> keep", false, false, tree) << there;
}

void TestFileOperations::crossFileSystem()
{
    const auto [tree, op, source, target, flag, ok, after] = currentCase();
    QFETCH(QStringList, there);
    if (!m_other || !m_other->isValid())
        QSKIP("/dev/shm is not available for a second file system");
    struct stat here, other;
    QVERIFY(::stat(diskPath(root()).constData(), &here) == 0);
    QVERIFY(::stat(diskPath(m_other->path()).constData(), &other) == 0);
    if (here.st_dev == other.st_dev)
        QSKIP("/tmp and /dev/shm are one file system here");

    QVERIFY(makeTree(root(), tree));
    QVERIFY(makeTree(m_other->path(), {"old=old", "keep/", "keep/k=0"}));
    QCOMPARE(runOperation(op, at(source), m_other->path() + '/' + target, flag, nullptr), ok);
    QCOMPARE(readTree(root()), sorted(after));
    QCOMPARE(readTree(m_other->path()), sorted(there));
}

void TestFileOperations::fullDisk_data()
{
    columns();
    // The small disk holds 1 MB and the file "keep" of 10 bytes.
    const QStringList tree = {"a/", "a/big=" + big(2048, 'b'), "a/d/", "a/d/p=" + big(400, 'p'),
        "a/d/q=" + big(400, 'q'), "a/d/r=" + big(400, 'r'), "a/small=tiny"};
    const QStringList kept = {"small/", "small/keep=0123456789"};
    opRow("copy a file", tree, "copyFile a/big -> small/big", false, false, kept);
    opRow("copy over an existing file", tree, "copyFile a/big -> small/keep", true, false, kept);
    opRow("copy a folder", tree, "copyFolder a/d -> small/d", false, false, kept);
    opRow("move a folder across", tree, "moveFolder a/d -> small/d", false, false, kept);
    opRow("move a file across", tree, "moveFile a/big -> small/big", false, false, kept);
    opRow("what fits is copied", tree, "copyFile a/small -> small/s", false, true, kept + QStringList{"small/s=tiny"});
}

void TestFileOperations::fullDisk()
{
    const auto [tree, op, source, target, flag, ok, after] = currentCase();
    QVERIFY(makeTree(root(), tree + QStringList{"small/"}));
    QString reason;
    if (!mountSmallDisk(1024, reason))
        QSKIP(qPrintable(reason));
    QVERIFY(makeTree(root(), {"small/keep=0123456789"}));

    QCOMPARE(runOperation(op, at(source), at(target), flag, nullptr), ok);
    QStringList expected = after;
    for (const QString &entry : tree)
        expected.append(entry); // the source, whole
    QCOMPARE(readTree(root()), sorted(expected));
}

void TestFileOperations::permissionDenied_data()
{
    columns();
    const QStringList tree = {"a/", "a/secret=s", "a/open=o", "a/d/", "a/d/secret=s", "a/d/open=o", "w/", "shut/"};
    // "secret" files are root's, mode 0600; "w" is writable by all; "shut" (0755) and "a" are root's.
    opRow("unreadable source file", tree, "copyFile a/secret -> w/secret", false, false, tree);
    opRow("target folder not writable", tree, "copyFile a/open -> shut/open", false, false, tree);
    opRow("source folder not writable, move", tree, "moveFile a/open -> w/open", false, false, tree);
    opRow("folder with an unreadable file", tree, "copyFolder a/d -> w/d", false, false,
        tree + QStringList{"w/d/", "w/d/open=o"});
    opRow("folder into a folder not writable", tree, "copyFolder a/d -> shut/d", false, false, tree);
}

void TestFileOperations::permissionDenied()
{
    const auto [tree, op, source, target, flag, ok, after] = currentCase();
    if (::geteuid() != 0)
        QSKIP("dropping to nobody needs root");
    const QString setpriv = QStandardPaths::findExecutable("setpriv");
    if (setpriv.isEmpty())
        QSKIP("setpriv is not installed");

    QVERIFY(makeTree(root(), tree));
    QVERIFY(::chmod(diskPath(at("a/secret")).constData(), 0600) == 0);
    QVERIFY(::chmod(diskPath(at("a/d/secret")).constData(), 0600) == 0);
    QVERIFY(::chmod(diskPath(at("w")).constData(), 0777) == 0);

    QProcess child;
    child.start(setpriv,
        {"--reuid=nobody", "--regid=nogroup", "--clear-groups", QCoreApplication::applicationFilePath(), "--child", op,
            at(source), at(target), flag ? "1" : "0"});
    QVERIFY(child.waitForFinished(60000));
    QCOMPARE(child.exitCode(), 0);
    QCOMPARE(child.readAllStandardOutput(), QByteArray(ok ? "1" : "0"));
    QCOMPARE(readTree(root()), sorted(after));
}

void TestFileOperations::readOnlyMount_data()
{
    columns();
    const QStringList tree = {"a/", "a/x=1", "ro/", "ro/in=2", "ro/d/", "ro/d/f=3"};
    opRow("copy into it", tree, "copyFile a/x -> ro/x", false, false, tree);
    opRow("copy a folder into it", tree, "copyFolder ro/d -> ro/e", false, false, tree);
    opRow("move a file out of it: copied, the source stays", tree, "moveFile ro/in -> a/in", false, false,
        tree + QStringList{"a/in=2"});
    opRow("move a folder out of it: copied, the source stays", tree, "moveFolder ro/d -> a/d", false, false,
        tree + QStringList{"a/d/", "a/d/f=3"});
    opRow("delete in it", tree, "deleteFolder ro/d", false, false, tree);
}

void TestFileOperations::readOnlyMount()
{
    const auto [tree, op, source, target, flag, ok, after] = currentCase();
    QVERIFY(makeTree(root(), tree));
    if (!g_privateMounts)
        QSKIP(qPrintable(g_privateMountsReason));
    const QByteArray ro = diskPath(at("ro"));
    QVERIFY(::mount(ro.constData(), ro.constData(), nullptr, MS_BIND, nullptr) == 0);
    QVERIFY(::mount(nullptr, ro.constData(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0);

    QCOMPARE(runOperation(op, at(source), at(target), flag, nullptr), ok);
    QCOMPARE(readTree(root()), sorted(after));
}

void TestFileOperations::vanishingSource_data()
{
    columns();
    const QStringList tree = {"a/", "a/d/", "a/d/1=one", "a/d/2=two", "a/d/3=three"};
    const QStringList left = {"a/", "a/d/", "a/d/1=one", "a/d/3=three"};
    opRow("copy a folder: the rest is copied", tree, "copyFolder a/d -> b", false, false,
        left + QStringList{"b/", "b/1=one", "b/3=three"});
    opRow("move a folder across: nothing moves", tree, "moveFolder a/d -> @/d", false, false, left);
}

void TestFileOperations::vanishingSource()
{
    const auto [tree, op, source, target, flag, ok, after] = currentCase();
    if (target.startsWith('@') && (!m_other || !m_other->isValid()))
        QSKIP("/dev/shm is not available for a second file system");
    const QString targetPath = target.startsWith('@') ? m_other->path() + target.mid(1) : at(target);
    QVERIFY(makeTree(root(), tree));
    ScriptedMonitor monitor;
    const QString doomed = at("a/d/2");
    monitor.onBegin = [&](const QString &) { QFile::remove(doomed); }; // gone before its turn comes
    QCOMPARE(runOperation(op, at(source), targetPath, flag, &monitor), ok);
    QCOMPARE(readTree(root()), sorted(after));
    if (target.startsWith('@'))
        QCOMPARE(readTree(m_other->path()), QStringList());
}

void TestFileOperations::cancel_data()
{
    columns();
    // The big file is written in pieces; the cancel comes after the first.
    const QString bigFile = big(32 * 1024, 'z');
    const QStringList tree
        = {"a/", "a/big=" + bigFile, "a/d/", "a/d/0=small", "a/d/big=" + bigFile, "a/d/z=last", "b/", "b/big=old"};
    opRow("copy a file", tree, "copyFile a/big -> b/new", false, false, tree);
    opRow("copy over a file", tree, "copyFile a/big -> b/big", true, false, tree);
    opRow("copy a folder", tree, "copyFolder a/d -> b/d", false, false, tree);
    opRow("move a file across", tree, "moveFile a/big -> @/big", false, false, tree);
    opRow("move a folder across", tree, "moveFolder a/d -> @/d", false, false, tree);
}

void TestFileOperations::cancel()
{
    const auto [tree, op, source, target, flag, ok, after] = currentCase();
    if (target.startsWith('@') && (!m_other || !m_other->isValid()))
        QSKIP("/dev/shm is not available for a second file system");
    const QString targetPath = target.startsWith('@') ? m_other->path() + target.mid(1) : at(target);
    QVERIFY(makeTree(root(), tree));
    ScriptedMonitor monitor;
    monitor.cancelAfterBytes = [](qint64 bytes) { return bytes > 1024 * 1024; };
    QCOMPARE(runOperation(op, at(source), targetPath, flag, &monitor), ok);
    QVERIFY(monitor.bytes < 32 * 1024 * 1024); // stopped inside the big file
    QCOMPARE(readTree(root()), sorted(after));
    if (target.startsWith('@'))
        QCOMPARE(readTree(m_other->path()), QStringList());
}

void TestFileOperations::namesThatAreNotUtf8()
{
    const QString folder = FileNameCodec::decode(QByteArray("caf\xe9 \x80"));
    const QString file = FileNameCodec::decode(QByteArray("\xff\xfe.bin"));
    QVERIFY(makeTree(root(), {"a/", "a/" + folder + "/", "a/" + folder + "/" + file + "=bytes", "b/"}));
    setMsgBoxHandler([](const QString &, int, const QString &) { return MsgBoxResult::Yes; });
    QCOMPARE(TransferItem(at("a/" + folder), at("b"), true), at("b/" + folder));
    QCOMPARE(readTree(at("b")), sorted({folder + "/", folder + "/" + file + "=bytes"}));
    struct stat info;
    QCOMPARE(::lstat(QByteArray(diskPath(root()) + "/b/caf\xe9 \x80/\xff\xfe.bin").constData(), &info), 0);
    if (m_other && m_other->isValid()) {
        QCOMPARE(TransferItem(at("a/" + folder), m_other->path(), false), m_other->path() + "/" + folder);
        QCOMPARE(readTree(m_other->path()), sorted({folder + "/", folder + "/" + file + "=bytes"}));
        QCOMPARE(readTree(at("a")), QStringList());
    }
    setMsgBoxHandler({});
}

void TestFileOperations::deleting_data()
{
    columns();
    const QStringList rest = {"a/", "a/d/", "a/d/f=1", "a/d/ro/", "a/d/ro/g=2", "a/d/out->../../keep",
        "a/d/lnd->../../keep", "keep/", "keep/k=4"};
    const QStringList tree = rest + QStringList{"a/ln->../keep", "a/x=3"};
    opRow("folder with links and a read-only sub-folder", tree, "deleteFolder a/d", false, true,
        {"keep/", "keep/k=4", "a/", "a/ln->../keep", "a/x=3"});
    opRow("link to a folder: only the link", tree, "deleteFolder a/ln", false, true, rest + QStringList{"a/x=3"});
    opRow("read-only file, not forced", tree, "deleteFile a/x", false, false, tree);
    opRow("read-only file, forced", tree, "deleteFile a/x", true, true, rest + QStringList{"a/ln->../keep"});
    opRow("a folder is not a file", tree, "deleteFile a/d", true, false, tree);
}

void TestFileOperations::deleting()
{
    const auto [tree, op, source, target, flag, ok, after] = currentCase();
    QVERIFY(makeTree(root(), tree));
    QVERIFY(::chmod(diskPath(at("a/x")).constData(), 0444) == 0);
    QVERIFY(::chmod(diskPath(at("a/d/ro")).constData(), 0555) == 0);
    QCOMPARE(runOperation(op, at(source), QString(), flag, nullptr), ok);
    QCOMPARE(readTree(root()), sorted(after));
}

void TestFileOperations::progressDialog()
{
    // The dialog stays away from short work and appears once the delay has passed.
    {
        FileProgressDialog dialog(true);
        QVERIFY(!dialog.isCancelled());
        QVERIFY(!dialog.isVisible());
    }
    const int savedDelay = FileProgressDialog::showDelay();
    FileProgressDialog::setShowDelay(0);
    FileProgressDialog dialog(true);
    dialog.beginItem("report.pdf", 3 * 1024 * 1024);
    dialog.addBytes(3 * 1024 * 1024);
    dialog.endItem();
    dialog.beginItem("photo.jpg", 10);
    QVERIFY(!dialog.isCancelled());
    QVERIFY(dialog.isVisible());
    QVERIFY(dialog.isModal());
    QCOMPARE(dialog.filesDone(), 1);
    QCOMPARE(dialog.bytesDone(), qint64(3 * 1024 * 1024));
    QCOMPARE(dialog.findChild<QLabel *>("labName")->text(), QString("photo.jpg"));
    QCOMPARE(dialog.findChild<QLabel *>("labCount")->text(), QString("1 file, 3.0 MiB done"));
    if (const QString shots = qEnvironmentVariable("KELO_SHOT_DIR"); !shots.isEmpty())
        dialog.grab().save(shots + "/file-progress.png"); // to look at the dialog
    QTest::mouseClick(dialog.findChild<QPushButton *>("cmdCancel"), Qt::LeftButton);
    QVERIFY(dialog.isCancelled());

    // A transfer shows the dialog while it runs; Cancel leaves no partial target and keeps the source.
    QVERIFY(makeTree(root(), {"a/", "a/big=" + big(32 * 1024, 'y'), "b/"}));
    bool sawDialog = false;
    QTimer::singleShot(0, [&sawDialog] {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            auto *progress = qobject_cast<FileProgressDialog *>(widget);
            if (progress && progress->isVisible() && progress->findChild<QPushButton *>("cmdCancel")) {
                sawDialog = true;
                progress->findChild<QPushButton *>("cmdCancel")->click();
            }
        }
    });
    QCOMPARE(TransferFile(at("a/big"), at("b"), true), at("b/big"));
    FileProgressDialog::setShowDelay(savedDelay);
    QVERIFY(sawDialog);
    QCOMPARE(readTree(at("b")), QStringList());
    QCOMPARE(readTree(at("a")).size(), 1);
}

int main(int argc, char **argv)
{
    if (argc > 1 && std::strcmp(argv[1], "--child") == 0)
        return runChild(argc, argv);
    enterPrivateMountNamespace();
    QApplication app(argc, argv);
    TestFileOperations test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_fileoperations.moc"
