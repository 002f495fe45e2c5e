// Themes of the chameleon in a real settings file under a temporary
// XDG_CONFIG_HOME. Run with "--theme-helper" the binary is the second
// process of the shared-store test instead.

#include "ControlAccess_p.h"
#include "Kelochameleon.h"
#include "Random.h"
#include "RuntimeError.h"
#include "SettingsStore.h"
#include "WandPool_p.h"

#include "KeloTestSupport.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMetaClassInfo>
#include <QMetaProperty>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <cstring>
#include <memory>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;

namespace {

const QStringList ThemeKeysInWriteOrder{"ThemeExists", "BackgroundPicture", "BackgroundPictureStyle", "FontStyle",
    "Interval", "BackgroundStyle", "WandStyle", "NewBackColor", "Enabled", "ColorMinimum", "ColorMaximum",
    "ColorStepRate"};

const QStringList ThemeKeysInReadOrder{"ThemeExists", "BackgroundPicture", "BackgroundPictureStyle", "FontStyle",
    "Interval", "BackgroundStyle", "WandStyle", "NewBackColor", "Enabled", "ColorMaximum", "ColorMinimum",
    "ColorMaximum", "ColorStepRate"};

// Every property of the chameleon, by name, as late-bound callers see them.
QVariantMap snapshot(const QObject &object)
{
    QVariantMap values;
    const QMetaObject *meta = object.metaObject();
    for (int i = 0; i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        const QString name = QString::fromLatin1(property.name());
        // A picture has no equality to compare by; the theme never touches it.
        if (name.front().isUpper() && name != u"MouseIcon") {
            values.insert(name, property.read(&object));
        }
    }
    return values;
}

// A chameleon configured away from every default.
void configure(Kelochameleon &chameleon)
{
    chameleon.setColorMaximum(200);
    chameleon.setColorMinimum(20);
    chameleon.setColorStepRate(7);
    chameleon.setInterval(1500);
    chameleon.setBackgroundStyle(keloBackgroundStyle::VariedColor);
    chameleon.setWandStyle(keloWandStyle::Atom);
    chameleon.setNewBackColor(0x8000000Fu);
    chameleon.setEnabled(false);
    chameleon.setFontStyle(keloFontStyle::ChangeFont);
    chameleon.setBackgroundPicture(QStringLiteral("/pics/sea side, blue.png"));
    chameleon.setBackgroundPictureStyle(keloPictureStyle::Tiled);
}

// The second process: saves a theme, or reads one and prints its interval.
//   --theme-helper save <name> <theme> <interval>   exit 0
//   --theme-helper get <name> <theme>                prints Interval, exit 0 found / 1 missing
int runHelper(int argc, char **argv)
{
    QApplication app(argc, argv);
    if (argc < 5) {
        return 2;
    }
    Kelochameleon chameleon;
    chameleon.setObjectName(QString::fromLocal8Bit(argv[3]));
    chameleon.setThemeName(QString::fromLocal8Bit(argv[4]));
    if (std::strcmp(argv[2], "save") == 0 && argc >= 6) {
        chameleon.setInterval(QString::fromLocal8Bit(argv[5]).toInt());
        chameleon.setBackgroundStyle(keloBackgroundStyle::FixedColor);
        chameleon.SaveTheme();
        return 0;
    }
    if (std::strcmp(argv[2], "get") == 0) {
        const bool found = chameleon.GetTheme();
        std::printf("%d\n", chameleon.Interval());
        return found ? 0 : 1;
    }
    return 2;
}

} // namespace

class TestChameleonThemes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void membersAreLateBound();
    void saveWritesEveryKeyAsTextAndGetReadsItBack();
    void emptyThemeNameBecomesDefaultTheme();
    void missingThemeRaisesThemeMissingOnce();
    void handEditedBoundsStayUnclamped();
    void badValueEndsTheReadWhereItStands_data();
    void badValueEndsTheReadWhereItStands();
    void truthAndNumberTexts_data();
    void truthAndNumberTexts();
    void applicationNameIsTheObjectName();
    void twoProcessesShareOneStore();
    void showReadsTheThemeWhenUsedOrReportsItMissing();
    void storeErrorsReachTheCaller();

private:
    QString iniPath(const QString &appName) const
    {
        return m_config->path() + QStringLiteral("/Kelocontrols/") + appName + QStringLiteral(".ini");
    }

    std::unique_ptr<QTemporaryDir> m_config;
    QByteArray m_savedXdg;
    QStringList m_accesses;
};

