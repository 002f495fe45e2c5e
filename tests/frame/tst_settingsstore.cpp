#include "RuntimeError.h"
#include "SettingsStore.h"

#include "KeloTestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;

namespace {

QString readText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void writeText(const QString &path, const QByteArray &text)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(text);
}

struct Access
{
    SettingsAccess access;
    QString appName;
    QString section;
    QString key;
    bool operator==(const Access &other) const = default;
};

} // namespace

class TestSettingsStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void fileLocationFollowsTheEnvironment();
    void fileTextIsOneGroupPerSection();
    void roundTripsAnyName_data();
    void roundTripsAnyName();
    void missingEntriesGiveTheDefault();
    void namesIgnoreCase();
    void emptyNamesAreRefused();
    void unusableFilesRaiseClearErrors();
    void handEditedListsReadAsText();
    void otherWritersAreSeenAtOnce();
    void accessHookSeesEveryCallInOrder();

private:
    QString iniPath(const QString &appName) const
    {
        return m_config->path() + QStringLiteral("/Kelocontrols/") + appName + QStringLiteral(".ini");
    }

    std::unique_ptr<QTemporaryDir> m_config;
    std::unique_ptr<QTemporaryDir> m_home;
    QByteArray m_savedXdg;
    QByteArray m_savedHome;
};

void TestSettingsStore::init()
{
    m_savedXdg = qgetenv("XDG_CONFIG_HOME");
    m_savedHome = qgetenv("HOME");
    m_config = std::make_unique<QTemporaryDir>();
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_config->isValid() && m_home->isValid());
    qputenv("XDG_CONFIG_HOME", m_config->path().toUtf8());
    qputenv("HOME", m_home->path().toUtf8());
}

void TestSettingsStore::cleanup()
{
    qputenv("XDG_CONFIG_HOME", m_savedXdg);
    qputenv("HOME", m_savedHome);
    setSettingsAccessHook({});
}

void TestSettingsStore::fileLocationFollowsTheEnvironment()
{
    const QString homeConfig = m_home->path() + QStringLiteral("/.config/Kelocontrols");
    QCOMPARE(settingsFolder(), m_config->path() + QStringLiteral("/Kelocontrols"));
    QCOMPARE(settingsFilePath(QStringLiteral("App")), iniPath(QStringLiteral("App")));

    SaveSetting(QStringLiteral("App"), QStringLiteral("S"), QStringLiteral("K"), QStringLiteral("xdg"));
    QVERIFY(QFileInfo::exists(iniPath(QStringLiteral("App"))));

    // Read again at every call: unset, empty and relative all mean ~/.config.
    for (const QByteArray &value : {QByteArray(), QByteArray(""), QByteArray("relative/config")}) {
        if (value.isNull()) {
            qunsetenv("XDG_CONFIG_HOME");
        } else {
            qputenv("XDG_CONFIG_HOME", value);
        }
        QCOMPARE(settingsFolder(), homeConfig);
        QCOMPARE(GetSetting(QStringLiteral("App"), QStringLiteral("S"), QStringLiteral("K"), QStringLiteral("none")),
            QStringLiteral("none"));
    }
    SaveSetting(QStringLiteral("App"), QStringLiteral("S"), QStringLiteral("K"), QStringLiteral("home"));
    QVERIFY(QFileInfo::exists(homeConfig + QStringLiteral("/App.ini")));
    QVERIFY(!QDir(QStringLiteral("relative")).exists());

    qputenv("XDG_CONFIG_HOME", m_config->path().toUtf8());
    QCOMPARE(GetSetting(QStringLiteral("App"), QStringLiteral("S"), QStringLiteral("K")), QStringLiteral("xdg"));
}

