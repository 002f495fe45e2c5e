#include "FileNameCodec.h"
#include "FileSystem.h"
#include "RuntimeError.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "FileTreeFixture.h"
#include "KeloTestSupport.h"

using namespace Kelocontrols;
using KeloTest::errorNumberOf;
using KeloTest::makeTree;
using KeloTest::writeFile;

namespace {

QByteArray raw(const QString &path)
{
    return KeloTest::diskPath(path);
}

QStringList namesOf(const QList<FileEntry> &entries)
{
    QStringList names;
    for (const FileEntry &entry : entries)
        names.append(entry.name);
    return names;
}

const FileEntry *findEntry(const QList<FileEntry> &entries, const QString &name)
{
    const auto found
        = std::find_if(entries.cbegin(), entries.cend(), [&](const FileEntry &e) { return e.name == name; });
    return found == entries.cend() ? nullptr : &*found;
}

/// The entries as "name: Attribute|..." texts, folders first, each in listing order.
QStringList described(const FolderContents &contents)
{
    using namespace FileAttribute;
    const std::pair<int, const char *> bits[] = {{ReadOnly, "ReadOnly"}, {Hidden, "Hidden"}, {System, "System"},
        {Directory, "Directory"}, {Archive, "Archive"}, {Alias, "Alias"}};
    QStringList texts;
    for (const FileEntry &entry : contents.folders + contents.files) {
        QStringList names;
        for (const auto &[bit, name] : bits) {
            if (entry.attributes & bit)
                names << name;
        }
        texts << entry.name + ": " + names.join('|');
    }
    return texts;
}

/// The order the listing promises, computed the slow, obvious way.
bool referenceBefore(const QString &a, const QString &b)
{
    const QByteArray foldedA = FileNameCodec::encode(a.toCaseFolded());
    const QByteArray foldedB = FileNameCodec::encode(b.toCaseFolded());
    if (foldedA != foldedB)
        return foldedA < foldedB;
    return a < b;
}

/// Runs @p call as the unprivileged user "nobody" in a child process and answers the error number it raised
/// (0 for none), or -1 when the child could not drop its privileges.
template<typename Call>
int errorNumberAsNobody(Call call)
{
    const pid_t child = ::fork();
    if (child == 0) {
        if (::setgid(65534) != 0 || ::setuid(65534) != 0)
            ::_exit(255);
        ::_exit(errorNumberOf(call) & 0xFF);
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) == 255)
        return -1;
    return WEXITSTATUS(status);
}

constexpr qint64 modifiedMs = 1700000000123; // 2023-11-14 22:13:20.123 UTC
constexpr qint64 accessedMs = 1600000000999;

bool setTimes(const QString &path, qint64 accessed, qint64 modified, int flags = 0)
{
    const auto toTimespec = [](qint64 ms) {
        timespec time{};
        time.tv_sec = ms / 1000 - (ms % 1000 < 0 ? 1 : 0);
        time.tv_nsec = (ms - time.tv_sec * 1000) * 1000000 + 456789; // below the millisecond: cut, not rounded
        return time;
    };
    const timespec times[2] = {toTimespec(accessed), toTimespec(modified)};
    return ::utimensat(AT_FDCWD, raw(path).constData(), times, flags) == 0;
}

} // namespace

class tst_FolderListing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void orderWithoutCase();
    void orderMatchesReference();
    void sizesAndDates();
    void creationTimeFallback();
    void attributes();
    void hiddenListFile();
    void pseudoFileSystemMountsAreSystem();
    void errors();
    void unreadableFolder();
    void invalidUtf8Names();
    void entryAndExistence();
    void fileCount();
    void pathTexts_data();
    void pathTexts();
};

void tst_FolderListing::orderWithoutCase()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QStringList files = {"b", "A", "a", "C", "abcdefghijklmnopq", "ABCDEFGHIJKLMNOPQ", "abcdefghijklmnop",
        "document_long_name_2", "Document_Long_Name_10", "document_long_name_1", "file9", "file10", "a_b", "a.b"};
    for (const QString &name : files)
        QVERIFY(writeFile(dir.filePath(name), QByteArray()));
    QVERIFY(makeTree(dir.path(), {"zeta/", "Alpha/", "beta/", "BETA2/"}));

    const FolderContents contents = FileSystem::instance().listFolder(dir.path());
    QCOMPARE(contents.path, dir.path());
    QCOMPARE(namesOf(contents.folders), QStringList({"Alpha", "beta", "BETA2", "zeta"}));
    // Equal without case: the exact names decide ("A" before "a"); a key that is a prefix comes first.
    QCOMPARE(namesOf(contents.files),
        QStringList({"A", "a", "a.b", "a_b", "abcdefghijklmnop", "ABCDEFGHIJKLMNOPQ", "abcdefghijklmnopq", "b", "C",
            "document_long_name_1", "Document_Long_Name_10", "document_long_name_2", "file10", "file9"}));

    // Listing again gives the same order, whatever the directory's own order.
    QCOMPARE(namesOf(FileSystem::instance().listFolder(dir.path() + "/").files), namesOf(contents.files));
}

