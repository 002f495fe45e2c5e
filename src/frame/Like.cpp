#include "Like.h"

#include "RuntimeError.h"

#include <QChar>
#include <QList>

#include <cstddef>
#include <utility>
#include <vector>

namespace Kelocontrols {

namespace {

// One element of a compiled pattern. Every kind but AnyRun consumes exactly
// one character, which is what lets the matcher below stay polynomial.
struct PatternElement
{
    enum Kind { AnyRun, AnyOne, Digit, Literal, List };

    Kind kind = Literal;
    char32_t character = 0; // case-folded, for Literal
    bool negated = false; // for List
    std::vector<char32_t> singles; // case-folded, for List
    std::vector<std::pair<char32_t, char32_t>> ranges; // as written, for List
};

using CodePoints = std::vector<char32_t>;

CodePoints codePoints(const QString &text)
{
    const QList<uint> ucs4 = text.toUcs4();
    return CodePoints(ucs4.cbegin(), ucs4.cend());
}

char32_t folded(char32_t c)
{
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

bool listContains(const PatternElement &list, char32_t c)
{
    const char32_t foldedC = folded(c);
    for (char32_t single : list.singles) {
        if (single == foldedC)
            return true;
    }
    const char32_t forms[] = {c, foldedC, QChar::toLower(c), QChar::toUpper(c)};
    for (const auto &range : list.ranges) {
        for (char32_t form : forms) {
            if (inRange(form, range))
                return true;
        }
    }
    return false;
}

bool matchesOne(const PatternElement &element, char32_t c)
{
    switch (element.kind) {
    case PatternElement::AnyOne:
        return true;
    case PatternElement::Digit:
        return c >= U'0' && c <= U'9';
    case PatternElement::Literal:
        return folded(c) == element.character;
    case PatternElement::List:
        return listContains(element, c) != element.negated;
    case PatternElement::AnyRun:
        break;
    }
    return false;
}

// Reads the list that starts after the '[' at pattern[start]; returns the
// index just past its ']'.
std::ptrdiff_t parseList(const CodePoints &pattern, std::ptrdiff_t start, PatternElement &element)
{
    element.kind = PatternElement::List;
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
            if (first > last)
                raiseInvalidPattern();
            element.ranges.emplace_back(first, last);
            pos += 3;
        } else {
            element.singles.push_back(folded(first));
            ++pos;
        }
    }
    if (pos >= size)
        raiseInvalidPattern(); // '[' without ']'
    return pos + 1;
}

std::vector<PatternElement> compile(const QString &patternText)
{
    const CodePoints pattern = codePoints(patternText);
    std::vector<PatternElement> elements;
    std::ptrdiff_t pos = 0;
    const auto size = static_cast<std::ptrdiff_t>(pattern.size());
    while (pos < size) {
        const char32_t c = pattern[pos];
        PatternElement element;
        switch (c) {
        case U'*':
            ++pos;
            // Runs of '*' mean the same as one.
            if (!elements.empty() && elements.back().kind == PatternElement::AnyRun)
                continue;
            element.kind = PatternElement::AnyRun;
            break;
        case U'?':
            element.kind = PatternElement::AnyOne;
            ++pos;
            break;
        case U'#':
            element.kind = PatternElement::Digit;
            ++pos;
            break;
        case U'[':
            pos = parseList(pattern, pos + 1, element);
            // "[]" stands for the empty string: nothing to match.
            if (!element.negated && element.singles.empty() && element.ranges.empty())
                continue;
            break;
        default:
            element.character = folded(c);
            ++pos;
            break;
        }
        elements.push_back(std::move(element));
    }
    return elements;
}

// Wildcard matching with backtracking to the last '*' only: when a later
// element fails, the last '*' swallowing one more character is the only
// choice worth retrying, because an earlier '*' could only reach positions
// the last one covers too. At most text x pattern steps.
bool matchElements(const CodePoints &text, const std::vector<PatternElement> &elements)
{
    const auto patternSize = static_cast<std::ptrdiff_t>(elements.size());
    std::ptrdiff_t t = 0;
    std::ptrdiff_t p = 0;
    std::ptrdiff_t starElement = -1;
    std::ptrdiff_t starText = 0;
    const auto textSize = static_cast<std::ptrdiff_t>(text.size());
    while (t < textSize) {
        if (p < patternSize && elements[p].kind == PatternElement::AnyRun) {
            starElement = p++;
            starText = t;
        } else if (p < patternSize && matchesOne(elements[p], text[t])) {
            ++p;
            ++t;
        } else if (starElement >= 0) {
            p = starElement + 1;
            t = ++starText;
        } else {
            return false;
        }
    }
    while (p < patternSize && elements[p].kind == PatternElement::AnyRun)
        ++p;
    return p == patternSize;
}

} // namespace

bool Like(const QString &text, const QString &pattern)
{
    const std::vector<PatternElement> elements = compile(pattern);
    return matchElements(codePoints(text), elements);
}

} // namespace Kelocontrols
