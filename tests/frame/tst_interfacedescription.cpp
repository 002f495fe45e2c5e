#include "InterfaceDescription.h"
#include "KeloEnums.h"
#include "Kelochameleon.h"
#include "KelofileView.h"
#include "KelolistBox.h"
#include "KeloscoreCard.h"

#include <QApplication>
#include <QFile>
#include <QMap>
#include <QMetaProperty>
#include <QPixmap>
#include <QRegularExpression>
#include <QTest>

#include <memory>

using namespace Kelocontrols;

namespace {

/// The lines of one section ("Properties:", "Methods:" ...) up to the next blank line.
QStringList section(const QString &description, const QString &title)
{
    const QStringList lines = description.split(QLatin1Char('\n'));
    const qsizetype start = lines.indexOf(title);
    if (start < 0) {
        return {};
    }
    QStringList result;
    for (qsizetype i = start + 1; i < lines.size() && !lines.at(i).isEmpty(); ++i) {
        result << lines.at(i);
    }
    return result;
}

/// The member lines of a section, without the help lines under them.
QStringList members(const QStringList &lines)
{
    QStringList result;
    for (const QString &line : lines) {
        if (!line.startsWith(QLatin1String("      "))) {
            result << line;
        }
    }
    return result;
}

/// The line of member `name` in a section and the help line under it (if any).
QPair<QString, QString> memberLine(const QStringList &lines, const QString &name)
{
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QString &line = lines.at(i);
        if (line.startsWith(QLatin1String("      "))) {
            continue;
        }
        const QString declaration = line.section(QLatin1String(" = "), 0, 0).section(QLatin1Char('('), 0, 0);
        if (declaration.endsWith(QLatin1Char(' ') + name)) {
            const QString next = lines.value(i + 1);
            return {line, next.startsWith(QLatin1String("      ")) ? next.trimmed() : QString()};
        }
    }
    return {};
}

/// The "Default:" text of each property documented in a public header: the
/// `///` comment right above its Q_PROPERTY (or KELO_CLASSIC_PROPERTY) line,
/// from "Default: " to the end of that line, without a closing "." or a
/// remark in brackets ("Default: 0x8000000F (button face)." gives "0x8000000F").
QMap<QString, QString> documentedDefaults(const QString &headerPath)
{
    QFile file(headerPath);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        return {};
    }
    static const QRegularExpression documented(
        QStringLiteral(
            R"(((?:^[ \t]*///[^\n]*\n)+)[ \t]*(?:Q_PROPERTY\(\s*[\w:]+\s+(\w+)\s+READ|KELO_CLASSIC_PROPERTY\((\w+)\)))"),
        QRegularExpression::MultilineOption);
    static const QRegularExpression defaultText(
        QStringLiteral(R"(Default: (.*?)(?: \([^()]*\))?\.?$)"), QRegularExpression::MultilineOption);
    const QString text = QString::fromUtf8(file.readAll());
    QMap<QString, QString> defaults;
    for (auto it = documented.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        const QString name = match.captured(2).isEmpty() ? match.captured(3) : match.captured(2);
        const QRegularExpressionMatch value = defaultText.match(match.captured(1));
        if (value.hasMatch()) {
            defaults.insert(name, value.captured(1));
        }
    }
    return defaults;
}

/// A default as its documentation writes it: colours in hex, enumerations by
/// member name, texts quoted, numbers in their shortest form, the ambient
/// font and an empty picture in words.
QString documentedForm(const QVariant &value, const QMetaProperty &property)
{
    if (property.isEnumType()) {
        return QString::fromLatin1(property.enumerator().valueToKey(value.toInt()));
    }
    switch (property.metaType().id()) {
    case QMetaType::UInt:
        return QStringLiteral("0x") + QString::number(value.toUInt(), 16).toUpper().rightJustified(8, QLatin1Char('0'));
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QMetaType::QString:
        return QLatin1Char('"') + value.toString() + QLatin1Char('"');
    case QMetaType::QFont:
        return QStringLiteral("the container's font");
    case QMetaType::QPixmap:
        return value.value<QPixmap>().isNull() ? QStringLiteral("none") : QStringLiteral("a picture");
    default:
        return QString::number(value.toDouble());
    }
}

} // namespace

/// A class outside the controls: no property table, a method taking one of
/// the library's enumerations, a read-only property and a private slot.
class InterfaceProbe : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("Interface", "_InterfaceProbe")
    Q_CLASSINFO("Help:Cast", "Casts a wand.")
    Q_CLASSINFO("DispId:Cast", "7")
    Q_PROPERTY(int Count READ Count)