void tst_FolderListing::orderMatchesReference()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    // Names that share long prefixes and differ in case, punctuation and non-ASCII letters.
    const QStringList pieces
        = {"a", "A", "b", "B", "_", ".", "-", "0", "9", " ", QStringLiteral(u"é"), QStringLiteral(u"É"),
            QStringLiteral(u"ß"), QStringLiteral(u"Ω"), QStringLiteral(u"ω"), "document_", "Document_"};
    QRandomGenerator random(4711);
    QStringList created;
    while (created.size() < 1500) {
        QString name;
        const int count = 1 + random.bounded(8);
        for (int i = 0; i < count; ++i)
            name += pieces.at(random.bounded(pieces.size()));
        if (name == "." || name == ".." || created.contains(name))
            continue;
        QVERIFY2(writeFile(dir.filePath(name), QByteArray()), qPrintable(name));
        created.append(name);
    }
    std::sort(created.begin(), created.end(), referenceBefore);
    QCOMPARE(namesOf(FileSystem::instance().listFolder(dir.path()).files), created);
}

void tst_FolderListing::sizesAndDates()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(makeTree(dir.path(), {"empty=", "one=x", "kilo=" + QString(1025, 'k'), "sub/", "sub/inside=inside"}));
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    QVERIFY(setTimes(dir.filePath("one"), accessedMs, modifiedMs));
    QVERIFY(setTimes(dir.filePath("sub"), accessedMs, modifiedMs));

    const FolderContents contents = FileSystem::instance().listFolder(dir.path());
    QCOMPARE(findEntry(contents.files, "empty")->size, 0);
    QCOMPARE(findEntry(contents.files, "one")->size, 1);
    QCOMPARE(findEntry(contents.files, "kilo")->size, 1025);
    const FileEntry *sub = findEntry(contents.folders, "sub");
    QVERIFY(sub);
    QCOMPARE(sub->size, 0); // folders carry no size, whatever they hold

    for (const FileEntry *entry : {findEntry(contents.files, "one"), sub}) {
        QCOMPARE(entry->modified, modifiedMs);
        QCOMPARE(entry->accessed, accessedMs);
        if (entry->createdKnown) {
            // Born during this test, long after the modification time set above.
            QVERIFY(entry->created >= before - 5000 && entry->created <= QDateTime::currentMSecsSinceEpoch() + 5000);
        } else {
            QCOMPARE(entry->created, entry->modified);
        }
    }
    // Times before 1970 come out negative, cut towards the earlier millisecond.
    QVERIFY(setTimes(dir.filePath("empty"), -1500, -86400000));
    const std::optional<FileEntry> old = FileSystem::instance().entry(dir.filePath("empty"));
    QVERIFY(old);
    QCOMPARE(old->modified, -86400000 + 0);
    QCOMPARE(old->accessed, -1500);
}

void tst_FolderListing::creationTimeFallback()
{
    // procfs records no birth time: the creation time falls back to the modification time.
    const std::optional<FileEntry> version = FileSystem::instance().entry("/proc/version");
    if (!version)
        QSKIP("no /proc here");
    QVERIFY(!version->createdKnown);
    QCOMPARE(version->created, version->modified);

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(writeFile(dir.filePath("new"), "n"));
    const std::optional<FileEntry> fresh = FileSystem::instance().entry(dir.filePath("new"));
    QVERIFY(fresh);
    if (!fresh->createdKnown)
        QCOMPARE(fresh->created, fresh->modified);
}

