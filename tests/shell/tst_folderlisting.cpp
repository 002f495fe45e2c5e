// Folder listings, single entries and their attributes, read from and
// written to a real temporary folder.

#include "FileAttributes.h"
#include "FileNameCodec.h"
#include "FileSystem.h"
#include "RuntimeError.h"

#include <QDateTime>
#include <QDir>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

#include "FileTreeFixture.h"
#include "KeloTestSupport.h"

using namespace Kelocontrols;
using KeloTest::diskPath;
using KeloTest::errorNumberOf;
using KeloTest::makeTree;

namespace {

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
QStringList described(const QList<FileEntry> &entries)
{
    using namespace FileAttribute;
    const std::pair<int, const char *> bits[] = {{ReadOnly, "ReadOnly"}, {Hidden, "Hidden"}, {System, "System"},
        {Directory, "Directory"}, {Archive, "Archive"}, {Alias, "Alias"}};
    QStringList texts;
    for (const FileEntry &entry : entries) {
        QStringList names;
        for (const auto &[bit, name] : bits) {
            if (entry.attributes & bit)
                names << name;
        }
        texts << entry.name + ": " + names.join('|');
    }
    return texts;
}

QStringList described(const FolderContents &contents)
{
    return described(contents.folders + contents.files);
}

/// The order the listing promises, computed the slow, obvious way.
bool referenceBefore(const QString &a, const QString &b)
{
    const QByteArray foldedA = FileNameCodec::encode(a.toCaseFolded());
    const QByteArray foldedB = FileNameCodec::encode(b.toCaseFolded());
    return foldedA != foldedB ? foldedA < foldedB : a < b;
}

/// The error number @p call raises (0 for none) as an ordinary user: as "nobody" in a child process when running as
/// the superuser, who reads anything; -1 when the child could not drop its privileges.
template<typename Call>
int errorNumberAsUser(Call call)
{
    if (::geteuid() != 0)
        return errorNumberOf(call);
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

/// Sets both times; below the millisecond a fraction that must be cut, not rounded.
bool setTimes(const QString &path, qint64 accessedMs, qint64 modifiedMs)
{
    const auto toTimespec = [](qint64 ms) {
        timespec time{};
        time.tv_sec = ms / 1000 - (ms % 1000 < 0 ? 1 : 0);
        time.tv_nsec = (ms - time.tv_sec * 1000) * 1000000 + 456789;
        return time;
    };
    const timespec times[2] = {toTimespec(accessedMs), toTimespec(modifiedMs)};
    return ::utimensat(AT_FDCWD, diskPath(path).constData(), times, 0) == 0;
}

bool setMode(const QString &path, mode_t mode)
{
    return ::chmod(diskPath(path).constData(), mode) == 0;
}

} // namespace

class tst_FolderListing : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    const FileSystem &fileSystem = FileSystem::instance();
    QString at(const QString &name) const { return m_dir.filePath(name); }

private Q_SLOTS:
    void initTestCase() { QVERIFY(setMode(m_dir.path(), 0755)); } // reachable for "nobody"
    void init() { QVERIFY(KeloTest::emptyFolder(m_dir.path()) && setMode(m_dir.path(), 0755)); }