void TestSettingsStore::fileTextIsOneGroupPerSection()
{
    SaveSetting(
        QStringLiteral("Kelochameleon1"), QStringLiteral("Ocean"), QStringLiteral("Interval"), QStringLiteral("1500"));
    SaveSetting(
        QStringLiteral("Kelochameleon1"), QStringLiteral("Ocean"), QStringLiteral("Enabled"), QStringLiteral("True"));
    SaveSetting(QStringLiteral("Kelochameleon1"), QStringLiteral("Desert Sand"), QStringLiteral("NewBackColor"),
        QStringLiteral("-2147483633"));
    SaveSetting(
        QStringLiteral("Kelochameleon1"), QStringLiteral("Ocean"), QStringLiteral("Interval"), QStringLiteral("2000"));
    QCOMPARE(readText(iniPath(QStringLiteral("Kelochameleon1"))),
        QStringLiteral("[Desert%20Sand]\nNewBackColor=-2147483633\n\n[Ocean]\nEnabled=True\nInterval=2000\n"));
    // One file per application name.
    SaveSetting(QStringLiteral("Other"), QStringLiteral("Ocean"), QStringLiteral("Interval"), QStringLiteral("1"));
    QCOMPARE(GetSetting(QStringLiteral("Kelochameleon1"), QStringLiteral("Ocean"), QStringLiteral("Interval")),
        QStringLiteral("2000"));
    QCOMPARE(readText(iniPath(QStringLiteral("Other"))), QStringLiteral("[Ocean]\nInterval=1\n"));
}

void TestSettingsStore::roundTripsAnyName_data()
{
    QTest::addColumn<QString>("appName");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");

    QTest::newRow("plain") << "App"
                           << "Ocean"
                           << "Interval"
                           << "1500";
    QTest::newRow("slash in section") << "App"
                                      << "Day/Night"
                                      << "Interval"
                                      << "1";
    QTest::newRow("backslash in section") << "App"
                                          << "C:\\Themes\\Blue"
                                          << "Interval"
                                          << "2";
    QTest::newRow("leading and double slashes") << "App"
                                                << "//a//b/"
                                                << "/k//"
                                                << "3";
    QTest::newRow("percent") << "App"
                             << "100% blue"
                             << "50%2F"
                             << "4";
    QTest::newRow("separators in key") << "App"
                                       << "S"
                                       << "a=b;c,d [e]"
                                       << "5";
    QTest::newRow("section called General") << "App"
                                            << "General"
                                            << "Key"
                                            << "6";
    QTest::newRow("non-ASCII") << "Äpp"
                               << "Thème été"
                               << "Schlüssel"
                               << "Grüße, 世界";
    QTest::newRow("slash in application name") << "Apps/One"
                                               << "S"
                                               << "K"
                                               << "7";
    QTest::newRow("value with quotes and blanks") << "App"
                                                  << "S"
                                                  << "K"
                                                  << "  \"quoted\" ; = , x  ";
    QTest::newRow("value like a variant") << "App"
                                          << "S"
                                          << "K"
                                          << "@Variant(\\0\\0\\0\\x7f)";
    QTest::newRow("value with CR-LF") << "App"
                                      << "S"
                                      << "K"
                                      << "line 1\r\nline 2";
    QTest::newRow("empty value") << "App"
                                 << "S"
                                 << "K"
                                 << "";
    QTest::newRow("path value") << "App"
                                << "S"
                                << "BackgroundPicture"
                                << "/home/me/My Pictures/a,b.png";
}

void TestSettingsStore::roundTripsAnyName()
{
    QFETCH(QString, appName);
    QFETCH(QString, section);
    QFETCH(QString, key);
    QFETCH(QString, value);

    SaveSetting(appName, section, key, value);
    QCOMPARE(GetSetting(appName, section, key, QStringLiteral("<default>")), value);
    // Each name stays one level: nothing leaks into other sections or keys.
    QCOMPARE(GetSetting(appName, section + QStringLiteral("x"), key, QStringLiteral("<default>")),
        QStringLiteral("<default>"));
    QCOMPARE(GetSetting(appName, section, key + QStringLiteral("x"), QStringLiteral("<default>")),
        QStringLiteral("<default>"));
    const QFileInfo file(settingsFilePath(appName));
    QVERIFY(file.isFile());
    QCOMPARE(file.absolutePath(), m_config->path() + QStringLiteral("/Kelocontrols"));
}