void tst_FolderListing::attributes()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(makeTree(dir.path(),
        {"plain.txt=plain", ".dotfile=dot", "locked.txt=locked", "unlocked.txt=unlocked", "folder/", ".dotfolder/",
            "link to folder->folder", "link to file->plain.txt", "broken link->gone", "loop->loop"}));
    QVERIFY(::chmod(raw(dir.filePath("locked.txt")).constData(), 0444) == 0);
    QVERIFY(::chmod(raw(dir.filePath("unlocked.txt")).constData(), 0444) == 0);
    QVERIFY(::chmod(raw(dir.filePath("unlocked.txt")).constData(), 0644) == 0);
    QVERIFY(::mkfifo(raw(dir.filePath("pipe")).constData(), 0644) == 0);

    const FolderContents contents = FileSystem::instance().listFolder(dir.path());
    QCOMPARE(described(contents),
        QStringList({".dotfolder: Hidden|Directory", "folder: Directory", "link to folder: Directory|Alias",
            ".dotfile: Hidden|Archive", "broken link: System|Alias", "link to file: Archive|Alias",
            "locked.txt: ReadOnly|Archive", "loop: System|Alias", "pipe: System", "plain.txt: Archive",
            "unlocked.txt: Archive"}));
    // A link is described by its target.
    QCOMPARE(findEntry(contents.files, "link to file")->size, 5);
    QCOMPARE(findEntry(contents.folders, "link to folder")->size, 0);
    QVERIFY(findEntry(contents.folders, "link to folder")->isFolder());
    QVERIFY(!findEntry(contents.files, "pipe")->isFolder());

    // Devices are system files too.
    const std::optional<FileEntry> null = FileSystem::instance().entry("/dev/null");
    QVERIFY(null);
    QCOMPARE(null->attributes & (FileAttribute::System | FileAttribute::Directory | FileAttribute::Archive),
        FileAttribute::System);
}

void tst_FolderListing::hiddenListFile()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(makeTree(dir.path(),
        {"listed.txt=x", "blanks.txt=x", "tab.txt=x", "listed=x", "other.txt=x", "crlf.txt=x", "listed folder/"}));
    QVERIFY(writeFile(dir.filePath(".hidden"),
        "listed.txt\nblanks.txt   \ntab.txt\t\n\n\r\nlisted folder\r\ncrlf.txt\r\nnot there\nlisted.txt"));

    // Listed names are hidden, whatever blanks, tabs or CR follow them; a prefix of a listed name is not listed.
    QCOMPARE(described(FileSystem::instance().listFolder(dir.path())),
        QStringList({"listed folder: Hidden|Directory", ".hidden: Hidden|Archive", "blanks.txt: Hidden|Archive",
            "crlf.txt: Hidden|Archive", "listed: Archive", "listed.txt: Hidden|Archive", "other.txt: Archive",
            "tab.txt: Hidden|Archive"}));

    // entry() consults the same list in the entry's folder.
    QVERIFY(FileSystem::instance().entry(dir.filePath("crlf.txt"))->attributes & FileAttribute::Hidden);
    QVERIFY(!(FileSystem::instance().entry(dir.filePath("other.txt"))->attributes & FileAttribute::Hidden));
    QVERIFY(FileSystem::instance().entry(dir.filePath("listed folder"))->attributes & FileAttribute::Hidden);
}

void tst_FolderListing::pseudoFileSystemMountsAreSystem()
{
    struct statx info;
    if (::statx(AT_FDCWD, "/proc", 0, STATX_TYPE, &info) != 0 || !(info.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT)
        || !(info.stx_attributes & STATX_ATTR_MOUNT_ROOT))
        QSKIP("/proc is not a mount point here");
    const std::optional<FileEntry> proc = FileSystem::instance().entry("/proc");
    QVERIFY(proc);
    QCOMPARE(proc->attributes & (FileAttribute::System | FileAttribute::Directory),
        FileAttribute::System | FileAttribute::Directory);

    const FolderContents root = FileSystem::instance().listFolder("/");
    QVERIFY(findEntry(root.folders, "proc"));
    QVERIFY(findEntry(root.folders, "proc")->attributes & FileAttribute::System);
    QVERIFY(findEntry(root.folders, "sys")->attributes & FileAttribute::System);
    QVERIFY(!(findEntry(root.folders, "etc")->attributes & FileAttribute::System));
    QVERIFY(!(findEntry(root.folders, "usr")->attributes & FileAttribute::System));

    // A link to a pseudo mount leads to it.
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(makeTree(dir.path(), {"to proc->/proc"}));
    const FolderContents withLink = FileSystem::instance().listFolder(dir.path());
    const FileEntry *link = findEntry(withLink.folders, "to proc");
    QVERIFY(link);
    QCOMPARE(link->attributes & (FileAttribute::System | FileAttribute::Alias | FileAttribute::Directory),
        FileAttribute::System | FileAttribute::Alias | FileAttribute::Directory);
}