void TestChameleonThemes::init()
{
    resetRandomGenerator();
    m_savedXdg = qgetenv("XDG_CONFIG_HOME");
    m_config = std::make_unique<QTemporaryDir>();
    QVERIFY(m_config->isValid());
    qputenv("XDG_CONFIG_HOME", m_config->path().toUtf8());
    m_accesses.clear();
    setSettingsAccessHook(
        [this](SettingsAccess access, const QString &app, const QString &section, const QString &key) {
            m_accesses.append((access == SettingsAccess::Write ? QStringLiteral("W ") : QStringLiteral("R ")) + app
                + QLatin1Char('/') + section + QLatin1Char('/') + key);
        });
}

void TestChameleonThemes::cleanup()
{
    setSettingsAccessHook({});
    qputenv("XDG_CONFIG_HOME", m_savedXdg);
    WandPool::shared().reset();
}

// A host calls both late-bound.
void TestChameleonThemes::membersAreLateBound()
{
    Kelochameleon chameleon;
    chameleon.setObjectName(QStringLiteral("Late"));
    QVariant saved = QStringLiteral("not empty");
    QVERIFY(QMetaObject::invokeMethod(&chameleon, "SaveTheme", Q_RETURN_ARG(QVariant, saved)));
    QVERIFY(!saved.isValid());
    bool found = false;
    QVERIFY(QMetaObject::invokeMethod(&chameleon, "GetTheme", Q_RETURN_ARG(bool, found)));
    QVERIFY(found);
}

void TestChameleonThemes::saveWritesEveryKeyAsTextAndGetReadsItBack()
{
    QWidget form;
    auto *chameleon = new Kelochameleon(&form);
    chameleon->setObjectName(QStringLiteral("Kelochameleon1"));
    configure(*chameleon);
    chameleon->setThemeName(QStringLiteral("Sea Side"));
    const QVariantMap before = snapshot(*chameleon);
    QSignalSpy changes(chameleon, &Kelochameleon::PropertyChanged);

    QVERIFY(!chameleon->SaveTheme().isValid());

    QStringList expected;
    for (const QString &key : ThemeKeysInWriteOrder) {
        expected << QStringLiteral("W Kelochameleon1/Sea Side/") + key;
    }
    QCOMPARE(m_accesses, expected);
    QCOMPARE(KeloTest::readTextFile(iniPath(QStringLiteral("Kelochameleon1"))),
        QStringLiteral("[Sea%20Side]\n"
                       "BackgroundPicture=\"/pics/sea side, blue.png\"\n"
                       "BackgroundPictureStyle=8\n"
                       "BackgroundStyle=3\n"
                       "ColorMaximum=200\n"
                       "ColorMinimum=20\n"
                       "ColorStepRate=7\n"
                       "Enabled=False\n"
                       "FontStyle=1\n"
                       "Interval=1500\n"
                       "NewBackColor=-2147483633\n"
                       "ThemeExists=True\n"
                       "WandStyle=3\n"));
    QCOMPARE(changes.count(), 0);
    QCOMPARE(snapshot(*chameleon), before);
    QCOMPARE(chameleon->settingsApplicationName(), QStringLiteral("Kelochameleon1"));
    // Nothing is applied: the form keeps its own look.
    QVERIFY(!form.autoFillBackground());

    // Read back by another chameleon of the same name, in the read order,
    // without PropertyChanged and without applying anything.
    m_accesses.clear();
    QWidget other;
    auto *target = new Kelochameleon(&other);
    target->setObjectName(QStringLiteral("Kelochameleon1"));
    target->setThemeName(QStringLiteral("sea side")); // found without regard to case
    target->setThemeIsUsed(true);
    QSignalSpy targetChanges(target, &Kelochameleon::PropertyChanged);
    QSignalSpy missing(target, &Kelochameleon::ThemeMissing);
    QVERIFY(target->GetTheme());
    QCOMPARE(targetChanges.count(), 0);
    QCOMPARE(missing.count(), 0);
    expected.clear();
    for (const QString &key : ThemeKeysInReadOrder) {
        expected << QStringLiteral("R Kelochameleon1/sea side/") + key;
    }
    QCOMPARE(m_accesses, expected);
    // Every theme value as saved; the name, the flag and the font are not part of a theme.
    QVariantMap read = before;
    read.insert(QStringLiteral("ThemeName"), QStringLiteral("sea side"));
    read.insert(QStringLiteral("ThemeIsUsed"), true);
    QCOMPARE(snapshot(*target), read);
    QVERIFY(!other.autoFillBackground());
    QVERIFY(!target->findChild<QTimer *>(QStringLiteral("Timer1"))->isActive());

    // The defaults as texts; saving again replaces the values in place.
    Kelochameleon fresh;
    fresh.setObjectName(QStringLiteral("Kelochameleon1"));
    fresh.setThemeName(QStringLiteral("Sea Side"));
    fresh.SaveTheme();
    const QString text = KeloTest::readTextFile(iniPath(QStringLiteral("Kelochameleon1")));
    QVERIFY2(text.contains(QStringLiteral("\nEnabled=True\n")), qPrintable(text));
    QVERIFY(text.contains(QStringLiteral("\nNewBackColor=0\n")));
    QVERIFY(text.contains(QStringLiteral("\nBackgroundPicture=\n")));
    QVERIFY(text.contains(QStringLiteral("\nInterval=1000\n")));
    QCOMPARE(text.count(QStringLiteral("Interval=")), 1);
}

