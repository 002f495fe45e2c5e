// FileOperations against the system's own tools, in the same run:
// - copying a folder of 10,000 files of 1 KB, against `cp -a` of the same tree;
// - copying one 512 MB file, against `cp`;
// - moving the 10,000-file folder within one file system (one rename);
// - moving it from /tmp to /dev/shm (another file system), against `mv`.
// Each pair runs alternately several times so that a busy machine slows both
// alike; the medians and their ratio are printed with the target. The
// external tools are timed from their start to their exit, which adds the
// start of a process (about a millisecond) to their side only.

#include <Kelocontrols/FileOperations.h>

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <vector>

using namespace Kelocontrols;

namespace {

// scripts/bench --smoke sets KELO_BENCH_SMOKE: small fixtures prove the benchmark still works.
const bool kSmoke = qEnvironmentVariableIntValue("KELO_BENCH_SMOKE") != 0;
const int kFiles = kSmoke ? 300 : 10000;
const qint64 kBigFile = kSmoke ? qint64(8) << 20 : qint64(512) << 20;
// Folder cases take tens of seconds per run on a busy machine: three alternating rounds each.
const int kRounds = kSmoke ? 1 : 3;

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double timeMs(const std::function<void()> &work)
{
    QElapsedTimer clock;
    clock.start();
    work();
    return double(clock.nsecsElapsed()) / 1e6;
}

bool run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished(600000) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

void remove(const QString &path)
{
    QDir(path).removeRecursively();
    QFile::remove(path);
}

/// Times @p ours and @p theirs alternately, @p prepare before each (untimed); prints and answers the ratio.
double compare(const char *what, const std::function<void()> &prepare, const std::function<bool()> &ours,
    const std::function<bool()> &theirs, const char *theirName, double target, int rounds = kRounds)
{
    std::vector<double> oursMs, theirsMs;
    // Untimed warm-up: the first reading of the fresh source updates its access times (relatime), a cost
    // that would otherwise fall on whichever side runs first.
    prepare();
    theirs();
    for (int round = 0; round < rounds; ++round) {
        bool ok = true;
        prepare();
        ::sync();
        oursMs.push_back(timeMs([&] { ok = ours(); }));
        if (!ok)
            qFatal("%s: our operation failed", what);
        prepare();
        ::sync();
        theirsMs.push_back(timeMs([&] { ok = theirs(); }));
        if (!ok)
            qFatal("%s: %s failed", what, theirName);
    }
    const double ratio = median(oursMs) / median(theirsMs);
    qInfo("%-44s ours %9.1f ms   %-6s %9.1f ms   ratio %.2f (target <= %.2f) %s", what, median(oursMs), theirName,
        median(theirsMs), ratio, target, ratio <= target ? "met" : "MISSED");
    return ratio;
}

} // namespace

class BenchFileOperations : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_tmp; // /tmp: ext4 here
    std::unique_ptr<QTemporaryDir> m_shm; // /dev/shm: tmpfs
    QString m_tree;
    QString m_bigFile;

private Q_SLOTS:
    void initTestCase();
    void copyFolderOfSmallFiles();
    void copyBigFile();
    void moveFolderWithinFileSystem();
    void moveFolderAcrossFileSystems();
};

