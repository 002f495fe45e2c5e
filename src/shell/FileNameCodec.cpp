#include "FileNameCodec.h"

#include <cstring>

namespace Kelocontrols::FileNameCodec {

namespace {

/// The first code unit of the escapes that stand for single invalid bytes: U+DC80 + (byte - 0x80).
constexpr char16_t escapeBase = 0xDC00;
constexpr char16_t firstEscape = 0xDC80;
constexpr char16_t lastEscape = 0xDCFF;

bool isAscii(const unsigned char *bytes, qsizetype size)
{
    // Eight bytes at a time: any set high bit marks a byte >= 0x80.
    qsizetype i = 0;
    for (; i + 8 <= size; i += 8) {
        quint64 word;
        std::memcpy(&word, bytes + i, sizeof word);
        if (word & 0x8080808080808080ULL)
            return false;
    }
    for (; i < size; ++i) {
        if (bytes[i] & 0x80)
            return false;
    }
    return true;
}

bool isContinuation(unsigned char byte)
{
    return (byte & 0xC0) == 0x80;
}

/**
 * The length of the well-formed UTF-8 sequence at @p at (1 to 4), or 0 when
 * the bytes there do not form one: no overlong forms, no encoded surrogates
 * (ED A0..BF), nothing above U+10FFFF, no truncated sequence.
 */
int sequenceLength(const unsigned char *at, qsizetype available)
{
    const unsigned char lead = at[0];
    if (lead < 0x80)
        return 1;
    int length = 0;
    unsigned char low = 0x80; // the range allowed for the second byte
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        if (lead == 0xE0)
            low = 0xA0;
        else if (lead == 0xED)
            high = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        if (lead == 0xF0)
            low = 0x90;
        else if (lead == 0xF4)
            high = 0x8F;
    } else {
        return 0;
    }
    if (available < length || at[1] < low || at[1] > high)
        return 0;
    for (int k = 2; k < length; ++k) {
        if (!isContinuation(at[k]))
            return 0;
    }
    return length;
}

bool isValidUtf8(const unsigned char *bytes, qsizetype size)
{
    for (qsizetype i = 0; i < size;) {
        const int length = sequenceLength(bytes + i, size - i);
        if (length == 0)
            return false;
        i += length;
    }
    return true;
}

char32_t decodeSequence(const unsigned char *at, int length)
{
    if (length == 1)
        return at[0];
    char32_t codePoint = at[0] & (0x7F >> length);
    for (int k = 1; k < length; ++k)
        codePoint = (codePoint << 6) | (at[k] & 0x3F);
    return codePoint;
}

/// Decodes byte by byte, each byte outside a well-formed sequence as its escape.
QString decodeWithEscapes(const unsigned char *bytes, qsizetype size)
{
    QString result(size, Qt::Uninitialized); // never more UTF-16 units than bytes
    char16_t *out = reinterpret_cast<char16_t *>(result.data());
    char16_t *const begin = out;
    for (qsizetype i = 0; i < size;) {
        const int length = sequenceLength(bytes + i, size - i);
        if (length == 0) {
            *out++ = char16_t(escapeBase + bytes[i]);
            ++i;
            continue;
        }
        const char32_t codePoint = decodeSequence(bytes + i, length);
        if (codePoint >= 0x10000) {
            *out++ = QChar::highSurrogate(codePoint);
            *out++ = QChar::lowSurrogate(codePoint);
        } else {
            *out++ = char16_t(codePoint);
        }
        i += length;
    }
    result.truncate(out - begin);
    return result;
}

void appendUtf8(char *&out, char32_t codePoint)
{
    if (codePoint < 0x80) {
        *out++ = char(codePoint);
    } else if (codePoint < 0x800) {
        *out++ = char(0xC0 | (codePoint >> 6));
        *out++ = char(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0x10000) {
        *out++ = char(0xE0 | (codePoint >> 12));
        *out++ = char(0x80 | ((codePoint >> 6) & 0x3F));
        *out++ = char(0x80 | (codePoint & 0x3F));
    } else {
        *out++ = char(0xF0 | (codePoint >> 18));
        *out++ = char(0x80 | ((codePoint >> 12) & 0x3F));
        *out++ = char(0x80 | ((codePoint >> 6) & 0x3F));
        *out++ = char(0x80 | (codePoint & 0x3F));
    }
}

} // namespace

QString decode(const char *bytes, qsizetype size)
{
    if (size <= 0 || !bytes)
        return QString();
    const auto *data = reinterpret_cast<const unsigned char *>(bytes);
    if (isAscii(data, size))
        return QString::fromLatin1(bytes, size);
    if (isValidUtf8(data, size))
        return QString::fromUtf8(bytes, size);
    return decodeWithEscapes(data, size);
}

QString decode(const QByteArray &bytes)
{
    return decode(bytes.constData(), bytes.size());
}

QByteArray encode(const QString &name)
{
    const char16_t *units = reinterpret_cast<const char16_t *>(name.utf16());
    const qsizetype size = name.size();
    QByteArray result(size * 3, Qt::Uninitialized); // at most three bytes per UTF-16 unit
    char *out = result.data();
    char *const begin = out;
    for (qsizetype i = 0; i < size; ++i) {
        const char16_t unit = units[i];
        if (unit < 0x80) {
            *out++ = char(unit);
        } else if (unit >= firstEscape && unit <= lastEscape) {
            *out++ = char(unit - escapeBase);
        } else if (QChar::isHighSurrogate(unit) && i + 1 < size && QChar::isLowSurrogate(units[i + 1])) {
            appendUtf8(out, QChar::surrogateToUcs4(unit, units[i + 1]));
            ++i;
        } else if (QChar::isSurrogate(unit)) {
            appendUtf8(out, QChar::ReplacementCharacter); // a lone surrogate decode() never makes
        } else {
            appendUtf8(out, unit);
        }
    }
    result.truncate(out - begin);
    return result;
}

} // namespace Kelocontrols::FileNameCodec
