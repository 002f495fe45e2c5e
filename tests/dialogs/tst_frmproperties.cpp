#include "Conversions.h"
#include "FileEntry.h"
#include "FileNameCodec.h"
#include "FileSystem.h"
#include "FileTypes.h"
#include "MsgBox.h"
#include "PictureBox.h"
#include "frmProperties.h"

#include "KeloTestSupport.h"
#include "shell/FileTreeFixture.h"

#include <QApplication>
#include <QCheckBox>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLocale>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <functional>

using namespace Kelocontrols;
using KeloTest::diskPath;
using KeloTest::MsgBoxRecorder;

namespace {

/// What the dialog showed while it was open.
struct Shown
{
    bool opened = false;
    QString title;
    QStringList values; ///< labProperty_0 .. labProperty_6
    bool readOnly = false;
    bool hidden = false;
    bool hiddenEnabled = true;
};

QStringList valuesOf(const QWidget &dialog)
{
    QStringList values;
    for (int i = 0; i < 7; ++i)
        values.append(dialog.findChild<QLabel *>(QStringLiteral("labProperty_%1").arg(i))->text());
    return values;
}

QCheckBox *box(const QWidget &dialog, int index)
{
    return dialog.findChild<QCheckBox *>(QStringLiteral("chkProperty_%1").arg(index));
}

QPushButton *command(const QWidget &dialog, int index)
{
    return dialog.findChild<QPushButton *>(QStringLiteral("Commands_%1").arg(index));
}

/// Actions while the dialog is open: set the two boxes, then press buttons in order (0 OK, 1 Cancel, 2 Apply).
struct Script
{
    int readOnly = -1; ///< -1 leaves the box as it is
    int hidden = -1;
    QList<int> presses{1};
};

/// Shows @p path in @p dialog, records what it showed and plays @p script (pressing Cancel when it leaves it open).
Shown showAndPlay(frmProperties &dialog, const QString &path, const Script &script = {}, const QString &name = {})
{
    Shown shown;
    QTimer::singleShot(0, &dialog, [&] {
        shown.opened = dialog.isVisible();
        shown.title = dialog.windowTitle();
        shown.values = valuesOf(dialog);
        shown.readOnly = box(dialog, 0)->isChecked();
        shown.hidden = box(dialog, 1)->isChecked();
        shown.hiddenEnabled = box(dialog, 1)->isEnabled();
        if (script.readOnly >= 0)
            box(dialog, 0)->setChecked(script.readOnly);
        if (script.hidden >= 0)
            box(dialog, 1)->setChecked(script.hidden);
        for (int press : script.presses)
            command(dialog, press)->click();
        if (dialog.isVisible())
            command(dialog, 1)->click();
    });
    dialog.ShowFile(path, name);
    return shown;
}

Shown showAndPlay(const QString &path, const Script &script = {}, const QString &name = {})
{
    frmProperties dialog;
    return showAndPlay(dialog, path, script, name);
}

void makeFile(const QString &path, qint64 size = 0)
{
    const int fd = ::open(diskPath(path).constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    QVERIFY2(fd >= 0, qPrintable(path));
    QCOMPARE(::ftruncate(fd, size), 0); // sparse: big sizes cost no disk
    ::close(fd);
}

mode_t modeOf(const QString &path)
{
    struct stat info
    {
    };
    ::stat(diskPath(path).constData(), &info);
    return info.st_mode & 07777;
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<none>");
}

/// Writes the list of hidden names, or leaves it out for "<none>".
void writeList(const QString &path, const QByteArray &content)
{
    if (content != "<none>")
        QVERIFY(KeloTest::writeFile(path, content));
}

QString longDate(qint64 milliseconds)
{
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(milliseconds).date(), QLocale::LongFormat);
}

/// A name holding the byte 0xE9, which is not UTF-8 on its own.
QString latin1Name()
{
    return FileNameCodec::decode(QByteArray("caf\xe9.txt"));
}

} // namespace

class tst_frmProperties : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void widgetsAndTitle();
    void fileLines();
    void sizes_data();
    void sizes();
    void contents_data();
    void contents();
    void attributesShown_data();
    void attributesShown();
    void apply_data();
    void apply();
    void missingPath();
    void oddNames_data();
    void oddNames();
    void refusedAsAnotherUser_data();
    void refusedAsAnotherUser();
    void layout_data();
    void layout();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString path(const QString &name) const { return m_dir->filePath(name); }
};