public:
    int Count() const { return 4; }
    Q_INVOKABLE int Cast(Kelocontrols::keloWandStyle Style, const QString &Name) { return int(Style) + Name.size(); }

Q_SIGNALS:
    void Cancelled(int &Cancel);

private Q_SLOTS:
    void hidden() { }
};

class tst_InterfaceDescription : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void describesClass();
    void listsEverySavedProperty();
    void propertyDefaults_data();
    void propertyDefaults();
    void defaultsDoNotFollowCurrentValues();
    void listsMethodsAndEvents();
    void listsEnumerationsInUse();
    void describesOtherObjects();
    void headersDocumentDefaults_data();
    void headersDocumentDefaults();
};

void tst_InterfaceDescription::describesClass()
{
    const KeloscoreCard card;
    const QStringList lines = describeInterface(card).split(QLatin1Char('\n'));
    QCOMPARE(lines.mid(0, 5),
        (QStringList{QStringLiteral("KeloscoreCard"), QStringLiteral("  Interface: _KeloscoreCard"),
            QStringLiteral("  EventInterface: __KeloscoreCard"), QStringLiteral("  HelpFile: Kelocontrols.hlp"),
            QString()}));
    QVERIFY(!describeInterface(card).contains(QLatin1String("Help:")));
    QVERIFY(describeInterface(card).endsWith(QLatin1Char('\n')));
}

// Every persisted property once, plus UserMode, and none of QWidget's own.
void tst_InterfaceDescription::listsEverySavedProperty()
{
    const KeloscoreCard card;
    const QStringList properties = section(describeInterface(card), QStringLiteral("Properties:"));
    const QStringList saved = card.propertyTable().readOrder();
    QCOMPARE(saved.size(), 23);

    const QStringList lines = members(properties);
    QCOMPARE(lines.size(), 24);
    for (const QString &name : saved) {
        QVERIFY2(!memberLine(properties, name).first.isEmpty(), qPrintable(name));
        QVERIFY2(!memberLine(properties, name).first.contains(QLatin1String("[not saved]")), qPrintable(name));
    }
    QCOMPARE(
        memberLine(properties, QStringLiteral("UserMode")).first, QStringLiteral("  bool UserMode = true [not saved]"));
    for (const char *qtProperty : {"objectName", "geometry", "enabled", "font", "toolTip", "visible"}) {
        QVERIFY2(memberLine(properties, QLatin1String(qtProperty)).first.isEmpty(), qtProperty);
    }
}

void tst_InterfaceDescription::propertyDefaults_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("help");

    auto row = [](const char *name, const char *line, const char *help = "") {
        QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(line) << QString::fromLatin1(help);
    };
    row("BackColor", "  uint BackColor = 2147483663 (0x8000000F)",
        "Returns/sets the background color used to display text and graphics in an object.");
    row("ForeColor", "  uint ForeColor = 2147483666 (0x80000012)");
    row("Enabled", "  bool Enabled = true");
    row("BorderStyle", "  int BorderStyle = 1", "Returns/sets the border style for an object.");
    row("Value", "  double Value = 0.5", "Value for the score");
    row("Style", "  Kelocontrols::keloScoreCardStyle Style = ScoreCardSmall (0)",
        "Style for the control, either an image or a gauge style type.");
    row("ScoreStar", "  double ScoreStar = 0.8", "Score above which the control shows star marks");
    row("ScoreGood", "  double ScoreGood = 0.6");
    row("ScoreMaybe", "  double ScoreMaybe = 0.4");
    row("ScoreBad", "  double ScoreBad = 0.2", "Score above which the control shows a bad mark");
    row("ScoreMin", "  double ScoreMin = 0", "Minimum score allowed");
    row("ScoreMax", "  double ScoreMax = 1", "Maximum score allowed");
    row("ShowLimitLines", "  bool ShowLimitLines = false");
    row("ShowTickLinesEvery", "  double ShowTickLinesEvery = 0",
        "Shows tick lines every interval on the control.  0 means no tick lines.");
    row("TickLineColor", "  uint TickLineColor = 0 (0x00000000)");
    row("FontColor", "  uint FontColor = 0 (0x00000000)");
    row("ShowValue", "  Kelocontrols::keloShowValue ShowValue = None (0)",
        "Show the value on the control as text (eg 93%).");
    row("ToolTipStyle", "  Kelocontrols::keloToolTipStyle ToolTipStyle = ShowBothAsTip (3)",
        "The display style for the tooltip.");
    row("ToolTip", "  QString ToolTip = \"\"",
        "Returns/sets the text displayed when the mouse is paused over the control.  Overwrites ToolTipText, see "
        "ToolTipStyle.");
    row("ShowMarker", "  Kelocontrols::keloMarkerStyle ShowMarker = None (0)");
    row("ShowBlocks", "  int ShowBlocks = 0");
    row("GaugeOrientation", "  Kelocontrols::keloGaugeOrientation GaugeOrientation = Horizontal (0)",
        "Changes the gauge orientation from horizontal to vertical.");
}