void TestChameleonThemes::emptyThemeNameBecomesDefaultTheme()
{
    Kelochameleon chameleon;
    chameleon.setObjectName(QStringLiteral("Kelochameleon1"));
    chameleon.setInterval(700);
    chameleon.setThemeName(QString());
    QSignalSpy changes(&chameleon, &Kelochameleon::PropertyChanged);
    chameleon.SaveTheme();
    QCOMPARE(chameleon.ThemeName(), QStringLiteral("DefaultTheme"));
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.at(0).at(0).toString(), QStringLiteral("ThemeName"));
    QVERIFY(KeloTest::readTextFile(iniPath(QStringLiteral("Kelochameleon1")))
                .startsWith(QStringLiteral("[DefaultTheme]\n")));

    Kelochameleon reader;
    reader.setObjectName(QStringLiteral("Kelochameleon1"));
    reader.setThemeName(QString());
    changes.clear();
    QSignalSpy readerChanges(&reader, &Kelochameleon::PropertyChanged);
    m_accesses.clear();
    QVERIFY(reader.GetTheme());
    QCOMPARE(reader.ThemeName(), QStringLiteral("DefaultTheme"));
    QCOMPARE(reader.Interval(), 700);
    QCOMPARE(readerChanges.count(), 1);
    QCOMPARE(m_accesses.first(), QStringLiteral("R Kelochameleon1/DefaultTheme/ThemeExists"));

    // Missing as well: the name still changes.
    Kelochameleon stranger;
    stranger.setObjectName(QStringLiteral("Stranger"));
    stranger.setThemeName(QString());
    QVERIFY(!stranger.GetTheme());
    QCOMPARE(stranger.ThemeName(), QStringLiteral("DefaultTheme"));
}

void TestChameleonThemes::missingThemeRaisesThemeMissingOnce()
{
    // A file with other themes, and one section whose ThemeExists is not true.
    QVERIFY(KeloTest::writeTextFile(iniPath(QStringLiteral("Kelochameleon1")),
        QStringLiteral("[Other]\nThemeExists=True\nInterval=300\n\n[Half]\nInterval=300\n\n"
                       "[Withdrawn]\nThemeExists=False\nInterval=300\n")));
    const QString fileBefore = KeloTest::readTextFile(iniPath(QStringLiteral("Kelochameleon1")));
    for (const QString &theme : {QStringLiteral("Nowhere"), QStringLiteral("Half"), QStringLiteral("Withdrawn")}) {
        Kelochameleon chameleon;
        chameleon.setObjectName(QStringLiteral("Kelochameleon1"));
        configure(chameleon);
        chameleon.setThemeName(theme);
        const QVariantMap before = snapshot(chameleon);
        QSignalSpy missing(&chameleon, &Kelochameleon::ThemeMissing);
        QSignalSpy changes(&chameleon, &Kelochameleon::PropertyChanged);
        m_accesses.clear();
        QVERIFY(!chameleon.GetTheme());
        QCOMPARE(missing.count(), 1);
        QCOMPARE(changes.count(), 0);
        QCOMPARE(snapshot(chameleon), before);
        QCOMPARE(m_accesses, QStringList{QStringLiteral("R Kelochameleon1/") + theme + QStringLiteral("/ThemeExists")});
    }
    QCOMPARE(KeloTest::readTextFile(iniPath(QStringLiteral("Kelochameleon1"))), fileBefore);
}