void tst_frmProperties::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void tst_frmProperties::cleanup()
{
    QLocale::setDefault(QLocale::c());
    ::unlink(diskPath(path(latin1Name())).constData()); // QDir cannot remove a name that is not UTF-8
    m_dir.reset();
}

void tst_frmProperties::widgetsAndTitle()
{
    frmProperties dialog;
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Properties"));
    QCOMPARE(QStringList({command(dialog, 0)->text(), command(dialog, 1)->text(), command(dialog, 2)->text(),
                 box(dialog, 0)->text(), box(dialog, 1)->text()}),
        QStringList({"OK", "Cancel", "Apply", "Read-only", "Hidden"}));
    QCOMPARE(dialog.findChildren<QLabel *>(QRegularExpression(QStringLiteral("^labDividers_\\d$"))).size(), 3);
    // Late-bound, as a host calls it.
    QVERIFY(dialog.metaObject()->indexOfMethod("ShowFile(QString,QString)") >= 0);
}

void tst_frmProperties::fileLines()
{
    const QString file = path(QStringLiteral("notes.txt"));
    makeFile(file, 10);
    const QDateTime modified(QDate(2021, 3, 4), QTime(5, 6, 7));
    const QDateTime accessed(QDate(2022, 11, 30), QTime(23, 59, 0));
    {
        QFile handle(file);
        QVERIFY(handle.open(QIODevice::ReadWrite));
        QVERIFY(handle.setFileTime(modified, QFileDevice::FileModificationTime));
        QVERIFY(handle.setFileTime(accessed, QFileDevice::FileAccessTime));
    }
    const FileEntry entry = *FileSystem::instance().entry(file);
    const QStringList expected{QStringLiteral("notes.txt"), FileTypes::instance().fileTypeText(QStringLiteral("a.txt")),
        m_dir->path(), QStringLiteral("1KB (10 bytes)"), longDate(entry.created),
        longDate(modified.toMSecsSinceEpoch()), longDate(accessed.toMSecsSinceEpoch())};

    frmProperties dialog;
    Shown shown = showAndPlay(dialog, file);
    QVERIFY(shown.opened);
    QCOMPARE(shown.title, QStringLiteral("notes.txt Properties"));
    QCOMPARE(shown.values, expected);
    QVERIFY(!dialog.findChild<PictureBox *>(QStringLiteral("picFile"))->picture().isNull());
    QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("labProperty_5"))->toolTip(), formatGeneralDate(modified));
    QVERIFY(shown.values.at(5).contains(QStringLiteral("2021")) && !shown.values.at(5).contains(QStringLiteral("05")));

    // A display name replaces the name in both places; the rest stays the file's.
    shown = showAndPlay(dialog, file, {}, QStringLiteral("My Notes"));
    QCOMPARE(shown.title, QStringLiteral("My Notes Properties"));
    QCOMPARE(shown.values.first(), QStringLiteral("My Notes"));
    QCOMPARE(shown.values.mid(1), expected.mid(1));

    // A folder: its type, its parent, and the root of the tree with no parent.
    shown = showAndPlay(m_dir->path());
    QCOMPARE(shown.values.mid(0, 3),
        QStringList({QDir(m_dir->path()).dirName(), FileTypes::instance().folderTypeText(), QDir::tempPath()}));
    shown = showAndPlay(QStringLiteral("/"));
    QVERIFY(shown.opened);
    QCOMPARE(shown.values.at(2), QString());
    QVERIFY(!shown.values.at(0).isEmpty());
}

void tst_frmProperties::sizes_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<bool>("german");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << 0LL << false << "0KB (0 bytes)";
    QTest::newRow("one byte, plural kept") << 1LL << false << "1KB (1 bytes)";
    QTest::newRow("1024") << 1024LL << false << "1KB (1,024 bytes)";
    QTest::newRow("1025") << 1025LL << false << "2KB (1,025 bytes)";
    QTest::newRow("over 32 bits of bytes") << 5000000000LL << false << "4882813KB (5,000,000,000 bytes)";
    QTest::newRow("over 32 bits of kilobytes") << 3000000000001LL << false << "2929687501KB (3,000,000,000,001 bytes)";
    QTest::newRow("German separators") << 1234567LL << true << "1206KB (1.234.567 bytes)";
}