void tst_InterfaceDescription::propertyDefaults()
{
    QFETCH(QString, name);
    QFETCH(QString, line);
    QFETCH(QString, help);

    const KeloscoreCard card;
    const auto [declaration, helpLine]
        = memberLine(section(describeInterface(card), QStringLiteral("Properties:")), name);
    QCOMPARE(declaration, line);
    if (!help.isEmpty()) {
        QCOMPARE(helpLine, help);
    }
}

// The default is the control's initial value whatever it holds now; the
// font's default is the font of the control's container.
void tst_InterfaceDescription::defaultsDoNotFollowCurrentValues()
{
    QWidget form;
    QFont formFont(QStringLiteral("Serif"));
    formFont.setPointSizeF(13.5);
    form.setFont(formFont);
    KeloscoreCard card(&form);
    const QString fresh = describeInterface(card);

    card.setValue(0.9);
    card.setStyle(keloScoreCardStyle::GaugeRainbow);
    card.setBackColor(0x00FF00);
    card.setToolTip(QStringLiteral("changed"));
    card.setShowBlocks(12);
    QCOMPARE(describeInterface(card), fresh);

    const QString fontLine = memberLine(section(fresh, QStringLiteral("Properties:")), QStringLiteral("Font")).first;
    QCOMPARE(fontLine, QStringLiteral("  QFont Font = \"%1\", 13.5 pt").arg(form.font().family()));

    // UserMode is not saved, so it shows what the control holds.
    card.setUserMode(false);
    QCOMPARE(
        memberLine(section(describeInterface(card), QStringLiteral("Properties:")), QStringLiteral("UserMode")).first,
        QStringLiteral("  bool UserMode = false [not saved]"));
}

void tst_InterfaceDescription::listsMethodsAndEvents()
{
    const KeloscoreCard card;
    const QString description = describeInterface(card);

    const QStringList methods = section(description, QStringLiteral("Methods:"));
    QCOMPARE(members(methods),
        (QStringList{QStringLiteral("  void InitProperties()"),
            QStringLiteral("  void ReadProperties(Kelocontrols::PropertyBag PropBag)"),
            QStringLiteral("  void WriteProperties(Kelocontrols::PropertyBag &PropBag)"),
            QStringLiteral("  void setUserMode(bool userMode)"), QStringLiteral("  void Refresh()")}));
    QCOMPARE(memberLine(methods, QStringLiteral("Refresh")).second,
        QStringLiteral("Forces a complete repaint of a object."));

    const QStringList events = section(description, QStringLiteral("Events:"));
    QCOMPARE(members(events),
        (QStringList{QStringLiteral("  void PropertyChanged(QString name)"),
            QStringLiteral("  void Click() [DispId -600]"), QStringLiteral("  void DblClick() [DispId -601]"),
            QStringLiteral("  void KeyDown(short &KeyCode, short &Shift) [DispId -602]"),
            QStringLiteral("  void KeyPress(short &KeyAscii) [DispId -603]"),
            QStringLiteral("  void KeyUp(short &KeyCode, short &Shift) [DispId -604]"),
            QStringLiteral("  void MouseDown(short &Button, short &Shift, float &X, float &Y) [DispId -605]"),
            QStringLiteral("  void MouseMove(short &Button, short &Shift, float &X, float &Y) [DispId -606]"),
            QStringLiteral("  void MouseUp(short &Button, short &Shift, float &X, float &Y) [DispId -607]")}));
}

