#pragma once

// A .ui form file as the designer tests compare it with live widgets: the
// Kelocontrols widgets it holds and their property elements, and the same
// values read back from the widgets a loader built.

#include "KeloTestSupport.h"

#include <QFont>
#include <QMetaProperty>
#include <QRect>
#include <QStringList>
#include <QTest>
#include <QWidget>
#include <QXmlStreamReader>

namespace FormFile {

/// One <property> of a widget: its name, value element and text.
struct Property
{
    QString name;
    QString type;
    QString text;
};

/// One Kelocontrols widget of a form and its properties in file order.
struct Widget
{
    QString className;
    QString name;
    QList<Property> properties;
};

/// The value of a property element; a rect or font as "child=text,...".
inline QString readValue(QXmlStreamReader &xml, QString *type)
{
    xml.readNextStartElement();
    *type = xml.name().toString();
    if (*type == u"rect" || *type == u"font") {
        QStringList parts;
        while (xml.readNextStartElement()) {
            parts << xml.name().toString() + QLatin1Char('=') + xml.readElementText();
        }
        xml.skipCurrentElement(); // </property>
        return parts.join(QLatin1Char(','));
    }
    const QString text = xml.readElementText();
    xml.skipCurrentElement(); // </property>
    return text;
}

/// The Kelocontrols widgets of a form file's text (classes named Kelo...), in file order.
inline QList<Widget> parse(const QString &ui)
{
    QList<Widget> widgets;
    QXmlStreamReader xml(ui);
    bool inControl = false;
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement()) {
            continue;
        }
        if (xml.name() == u"widget") {
            const QString className = xml.attributes().value(QLatin1String("class")).toString();
            inControl = className.startsWith(QLatin1String("Kelo"));
            if (inControl) {
                widgets.append({className, xml.attributes().value(QLatin1String("name")).toString(), {}});
            }
        } else if (xml.name() == u"property" && inControl) {
            Property property;
            property.name = xml.attributes().value(QLatin1String("name")).toString();
            property.text = readValue(xml, &property.type);
            widgets.last().properties.append(property);
        }
    }
    return widgets;
}

/// A widget's current value in the form file's terms; an enumeration as
/// "scope::key", the spelling Qt Designer writes and uic compiles.
inline QString valueAsFormText(const QWidget *widget, const Property &property)
{
    if (property.name == u"geometry") {
        const QRect r = widget->geometry();
        return QStringLiteral("x=%1,y=%2,width=%3,height=%4").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height());
    }
    const QMetaProperty meta
        = widget->metaObject()->property(widget->metaObject()->indexOfProperty(property.name.toLatin1().constData()));
    const QVariant value = meta.read(widget);
    if (property.type == u"enum") {
        const QMetaEnum enumeration = meta.enumerator();
        return QString::fromLatin1(enumeration.scope()) + QStringLiteral("::")
            + QString::fromLatin1(enumeration.valueToKey(value.toInt()));
    }
    if (property.type == u"double") {
        return QString::number(value.toDouble(), 'f', 15);
    }
    if (property.type == u"font") {
        const QFont font = value.value<QFont>();
        QStringList parts{QStringLiteral("pointsize=%1").arg(font.pointSize())};
        if (font.bold()) {
            parts << QStringLiteral("bold=true");
        }
        if (font.italic()) {
            parts << QStringLiteral("italic=true");
        }
        return parts.join(QLatin1Char(','));
    }
    return value.toString();
}

/// "widget/property: form text != widget text" for every property of the
/// form's controls (their own, which start in upper case; QWidget's geometry
/// is the layout's business) that the widgets under `root` do not hold.
inline QStringList mismatches(const QWidget *root, const QList<Widget> &form)
{
    QStringList found;
    for (const Widget &w : form) {
        const auto *widget = root->findChild<const QWidget *>(w.name);
        if (!widget || QString::fromLatin1(widget->metaObject()->className()) != w.className) {
            found << w.name + QStringLiteral(": no ") + w.className;
            continue;
        }
        for (const Property &p : w.properties) {
            if (!p.name.at(0).isUpper()) {
                continue;
            }
            const QString actual = valueAsFormText(widget, p);
            if (actual != p.text) {
                found << w.name + QLatin1Char('/') + p.name + QStringLiteral(": ") + p.text + QStringLiteral(" != ")
                        + actual;
            }
        }
    }
    return found;
}

inline QString path(const QString &name)
{
    return QStringLiteral(KELO_FORMS_DIR "/") + name;
}

/// The widgets of the form file `name` under forms/.
inline QList<Widget> parseFile(const QString &name)
{
    return parse(KeloTest::readTextFile(path(name)));
}

} // namespace FormFile
