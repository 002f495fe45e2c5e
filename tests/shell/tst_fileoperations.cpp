// The file-system operations under faults: another file system, a full
// disk, refused permissions, a read-only mount, a source that vanishes, a
// cancel in the middle. Each case asserts exactly what is on disk afterwards:
// nothing of the source lost, no partial target, no temporary left behind.
//
// Runs in a mount namespace of its own (entered before anything else starts)
// so it can mount a small tmpfs and read-only binds; cases that need that, or
// root, are skipped with the reason where it is not possible.

#include "FileTreeFixture.h"
#include "KeloTestSupport.h"

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
#include <QRegularExpression>
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

QString g_noPrivateMounts = QStringLiteral("mounting needs root"); // empty once the mounts are private

/// Enters a mount namespace of the process's own, its mounts private; must run before any thread starts.
void enterPrivateMountNamespace()
{
    if (::geteuid() != 0)
        return;
    if (::unshare(CLONE_NEWNS) != 0 || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        g_noPrivateMounts = QStringLiteral("no private mount namespace: ") + QString::fromLocal8Bit(strerror(errno));
    else
        g_noPrivateMounts.clear();
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
    if (argc < 6)
        return 2;
    const bool ok = runOperation(QString::fromLatin1(argv[2]), FileNameCodec::decode(QByteArray(argv[3])),
        FileNameCodec::decode(QByteArray(argv[4])), argv[5][0] == '1', nullptr);
    ::write(1, ok ? "1" : "0", 1);
    return 0;
}

/// A monitor that runs @p onBegin at each item and can cancel.
class ScriptedMonitor : public TransferMonitor
{
public:
    std::function<void()> onBegin = [] {};
    qint64 cancelAfter = -1; // bytes, -1 for never
    qint64 bytes = 0;

    void beginItem(const QString &, qint64) override { onBegin(); }
    void addBytes(qint64 n) override { bytes += n; }
    void endItem() override { }
    bool isCancelled() override { return cancelAfter >= 0 && bytes > cancelAfter; }
};

bool setModes(const QString &root, const QStringList &modes)
{
    for (const QString &mode : modes) {
        const qsizetype eq = mode.indexOf('=');
        if (::chmod(diskPath(root + '/' + mode.left(eq)).constData(), mode.mid(eq + 1).toUInt(nullptr, 8)) != 0)
            return false;
    }
    return true;
}

} // namespace

