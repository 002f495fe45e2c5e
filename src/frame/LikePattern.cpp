#include "LikePattern_p.h"

#include "RuntimeError.h"

#include <QChar>
#include <QList>

#include <cstddef>

namespace Kelocontrols {

namespace {

using Element = LikePattern::Element;
using CodePoints = std::vector<char32_t>;

char32_t folded(char32_t c)
{
    if (c < 0x80) {
        return c >= U'A' && c <= U'Z' ? c + (U'a' - U'A') : c;
    }
    return QChar::toCaseFolded(c);
}

[[noreturn]] void raiseInvalidPattern()
{
    throw RuntimeError(ErrorNumber::InvalidPatternString);
}

bool inRange(char32_t c, const std::pair<char32_t, char32_t> &range)
{
    return c >= range.first && c <= range.second;
}

bool listContains(const Element &list, char32_t c)
{
    const char32_t foldedC = folded(c);
    for (char32_t single : list.singles) {
        if (single == foldedC) {
            return true;
        }
    }
    const char32_t forms[] = {c, foldedC, QChar::toLower(c), QChar::toUpper(c)};
    for (const auto &range : list.ranges) {
        for (char32_t form : forms) {
            if (inRange(form, range)) {
                return true;
            }
        }
    }
    return false;
}

bool matchesOne(const Element &element, char32_t c)
{
    switch (element.kind) {
    case Element::AnyOne:
        return true;
    case Element::Digit:
        return c >= U'0' && c <= U'9';
    case Element::Literal:
        return folded(c) == element.character;
    case Element::List:
        return listContains(element, c) != element.negated;
    case Element::AnyRun:
        break;
    }
    return false;
}

// Reads the list that starts after the '[' at pattern[start]; returns the index just past its ']'.
std::ptrdiff_t parseList(const CodePoints &pattern, std::ptrdiff_t start, Element &element)
{
    element.kind = Element::List;
    std::ptrdiff_t pos = start;
    const auto size = static_cast<std::ptrdiff_t>(pattern.size());
    if (pos < size && pattern[pos] == U'!') {
        element.negated = true;
        ++pos;
    }
    while (pos < size && pattern[pos] != U']') {
        const char32_t first = pattern[pos];
        const bool isRange = pos + 2 < size && pattern[pos + 1] == U'-' && pattern[pos + 2] != U']';
        if (isRange) {
            const char32_t last = pattern[pos + 2];
            if (first > last) {
                raiseInvalidPattern();
            }
            element.ranges.emplace_back(first, last);
            pos += 3;
        } else {
            element.singles.push_back(folded(first));
            ++pos;
        }
    }
    if (pos >= size) {
        raiseInvalidPattern(); // '[' without ']'
    }
    return pos + 1;
}

// The code point at text[i] and the number of UTF-16 units it takes.
inline std::pair<char32_t, qsizetype> codePointAt(QStringView text, qsizetype i)
{
    const char16_t c = text[i].unicode();
    if (QChar::isHighSurrogate(c) && i + 1 < text.size() && QChar::isLowSurrogate(text[i + 1].unicode())) {
        return {QChar::surrogateToUcs4(c, text[i + 1].unicode()), 2};
    }
    return {c, 1};
}

} // namespace

LikePattern::LikePattern(const QString &patternText)
{
    const QList<uint> ucs4 = patternText.toUcs4();
    const CodePoints pattern(ucs4.cbegin(), ucs4.cend());
    std::ptrdiff_t pos = 0;
    const auto size = static_cast<std::ptrdiff_t>(pattern.size());
    while (pos < size) {
        const char32_t c = pattern[pos];
        Element element;
        switch (c) {
        case U'*':
            ++pos;
            // Runs of '*' mean the same as one.
            if (!m_elements.empty() && m_elements.back().kind == Element::AnyRun) {
                continue;
            }
            element.kind = Element::AnyRun;
            break;
        case U'?':
            element.kind = Element::AnyOne;
            ++pos;
            break;
        case U'#':
            element.kind = Element::Digit;
            ++pos;
            break;
        case U'[':
            pos = parseList(pattern, pos + 1, element);
            // "[]" stands for the empty string: nothing to match.
            if (!element.negated && element.singles.empty() && element.ranges.empty()) {
                continue;
            }
            break;
        default:
            element.character = folded(c);
            ++pos;
            break;
        }
        m_elements.push_back(std::move(element));
    }
}

// Wildcard matching with backtracking to the last '*' only: when a later element fails, the last '*'
// swallowing one more character is the only choice worth retrying, because an earlier '*' could only
// reach positions the last one covers too. At most text x pattern steps.
bool LikePattern::matches(QStringView text) const
{
    const auto patternSize = static_cast<std::ptrdiff_t>(m_elements.size());
    qsizetype t = 0;
    std::ptrdiff_t p = 0;
    std::ptrdiff_t starElement = -1;
    qsizetype starText = 0;
    const qsizetype textSize = text.size();
    while (t < textSize) {
        if (p < patternSize && m_elements[p].kind == Element::AnyRun) {
            starElement = p++;
            starText = t;
            continue;
        }
        const auto [c, width] = codePointAt(text, t);
        if (p < patternSize && matchesOne(m_elements[p], c)) {
            ++p;
            t += width;
        } else if (starElement >= 0) {
            p = starElement + 1;
            starText += codePointAt(text, starText).second;
            t = starText;
        } else {
            return false;
        }
    }
    while (p < patternSize && m_elements[p].kind == Element::AnyRun) {
        ++p;
    }
    return p == patternSize;
}

} // namespace Kelocontrols