    void orderWithoutCase()
    {
        QVERIFY(makeTree(m_dir.path(),
            {"b=", "A=", "a=", "C=", "abcdefghijklmnopq=", "ABCDEFGHIJKLMNOPQ=", "abcdefghijklmnop=",
                "document_long_name_2=", "Document_Long_Name_10=", "document_long_name_1=", "file9=", "file10=", "a_b=",
                "a.b=", "zeta/", "Alpha/", "beta/", "BETA2/"}));
        const FolderContents contents = fileSystem.listFolder(m_dir.path());
        QCOMPARE(contents.path, m_dir.path());
        QCOMPARE(namesOf(contents.folders), QStringList({"Alpha", "beta", "BETA2", "zeta"}));
        // Equal without case: the exact names decide ("A" before "a"); a key that is a prefix comes first.
        QCOMPARE(namesOf(contents.files),
            QStringList({"A", "a", "a.b", "a_b", "abcdefghijklmnop", "ABCDEFGHIJKLMNOPQ", "abcdefghijklmnopq", "b", "C",
                "document_long_name_1", "Document_Long_Name_10", "document_long_name_2", "file10", "file9"}));
        // Listing again gives the same order, whatever the directory's own order.
        QCOMPARE(namesOf(fileSystem.listFolder(m_dir.path() + "/").files), namesOf(contents.files));

        // Many names that share long prefixes and differ in case, punctuation and non-ASCII letters.
        QVERIFY(KeloTest::emptyFolder(m_dir.path()));
        const QStringList pieces
            = {"a", "A", "b", "B", "_", ".", "-", "0", "9", " ", QStringLiteral(u"é"), QStringLiteral(u"É"),
                QStringLiteral(u"ß"), QStringLiteral(u"Ω"), QStringLiteral(u"ω"), "document_", "Document_"};
        QRandomGenerator random(4711);
        QStringList created;
        while (created.size() < 1500) {
            QString name;
            for (int i = random.bounded(8); i >= 0; --i)
                name += pieces.at(random.bounded(pieces.size()));
            if (name == "." || name == ".." || created.contains(name))
                continue;
            QVERIFY2(KeloTest::writeFileAt(at(name), {}), qPrintable(name));
            created.append(name);
        }
        std::sort(created.begin(), created.end(), referenceBefore);
        QCOMPARE(namesOf(fileSystem.listFolder(m_dir.path()).files), created);
    }

    void sizesAndDates()
    {
        constexpr qint64 modifiedMs = 1700000000123; // 2023-11-14 22:13:20.123 UTC
        constexpr qint64 accessedMs = 1600000000999;
        QVERIFY(makeTree(m_dir.path(), {"empty=", "one=x", "kilo=" + QString(1025, 'k'), "sub/", "sub/in=inside"}));
        const qint64 before = QDateTime::currentMSecsSinceEpoch();
        QVERIFY(setTimes(at("one"), accessedMs, modifiedMs) && setTimes(at("sub"), accessedMs, modifiedMs));

        const FolderContents contents = fileSystem.listFolder(m_dir.path());
        QCOMPARE(findEntry(contents.files, "empty")->size, 0);
        QCOMPARE(findEntry(contents.files, "one")->size, 1);
        QCOMPARE(findEntry(contents.files, "kilo")->size, 1025);
        const FileEntry *sub = findEntry(contents.folders, "sub");
        QVERIFY(sub);
        QCOMPARE(sub->size, 0); // folders carry no size, whatever they hold
        for (const FileEntry *entry : {findEntry(contents.files, "one"), sub}) {
            QCOMPARE(entry->modified, modifiedMs);
            QCOMPARE(entry->accessed, accessedMs);
            if (entry->createdKnown) // born during this test, long after the modification time set above
                QVERIFY(
                    entry->created >= before - 5000 && entry->created <= QDateTime::currentMSecsSinceEpoch() + 5000);
            else
                QCOMPARE(entry->created, entry->modified);
        }
        // Times before 1970 come out negative, cut towards the earlier millisecond.
        QVERIFY(setTimes(at("empty"), -1500, -86400000));
        const std::optional<FileEntry> old = fileSystem.entry(at("empty"));
        QVERIFY(old);
        QCOMPARE(old->modified, -86400000 + 0);
        QCOMPARE(old->accessed, -1500);

        // procfs records no birth time: the creation time falls back to the modification time.
        if (const std::optional<FileEntry> version = fileSystem.entry("/proc/version")) {
            QVERIFY(!version->createdKnown);
            QCOMPARE(version->created, version->modified);
        }
    }