void tst_frmProperties::sizes()
{
    QFETCH(qint64, bytes);
    QFETCH(bool, german);
    QLocale::setDefault(german ? QLocale(QLocale::German, QLocale::Germany) : QLocale::c());
    const QString file = path(QStringLiteral("sized.bin"));
    makeFile(file, bytes);
    QTEST(showAndPlay(file).values.at(3), "text");
}

void tst_frmProperties::contents_data()
{
    QTest::addColumn<int>("files");
    QTest::addColumn<int>("folders");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << 0 << 0 << "Contains: Nothing.";
    QTest::newRow("one file") << 1 << 0 << "Contains: 1 file. No folders.";
    QTest::newRow("one folder") << 0 << 1 << "Contains: No files. 1 folder.";
    QTest::newRow("three folders") << 0 << 3 << "Contains: No files. 3 folders.";
    QTest::newRow("twelve and one") << 12 << 1 << "Contains: 12 files. 1 folder.";
}

void tst_frmProperties::contents()
{
    QFETCH(int, files);
    QFETCH(int, folders);
    QFETCH(QString, text);
    const QString folder = path(QStringLiteral("box"));
    QVERIFY(QDir().mkpath(folder + QStringLiteral("/sub0/deeper")));
    for (int i = 1; i < folders; ++i)
        QVERIFY(QDir().mkpath(folder + QStringLiteral("/sub%1").arg(i)));
    if (folders == 0)
        QVERIFY(QDir(folder + QStringLiteral("/sub0")).removeRecursively());
    for (int i = 0; i < files; ++i)
        makeFile(folder + QStringLiteral("/.file%1").arg(i)); // hidden files count too
    // Only direct entries count: the files inside a sub-folder are not the folder's.
    if (folders > 0)
        makeFile(folder + QStringLiteral("/sub0/inner.txt"));
    QCOMPARE(showAndPlay(folder).values.at(3), text);
}

void tst_frmProperties::attributesShown_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QByteArray>("hiddenList");
    QTest::addColumn<bool>("readOnly");
    QTest::addColumn<bool>("hidden");
    QTest::addColumn<bool>("hiddenEnabled");
    QTest::newRow("plain") << "a.txt" << 0644 << QByteArray("<none>") << false << false << true;
    QTest::newRow("owner cannot write") << "a.txt" << 0466 << QByteArray("<none>") << true << false << true;
    QTest::newRow("others cannot write") << "a.txt" << 0600 << QByteArray("<none>") << false << false << true;
    QTest::newRow("listed") << "a.txt" << 0644 << QByteArray("x\na.txt \r\n") << false << true << true;
    QTest::newRow("both") << "a.txt" << 0444 << QByteArray("a.txt") << true << true << true;
    QTest::newRow("dot name") << ".profile" << 0644 << QByteArray("<none>") << false << true << false;
    QTest::newRow("folder") << "dir" << 0555 << QByteArray("dir\n") << true << true << true;
}

void tst_frmProperties::attributesShown()
{
    QFETCH(QString, name);
    QFETCH(int, mode);
    QFETCH(QByteArray, hiddenList);
    const QString item = path(name);
    if (name == QLatin1String("dir"))
        QVERIFY(QDir().mkdir(item));
    else
        makeFile(item);
    QCOMPARE(::chmod(diskPath(item).constData(), mode_t(mode)), 0);
    writeList(path(QStringLiteral(".hidden")), hiddenList);

    const Shown shown = showAndPlay(item);
    QTEST(shown.readOnly, "readOnly");
    QTEST(shown.hidden, "hidden");
    QTEST(shown.hiddenEnabled, "hiddenEnabled");
}

