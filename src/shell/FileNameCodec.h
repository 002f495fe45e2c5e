#pragma once

#include <kelocontrols_export.h>

#include <QByteArray>
#include <QString>

/**
 * Lossless conversion between file-name bytes and QString.
 *
 * Linux file names are byte strings; most are UTF-8, but nothing stops a
 * name from holding bytes that are not. To list, show, rename and reopen
 * such a file, every byte string must map to a QString and back to the very
 * same bytes:
 *
 * - Valid UTF-8 decodes as usual.
 * - Every byte that is not part of a valid UTF-8 sequence (a stray
 *   continuation byte, a truncated sequence, an overlong form, an encoded
 *   surrogate, 0xC0, 0xC1, 0xF5..0xFF, code points above U+10FFFF) becomes the
 *   lone surrogate U+DC80 + (byte - 0x80). Bytes below 0x80 are always valid,
 *   so the range U+DC80..U+DCFF covers every invalid byte.
 * - encode() turns each lone surrogate U+DC80..U+DCFF back into its byte and
 *   everything else into UTF-8 (other lone surrogates, which decode() never
 *   makes, become U+FFFD).
 *
 * So decode(encode(s)) == s for every string decode() can give, and
 * encode(decode(b)) == b for every byte string b.
 *
 * Every system call of the file-system layer takes its path through encode().
 */
namespace Kelocontrols::FileNameCodec {

/// The name of the @p size bytes at @p bytes, decoded losslessly.
KELOCONTROLS_EXPORT QString decode(const char *bytes, qsizetype size);

/// The name of @p bytes, decoded losslessly.
KELOCONTROLS_EXPORT QString decode(const QByteArray &bytes);

/// The bytes of @p name: lone surrogates U+DC80..U+DCFF as single bytes, the rest as UTF-8.
KELOCONTROLS_EXPORT QByteArray encode(const QString &name);

} // namespace Kelocontrols::FileNameCodec
