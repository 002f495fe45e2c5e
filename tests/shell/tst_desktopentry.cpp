// The freedesktop side of opening and printing: key files, application
// entries and their command lines, the choice of an entry for a type, the
// detached start of a program and the print spooler, each in a private XDG
// environment.

#include "DesktopAssociations.h"
#include "DesktopEntry.h"
#include "DetachedLauncher.h"
#include "PrintSpooler.h"
#include "XdgIniFile.h"

#include <QElapsedTimer>
#include <QMimeDatabase>
#include <QTest>

#include "KeloTestSupport.h"
#include "XdgTestSandbox.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

using namespace Kelocontrols;
using ByteList = QList<QByteArray>;
using Outcome = PrintSpooler::Outcome;

namespace {

DesktopEntry entryFrom(const QByteArray &lines)
{
    return DesktopEntry::parse(
        "[Desktop Entry]\nType=Application\n" + lines, u"/apps/viewer.desktop"_qs, u"viewer.desktop"_qs)
        .value();
}

// The id of the handler for a type, "" for none.
QString handlerId(const QString &mimeType)
{
    const std::optional<DesktopEntry> handler = DesktopAssociations().handlerFor(mimeType);
    return handler ? handler->id() : QString();
}

} // namespace

class tst_DesktopEntry : public QObject
{
    Q_OBJECT

    std::unique_ptr<XdgTestSandbox> m_sandbox;

    /// A sandbox with a.desktop (text/plain), b.desktop (text/plain, image/png) and c.desktop (image/png).
    XdgTestSandbox &associations()
    {
        for (const char *program : {"app-a", "app-b", "app-c"})
            m_sandbox->addRecorder(QString::fromLatin1(program));
        m_sandbox->addEntry(u"a.desktop"_qs, u"app-a %f"_qs, u"text/plain;"_qs);
        m_sandbox->addEntry(u"b.desktop"_qs, u"app-b %f"_qs, u"text/plain;image/png;"_qs);
        m_sandbox->addEntry(u"c.desktop"_qs, u"app-c %f"_qs, u"image/png;"_qs);
        return *m_sandbox;
    }

private Q_SLOTS:
    void init() { m_sandbox = std::make_unique<XdgTestSandbox>(); }
    void cleanup() { m_sandbox.reset(); }

    void iniGroupsAndKeys()
    {
        const XdgIniFile ini = XdgIniFile::parse("ignored=before any group\n# comment\n[First]\n"
                                                 "  Key =  spaced value  \nKey=second is ignored\n"
                                                 "Flag=true\nOne=1\nNo=True\nno equals sign\n=no key\n"
                                                 "[Second Group]\r\nPath=a=b\r\n[broken\nLost=yes\n"
                                                 "[First]\nLater=merged\nKey=still first\n");
        const QString first = u"First"_qs;
        QCOMPARE(ini.groups(), (QStringList{first, u"Second Group"_qs}));
        QCOMPARE(ini.keys(first), (QStringList{u"Key"_qs, u"Flag"_qs, u"One"_qs, u"No"_qs, u"Later"_qs}));
        QCOMPARE(ini.rawValue(first, u"Key"_qs), u"spaced value"_qs);
        QCOMPARE(ini.rawValue(u"Second Group"_qs, u"Path"_qs), u"a=b"_qs);
        QCOMPARE(ini.rawValue(u"Second Group"_qs, u"Lost"_qs, u"fallback"_qs), u"fallback"_qs);
        QCOMPARE((QList<bool>{ini.boolean(first, u"Flag"_qs), ini.boolean(first, u"One"_qs),
                     ini.boolean(first, u"No"_qs), ini.boolean(first, u"Missing"_qs), ini.contains(first, u"Later"_qs),
                     ini.contains(u"Nothing"_qs, u"Key"_qs), ini.hasGroup(u"broken"_qs)}),
            (QList<bool>{true, true, false, false, true, false, false}));
        QCOMPARE(ini.keys(u"Nothing"_qs), QStringList());
        QVERIFY(XdgIniFile::load(u"/nonexistent/file.list"_qs).isEmpty());
        QVERIFY(XdgIniFile::parse("\xff\xfe garbage\n[").isEmpty());
    }

