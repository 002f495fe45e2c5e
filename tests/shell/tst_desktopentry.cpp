#include "DesktopEntry.h"

#include <QTest>

#include "XdgTestSandbox.h"

using namespace Kelocontrols;

using ByteList = QList<QByteArray>;

namespace {

DesktopEntry entryFrom(const QByteArray &lines)
{
    const std::optional<DesktopEntry> entry = DesktopEntry::parse(
        "[Desktop Entry]\nType=Application\n" + lines, u"/apps/viewer.desktop"_qs, u"viewer.desktop"_qs);
    return entry.value();
}

} // namespace

class tst_DesktopEntry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parsesKeys();
    void splitExec_data();
    void splitExec();
    void commandLine_data();
    void commandLine();
    void launchable();
};

void tst_DesktopEntry::parsesKeys()
{
    const QByteArray text = "# a comment\n[Desktop Action new]\nExec=other\n"
                            "[Desktop Entry]\nType=Application\nName=Viewer\nName[de]=Betrachter\n"
                            "Icon=viewer-icon\nExec=viewer %f\nExec=ignored\nTryExec=viewer\nPath=/srv/work\n"
                            "Terminal=true\nHidden=false\nMimeType=text/plain;image/PNG;a\\;b;\n";
    const std::optional<DesktopEntry> entry = DesktopEntry::parse(text, u"/x/viewer.desktop"_qs, u"viewer.desktop"_qs);
    QVERIFY(entry);
    QCOMPARE(entry->id(), u"viewer.desktop"_qs);
    QCOMPARE(entry->filePath(), u"/x/viewer.desktop"_qs);
    QCOMPARE(entry->type(), u"Application"_qs);
    QCOMPARE(entry->name(), u"Viewer"_qs);
    QCOMPARE(entry->icon(), u"viewer-icon"_qs);
    QCOMPARE(entry->exec(), u"viewer %f"_qs);
    QCOMPARE(entry->tryExec(), u"viewer"_qs);
    QCOMPARE(entry->workingDirectory(), u"/srv/work"_qs);
    QVERIFY(entry->runsInTerminal());
    QVERIFY(!entry->isHidden());
    QCOMPARE(entry->mimeTypes(), (QStringList{u"text/plain"_qs, u"image/PNG"_qs, u"a;b"_qs}));
    QVERIFY(entry->handles(u"image/png"_qs));
    QVERIFY(entry->handles(u"a;b"_qs));
    QVERIFY(!entry->handles(u"text"_qs));

    QVERIFY(!DesktopEntry::parse("[Desktop Action x]\nExec=a\n", {}, {}));
    QVERIFY(!DesktopEntry::parse(QByteArray(), {}, {}));
    QVERIFY(!DesktopEntry::load(u"/nonexistent/kelo.desktop"_qs, u"kelo.desktop"_qs));
    QVERIFY(entryFrom("Hidden=true\n").isHidden());
}

void tst_DesktopEntry::splitExec_data()
{
    QTest::addColumn<QString>("exec");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<bool>("valid");
    QTest::newRow("plain") << u"viewer %f"_qs << QStringList{u"viewer"_qs, u"%f"_qs} << true;
    QTest::newRow("runs of blanks") << u"  a   b\tc  "_qs << QStringList{u"a"_qs, u"b"_qs, u"c"_qs} << true;
    QTest::newRow("quoted blank") << uR"("/opt/my app/run" --x)"_qs << QStringList{u"/opt/my app/run"_qs, u"--x"_qs}
                                  << true;
    QTest::newRow("escapes in quotes") << uR"(p "a \"q\" \$HOME \\ \`x\` \n")"_qs
                                       << QStringList{u"p"_qs, uR"(a "q" $HOME \ `x` \n)"_qs} << true;
    QTest::newRow("empty quoted") << uR"(p "")"_qs << QStringList{u"p"_qs, QString()} << true;
    QTest::newRow("joined parts") << uR"(pre"mid dle"post)"_qs << QStringList{u"premid dlepost"_qs} << true;
    QTest::newRow("backslash outside") << uR"(a\ b c)"_qs << QStringList{u"a b"_qs, u"c"_qs} << true;
    QTest::newRow("unterminated") << uR"(p "open)"_qs << QStringList() << false;
    QTest::newRow("empty") << u""_qs << QStringList() << false;
    QTest::newRow("blank") << u"   "_qs << QStringList() << false;
}

void tst_DesktopEntry::splitExec()
{
    QFETCH(QString, exec);
    QFETCH(QStringList, expected);
    QFETCH(bool, valid);
    const std::optional<QStringList> split = DesktopEntry::splitExec(exec);
    QCOMPARE(split.has_value(), valid);
    if (valid) {
        QCOMPARE(*split, expected);
    }
}