void tst_frmProperties::apply_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QByteArray>("hiddenList");
    QTest::addColumn<int>("readOnly");
    QTest::addColumn<int>("hidden");
    QTest::addColumn<QList<int>>("presses");
    QTest::addColumn<int>("expectedMode");
    QTest::addColumn<QByteArray>("expectedList");
    const QList<int> ok{0}, apply{2}, cancel{1}, applyThenCancel{2, 1};
    const QByteArray none("<none>");
    QTest::newRow("OK sets read-only, other bits kept") << 02775 << none << 1 << 0 << ok << 02575 << none;
    QTest::newRow("Apply clears read-only, other bits kept") << 04517 << none << 0 << 0 << apply << 04717 << none;
    QTest::newRow("Cancel writes nothing")
        << 0644 << QByteArray("x\n") << 1 << 1 << cancel << 0644 << QByteArray("x\n");
    QTest::newRow("Apply then Cancel keeps what Apply wrote")
        << 0644 << none << 1 << 1 << applyThenCancel << 0444 << QByteArray("item\n");
    QTest::newRow("hide appends a line, others kept")
        << 0644 << QByteArray("a\n  b\n#c") << 0 << 1 << ok << 0644 << QByteArray("a\n  b\n#c\nitem\n");
    QTest::newRow("hide keeps CR-LF endings")
        << 0644 << QByteArray("a\r\nb\r\n") << 0 << 1 << ok << 0644 << QByteArray("a\r\nb\r\nitem\r\n");
    QTest::newRow("unhide drops every line naming it")
        << 0644 << QByteArray("a\nitem\nitem \r\nitems\n") << 0 << 0 << ok << 0644 << QByteArray("a\nitems\n");
    QTest::newRow("unhide of the only name removes the list")
        << 0644 << QByteArray("item\n") << 0 << 0 << ok << 0644 << none;
    QTest::newRow("unchanged boxes write nothing")
        << 0444 << QByteArray("item\n") << -1 << -1 << ok << 0444 << QByteArray("item\n");
}

void tst_frmProperties::apply()
{
    QFETCH(int, mode);
    QFETCH(QByteArray, hiddenList);
    QFETCH(int, readOnly);
    QFETCH(int, hidden);
    QFETCH(QList<int>, presses);
    const QString item = path(QStringLiteral("item"));
    const QString list = path(QStringLiteral(".hidden"));
    makeFile(item, 3);
    QCOMPARE(::chmod(diskPath(item).constData(), mode_t(mode)), 0);
    writeList(list, hiddenList);
    if (hiddenList != "<none>")
        QCOMPARE(::chmod(diskPath(list).constData(), 0640), 0);
    const qint64 listModified = QFileInfo(list).lastModified().toMSecsSinceEpoch();
    QTest::qWait(5); // so that a rewrite would show in the modification time

    MsgBoxRecorder boxes;
    showAndPlay(item, {readOnly, hidden, presses});
    QTEST(int(modeOf(item)), "expectedMode");
    QTEST(readFile(list), "expectedList");
    QCOMPARE(boxes.calls(), QStringList());
    QCOMPARE(readFile(item), QByteArray(3, '\0'));
    if (readFile(list) == hiddenList && hiddenList != "<none>") {
        QCOMPARE(QFileInfo(list).lastModified().toMSecsSinceEpoch(), listModified);
    } else if (hiddenList != "<none>" && readFile(list) != "<none>") {
        QCOMPARE(int(modeOf(list)), 0640); // the rewritten list keeps its permissions
    }
}

void tst_frmProperties::missingPath()
{
    MsgBoxRecorder boxes;
    const QString file = path(QStringLiteral("here.txt"));
    makeFile(file, 1);
    QCOMPARE(::chmod(diskPath(file).constData(), 0444), 0);
    frmProperties dialog;
    QVERIFY(showAndPlay(dialog, file).readOnly);

    const QString missing = path(QStringLiteral("gone/nowhere.txt"));
    const Shown shown = showAndPlay(dialog, missing);
    QVERIFY(!shown.opened);
    QCOMPARE(boxes.calls(), QStringList{QStringLiteral("64|Can not find '") + missing + QStringLiteral("'|")});
    // Cleared before the existence test.
    QCOMPARE(valuesOf(dialog), QStringList(7, QString()));
    QVERIFY(!box(dialog, 0)->isChecked() && !box(dialog, 1)->isChecked());

    boxes.boxes.clear();
    ShowFileProperties(QString());
    QCOMPARE(boxes.calls(), QStringList{QStringLiteral("64|Can not find ''|")});
}

