#include "PropertyBag.h"

#include "RuntimeError.h"

#include <QBuffer>
#include <QColor>
#include <QDateTime>
#include <QFont>
#include <QImage>
#include <QPixmap>
#include <QRegularExpression>

#include <charconv>

namespace Kelocontrols {

namespace {

bool isIntegral(const QVariant &v)
{
    switch (v.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
        return true;
    default:
        return v.metaType().flags().testFlag(QMetaType::IsEnumeration);
    }
}

bool isNumeric(const QVariant &v)
{
    return isIntegral(v) || v.typeId() == QMetaType::Float || v.typeId() == QMetaType::Double;
}

// ---- writing ----------------------------------------------------------

QString quoted(const QString &text)
{
    QString out;
    out.reserve(text.size() + 2);
    out += QLatin1Char('"');
    for (const QChar c : text) {
        switch (c.unicode()) {
        case '\\':
            out += QLatin1String("\\\\");
            break;
        case '"':
            out += QLatin1String("\\\"");
            break;
        case '\r':
            out += QLatin1String("\\r");
            break;
        case '\n':
            out += QLatin1String("\\n");
            break;
        case '\t':
            out += QLatin1String("\\t");
            break;
        default:
            if (c.unicode() < 0x20 || c.unicode() == 0x7f) {
                out += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
            } else {
                out += c;
            }
        }
    }
    out += QLatin1Char('"');
    return out;
}

QByteArray pngOf(const QImage &image)
{
    if (image.isNull()) {
        return {};
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes.toBase64();
}

QString encodeValue(const QVariant &value)
{
    if (value.metaType().flags().testFlag(QMetaType::IsEnumeration)) {
        return QStringLiteral("int:") + QString::number(value.toLongLong());
    }
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        return QStringLiteral("empty:");
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("bool:True") : QStringLiteral("bool:False");
    case QMetaType::Int:
    case QMetaType::Short:
        return QStringLiteral("int:") + QString::number(value.toInt());
    case QMetaType::UInt:
    case QMetaType::UShort:
        return QStringLiteral("uint:") + QString::number(value.toUInt());
    case QMetaType::LongLong:
        return QStringLiteral("long:") + QString::number(value.toLongLong());
    case QMetaType::ULongLong:
        return QStringLiteral("ulong:") + QString::number(value.toULongLong());
    case QMetaType::Float:
        return QStringLiteral("float:") + QString::number(value.toFloat(), 'g', 9);
    case QMetaType::Double:
        return QStringLiteral("double:") + QString::number(value.toDouble(), 'g', 17);
    case QMetaType::QString:
        return QStringLiteral("string:") + quoted(value.toString());
    case QMetaType::QStringList: {
        QStringList items;
        for (const QString &s : value.toStringList()) {
            items << quoted(s);
        }
        return QStringLiteral("stringlist:[") + items.join(QLatin1Char(',')) + QLatin1Char(']');
    }
    case QMetaType::QByteArray:
        return QStringLiteral("bytes:") + QString::fromLatin1(value.toByteArray().toBase64());
    case QMetaType::QFont:
        return QStringLiteral("font:") + quoted(value.value<QFont>().toString());
    case QMetaType::QColor: {
        const QColor c = value.value<QColor>();
        return QStringLiteral("color:") + (c.isValid() ? c.name(QColor::HexArgb) : QString());
    }
    case QMetaType::QPixmap:
        return QStringLiteral("pixmap:") + QString::fromLatin1(pngOf(value.value<QPixmap>().toImage()));
    case QMetaType::QImage:
        return QStringLiteral("image:") + QString::fromLatin1(pngOf(value.value<QImage>()));
    case QMetaType::QDateTime:
        return QStringLiteral("datetime:") + value.toDateTime().toString(Qt::ISODateWithMs);
    case QMetaType::QDate:
        return QStringLiteral("date:") + value.toDate().toString(Qt::ISODate);
    default:
        throw RuntimeError(ErrorNumber::TypeMismatch,
            QStringLiteral("A property bag cannot store values of type %1")
                .arg(QString::fromLatin1(value.metaType().name())));
    }
}

// ---- reading ----------------------------------------------------------

// The float a text names, rounded correctly: the nine digits written for the
// largest floats lie a little beyond FLT_MAX as a double, which
// QString::toFloat() takes for an overflow.
float floatOf(const QString &text, bool *ok)
{
    const QByteArray latin = text.toLatin1();
    float value = 0;
    const auto [end, error] = std::from_chars(latin.constBegin(), latin.constEnd(), value);
    *ok = error == std::errc() && end == latin.constEnd();
    return value;
}

class LineParser
{
public:
    LineParser(const QString &line, int lineNumber)
        : m_line(line)
        , m_lineNumber(lineNumber)
    {
    }