    void iniValues_data()
    {
        KeloTest::addColumns<bool, QString, QStringList>({"list", "raw", "expected"});
        const auto row = [](const char *name, bool list, const QString &raw, const QStringList &expected) {
            QTest::newRow(name) << list << raw << expected;
        };
        row("plain", false, u"abc"_qs, {u"abc"_qs});
        row("escapes", false, u"a\\sb\\nc\\td\\re\\\\f"_qs, {u"a b\nc\td\re\\f"_qs});
        row("others kept", false, u"\\\" \\; \\$"_qs, {u"\\\" \\; \\$"_qs});
        row("trailing backslash", false, u"end\\"_qs, {u"end\\"_qs});
        row("double then s", false, u"\\\\s"_qs, {u"\\s"_qs});
        row("list, trailing separator", true, u"a;b;"_qs, {u"a"_qs, u"b"_qs});
        row("list, no trailing separator", true, u"a;b"_qs, {u"a"_qs, u"b"_qs});
        row("list, empty items dropped", true, u";;a;;"_qs, {u"a"_qs});
        row("list, escaped separator", true, u"a\\;b;c"_qs, {u"a;b"_qs, u"c"_qs});
        row("list, escapes resolved", true, u"x\\sy;z"_qs, {u"x y"_qs, u"z"_qs});
        row("list, empty", true, u""_qs, {});
    }

    void iniValues()
    {
        const auto [list, raw] = KeloTest::fetch<bool, QString>({"list", "raw"});
        const XdgIniFile ini = XdgIniFile::parse("[G]\nList=" + raw.toUtf8() + "\n");
        QTEST(list ? ini.list(u"G"_qs, u"List"_qs) : QStringList{XdgIniFile::unescape(raw)}, "expected");
    }

    void entryKeys()
    {
        const QByteArray text = "# a comment\n[Desktop Action new]\nExec=other\n"
                                "[Desktop Entry]\nType=Application\nName=Viewer\nName[de]=Betrachter\n"
                                "Icon=viewer-icon\nExec=viewer %f\nExec=ignored\nTryExec=viewer\nPath=/srv/work\n"
                                "Terminal=true\nHidden=false\nMimeType=text/plain;image/PNG;a\\;b;\n";
        const std::optional<DesktopEntry> e = DesktopEntry::parse(text, u"/x/viewer.desktop"_qs, u"viewer.desktop"_qs);
        QVERIFY(e);
        QCOMPARE((QStringList{e->id(), e->filePath(), e->type(), e->name(), e->icon(), e->exec(), e->tryExec(),
                     e->workingDirectory()}),
            (QStringList{u"viewer.desktop"_qs, u"/x/viewer.desktop"_qs, u"Application"_qs, u"Viewer"_qs,
                u"viewer-icon"_qs, u"viewer %f"_qs, u"viewer"_qs, u"/srv/work"_qs}));
        QCOMPARE(e->mimeTypes(), (QStringList{u"text/plain"_qs, u"image/PNG"_qs, u"a;b"_qs}));
        QCOMPARE((QList<bool>{e->runsInTerminal(), e->isHidden(), e->handles(u"image/png"_qs), e->handles(u"a;b"_qs),
                     e->handles(u"text"_qs), entryFrom("Hidden=true\n").isHidden()}),
            (QList<bool>{true, false, true, true, false, true}));
        QVERIFY(!DesktopEntry::parse("[Desktop Action x]\nExec=a\n", {}, {}));
        QVERIFY(!DesktopEntry::parse(QByteArray(), {}, {}));
        QVERIFY(!DesktopEntry::load(u"/nonexistent/kelo.desktop"_qs, u"kelo.desktop"_qs));
    }

