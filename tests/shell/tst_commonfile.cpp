#include "CommonFile.h"
#include "FileSystem.h"
#include "RuntimeError.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "KeloTestSupport.h"

#include <cmath>
#include <limits>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;
using KeloTest::writeFile;

namespace {

DriveInfo drive(int type, bool ready, const QString &letter = QString(), const QString &volume = QString(),
    const QString &share = QString())
{
    DriveInfo info;
    info.driveType = type;
    info.isReady = ready;
    info.driveLetter = letter;
    info.volumeName = volume;
    info.shareName = share;
    return info;
}

} // namespace

class tst_CommonFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void driveTypeName_data();
    void driveTypeName();
    void driveDisplayName_data();
    void driveDisplayName();
    void shareDisplayName();
    void folderDisplayName();
    void sizeInKB_data();
    void sizeInKB();
    void stripAtNull_data();
    void stripAtNull();
};

void tst_CommonFile::driveTypeName_data()
{
    QTest::addColumn<DriveInfo>("drive");
    QTest::addColumn<QString>("expected");
    QTest::newRow("removable, no medium") << drive(1, false, "A") << u"Removable Disk"_qs;
    QTest::newRow("fixed") << drive(2, true, "C") << u"Local Disk"_qs;
    QTest::newRow("fixed, not ready") << drive(2, false) << u"Local Disk"_qs;
    QTest::newRow("remote with letter") << drive(3, true, "Z") << u"Network Disk"_qs;
    QTest::newRow("remote without letter") << drive(3, true) << u"Network Folder"_qs;
    QTest::newRow("remote not ready, letter") << drive(3, false, "Z") << u"Drive Unavailable"_qs;
    QTest::newRow("remote not ready") << drive(3, false) << u"Drive Unavailable"_qs;
    QTest::newRow("cd-rom, empty") << drive(4, false, "E") << u"Compact Disk"_qs;
    QTest::newRow("ram disk") << drive(5, true) << u"RAM Disk"_qs;
    QTest::newRow("unknown") << drive(0, true) << u"Unknown Disk"_qs;
    QTest::newRow("code 6") << drive(6, true) << u"Unknown Disk"_qs;
    QTest::newRow("code -1") << drive(-1, true) << u"Unknown Disk"_qs;
}

void tst_CommonFile::driveTypeName()
{
    QFETCH(DriveInfo, drive);
    QFETCH(QString, expected);
    QCOMPARE(DriveTypeName(drive), expected);
}

void tst_CommonFile::driveDisplayName_data()
{
    QTest::addColumn<DriveInfo>("drive");
    QTest::addColumn<QString>("expected");
    QTest::newRow("fixed, volume name") << drive(2, true, "C", "System") << u"System (C:)"_qs;
    QTest::newRow("fixed, no volume name") << drive(2, true, "C") << u"Local Disk (C:)"_qs;
    QTest::newRow("volume name wins") << drive(2, true, "D", "Data") << u"Data (D:)"_qs;
    QTest::newRow("empty floppy") << drive(1, false, "A") << u"(A:)"_qs;
    QTest::newRow("empty floppy, stale volume") << drive(1, false, "A", "Old") << u"(A:)"_qs;
    QTest::newRow("cd-rom") << drive(4, true, "E") << u"Compact Disk (E:)"_qs;
    QTest::newRow("ram disk") << drive(5, true, "R") << u"RAM Disk (R:)"_qs;
    QTest::newRow("unknown") << drive(0, true, "Q") << u"Unknown Disk (Q:)"_qs;
    QTest::newRow("mapped share") << drive(3, true, "Z", "", "\\\\srv\\docs") << u"docs on 'srv' (Z:)"_qs;
    QTest::newRow("share beats volume") << drive(3, true, "Z", "Vol", "\\\\srv\\docs") << u"docs on 'srv' (Z:)"_qs;
    QTest::newRow("share not ready") << drive(3, false, "Z", "", "\\\\srv\\docs") << u"docs on 'srv' (Z:)"_qs;
    QTest::newRow("share, no letter") << drive(3, true, "", "", "\\\\srv\\docs") << u"docs on 'srv' "_qs;
    QTest::newRow("remote not ready, letter") << drive(3, false, "Z") << u"(Z:)"_qs;
    QTest::newRow("remote not ready, no letter") << drive(3, false) << u""_qs;
    QTest::newRow("remote ready, nothing else") << drive(3, true) << u"Network Folder "_qs;
    QTest::newRow("mount, no letter") << drive(2, true, "", "home") << u"home "_qs;
    QTest::newRow("ram mount, no name") << drive(5, true) << u"RAM Disk "_qs;
}

void tst_CommonFile::driveDisplayName()
{
    QFETCH(DriveInfo, drive);
    QFETCH(QString, expected);
    QCOMPARE(DriveDisplayName(drive), expected);
}

void tst_CommonFile::shareDisplayName()
{
    QCOMPARE(ShareDisplayName("\\\\server\\share"), QString("share on 'server' "));
    QCOMPARE(ShareDisplayName("\\\\srv\\docs\\sub\\deeper"), QString("docs on 'srv' "));
    QCOMPARE(ShareDisplayName("\\\\srv\\export/docs"), QString("export/docs on 'srv' "));
    QCOMPARE(ShareDisplayName("\\\\srv\\"), QString(" on 'srv' "));
    for (const char *malformed : {"", "srv", "\\\\srv", "//srv/docs", "\\srv\\docs"})
        QCOMPARE(errorNumberOf([&] { ShareDisplayName(malformed); }), ErrorNumber::SubscriptOutOfRange);
    // A drive's malformed share name raises the same.
    const DriveInfo bad = drive(3, true, "Z", "", "srv/docs");
    QCOMPARE(errorNumberOf([&] { DriveDisplayName(bad); }), ErrorNumber::SubscriptOutOfRange);
}

