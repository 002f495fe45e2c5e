#include "RuntimeError.h"
#include "SettingsStore.h"

#include "KeloTestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <optional>
#include <tuple>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;
using KeloTest::writeFile;
const auto readText = KeloTest::readTextFile;

class TestSettingsStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_config.emplace();
        m_home.emplace("HOME");
        QVERIFY(m_config->isValid() && m_home->isValid());
    }

    void cleanup()
    {
        m_home.reset();
        m_config.reset();
        setSettingsAccessHook({});
    }

    void fileLocationFollowsTheEnvironment()
    {
        const QString homeConfig = m_home->path() + u"/.config/Kelocontrols"_qs;
        QCOMPARE(settingsFolder(), m_config->path() + u"/Kelocontrols"_qs);
        QCOMPARE(settingsFilePath(u"App"_qs), iniPath(u"App"_qs));

        SaveSetting(u"App"_qs, u"S"_qs, u"K"_qs, u"xdg"_qs);
        QVERIFY(QFileInfo::exists(iniPath(u"App"_qs)));

        // Read again at every call: unset, empty and relative all mean ~/.config.
        for (const QByteArray &value : {QByteArray(), QByteArray(""), QByteArray("relative/config")}) {
            if (value.isNull()) {
                qunsetenv("XDG_CONFIG_HOME");
            } else {
                qputenv("XDG_CONFIG_HOME", value);
            }
            QCOMPARE(settingsFolder(), homeConfig);
            QCOMPARE(GetSetting(u"App"_qs, u"S"_qs, u"K"_qs, u"none"_qs), u"none"_qs);
        }
        SaveSetting(u"App"_qs, u"S"_qs, u"K"_qs, u"home"_qs);
        QVERIFY(QFileInfo::exists(homeConfig + u"/App.ini"_qs));
        QVERIFY(!QDir(u"relative"_qs).exists());

        qputenv("XDG_CONFIG_HOME", m_config->path().toUtf8());
        QCOMPARE(GetSetting(u"App"_qs, u"S"_qs, u"K"_qs), u"xdg"_qs);
    }

    void fileTextIsOneGroupPerSection()
    {
        SaveSetting(u"Kelochameleon1"_qs, u"Ocean"_qs, u"Interval"_qs, u"1500"_qs);
        SaveSetting(u"Kelochameleon1"_qs, u"Ocean"_qs, u"Enabled"_qs, u"True"_qs);
        SaveSetting(u"Kelochameleon1"_qs, u"Desert Sand"_qs, u"NewBackColor"_qs, u"-2147483633"_qs);
        SaveSetting(u"Kelochameleon1"_qs, u"Ocean"_qs, u"Interval"_qs, u"2000"_qs);
        QCOMPARE(readText(iniPath(u"Kelochameleon1"_qs)),
            u"[Desert%20Sand]\nNewBackColor=-2147483633\n\n[Ocean]\nEnabled=True\nInterval=2000\n"_qs);
        // One file per application name.
        SaveSetting(u"Other"_qs, u"Ocean"_qs, u"Interval"_qs, u"1"_qs);
        QCOMPARE(GetSetting(u"Kelochameleon1"_qs, u"Ocean"_qs, u"Interval"_qs), u"2000"_qs);
        QCOMPARE(readText(iniPath(u"Other"_qs)), u"[Ocean]\nInterval=1\n"_qs);
    }

    void roundTripsAnyName_data()
    {
        QTest::addColumn<QString>("appName");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");

        const auto row
            = [](const char *name, const char *appName, const char *section, const char *key, const char *value) {
                  QTest::newRow(name) << QString(appName) << QString(section) << QString(key) << QString(value);
              };
        row("plain", "App", "Ocean", "Interval", "1500");
        row("slash in section", "App", "Day/Night", "Interval", "1");
        row("backslash in section", "App", "C:\\Themes\\Blue", "Interval", "2");
        row("leading and double slashes", "App", "//a//b/", "/k//", "3");
        row("percent", "App", "100% blue", "50%2F", "4");
        row("separators in key", "App", "S", "a=b;c,d [e]", "5");
        row("section called General", "App", "General", "Key", "6");
        row("non-ASCII", "Äpp", "Thème été", "Schlüssel", "Grüße, 世界");
        row("slash in application name", "Apps/One", "S", "K", "7");
        row("value with quotes and blanks", "App", "S", "K", "  \"quoted\" ; = , x  ");
        row("value like a variant", "App", "S", "K", "@Variant(\\0\\0\\0\\x7f)");
        row("value with CR-LF", "App", "S", "K", "line 1\r\nline 2");
        row("empty value", "App", "S", "K", "");
        row("path value", "App", "S", "BackgroundPicture", "/home/me/My Pictures/a,b.png");
    }

    void roundTripsAnyName()
    {
        QFETCH(QString, appName);
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(QString, value);

        SaveSetting(appName, section, key, value);
        QCOMPARE(GetSetting(appName, section, key, u"<default>"_qs), value);
        // Each name stays one level: nothing leaks into other sections or keys.
        QCOMPARE(GetSetting(appName, section + u"x"_qs, key, u"<default>"_qs), u"<default>"_qs);
        QCOMPARE(GetSetting(appName, section, key + u"x"_qs, u"<default>"_qs), u"<default>"_qs);
        const QFileInfo file(settingsFilePath(appName));
        QVERIFY(file.isFile());
        QCOMPARE(file.absolutePath(), m_config->path() + u"/Kelocontrols"_qs);
    }

    void missingEntriesGiveTheDefault()
    {
        const QString app = u"App"_qs;
        QCOMPARE(GetSetting(app, u"S"_qs, u"K"_qs), QString());
        QCOMPARE(GetSetting(app, u"S"_qs, u"K"_qs, u"False"_qs), u"False"_qs);
        QVERIFY2(!QFileInfo::exists(iniPath(app)), "reading must not create the file");
        SaveSetting(app, u"S"_qs, u"K"_qs, QString());
        QCOMPARE(GetSetting(app, u"S"_qs, u"K"_qs, u"d"_qs), QString());
        QCOMPARE(GetSetting(app, u"S"_qs, u"Other"_qs, u"d"_qs), u"d"_qs);
        QCOMPARE(GetSetting(app, u"T"_qs, u"K"_qs, u"d"_qs), u"d"_qs);
    }

    void namesIgnoreCase()
    {
        SaveSetting(u"MyApp"_qs, u"Ocean"_qs, u"Interval"_qs, u"1"_qs);
        QCOMPARE(GetSetting(u"MYAPP"_qs, u"oCEAN"_qs, u"interval"_qs), u"1"_qs);
        SaveSetting(u"myapp"_qs, u"OCEAN"_qs, u"INTERVAL"_qs, u"2"_qs);
        SaveSetting(u"myapp"_qs, u"ocean/deep"_qs, u"k"_qs, u"3"_qs);
        QCOMPARE(GetSetting(u"MyApp"_qs, u"Ocean/DEEP"_qs, u"K"_qs), u"3"_qs);
        // The first spelling stays, in one file, one group and one key.
        QCOMPARE(QDir(m_config->path() + u"/Kelocontrols"_qs).entryList(QDir::Files), QStringList{u"MyApp.ini"_qs});
        QCOMPARE(readText(iniPath(u"MyApp"_qs)), u"[Ocean]\nInterval=2\n\n[ocean%252Fdeep]\nk=3\n"_qs);
    }

    void emptyNamesAreRefused()
    {
        const QString x = u"x"_qs, none;
        for (const auto &[app, section, key] :
            {std::tuple{none, x, x}, std::tuple{x, none, x}, std::tuple{x, x, none}}) {
            QCOMPARE(errorNumberOf([&] { SaveSetting(app, section, key, x); }), ErrorNumber::InvalidProcedureCall);
            QCOMPARE(errorNumberOf([&] { GetSetting(app, section, key); }), ErrorNumber::InvalidProcedureCall);
        }
        QCOMPARE(errorNumberOf([&] { settingsFilePath(QString()); }), ErrorNumber::InvalidProcedureCall);
        QVERIFY(!QDir(m_config->path() + u"/Kelocontrols"_qs).exists());
    }

    void unusableFilesRaiseClearErrors()
    {
        const QString x = u"x"_qs;
        // A folder where the file belongs: neither readable nor writable, even for root.
        QVERIFY(QDir().mkpath(iniPath(u"Blocked"_qs)));
        QCOMPARE(errorNumberOf([&] { SaveSetting(u"Blocked"_qs, x, x, x); }), ErrorNumber::PermissionDenied);
        QCOMPARE(errorNumberOf([&] { GetSetting(u"Blocked"_qs, x, x); }), ErrorNumber::PermissionDenied);
        try {
            SaveSetting(u"Blocked"_qs, x, x, x);
        } catch (const RuntimeError &error) {
            QVERIFY2(error.description().contains(iniPath(u"Blocked"_qs)), qPrintable(error.description()));
        }

        // A malformed file is reported, and a write leaves it as it was.
        const QByteArray malformed("[Ocean\nInterval=1000\nno equals sign here\n");
        QVERIFY(writeFile(iniPath(u"Broken"_qs), malformed));
        QCOMPARE(errorNumberOf([&] { GetSetting(u"Broken"_qs, x, x); }), ErrorNumber::InvalidFileFormat);
        QCOMPARE(errorNumberOf([&] { SaveSetting(u"Broken"_qs, x, x, x); }), ErrorNumber::InvalidFileFormat);
        QCOMPARE(readText(iniPath(u"Broken"_qs)).toUtf8(), malformed);

        // A configuration folder that is a file: nothing can be created below it.
        QTemporaryDir other;
        const QString plainFile = other.filePath(u"config"_qs);
        QVERIFY(writeFile(plainFile, "not a folder"));
        qputenv("XDG_CONFIG_HOME", plainFile.toUtf8());
        QCOMPARE(errorNumberOf([&] { SaveSetting(u"App"_qs, x, x, x); }), ErrorNumber::PermissionDenied);
        QCOMPARE(GetSetting(u"App"_qs, x, x, u"d"_qs), u"d"_qs);
    }

    void handEditedListsReadAsText()
    {
        QVERIFY(writeFile(
            iniPath(u"App"_qs), "[Hand]\nInterval= 1500 \nPicture=/pics/a, b.png\nQuoted=\"x, y\"\nEnabled=true\n"));
        QCOMPARE(GetSetting(u"App"_qs, u"Hand"_qs, u"Interval"_qs), u"1500"_qs);
        QCOMPARE(GetSetting(u"App"_qs, u"Hand"_qs, u"Picture"_qs), u"/pics/a,b.png"_qs);
        QCOMPARE(GetSetting(u"App"_qs, u"Hand"_qs, u"Quoted"_qs), u"x, y"_qs);
        QCOMPARE(GetSetting(u"App"_qs, u"Hand"_qs, u"Enabled"_qs), u"true"_qs);
    }

    // Another process's write is a file changed behind this process's back: it
    // must show at the next call, even with the same size.
    void otherWritersAreSeenAtOnce()
    {
        const QString app = u"Shared"_qs;
        SaveSetting(app, u"Ocean"_qs, u"Interval"_qs, u"1000"_qs);
        QCOMPARE(GetSetting(app, u"Ocean"_qs, u"Interval"_qs), u"1000"_qs);
        QTest::qWait(20);
        QVERIFY(writeFile(iniPath(app), "[Ocean]\nInterval=2000\n"));
        QCOMPARE(GetSetting(app, u"Ocean"_qs, u"Interval"_qs), u"2000"_qs);
        QTest::qWait(20);
        QVERIFY(writeFile(iniPath(app), "[Ocean]\nInterval=3000\nEnabled=False\n"));
        SaveSetting(app, u"Ocean"_qs, u"Enabled"_qs, u"True"_qs);
        QCOMPARE(readText(iniPath(app)), u"[Ocean]\nEnabled=True\nInterval=3000\n"_qs);
    }

    void accessHookSeesEveryCallInOrder()
    {
        QStringList seen;
        const SettingsAccessHook previous = setSettingsAccessHook(
            [&seen](SettingsAccess access, const QString &app, const QString &section, const QString &key) {
                seen << u"%1 %2 %3 %4"_qs.arg(access == SettingsAccess::Write ? "Write" : "Read", app, section, key);
            });
        QVERIFY(!previous);
        SaveSetting(u"A"_qs, u"S"_qs, u"K1"_qs, u"v"_qs);
        GetSetting(u"A"_qs, u"s"_qs, u"K2"_qs);
        // A refused call is not reported.
        errorNumberOf([] { GetSetting(u"A"_qs, QString(), u"K3"_qs); });
        QCOMPARE(seen, QStringList({"Write A S K1", "Read A s K2"}));
        QVERIFY(bool(setSettingsAccessHook({})));
        GetSetting(u"A"_qs, u"S"_qs, u"K1"_qs);
        QCOMPARE(seen.size(), 2);
    }

private:
    QString iniPath(const QString &appName) const
    {
        return m_config->path() + u"/Kelocontrols/"_qs + appName + u".ini"_qs;
    }

    std::optional<KeloTest::ScopedConfigHome> m_config;
    std::optional<KeloTest::ScopedConfigHome> m_home;
};

QTEST_GUILESS_MAIN(TestSettingsStore)
#include "tst_settingsstore.moc"
