#include "XdgIniFile.h"

#include <QTest>

using namespace Kelocontrols;

class tst_XdgIniFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void groupsAndKeys();
    void unescape_data();
    void unescape();
    void lists_data();
    void lists();
};

void tst_XdgIniFile::groupsAndKeys()
{
    const XdgIniFile ini = XdgIniFile::parse("ignored=before any group\n"
                                             "# comment\n"
                                             "[First]\n"
                                             "  Key =  spaced value  \n"
                                             "Key=second is ignored\n"
                                             "Flag=true\nOne=1\nNo=True\n"
                                             "no equals sign\n"
                                             "=no key\n"
                                             "[Second Group]\r\n"
                                             "Path=a=b\r\n"
                                             "[broken\n"
                                             "Lost=yes\n"
                                             "[First]\n"
                                             "Later=merged\n"
                                             "Key=still first\n");
    QCOMPARE(ini.groups(), (QStringList{u"First"_qs, u"Second Group"_qs}));
    QCOMPARE(ini.keys(u"First"_qs), (QStringList{u"Key"_qs, u"Flag"_qs, u"One"_qs, u"No"_qs, u"Later"_qs}));
    QCOMPARE(ini.rawValue(u"First"_qs, u"Key"_qs), u"spaced value"_qs);
    QCOMPARE(ini.rawValue(u"Second Group"_qs, u"Path"_qs), u"a=b"_qs);
    QCOMPARE(ini.rawValue(u"Second Group"_qs, u"Lost"_qs, u"fallback"_qs), u"fallback"_qs);
    QVERIFY(ini.boolean(u"First"_qs, u"Flag"_qs));
    QVERIFY(ini.boolean(u"First"_qs, u"One"_qs));
    QVERIFY(!ini.boolean(u"First"_qs, u"No"_qs));
    QVERIFY(!ini.boolean(u"First"_qs, u"Missing"_qs));
    QVERIFY(ini.contains(u"First"_qs, u"Later"_qs));
    QVERIFY(!ini.contains(u"Nothing"_qs, u"Key"_qs));
    QVERIFY(!ini.hasGroup(u"broken"_qs));
    QCOMPARE(ini.keys(u"Nothing"_qs), QStringList());
    QVERIFY(XdgIniFile::load(u"/nonexistent/file.list"_qs).isEmpty());
    QVERIFY(XdgIniFile::parse("\xff\xfe garbage\n[").isEmpty());
}

void tst_XdgIniFile::unescape_data()
{
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QString>("expected");
    QTest::newRow("plain") << u"abc"_qs << u"abc"_qs;
    QTest::newRow("escapes") << uR"(a\sb\nc\td\re\\f)"_qs << u"a b\nc\td\re\\f"_qs;
    QTest::newRow("others kept") << uR"(\" \; \$)"_qs << uR"(\" \; \$)"_qs;
    QTest::newRow("trailing backslash") << uR"(end\)"_qs << uR"(end\)"_qs;
    QTest::newRow("double then s") << uR"(\\s)"_qs << uR"(\s)"_qs;
}

void tst_XdgIniFile::unescape()
{
    QFETCH(QString, raw);
    QFETCH(QString, expected);
    QCOMPARE(XdgIniFile::unescape(raw), expected);
}

void tst_XdgIniFile::lists_data()
{
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("trailing separator") << u"a;b;"_qs << QStringList{u"a"_qs, u"b"_qs};
    QTest::newRow("no trailing separator") << u"a;b"_qs << QStringList{u"a"_qs, u"b"_qs};
    QTest::newRow("empty items dropped") << u";;a;;"_qs << QStringList{u"a"_qs};
    QTest::newRow("escaped separator") << uR"(a\;b;c)"_qs << QStringList{u"a;b"_qs, u"c"_qs};
    QTest::newRow("escapes resolved") << uR"(x\sy;z)"_qs << QStringList{u"x y"_qs, u"z"_qs};
    QTest::newRow("empty") << u""_qs << QStringList();
}

void tst_XdgIniFile::lists()
{
    QFETCH(QString, raw);
    QFETCH(QStringList, expected);
    const XdgIniFile ini = XdgIniFile::parse("[G]\nList=" + raw.toUtf8() + "\n");
    QCOMPARE(ini.list(u"G"_qs, u"List"_qs), expected);
}

QTEST_GUILESS_MAIN(tst_XdgIniFile)
#include "tst_xdginifile.moc"
