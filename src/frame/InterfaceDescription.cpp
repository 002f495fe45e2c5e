#include "InterfaceDescription.h"

#include "ControlBase.h"
#include "KeloEnums.h"
#include "PropertyTable.h"

#include <QFont>
#include <QList>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QObject>
#include <QStringList>

#include <charconv>
#include <iterator>

namespace Kelocontrols {

namespace {

const QLatin1String helpPrefix("Help:");
const QLatin1String dispIdPrefix("DispId:");
const QLatin1String libraryNamespace("Kelocontrols::");
const QLatin1String indent("  ");
const QLatin1String helpIndent("      ");

/// The first meta-object of the chain that still belongs to the library:
/// everything above it (QWidget, QObject ...) is Qt's own.
const QMetaObject *libraryRoot(const QMetaObject *meta)
{
    while (meta->superClass() && !QByteArray(meta->superClass()->className()).startsWith('Q')) {
        meta = meta->superClass();
    }
    return meta;
}

/// The value of the class information entry `key`, searched from the most
/// derived class up (so a subclass overrides its base).
QString classInfo(const QMetaObject *meta, const QString &key)
{
    const int index = meta->indexOfClassInfo(key.toUtf8().constData());
    return index < 0 ? QString() : QString::fromUtf8(meta->classInfo(index).value());
}

QString memberSuffix(const QMetaObject *meta, const QString &member)
{
    const QString dispId = classInfo(meta, dispIdPrefix + member);
    return dispId.isEmpty() ? QString() : QStringLiteral(" [DispId ") + dispId + QLatin1Char(']');
}

void appendHelp(QStringList &lines, const QMetaObject *meta, const QString &member)
{
    const QString help = classInfo(meta, helpPrefix + member);
    if (!help.isEmpty()) {
        lines << helpIndent + help;
    }
}

/// The published enumeration that a type name refers to, or -1: a property
/// is typed with the value class's inner enumeration
/// ("Kelocontrols::keloShowValue::Value"), a parameter may use the class.
int libraryEnumerator(QByteArray typeName)
{
    if (typeName.endsWith('&')) {
        typeName.chop(1);
    }
    if (typeName.endsWith("::Value")) {
        typeName.chop(int(qstrlen("::Value")));
    }
    const QList<QMetaEnum> published = publishedEnumerations();
    for (int i = 0; i < published.size(); ++i) {
        if (typeName == published.at(i).scope()) {
            return i;
        }
    }
    return -1;
}

/// The name a user writes for a published enumeration ("keloShowValue").
QString enumerationName(const QMetaEnum &enumeration)
{
    return QString::fromLatin1(enumeration.scope()).mid(libraryNamespace.size());
}

/// The type as the public header spells it: an enumeration by its value class.
QString publicTypeName(const QByteArray &typeName)
{
    const int index = libraryEnumerator(typeName);
    return index < 0 ? QString::fromLatin1(typeName) : QString::fromLatin1(publishedEnumerations().at(index).scope());
}

void noteEnumeration(QList<int> &used, const QByteArray &typeName)
{
    const int index = libraryEnumerator(typeName);
    if (index >= 0 && !used.contains(index)) {
        used << index;
    }
}

/// A single-precision number as its shortest exact text (0.8f is "0.8",
/// not the 0.800000011920929 of its double expansion).
QString formatSingle(float number)
{
    char text[32];
    const auto result = std::to_chars(std::begin(text), std::end(text), number);
    return QString::fromLatin1(text, result.ptr - text);
}

QString formatValue(const QVariant &value, const QMetaProperty &property)
{
    if (!value.isValid()) {
        return QStringLiteral("(none)");
    }
    const int enumIndex = libraryEnumerator(property.typeName());
    if (enumIndex >= 0) {
        const QMetaEnum enumeration = publishedEnumerations().at(enumIndex);
        const int number = value.toInt();
        const char *key = enumeration.valueToKey(number);
        return QStringLiteral("%1 (%2)").arg(key ? QString::fromLatin1(key) : QStringLiteral("?")).arg(number);
    }
    if (value.metaType().id() == QMetaType::Float) {
        return formatSingle(value.toFloat());
    }
    switch (property.metaType().id()) {
    case QMetaType::UInt:
        return QStringLiteral("%1 (0x%2)")
            .arg(value.toUInt())
            .arg(QString::number(value.toUInt(), 16).toUpper().rightJustified(8, QLatin1Char('0')));
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QMetaType::QString:
        return QLatin1Char('"') + value.toString() + QLatin1Char('"');
    case QMetaType::QFont: {
        const QFont font = value.value<QFont>();
        return QStringLiteral("\"%1\", %2 pt").arg(font.family()).arg(font.pointSizeF());
    }
    default:
        return value.toString();
    }
}

QString parameterList(const QMetaMethod &method)
{
    const QList<QByteArray> types = method.parameterTypes();
    const QList<QByteArray> names = method.parameterNames();
    QStringList parameters;
    for (int i = 0; i < types.size(); ++i) {
        QString type = QString::fromLatin1(types.at(i));
        QString name = QString::fromLatin1(names.value(i));
        // "short&" reads as "short &KeyCode", the way the declaration is written.
        if (type.endsWith(QLatin1Char('&'))) {
            type.chop(1);
            name.prepend(QLatin1Char('&'));
        }
        parameters << (name.isEmpty() ? type : type + QLatin1Char(' ') + name);
    }
    return parameters.join(QStringLiteral(", "));
}

void describeClass(QStringList &lines, const QMetaObject *meta, const QMetaObject *root)
{
    lines << QString::fromLatin1(meta->className());
    for (int i = root->superClass() ? root->superClass()->classInfoCount() : 0; i < meta->classInfoCount(); ++i) {
        const QString name = QString::fromUtf8(meta->classInfo(i).name());
        if (!name.startsWith(helpPrefix) && !name.startsWith(dispIdPrefix)) {
            lines << indent + name + QStringLiteral(": ") + QString::fromUtf8(meta->classInfo(i).value());
        }
    }
}

void describeProperties(QStringList &lines, QList<int> &enums, const QObject &object, const QMetaObject *root)
{
    const QMetaObject *meta = object.metaObject();
    const auto *control = qobject_cast<const ControlBase *>(&object);
    const QStringList saved = control ? control->propertyTable().readOrder() : QStringList();
    lines << QString() << QStringLiteral("Properties:");
    for (int i = root->propertyOffset(); i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        const QString name = QString::fromLatin1(property.name());
        const bool isSaved = saved.contains(name);
        const QVariant value = isSaved ? control->propertyTable().defaultValue(object, name) : property.read(&object);
        QString line = indent + publicTypeName(property.typeName()) + QLatin1Char(' ') + name + QStringLiteral(" = ")
            + formatValue(value, property);
        if (control && !isSaved) {
            line += QStringLiteral(" [not saved]");
        }
        if (!property.isWritable()) {
            line += QStringLiteral(" [read-only]");
        }
        lines << line + memberSuffix(meta, name);
        appendHelp(lines, meta, name);
        noteEnumeration(enums, property.typeName());
    }
}

void describeMethods(
    QStringList &lines, QList<int> &enums, const QMetaObject *meta, const QMetaObject *root, bool signalsOnly)
{
    lines << QString() << (signalsOnly ? QStringLiteral("Events:") : QStringLiteral("Methods:"));
    for (int i = root->methodOffset(); i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        const bool isSignal = method.methodType() == QMetaMethod::Signal;
        if (isSignal != signalsOnly || method.access() != QMetaMethod::Public
            || method.methodType() == QMetaMethod::Constructor) {
            continue;
        }
        const QString name = QString::fromLatin1(method.name());
        lines << indent + QString::fromLatin1(method.typeName()) + QLatin1Char(' ') + name + QLatin1Char('(')
                + parameterList(method) + QLatin1Char(')') + memberSuffix(meta, name);
        appendHelp(lines, meta, name);
        for (const QByteArray &type : method.parameterTypes()) {
            noteEnumeration(enums, type);
        }
        noteEnumeration(enums, method.typeName());
    }
}

void describeEnumerations(QStringList &lines, const QList<int> &enums)
{
    if (enums.isEmpty()) {
        return;
    }
    lines << QString() << QStringLiteral("Enumerations:");
    for (int index : enums) {
        const QMetaEnum enumeration = publishedEnumerations().at(index);
        lines << indent + enumerationName(enumeration);
        for (int k = 0; k < enumeration.keyCount(); ++k) {
            lines << indent + indent + QString::fromLatin1(enumeration.key(k)) + QStringLiteral(" = ")
                    + QString::number(enumeration.value(k));
        }
    }
}

} // namespace

QString describeInterface(const QObject &control)
{
    const QMetaObject *meta = control.metaObject();
    const QMetaObject *root = libraryRoot(meta);
    QStringList lines;
    QList<int> enums;
    describeClass(lines, meta, root);
    describeProperties(lines, enums, control, root);
    describeMethods(lines, enums, meta, root, false);
    describeMethods(lines, enums, meta, root, true);
    describeEnumerations(lines, enums);
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

} // namespace Kelocontrols
