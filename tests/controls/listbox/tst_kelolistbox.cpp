#include "ListBoxModel_p.h"
#include <Kelocontrols/KelolistBox.h>
#include <Kelocontrols/PropertyBag.h>
#include <Kelocontrols/RuntimeError.h>

#include "KeloTestSupport.h"
#include "controls/ControlTestSupport.h"

#include <QLabel>
#include <QListView>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

using Kelocontrols::PropertyBag;
using KeloTest::errorNumberOf;
using KeloTest::listTexts;
using KeloTest::listValues;

namespace {

QListView *listOf(const KelolistBox &box)
{
    return box.findChild<QListView *>(QStringLiteral("listItems"));
}

QLabel *labelOf(const KelolistBox &box)
{
    return box.findChild<QLabel *>(QStringLiteral("labItem"));
}

// Apple 1, apple 2, Pear 3, Plum 3, Fig 0: duplicates of text and value.
void fillFruit(KelolistBox &box)
{
    box.AddItem(QStringLiteral("Apple"), 1);
    box.AddItem(QStringLiteral("apple"), 2);
    box.AddItem(QStringLiteral("Pear"), 3);
    box.AddItem(QStringLiteral("Plum"), 3);
    box.AddItem(QStringLiteral("Fig"), 0);
}

// A model of `rows` (text, value) under the header labels given (none: Qt's "1", "2").
void fillModel(QStandardItemModel &model, const QStringList &headers, const QList<QVariantList> &rows)
{
    model.setColumnCount(2);
    model.setRowCount(int(rows.size()));
    if (!headers.isEmpty()) {
        model.setHorizontalHeaderLabels(headers);
    }
    for (int row = 0; row < rows.size(); ++row) {
        model.setData(model.index(row, 0), rows.at(row).at(0));
        model.setData(model.index(row, 1), rows.at(row).at(1));
    }
}

PropertyBag bagOf(const QList<QPair<const char *, QVariant>> &values)
{
    PropertyBag bag;
    for (const auto &[name, value] : values) {
        bag.WriteProperty(QString::fromLatin1(name), value);
    }
    return bag;
}

} // namespace