void tst_FolderListing::errors()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(writeFile(dir.filePath("file.txt"), "x"));
    const FileSystem &fileSystem = FileSystem::instance();
    QCOMPARE(errorNumberOf([&] { fileSystem.listFolder(dir.filePath("missing")); }), ErrorNumber::PathNotFound);
    QCOMPARE(errorNumberOf([&] { fileSystem.listFolder(dir.filePath("missing/deeper")); }), ErrorNumber::PathNotFound);
    QCOMPARE(errorNumberOf([&] { fileSystem.listFolder(dir.filePath("file.txt")); }), ErrorNumber::PathNotFound);
    QCOMPARE(errorNumberOf([&] { fileSystem.listFolder(QString()); }), ErrorNumber::PathNotFound);
    QCOMPARE(errorNumberOf([&] { fileSystem.listFolder(dir.path()); }), 0);

    QVERIFY(makeTree(dir.path(), {"empty/"}));
    const FolderContents empty = fileSystem.listFolder(dir.filePath("empty"));
    QVERIFY(empty.folders.isEmpty() && empty.files.isEmpty());
}

void tst_FolderListing::unreadableFolder()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(::chmod(raw(dir.path()).constData(), 0755) == 0);
    QVERIFY(makeTree(dir.path(), {"closed/", "closed/secret=s", "names only/", "names only/secret=s"}));
    QVERIFY(::chmod(raw(dir.filePath("closed")).constData(), 0000) == 0);
    // Names can be read, but not looked up.
    QVERIFY(::chmod(raw(dir.filePath("names only")).constData(), 0444) == 0);

    const FileSystem &fileSystem = FileSystem::instance();
    const auto listClosed = [&] { fileSystem.listFolder(dir.filePath("closed")); };
    const auto listNamesOnly = [&] { fileSystem.listFolder(dir.filePath("names only")); };
    const auto countClosed = [&] {
        if (fileSystem.fileCount(dir.filePath("closed")) != 0)
            throw RuntimeError(ErrorNumber::Overflow);
    };
    if (::geteuid() != 0) {
        QCOMPARE(errorNumberOf(listClosed), ErrorNumber::PermissionDenied);
        QCOMPARE(errorNumberOf(listNamesOnly), ErrorNumber::PermissionDenied);
        QCOMPARE(fileSystem.fileCount(dir.filePath("closed")), 0);
    } else {
        // The superuser reads anything: check as an ordinary user in a child process instead.
        const int closed = errorNumberAsNobody(listClosed);
        if (closed < 0)
            QSKIP("running as root without a way to drop privileges");
        QCOMPARE(closed, ErrorNumber::PermissionDenied);
        QCOMPARE(errorNumberAsNobody(listNamesOnly), ErrorNumber::PermissionDenied);
        QCOMPARE(errorNumberAsNobody(countClosed), 0);
    }
    QVERIFY(::chmod(raw(dir.filePath("closed")).constData(), 0755) == 0);
    QVERIFY(::chmod(raw(dir.filePath("names only")).constData(), 0755) == 0);
}

