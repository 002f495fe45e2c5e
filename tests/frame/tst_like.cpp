#include "Like.h"
#include "RuntimeError.h"

#include <QElapsedTimer>
#include <QTest>

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

        const auto row = [](const char *name, const QString &text, const QString &pattern, bool expected) {
            QTest::newRow(name) << text << pattern << expected;
        };

        // Plain characters, whole text only
        row("same", u"abc"_qs, u"abc"_qs, true);
        row("case ignored", u"ABC"_qs, u"abc"_qs, true);
        row("prefix only", u"abcd"_qs, u"abc"_qs, false);
        row("text too short", u"ab"_qs, u"abc"_qs, false);
        row("both empty", QString(), QString(), true);
        row("empty pattern", u"a"_qs, QString(), false);
        row("umlaut case", u"ÄBC"_qs, u"äbc"_qs, true);
        row("greek case", u"ΣΟΦΙΑ"_qs, u"σοφια"_qs, true);
        row("bang outside brackets", u"a!"_qs, u"a!"_qs, true);
        row("bang is literal", u"ab"_qs, u"!b"_qs, false);
        row("closing bracket alone", u"a]"_qs, u"a]"_qs, true);

        // *
        row("star alone", u"anything"_qs, u"*"_qs, true);
        row("star on empty", QString(), u"*"_qs, true);
        row("star run", u"abc"_qs, u"***"_qs, true);
        row("prefix star", u"abc"_qs, u"a*"_qs, true);
        row("suffix star", u"abc"_qs, u"*c"_qs, true);
        row("star empty run", u"ac"_qs, u"a*c"_qs, true);
        row("stars in order", u"aXbYc"_qs, u"a*b*c"_qs, true);
        row("stars wrong order", u"aXcYb"_qs, u"a*b*c"_qs, false);
        row("last b", u"abcb"_qs, u"*b"_qs, true);
        row("needs two b", u"ab"_qs, u"*b*b"_qs, false);
        row("backtrack", u"aaab"_qs, u"*aab"_qs, true);
        row("file name", u"Report 2024.TXT"_qs, u"*.txt"_qs, true);
        row("file name other", u"Report.txt.bak"_qs, u"*.txt"_qs, false);

        // ? and #
        row("question", u"abc"_qs, u"a?c"_qs, true);
        row("question needs one", u"ac"_qs, u"a?c"_qs, false);
        row("question on empty", QString(), u"?"_qs, false);
        row("question astral", u"😀"_qs, u"?"_qs, true);
        row("question astral then x", u"😀x"_qs, u"?x"_qs, true);
        row("digit", u"a1c"_qs, u"a#c"_qs, true);
        row("digit not letter", u"abc"_qs, u"a#c"_qs, false);
        row("digits", u"2024"_qs, u"####"_qs, true);
        row("arabic-indic digit is not 0-9", u"٣"_qs, u"#"_qs, false);

        // Lists and ranges
        row("range", u"b"_qs, u"[a-c]"_qs, true);
        row("range end", u"c"_qs, u"[a-c]"_qs, true);
        row("outside range", u"d"_qs, u"[a-c]"_qs, false);
        row("range upper text", u"B"_qs, u"[a-c]"_qs, true);
        row("upper range lower text", u"q"_qs, u"[A-Z]"_qs, true);
        row("digit range", u"5"_qs, u"[0-9]"_qs, true);
        row("two ranges", u"m"_qs, u"[a-fm-z]"_qs, true);
        row("between two ranges", u"g"_qs, u"[a-fm-z]"_qs, false);
        row("single list", u"y"_qs, u"[xyz]"_qs, true);
        row("single list case", u"Y"_qs, u"[xyz]"_qs, true);
        row("list umlaut case", u"Ä"_qs, u"[ä]"_qs, true);
        row("list one char only", u"xy"_qs, u"[xyz]"_qs, false);
        row("negated range", u"d"_qs, u"[!a-c]"_qs, true);
        row("negated range hit", u"b"_qs, u"[!a-c]"_qs, false);
        row("negated case", u"B"_qs, u"[!a-c]"_qs, false);
        row("negated needs a char", QString(), u"[!a]"_qs, false);
        row("star in list", u"*"_qs, u"[*]"_qs, true);
        row("star in list literal", u"a"_qs, u"[*]"_qs, false);
        row("question in list", u"?"_qs, u"[?]"_qs, true);
        row("question in list literal", u"x"_qs, u"[?]"_qs, false);
        row("hash in list", u"#"_qs, u"[#]"_qs, true);
        row("hash in list literal", u"1"_qs, u"[#]"_qs, false);
        row("bracket in list", u"["_qs, u"[[]"_qs, true);
        row("dash first", u"-"_qs, u"[-a]"_qs, true);
        row("dash last", u"-"_qs, u"[a-]"_qs, true);
        row("dash last other", u"b"_qs, u"[a-]"_qs, false);
        row("dash not in range", u"-"_qs, u"[a-c]"_qs, false);
        row("dash after bang", u"-"_qs, u"[!-]"_qs, false);
        row("dash after bang other", u"x"_qs, u"[!-]"_qs, true);
        row("bang second is literal", u"!"_qs, u"[a!]"_qs, true);
        row("bang bang", u"!"_qs, u"[!!]"_qs, false);
        row("bang bang other", u"a"_qs, u"[!!]"_qs, true);
        row("range then dash", u"-"_qs, u"[a-b-c]"_qs, true);
        row("one char range", u"k"_qs, u"[k-k]"_qs, true);
        row("empty list matches nothing", u"abc"_qs, u"ab[]c"_qs, true);
        row("empty list on empty", QString(), u"[]"_qs, true);
        row("empty list consumes nothing", u"a"_qs, u"[]"_qs, false);
        row("negated empty list any char", u"a"_qs, u"[!]"_qs, true);
        row("negated empty list needs one", QString(), u"[!]"_qs, false);
        row("list then star", u"Xylophone"_qs, u"[x-z]*e"_qs, true);
        row("mixed", u"A7-b.doc"_qs, u"[a-c]#[-]?.*"_qs, true);
    }

    void matches()
    {
        QFETCH(QString, text);
        QFETCH(QString, pattern);
        QFETCH(bool, expected);
        QCOMPARE(Like(text, pattern), expected);
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