    [[noreturn]] void fail(const QString &why) const
    {
        throw RuntimeError(ErrorNumber::InvalidFileFormat,
            QStringLiteral("Invalid file format: line %1: %2").arg(m_lineNumber).arg(why));
    }

    QPair<QString, QVariant> parse()
    {
        static const QRegularExpression head(QStringLiteral("^\\s*([A-Za-z_][A-Za-z0-9_]*)\\s*=\\s*([a-z]+):"));
        const auto match = head.match(m_line);
        if (!match.hasMatch()) {
            fail(QStringLiteral("expected 'Name = type:value'"));
        }
        const QString name = match.captured(1);
        const QString type = match.captured(2);
        m_pos = match.capturedEnd(0);
        QVariant value = parseValue(type);
        skipSpaces();
        if (m_pos != m_line.size()) {
            fail(QStringLiteral("unexpected text after the value of %1").arg(name));
        }
        return {name, value};
    }

private:
    QString rest() const { return m_line.mid(m_pos).trimmed(); }
    void consumeRest() { m_pos = m_line.size(); }
    void skipSpaces()
    {
        while (m_pos < m_line.size() && m_line.at(m_pos).isSpace()) {
            ++m_pos;
        }
    }

    template<typename T, typename Convert>
    QVariant number(Convert convert, const char *typeName)
    {
        bool ok = false;
        const T v = convert(rest(), &ok);
        if (!ok) {
            fail(QStringLiteral("'%1' is not a valid %2").arg(rest(), QLatin1String(typeName)));
        }
        consumeRest();
        return QVariant::fromValue(v);
    }

    QString parseQuoted()
    {
        skipSpaces();
        if (m_pos >= m_line.size() || m_line.at(m_pos) != QLatin1Char('"')) {
            fail(QStringLiteral("expected a quoted text"));
        }
        ++m_pos;
        QString out;
        while (m_pos < m_line.size()) {
            const QChar c = m_line.at(m_pos++);
            if (c == QLatin1Char('"')) {
                return out;
            }
            if (c != QLatin1Char('\\')) {
                out += c;
                continue;
            }
            if (m_pos >= m_line.size()) {
                break;
            }
            out += unescape(m_line.at(m_pos++));
        }
        fail(QStringLiteral("unterminated quoted text"));
    }

    QChar unescape(QChar code)
    {
        switch (code.unicode()) {
        case '\\':
            return QLatin1Char('\\');
        case '"':
            return QLatin1Char('"');
        case 'r':
            return QLatin1Char('\r');
        case 'n':
            return QLatin1Char('\n');
        case 't':
            return QLatin1Char('\t');
        case 'u': {
            bool ok = false;
            const ushort u = m_line.mid(m_pos, 4).toUShort(&ok, 16);
            if (!ok || m_line.mid(m_pos, 4).size() != 4) {
                fail(QStringLiteral("bad \\u escape"));
            }
            m_pos += 4;
            return QChar(u);
        }
        default:
            fail(QStringLiteral("unknown escape \\%1").arg(code));
        }
    }