void tst_frmProperties::oddNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("expectedList"); // "<none>": refused with a message box
    QTest::newRow("blanks") << "two  words .txt" << QByteArray("two  words .txt\n");
    QTest::newRow("markup") << "<b>bold&amp;" << QByteArray("<b>bold&amp;\n");
    QTest::newRow("not UTF-8") << latin1Name() << QByteArray("caf\xe9.txt\n");
    QTest::newRow("line break") << "line\nbreak" << QByteArray("<none>");
    QTest::newRow("trailing blank") << "blank " << QByteArray("<none>");
}

void tst_frmProperties::oddNames()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, expectedList);
    const QString item = path(name);
    makeFile(item, 2);
    MsgBoxRecorder boxes;
    const Shown shown = showAndPlay(item, {1, 1, {0}});
    QCOMPARE(shown.title, name + QStringLiteral(" Properties"));
    QCOMPARE(shown.values.at(0), name);
    QCOMPARE(shown.values.at(3), QStringLiteral("1KB (2 bytes)"));
    // Read-only is written first, so it holds even when the name cannot be hidden.
    QCOMPARE(int(modeOf(item)), 0444);
    QCOMPARE(boxes.calls(),
        expectedList != "<none>"
            ? QStringList()
            : QStringList{"16|A name with a line break or ending in a blank cannot be listed in '.hidden'|"});
    QCOMPARE(readFile(path(QStringLiteral(".hidden"))), expectedList);
}

void tst_frmProperties::refusedAsAnotherUser_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<int>("box"); // the box the child ticks before pressing OK
    QTest::addColumn<QString>("expected");
    QTest::newRow("folder that cannot be listed") << "locked" << 0 << "16|Permission denied\n";
    QTest::newRow("read-only switch refused") << "locked.txt" << 0 << "16|Permission denied\nstill open\n";
    QTest::newRow("hidden switch refused") << "locked.txt" << 1 << "16|Permission denied\nstill open\n";
}

// Root may do anything: the refusals are seen by a child that runs as nobody.
void tst_frmProperties::refusedAsAnotherUser()
{
    QFETCH(QString, item);
    QFETCH(int, box);
    const QString setpriv = QStandardPaths::findExecutable(QStringLiteral("setpriv"));
    if (::geteuid() != 0 || setpriv.isEmpty())
        QSKIP("needs root and setpriv to run a child as nobody");
    QCOMPARE(::chmod(diskPath(m_dir->path()).constData(), 0755), 0);
    QVERIFY(QDir().mkdir(path(QStringLiteral("locked"))));
    QCOMPARE(::chmod(diskPath(path(QStringLiteral("locked"))).constData(), 0700), 0);
    makeFile(path(QStringLiteral("locked.txt")), 1);

    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("KELO_PROPERTIES_CHILD"), path(item));
    environment.insert(QStringLiteral("KELO_PROPERTIES_BOX"), QString::number(box));
    child.setProcessEnvironment(environment);
    child.start(setpriv,
        {QStringLiteral("--reuid=nobody"), QStringLiteral("--regid=nogroup"), QStringLiteral("--clear-groups"),
            QCoreApplication::applicationFilePath()});
    QVERIFY(child.waitForFinished(30000));
    const QString output = QString::fromUtf8(child.readAllStandardOutput());
    QFETCH(QString, expected);
    QVERIFY2(
        output == expected, qPrintable(output + QLatin1Char('/') + QString::fromUtf8(child.readAllStandardError())));
    QCOMPARE(int(modeOf(path(QStringLiteral("locked.txt")))), 0644);
    QCOMPARE(readFile(path(QStringLiteral(".hidden"))), QByteArray("<none>"));
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        QStringList({QStringLiteral("locked"), QStringLiteral("locked.txt")})); // no temporary list left
}

void tst_frmProperties::layout_data()
{
    QTest::addColumn<QString>("item");
    QTest::newRow("properties-folder") << "Projects";
    QTest::newRow("properties-long-path") << QStringLiteral("a rather long folder name/").repeated(6) + "x.txt";
}

