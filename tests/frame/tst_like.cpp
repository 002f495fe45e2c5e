#include "Like.h"
#include "LikePattern_p.h"
#include "RuntimeError.h"

#include <QElapsedTimer>
#include <QTest>

#include <tuple>

#include "KeloTestSupport.h"

using namespace Kelocontrols;
using KeloTest::errorNumberOf;

class TestLike : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void matches_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<bool>("expected");

        // Text, pattern and whether they match; each row is named "text Like pattern".
        const std::initializer_list<std::tuple<const char *, const char *, bool>> rows{
            // Plain characters, whole text only
            {"abc", "abc", true}, {"ABC", "abc", true}, {"abcd", "abc", false}, {"ab", "abc", false}, {"", "", true},
            {"a", "", false}, {"ÄBC", "äbc", true}, {"ΣΟΦΙΑ", "σοφια", true}, {"a!", "a!", true}, {"ab", "!b", false},
            {"a]", "a]", true},
            // *
            {"anything", "*", true}, {"", "*", true}, {"abc", "***", true}, {"abc", "a*", true}, {"abc", "*c", true},
            {"ac", "a*c", true}, {"aXbYc", "a*b*c", true}, {"aXcYb", "a*b*c", false}, {"abcb", "*b", true},
            {"ab", "*b*b", false}, {"aaab", "*aab", true}, {"Report 2024.TXT", "*.txt", true},
            {"Report.txt.bak", "*.txt", false},
            // ? and #
            {"abc", "a?c", true}, {"ac", "a?c", false}, {"", "?", false}, {"😀", "?", true}, {"😀x", "?x", true},
            {"a1c", "a#c", true}, {"abc", "a#c", false}, {"2024", "####", true}, {"٣", "#", false},
            // Lists and ranges
            {"b", "[a-c]", true}, {"c", "[a-c]", true}, {"d", "[a-c]", false}, {"B", "[a-c]", true},
            {"q", "[A-Z]", true}, {"5", "[0-9]", true}, {"m", "[a-fm-z]", true}, {"g", "[a-fm-z]", false},
            {"y", "[xyz]", true}, {"Y", "[xyz]", true}, {"Ä", "[ä]", true}, {"xy", "[xyz]", false},
            {"d", "[!a-c]", true}, {"b", "[!a-c]", false}, {"B", "[!a-c]", false}, {"", "[!a]", false},
            {"*", "[*]", true}, {"a", "[*]", false}, {"?", "[?]", true}, {"x", "[?]", false}, {"#", "[#]", true},
            {"1", "[#]", false}, {"[", "[[]", true}, {"-", "[-a]", true}, {"-", "[a-]", true}, {"b", "[a-]", false},
            {"-", "[a-c]", false}, {"-", "[!-]", false}, {"x", "[!-]", true}, {"!", "[a!]", true}, {"!", "[!!]", false},
            {"a", "[!!]", true}, {"-", "[a-b-c]", true}, {"k", "[k-k]", true}, {"abc", "ab[]c", true}, {"", "[]", true},
            {"a", "[]", false}, {"a", "[!]", true}, {"", "[!]", false}, {"Xylophone", "[x-z]*e", true},
            {"A7-b.doc", "[a-c]#[-]?.*", true}};
        for (const auto &[text, pattern, expected] : rows)
            QTest::addRow("'%s' Like '%s'", text, pattern)
                << QString::fromUtf8(text) << QString::fromUtf8(pattern) << expected;
    }

    void matches()
    {
        QFETCH(QString, text);
        QFETCH(QString, pattern);
        QFETCH(bool, expected);
        QCOMPARE(Like(text, pattern), expected);
        QCOMPARE(LikePattern(pattern).matches(text), expected);
    }

    // One compiled pattern answers for many names in turn exactly as Like() does for each of them.
    void compiledOnceMatchesAsLike_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QStringList>("matching");
        QTest::addColumn<QStringList>("notMatching");
        QTest::newRow("*7*.txt") << "*7*.txt" << QStringList{"7.txt", "File 1771.TXT", "a7b.c.txt", "77.txt.txt"}
                                 << QStringList{"", "7.tx", "File 1.txt", "7.txt ", "7txt"};
        QTest::newRow("? and a pair beyond the BMP")
            << "a?b" << QStringList{"a😀b", "axb", "AXB"} << QStringList{"ab", "a😀xb"};
        QTest::newRow("* backtracks over a pair") << "*ä?" << QStringList{"x😀Ä😀", "ääz"} << QStringList{"ä", "a"};
        QTest::newRow("# [list] [!list]")
            << "#[a-c][!x]" << QStringList{"1bY", "9Cz"} << QStringList{"1dY", "1bx", "abc"};
    }

    void compiledOnceMatchesAsLike()
    {
        QFETCH(QString, pattern);
        QFETCH(QStringList, matching);
        QFETCH(QStringList, notMatching);
        const LikePattern compiled(pattern);
        for (const QString &text : matching + notMatching) {
            QCOMPARE(compiled.matches(text), matching.contains(text));
            QCOMPARE(Like(text, pattern), matching.contains(text));
        }
    }

    void malformedPatternsAreRejected_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("pattern");

        QTest::newRow("lone bracket") << u"["_qs << u"["_qs;
        QTest::newRow("unclosed list") << u"abc"_qs << u"a[bc"_qs;
        QTest::newRow("unclosed negation") << u"a"_qs << u"[!"_qs;
        QTest::newRow("unclosed range") << u"a"_qs << u"[a-c"_qs;
        QTest::newRow("bracket at end") << u"abc"_qs << u"abc["_qs;
        QTest::newRow("reversed range") << u"b"_qs << u"[z-a]"_qs;
        QTest::newRow("reversed by case") << u"b"_qs << u"[a-Z]"_qs;
        // The pattern is checked as a whole, even where the text fails early.
        QTest::newRow("after a mismatch") << u"x"_qs << u"a[z-a]"_qs;
        QTest::newRow("after a star") << u"abc"_qs << u"*[c-a"_qs;
    }

    void malformedPatternsAreRejected()
    {
        QFETCH(QString, text);
        QFETCH(QString, pattern);
        QCOMPARE(errorNumberOf([&] { Like(text, pattern); }), ErrorNumber::InvalidPatternString);
        QCOMPARE(errorNumberOf([&] { LikePattern compiled(pattern); }), ErrorNumber::InvalidPatternString);
    }

    void manyStarsStayFast()
    {
        const QString text(200000, u'a');
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(Like(text, u"*a*a*a*a*a*a*a*a*b"_qs), false);
        QCOMPARE(Like(text + u'b', u"*a*a*a*a*a*a*a*a*b"_qs), true);
        QCOMPARE(Like(text, u"*aaaaaaaaaaaaaaaaaaaab"_qs), false);
        QCOMPARE(Like(text, u"*?*?*?*?*?*?*?*#"_qs), false);
        QVERIFY2(timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed())));
    }
};

QTEST_MAIN(TestLike)
#include "tst_like.moc"