void BenchFileOperations::initTestCase()
{
    QVERIFY(m_tmp.isValid());
    m_shm = std::make_unique<QTemporaryDir>(QStringLiteral("/dev/shm/kelo-bench-XXXXXX"));
    m_tree = m_tmp.filePath("tree");
    // 10,000 files of 1 KB in 20 sub-folders of 500, as a source tree or photo folder has them.
    const QByteArray block(1024, 'k');
    for (int i = 0; i < kFiles; ++i) {
        const QByteArray folder = QFile::encodeName(m_tree) + "/part" + QByteArray::number(i / 500);
        if (i % 500 == 0)
            QVERIFY(QDir().mkpath(QString::fromUtf8(folder)));
        const int fd = ::open(QByteArray(folder + "/file" + QByteArray::number(i) + ".dat").constData(),
            O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
        QVERIFY(fd >= 0);
        QCOMPARE(::write(fd, block.constData(), size_t(block.size())), ssize_t(block.size()));
        ::close(fd);
    }
    m_bigFile = m_tmp.filePath("big.bin");
    const int fd = ::open(QFile::encodeName(m_bigFile).constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
    QVERIFY(fd >= 0);
    QByteArray chunk(1 << 20, '\0');
    for (int i = 0; i < chunk.size(); ++i)
        chunk[i] = char(i * 31 + 7);
    for (qint64 written = 0; written < kBigFile; written += chunk.size())
        QCOMPARE(::write(fd, chunk.constData(), size_t(chunk.size())), ssize_t(chunk.size()));
    ::close(fd);
}

void BenchFileOperations::copyFolderOfSmallFiles()
{
    const QString ours = m_tmp.filePath("copy-ours");
    const QString theirs = m_tmp.filePath("copy-cp");
    const double ratio = compare(
        qPrintable(QString("copy folder, %1 files of 1 KB").arg(kFiles)),
        [&] {
            remove(ours);
            remove(theirs);
        },
        [&] { return FileOperations::copyFolder(m_tree, ours, false) && QDir(ours + "/part0").count() > 2; },
        [&] {
            return run("cp", {"-a", m_tree, theirs});
        },
        "cp -a", 1.3);
    remove(ours);
    remove(theirs);
    QVERIFY(ratio > 0);
}

void BenchFileOperations::copyBigFile()
{
    const QString ours = m_tmp.filePath("big-ours");
    const QString theirs = m_tmp.filePath("big-cp");
    const double ratio = compare(
        qPrintable(QString("copy one file of %1 MB").arg(kBigFile >> 20)),
        [&] {
            remove(ours);
            remove(theirs);
        },
        [&] { return FileOperations::copyFile(m_bigFile, ours, false) && QFileInfo(ours).size() == kBigFile; },
        [&] {
            return run("cp", {m_bigFile, theirs});
        },
        "cp", 1.1);
    remove(ours);
    remove(theirs);
    QVERIFY(ratio > 0);
}

void BenchFileOperations::moveFolderWithinFileSystem()
{
    const QString there = m_tmp.filePath("moved");
    std::vector<double> times;
    for (int round = 0; round < std::max(kRounds, 3); ++round) {
        bool ok = false;
        times.push_back(timeMs([&] { ok = FileOperations::moveFolder(m_tree, there); }));
        QVERIFY(ok);
        QVERIFY(FileOperations::moveFolder(there, m_tree));
    }
    qInfo("%-44s ours %9.3f ms   (target < 5 ms) %s",
        qPrintable(QString("move folder of %1 files, one file system").arg(kFiles)), median(times),
        median(times) < 5 ? "met" : "MISSED");
}

void BenchFileOperations::moveFolderAcrossFileSystems()
{
    if (!m_shm || !m_shm->isValid())
        QSKIP("/dev/shm is not available");
    const QString source = m_tmp.filePath("to-move");
    const QString ours = m_shm->filePath("moved-ours");
    const QString theirs = m_shm->filePath("moved-mv");
    const double ratio = compare(
        qPrintable(QString("move folder of %1 files, /tmp to /dev/shm").arg(kFiles)),
        [&] {
            remove(source);
            remove(ours);
            remove(theirs);
            FileOperations::copyFolder(m_tree, source, false);
        },
        [&] { return FileOperations::moveFolder(source, ours); },
        [&] {
            return run("mv", {source, theirs});
        },
        "mv", 1.3);
    remove(ours);
    remove(theirs);
    QVERIFY(ratio > 0);
}

int main(int argc, char **argv)
{
    // A round of the folder cases outlasts Qt Test's five-minute watchdog on a busy machine.
    if (!qEnvironmentVariableIsSet("QTEST_FUNCTION_TIMEOUT"))
        qputenv("QTEST_FUNCTION_TIMEOUT", "3600000");
    QCoreApplication app(argc, argv);
    BenchFileOperations bench;
    return QTest::qExec(&bench, argc, argv);
}
#include "bench_fileoperations.moc"
