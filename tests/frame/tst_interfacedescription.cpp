#include "InterfaceDescription.h"
#include "KeloEnums.h"
#include "Kelochameleon.h"
#include "KelofileView.h"
#include "KelofolderView.h"
#include "KelolistBox.h"
#include "KeloscoreCard.h"

#include <QApplication>
#include <QFile>
#include <QMap>
#include <QMetaProperty>
#include <QPixmap>
#include <QRegularExpression>
#include <QTest>

#include <functional>
#include <map>
#include <memory>

using namespace Kelocontrols;

namespace {

/// The lines of one section ("Properties:", "Methods:" ...) up to the next blank line.
QStringList section(const QString &description, const QString &title)
{
    const QStringList lines = description.split(QLatin1Char('\n'));
    const qsizetype start = lines.indexOf(title);
    return start < 0 ? QStringList() : lines.mid(start + 1, lines.indexOf(QString(), start) - start - 1);
}

/// The member lines of a section, without the help lines under them.
QStringList members(const QStringList &lines)
{
    return lines.filter(QRegularExpression(u"^(?!      )"_qs));
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
    void describesTheScoreCard()
    {
        const KeloscoreCard card;
        const QString description = describeInterface(card);
        QCOMPARE(description.split(u'\n').mid(0, 5),
            QStringList({"KeloscoreCard", "  Interface: _KeloscoreCard", "  EventInterface: __KeloscoreCard",
                "  HelpFile: Kelocontrols.hlp", ""}));
        QVERIFY(!description.contains(QLatin1String("Help:")));
        QVERIFY(description.endsWith(QLatin1Char('\n')));

        // Every persisted property once, plus UserMode, and none of QWidget's own.
        const QStringList properties = section(description, u"Properties:"_qs);
        const QStringList saved = card.propertyTable().readOrder();
        QCOMPARE(saved.size(), 23);
        QCOMPARE(members(properties).size(), 24);
        for (const QString &name : saved) {
            QVERIFY2(!memberLine(properties, name).first.isEmpty(), qPrintable(name));
            QVERIFY2(!memberLine(properties, name).first.contains(QLatin1String("[not saved]")), qPrintable(name));
        }
        QCOMPARE(memberLine(properties, u"UserMode"_qs).first, u"  bool UserMode = true [not saved]"_qs);
        for (const char *qtProperty : {"objectName", "geometry", "enabled", "font", "toolTip", "visible"}) {
            QVERIFY2(memberLine(properties, QLatin1String(qtProperty)).first.isEmpty(), qtProperty);
        }

        const QStringList methods = section(description, u"Methods:"_qs);
        QCOMPARE(members(methods),
            QStringList({"  void InitProperties()", "  void ReadProperties(Kelocontrols::PropertyBag PropBag)",
                "  void WriteProperties(Kelocontrols::PropertyBag &PropBag)", "  void setUserMode(bool userMode)",
                "  void Refresh()"}));
        QCOMPARE(memberLine(methods, u"Refresh"_qs).second, u"Forces a complete repaint of a object."_qs);
        QCOMPARE(members(section(description, u"Events:"_qs)),
            QStringList({"  void PropertyChanged(QString name)", "  void Click() [DispId -600]",
                "  void DblClick() [DispId -601]", "  void KeyDown(short &KeyCode, short &Shift) [DispId -602]",
                "  void KeyPress(short &KeyAscii) [DispId -603]",
                "  void KeyUp(short &KeyCode, short &Shift) [DispId -604]",
                "  void MouseDown(short &Button, short &Shift, float &X, float &Y) [DispId -605]",
                "  void MouseMove(short &Button, short &Shift, float &X, float &Y) [DispId -606]",
                "  void MouseUp(short &Button, short &Shift, float &X, float &Y) [DispId -607]"}));

        // The enumerations the properties use, each with its members in order.
        const QStringList enums = section(description, u"Enumerations:"_qs);
        QCOMPARE(enums.filter(QRegularExpression(u"^  \\w"_qs)),
            QStringList({"  keloScoreCardStyle", "  keloShowValue", "  keloToolTipStyle", "  keloMarkerStyle",
                "  keloGaugeOrientation"}));
        const qsizetype style = enums.indexOf(u"  keloScoreCardStyle"_qs);
        QCOMPARE(enums.mid(style + 1, 11),
            QStringList({"    ScoreCardSmall = 0", "    ScoreCardLarge = 1", "    SmileySmall = 2",
                "    SmileyLarge = 3", "    TrafficLightSmall = 4", "    TrafficLightLarge = 5", "    FlashCard = 6",
                "    Gauge = 7", "    GaugeOverrun = 8", "    GaugeRainbow = 9", "  keloShowValue"}));
        QCOMPARE(enums.at(enums.indexOf(u"  keloToolTipStyle"_qs) + 4), u"    ShowBothAsTip = 3"_qs);
    }

    void propertyDefaults_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("help");

        // One line of each form (uint with its hex, enumerations with key and number, text quoted) and every help text;
        // the values themselves are the score card's defaults, checked with the control.
        auto row = [](const char *name, const char *line, const char *help = "") {
            QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(line) << QString::fromLatin1(help);
        };
        row("BackColor", "  uint BackColor = 2147483663 (0x8000000F)",
            "Returns/sets the background color used to display text and graphics in an object.");
        row("Enabled", "  bool Enabled = true");
        row("BorderStyle", "  int BorderStyle = 1", "Returns/sets the border style for an object.");
        row("Value", "  double Value = 0.5", "Value for the score");
        row("Style", "  Kelocontrols::keloScoreCardStyle Style = ScoreCardSmall (0)",
            "Style for the control, either an image or a gauge style type.");
        row("ScoreStar", "  double ScoreStar = 0.8", "Score above which the control shows star marks");
        row("ScoreBad", "  double ScoreBad = 0.2", "Score above which the control shows a bad mark");
        row("ScoreMin", "  double ScoreMin = 0", "Minimum score allowed");
        row("ScoreMax", "  double ScoreMax = 1", "Maximum score allowed");
        row("ShowTickLinesEvery", "  double ShowTickLinesEvery = 0",
            "Shows tick lines every interval on the control.  0 means no tick lines.");
        row("TickLineColor", "  uint TickLineColor = 0 (0x00000000)");
        row("ShowValue", "  Kelocontrols::keloShowValue ShowValue = None (0)",
            "Show the value on the control as text (eg 93%).");
        row("ToolTipStyle", "  Kelocontrols::keloToolTipStyle ToolTipStyle = ShowBothAsTip (3)",
            "The display style for the tooltip.");
        row("ToolTip", "  QString ToolTip = \"\"",
            "Returns/sets the text displayed when the mouse is paused over the control.  Overwrites ToolTipText, see "
            "ToolTipStyle.");
        row("GaugeOrientation", "  Kelocontrols::keloGaugeOrientation GaugeOrientation = Horizontal (0)",
            "Changes the gauge orientation from horizontal to vertical.");
    }