    void splitExec_data()
    {
        // expected: empty when refused
        KeloTest::addColumns<QString, QStringList>({"exec", "expected"});
        QTest::newRow("plain") << u"viewer %f"_qs << QStringList{u"viewer"_qs, u"%f"_qs};
        QTest::newRow("runs of blanks") << u"  a   b\tc  "_qs << QStringList{u"a"_qs, u"b"_qs, u"c"_qs};
        QTest::newRow("quoted blank") << u"\"/opt/my app/run\" --x"_qs << QStringList{u"/opt/my app/run"_qs, u"--x"_qs};
        QTest::newRow("escapes in quotes")
            << u"p \"a \\\"q\\\" \\$HOME \\\\ \\`x\\` \\n\""_qs << QStringList{u"p"_qs, u"a \"q\" $HOME \\ `x` \\n"_qs};
        QTest::newRow("empty quoted") << u"p \"\""_qs << QStringList{u"p"_qs, QString()};
        QTest::newRow("joined parts") << u"pre\"mid dle\"post"_qs << QStringList{u"premid dlepost"_qs};
        QTest::newRow("backslash outside") << u"a\\ b c"_qs << QStringList{u"a b"_qs, u"c"_qs};
        QTest::newRow("unterminated") << u"p \"open"_qs << QStringList();
        QTest::newRow("empty") << u""_qs << QStringList();
        QTest::newRow("blank") << u"   "_qs << QStringList();
    }

    void splitExec()
    {
        const auto [exec, expected] = KeloTest::fetch<QString, QStringList>({"exec", "expected"});
        const std::optional<QStringList> split = DesktopEntry::splitExec(exec);
        QCOMPARE(split.has_value(), !expected.isEmpty());
        QCOMPARE(split.value_or(QStringList()), expected);
    }

    void commandLine_data()
    {
        const QByteArray file = "/tmp/my \xff file.txt";
        // expected: empty when there is no command
        KeloTest::addColumns<QByteArray, ByteList>({"lines", "expected"});
        const auto row = [](const char *name, const QByteArray &lines, const ByteList &expected) {
            QTest::newRow(name) << lines << expected;
        };
        row("%f", "Exec=viewer %f\n", {"viewer", file});
        row("%F", "Exec=viewer %F\n", {"viewer", file});
        row("%u then option", "Exec=viewer %u --new\n", {"viewer", file, "--new"});
        row("%U", "Exec=viewer %U\n", {"viewer", file});
        row("inside an argument", "Exec=viewer --file=%f\n", {"viewer", "--file=" + file});
        row("quoted code", "Exec=viewer \"%f\"\n", {"viewer", file});
        row("no file code: path added", "Exec=viewer --x\n", {"viewer", "--x", file});
        row("%i %c %k %%", "Name=View It\nIcon=eye\nExec=viewer %i %c %k 100%% %f\n",
            {"viewer", "--icon", "eye", "View It", "/apps/viewer.desktop", "100%", file});
        row("%i without icon", "Exec=viewer %i %f\n", {"viewer", file});
        row("deprecated codes", "Exec=viewer %d %D %n %N %v %m %f\n", {"viewer", file});
        row("unknown code in argument", "Exec=viewer -a%zb %f\n", {"viewer", "-ab", file});
        row("string escapes first", "Exec=\"my\\\\\\\\prog\"\\s%f\n", {"my\\prog", file});
        row("non-ASCII argument", "Exec=viewer --title=\xc3\xa9t\xc3\xa9 %f\n",
            {"viewer", "--title=\xc3\xa9t\xc3\xa9", file});
        row("terminal", "Terminal=true\nExec=vi %f\n", {"x-terminal-emulator", "-e", "vi", file});
        row("malformed", "Exec=viewer \"%f\n", {});
        row("only codes", "Exec=%d %i\n", {});
    }

    void commandLine()
    {
        const auto [lines, expected] = KeloTest::fetch<QByteArray, ByteList>({"lines", "expected"});
        const std::optional<ByteList> command = entryFrom(lines).commandLine("/tmp/my \xff file.txt");
        QCOMPARE(command.has_value(), !expected.isEmpty());
        QCOMPARE(command.value_or(ByteList()), expected);
    }

