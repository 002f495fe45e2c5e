// Themes of the chameleon in a real settings file under a temporary
// XDG_CONFIG_HOME.

#include "ControlAccess_p.h"
#include "Kelochameleon.h"
#include "Random.h"
#include "RuntimeError.h"
#include "SettingsStore.h"
#include "WandPool_p.h"

#include "KeloTestSupport.h"

#include <QDir>
#include <QMetaProperty>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>
#include <optional>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;

namespace {

const QString App = QStringLiteral("Kelochameleon1");

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

// A chameleon named `name` (on `form` when given) using `theme`.
Kelochameleon *chameleonFor(const QString &theme, QWidget *form = nullptr, const QString &name = App)
{
    auto *chameleon = new Kelochameleon(form);
    chameleon->setObjectName(name);
    chameleon->setThemeName(theme);
    return chameleon;
}

// A chameleon configured away from every default.
void configure(Kelochameleon &chameleon)
{
    KeloTest::setProperties(&chameleon,
        {{"ColorMaximum", 200}, {"ColorMinimum", 20}, {"ColorStepRate", 7}, {"Interval", 1500}, {"BackgroundStyle", 3},
            {"WandStyle", 3}, {"NewBackColor", 0x8000000Fu}, {"Enabled", false}, {"FontStyle", 1},
            {"BackgroundPicture", QStringLiteral("/pics/sea side, blue.png")}, {"BackgroundPictureStyle", 8}});
}

} // namespace

class TestChameleonThemes : public QObject
{
    Q_OBJECT

private:
    QString iniPath(const QString &appName = App) const
    {
        return m_config->path() + QStringLiteral("/Kelocontrols/") + appName + QStringLiteral(".ini");
    }

    // The store's accesses for `keys` of one theme, as the access hook records them.
    static QStringList accesses(const char *kind, const QString &theme, const QStringList &keys)
    {
        QStringList expected;
        for (const QString &key : keys) {
            expected << QString::fromLatin1(kind) + QLatin1Char(' ') + App + QLatin1Char('/') + theme + QLatin1Char('/')
                    + key;
        }
        return expected;
    }

    std::unique_ptr<KeloTest::ScopedConfigHome> m_config;
    QStringList m_accesses;

private Q_SLOTS:
    void init()
    {
        resetRandomGenerator();
        m_config = std::make_unique<KeloTest::ScopedConfigHome>();
        QVERIFY(m_config->isValid());
        m_accesses.clear();
        setSettingsAccessHook(
            [this](SettingsAccess access, const QString &app, const QString &section, const QString &key) {
                m_accesses.append((access == SettingsAccess::Write ? QStringLiteral("W ") : QStringLiteral("R ")) + app
                    + QLatin1Char('/') + section + QLatin1Char('/') + key);
            });
    }

    void cleanup()
    {
        setSettingsAccessHook({});
        m_config.reset();
        WandPool::shared().reset();
    }