    void attributes()
    {
        QVERIFY(makeTree(m_dir.path(),
            {"plain.txt=plain", ".dotfile=dot", "locked.txt=locked", "unlocked.txt=unlocked", "folder/", ".dotfolder/",
                "link to folder->folder", "link to file->plain.txt", "broken link->gone", "loop->loop",
                "to proc->/proc"}));
        QVERIFY(setMode(at("locked.txt"), 0444) && setMode(at("unlocked.txt"), 0444));
        QVERIFY(setMode(at("unlocked.txt"), 0644));
        QVERIFY(::mkfifo(diskPath(at("pipe")).constData(), 0644) == 0);

        const FolderContents contents = fileSystem.listFolder(m_dir.path());
        QCOMPARE(described(contents),
            QStringList({".dotfolder: Hidden|Directory", "folder: Directory", "link to folder: Directory|Alias",
                "to proc: ReadOnly|System|Directory|Alias", ".dotfile: Hidden|Archive", "broken link: System|Alias",
                "link to file: Archive|Alias", "locked.txt: ReadOnly|Archive", "loop: System|Alias", "pipe: System",
                "plain.txt: Archive", "unlocked.txt: Archive"}));
        // A link is described by its target.
        QCOMPARE(findEntry(contents.files, "link to file")->size, 5);
        QCOMPARE(findEntry(contents.folders, "link to folder")->size, 0);
        QVERIFY(findEntry(contents.folders, "link to folder")->isFolder());
        QVERIFY(!findEntry(contents.files, "pipe")->isFolder());

        // Devices and pseudo file systems are system entries; ordinary folders are not.
        QStringList system;
        for (const char *path : {"/dev/null", "/proc", "/sys", "/etc", "/usr"})
            system << described({*fileSystem.entry(QString::fromLatin1(path))});
        QCOMPARE(system,
            QStringList({"null: System", "proc: ReadOnly|System|Directory", "sys: ReadOnly|System|Directory",
                "etc: Directory", "usr: Directory"}));
        QCOMPARE(described(fileSystem.listFolder("/").folders).filter(QRegularExpression("^(proc|sys|etc): ")),
            QStringList({"etc: Directory", "proc: ReadOnly|System|Directory", "sys: ReadOnly|System|Directory"}));
    }

    void hiddenListFile()
    {
        QVERIFY(makeTree(m_dir.path(),
            {"listed.txt=x", "blanks.txt=x", "tab.txt=x", "listed=x", "other.txt=x", "crlf.txt=x", "listed folder/",
                ".hidden=listed.txt\nblanks.txt   \ntab.txt\t\n\n\r\nlisted folder\r\ncrlf.txt\r\nnot there\n"
                "listed.txt"}));
        // Listed names are hidden, whatever blanks, tabs or CR follow them; a prefix of a listed name is not listed.
        QCOMPARE(described(fileSystem.listFolder(m_dir.path())),
            QStringList({"listed folder: Hidden|Directory", ".hidden: Hidden|Archive", "blanks.txt: Hidden|Archive",
                "crlf.txt: Hidden|Archive", "listed: Archive", "listed.txt: Hidden|Archive", "other.txt: Archive",
                "tab.txt: Hidden|Archive"}));
        // entry() consults the same list in the entry's folder.
        QCOMPARE(described({*fileSystem.entry(at("crlf.txt")), *fileSystem.entry(at("other.txt")),
                     *fileSystem.entry(at("listed folder"))}),
            QStringList({"crlf.txt: Hidden|Archive", "other.txt: Archive", "listed folder: Hidden|Directory"}));
    }

    void errorsAndCounts()
    {
        QVERIFY(makeTree(m_dir.path(),
            {"a=x", "b=x", ".c=x", "sub1/", "sub2/", "sub1/deeper=not counted", "folder link->sub1", "file link->a",
                "broken->gone", "closed/", "closed/secret=s", "names only/", "names only/secret=s"}));
        QVERIFY(::mkfifo(diskPath(at("pipe")).constData(), 0644) == 0);
        for (const QString &path : {at("missing"), at("missing/deeper"), at("a"), QString()})
            QCOMPARE(errorNumberOf([&] { fileSystem.listFolder(path); }), ErrorNumber::PathNotFound);
        const FolderContents empty = fileSystem.listFolder(at("sub2"));
        QVERIFY(empty.folders.isEmpty() && empty.files.isEmpty());

        QList<int> counts;
        for (const char *name : {"", "sub1", "folder link", "sub2", "missing", "a"})
            counts << fileSystem.fileCount(*name ? at(name) : m_dir.path());
        QCOMPARE(counts, QList<int>({6, 1, 1, 0, 0, 0}));
        QCOMPARE(fileSystem.fileCount(QString()), 0);
        QCOMPARE(qsizetype(counts.first()), fileSystem.listFolder(m_dir.path()).files.size());

        // A folder that cannot be entered, and one whose names can be read but not looked up: refused.
        QVERIFY(setMode(at("closed"), 0000) && setMode(at("names only"), 0444));
        const auto listClosed = [&] { fileSystem.listFolder(at("closed")); };
        const auto listNamesOnly = [&] { fileSystem.listFolder(at("names only")); };
        const auto countClosed = [&] {
            if (fileSystem.fileCount(at("closed")) != 0)
                throw RuntimeError(ErrorNumber::Overflow);
        };
        const QList<int> errors
            = {errorNumberAsUser(listClosed), errorNumberAsUser(listNamesOnly), errorNumberAsUser(countClosed)};
        if (errors.contains(-1))
            QSKIP("running as root without a way to drop privileges");
        QCOMPARE(errors, QList<int>({ErrorNumber::PermissionDenied, ErrorNumber::PermissionDenied, 0}));
        QVERIFY(setMode(at("closed"), 0755) && setMode(at("names only"), 0755));
    }