class TestKelolistBox : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initialState()
    {
        QWidget form;
        QFont formFont(QStringLiteral("DejaVu Sans"), 13);
        form.setFont(formFont);
        KelolistBox box(&form);
        QCOMPARE(KeloTest::propertyTexts(&box,
                     {"BackColor", "ForeColor", "Enabled", "Locked", "LockedAlways", "DefaultValue", "DefaultText",
                         "Appearance", "ToolTipText", "ListCount", "Sorted", "Text", "Value"}),
            (QStringList{"BackColor=2147483653", "ForeColor=2147483656", "Enabled=true", "Locked=false",
                "LockedAlways=false", "DefaultValue=0", "DefaultText=", "Appearance=1", "ToolTipText=", "ListCount=0",
                "Sorted=false", "Text=", "Value=0"}));
        QCOMPARE(box.Font(), formFont);
        QVERIFY(listOf(box)->isVisibleTo(&box));
        QVERIFY(!labelOf(box)->isVisibleTo(&box));

        // The list and the label both fill the control.
        form.show();
        for (const QRect &geometry : {QRect(10, 20, 180, 90), QRect(10, 20, 60, 200)}) {
            box.setGeometry(geometry);
            QCOMPARE(listOf(box)->geometry(), QRect(QPoint(0, 0), geometry.size()));
            QCOMPARE(labelOf(box)->geometry(), QRect(QPoint(0, 0), geometry.size()));
        }

        // What a host reads from the class.
        const QMetaObject &meta = KelolistBox::staticMetaObject;
        const QList<QPair<const char *, const char *>> infos = {{"Interface", "_KelolistBox"},
            {"EventInterface", "__KelolistBox"},
            {"Help:DefaultValue",
                "The default value returned when a user has not selected anything.  Overridden if defaults specified "
                "in "
                "Populate method."},
            {"Help:DefaultText",
                "The default text returned when a user has not selected anything.  Overridden if defaults specified in "
                "Populate method."},
            {"Help:Clear", "Clears all items from the list."},
            {"Help:RemoveItem", "Removes the requested item from the list."},
            {"Help:Sorted", "Indicates whether the elements of a control are automatically sorted alphabetically."},
            {"Help:ToolTipText", "Returns/sets the text displayed when the mouse is paused over the control."},
            {"DispId:Click", "-600"}, {"DispId:DblClick", "-601"}, {"DispId:KeyDown", "-602"},
            {"DispId:KeyPress", "-603"}, {"DispId:KeyUp", "-604"}};
        for (const auto &[key, value] : infos) {
            QCOMPARE(KeloTest::classInfo(meta, key), QString::fromLatin1(value));
        }
        QVERIFY(!meta.property(meta.indexOfProperty("ListCount")).isWritable());
        QVERIFY(!meta.property(meta.indexOfProperty("Sorted")).isWritable());
    }
    void settersMarkChanged_data()
    {
        QTest::addColumn<QVariant>("value"); // the row's name is the property's
        QTest::newRow("BackColor") << QVariant(0xFFu);
        QTest::newRow("ForeColor") << QVariant(0x80000012u);
        QTest::newRow("Enabled") << QVariant(false);
        QTest::newRow("Font") << QVariant(QFont(QStringLiteral("DejaVu Serif"), 15));
        QTest::newRow("Text") << QVariant(QStringLiteral("PEAR")); // reads back as the entry's "Pear"
        QTest::newRow("Locked") << QVariant(true);
        QTest::newRow("Value") << QVariant(3);
        QTest::newRow("Appearance") << QVariant(0);
        QTest::newRow("LockedAlways") << QVariant(true);
        QTest::newRow("DefaultValue") << QVariant(-5);
        QTest::newRow("ToolTipText") << QVariant(QStringLiteral("Pick one"));
        QTest::newRow("DefaultText") << QVariant(QStringLiteral("(none)"));
    }
    // Late-bound writes store, read back and emit the exact name once.
    void settersMarkChanged()
    {
        QFETCH(QVariant, value);
        const QByteArray name = QTest::currentDataTag();
        KelolistBox box;
        fillFruit(box);
        QSignalSpy changes(&box, &KelolistBox::PropertyChanged);
        QVERIFY(box.setProperty(name, value));
        QCOMPARE(KeloTest::firstArguments(changes), QStringList{QString::fromLatin1(name)});
        QCOMPARE(box.property(name), name == "Text" ? QVariant(QStringLiteral("Pear")) : value);
    }
    void selection_data()
    {
        QTest::addColumn<int>("defaultValue");
        QTest::addColumn<QByteArray>("property");
        QTest::addColumn<QVariant>("argument");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("value");
        QTest::newRow("text: the first of equals, any case")
            << 0 << QByteArray("Text") << QVariant("APPLE") << "Apple" << 1;
        QTest::newRow("value: the first of equals") << 0 << QByteArray("Value") << QVariant(3) << "Pear" << 3;
        QTest::newRow("text of the second of equal values")
            << 0 << QByteArray("Text") << QVariant("plum") << "Plum" << 3;
        QTest::newRow("no prefix match: the default entry") << 0 << QByteArray("Text") << QVariant("Plu") << "Fig" << 0;
        QTest::newRow("value missing: the default entry") << 0 << QByteArray("Value") << QVariant(7) << "Fig" << 0;
        // Neither the text or value nor the default value is there: the selection stays.
        QTest::newRow("text and default missing") << 42 << QByteArray("Text") << QVariant("Seven") << "apple" << 2;
        QTest::newRow("value and default missing") << 42 << QByteArray("Value") << QVariant(7) << "apple" << 2;
    }
    // Text and Value select the matching entry; the label and the list's
    // current entry follow.
    void selection()
    {
        QFETCH(int, defaultValue);
        QFETCH(QByteArray, property);
        QFETCH(QVariant, argument);
        QFETCH(QString, text);
        KelolistBox box;
        fillFruit(box);
        box.setDefaultText(QStringLiteral("(nothing)"));
        box.setValue(2);
        box.setDefaultValue(defaultValue);
        QVERIFY(box.setProperty(property, argument));
        QCOMPARE(box.Text(), text);
        QTEST(box.Value(), "value");
        QCOMPARE(labelOf(box)->text(), text);
        QCOMPARE(listOf(box)->currentIndex().data().toString(), text);
    }
    void valueAtDesignTime()
    {
        KelolistBox box;
        fillFruit(box);
        box.setUserMode(false);
        QSignalSpy changes(&box, &KelolistBox::PropertyChanged);
        QSignalSpy clicks(&box, &KelolistBox::Click);
        QCOMPARE(errorNumberOf([&] { box.setValue(3); }), 387);
        QCOMPARE(errorNumberOf([&] { box.setProperty("Value", 3); }), 387);
        QCOMPARE(changes.count(), 0);
        QCOMPARE(clicks.count(), 0);
        QCOMPARE(box.Text(), QString());

        box.setText(QStringLiteral("pear")); // Text is allowed in the designer
        QCOMPARE(box.Value(), 3);
        box.setUserMode(true);
        box.setValue(1);
        QCOMPARE(box.Text(), QStringLiteral("Apple"));
    }
    // Text and Value set the label, then select (which clicks).
    void clickAndLabel()
    {
        KelolistBox box;
        QSignalSpy clicks(&box, &KelolistBox::Click);
        fillFruit(box);
        QCOMPARE(clicks.count(), 0); // AddItem never clicks
        QStringList labelAtClick;
        connect(&box, &KelolistBox::Click, this, [&] { labelAtClick << labelOf(box)->text(); });

        box.setValue(3);
        box.setText(QStringLiteral("fig"));
        QCOMPARE(labelAtClick, (QStringList{"Pear", "Fig"}));
        QCOMPARE(labelOf(box)->text(), QStringLiteral("Fig"));

        box.RemoveItem(0); // removes the selected Fig: no click, label unchanged
        QCOMPARE(box.Text(), QString());
        box.Clear();
        QCOMPARE(clicks.count(), 2);
        QCOMPARE(labelOf(box)->text(), QStringLiteral("Fig"));

        // Populate selects its default entry without a click; the label follows.
        QStandardItemModel model;
        fillModel(model, {"name", "id"}, {{"Red", 10}, {"Blue", 20}});
        QCOMPARE(
            box.Populate(&model, QStringLiteral("name"), QStringLiteral("id"), QStringLiteral("(any)"), 0), QString());
        QCOMPARE(clicks.count(), 2);
        QCOMPARE(labelOf(box)->text(), QStringLiteral("(any)"));
    }
    void userSelectionAndStockEvents()
    {
        KelolistBox box;
        fillFruit(box);
        box.resize(200, 150);
        box.show();
        QVERIFY(QTest::qWaitForWindowExposed(&box));
        QListView *list = listOf(box);
        QStringList events;
        QString labelAtClick;
        connect(&box, &KelolistBox::Click, this, [&] {
            events << QStringLiteral("Click");
            labelAtClick = labelOf(box)->text();
        });
        connect(&box, &KelolistBox::DblClick, this, [&] { events << QStringLiteral("DblClick"); });
        connect(&box, &KelolistBox::KeyDown, this,
            [&](short &code, short &shift) { events << QStringLiteral("KeyDown %1 %2").arg(code).arg(shift); });
        connect(&box, &KelolistBox::KeyPress, this, [&](short &ascii) {
            events << QStringLiteral("KeyPress %1").arg(ascii);
            ascii = 0; // swallowed: the list does not search for "a"
        });
        connect(&box, &KelolistBox::KeyUp, this,
            [&](short &code, short &shift) { events << QStringLiteral("KeyUp %1 %2").arg(code).arg(shift); });

        const QPoint pear = list->visualRect(list->model()->index(2, 0)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, pear);
        QCOMPARE(box.Text(), QStringLiteral("Pear"));
        QCOMPARE(labelOf(box)->text(), QStringLiteral("Pear"));
        QCOMPARE(events, QStringList{QStringLiteral("Click")});
        QCOMPARE(labelAtClick, QString()); // Click comes first, then the label follows

        events.clear();
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, pear);
        QVERIFY(events.contains(QStringLiteral("DblClick")));
        QVERIFY(!events.contains(QStringLiteral("Click"))); // the same entry: the selection did not change

        events.clear();
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Down);
        QCOMPARE(box.Text(), QStringLiteral("Plum"));
        QCOMPARE(events, (QStringList{"KeyDown 40 0", "Click", "KeyUp 40 0"}));

        events.clear();
        QTest::keyClick(list, Qt::Key_A, Qt::ShiftModifier);
        // The handler swallowed the "a": the list did not jump to Apple (no Click).
        QCOMPARE(events, (QStringList{"KeyDown 16 1", "KeyDown 65 1", "KeyPress 97", "KeyUp 65 1", "KeyUp 16 0"}));
        QCOMPARE(box.Text(), QStringLiteral("Plum"));
    }
    void lockDisplay_data()
    {
        QTest::addColumn<bool>("locked");
        QTest::addColumn<bool>("lockedAlways");
        QTest::newRow("open") << false << false;
        QTest::newRow("locked") << true << false;
        QTest::newRow("locked always") << false << true;
        QTest::newRow("both") << true << true;
    }
    // Either lock shows the label instead of the list.
    void lockDisplay()
    {
        QFETCH(bool, locked);
        QFETCH(bool, lockedAlways);
        KelolistBox box;
        fillFruit(box);
        box.setValue(3);
        box.setLocked(locked);
        box.setLockedAlways(lockedAlways);
        QCOMPARE(labelOf(box)->isVisibleTo(&box), locked || lockedAlways);
        QCOMPARE(listOf(box)->isVisibleTo(&box), !(locked || lockedAlways));
        QCOMPARE(labelOf(box)->text(), QStringLiteral("Pear"));

        // Order does not matter: LockedAlways wins over a later Locked = false.
        box.setLocked(false);
        QCOMPARE(labelOf(box)->isVisibleTo(&box), lockedAlways);
        box.setValue(1); // a locked list still selects
        QCOMPARE(labelOf(box)->text(), QStringLiteral("Apple"));
    }
    void addItemValues_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<int>("stored");
        QTest::newRow("int") << QVariant(-12) << -12;
        QTest::newRow("numeric text") << QVariant(QStringLiteral(" 17 ")) << 17;
        QTest::newRow("half to even down") << QVariant(2.5) << 2;
        QTest::newRow("half to even up") << QVariant(3.5) << 4;
        QTest::newRow("largest") << QVariant(2147483647LL) << 2147483647;
        QTest::newRow("overflow") << QVariant(2147483648LL) << 0;
        QTest::newRow("letters") << QVariant(QStringLiteral("abc")) << 0;
        QTest::newRow("nothing") << QVariant() << 0;
        QTest::newRow("true") << QVariant(true) << -1;
    }
    // AddItem never raises: a value that does not convert leaves the entry at 0.
    void addItemValues()
    {
        QFETCH(QVariant, value);
        KelolistBox box;
        box.AddItem(QStringLiteral("first"), 5);
        box.AddItem(QStringLiteral("entry"), value);
        QCOMPARE(listTexts(box), (QStringList{"first", "entry"}));
        QTEST(listValues(box).last(), "stored");
    }
    void removeItemByValue()
    {
        KelolistBox box;
        fillFruit(box);
        QVERIFY(!box.RemoveItem(99));
        QVERIFY(!box.RemoveItem(4)); // 4 is a position, never used as one
        QCOMPARE(box.ListCount(), 5);
        QVERIFY(box.RemoveItem(3));
        QCOMPARE(listTexts(box), (QStringList{"Apple", "apple", "Plum", "Fig"}));
        QVERIFY(box.RemoveItem(QStringLiteral("2")));
        QVERIFY(!box.RemoveItem(0.5));
        QVERIFY(box.RemoveItem(QVariant())); // nothing counts as 0
        QCOMPARE(listTexts(box), (QStringList{"Apple", "Plum"}));
        QCOMPARE(errorNumberOf([&] { box.RemoveItem(QStringLiteral("abc")); }), 13);
        QCOMPARE(box.ListCount(), 2);
    }
    void clearAndSorted()
    {
        KelolistBox box;
        box.setDefaultText(QStringLiteral("(none)"));
        box.setDefaultValue(42);
        fillFruit(box);
        box.setValue(3);
        QVERIFY(!box.Clear().isValid());
        QCOMPARE(box.ListCount(), 0);
        QCOMPARE(box.Text(), QStringLiteral("(none)"));
        QCOMPARE(box.Value(), 42);

        // Sorting is a setting of the list's model (whose order the model's own
        // test covers); the control reports it.
        auto *model = qobject_cast<Kelocontrols::ListBoxModel *>(listOf(box)->model());
        QVERIFY(model);
        model->setSorted(true);
        QVERIFY(box.Sorted());
        fillFruit(box);
        QCOMPARE(listTexts(box).first(), QStringLiteral("Apple"));
    }
    void appearanceAndColors()
    {
        KelolistBox box;
        box.setAppearance(0);
        QCOMPARE(listOf(box)->frameShape(), QFrame::Box);
        box.setAppearance(1);
        QCOMPARE(listOf(box)->frameShape(), QFrame::StyledPanel);
        QSignalSpy changes(&box, &KelolistBox::PropertyChanged);
        QCOMPARE(errorNumberOf([&] { box.setAppearance(2); }), 380);
        QCOMPARE(box.Appearance(), 1);
        QCOMPARE(changes.count(), 0);

        box.setBackColor(Kelocontrols::RGB(255, 0, 0));
        box.setForeColor(0x80000005);
        QCOMPARE(listOf(box)->palette().color(QPalette::Base), QColor(255, 0, 0));
        QCOMPARE(listOf(box)->palette().color(QPalette::Text), Kelocontrols::toQColor(0x80000005));
        box.setToolTipText(QStringLiteral("Countries"));
        QCOMPARE(listOf(box)->toolTip(), QStringLiteral("Countries"));
    }
    // The exact saving order; "Text" is the list's text with the default "listItems".
    void writeProperties()
    {
        KelolistBox box;
        PropertyBag bag;
        box.WriteProperties(bag);
        QCOMPARE(bag.names(), QStringList{QStringLiteral("Text")});
        QCOMPARE(bag.ReadProperty(QStringLiteral("Text")), QVariant(QString()));

        fillFruit(box);
        QVERIFY(KeloTest::setProperties(&box,
            {{"DefaultText", QStringLiteral("(none)")}, {"ToolTipText", QStringLiteral("tip")}, {"DefaultValue", 9},
                {"LockedAlways", true}, {"Appearance", 0}, {"Locked", true},
                {"Font", QFont(QStringLiteral("DejaVu Serif"), 17)}, {"Enabled", false}, {"ForeColor", 0xFF00u},
                {"BackColor", 0xFFu}, {"Value", 3}}));
        bag.clear();
        box.WriteProperties(bag);
        // The saved Value is the loaded one (still the default), not the selection.
        QCOMPARE(bag.names(),
            (QStringList{"BackColor", "ForeColor", "Enabled", "Font", "Text", "Locked", "Appearance", "LockedAlways",
                "DefaultValue", "ToolTipText", "DefaultText"}));
        QCOMPARE(bag.ReadProperty(QStringLiteral("Text")).toString(), QStringLiteral("Pear"));

        box.Clear();
        box.AddItem(QStringLiteral("listItems"), 1);
        box.setValue(1);
        bag.clear();
        box.WriteProperties(bag);
        QVERIFY(!bag.contains(QStringLiteral("Text"))); // equal to its default
    }
    void readProperties()
    {
        // Through text, as a form file holds it; 0x80000005 saved as a signed number.
        const PropertyBag loaded = PropertyBag::fromText(bagOf(
            {{"Text", "Pear"}, {"Value", "kept as it is"}, {"Locked", true}, {"DefaultValue", 3},
                {"DefaultText", "(none)"},
                {"BackColor", -2147483643}}).toText());
        KelolistBox box;
        fillFruit(box);
        QSignalSpy clicks(&box, &KelolistBox::Click);
        box.ReadProperties(loaded);
        QVERIFY(labelOf(box)->isVisibleTo(&box));
        QCOMPARE(KeloTest::propertyTexts(&box, {"Locked", "DefaultValue", "BackColor", "Text", "Value"}),
            (QStringList{"Locked=true", "DefaultValue=3", "BackColor=2147483653", "Text=(none)", "Value=3"}));
        QCOMPARE(clicks.count(), 0); // neither the saved Text nor the saved Value selects anything
        PropertyBag saved;
        box.WriteProperties(saved);
        QCOMPARE(saved.ReadProperty(QStringLiteral("Value")), QVariant(QStringLiteral("kept as it is")));

        QCOMPARE(errorNumberOf([&] { box.ReadProperties(bagOf({{"Appearance", 7}})); }), 380);
        QCOMPARE(errorNumberOf([&] { box.ReadProperties(bagOf({{"Locked", "maybe"}})); }), 13);
        // The lock shows once DefaultValue is in, before a bad DefaultText stops the load.
        KelolistBox fresh;
        QCOMPARE(errorNumberOf([&] {
            fresh.ReadProperties(bagOf({{"Locked", true}, {"DefaultText", QSize(1, 1)}}));
        }),
            13);
        QVERIFY(labelOf(fresh)->isVisibleTo(&fresh));
    }
    // InitProperties resets what the control owns, not what the list carries.
    void initProperties()
    {
        KelolistBox box;
        QVERIFY(KeloTest::setProperties(&box,
            {{"BackColor", 0xFFu}, {"Appearance", 0}, {"Locked", true}, {"LockedAlways", true}, {"DefaultValue", 4},
                {"DefaultText", QStringLiteral("x")}}));
        box.InitProperties();
        QCOMPARE(KeloTest::propertyTexts(
                     &box, {"Locked", "LockedAlways", "DefaultValue", "DefaultText", "BackColor", "Appearance"}),
            (QStringList{"Locked=false", "LockedAlways=false", "DefaultValue=0", "DefaultText=", "BackColor=255",
                "Appearance=0"}));
        QVERIFY(listOf(box)->isVisibleTo(&box));
    }
    void populateFromModel()
    {
        QStandardItemModel model;
        fillModel(model, {"Label", "Key"}, {{"One", 1}, {QVariant(), 2}, {"Three", "x"}});
        KelolistBox box;
        box.setDefaultValue(5);
        QCOMPARE(
            box.Populate(&model, QStringLiteral("label"), QStringLiteral("key"), QStringLiteral("(pick)")), QString());
        QCOMPARE(listTexts(box), (QStringList{"(pick)", "One", "Three"}));
        QCOMPARE(listValues(box), (QList<int>{5, 1, 0}));
        QCOMPARE(box.Text(), QStringLiteral("(pick)"));

        // A DefaultValue that does not convert keeps the property.
        QCOMPARE(box.Populate(&model, 0, 1, QStringLiteral("(pick)"), QStringLiteral("n/a")), QString());
        QCOMPARE(box.DefaultValue(), 5);
        QCOMPARE(listValues(box).first(), 5);

        // Failures return the reason and leave the list.
        const QString notFound
            = QStringLiteral("Item cannot be found in the collection corresponding to the requested name or ordinal.");
        QCOMPARE(box.Populate(static_cast<QAbstractItemModel *>(nullptr), 0, 1),
            QStringLiteral("Operation is not allowed when the object is closed."));
        QCOMPARE(box.Populate(&model, 1.5, 1), QStringLiteral("TextColumn=1.5 - ") + notFound);
        QCOMPARE(box.Populate(&model, 0, QStringLiteral("Value")), QStringLiteral("ValueColumn=Value - ") + notFound);
        QCOMPARE(listTexts(box), (QStringList{"(pick)", "One", "Three"}));

        // An empty model without header labels: its columns are named "1" and "2".
        QStandardItemModel empty;
        fillModel(empty, {}, {});
        QCOMPARE(
            box.Populate(&empty, QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("(empty)"), -2), QString());
        QCOMPARE(listTexts(box), QStringList{QStringLiteral("(empty)")});
        QCOMPARE(box.Value(), -2);
    }
    // A host calls every method by name (Populate with a query: see the database test).
    void lateBoundCalls()
    {
        KelolistBox box;
        QVERIFY(QMetaObject::invokeMethod(
            &box, "AddItem", Q_ARG(QString, QStringLiteral("Gamma")), Q_ARG(QVariant, QVariant(9))));
        QVERIFY(QMetaObject::invokeMethod(&box, "AddItem", Q_ARG(QString, QStringLiteral("Beta")), Q_ARG(QVariant, 8)));
        bool removed = false;
        QVERIFY(QMetaObject::invokeMethod(&box, "RemoveItem", Q_RETURN_ARG(bool, removed), Q_ARG(QVariant, 8)));
        QVERIFY(removed);
        QVERIFY(box.setProperty("Value", 9));
        QCOMPARE(KeloTest::propertyTexts(&box, {"Text", "ListCount"}), (QStringList{"Text=Gamma", "ListCount=1"}));
        QVariant cleared = QStringLiteral("unset");
        QVERIFY(QMetaObject::invokeMethod(&box, "Clear", Q_RETURN_ARG(QVariant, cleared)));
        QVERIFY(!cleared.isValid());
        QVERIFY(QMetaObject::invokeMethod(&box, "setUserMode", Q_ARG(bool, false)));
        QVERIFY(!box.UserMode());
    }
};

QTEST_MAIN(TestKelolistBox)
#include "tst_kelolistbox.moc"