    void saveWritesEveryKeyAsTextAndGetReadsItBack()
    {
        QWidget form;
        Kelochameleon *chameleon = chameleonFor(QStringLiteral("Sea Side"), &form);
        configure(*chameleon);
        const QVariantMap before = snapshot(*chameleon);
        QSignalSpy changes(chameleon, &Kelochameleon::PropertyChanged);

        // Late-bound as a host calls it: SaveTheme returns an empty value.
        QVariant saved = QStringLiteral("not empty");
        QVERIFY(QMetaObject::invokeMethod(chameleon, "SaveTheme", Q_RETURN_ARG(QVariant, saved)));
        QVERIFY(!saved.isValid());
        QCOMPARE(m_accesses, accesses("W", QStringLiteral("Sea Side"), ThemeKeysInWriteOrder));
        QCOMPARE(KeloTest::readTextFile(iniPath()),
            QStringLiteral("[Sea%20Side]\nBackgroundPicture=\"/pics/sea side, blue.png\"\nBackgroundPictureStyle=8\n"
                           "BackgroundStyle=3\nColorMaximum=200\nColorMinimum=20\nColorStepRate=7\nEnabled=False\n"
                           "FontStyle=1\nInterval=1500\nNewBackColor=-2147483633\nThemeExists=True\nWandStyle=3\n"));
        QCOMPARE(changes.count(), 0);
        QCOMPARE(snapshot(*chameleon), before);
        QCOMPARE(chameleon->settingsApplicationName(), App);
        QVERIFY(!form.autoFillBackground()); // nothing is applied

        // Read back late-bound by another chameleon of the same name, found without
        // regard to case, in the read order, without PropertyChanged and without
        // applying anything.
        m_accesses.clear();
        QWidget other;
        Kelochameleon *target = chameleonFor(QStringLiteral("sea side"), &other);
        target->setThemeIsUsed(true);
        QSignalSpy targetChanges(target, &Kelochameleon::PropertyChanged);
        QSignalSpy missing(target, &Kelochameleon::ThemeMissing);
        bool found = false;
        QVERIFY(QMetaObject::invokeMethod(target, "GetTheme", Q_RETURN_ARG(bool, found)));
        QVERIFY(found);
        QCOMPARE(targetChanges.count() + missing.count(), 0);
        QCOMPARE(m_accesses, accesses("R", QStringLiteral("sea side"), ThemeKeysInReadOrder));
        // Every theme value as saved; the name, the flag and the font are not part of a theme.
        QVariantMap read = before;
        read.insert(QStringLiteral("ThemeName"), QStringLiteral("sea side"));
        read.insert(QStringLiteral("ThemeIsUsed"), true);
        QCOMPARE(snapshot(*target), read);
        QVERIFY(!other.autoFillBackground());
        QVERIFY(!target->findChild<QTimer *>(QStringLiteral("Timer1"))->isActive());

        // The defaults as texts.
        std::unique_ptr<Kelochameleon>(chameleonFor(QStringLiteral("Sea Side")))->SaveTheme();
        QVERIFY(KeloTest::readTextFile(iniPath()).contains(
            QLatin1String("\nEnabled=True\nFontStyle=0\nInterval=1000\nNewBackColor=0\n")));
    }

    void emptyThemeNameBecomesDefaultTheme()
    {
        std::unique_ptr<Kelochameleon> chameleon(chameleonFor(QString()));
        chameleon->setInterval(700);
        QSignalSpy changes(chameleon.get(), &Kelochameleon::PropertyChanged);
        chameleon->SaveTheme();
        QCOMPARE(chameleon->ThemeName(), QStringLiteral("DefaultTheme"));
        QCOMPARE(KeloTest::firstArguments(changes), QStringList{"ThemeName"});
        QVERIFY(KeloTest::readTextFile(iniPath()).startsWith(QStringLiteral("[DefaultTheme]\n")));

        std::unique_ptr<Kelochameleon> reader(chameleonFor(QString()));
        QSignalSpy readerChanges(reader.get(), &Kelochameleon::PropertyChanged);
        m_accesses.clear();
        QVERIFY(reader->GetTheme());
        QCOMPARE(reader->ThemeName(), QStringLiteral("DefaultTheme"));
        QCOMPARE(reader->Interval(), 700);
        QCOMPARE(KeloTest::firstArguments(readerChanges), QStringList{"ThemeName"});
        QCOMPARE(m_accesses.first(), QStringLiteral("R Kelochameleon1/DefaultTheme/ThemeExists"));

        // Missing as well: the name still changes.
        std::unique_ptr<Kelochameleon> stranger(chameleonFor(QString(), nullptr, QStringLiteral("Stranger")));
        QVERIFY(!stranger->GetTheme());
        QCOMPARE(stranger->ThemeName(), QStringLiteral("DefaultTheme"));
    }