    void namesThatAreNotUtf8()
    {
        // "café" in Latin-1 and a stray 0xFF: not UTF-8.
        const QString name = FileNameCodec::decode(QByteArray("caf\xe9\xff.txt"));
        const QString folderName = FileNameCodec::decode(QByteArray("R\xe9sum\xe9s"));
        const QString inner = FileNameCodec::decode(QByteArray("inner\x80"));
        QVERIFY(makeTree(m_dir.path(), {name + "=latin", folderName + "/", folderName + "/" + inner + "="}));
        QCOMPARE(name, QString("caf") + QChar(0xDCE9) + QChar(0xDCFF) + ".txt");

        const FolderContents contents = fileSystem.listFolder(m_dir.path());
        QCOMPARE(namesOf(contents.files), QStringList{name});
        QCOMPARE(namesOf(contents.folders), QStringList{folderName});
        QCOMPARE(contents.files.first().size, 5);
        // The decoded name, joined to the folder and encoded back, reaches the same file.
        const QString path = FileSystem::buildPath(m_dir.path(), name);
        QCOMPARE(diskPath(path), diskPath(m_dir.path()) + "/caf\xe9\xff.txt");
        QVERIFY(fileSystem.fileExists(path));
        QVERIFY(!fileSystem.folderExists(path));
        QCOMPARE(fileSystem.entry(path)->name, name);
        QCOMPARE(fileSystem.fileSize(path), 5);
        QCOMPARE(FileSystem::extensionName(path), u"txt"_qs);

        // A folder with such a name lists, counts and answers too.
        const QString folderPath = FileSystem::buildPath(m_dir.path(), folderName);
        QVERIFY(fileSystem.folderExists(folderPath));
        QVERIFY(fileSystem.folder(folderPath).exists);
        QCOMPARE(fileSystem.fileCount(folderPath), 1);
        const FolderContents below = fileSystem.listFolder(folderPath);
        QCOMPARE(below.path, folderPath);
        QCOMPARE(namesOf(below.files), QStringList({QString("inner") + QChar(0xDC80)}));
        QCOMPARE(FileSystem::parentFolderName(FileSystem::buildPath(folderPath, inner)), folderPath);
    }

    void entryAndExistence()
    {
        QVERIFY(makeTree(m_dir.path(),
            {"file.txt=12345", "folder/", "folder link->folder", "file link->file.txt", "broken->nowhere"}));
        const std::optional<FileEntry> file = fileSystem.entry(at("file.txt"));
        QVERIFY(file);
        QCOMPARE(file->size, 5);
        // The same record as in the listing.
        QCOMPARE(*file, *findEntry(fileSystem.listFolder(m_dir.path()).files, "file.txt"));
        QCOMPARE(described({*file, *fileSystem.entry(at("folder") + "/"), *fileSystem.entry(at("folder link")),
                     *fileSystem.entry(at("broken")), *fileSystem.entry(at("folder/../file.txt"))}),
            QStringList({"file.txt: Archive", "folder: Directory", "folder link: Directory|Alias",
                "broken: System|Alias", "file.txt: Archive"}));
        QVERIFY(!fileSystem.entry(at("missing")));
        QVERIFY(!fileSystem.entry(at("file.txt/below")));
        QVERIFY(!fileSystem.entry(QString()));
        const std::optional<FileEntry> root = fileSystem.entry("/");
        QVERIFY(root && root->name.isEmpty() && root->isFolder());

        // A relative path is taken from the current folder.
        const QString previous = QDir::currentPath();
        QVERIFY(QDir::setCurrent(m_dir.path()));
        const std::optional<FileEntry> relative = fileSystem.entry("file.txt");
        const bool relativeExists = fileSystem.fileExists("file.txt");
        QVERIFY(QDir::setCurrent(previous));
        QVERIFY(relative && relative->size == 5);
        QVERIFY(relativeExists);

        // Which names are files (links by what they lead to, a broken link a file) and which are folders.
        QStringList files, folders;
        for (const char *name : {"file.txt", "file link", "broken", "folder", "folder link", "missing", ""}) {
            const QString path = *name ? at(name) : QString();
            if (fileSystem.fileExists(path))
                files << name;
            if (fileSystem.folderExists(path))
                folders << name;
        }
        QCOMPARE(files, QStringList({"file.txt", "file link", "broken"}));
        QCOMPARE(folders, QStringList({"folder", "folder link"}));
        QVERIFY(fileSystem.folderExists("/"));
    }