void tst_FolderListing::invalidUtf8Names()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QByteArray base = raw(dir.path()) + '/';
    // "café" in Latin-1 and a stray 0xFF: not UTF-8.
    const QByteArray fileName("caf\xe9\xff.txt");
    const QByteArray folderName("R\xe9sum\xe9s");
    // QTemporaryDir cannot remove names that are not UTF-8: remove them here.
    const auto removeOddNames = qScopeGuard([&] {
        ::unlink(QByteArray(base + fileName).constData());
        ::unlink(QByteArray(base + folderName + "/inner\x80").constData());
        ::rmdir(QByteArray(base + folderName).constData());
    });
    int fd = ::open(QByteArray(base + fileName).constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
    QVERIFY(fd >= 0);
    QVERIFY(::write(fd, "latin", 5) == 5);
    ::close(fd);
    QVERIFY(::mkdir(QByteArray(base + folderName).constData(), 0755) == 0);
    fd = ::open(QByteArray(base + folderName + "/inner\x80").constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
    QVERIFY(fd >= 0);
    ::close(fd);

    const FileSystem &fileSystem = FileSystem::instance();
    const FolderContents contents = fileSystem.listFolder(dir.path());
    QCOMPARE(contents.files.size(), 1);
    QCOMPARE(contents.folders.size(), 1);
    const QString name = contents.files.first().name;
    QCOMPARE(name, QString("caf") + QChar(0xDCE9) + QChar(0xDCFF) + ".txt");
    QCOMPARE(contents.files.first().size, 5);

    // The decoded name, joined to the folder and encoded back, reaches the same file.
    const QString path = FileSystem::buildPath(dir.path(), name);
    QCOMPARE(raw(path), QByteArray(base + fileName));
    QVERIFY(fileSystem.fileExists(path));
    QVERIFY(!fileSystem.folderExists(path));
    QCOMPARE(fileSystem.entry(path)->name, name);
    QCOMPARE(fileSystem.fileSize(path), 5);
    QCOMPARE(FileSystem::extensionName(path), u"txt"_qs);
    fd = ::open(raw(path).constData(), O_RDONLY | O_CLOEXEC);
    QVERIFY(fd >= 0);
    char content[8] = {};
    QCOMPARE(::read(fd, content, sizeof content), 5);
    ::close(fd);
    QCOMPARE(QByteArray(content), QByteArray("latin"));

    // A folder with such a name lists, counts and answers too.
    const QString folderPath = FileSystem::buildPath(dir.path(), contents.folders.first().name);
    QVERIFY(fileSystem.folderExists(folderPath));
    QVERIFY(fileSystem.folder(folderPath).exists);
    QCOMPARE(fileSystem.fileCount(folderPath), 1);
    const FolderContents inner = fileSystem.listFolder(folderPath);
    QCOMPARE(inner.path, folderPath);
    QCOMPARE(namesOf(inner.files), QStringList({QString("inner") + QChar(0xDC80)}));
    QCOMPARE(FileSystem::parentFolderName(FileSystem::buildPath(folderPath, inner.files.first().name)), folderPath);
}

void tst_FolderListing::entryAndExistence()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(makeTree(
        dir.path(), {"file.txt=12345", "folder/", "folder link->folder", "file link->file.txt", "broken->nowhere"}));
    const FileSystem &fileSystem = FileSystem::instance();

    const std::optional<FileEntry> file = fileSystem.entry(dir.filePath("file.txt"));
    QVERIFY(file);
    QCOMPARE(file->name, u"file.txt"_qs);
    QCOMPARE(file->size, 5);
    QCOMPARE(file->attributes, FileAttribute::Archive);
    // The same record as in the listing.
    QCOMPARE(*file, *findEntry(fileSystem.listFolder(dir.path()).files, "file.txt"));

    const std::optional<FileEntry> folder = fileSystem.entry(dir.filePath("folder") + "/");
    QVERIFY(folder);
    QCOMPARE(folder->name, u"folder"_qs);
    QCOMPARE(folder->attributes, FileAttribute::Directory);
    QCOMPARE(
        fileSystem.entry(dir.filePath("folder link"))->attributes, FileAttribute::Directory | FileAttribute::Alias);
    QCOMPARE(fileSystem.entry(dir.filePath("broken"))->attributes, FileAttribute::System | FileAttribute::Alias);
    QCOMPARE(fileSystem.entry(dir.filePath("folder/../file.txt"))->name, u"file.txt"_qs);
    QVERIFY(!fileSystem.entry(dir.filePath("missing")));
    QVERIFY(!fileSystem.entry(dir.filePath("file.txt/below")));
    QVERIFY(!fileSystem.entry(QString()));

    const std::optional<FileEntry> root = fileSystem.entry("/");
    QVERIFY(root);
    QVERIFY(root->name.isEmpty());
    QVERIFY(root->isFolder());

    // A relative path is taken from the current folder.
    const QString previous = QDir::currentPath();
    QVERIFY(QDir::setCurrent(dir.path()));
    const std::optional<FileEntry> relative = fileSystem.entry("file.txt");
    const bool relativeExists = fileSystem.fileExists("file.txt");
    QVERIFY(QDir::setCurrent(previous));
    QVERIFY(relative && relative->size == 5);
    QVERIFY(relativeExists);

    // Which names are files (links by what they lead to, a broken link a file) and which are folders.
    QStringList files, folders;
    for (const QString &name : {"file.txt", "file link", "broken", "folder", "folder link", "missing", ""}) {
        const QString path = name.isEmpty() ? QString() : dir.filePath(name);
        if (fileSystem.fileExists(path))
            files << name;
        if (fileSystem.folderExists(path))
            folders << name;
    }
    QCOMPARE(files, QStringList({"file.txt", "file link", "broken"}));
    QCOMPARE(folders, QStringList({"folder", "folder link"}));
    QVERIFY(fileSystem.folderExists("/"));
}