void TestChameleonThemes::handEditedBoundsStayUnclamped()
{
    QVERIFY(KeloTest::writeTextFile(iniPath(QStringLiteral("Kelochameleon1")),
        QStringLiteral("[Hand]\nThemeExists=True\nColorMinimum=200\nColorMaximum=100\nColorStepRate=300\n"
                       "Interval=-5\nBackgroundStyle=9\n")));
    Kelochameleon chameleon;
    chameleon.setObjectName(QStringLiteral("Kelochameleon1"));
    configure(chameleon);
    chameleon.setThemeName(QStringLiteral("Hand"));
    QVERIFY(chameleon.GetTheme());
    QCOMPARE(chameleon.ColorMinimum(), 200);
    QCOMPARE(chameleon.ColorMaximum(), 100);
    QCOMPARE(chameleon.ColorStepRate(), 300);
    QCOMPARE(chameleon.Interval(), -5);
    QCOMPARE(int(chameleon.BackgroundStyle()), 9);
    // Keys left out take the defaults, not the values the control had.
    QCOMPARE(chameleon.NewBackColor(), 0u);
    QVERIFY(chameleon.Enabled());
    QCOMPARE(chameleon.WandStyle(), keloWandStyle::None);
    QCOMPARE(chameleon.FontStyle(), keloFontStyle::None);
    QCOMPARE(chameleon.BackgroundPicture(), QString());
    QCOMPARE(chameleon.BackgroundPictureStyle(), keloPictureStyle::None);
    // Saved again, the unclamped pair goes back as it is.
    chameleon.setThemeName(QStringLiteral("Copy"));
    chameleon.SaveTheme();
    QCOMPARE(GetSetting(QStringLiteral("Kelochameleon1"), QStringLiteral("Copy"), QStringLiteral("ColorMinimum")),
        QStringLiteral("200"));
    QCOMPARE(GetSetting(QStringLiteral("Kelochameleon1"), QStringLiteral("Copy"), QStringLiteral("ColorMaximum")),
        QStringLiteral("100"));
}

void TestChameleonThemes::badValueEndsTheReadWhereItStands_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("error");

    const auto row = [](const char *key, const char *text, int error) {
        QTest::addRow("%s %s", key, text) << QString::fromLatin1(key) << QString::fromLatin1(text) << error;
    };
    row("Interval", "abc", ErrorNumber::TypeMismatch);
    row("Interval", "", ErrorNumber::TypeMismatch);
    row("Interval", "40000", ErrorNumber::Overflow);
    row("ColorStepRate", "abc", ErrorNumber::TypeMismatch);
    row("ColorMaximum", "abc", ErrorNumber::TypeMismatch);
    row("ColorMinimum", "1,5.5", ErrorNumber::TypeMismatch);
    row("Enabled", "yes", ErrorNumber::TypeMismatch);
    row("NewBackColor", "red", ErrorNumber::TypeMismatch);
    row("NewBackColor", "4294967296", ErrorNumber::Overflow);
    row("WandStyle", "nan", ErrorNumber::TypeMismatch);
    row("ThemeExists", "maybe", ErrorNumber::TypeMismatch);
}