    void pathTexts_data()
    {
        // name: buildPath only
        KeloTest::addColumns<QString, QString, QString, QString>({"function", "path", "name", "expected"});
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

    void pathTexts()
    {
        const auto [function, path, name] = KeloTest::fetch<QString, QString, QString>({"function", "path", "name"});
        QTEST(function == "extensionName"        ? FileSystem::extensionName(path)
                : function == "parentFolderName" ? FileSystem::parentFolderName(path)
                                                 : FileSystem::buildPath(path, name),
            "expected");
    }

    void editedHiddenList_data()
    {
        // expected: with the name "a" added or removed
        KeloTest::addColumns<QByteArray, bool, QByteArray>({"content", "hidden", "expected"});
        QTest::newRow("no final newline") << QByteArray("x") << true << QByteArray("x\na\n");
        QTest::newRow("already listed with a blank") << QByteArray("a \n") << true << QByteArray("a \n");
        QTest::newRow("prefix is another name") << QByteArray("ab\n") << true << QByteArray("ab\na\n");
        QTest::newRow("remove keeps blank lines") << QByteArray("\nx\r\na\t\n\n") << false << QByteArray("\nx\r\n\n");
    }

    void editedHiddenList()
    {
        const auto [content, hidden] = KeloTest::fetch<QByteArray, bool>({"content", "hidden"});
        QTEST(FileAttributes::editedHiddenList(content, "a", hidden), "expected");
    }

    void setAttributes()
    {
        QVERIFY(makeTree(m_dir.path(), {"target=", "link->target", "odd\rname="}));
        QVERIFY(setMode(at("target"), 0664));
        // A link's read-only attribute is its target's, so that is the bit written.
        FileAttributes::setAttributes(
            at("link"), FileAttribute::ReadOnly | FileAttribute::Archive | FileAttribute::System);
        struct stat info
        {
        };
        QCOMPARE(::stat(diskPath(at("target")).constData(), &info), 0);
        QCOMPARE(int(info.st_mode & 07777), 0464);
        QCOMPARE(described({*fileSystem.entry(at("link"))}), QStringList{"link: ReadOnly|Archive|Alias"});
        // Hiding the link lists the link's own name.
        FileAttributes::setAttributes(at("link"), FileAttribute::Hidden | FileAttribute::ReadOnly);
        QCOMPARE(KeloTest::readTextFile(at(".hidden")), u"link\n"_qs);
        QCOMPARE(described({*fileSystem.entry(at("link"))}), QStringList{"link: ReadOnly|Hidden|Archive|Alias"});

        // Refusals: a missing path, the root, a name the list cannot hold; nothing to remove writes nothing.
        QVERIFY(QFile::remove(at(".hidden")));
        const QString missing = at("missing");
        QCOMPARE(errorNumberOf([&] { FileAttributes::setReadOnly(missing, true); }), ErrorNumber::PathNotFound);
        QCOMPARE(errorNumberOf([&] { FileAttributes::setHidden(missing, true); }), ErrorNumber::PathNotFound);
        QCOMPARE(errorNumberOf([&] { FileAttributes::setAttributes(missing, 0); }), ErrorNumber::PathNotFound);
        QCOMPARE(errorNumberOf([] { FileAttributes::setHidden("/", true); }), ErrorNumber::InvalidProcedureCall);
        QCOMPARE(errorNumberOf([&] { FileAttributes::setHidden(at("odd\rname"), true); }),
            ErrorNumber::InvalidProcedureCall);
        FileAttributes::setHidden(at("odd\rname"), false);
        QVERIFY(!QFile::exists(at(".hidden")));
    }
};

QTEST_GUILESS_MAIN(tst_FolderListing)
#include "tst_folderlisting.moc"