void tst_FolderListing::fileCount()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(makeTree(dir.path(),
        {"a=x", "b=x", ".c=x", "sub1/", "sub2/", "sub1/deeper=not counted", "folder link->sub1", "file link->a",
            "broken->gone"}));
    QVERIFY(::mkfifo(raw(dir.filePath("pipe")).constData(), 0644) == 0);

    const FileSystem &fileSystem = FileSystem::instance();
    QCOMPARE(fileSystem.fileCount(dir.path()), 6);
    QCOMPARE(fileSystem.fileCount(dir.path()), int(fileSystem.listFolder(dir.path()).files.size()));
    QCOMPARE(fileSystem.fileCount(dir.filePath("sub1")), 1);
    QCOMPARE(fileSystem.fileCount(dir.filePath("folder link")), 1);
    QCOMPARE(fileSystem.fileCount(dir.filePath("sub2")), 0);
    QCOMPARE(fileSystem.fileCount(dir.filePath("missing")), 0);
    QCOMPARE(fileSystem.fileCount(dir.filePath("a")), 0);
    QCOMPARE(fileSystem.fileCount(QString()), 0);
}

void tst_FolderListing::pathTexts_data()
{
    QTest::addColumn<QString>("function");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("name"); // buildPath only
    QTest::addColumn<QString>("expected");
    const auto row
        = [](const char *function, const char *tag, const char *path, const char *name, const char *expected) {
              QTest::addRow("%s: %s", function, tag)
                  << QString(function) << QString(path) << QString(name) << QString(expected);
          };
    row("extensionName", "two dots", "a.tar.gz", "", "gz");
    row("extensionName", "none", "README", "", "");
    row("extensionName", "dot file", ".bashrc", "", "bashrc");
    row("extensionName", "trailing dot", "x.", "", "");
    row("extensionName", "full path", "/home/user/Report.PDF", "", "PDF");
    row("extensionName", "dot only in a folder", "/home/user.d/Makefile", "", "");
    row("extensionName", "trailing slash", "/srv/site.old/", "", "old");
    row("extensionName", "dot dot", "..", "", "");
    row("extensionName", "empty", "", "", "");
    row("extensionName", "blank extension", "notes. txt", "", " txt");
    row("parentFolderName", "file", "/home/user/a.txt", "", "/home/user");
    row("parentFolderName", "trailing slash", "/home/user/", "", "/home");
    row("parentFolderName", "top level", "/home", "", "/");
    row("parentFolderName", "root", "/", "", "");
    row("parentFolderName", "empty", "", "", "");
    row("parentFolderName", "doubled slashes", "/home//user///a.txt", "", "/home/user");
    row("parentFolderName", "dot dot", "/home/user/../other/x", "", "/home/other");
    row("parentFolderName", "relative", "docs/a.txt", "", "docs");
    row("parentFolderName", "bare name", "a.txt", "", "");
    row("buildPath", "plain", "/home/user", "a.txt", "/home/user/a.txt");
    row("buildPath", "folder with slash", "/home/user/", "a.txt", "/home/user/a.txt");
    row("buildPath", "name with slash", "/home/user", "/a.txt", "/home/user/a.txt");
    row("buildPath", "both", "/home/user//", "//a.txt", "/home/user/a.txt");
    row("buildPath", "root", "/", "etc", "/etc");
    row("buildPath", "empty folder", "", "a.txt", "a.txt");
    row("buildPath", "empty name", "/home", "", "/home");
    row("buildPath", "nested name", "/home", "user/a.txt", "/home/user/a.txt");
    row("buildPath", "relative", "docs", "a.txt", "docs/a.txt");
}

void tst_FolderListing::pathTexts()
{
    QFETCH(QString, function);
    QFETCH(QString, path);
    QFETCH(QString, name);
    const QString actual = function == "extensionName" ? FileSystem::extensionName(path)
        : function == "parentFolderName"               ? FileSystem::parentFolderName(path)
                                                       : FileSystem::buildPath(path, name);
    QTEST(actual, "expected");
}

QTEST_GUILESS_MAIN(tst_FolderListing)
#include "tst_folderlisting.moc"