void tst_CommonFile::folderDisplayName()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString table = dir.filePath("mountinfo");
    QVERIFY(writeFile(table,
        "27 1 8:2 / / rw - ext4 /dev/sda2 rw\n"
        "30 27 8:3 / /home rw - ext4 /dev/sda3 rw\n"
        "40 27 0:41 / /mnt/share rw - cifs //winbox/public rw\n"));

    FileSystem::Probes probes;
    probes.mountInfoPath = table;
    probes.statVolume = [](const QString &, qint64 &, qint64 &) { return true; };
    probes.volumeLabel = [](const QString &device) { return device == "/dev/sda3" ? QString("Users") : QString(); };
    probes.isRemovable = [](const QString &) { return false; };
    const FileSystem fs(probes);

    QCOMPARE(FolderDisplayName(FolderInfo{"docs", "/home/docs", true}, fs), QString("docs"));
    QCOMPARE(FolderDisplayName(FolderInfo{"", "/", true}, fs), QString("Root "));
    QCOMPARE(FolderDisplayName(FolderInfo{"", "/mnt/share", true}, fs), QString("public on 'winbox' "));
    // A root whose drive has gone, and a record of nothing at all.
    QCOMPARE(FolderDisplayName(FolderInfo{"", "/media/gone", false}, fs), QString("Unknown drive or folder"));
    QCOMPARE(FolderDisplayName(FolderInfo{}, fs), QString("Unknown drive or folder"));

    // Paths: a mount point keeps its own folder name, only "/" shows as its drive.
    QCOMPARE(FolderDisplayName(QString("/home"), fs), QString("home"));
    QCOMPARE(FolderDisplayName(QString("/home/user/"), fs), QString("user"));
    QCOMPARE(FolderDisplayName(QString("/"), fs), QString("Root "));
    QCOMPARE(FolderDisplayName(QString("//"), fs), QString("Root "));

    // Without "/" among the drives, the root is a drive that no longer exists.
    QVERIFY(writeFile(table, "30 27 8:3 / /home rw - ext4 /dev/sda3 rw\n"));
    QCOMPARE(FolderDisplayName(QString("/"), fs), QString("Unknown drive or folder"));

    // A mount table that cannot be read: the caption is empty, nothing raised.
    QVERIFY(QFile::remove(table));
    QCOMPARE(FolderDisplayName(QString("/"), fs), QString());
    QCOMPARE(FolderDisplayName(QString("/home"), fs), QString("home"));

    // The real system always has a drive at "/".
    QVERIFY(!FolderDisplayName(QString("/")).isEmpty());
    QVERIFY(FolderDisplayName(QString("/")) != "Unknown drive or folder");
}

void tst_CommonFile::sizeInKB_data()
{
    QTest::addColumn<double>("bytes");
    QTest::addColumn<int>("expected"); // -1: Overflow
    QTest::newRow("0") << 0.0 << 0;
    QTest::newRow("1") << 1.0 << 1;
    QTest::newRow("1023") << 1023.0 << 1;
    QTest::newRow("1024") << 1024.0 << 1;
    QTest::newRow("1025") << 1025.0 << 2;
    QTest::newRow("2048") << 2048.0 << 2;
    QTest::newRow("2049") << 2049.0 << 3;
    QTest::newRow("1048576") << 1048576.0 << 1024;
    QTest::newRow("1048577") << 1048577.0 << 1025;
    QTest::newRow("4 GiB") << 4294967296.0 << 4194304;
    QTest::newRow("largest") << 2199023254528.0 << 2147483647;
    QTest::newRow("one byte more") << 2199023254529.0 << -1;
    QTest::newRow("2 TiB") << 2199023255552.0 << -1;
    QTest::newRow("1e300") << 1e300 << -1;
    QTest::newRow("negative") << -1e20 << -1;
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity() << -1;
    QTest::newRow("NaN") << std::numeric_limits<double>::quiet_NaN() << -1;
}

void tst_CommonFile::sizeInKB()
{
    QFETCH(double, bytes);
    QFETCH(int, expected);
    int result = -1;
    QCOMPARE(errorNumberOf([&] { result = SizeInKB(bytes); }), expected < 0 ? int(ErrorNumber::Overflow) : 0);
    QCOMPARE(result, expected);
    // A 64-bit byte count converts implicitly.
    QCOMPARE(SizeInKB(Q_INT64_C(3) * 1024 * 1024 * 1024), 3145728);
}

void tst_CommonFile::stripAtNull_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("no NUL") << u"C:\\Windows"_qs << u"C:\\Windows"_qs;
    QTest::newRow("empty") << u""_qs << u""_qs;
    QTest::newRow("NUL inside") << QString::fromUtf16(u"abc\0def", 7) << u"abc"_qs;
    QTest::newRow("NUL first") << QString::fromUtf16(u"\0abc", 4) << u""_qs;
    QTest::newRow("NUL last") << QString::fromUtf16(u"abc\0", 4) << u"abc"_qs;
    QTest::newRow("two NULs") << QString::fromUtf16(u"a\0b\0", 4) << u"a"_qs;
}

void tst_CommonFile::stripAtNull()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(StripAtNull(text), expected);
}

QTEST_GUILESS_MAIN(tst_CommonFile)
#include "tst_commonfile.moc"