void TestChameleonThemes::badValueEndsTheReadWhereItStands()
{
    QFETCH(QString, key);
    QFETCH(QString, text);
    QFETCH(int, error);

    // A theme of the defaults, but for the interval and the minimum, with one bad value.
    Kelochameleon writer;
    writer.setObjectName(QStringLiteral("Kelochameleon1"));
    writer.setThemeName(QStringLiteral("Bad"));
    writer.setInterval(2500);
    writer.setColorMinimum(40);
    writer.SaveTheme();
    SaveSetting(QStringLiteral("Kelochameleon1"), QStringLiteral("Bad"), key, text);
    const QString fileBefore = KeloTest::readTextFile(iniPath(QStringLiteral("Kelochameleon1")));
    const QVariantMap theme = snapshot(writer);

    Kelochameleon chameleon;
    chameleon.setObjectName(QStringLiteral("Kelochameleon1"));
    configure(chameleon);
    chameleon.setThemeName(QStringLiteral("Bad"));
    const QVariantMap before = snapshot(chameleon);
    QSignalSpy changes(&chameleon, &Kelochameleon::PropertyChanged);
    QSignalSpy missing(&chameleon, &Kelochameleon::ThemeMissing);

    QCOMPARE(errorNumberOf([&] { chameleon.GetTheme(); }), error);
    // Each value is stored as it is read: the keys read before the bad one
    // hold the theme's values, the bad one and those after it keep theirs.
    const QVariantMap after = snapshot(chameleon);
    const qsizetype bad = ThemeKeysInReadOrder.indexOf(key);
    for (const QString &name : ThemeKeysInReadOrder.mid(1)) {
        const bool read = ThemeKeysInReadOrder.indexOf(name) < bad;
        QVERIFY2(after.value(name) == (read ? theme : before).value(name), qPrintable(name));
    }
    QCOMPARE(changes.count(), 0);
    QCOMPARE(missing.count(), 0);
    QCOMPARE(KeloTest::readTextFile(iniPath(QStringLiteral("Kelochameleon1"))), fileBefore);
    // The same error late-bound.
    QCOMPARE(errorNumberOf([&] { QMetaObject::invokeMethod(&chameleon, "GetTheme"); }), error);
}

void TestChameleonThemes::truthAndNumberTexts_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("expected");

    const auto row = [](const char *key, const char *text, const QVariant &expected) {
        QTest::addRow("%s '%s'", key, text) << QString::fromLatin1(key) << QString::fromLatin1(text) << expected;
    };
    // Truth values: True / False in any case, or a number (non-zero is True).
    row("Enabled", "True", true);
    row("Enabled", "false", false);
    row("Enabled", "  TRUE ", true);
    row("Enabled", "1", true);
    row("Enabled", "-1", true);
    row("Enabled", "0", false);
    row("Enabled", " 12 ", true);
    row("Enabled", "0.0", false);
    // An invalid expectation: the theme counts as missing.
    row("ThemeExists", "0", QVariant());
    row("ThemeExists", "-1", true);
    row("ThemeExists", "false", QVariant());
    // Numbers as the classic conversions read them.
    row("Interval", " 1500 ", 1500);
    row("Interval", "1e3", 1000);
    row("Interval", "12.5", 12); // half to even
    row("NewBackColor", "2147483663", 0x8000000Fu);
    row("NewBackColor", "-2147483633", 0x8000000Fu);
    row("NewBackColor", "3368601", 0x00336699u);
}

void TestChameleonThemes::truthAndNumberTexts()
{
    QFETCH(QString, key);
    QFETCH(QString, text);
    QFETCH(QVariant, expected);

    Kelochameleon writer;
    writer.setObjectName(QStringLiteral("Kelochameleon1"));
    writer.setThemeName(QStringLiteral("Texts"));
    writer.SaveTheme();
    SaveSetting(QStringLiteral("Kelochameleon1"), QStringLiteral("Texts"), key, text);

    Kelochameleon chameleon;
    chameleon.setObjectName(QStringLiteral("Kelochameleon1"));
    chameleon.setThemeName(QStringLiteral("Texts"));
    chameleon.setInterval(4321);
    const bool found = chameleon.GetTheme();
    if (key == u"ThemeExists") {
        QCOMPARE(found, expected.isValid());
        QCOMPARE(chameleon.Interval(), found ? 1000 : 4321);
        return;
    }
    QVERIFY(found);
    if (key == u"Enabled") {
        QCOMPARE(chameleon.Enabled(), expected.toBool());
    } else if (key == u"Interval") {
        QCOMPARE(chameleon.Interval(), expected.toInt());
    } else {
        QCOMPARE(chameleon.NewBackColor(), expected.toUInt());
    }
}