    void launchable()
    {
        const QByteArray viewer = QFile::encodeName(m_sandbox->addRecorder(u"kelo-viewer"_qs));
        const QByteArray plain = QFile::encodeName(m_sandbox->write(u"files/not-executable"_qs, "#!/bin/sh\n"));
        QCOMPARE(entryFrom("Exec=kelo-viewer %f\n").programPath(), viewer);
        QVERIFY(entryFrom("Exec=kelo-not-there %f\n").programPath().isEmpty());
        QStringList launchable;
        for (const QByteArray &lines : QByteArrayList{"Exec=kelo-viewer %f\n", "Exec=\"" + viewer + "\" %f\n",
                 "Exec=kelo-viewer\nTryExec=kelo-viewer\n", "Exec=kelo-viewer\nTryExec=kelo-not-there\n",
                 "Exec=kelo-not-there %f\n", "Exec=" + plain + "\n", "Exec=kelo-viewer\nHidden=true\n",
                 "Exec=kelo-viewer \"%f\n", "Exec=\n"}) {
            if (entryFrom(lines).isLaunchable())
                launchable << QString::fromUtf8(lines);
        }
        QCOMPARE(launchable,
            (QStringList{u"Exec=kelo-viewer %f\n"_qs, u"Exec=\""_qs + QFile::decodeName(viewer) + u"\" %f\n"_qs,
                u"Exec=kelo-viewer\nTryExec=kelo-viewer\n"_qs}));
        QVERIFY(!DesktopEntry::parse("[Desktop Entry]\nType=Link\nExec=kelo-viewer\n", {}, {})->isLaunchable());
        QVERIFY(!DesktopEntry::parse("[Desktop Entry]\nExec=kelo-viewer\n", {}, {})->isLaunchable());

        // A terminal entry needs the terminal as well as its own program.
        qputenv("PATH", QFile::encodeName(m_sandbox->path(u"bin"_qs)));
        QVERIFY(!entryFrom("Terminal=true\nExec=kelo-viewer %f\n").isLaunchable());
        const QString terminal = m_sandbox->addRecorder(u"x-terminal-emulator"_qs);
        QVERIFY(entryFrom("Terminal=true\nExec=kelo-viewer %f\n").isLaunchable());
        QCOMPARE(entryFrom("Terminal=true\nExec=kelo-viewer %f\n").programPath(), QFile::encodeName(terminal));
        QVERIFY(!entryFrom("Terminal=true\nExec=kelo-not-there %f\n").isLaunchable());
    }

    void environmentAndFileOrder()
    {
        qputenv("XDG_CURRENT_DESKTOP", "GNOME:Unity");
        const DesktopAssociations::Environment environment = DesktopAssociations::Environment::current();
        QCOMPARE(environment.desktops, (QStringList{u"gnome"_qs, u"unity"_qs}));
        QCOMPARE(environment.dataDirs, QStringList{m_sandbox->path(u"data"_qs)});
        QStringList expected;
        for (const char *folder : {"config", "configdirs", "datahome/applications", "data/applications"}) {
            for (const char *name : {"gnome-mimeapps.list", "unity-mimeapps.list", "mimeapps.list", "defaults.list"}) {
                if (name[0] != 'd' || QByteArray(folder).endsWith("applications"))
                    expected << m_sandbox->path(QString::fromLatin1(folder) + '/' + QString::fromLatin1(name));
            }
        }
        QCOMPARE(DesktopAssociations().mimeAppsLists(), expected);
        QCOMPARE(DesktopAssociations().applicationDirs(),
            (QStringList{m_sandbox->path(u"datahome/applications"_qs), m_sandbox->path(u"data/applications"_qs)}));

        // Unset or relative values fall back to the standard folders.
        qunsetenv("XDG_CONFIG_DIRS");
        qputenv("XDG_DATA_DIRS", "relative/share::");
        qunsetenv("XDG_CURRENT_DESKTOP");
        const DesktopAssociations::Environment defaults = DesktopAssociations::Environment::current();
        QCOMPARE(defaults.configDirs, QStringList{u"/etc/xdg"_qs});
        QCOMPARE(defaults.dataDirs, (QStringList{u"/usr/local/share"_qs, u"/usr/share"_qs}));
        QCOMPARE(defaults.desktops, QStringList());
    }