void tst_InterfaceDescription::listsEnumerationsInUse()
{
    const KeloscoreCard card;
    const QStringList enums = section(describeInterface(card), QStringLiteral("Enumerations:"));
    QStringList names;
    for (const QString &line : enums) {
        if (!line.startsWith(QLatin1String("    "))) {
            names << line.trimmed();
        }
    }
    QCOMPARE(names,
        (QStringList{QStringLiteral("keloScoreCardStyle"), QStringLiteral("keloShowValue"),
            QStringLiteral("keloToolTipStyle"), QStringLiteral("keloMarkerStyle"),
            QStringLiteral("keloGaugeOrientation")}));

    const qsizetype style = enums.indexOf(QStringLiteral("  keloScoreCardStyle"));
    QCOMPARE(enums.mid(style + 1, 10),
        (QStringList{QStringLiteral("    ScoreCardSmall = 0"), QStringLiteral("    ScoreCardLarge = 1"),
            QStringLiteral("    SmileySmall = 2"), QStringLiteral("    SmileyLarge = 3"),
            QStringLiteral("    TrafficLightSmall = 4"), QStringLiteral("    TrafficLightLarge = 5"),
            QStringLiteral("    FlashCard = 6"), QStringLiteral("    Gauge = 7"),
            QStringLiteral("    GaugeOverrun = 8"), QStringLiteral("    GaugeRainbow = 9")}));
    QCOMPARE(enums.at(style + 11), QStringLiteral("  keloShowValue"));
    const qsizetype tips = enums.indexOf(QStringLiteral("  keloToolTipStyle"));
    QCOMPARE(enums.at(tips + 4), QStringLiteral("    ShowBothAsTip = 3"));
}

void tst_InterfaceDescription::describesOtherObjects()
{
    const InterfaceProbe probe;
    const QString description = describeInterface(probe);
    QVERIFY(description.startsWith(QLatin1String("InterfaceProbe\n  Interface: _InterfaceProbe\n\n")));
    QCOMPARE(section(description, QStringLiteral("Properties:")),
        QStringList{QStringLiteral("  int Count = 4 [read-only]")});
    QCOMPARE(section(description, QStringLiteral("Methods:")),
        (QStringList{QStringLiteral("  int Cast(Kelocontrols::keloWandStyle Style, QString Name) [DispId 7]"),
            QStringLiteral("      Casts a wand.")}));
    QCOMPARE(
        section(description, QStringLiteral("Events:")), QStringList{QStringLiteral("  void Cancelled(int &Cancel)")});
    const QStringList enums = section(description, QStringLiteral("Enumerations:"));
    QCOMPARE(enums.value(0), QStringLiteral("  keloWandStyle"));
    QCOMPARE(enums.size(), 7);

    // A plain Qt object: its own properties, no enumerations of the library.
    const QObject plain;
    const QString qtDescription = describeInterface(plain);
    QVERIFY(qtDescription.startsWith(QLatin1String("QObject\n")));
    QCOMPARE(section(qtDescription, QStringLiteral("Properties:")),
        QStringList{QStringLiteral("  QString objectName = \"\"")});
    QVERIFY(!qtDescription.contains(QLatin1String("Enumerations:")));
}

void tst_InterfaceDescription::headersDocumentDefaults_data()
{
    QTest::addColumn<QString>("header");
    QTest::newRow("KeloscoreCard") << QStringLiteral("controls/scorecard/KeloscoreCard.h");
    QTest::newRow("KelolistBox") << QStringLiteral("controls/listbox/KelolistBox.h");
    QTest::newRow("KelofileView") << QStringLiteral("controls/fileview/KelofileView.h");
    QTest::newRow("Kelochameleon") << QStringLiteral("controls/chameleon/Kelochameleon.h");
}

// The property table holds each default; the public header tells it to the
// reader. Every saved property is documented there with the table's value.
void tst_InterfaceDescription::headersDocumentDefaults()
{
    QFETCH(QString, header);
    const QByteArray className = QTest::currentDataTag();
    std::unique_ptr<Kelocontrols::ControlBase> control;
    if (className == "KeloscoreCard") {
        control = std::make_unique<KeloscoreCard>();
    } else if (className == "KelolistBox") {
        control = std::make_unique<KelolistBox>();
    } else if (className == "KelofileView") {
        control = std::make_unique<KelofileView>();
    } else {
        control = std::make_unique<Kelochameleon>();
    }
    const QMap<QString, QString> documented = documentedDefaults(QStringLiteral(KELO_SOURCE_DIR "/src/") + header);
    QVERIFY2(!documented.isEmpty(), qPrintable(header));

    const Kelocontrols::PropertyTableBase &table = control->propertyTable();
    const QMetaObject *meta = control->metaObject();
    for (const QString &name : table.writeOrder()) {
        const QMetaProperty property = meta->property(meta->indexOfProperty(name.toLatin1().constData()));
        QVERIFY2(property.isValid(), qPrintable(name));
        QVERIFY2(documented.contains(name), qPrintable(name + QStringLiteral(" has no \"Default:\" in ") + header));
        QCOMPARE(documented.value(name) + QStringLiteral("  <- ") + name,
            documentedForm(table.defaultValue(*control, name), property) + QStringLiteral("  <- ") + name);
    }
}

QTEST_MAIN(tst_InterfaceDescription)
#include "tst_interfacedescription.moc"