void TestChameleonThemes::applicationNameIsTheObjectName()
{
    Kelochameleon unnamed;
    QCOMPARE(unnamed.objectName(), QString());
    unnamed.setThemeName(QStringLiteral("Plain"));
    unnamed.setInterval(300);
    unnamed.SaveTheme();
    QCOMPARE(unnamed.settingsApplicationName(), QStringLiteral("Kelochameleon"));
    QVERIFY(QFileInfo::exists(iniPath(QStringLiteral("Kelochameleon"))));

    // Fetched afresh at each call: a renamed chameleon uses its new name.
    unnamed.setObjectName(QStringLiteral("frmMain_Chameleon"));
    QVERIFY(!unnamed.GetTheme());
    QCOMPARE(unnamed.settingsApplicationName(), QStringLiteral("frmMain_Chameleon"));
    unnamed.setObjectName(QString());
    QVERIFY(unnamed.GetTheme());
    QCOMPARE(unnamed.settingsApplicationName(), QStringLiteral("Kelochameleon"));

    // Chameleons with the same name share their themes, whatever their form.
    QWidget formA;
    QWidget formB;
    auto *a = new Kelochameleon(&formA);
    auto *b = new Kelochameleon(&formB);
    a->setObjectName(QStringLiteral("Kelochameleon1"));
    b->setObjectName(QStringLiteral("Kelochameleon1"));
    a->setThemeName(QStringLiteral("Shared"));
    b->setThemeName(QStringLiteral("Shared"));
    a->setColorStepRate(99);
    a->SaveTheme();
    QVERIFY(b->GetTheme());
    QCOMPARE(b->ColorStepRate(), 99);
    auto *c = new Kelochameleon(&formB);
    c->setObjectName(QStringLiteral("Kelochameleon2"));
    c->setThemeName(QStringLiteral("Shared"));
    QVERIFY(!c->GetTheme());
}

void TestChameleonThemes::twoProcessesShareOneStore()
{
    const auto run = [this](const QStringList &arguments, QByteArray *output) {
        QProcess helper;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_config->path());
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        helper.setProcessEnvironment(environment);
        helper.start(
            QCoreApplication::applicationFilePath(), QStringList{QStringLiteral("--theme-helper")} + arguments);
        if (!helper.waitForFinished(60000)) {
            return -1;
        }
        if (output) {
            *output = helper.readAllStandardOutput().trimmed();
        }
        return helper.exitStatus() == QProcess::NormalExit ? helper.exitCode() : -1;
    };

    Kelochameleon here;
    here.setObjectName(QStringLiteral("Kelochameleon1"));
    here.setThemeName(QStringLiteral("Dusk"));
    QVERIFY(!here.GetTheme());

    // The other process saves; this one sees it at once.
    QCOMPARE(
        run({QStringLiteral("save"), QStringLiteral("Kelochameleon1"), QStringLiteral("Dusk"), QStringLiteral("2200")},
            nullptr),
        0);
    QVERIFY(here.GetTheme());
    QCOMPARE(here.Interval(), 2200);
    QCOMPARE(here.BackgroundStyle(), keloBackgroundStyle::FixedColor);

    // Overwritten there with a value of the same length: no stale copy here.
    QCOMPARE(
        run({QStringLiteral("save"), QStringLiteral("Kelochameleon1"), QStringLiteral("Dusk"), QStringLiteral("3300")},
            nullptr),
        0);
    QVERIFY(here.GetTheme());
    QCOMPARE(here.Interval(), 3300);

    // And the other way round.
    here.setInterval(4400);
    here.SaveTheme();
    QByteArray printed;
    QCOMPARE(run({QStringLiteral("get"), QStringLiteral("Kelochameleon1"), QStringLiteral("Dusk")}, &printed), 0);
    QCOMPARE(printed, QByteArray("4400"));
    QCOMPARE(run({QStringLiteral("get"), QStringLiteral("Kelochameleon1"), QStringLiteral("Dawn")}, &printed), 1);
}