void TestSettingsStore::missingEntriesGiveTheDefault()
{
    const QString app = QStringLiteral("App");
    QCOMPARE(GetSetting(app, QStringLiteral("S"), QStringLiteral("K")), QString());
    QCOMPARE(
        GetSetting(app, QStringLiteral("S"), QStringLiteral("K"), QStringLiteral("False")), QStringLiteral("False"));
    QVERIFY2(!QFileInfo::exists(iniPath(app)), "reading must not create the file");
    SaveSetting(app, QStringLiteral("S"), QStringLiteral("K"), QString());
    QCOMPARE(GetSetting(app, QStringLiteral("S"), QStringLiteral("K"), QStringLiteral("d")), QString());
    QCOMPARE(GetSetting(app, QStringLiteral("S"), QStringLiteral("Other"), QStringLiteral("d")), QStringLiteral("d"));
    QCOMPARE(GetSetting(app, QStringLiteral("T"), QStringLiteral("K"), QStringLiteral("d")), QStringLiteral("d"));
}

void TestSettingsStore::namesIgnoreCase()
{
    SaveSetting(QStringLiteral("MyApp"), QStringLiteral("Ocean"), QStringLiteral("Interval"), QStringLiteral("1"));
    QCOMPARE(
        GetSetting(QStringLiteral("MYAPP"), QStringLiteral("oCEAN"), QStringLiteral("interval")), QStringLiteral("1"));
    SaveSetting(QStringLiteral("myapp"), QStringLiteral("OCEAN"), QStringLiteral("INTERVAL"), QStringLiteral("2"));
    SaveSetting(QStringLiteral("myapp"), QStringLiteral("ocean/deep"), QStringLiteral("k"), QStringLiteral("3"));
    QCOMPARE(
        GetSetting(QStringLiteral("MyApp"), QStringLiteral("Ocean/DEEP"), QStringLiteral("K")), QStringLiteral("3"));
    // The first spelling stays, in one file, one group and one key.
    QCOMPARE(QDir(m_config->path() + QStringLiteral("/Kelocontrols")).entryList(QDir::Files),
        QStringList{QStringLiteral("MyApp.ini")});
    QCOMPARE(
        readText(iniPath(QStringLiteral("MyApp"))), QStringLiteral("[Ocean]\nInterval=2\n\n[ocean%252Fdeep]\nk=3\n"));
}

void TestSettingsStore::emptyNamesAreRefused()
{
    const QString x = QStringLiteral("x");
    QCOMPARE(errorNumberOf([&] { SaveSetting(QString(), x, x, x); }), ErrorNumber::InvalidProcedureCall);
    QCOMPARE(errorNumberOf([&] { SaveSetting(x, QString(), x, x); }), ErrorNumber::InvalidProcedureCall);
    QCOMPARE(errorNumberOf([&] { SaveSetting(x, x, QString(), x); }), ErrorNumber::InvalidProcedureCall);
    QCOMPARE(errorNumberOf([&] { GetSetting(QString(), x, x); }), ErrorNumber::InvalidProcedureCall);
    QCOMPARE(errorNumberOf([&] { GetSetting(x, QString(), x); }), ErrorNumber::InvalidProcedureCall);
    QCOMPARE(errorNumberOf([&] { GetSetting(x, x, QString()); }), ErrorNumber::InvalidProcedureCall);
    QCOMPARE(errorNumberOf([&] { settingsFilePath(QString()); }), ErrorNumber::InvalidProcedureCall);
    QVERIFY(!QDir(m_config->path() + QStringLiteral("/Kelocontrols")).exists());
}

void TestSettingsStore::unusableFilesRaiseClearErrors()
{
    const QString x = QStringLiteral("x");
    // A folder where the file belongs: neither readable nor writable, even for root.
    QVERIFY(QDir().mkpath(iniPath(QStringLiteral("Blocked"))));
    QCOMPARE(errorNumberOf([&] { SaveSetting(QStringLiteral("Blocked"), x, x, x); }), ErrorNumber::PermissionDenied);
    QCOMPARE(errorNumberOf([&] { GetSetting(QStringLiteral("Blocked"), x, x); }), ErrorNumber::PermissionDenied);
    try {
        SaveSetting(QStringLiteral("Blocked"), x, x, x);
    } catch (const RuntimeError &error) {
        QVERIFY2(error.description().contains(iniPath(QStringLiteral("Blocked"))), qPrintable(error.description()));
    }

    // A malformed file is reported, and a write leaves it as it was.
    const QByteArray malformed("[Ocean\nInterval=1000\nno equals sign here\n");
    writeText(iniPath(QStringLiteral("Broken")), malformed);
    QCOMPARE(errorNumberOf([&] { GetSetting(QStringLiteral("Broken"), x, x); }), ErrorNumber::InvalidFileFormat);
    QCOMPARE(errorNumberOf([&] { SaveSetting(QStringLiteral("Broken"), x, x, x); }), ErrorNumber::InvalidFileFormat);
    QCOMPARE(readText(iniPath(QStringLiteral("Broken"))).toUtf8(), malformed);

    // A configuration folder that is a file: nothing can be created below it.
    QTemporaryDir other;
    const QString plainFile = other.filePath(QStringLiteral("config"));
    writeText(plainFile, "not a folder");
    qputenv("XDG_CONFIG_HOME", plainFile.toUtf8());
    QCOMPARE(errorNumberOf([&] { SaveSetting(QStringLiteral("App"), x, x, x); }), ErrorNumber::PermissionDenied);
    QCOMPARE(GetSetting(QStringLiteral("App"), x, x, QStringLiteral("d")), QStringLiteral("d"));
}

