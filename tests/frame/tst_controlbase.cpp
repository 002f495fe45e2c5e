#include "ControlBase.h"
#include "OleColor.h"
#include "PropertyTable.h"
#include "RuntimeError.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

#include <memory>

#include "KeloTestSupport.h"

using namespace Kelocontrols;
using KeloTest::errorNumberOf;

namespace {

/**
 * A small control with the traits the real ones have: a clamping setter, a colour setter that raises, a property only
 * the running program may set, a font that defaults to its container's, and a save order that differs from the load
 * order.
 */
class TestControl : public ControlBase
{
    Q_OBJECT
    Q_PROPERTY(QString Caption READ Caption WRITE setCaption)
    Q_PROPERTY(int Count READ Count WRITE setCount)
    Q_PROPERTY(uint BackColor READ BackColor WRITE setBackColor)
    Q_PROPERTY(QFont Font READ Font WRITE setFont)
    Q_PROPERTY(QString RunTimeOnly READ RunTimeOnly WRITE setRunTimeOnly)

public:
    explicit TestControl(QWidget *parent = nullptr)
        : ControlBase(parent)
    {
        InitProperties();
    }

    const PropertyTableBase &propertyTable() const override
    {
        static const PropertyTable<TestControl> properties = [] {
            PropertyTable<TestControl> t;
            field(t, "Caption", QVariant(u"Control"_qs), &TestControl::m_caption);
            field(t, "Count", QVariant(3), &TestControl::m_count);
            field(t, "BackColor", QVariant(uint(0x8000000F)), &TestControl::m_backColor);
            field(t, "Font",
                PropertyTable<TestControl>::DefaultFn([](const TestControl &c) { return QVariant(c.ambientFont()); }),
                &TestControl::m_font);
            t.setWriteOrder({"BackColor", "Caption", "Font", "Count"});
            return t;
        }();
        return properties;
    }

    /// Adds the persisted property `name` kept in `member`; loading it stores the value as it is and logs the name.
    template<typename Default, typename T>
    static void field(
        PropertyTable<TestControl> &t, const char *name, const Default &defaultValue, T TestControl::*member)
    {
        const QString key = QString::fromLatin1(name);
        t.add(
            key, defaultValue, [member](const TestControl &c) { return QVariant::fromValue(c.*member); },
            [key, member](TestControl &c, const QVariant &v) {
                c.storeLog << key;
                c.*member = v.value<T>();
            });
    }

    QString Caption() const { return m_caption; }
    void setCaption(const QString &caption) { m_caption = caption; }
    int Count() const { return m_count; }
    void setCount(int count) { m_count = qBound(0, count, 10); }
    uint BackColor() const { return m_backColor; }
    void setBackColor(uint color)
    {
        try {
            OleTranslateColor(color);
        } catch (const RuntimeError &) {
            throw RuntimeError(ErrorNumber::InvalidPropertyValue);
        }
        m_backColor = color;
        propertyChanged("BackColor");
    }
    QFont Font() const { return m_font; }
    void setFont(const QFont &font) { m_font = font; }
    QString RunTimeOnly() const { return m_runTimeOnly; }
    void setRunTimeOnly(const QString &value)
    {
        requireRunMode();
        m_runTimeOnly = value;
        propertyChanged("RunTimeOnly");
    }

    QStringList storeLog;
    int loadedCalls = 0;
    int userModeChanges = 0;

protected:
    void propertiesLoaded() override { ++loadedCalls; }
    void userModeChanged() override { ++userModeChanges; }

private:
    QString m_caption;
    int m_count = 0;
    uint m_backColor = 0;
    QFont m_font;
    QString m_runTimeOnly;
};

const QStringList readOrder{u"Caption"_qs, u"Count"_qs, u"BackColor"_qs, u"Font"_qs};
const QStringList writeOrder{u"BackColor"_qs, u"Caption"_qs, u"Font"_qs, u"Count"_qs};

/// The persisted properties of `c` but the font as "Name=value" texts, for one comparison of them all.
QStringList persisted(const TestControl &c)
{
    return KeloTest::propertyTexts(&c, readOrder.mid(0, 3));
}

/// Those texts of a control straight after InitProperties (the font its container's).
const QStringList defaults{"Caption=Control", "Count=3", "BackColor=2147483663"};

QFont unusualFont()
{
    QFont font(u"DejaVu Serif"_qs, 13, QFont::Bold, true);
    font.setUnderline(true);
    return font;
}

// Gives every persisted property a value other than its default.
void changeEverything(TestControl &c)
{
    c.setCaption(u"Line \"one\"\r\nLine two"_qs);
    c.setCount(7);
    c.setBackColor(0x00336699);
    c.setFont(unusualFont());
}

/// What WriteProperties saves of `c`.
PropertyBag saved(const TestControl &c)
{
    PropertyBag bag;
    c.WriteProperties(bag);
    return bag;
}

} // namespace