class TestFileOperations : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir; // on /tmp
    QTemporaryDir m_other{QStringLiteral("/dev/shm/kelo-ops-XXXXXX")}; // on another file system
    QString at(const QString &relative) const { return m_dir.path() + '/' + relative; }
    QString root() const { return m_dir.path(); }

    void unmountAndEmpty()
    {
        ::umount2(diskPath(at("small")).constData(), MNT_DETACH);
        ::umount2(diskPath(at("ro")).constData(), MNT_DETACH);
        KeloTest::emptyFolder(root());
        if (m_other.isValid())
            KeloTest::emptyFolder(m_other.path());
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QVERIFY(::chmod(diskPath(root()).constData(), 0755) == 0); // reachable for the unprivileged child
    }
    void init() { unmountAndEmpty(); }
    void cleanupTestCase() { unmountAndEmpty(); }

    void keepsModesAndTimes()
    {
        QVERIFY(makeTree(root(), {"a/", "a/d/", "a/d/f=1", "a/d/ln->f", "a/x=2", "b/"}));
        QVERIFY(setModes(root(), {"a/d/f=640", "a/x=700", "a/d=750"}));
        const timespec old[2] = {{1000000000, 0}, {1200000000, 123456789}};
        for (const char *path : {"a/d/f", "a/d/ln", "a/x", "a/d"})
            QVERIFY(::utimensat(AT_FDCWD, diskPath(at(path)).constData(), old, AT_SYMLINK_NOFOLLOW) == 0);

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
        if (m_other.isValid()) {
            QVERIFY(FileOperations::moveFile(at("b/x"), m_other.path() + "/x", false));
            check(m_other.path() + "/x", 0700);
            QVERIFY(FileOperations::moveFolder(at("b/d"), m_other.path() + "/d"));
            check(m_other.path() + "/d/f", 0640);
            check(m_other.path() + "/d", 0750);
        }
    }

    void faults_data()
    {
        // fault: the set-up: see faults()
        // modes: "path=octal" set after the tree is made
        // target: "@" at the start: on the other file system
        // there: the other file system afterwards
        KeloTest::addColumns<QString, QStringList, QStringList, QString, QString, QString, bool, bool, QStringList,
            QStringList>({"fault", "tree", "modes", "op", "source", "target", "flag", "ok", "after", "there"});
        // `what` is "<operation> <source> -> <target>", the target left out for a delete.
        QString fault;
        QStringList tree, modes;
        const QStringList there = {"keep/", "keep/k=0", "old=old"}; // on the other file system before each case
        const auto row = [&](const char *name, const QString &what, bool flag, bool ok, const QStringList &after,
                             const QStringList &onOther = {"keep/", "keep/k=0", "old=old"}) {
            const qsizetype blank = what.indexOf(' '), arrow = what.indexOf(" -> ");
            const QString source = arrow < 0 ? what.mid(blank + 1) : what.mid(blank + 1, arrow - blank - 1);
            QTest::addRow("%s: %s", qPrintable(fault), name)
                << fault << tree << modes << what.left(blank) << source << (arrow < 0 ? QString() : what.mid(arrow + 4))
                << flag << ok << sorted(after) << sorted(onOther);
        };

        fault = "another file system";
        tree = {"a/", "a/d/", "a/d/f=1", "a/d/s/", "a/d/s/g=2", "a/d/ln->s", "a/x=3"};
        const QStringList folder = {"a/", "a/d/", "a/d/f=1", "a/d/s/", "a/d/s/g=2", "a/d/ln->s"};
        row("move file", "moveFile a/x -> @x", false, true, folder, there + QStringList{"x=3"});
        row("move folder", "moveFolder a/d -> @d", false, true, {"a/", "a/x=3"},
            there + QStringList{"d/", "d/f=1", "d/s/", "d/s/g=2", "d/ln->s"});
        row("move file onto a file, replacing", "moveFile a/x -> @old", true, true, folder,
            {"keep/", "keep/k=0", "old=3"});
        row("move file onto a file, not replacing", "moveFile a/x -> @old", false, false, tree);
        row("move folder onto a folder", "moveFolder a/d -> @keep", false, false, tree);

        fault = "full disk"; // small/ holds 1 MB and the file "keep" of 10 bytes
        tree = {"a/", "a/big=" + big(2048, 'b'), "a/d/", "a/d/p=" + big(400, 'p'), "a/d/q=" + big(400, 'q'),
            "a/d/r=" + big(400, 'r'), "a/small=tiny", "small/", "small/keep=0123456789"};
        row("copy a file", "copyFile a/big -> small/big", false, false, tree);
        row("copy over an existing file", "copyFile a/big -> small/keep", true, false, tree);
        row("copy a folder", "copyFolder a/d -> small/d", false, false, tree);
        row("move a folder across", "moveFolder a/d -> small/d", false, false, tree);
        row("move a file across", "moveFile a/big -> small/big", false, false, tree);
        row("what fits is copied", "copyFile a/small -> small/s", false, true, tree + QStringList{"small/s=tiny"});

        // "secret" files are root's, mode 0600; "w" is writable by all; "shut" (0755) and "a" are root's.
        fault = "nobody";
        tree = {"a/", "a/secret=s", "a/open=o", "a/d/", "a/d/secret=s", "a/d/open=o", "w/", "shut/"};
        modes = {"a/secret=600", "a/d/secret=600", "w=777"};
        row("unreadable source file", "copyFile a/secret -> w/secret", false, false, tree);
        row("target folder not writable", "copyFile a/open -> shut/open", false, false, tree);
        row("source folder not writable, move", "moveFile a/open -> w/open", false, false, tree);
        row("folder with an unreadable file", "copyFolder a/d -> w/d", false, false,
            tree + QStringList{"w/d/", "w/d/open=o"});
        row("folder into a folder not writable", "copyFolder a/d -> shut/d", false, false, tree);

        fault = "read-only mount";
        tree = {"a/", "a/x=1", "ro/", "ro/in=2", "ro/d/", "ro/d/f=3"};
        modes = {};
        row("copy into it", "copyFile a/x -> ro/x", false, false, tree);
        row("copy a folder into it", "copyFolder ro/d -> ro/e", false, false, tree);
        row("move a file out of it: copied, the source stays", "moveFile ro/in -> a/in", false, false,
            tree + QStringList{"a/in=2"});
        row("move a folder out of it: copied, the source stays", "moveFolder ro/d -> a/d", false, false,
            tree + QStringList{"a/d/", "a/d/f=3"});
        row("delete in it", "deleteFolder ro/d", false, false, tree);

        fault = "vanishing source"; // a/d/2 goes as the first item begins
        tree = {"a/", "a/d/", "a/d/1=one", "a/d/2=two", "a/d/3=three"};
        const QStringList left = {"a/", "a/d/", "a/d/1=one", "a/d/3=three"};
        row("copy a folder: the rest is copied", "copyFolder a/d -> b", false, false,
            left + QStringList{"b/", "b/1=one", "b/3=three"});
        row("move a folder across: nothing moves", "moveFolder a/d -> @d", false, false, left);

        fault = "cancel"; // after the first megabyte, inside the big file
        const QString bigFile = big(32 * 1024, 'z');
        tree = {"a/", "a/big=" + bigFile, "a/d/", "a/d/0=small", "a/d/big=" + bigFile, "a/d/z=last", "b/", "b/big=old"};
        row("copy a file", "copyFile a/big -> b/new", false, false, tree);
        row("copy over a file", "copyFile a/big -> b/big", true, false, tree);
        row("copy a folder", "copyFolder a/d -> b/d", false, false, tree);
        row("move a file across", "moveFile a/big -> @big", false, false, tree);
        row("move a folder across", "moveFolder a/d -> @d", false, false, tree);

        fault = "delete";
        const QStringList rest = {"a/", "a/d/", "a/d/f=1", "a/d/ro/", "a/d/ro/g=2", "a/d/out->../../keep",
            "a/d/lnd->../../keep", "keep/", "keep/k=4"};
        tree = rest + QStringList{"a/ln->../keep", "a/x=3"};
        modes = {"a/x=444", "a/d/ro=555"};
        row("folder with links and a read-only sub-folder", "deleteFolder a/d", false, true,
            {"keep/", "keep/k=4", "a/", "a/ln->../keep", "a/x=3"});
        row("link to a folder: only the link", "deleteFolder a/ln", false, true, rest + QStringList{"a/x=3"});
        row("read-only file, not forced", "deleteFile a/x", false, false, tree);
        row("read-only file, forced", "deleteFile a/x", true, true, rest + QStringList{"a/ln->../keep"});
        row("a folder is not a file", "deleteFile a/d", true, false, tree);
    }

    void faults()
    {
        const auto [fault, tree, op, source, target, flag, ok]
            = KeloTest::fetch<QString, QStringList, QString, QString, QString, bool, bool>(
                {"fault", "tree", "op", "source", "target", "flag", "ok"});
        struct stat here, other;
        if (!m_other.isValid() || ::stat(diskPath(m_other.path()).constData(), &other) != 0)
            QSKIP("/dev/shm is not available for a second file system");
        QVERIFY(::stat(diskPath(root()).constData(), &here) == 0);
        if (fault == "another file system" && here.st_dev == other.st_dev)
            QSKIP("/tmp and /dev/shm are one file system here");
        if ((fault == "full disk" || fault == "read-only mount") && !g_noPrivateMounts.isEmpty())
            QSKIP(qPrintable(g_noPrivateMounts));
        const QString setpriv = QStandardPaths::findExecutable("setpriv");
        if (fault == "nobody" && (::geteuid() != 0 || setpriv.isEmpty()))
            QSKIP("dropping to nobody needs root and setpriv");

        const QStringList small = tree.filter(QRegularExpression("^small/.")); // made on the small disk
        QStringList first = tree;
        first.removeIf([&](const QString &entry) { return small.contains(entry); });
        QVERIFY(makeTree(root(), first));
        QVERIFY(makeTree(m_other.path(), {"old=old", "keep/", "keep/k=0"}));
        QVERIFY(setModes(root(), KeloTest::cell<QStringList>("modes")));
        if (fault == "full disk") {
            QVERIFY(::mount("tmpfs", diskPath(at("small")).constData(), "tmpfs", 0, "size=1024k") == 0);
            QVERIFY(makeTree(root(), small));
        } else if (fault == "read-only mount") {
            const QByteArray ro = diskPath(at("ro"));
            QVERIFY(::mount(ro.constData(), ro.constData(), nullptr, MS_BIND, nullptr) == 0);
            QVERIFY(::mount(nullptr, ro.constData(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0);
        }
        ScriptedMonitor monitor;
        if (fault == "vanishing source")
            monitor.onBegin = [&] { QFile::remove(at("a/d/2")); }; // gone before its turn comes
        if (fault == "cancel")
            monitor.cancelAfter = 1024 * 1024;

        const QString targetPath = target.startsWith('@') ? m_other.path() + '/' + target.mid(1) : at(target);
        if (fault == "nobody") {
            QProcess child;
            child.start(setpriv,
                {"--reuid=nobody", "--regid=nogroup", "--clear-groups", QCoreApplication::applicationFilePath(),
                    "--child", op, at(source), targetPath, flag ? "1" : "0"});
            QVERIFY(child.waitForFinished(60000));
            QCOMPARE(child.exitCode(), 0);
            QCOMPARE(child.readAllStandardOutput(), QByteArray(ok ? "1" : "0"));
        } else {
            QCOMPARE(runOperation(op, at(source), targetPath, flag, &monitor), ok);
        }
        if (fault == "cancel")
            QVERIFY(monitor.bytes < 32 * 1024 * 1024); // stopped inside the big file
        QTEST(readTree(root()), "after");
        QTEST(readTree(m_other.path()), "there");
    }

    void namesThatAreNotUtf8()
    {
        const QString folder = FileNameCodec::decode(QByteArray("caf\xe9 \x80"));
        const QString file = FileNameCodec::decode(QByteArray("\xff\xfe.bin"));
        QVERIFY(makeTree(root(), {"a/", "a/" + folder + "/", "a/" + folder + "/" + file + "=bytes", "b/"}));
        setMsgBoxHandler([](const QString &, int, const QString &) { return MsgBoxResult::Yes; });
        QCOMPARE(TransferItem(at("a/" + folder), at("b"), true), at("b/" + folder));
        QCOMPARE(readTree(at("b")), sorted({folder + "/", folder + "/" + file + "=bytes"}));
        struct stat info;
        QCOMPARE(::lstat(QByteArray(diskPath(root()) + "/b/caf\xe9 \x80/\xff\xfe.bin").constData(), &info), 0);
        if (m_other.isValid()) {
            QCOMPARE(TransferItem(at("a/" + folder), m_other.path(), false), m_other.path() + "/" + folder);
            QCOMPARE(readTree(m_other.path()), sorted({folder + "/", folder + "/" + file + "=bytes"}));
            QCOMPARE(readTree(at("a")), QStringList());
        }
        setMsgBoxHandler({});
    }

    void progressDialog()
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
        QVERIFY(dialog.isVisible() && dialog.isModal());
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
};

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