    QByteArray base64(const char *what)
    {
        const QByteArray text = rest().toLatin1();
        consumeRest();
        const auto decoded = QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
        if (!decoded) {
            fail(QStringLiteral("bad base64 data for a %1").arg(QLatin1String(what)));
        }
        return *decoded;
    }

    QImage image()
    {
        const QByteArray png = base64("picture");
        if (png.isEmpty()) {
            return {};
        }
        QImage img;
        if (!img.loadFromData(png, "PNG")) {
            fail(QStringLiteral("the picture data is not a PNG image"));
        }
        return img;
    }

    QVariant parseValue(const QString &type)
    {
        if (type == QLatin1String("empty")) {
            if (!rest().isEmpty()) {
                fail(QStringLiteral("an empty value takes no text"));
            }
            return {};
        }
        if (type == QLatin1String("bool")) {
            const QString v = rest();
            consumeRest();
            if (v == QLatin1String("True")) {
                return true;
            }
            if (v == QLatin1String("False")) {
                return false;
            }
            fail(QStringLiteral("'%1' is not True or False").arg(v));
        }
        if (type == QLatin1String("int")) {
            return number<int>([](const QString &s, bool *ok) { return s.toInt(ok); }, "int");
        }
        if (type == QLatin1String("uint")) {
            return number<uint>([](const QString &s, bool *ok) { return s.toUInt(ok); }, "uint");
        }
        if (type == QLatin1String("long")) {
            return number<qlonglong>([](const QString &s, bool *ok) { return s.toLongLong(ok); }, "long");
        }
        if (type == QLatin1String("ulong")) {
            return number<qulonglong>([](const QString &s, bool *ok) { return s.toULongLong(ok); }, "ulong");
        }
        if (type == QLatin1String("float")) {
            return number<float>(floatOf, "float");
        }
        if (type == QLatin1String("double")) {
            return number<double>([](const QString &s, bool *ok) { return s.toDouble(ok); }, "double");
        }
        if (type == QLatin1String("string")) {
            return parseQuoted();
        }
        if (type == QLatin1String("stringlist")) {
            return parseStringList();
        }
        if (type == QLatin1String("bytes")) {
            return base64("byte array");
        }
        if (type == QLatin1String("font")) {
            QFont font;
            if (!font.fromString(parseQuoted())) {
                fail(QStringLiteral("not a font description"));
            }
            return font;
        }
        if (type == QLatin1String("color")) {
            const QString v = rest();
            consumeRest();
            if (v.isEmpty()) {
                return QColor();
            }
            const QColor c = QColor::fromString(v);
            if (!c.isValid()) {
                fail(QStringLiteral("'%1' is not a colour").arg(v));
            }
            return c;
        }
        if (type == QLatin1String("pixmap")) {
            return QPixmap::fromImage(image());
        }
        if (type == QLatin1String("image")) {
            return image();
        }
        if (type == QLatin1String("datetime")) {
            if (rest().isEmpty()) {
                return QDateTime(); // a null date-time is written as nothing
            }
            const QDateTime dt = QDateTime::fromString(rest(), Qt::ISODateWithMs);
            if (!dt.isValid()) {
                fail(QStringLiteral("'%1' is not a date and time").arg(rest()));
            }
            consumeRest();
            return dt;
        }
        if (type == QLatin1String("date")) {
            if (rest().isEmpty()) {
                return QDate(); // a null date is written as nothing
            }
            const QDate d = QDate::fromString(rest(), Qt::ISODate);
            if (!d.isValid()) {
                fail(QStringLiteral("'%1' is not a date").arg(rest()));
            }
            consumeRest();
            return d;
        }
        fail(QStringLiteral("unknown value type '%1'").arg(type));
    }