    void handlerChoice()
    {
        XdgTestSandbox &box = associations();
        // Listed types in id order; the environment is read at each call.
        QCOMPARE(handlerId(u"text/plain"_qs), u"a.desktop"_qs);
        QCOMPARE(handlerId(u"image/png"_qs), u"b.desktop"_qs);
        QCOMPARE(handlerId(u"application/x-kelo-nothing"_qs), QString());
        QCOMPARE(handlerId(u"video/mp4"_qs), QString());
        box.addEntry(u"0first.desktop"_qs, u"app-c %f"_qs, u"text/plain;"_qs);
        QCOMPARE(handlerId(u"text/plain"_qs), u"0first.desktop"_qs);
        QVERIFY(QFile::remove(box.path(u"data/applications/0first.desktop"_qs)));

        // Defaults win, the more important list first.
        box.write(u"data/applications/mimeapps.list"_qs, "[Default Applications]\ntext/plain=c.desktop\n");
        QCOMPARE(handlerId(u"text/plain"_qs), u"c.desktop"_qs); // even though c does not list the type
        box.write(u"data/applications/defaults.list"_qs,
            "[Default Applications]\nimage/png=c.desktop\n[Added Associations]\ntext/plain=b.desktop\n");
        QCOMPARE(handlerId(u"image/png"_qs), u"c.desktop"_qs);
        box.write(u"configdirs/mimeapps.list"_qs, "[Default Applications]\ntext/plain=b.desktop\n");
        QCOMPARE(handlerId(u"text/plain"_qs), u"b.desktop"_qs);
        box.write(
            u"config/mimeapps.list"_qs, "[Default Applications]\nText/Plain=missing.desktop;a.desktop;c.desktop\n");
        QCOMPARE(handlerId(u"text/plain"_qs), u"a.desktop"_qs); // first installed one, key without regard to case

        // A desktop's own list comes before the common one.
        box.write(u"config/mimeapps.list"_qs, "[Default Applications]\ntext/plain=b.desktop\n");
        box.write(u"config/kde-mimeapps.list"_qs, "[Default Applications]\ntext/plain=c.desktop\n");
        QCOMPARE(handlerId(u"text/plain"_qs), u"b.desktop"_qs);
        qputenv("XDG_CURRENT_DESKTOP", "X-Other:KDE");
        QCOMPARE(handlerId(u"text/plain"_qs), u"c.desktop"_qs);
    }

    void addedAndRemovedAssociations()
    {
        XdgTestSandbox &box = associations();
        box.write(u"config/mimeapps.list"_qs, "[Removed Associations]\ntext/plain=a.desktop;\n");
        QCOMPARE(handlerId(u"text/plain"_qs), u"b.desktop"_qs);
        box.write(u"config/mimeapps.list"_qs,
            "[Added Associations]\ntext/plain=c.desktop;\n[Removed Associations]\ntext/plain=a.desktop;\n");
        QCOMPARE(handlerId(u"text/plain"_qs), u"c.desktop"_qs);
        // A removal in the same file beats an addition there.
        box.write(u"config/mimeapps.list"_qs,
            "[Added Associations]\ntext/plain=c.desktop;a.desktop\n[Removed Associations]\ntext/plain=c.desktop;\n");
        QCOMPARE(handlerId(u"text/plain"_qs), u"a.desktop"_qs);
        // A removal in a more important file beats an addition in a less important one ...
        box.write(u"config/mimeapps.list"_qs, "[Removed Associations]\ntext/plain=c.desktop;a.desktop;b.desktop\n");
        box.write(u"datahome/applications/mimeapps.list"_qs, "[Added Associations]\ntext/plain=c.desktop;\n");
        QCOMPARE(handlerId(u"text/plain"_qs), QString());
        // ... but not a default.
        box.write(u"datahome/applications/mimeapps.list"_qs, "[Default Applications]\ntext/plain=c.desktop;\n");
        QCOMPARE(handlerId(u"text/plain"_qs), u"c.desktop"_qs);
        // An addition in a more important file than the removal holds.
        box.write(u"config/mimeapps.list"_qs, "[Added Associations]\ntext/plain=b.desktop\n");
        box.write(u"datahome/applications/mimeapps.list"_qs, "[Removed Associations]\ntext/plain=b.desktop\n");
        QCOMPARE(handlerId(u"text/plain"_qs), u"b.desktop"_qs);
    }