void tst_DesktopEntry::commandLine_data()
{
    const QByteArray file = "/tmp/my \xff file.txt";
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<ByteList>("expected");
    QTest::newRow("%f") << QByteArray("Exec=viewer %f\n") << ByteList{"viewer", file};
    QTest::newRow("%F") << QByteArray("Exec=viewer %F\n") << ByteList{"viewer", file};
    QTest::newRow("%u then option") << QByteArray("Exec=viewer %u --new\n") << ByteList{"viewer", file, "--new"};
    QTest::newRow("%U") << QByteArray("Exec=viewer %U\n") << ByteList{"viewer", file};
    QTest::newRow("inside an argument") << QByteArray("Exec=viewer --file=%f\n")
                                        << ByteList{"viewer", "--file=" + file};
    QTest::newRow("quoted code") << QByteArray("Exec=viewer \"%f\"\n") << ByteList{"viewer", file};
    QTest::newRow("no file code: path added") << QByteArray("Exec=viewer --x\n") << ByteList{"viewer", "--x", file};
    QTest::newRow("%i %c %k %%") << QByteArray("Name=View It\nIcon=eye\nExec=viewer %i %c %k 100%% %f\n")
                                 << ByteList{
                                        "viewer", "--icon", "eye", "View It", "/apps/viewer.desktop", "100%", file};
    QTest::newRow("%i without icon") << QByteArray("Exec=viewer %i %f\n") << ByteList{"viewer", file};
    QTest::newRow("deprecated codes") << QByteArray("Exec=viewer %d %D %n %N %v %m %f\n") << ByteList{"viewer", file};
    QTest::newRow("unknown code in argument")
        << QByteArray("Exec=viewer -a%zb %f\n") << ByteList{"viewer", "-ab", file};
    QTest::newRow("string escapes first") << QByteArray("Exec=\"my\\\\\\\\prog\"\\s%f\n") << ByteList{"my\\prog", file};
    QTest::newRow("non-ASCII argument") << QByteArray("Exec=viewer --title=\xc3\xa9t\xc3\xa9 %f\n")
                                        << ByteList{"viewer", "--title=\xc3\xa9t\xc3\xa9", file};
    QTest::newRow("terminal") << QByteArray("Terminal=true\nExec=vi %f\n")
                              << ByteList{"x-terminal-emulator", "-e", "vi", file};
    QTest::newRow("malformed") << QByteArray("Exec=viewer \"%f\n") << ByteList();
    QTest::newRow("only codes") << QByteArray("Exec=%d %i\n") << ByteList();
}

void tst_DesktopEntry::commandLine()
{
    QFETCH(QByteArray, lines);
    QFETCH(ByteList, expected);
    const std::optional<ByteList> command = entryFrom(lines).commandLine("/tmp/my \xff file.txt");
    QCOMPARE(command.has_value(), !expected.isEmpty());
    if (command) {
        QCOMPARE(*command, expected);
    }
}

void tst_DesktopEntry::launchable()
{
    XdgTestSandbox sandbox;
    const QString viewer = sandbox.addRecorder(u"kelo-viewer"_qs);
    sandbox.write(u"files/not-executable"_qs, "#!/bin/sh\n");
    QVERIFY(entryFrom("Exec=kelo-viewer %f\n").isLaunchable());
    QCOMPARE(entryFrom("Exec=kelo-viewer %f\n").programPath(), QFile::encodeName(viewer));
    QVERIFY(entryFrom("Exec=\"" + QFile::encodeName(viewer) + "\" %f\n").isLaunchable());
    QVERIFY(entryFrom("Exec=kelo-viewer\nTryExec=kelo-viewer\n").isLaunchable());
    QVERIFY(!entryFrom("Exec=kelo-viewer\nTryExec=kelo-not-there\n").isLaunchable());
    QVERIFY(!entryFrom("Exec=kelo-not-there %f\n").isLaunchable());
    QVERIFY(entryFrom("Exec=kelo-not-there %f\n").programPath().isEmpty());
    QVERIFY(!entryFrom("Exec=" + QFile::encodeName(sandbox.path(u"files/not-executable"_qs)) + "\n").isLaunchable());
    QVERIFY(!entryFrom("Exec=kelo-viewer\nHidden=true\n").isLaunchable());
    QVERIFY(!entryFrom("Exec=kelo-viewer \"%f\n").isLaunchable());
    QVERIFY(!entryFrom("Exec=\n").isLaunchable());
    QVERIFY(!DesktopEntry::parse("[Desktop Entry]\nType=Link\nExec=kelo-viewer\n", {}, {})->isLaunchable());
    QVERIFY(!DesktopEntry::parse("[Desktop Entry]\nExec=kelo-viewer\n", {}, {})->isLaunchable());

    // A terminal entry needs the terminal as well as its own program.
    qputenv("PATH", QFile::encodeName(sandbox.path(u"bin"_qs)));
    QVERIFY(!entryFrom("Terminal=true\nExec=kelo-viewer %f\n").isLaunchable());
    const QString terminal = sandbox.addRecorder(u"x-terminal-emulator"_qs);
    QVERIFY(entryFrom("Terminal=true\nExec=kelo-viewer %f\n").isLaunchable());
    QCOMPARE(entryFrom("Terminal=true\nExec=kelo-viewer %f\n").programPath(), QFile::encodeName(terminal));
    QVERIFY(!entryFrom("Terminal=true\nExec=kelo-not-there %f\n").isLaunchable());
}

QTEST_GUILESS_MAIN(tst_DesktopEntry)
#include "tst_desktopentry.moc"
