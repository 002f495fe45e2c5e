#include "KeloTestSupport.h"

#include <Kelocontrols/Like.h>

#include "LikePattern_p.h"

#include <QTest>

using Kelocontrols::LikePattern;

// One compiled pattern answers for many names exactly as Like() does for each of them.
class TestLikePattern : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void compiledOnceMatchesAsLike_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QStringList>("matching");
        QTest::addColumn<QStringList>("notMatching");
        QTest::newRow("*7*.txt") << "*7*.txt" << QStringList{"7.txt", "File 1771.TXT", "a7b.c.txt", "77.txt.txt"}
                                 << QStringList{"", "7.tx", "File 1.txt", "7.txt ", "7txt"};
        QTest::newRow("? and a pair beyond the BMP") << "a?b"
                                                     << QStringList{QString::fromUtf8("a\xF0\x9F\x98\x80"
                                                                                      "b"),
                                                            "axb", "AXB"}
                                                     << QStringList{"ab", QString::fromUtf8("a\xF0\x9F\x98\x80xb")};
        QTest::newRow("* backtracks over a pair")
            << "*\xC3\xA4?"
            << QStringList{QString::fromUtf8("x\xF0\x9F\x98\x80\xC3\x84\xF0\x9F\x98\x80"),
                   QString::fromUtf8("\xC3\xA4\xC3\xA4z")}
            << QStringList{QString::fromUtf8("\xC3\xA4"), "a"};
        QTest::newRow("# [list] [!list]")
            << "#[a-c][!x]" << QStringList{"1bY", "9Cz"} << QStringList{"1dY", "1bx", "abc"};
        QTest::newRow("[] is empty") << "a[]b" << QStringList{"ab", "AB"} << QStringList{"a]b", "a b"};
    }

    void compiledOnceMatchesAsLike()
    {
        QFETCH(QString, pattern);
        QFETCH(QStringList, matching);
        QFETCH(QStringList, notMatching);
        const LikePattern compiled(pattern);
        for (const QString &text : matching) {
            QVERIFY2(compiled.matches(text), qPrintable(text));
            QVERIFY2(Kelocontrols::Like(text, pattern), qPrintable(text));
        }
        for (const QString &text : notMatching) {
            QVERIFY2(!compiled.matches(text), qPrintable(text));
            QVERIFY2(!Kelocontrols::Like(text, pattern), qPrintable(text));
        }
    }

    void badPatternsAreRefusedWhenCompiled()
    {
        for (const QString &bad : {QStringLiteral("[abc"), QStringLiteral("x[z-a]"), QStringLiteral("*[a-Z]")}) {
            QCOMPARE(KeloTest::errorNumberOf([&] { LikePattern compiled(bad); }), 93);
        }
    }
};

QTEST_GUILESS_MAIN(TestLikePattern)
#include "tst_likepattern.moc"