void TestChameleonThemes::showReadsTheThemeWhenUsedOrReportsItMissing()
{
    Kelochameleon writer;
    writer.setObjectName(QStringLiteral("Kelochameleon1"));
    writer.setThemeName(QStringLiteral("Teal"));
    writer.setBackgroundStyle(keloBackgroundStyle::FixedColor);
    writer.setNewBackColor(0x00808000u);
    writer.SaveTheme();

    QWidget form;
    form.resize(200, 150);
    auto *chameleon = new Kelochameleon(&form);
    chameleon->setObjectName(QStringLiteral("Kelochameleon1"));
    chameleon->setThemeName(QStringLiteral("Teal"));
    chameleon->setBackgroundStyle(keloBackgroundStyle::FixedColor);
    chameleon->setNewBackColor(0x000000FFu);
    chameleon->setThemeIsUsed(true);
    form.show();
    QCOMPARE(chameleon->NewBackColor(), 0x00808000u);
    QCOMPARE(form.palette().color(QPalette::Window), QColor(0x00, 0x80, 0x80));
    QVERIFY(chameleon->findChild<QTimer *>(QStringLiteral("Timer1"))->isActive());

    // The theme is read at every Show: a change in the store shows at Refresh.
    SaveSetting(QStringLiteral("Kelochameleon1"), QStringLiteral("Teal"), QStringLiteral("NewBackColor"),
        QStringLiteral("255"));
    chameleon->Refresh();
    QCOMPARE(form.palette().color(QPalette::Window), QColor(0xFF, 0x00, 0x00));

    // A theme that disables the chameleon leaves its timer off.
    SaveSetting(
        QStringLiteral("Kelochameleon1"), QStringLiteral("Teal"), QStringLiteral("Enabled"), QStringLiteral("False"));
    chameleon->Refresh();
    QVERIFY(!chameleon->Enabled());
    QVERIFY(!chameleon->findChild<QTimer *>(QStringLiteral("Timer1"))->isActive());

    // A theme that is not there: ThemeMissing at every Show, and the
    // chameleon goes on with its own values.
    QWidget lost;
    auto *stray = new Kelochameleon(&lost);
    stray->setObjectName(QStringLiteral("Kelochameleon1"));
    stray->setThemeName(QStringLiteral("Nowhere"));
    stray->setThemeIsUsed(true);
    stray->setBackgroundStyle(keloBackgroundStyle::FixedColor);
    stray->setNewBackColor(0x00336699u);
    QSignalSpy missing(stray, &Kelochameleon::ThemeMissing);
    lost.show();
    QCOMPARE(missing.count(), 1);
    QCOMPARE(lost.palette().color(QPalette::Window), QColor(0x99, 0x66, 0x33));
    QVERIFY(stray->findChild<QTimer *>(QStringLiteral("Timer1"))->isActive());
    stray->Refresh();
    QCOMPARE(missing.count(), 2);

    // Without ThemeIsUsed, or disabled, or in a designer, the store is not read.
    for (int variant = 0; variant < 3; ++variant) {
        QWidget other;
        Kelochameleon *c = nullptr;
        if (variant == 2) {
            ControlBase::DesignModeScope designer;
            c = new Kelochameleon(&other);
        } else {
            c = new Kelochameleon(&other);
        }
        c->setObjectName(QStringLiteral("Kelochameleon1"));
        c->setThemeName(QStringLiteral("Teal"));
        c->setThemeIsUsed(variant != 0);
        c->setEnabled(variant != 1);
        m_accesses.clear();
        other.show();
        c->Refresh();
        QVERIFY2(m_accesses.isEmpty(), qPrintable(QString::number(variant)));
    }
}

void TestChameleonThemes::storeErrorsReachTheCaller()
{
    QVERIFY(KeloTest::writeTextFile(
        iniPath(QStringLiteral("Kelochameleon1")), QStringLiteral("[Bad]\nThemeExists=True\nInterval=abc\n")));
    QWidget form;
    auto *chameleon = new Kelochameleon(&form);
    chameleon->setObjectName(QStringLiteral("Kelochameleon1"));
    chameleon->setThemeName(QStringLiteral("Bad"));
    chameleon->setThemeIsUsed(true);
    chameleon->setBackgroundStyle(keloBackgroundStyle::FixedColor);
    chameleon->setNewBackColor(0x00336699u);
    // Show cannot let it cross the event loop: it warns and styles nothing.
    QTest::ignoreMessage(QtWarningMsg, "Kelochameleon Kelochameleon1: Type mismatch");
    form.show();
    QVERIFY(!form.autoFillBackground());
    QCOMPARE(errorNumberOf([&] { chameleon->Refresh(); }), ErrorNumber::TypeMismatch);
    QCOMPARE(chameleon->Interval(), 1000);

    // A store that cannot be written.
    QVERIFY(QDir().mkpath(iniPath(QStringLiteral("Blocked"))));
    chameleon->setObjectName(QStringLiteral("Blocked"));
    QCOMPARE(errorNumberOf([&] { chameleon->SaveTheme(); }), ErrorNumber::PermissionDenied);
    QCOMPARE(errorNumberOf([&] { chameleon->GetTheme(); }), ErrorNumber::PermissionDenied);
}

int main(int argc, char **argv)
{
    if (argc > 1 && std::strcmp(argv[1], "--theme-helper") == 0) {
        return runHelper(argc, argv);
    }
    QApplication app(argc, argv);
    TestChameleonThemes test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_chameleonthemes.moc"