class TestControlBase : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initPropertiesRestoresEveryDefaultInReadOrder()
    {
        TestControl c;
        QCOMPARE(c.storeLog, readOrder);
        QCOMPARE(c.loadedCalls, 1);
        QCOMPARE(persisted(c), defaults);
        QCOMPARE(c.Font(), QApplication::font());
        QVERIFY(c.UserMode());
        const PropertyTableBase &table = c.propertyTable();
        QCOMPARE(table.writeOrder(), writeOrder);
        QCOMPARE(table.defaultValue(c, u"BackColor"_qs), QVariant(uint(0x8000000F)));
        QVERIFY(!table.defaultValue(c, u"NoSuchProperty"_qs).isValid());

        changeEverything(c);
        c.storeLog.clear();
        c.InitProperties();
        QCOMPARE(c.storeLog, readOrder);
        QCOMPARE(c.loadedCalls, 2);
        QCOMPARE(persisted(c), defaults);
        QCOMPARE(c.Font(), QApplication::font());
        QVERIFY(saved(c).isEmpty());
    }

    void readPropertiesStoresInReadOrderWithoutValidation()
    {
        // Saved in an order of its own, with names in other cases, and values the setters would clamp or refuse.
        PropertyBag bag;
        bag.WriteProperty(u"backcolor"_qs, uint(0x000000FF));
        bag.WriteProperty(u"COUNT"_qs, 99);

        TestControl c;
        c.setCaption(u"changed before loading"_qs);
        c.storeLog.clear();
        c.ReadProperties(bag);
        QCOMPARE(c.storeLog, readOrder);
        QCOMPARE(c.loadedCalls, 2);
        // What the bag does not hold goes back to its default; the rest is saved as it was loaded.
        QCOMPARE(persisted(c), QStringList({"Caption=Control", "Count=99", "BackColor=255"}));
        QCOMPARE(c.Font(), QApplication::font());
        QCOMPARE(saved(c).names(), (QStringList{u"BackColor"_qs, u"Count"_qs}));
        QCOMPARE(saved(c).ReadProperty(u"Count"_qs), QVariant(99));
    }

    void writePropertiesUsesWriteOrderAndLeavesDefaultsOut()
    {
        TestControl original;
        changeEverything(original);
        PropertyBag bag = saved(original);
        QCOMPARE(bag.names(), writeOrder);
        QCOMPARE(bag.ReadProperty(u"Caption"_qs), QVariant(u"Line \"one\"\r\nLine two"_qs));
        QCOMPARE(bag.ReadProperty(u"Font"_qs).value<QFont>(), unusualFont());

        // Through the text form and back, an equal control that saves the same text.
        const QString text = bag.toText();
        TestControl loaded;
        loaded.ReadProperties(PropertyBag::fromText(text));
        QCOMPARE(persisted(loaded), persisted(original));
        QCOMPARE(loaded.Font(), unusualFont());
        QCOMPARE(saved(loaded).toText(), text);

        // Back at their defaults, properties drop out of a bag that held them.
        original.setCount(3);
        original.setCaption(u"Control"_qs);
        original.setFont(QApplication::font());
        original.WriteProperties(bag);
        QCOMPARE(bag.names(), QStringList{u"BackColor"_qs});
    }

    void fontDefaultFollowsTheContainer()
    {
        QWidget form;
        form.setFont(QFont(u"DejaVu Sans Mono"_qs, 15));
        TestControl placed(&form);
        QCOMPARE(placed.Font(), form.font());
        QVERIFY(!saved(placed).contains(u"Font"_qs));

        // The same font on a control without that container is a change worth saving.
        TestControl loose;
        QCOMPARE(loose.ambientFont(), QApplication::font());
        loose.setFont(form.font());
        QCOMPARE(saved(loose).ReadProperty(u"Font"_qs).value<QFont>(), form.font());

        // Loading without a saved font takes the container's font of the moment.
        form.setFont(QFont(u"DejaVu Serif"_qs, 8));
        placed.ReadProperties(PropertyBag());
        QCOMPARE(placed.Font(), form.font());
    }

    void lifeCycleWorksLateBound()
    {
        TestControl source;
        changeEverything(source);
        PropertyBag bag;
        QVERIFY(QMetaObject::invokeMethod(&source, "WriteProperties", Q_ARG(Kelocontrols::PropertyBag &, bag)));
        QCOMPARE(bag.names(), writeOrder);

        TestControl target;
        QObject *host = &target;
        QVERIFY(QMetaObject::invokeMethod(host, "ReadProperties", Q_ARG(Kelocontrols::PropertyBag, bag)));
        QCOMPARE(persisted(target), persisted(source));
        QCOMPARE(target.loadedCalls, 2);
        // A bag handed over inside a QVariant, as a generic host holds it.
        const QVariant wrapped = QVariant::fromValue(PropertyBag());
        QVERIFY(QMetaObject::invokeMethod(
            host, "ReadProperties", Q_ARG(Kelocontrols::PropertyBag, wrapped.value<Kelocontrols::PropertyBag>())));
        QCOMPARE(host->property("Count"), QVariant(3));
        QVERIFY(host->setProperty("Count", 5));
        QVERIFY(QMetaObject::invokeMethod(host, "InitProperties"));
        QCOMPARE(host->property("Count"), QVariant(3));

        QVERIFY(QMetaObject::invokeMethod(host, "setUserMode", Q_ARG(bool, false)));
        QCOMPARE(host->property("UserMode"), QVariant(false));
        QVERIFY(host->setProperty("UserMode", true));
        QVERIFY(target.UserMode());
    }

    void refusedWritesChangeNothing()
    {
        TestControl c;
        QObject *host = &c;
        QSignalSpy changed(&c, &ControlBase::PropertyChanged);
        QCOMPARE(
            errorNumberOf([&] { host->setProperty("BackColor", 0x80000099u); }), ErrorNumber::InvalidPropertyValue);
        QCOMPARE(c.BackColor(), 0x8000000Fu);
        QCOMPARE(errorNumberOf([&] { host->setProperty("BackColor", 0x80000005u); }), 0);
        QCOMPARE(c.BackColor(), 0x80000005u);

        // A write refused at design time raises 387 and changes nothing.
        c.setUserMode(false);
        QCOMPARE(errorNumberOf([&] { host->setProperty("RunTimeOnly", u"x"_qs); }), ErrorNumber::SetNotPermitted);
        QVERIFY(c.RunTimeOnly().isEmpty());
        c.setUserMode(true);
        QCOMPARE(errorNumberOf([&] { host->setProperty("RunTimeOnly", u"z"_qs); }), 0);
        QCOMPARE(c.RunTimeOnly(), u"z"_qs);
        QCOMPARE(KeloTest::firstArguments(changed), (QStringList{u"BackColor"_qs, u"RunTimeOnly"_qs}));
    }

    void designModeScopesNest()
    {
        QVERIFY(ControlBase::defaultUserMode());
        TestControl before;
        {
            ControlBase::DesignModeScope outer;
            TestControl inOuter;
            QVERIFY(!inOuter.UserMode());
            QCOMPARE(inOuter.userModeChanges, 0);
            {
                ControlBase::DesignModeScope inner;
                QVERIFY(!TestControl().UserMode());
            }
            // One scope is still open: still design mode.
            QVERIFY(!ControlBase::defaultUserMode());
            QVERIFY(!TestControl().UserMode());
        }
        QVERIFY(ControlBase::defaultUserMode());
        QVERIFY(TestControl().UserMode());
        // Controls keep the mode they were created in.
        QVERIFY(before.UserMode());
    }

    void userModeChangesAreReportedNeverSaved()
    {
        TestControl c;
        c.setUserMode(true);
        QCOMPARE(c.userModeChanges, 0);
        c.setUserMode(false);
        c.setUserMode(false);
        QCOMPARE(c.userModeChanges, 1);
        QVERIFY(c.setProperty("UserMode", true));
        QCOMPARE(c.userModeChanges, 2);

        // UserMode is the host's to tell, never saved with the control.
        c.setUserMode(false);
        QVERIFY(!saved(c).contains(u"UserMode"_qs));
        const QMetaProperty userMode = c.metaObject()->property(c.metaObject()->indexOfProperty("UserMode"));
        QVERIFY(!userMode.isStored());
        QVERIFY(!userMode.isDesignable());
    }
};

QTEST_MAIN(TestControlBase)
#include "tst_controlbase.moc"