    void entriesByFolder()
    {
        XdgTestSandbox &box = associations();
        // A sub-folder's entry has a dashed id.
        box.addEntry(u"kde/viewer.desktop"_qs, u"app-c %f"_qs, u"text/x-kelo;"_qs);
        box.write(u"config/mimeapps.list"_qs, "[Default Applications]\ntext/plain=kde-viewer.desktop\n");
        QCOMPARE(handlerId(u"text/plain"_qs), u"kde-viewer.desktop"_qs);
        QCOMPARE(DesktopAssociations().entry(u"kde-viewer.desktop"_qs)->filePath(),
            box.path(u"data/applications/kde/viewer.desktop"_qs));
        QVERIFY(QFile::remove(box.path(u"config/mimeapps.list"_qs)));

        // datahome's a.desktop replaces data's, and no longer lists text/plain.
        box.addEntry(u"a.desktop"_qs, u"app-c %f"_qs, u"image/gif;"_qs, true);
        QCOMPARE(handlerId(u"text/plain"_qs), u"b.desktop"_qs);
        const std::optional<DesktopEntry> replaced = DesktopAssociations().entry(u"a.desktop"_qs);
        QVERIFY(replaced);
        QCOMPARE(replaced->exec(), u"app-c %f"_qs);
        QCOMPARE(replaced->filePath(), box.path(u"datahome/applications/a.desktop"_qs));
        // A Hidden entry deletes the id altogether, defaults naming it included.
        box.addEntry(u"b.desktop"_qs, u"app-b %f"_qs, u"text/plain;"_qs, true, "Hidden=true\n");
        box.write(u"config/mimeapps.list"_qs, "[Default Applications]\ntext/plain=b.desktop\n");
        QCOMPARE(handlerId(u"text/plain"_qs), QString());
        QVERIFY(!DesktopAssociations().entry(u"nothing.desktop"_qs));
    }

    void parentTypesAndAliases()
    {
        XdgTestSandbox &box = associations();
        const QMimeType csrc = QMimeDatabase().mimeTypeForName(u"text/x-csrc"_qs);
        QVERIFY(csrc.allAncestors().contains(u"text/plain"_qs));
        QVERIFY(csrc.aliases().contains(u"text/x-c"_qs));
        // No handler of its own: the parent's.
        QCOMPARE(handlerId(u"text/x-csrc"_qs), u"a.desktop"_qs);
        // The parent's default does not beat a handler of the type itself.
        box.write(u"config/mimeapps.list"_qs, "[Default Applications]\ntext/plain=b.desktop\n");
        box.addEntry(u"z.desktop"_qs, u"app-c %f"_qs, u"text/x-csrc;"_qs);
        QCOMPARE(handlerId(u"text/x-csrc"_qs), u"z.desktop"_qs);
        // A key may name an alias of the type.
        box.write(u"config/mimeapps.list"_qs, "[Default Applications]\ntext/x-c=c.desktop\n");
        QCOMPARE(handlerId(u"text/x-csrc"_qs), u"c.desktop"_qs);
        QCOMPARE(DesktopAssociations().handlerFor(csrc)->id(), u"c.desktop"_qs);
        QVERIFY(!DesktopAssociations().handlerFor(QMimeType()));
    }

    void unusableEntriesArePassedOver()
    {
        XdgTestSandbox &box = associations();
        box.addEntry(u"0broken.desktop"_qs, u"app-a \"%f"_qs, u"text/plain;"_qs);
        box.addEntry(u"0missing.desktop"_qs, u"kelo-not-installed %f"_qs, u"text/plain;"_qs);
        box.addEntry(u"0tryexec.desktop"_qs, u"app-a %f"_qs, u"text/plain;"_qs, false, "TryExec=kelo-not-there\n");
        box.write(u"data/applications/0link.desktop"_qs,
            "[Desktop Entry]\nType=Link\nURL=http://x\nExec=app-a\nMimeType=text/plain;\n");
        box.write(u"data/applications/0junk.desktop"_qs, "no group at all\n");
        box.write(u"config/mimeapps.list"_qs, "[Default Applications]\ntext/plain=0missing.desktop;0broken.desktop\n");
        QCOMPARE(handlerId(u"text/plain"_qs), u"a.desktop"_qs);
    }