    void missingThemeRaisesThemeMissingOnce()
    {
        // A file with other themes, and one section whose ThemeExists is not true.
        QVERIFY(KeloTest::writeTextFile(iniPath(),
            QStringLiteral("[Other]\nThemeExists=True\nInterval=300\n\n[Half]\nInterval=300\n\n"
                           "[Withdrawn]\nThemeExists=False\nInterval=300\n")));
        const QString fileBefore = KeloTest::readTextFile(iniPath());
        for (const QString &theme : {QStringLiteral("Nowhere"), QStringLiteral("Half"), QStringLiteral("Withdrawn")}) {
            std::unique_ptr<Kelochameleon> chameleon(chameleonFor(theme));
            configure(*chameleon);
            const QVariantMap before = snapshot(*chameleon);
            QSignalSpy missing(chameleon.get(), &Kelochameleon::ThemeMissing);
            QSignalSpy changes(chameleon.get(), &Kelochameleon::PropertyChanged);
            m_accesses.clear();
            QVERIFY(!chameleon->GetTheme());
            QCOMPARE(missing.count(), 1);
            QCOMPARE(changes.count(), 0);
            QCOMPARE(snapshot(*chameleon), before);
            QCOMPARE(m_accesses, accesses("R", theme, {QStringLiteral("ThemeExists")}));
        }
        QCOMPARE(KeloTest::readTextFile(iniPath()), fileBefore);
    }

    void handEditedBoundsStayUnclamped()
    {
        QVERIFY(KeloTest::writeTextFile(iniPath(),
            QStringLiteral("[Hand]\nThemeExists=True\nColorMinimum=200\nColorMaximum=100\nColorStepRate=300\n"
                           "Interval=-5\nBackgroundStyle=9\n")));
        std::unique_ptr<Kelochameleon> chameleon(chameleonFor(QStringLiteral("Hand")));
        configure(*chameleon);
        QVERIFY(chameleon->GetTheme());
        // Keys left out take the defaults, not the values the control had.
        QCOMPARE(KeloTest::propertyTexts(chameleon.get(),
                     {"ColorMinimum", "ColorMaximum", "ColorStepRate", "Interval", "BackgroundStyle", "NewBackColor",
                         "Enabled", "WandStyle", "FontStyle", "BackgroundPicture", "BackgroundPictureStyle"}),
            (QStringList{"ColorMinimum=200", "ColorMaximum=100", "ColorStepRate=300", "Interval=-5",
                "BackgroundStyle=9", "NewBackColor=0", "Enabled=true", "WandStyle=0", "FontStyle=0",
                "BackgroundPicture=", "BackgroundPictureStyle=0"}));
        // Saved again, the unclamped pair goes back as it is.
        chameleon->setThemeName(QStringLiteral("Copy"));
        chameleon->SaveTheme();
        QCOMPARE(GetSetting(App, QStringLiteral("Copy"), QStringLiteral("ColorMinimum")), QStringLiteral("200"));
        QCOMPARE(GetSetting(App, QStringLiteral("Copy"), QStringLiteral("ColorMaximum")), QStringLiteral("100"));
    }

    void badValueEndsTheReadWhereItStands_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("error");