void TestSettingsStore::handEditedListsReadAsText()
{
    writeText(iniPath(QStringLiteral("App")),
        "[Hand]\nInterval= 1500 \nPicture=/pics/a, b.png\nQuoted=\"x, y\"\nEnabled=true\n");
    QCOMPARE(
        GetSetting(QStringLiteral("App"), QStringLiteral("Hand"), QStringLiteral("Interval")), QStringLiteral("1500"));
    QCOMPARE(GetSetting(QStringLiteral("App"), QStringLiteral("Hand"), QStringLiteral("Picture")),
        QStringLiteral("/pics/a,b.png"));
    QCOMPARE(
        GetSetting(QStringLiteral("App"), QStringLiteral("Hand"), QStringLiteral("Quoted")), QStringLiteral("x, y"));
    QCOMPARE(
        GetSetting(QStringLiteral("App"), QStringLiteral("Hand"), QStringLiteral("Enabled")), QStringLiteral("true"));
}

// Another process's write is a file changed behind this process's back: it
// must show at the next call, even with the same size.
void TestSettingsStore::otherWritersAreSeenAtOnce()
{
    const QString app = QStringLiteral("Shared");
    SaveSetting(app, QStringLiteral("Ocean"), QStringLiteral("Interval"), QStringLiteral("1000"));
    QCOMPARE(GetSetting(app, QStringLiteral("Ocean"), QStringLiteral("Interval")), QStringLiteral("1000"));
    QTest::qWait(20);
    writeText(iniPath(app), "[Ocean]\nInterval=2000\n");
    QCOMPARE(GetSetting(app, QStringLiteral("Ocean"), QStringLiteral("Interval")), QStringLiteral("2000"));
    QTest::qWait(20);
    writeText(iniPath(app), "[Ocean]\nInterval=3000\nEnabled=False\n");
    SaveSetting(app, QStringLiteral("Ocean"), QStringLiteral("Enabled"), QStringLiteral("True"));
    QCOMPARE(readText(iniPath(app)), QStringLiteral("[Ocean]\nEnabled=True\nInterval=3000\n"));
}

void TestSettingsStore::accessHookSeesEveryCallInOrder()
{
    QList<Access> seen;
    const SettingsAccessHook previous = setSettingsAccessHook(
        [&seen](SettingsAccess access, const QString &app, const QString &section, const QString &key) {
            seen.append({access, app, section, key});
        });
    QVERIFY(!previous);
    SaveSetting(QStringLiteral("A"), QStringLiteral("S"), QStringLiteral("K1"), QStringLiteral("v"));
    GetSetting(QStringLiteral("A"), QStringLiteral("s"), QStringLiteral("K2"));
    // A refused call is not reported.
    errorNumberOf([] { GetSetting(QStringLiteral("A"), QString(), QStringLiteral("K3")); });
    QCOMPARE(seen.size(), 2);
    QVERIFY((seen.at(0) == Access{SettingsAccess::Write, "A", "S", "K1"}));
    QVERIFY((seen.at(1) == Access{SettingsAccess::Read, "A", "s", "K2"}));
    const SettingsAccessHook mine = setSettingsAccessHook({});
    QVERIFY(bool(mine));
    GetSetting(QStringLiteral("A"), QStringLiteral("S"), QStringLiteral("K1"));
    QCOMPARE(seen.size(), 2);
}

QTEST_GUILESS_MAIN(TestSettingsStore)
#include "tst_settingsstore.moc"