// The arrangement a properties dialog is expected to have. With KELO_SHOT_DIR
// set, each dialog is also saved there as <row name>.png.
void tst_frmProperties::layout()
{
    QFETCH(QString, item);
    const QString itemPath = path(item);
    if (item == QLatin1String("Projects")) {
        QVERIFY(QDir().mkpath(itemPath + QStringLiteral("/src")));
        for (int i = 0; i < 12; ++i)
            makeFile(itemPath + QStringLiteral("/notes%1.txt").arg(i));
    } else {
        // Read-only and hidden: both boxes ticked.
        QVERIFY(QDir().mkpath(QFileInfo(itemPath).path()));
        makeFile(itemPath, 2345678);
        QCOMPARE(::chmod(diskPath(itemPath).constData(), 0444), 0);
        writeList(QFileInfo(itemPath).path() + QStringLiteral("/.hidden"), "x.txt\n");
    }

    frmProperties dialog;
    QImage image;
    QTimer::singleShot(0, &dialog, [&] {
        const auto close = qScopeGuard([&] { dialog.reject(); }); // also when a check below fails
        image = dialog.grab().toImage();
        const QRect area = dialog.rect();
        auto rectOf = [&](const QString &name) {
            const auto *widget = dialog.findChild<QWidget *>(name);
            return QRect(widget->mapTo(&dialog, QPoint(0, 0)), widget->size());
        };
        const QRect icon = rectOf(QStringLiteral("picFile"));
        const QRect name = rectOf(QStringLiteral("labProperty_0"));
        const QRect divider = rectOf(QStringLiteral("labDividers_0"));
        QVERIFY(icon.right() < name.left() && icon.top() < divider.top() && name.bottom() < divider.top());
        QCOMPARE(icon.size(), QSize(32, 32));
        int previousBottom = divider.bottom();
        for (int i = 1; i < 7; ++i) {
            const QRect value = rectOf(QStringLiteral("labProperty_%1").arg(i));
            QCOMPARE(value.left(), name.left()); // one column of values
            QVERIFY(value.top() > previousBottom && area.contains(value));
            previousBottom = value.bottom();
        }
        const QRect ok = rectOf(QStringLiteral("Commands_0"));
        const QRect cancel = rectOf(QStringLiteral("Commands_1"));
        const QRect apply = rectOf(QStringLiteral("Commands_2"));
        QVERIFY(ok.right() < cancel.left() && cancel.right() < apply.left());
        QVERIFY(ok.top() > rectOf(QStringLiteral("chkProperty_0")).bottom());
        QVERIFY(area.right() - apply.right() < 24 && area.bottom() - apply.bottom() < 24);
        QVERIFY(area.contains(apply));
        QVERIFY(area.width() < 500); // a long location is shortened, not widening the dialog
    });
    dialog.ShowFile(itemPath);
    QVERIFY(!image.isNull());
    const QString folder = qEnvironmentVariable("KELO_SHOT_DIR");
    if (!folder.isEmpty())
        QVERIFY(image.save(QDir(folder).filePath(QString::fromLatin1(QTest::currentDataTag()) + ".png")));
}

/**
 * The child of refusedAsAnotherUser(): opens the properties of the path in
 * KELO_PROPERTIES_CHILD, ticks the box KELO_PROPERTIES_BOX and presses OK,
 * then Cancel when the dialog stayed open. Prints each message box as
 * "<style>|<prompt>", and "still open" when OK left the dialog open.
 */
static int runChild(int argc, char **argv)
{
    QApplication app(argc, argv);
    setMsgBoxHandler([](const QString &prompt, int buttons, const QString &) {
        std::printf("%d|%s\n", buttons, qPrintable(prompt));
        std::fflush(stdout);
        return MsgBoxResult::OK;
    });
    QTimer::singleShot(0, [] {
        auto *dialog = qobject_cast<frmProperties *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        box(*dialog, qEnvironmentVariableIntValue("KELO_PROPERTIES_BOX"))->setChecked(true);
        command(*dialog, 0)->click();
        if (dialog->isVisible()) {
            std::printf("still open\n");
            std::fflush(stdout);
            command(*dialog, 1)->click();
        }
    });
    ShowFileProperties(qEnvironmentVariable("KELO_PROPERTIES_CHILD"));
    return 0;
}

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsSet("KELO_PROPERTIES_CHILD"))
        return runChild(argc, argv);
    QApplication app(argc, argv);
    tst_frmProperties test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_frmproperties.moc"