        const auto row = [](const char *key, const char *text, int error) {
            QTest::addRow("%s %s", key, text) << QString::fromLatin1(key) << QString::fromLatin1(text) << error;
        };
        // One bad text early, in the middle and at the end of the read; the
        // conversions themselves are the classic ones, tested with them.
        row("ThemeExists", "maybe", ErrorNumber::TypeMismatch);
        row("Interval", "40000", ErrorNumber::Overflow);
        row("NewBackColor", "4294967296", ErrorNumber::Overflow);
        row("Enabled", "yes", ErrorNumber::TypeMismatch);
        row("ColorMinimum", "1,5.5", ErrorNumber::TypeMismatch);
        row("ColorStepRate", "abc", ErrorNumber::TypeMismatch);
    }

    // GetTheme stores each value as it reads it: the keys before a bad one hold
    // the theme's values, the bad one and those after it keep theirs.
    void badValueEndsTheReadWhereItStands()
    {
        QFETCH(QString, key);
        QFETCH(QString, text);
        QFETCH(int, error);

        // A theme of the defaults, but for the interval and the minimum, with one bad value.
        std::unique_ptr<Kelochameleon> writer(chameleonFor(QStringLiteral("Bad")));
        writer->setInterval(2500);
        writer->setColorMinimum(40);
        writer->SaveTheme();
        SaveSetting(App, QStringLiteral("Bad"), key, text);
        const QString fileBefore = KeloTest::readTextFile(iniPath());
        const QVariantMap theme = snapshot(*writer);

        std::unique_ptr<Kelochameleon> chameleon(chameleonFor(QStringLiteral("Bad")));
        configure(*chameleon);
        const QVariantMap before = snapshot(*chameleon);
        QSignalSpy changes(chameleon.get(), &Kelochameleon::PropertyChanged);
        QSignalSpy missing(chameleon.get(), &Kelochameleon::ThemeMissing);
        QCOMPARE(errorNumberOf([&] { chameleon->GetTheme(); }), error);
        const QVariantMap after = snapshot(*chameleon);
        const qsizetype bad = ThemeKeysInReadOrder.indexOf(key);
        for (const QString &name : ThemeKeysInReadOrder.mid(1)) {
            const bool read = ThemeKeysInReadOrder.indexOf(name) < bad;
            QVERIFY2(after.value(name) == (read ? theme : before).value(name), qPrintable(name));
        }
        QCOMPARE(changes.count() + missing.count(), 0);
        QCOMPARE(KeloTest::readTextFile(iniPath()), fileBefore);
        // The same error late-bound.
        QCOMPARE(errorNumberOf([&] { QMetaObject::invokeMethod(chameleon.get(), "GetTheme"); }), error);
    }

    void truthAndNumberTexts_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected"); // "" when the theme counts as missing

        const auto row = [](const char *key, const char *text, const char *expected) {
            QTest::addRow("%s '%s'", key, text)
                << QString::fromLatin1(key) << QString::fromLatin1(text) << QString::fromLatin1(expected);
        };
        // The texts of the store read with the classic conversions: True / False
        // in any case or a number for truth values, numbers with blanks and
        // exponents, halves to even, colours saved as signed 32-bit numbers.
        row("Enabled", "  TRUE ", "true");
        row("Enabled", "0.0", "false");
        row("ThemeExists", "0", "");
        row("ThemeExists", "-1", "true");
        row("Interval", "12.5", "12");
        row("NewBackColor", "-2147483633", "2147483663");
    }

    void truthAndNumberTexts()
    {
        QFETCH(QString, key);
        QFETCH(QString, text);
        QFETCH(QString, expected);

        std::unique_ptr<Kelochameleon>(chameleonFor(QStringLiteral("Texts")))->SaveTheme();
        SaveSetting(App, QStringLiteral("Texts"), key, text);
        std::unique_ptr<Kelochameleon> chameleon(chameleonFor(QStringLiteral("Texts")));
        chameleon->setInterval(4321);
        const bool found = chameleon->GetTheme();
        QCOMPARE(found, !expected.isEmpty());
        if (key == u"ThemeExists") {
            QCOMPARE(chameleon->Interval(), found ? 1000 : 4321);
        } else {
            QCOMPARE(KeloTest::propertyTexts(chameleon.get(), {key}), QStringList{key + QLatin1Char('=') + expected});
        }
    }

    void applicationNameIsTheObjectName()
    {
        std::unique_ptr<Kelochameleon> unnamed(chameleonFor(QStringLiteral("Plain"), nullptr, QString()));
        unnamed->setInterval(300);
        unnamed->SaveTheme();
        QCOMPARE(unnamed->settingsApplicationName(), QStringLiteral("Kelochameleon"));
        QVERIFY(QFileInfo::exists(iniPath(QStringLiteral("Kelochameleon"))));

        // Fetched afresh at each call: a renamed chameleon uses its new name
        // (chameleons of one name on other forms share their themes, see the first test).
        unnamed->setObjectName(QStringLiteral("frmMain_Chameleon"));
        QVERIFY(!unnamed->GetTheme());
        QCOMPARE(unnamed->settingsApplicationName(), QStringLiteral("frmMain_Chameleon"));
        unnamed->setObjectName(QString());
        QVERIFY(unnamed->GetTheme());
        QCOMPARE(unnamed->settingsApplicationName(), QStringLiteral("Kelochameleon"));
    }

    void showReadsTheThemeWhenUsedOrReportsItMissing()
    {
        std::unique_ptr<Kelochameleon> writer(chameleonFor(QStringLiteral("Teal")));
        writer->setBackgroundStyle(keloBackgroundStyle::FixedColor);
        writer->setNewBackColor(0x00808000u);
        writer->SaveTheme();

        // A used theme is read at every Show, before the chameleon styles the form.
        QWidget form;
        form.resize(200, 150);
        Kelochameleon *chameleon = chameleonFor(QStringLiteral("Teal"), &form);
        KeloTest::setProperties(
            chameleon, {{"BackgroundStyle", 2}, {"NewBackColor", 0x000000FFu}, {"ThemeIsUsed", true}});
        form.show();
        QCOMPARE(chameleon->NewBackColor(), 0x00808000u);
        QCOMPARE(form.palette().color(QPalette::Window), QColor(0x00, 0x80, 0x80));
        QVERIFY(chameleon->findChild<QTimer *>(QStringLiteral("Timer1"))->isActive());
        SaveSetting(App, QStringLiteral("Teal"), QStringLiteral("NewBackColor"), QStringLiteral("255"));
        chameleon->Refresh();
        QCOMPARE(form.palette().color(QPalette::Window), QColor(0xFF, 0x00, 0x00));
        // A theme that disables the chameleon leaves its timer off.
        SaveSetting(App, QStringLiteral("Teal"), QStringLiteral("Enabled"), QStringLiteral("False"));
        chameleon->Refresh();
        QVERIFY(!chameleon->Enabled());
        QVERIFY(!chameleon->findChild<QTimer *>(QStringLiteral("Timer1"))->isActive());

        // A theme that is not there: ThemeMissing at every Show, and the
        // chameleon goes on with its own values.
        QWidget lost;
        Kelochameleon *stray = chameleonFor(QStringLiteral("Nowhere"), &lost);
        KeloTest::setProperties(stray, {{"BackgroundStyle", 2}, {"NewBackColor", 0x00336699u}, {"ThemeIsUsed", true}});
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
            std::optional<ControlBase::DesignModeScope> designer;
            if (variant == 2) {
                designer.emplace();
            }
            Kelochameleon *c = chameleonFor(QStringLiteral("Teal"), &other);
            designer.reset();
            c->setThemeIsUsed(variant != 0);
            c->setEnabled(variant != 1);
            m_accesses.clear();
            other.show();
            c->Refresh();
            QVERIFY2(m_accesses.isEmpty(), qPrintable(QString::number(variant)));
        }
    }

    void storeErrorsReachTheCaller()
    {
        QVERIFY(KeloTest::writeTextFile(iniPath(), QStringLiteral("[Bad]\nThemeExists=True\nInterval=abc\n")));
        QWidget form;
        Kelochameleon *chameleon = chameleonFor(QStringLiteral("Bad"), &form);
        KeloTest::setProperties(
            chameleon, {{"ThemeIsUsed", true}, {"BackgroundStyle", 2}, {"NewBackColor", 0x00336699u}});
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
};

QTEST_MAIN(TestChameleonThemes)
#include "tst_chameleonthemes.moc"
