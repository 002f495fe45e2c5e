#pragma once

#include <kelocontrols_export.h>

#include <QString>
#include <QStringView>

#include <utility>
#include <vector>

namespace Kelocontrols {

/**
 * A Like pattern compiled once, to be matched against many names (a folder
 * listing, a search over a tree). Matches exactly as Like() does; Like()
 * itself compiles one of these per call.
 *
 * Matching walks the text's UTF-16 units in place: no copy of the text is
 * made, ASCII characters are folded without a table look-up, and a
 * surrogate pair counts as one character.
 *
 * @throws RuntimeError InvalidPatternString (93) from the constructor, for
 *         the patterns Like() refuses.
 */
class KELOCONTROLS_TESTS_EXPORT LikePattern
{
public:
    explicit LikePattern(const QString &pattern);

    bool matches(QStringView text) const;

    struct Element
    {
        enum Kind { AnyRun, AnyOne, Digit, Literal, List };

        Kind kind = Literal;
        char32_t character = 0; ///< case-folded, for Literal
        bool negated = false; ///< for List
        std::vector<char32_t> singles; ///< case-folded, for List
        std::vector<std::pair<char32_t, char32_t>> ranges; ///< as written, for List
    };

private:
    std::vector<Element> m_elements;
};

} // namespace Kelocontrols