    void propertyDefaults()
    {
        QFETCH(QString, name);
        QFETCH(QString, line);
        QFETCH(QString, help);

        const KeloscoreCard card;
        const auto [declaration, helpLine] = memberLine(section(describeInterface(card), u"Properties:"_qs), name);
        QCOMPARE(declaration, line);
        if (!help.isEmpty()) {
            QCOMPARE(helpLine, help);
        }
    }

    // The default is the control's initial value whatever it holds now; the
    // font's default is the font of the control's container.
    void defaultsDoNotFollowCurrentValues()
    {
        QWidget form;
        QFont formFont(u"Serif"_qs);
        formFont.setPointSizeF(13.5);
        form.setFont(formFont);
        KeloscoreCard card(&form);
        const QString fresh = describeInterface(card);

        card.setValue(0.9);
        card.setStyle(keloScoreCardStyle::GaugeRainbow);
        card.setBackColor(0x00FF00);
        card.setToolTip(u"changed"_qs);
        card.setShowBlocks(12);
        QCOMPARE(describeInterface(card), fresh);

        const QString fontLine = memberLine(section(fresh, u"Properties:"_qs), u"Font"_qs).first;
        QCOMPARE(fontLine, u"  QFont Font = \"%1\", 13.5 pt"_qs.arg(form.font().family()));

        // UserMode is not saved, so it shows what the control holds.
        card.setUserMode(false);
        QCOMPARE(memberLine(section(describeInterface(card), u"Properties:"_qs), u"UserMode"_qs).first,
            u"  bool UserMode = false [not saved]"_qs);
    }

    void describesOtherObjects()
    {
        const InterfaceProbe probe;
        const QString description = describeInterface(probe);
        QVERIFY(description.startsWith(QLatin1String("InterfaceProbe\n  Interface: _InterfaceProbe\n\n")));
        QCOMPARE(section(description, u"Properties:"_qs), QStringList{u"  int Count = 4 [read-only]"_qs});
        QCOMPARE(section(description, u"Methods:"_qs),
            (QStringList{u"  int Cast(Kelocontrols::keloWandStyle Style, QString Name) [DispId 7]"_qs,
                u"      Casts a wand."_qs}));
        QCOMPARE(section(description, u"Events:"_qs), QStringList{u"  void Cancelled(int &Cancel)"_qs});
        const QStringList enums = section(description, u"Enumerations:"_qs);
        QCOMPARE(enums.value(0), u"  keloWandStyle"_qs);
        QCOMPARE(enums.size(), 7);

        // A plain Qt object: its own properties, no enumerations of the library.
        const QObject plain;
        const QString qtDescription = describeInterface(plain);
        QVERIFY(qtDescription.startsWith(QLatin1String("QObject\n")));
        QCOMPARE(section(qtDescription, u"Properties:"_qs), QStringList{u"  QString objectName = \"\""_qs});
        QVERIFY(!qtDescription.contains(QLatin1String("Enumerations:")));
    }

    void headersDocumentDefaults_data()
    {
        QTest::addColumn<QString>("header");
        QTest::newRow("KeloscoreCard") << QStringLiteral("controls/scorecard/KeloscoreCard.h");
        QTest::newRow("KelolistBox") << QStringLiteral("controls/listbox/KelolistBox.h");
        QTest::newRow("KelofileView") << QStringLiteral("controls/fileview/KelofileView.h");
        QTest::newRow("Kelochameleon") << QStringLiteral("controls/chameleon/Kelochameleon.h");
        QTest::newRow("KelofolderView") << QStringLiteral("controls/folderview/KelofolderView.h");
    }

    // The property table holds each default; the public header tells it to the
    // reader. Every saved property is documented there with the table's value.
    void headersDocumentDefaults()
    {
        QFETCH(QString, header);
        const std::map<QByteArray, std::function<ControlBase *()>> makers{
            {"KeloscoreCard", [] { return new KeloscoreCard; }}, {"KelolistBox", [] { return new KelolistBox; }},
            {"KelofileView", [] { return new KelofileView; }}, {"KelofolderView", [] { return new KelofolderView; }},
            {"Kelochameleon", [] { return new Kelochameleon; }}};
        const std::unique_ptr<ControlBase> control(makers.at(QTest::currentDataTag())());
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
};

QTEST_MAIN(tst_InterfaceDescription)
#include "tst_interfacedescription.moc"