    void findExecutable()
    {
        const QByteArray tool = QFile::encodeName(m_sandbox->addRecorder(u"kelo-tool"_qs));
        m_sandbox->write(u"bin/kelo-plain"_qs, "#!/bin/sh\n"); // not executable
        QDir().mkpath(m_sandbox->path(u"bin/kelo-folder"_qs));
        const QByteArray none = QFile::encodeName(m_sandbox->path(u"bin/kelo-none"_qs));
        ByteList found;
        for (const QByteArray &name : {QByteArray("kelo-tool"), tool, QByteArray("kelo-plain"),
                 QByteArray("kelo-folder"), QByteArray("kelo-none"), none, QByteArray()})
            found << DetachedLauncher::findExecutable(name);
        QCOMPARE(found, (ByteList{tool, tool, {}, {}, {}, {}, {}}));
        // PATH is read at each call; empty entries are skipped; unset means the standard folders.
        qputenv("PATH", "::/nonexistent");
        QCOMPARE(DetachedLauncher::findExecutable("kelo-tool"), QByteArray());
        qunsetenv("PATH");
        QCOMPARE(DetachedLauncher::findExecutable("sh"), QByteArray("/usr/bin/sh"));
    }

    void startPassesArgumentsByteExact()
    {
        const QByteArray tool = QFile::encodeName(m_sandbox->addRecorder(u"kelo-tool"_qs));
        const ByteList arguments{"name as seen", "", "with space", "\xff\xfe\x80 raw", "$HOME", "'\"\\", "-x"};
        QCOMPARE(DetachedLauncher::start(tool, arguments), 0);
        // argv[0] is what the caller chose; the recorder sees the rest.
        QCOMPARE(m_sandbox->waitForArguments(u"kelo-tool"_qs), arguments.mid(1));
        QCOMPARE(XdgTestSandbox::childCount(), 0);
    }

    void startRunsDetachedInItsOwnSession()
    {
        const QByteArray records = QFile::encodeName(m_sandbox->path(u"records"_qs));
        // A descriptor this process leaves open on exec must not reach the program.
        const int leaked = ::open("/dev/null", O_RDONLY);
        QVERIFY(leaked > 2);
        const auto into = [&](const char *name) -> QByteArray { return " > '" + records + '/' + name + "'\n"; };
        const QByteArray script = "#!/bin/sh\n/bin/readlink /proc/self/fd/0" + into("stdin") + "/bin/cat /proc/$$/stat"
            + into("stat") + "/bin/pwd" + into("pwd") + "if [ -e /proc/$$/fd/" + QByteArray::number(leaked)
            + " ]; then echo open; else echo closed; fi" + into("fd.tmp") + "/bin/mv '" + records + "/fd.tmp' '"
            + records + "/fd'\n";
        const QByteArray program = QFile::encodeName(m_sandbox->write(u"bin/kelo-probe"_qs, script, true));
        QCOMPARE(DetachedLauncher::start(program, {"kelo-probe"}, QFile::encodeName(m_sandbox->path(u"files"_qs))), 0);
        ::close(leaked);
        const QString fdRecord = m_sandbox->path(u"records/fd"_qs);
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(fdRecord), 10000);
        QCOMPARE(m_sandbox->readRecord(u"fd"_qs, ""), QByteArray("closed\n"));
        QCOMPARE(m_sandbox->readRecord(u"stdin"_qs, ""), QByteArray("/dev/null\n"));
        QCOMPARE(m_sandbox->readRecord(u"pwd"_qs, ""), QFile::encodeName(m_sandbox->path(u"files"_qs)) + '\n');
        // "pid (comm) state ppid pgrp session ...": its own session, not our child.
        const QByteArray stat = m_sandbox->readRecord(u"stat"_qs, "");
        const ByteList fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
        QVERIFY(fields.size() > 3);
        QVERIFY(fields.at(1).toLongLong() != qint64(::getpid()));
        QVERIFY(fields.at(3).toLongLong() != qint64(::getsid(0)));