    QStringList parseStringList()
    {
        skipSpaces();
        if (m_pos >= m_line.size() || m_line.at(m_pos) != QLatin1Char('[')) {
            fail(QStringLiteral("expected '['"));
        }
        ++m_pos;
        QStringList list;
        skipSpaces();
        if (m_pos < m_line.size() && m_line.at(m_pos) == QLatin1Char(']')) {
            ++m_pos;
            return list;
        }
        for (;;) {
            list << parseQuoted();
            skipSpaces();
            if (m_pos >= m_line.size()) {
                fail(QStringLiteral("unterminated list"));
            }
            const QChar c = m_line.at(m_pos++);
            if (c == QLatin1Char(']')) {
                return list;
            }
            if (c != QLatin1Char(',')) {
                fail(QStringLiteral("expected ',' or ']'"));
            }
        }
    }

    QString m_line;
    int m_lineNumber;
    qsizetype m_pos = 0;
};

} // namespace

qsizetype PropertyBag::indexOf(const QString &name) const
{
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        if (m_entries.at(i).first.compare(name, Qt::CaseInsensitive) == 0) {
            return i;
        }
    }
    return -1;
}

QVariant PropertyBag::ReadProperty(const QString &name, const QVariant &defaultValue) const
{
    const qsizetype i = indexOf(name);
    return i < 0 ? defaultValue : m_entries.at(i).second;
}

void PropertyBag::WriteProperty(const QString &name, const QVariant &value, const QVariant &defaultValue)
{
    // Only names the text form can read back are accepted.
    static const QRegularExpression validName(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*$"));
    if (!validName.match(name).hasMatch()) {
        throw RuntimeError(
            ErrorNumber::InvalidProcedureCall, QStringLiteral("'%1' is not a valid property name").arg(name));
    }
    const qsizetype i = indexOf(name);
    if (sameValue(value, defaultValue)) {
        if (i >= 0) {
            m_entries.removeAt(i);
        }
        return;
    }
    if (i >= 0) {
        m_entries[i].second = value;
    } else {
        m_entries.append({name, value});
    }
}

bool PropertyBag::contains(const QString &name) const
{
    return indexOf(name) >= 0;
}

QStringList PropertyBag::names() const
{
    QStringList list;
    list.reserve(m_entries.size());
    for (const auto &entry : m_entries) {
        list << entry.first;
    }
    return list;
}

bool PropertyBag::sameValue(const QVariant &a, const QVariant &b)
{
    if (isNumeric(a) && isNumeric(b)) {
        // A double holds only 53 bits: 64-bit integers that differ in their
        // last digits must not pass for equal through it.
        return a.toDouble() == b.toDouble() && ((!isIntegral(a) && !isIntegral(b)) || a.toLongLong() == b.toLongLong());
    }
    if (a.typeId() != b.typeId()) {
        return false;
    }
    if (a.typeId() == QMetaType::QPixmap) {
        return a.value<QPixmap>().toImage() == b.value<QPixmap>().toImage();
    }
    return a == b;
}

QString PropertyBag::toText() const
{
    QString text;
    for (const auto &[name, value] : m_entries) {
        text += name + QStringLiteral(" = ") + encodeValue(value) + QLatin1Char('\n');
    }
    return text;
}

PropertyBag PropertyBag::fromText(const QString &text)
{
    PropertyBag bag;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        QString line = lines.at(i);
        if (line.endsWith(QLatin1Char('\r'))) {
            line.chop(1);
        }
        const QString trimmed = line.trimmed();
        if (trimmed.isEmpty() || trimmed.startsWith(QLatin1Char('#'))) {
            continue;
        }
        LineParser parser(line, i + 1);
        auto [name, value] = parser.parse();
        if (bag.contains(name)) {
            parser.fail(QStringLiteral("%1 is stored twice").arg(name));
        }
        bag.m_entries.append({name, value});
    }
    return bag;
}

bool PropertyBag::operator==(const PropertyBag &other) const
{
    if (m_entries.size() != other.m_entries.size()) {
        return false;
    }
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        const auto &a = m_entries.at(i);
        const auto &b = other.m_entries.at(i);
        if (a.first != b.first || a.second.typeId() != b.second.typeId() || !sameValue(a.second, b.second)) {
            return false;
        }
    }
    return true;
}

} // namespace Kelocontrols
