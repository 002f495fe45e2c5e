// FileSystem::listFolder over a folder of 100,000 entries (a few hundred
// sub-folders, files with about thirty extensions), against
// - the floor: a bare opendir/readdir loop with one statx per entry, asking
//   for the same fields and keeping nothing but a checksum, and
// - what a Qt developer would write instead: QDir::entryInfoList sorted by
//   name without regard to case, folders first.
// All candidates read the same folder in the same run, warm in the page cache.

#include <Kelocontrols/FileSystem.h>
#include <Kelocontrols/FileTypes.h>

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

// scripts/bench --smoke sets KELO_BENCH_SMOKE: a small folder proves the benchmark still works.
const int kEntries = qEnvironmentVariableIntValue("KELO_BENCH_SMOKE") ? 2000 : 100000;
const int kFolders = kEntries / 300 + 1;

const char *const kExtensions[]
    = {"txt", "cpp", "h", "png", "jpg", "pdf", "html", "css", "js", "json", "xml", "md", "py", "sh", "zip", "gz", "tar",
        "mp3", "ogg", "mp4", "odt", "ods", "doc", "xls", "csv", "log", "ini", "svg", "c", "exe"};

/// The floor: every entry read and statx'ed once, nothing kept. Answers the number of entries.
int rawListing(const QByteArray &path)
{
    DIR *dir = ::opendir(path.constData());
    if (!dir)
        return -1;
    int count = 0;
    qint64 checksum = 0;
    while (const dirent *entry = ::readdir(dir)) {
        if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0)
            continue;
        struct statx info;
        if (::statx(::dirfd(dir), entry->d_name, AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC | AT_SYMLINK_NOFOLLOW,
                STATX_TYPE | STATX_MODE | STATX_SIZE | STATX_ATIME | STATX_MTIME | STATX_BTIME, &info)
            == 0) {
            checksum += qint64(info.stx_size) + info.stx_mtime.tv_sec + info.stx_mode;
            ++count;
        }
    }
    ::closedir(dir);
    return checksum != 0 ? count : -1;
}

} // namespace

class BenchFolderListing : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_root;
    QString m_folder;

private Q_SLOTS:
    void initTestCase();
    void rawReaddirStatx();
    void listFolder();
    void listFolderWithTypeTexts();
    void qdirEntryInfoList();
    void interleavedRatio();
};

void BenchFolderListing::initTestCase()
{
    QVERIFY(m_root.isValid());
    m_folder = m_root.filePath(QStringLiteral("big"));
    QVERIFY(QDir().mkpath(m_folder));
    const QByteArray base = QFile::encodeName(m_folder) + '/';
    for (int i = 0; i < kFolders; ++i)
        QVERIFY(::mkdir(QByteArray(base + "Folder " + QByteArray::number(i)).constData(), 0755) == 0);
    constexpr int extensionCount = int(sizeof kExtensions / sizeof *kExtensions);
    for (int i = kFolders; i < kEntries; ++i) {
        // Mixed case and a spread of lengths, as real folders have.
        const QByteArray name = base + QByteArray(i % 3 ? "document_" : "Photo ")
            + QByteArray::number(i * 7919 % 1000003) + '.' + kExtensions[i % extensionCount];
        const int fd = ::open(name.constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
        QVERIFY(fd >= 0);
        if (i % 5 == 0)
            QVERIFY(::write(fd, "content", 7) == 7);
        ::close(fd);
    }
    const Kelocontrols::FolderContents contents = Kelocontrols::FileSystem::instance().listFolder(m_folder);
    QCOMPARE(contents.folders.size() + contents.files.size(), kEntries);
}

void BenchFolderListing::rawReaddirStatx()
{
    const QByteArray path = QFile::encodeName(m_folder);
    int count = 0;
    QBENCHMARK
    {
        count = rawListing(path);
    }
    QCOMPARE(count, kEntries);
}

void BenchFolderListing::listFolder()
{
    const Kelocontrols::FileSystem &fileSystem = Kelocontrols::FileSystem::instance();
    qsizetype count = 0;
    QBENCHMARK
    {
        const Kelocontrols::FolderContents contents = fileSystem.listFolder(m_folder);
        count = contents.folders.size() + contents.files.size();
    }
    QCOMPARE(count, kEntries);
}

// What the file list does per file on top of the listing: the type text by extension.
void BenchFolderListing::listFolderWithTypeTexts()
{
    const Kelocontrols::FileSystem &fileSystem = Kelocontrols::FileSystem::instance();
    Kelocontrols::FileTypes &types = Kelocontrols::FileTypes::instance();
    qsizetype textLength = 0;
    QBENCHMARK
    {
        const Kelocontrols::FolderContents contents = fileSystem.listFolder(m_folder);
        for (const Kelocontrols::FileEntry &file : contents.files)
            textLength += types.fileTypeText(file.name).size();
    }
    QVERIFY(textLength > 0);
}

void BenchFolderListing::qdirEntryInfoList()
{
    qsizetype count = 0;
    qint64 checksum = 0;
    QBENCHMARK
    {
        const QFileInfoList list
            = QDir(m_folder).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
                QDir::Name | QDir::IgnoreCase | QDir::DirsFirst);
        for (const QFileInfo &info : list)
            checksum += info.size() + info.lastModified().toMSecsSinceEpoch();
        count = list.size();
    }
    QCOMPARE(count, kEntries);
    QVERIFY(checksum != 0);
}

// The two runs alternate, so that a busy machine slows both alike; the best
// of each is reported with their ratio.
void BenchFolderListing::interleavedRatio()
{
    const QByteArray path = QFile::encodeName(m_folder);
    const Kelocontrols::FileSystem &fileSystem = Kelocontrols::FileSystem::instance();
    qint64 bestRaw = std::numeric_limits<qint64>::max();
    qint64 bestList = bestRaw;
    QElapsedTimer timer;
    for (int round = 0; round < 7; ++round) {
        timer.start();
        QCOMPARE(rawListing(path), kEntries);
        bestRaw = std::min(bestRaw, timer.nsecsElapsed());
        timer.start();
        {
            const Kelocontrols::FolderContents contents = fileSystem.listFolder(m_folder);
            QCOMPARE(contents.folders.size() + contents.files.size(), kEntries);
        }
        bestList = std::min(bestList, timer.nsecsElapsed());
    }
    qInfo("best of 7, interleaved: raw loop %.1f ms, listFolder %.1f ms, ratio %.2f", bestRaw / 1e6, bestList / 1e6,
        double(bestList) / double(bestRaw));
}

QTEST_GUILESS_MAIN(BenchFolderListing)
#include "bench_folderlisting.moc"