        // A working folder that cannot be entered does not stop the start: the caller's is kept.
        QVERIFY(QFile::remove(fdRecord));
        QCOMPARE(DetachedLauncher::start(program, {"kelo-probe"}, "/nonexistent/folder"), 0);
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(fdRecord), 10000);
        QCOMPARE(m_sandbox->readRecord(u"pwd"_qs, ""), QFile::encodeName(QDir::currentPath()) + '\n');
    }

    void startFailures_data()
    {
        KeloTest::addColumns<QByteArray, bool, int>({"content", "executable", "error"});
        QTest::newRow("missing") << QByteArray() << false << ENOENT;
        QTest::newRow("not executable") << QByteArray("#!/bin/sh\n") << false << EACCES;
        QTest::newRow("no format") << QByteArray("\x01\x02\x03\x04junk") << true << ENOEXEC;
        QTest::newRow("missing interpreter") << QByteArray("#!/nonexistent/shell\n") << true << ENOENT;
    }

    void startFailures()
    {
        const auto [content, executable] = KeloTest::fetch<QByteArray, bool>({"content", "executable"});
        QString program = m_sandbox->path(u"bin/kelo-bad"_qs);
        if (!content.isEmpty())
            program = m_sandbox->write(u"bin/kelo-bad"_qs, content, executable);
        QElapsedTimer clock;
        clock.start();
        QTEST(DetachedLauncher::start(QFile::encodeName(program), {"kelo-bad", "arg"}), "error");
        QVERIFY(clock.elapsed() < 5000);
        QCOMPARE(XdgTestSandbox::childCount(), 0);
        QCOMPARE(DetachedLauncher::start(QByteArray(), {"x"}), EINVAL);
        QCOMPARE(DetachedLauncher::start(QFile::encodeName(program), {}), EINVAL);
    }

    void spoolsBytesWithTitle()
    {
        m_sandbox->addRecorder(u"lp"_qs, true);
        const char raw[] = "first line\r\n\x00\x01\xff last";
        const QByteArray content(raw, sizeof raw - 1);
        const QByteArray file = QFile::encodeName(m_sandbox->write(u"files/doc.bin"_qs, content));
        QCOMPARE(PrintSpooler::print(file, "-odd \xff title"), Outcome::Spooled);
        QCOMPARE(m_sandbox->waitForArguments(u"lp"_qs, 0), (ByteList{"-t", "-odd \xff title"}));
        QCOMPARE(m_sandbox->readRecord(u"lp"_qs, ".stdin"), content);
        QCOMPARE(XdgTestSandbox::childCount(), 0);
    }

    void spoolerOutcomes_data()
    {
        // lpScript: empty for no lp at all
        KeloTest::addColumns<QByteArray, bool, int, int>({"lpScript", "fileExists", "timeout", "outcome"});
        QTest::newRow("lp fails") << QByteArray("#!/bin/sh\nexit 3\n") << true << 3000 << int(Outcome::Failed);
        QTest::newRow("lp killed") << QByteArray("#!/bin/sh\nkill -9 $$\n") << true << 3000 << int(Outcome::Failed);
        QTest::newRow("no lp") << QByteArray() << true << 3000 << int(Outcome::NoSpooler);
        QTest::newRow("missing file") << QByteArray("#!/bin/sh\nexit 0\n") << false << 3000 << int(Outcome::Unreadable);
        QTest::newRow("lp cannot run") << QByteArray("\x01\x02junk") << true << 3000 << int(Outcome::NotStarted);
        QTest::newRow("slow lp stopped") << QByteArray("#!/bin/sh\nexec /bin/sleep 30\n") << true << 300
                                         << int(Outcome::TimedOut);
    }

    void spoolerOutcomes()
    {
        const auto [lpScript, fileExists, timeout]
            = KeloTest::fetch<QByteArray, bool, int>({"lpScript", "fileExists", "timeout"});
        if (!lpScript.isEmpty())
            m_sandbox->write(u"bin/lp"_qs, lpScript, true);
        // Only the sandbox's bin folder: no lp of the machine can answer.
        qputenv("PATH", QFile::encodeName(m_sandbox->path(u"bin"_qs)));
        const QString file
            = fileExists ? m_sandbox->write(u"files/doc.txt"_qs, "text\n") : m_sandbox->path(u"files/none.txt"_qs);
        QElapsedTimer clock;
        clock.start();
        QTEST(int(PrintSpooler::print(QFile::encodeName(file), "doc.txt", timeout)), "outcome");
        QVERIFY(clock.elapsed() < 5000);
        if (timeout < 1000)
            QVERIFY(clock.elapsed() >= timeout);
        QCOMPARE(XdgTestSandbox::childCount(), 0);
    }
};

QTEST_GUILESS_MAIN(tst_DesktopEntry)
#include "tst_desktopentry.moc"
