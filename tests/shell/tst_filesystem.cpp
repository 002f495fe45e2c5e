// Drives and folders: the mount table read into drives, labels and removable
// flags from their folders, look-ups by path, and the names and sizes shown
// for drives, shares and folders.

#include "CommonFile.h"
#include "FileSystem.h"
#include "RuntimeError.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include "FileTreeFixture.h"
#include "KeloTestSupport.h"

#include <limits>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;
using KeloTest::makeTree;
using KeloTest::writeFile;

namespace {

// A desktop machine's mount table: system mounts that must be left out
// between the volumes a user sees.
const QByteArray sampleMountInfo
    = "22 28 0:21 / /proc rw,nosuid,nodev,noexec,relatime shared:5 - proc proc rw\n"
      "23 28 0:22 / /sys rw,nosuid,nodev,noexec,relatime shared:6 - sysfs sysfs rw\n"
      "24 28 0:5 / /dev rw,nosuid,relatime shared:2 - devtmpfs udev rw,size=8000000k,mode=755\n"
      "25 24 0:23 / /dev/pts rw,nosuid,noexec,relatime shared:3 - devpts devpts rw,gid=5,mode=620\n"
      "26 28 0:24 / /run rw,nosuid,nodev,noexec,relatime shared:7 - tmpfs tmpfs rw,size=1600000k,mode=755\n"
      "28 1 8:2 / / rw,relatime shared:1 - ext4 /dev/sda2 rw,errors=remount-ro\n"
      "29 23 0:26 / /sys/fs/cgroup rw,nosuid shared:9 - cgroup2 cgroup2 rw,nsdelegate\n"
      "30 28 8:3 / /home rw,relatime shared:30 - ext4 /dev/sda3 rw\n"
      "31 28 0:30 / /tmp rw,nosuid,nodev shared:31 master:4 - tmpfs tmpfs rw,size=4000000k\n"
      "32 26 0:31 / /run/user/1000 rw,nosuid,nodev shared:32 - tmpfs tmpfs rw,size=1600000k,mode=700\n"
      "33 28 0:40 / /mnt/nfs rw,relatime shared:40 - nfs4 fileserver:/export/docs rw,vers=4.2\n"
      "34 28 0:41 / /mnt/share rw,relatime shared:41 - cifs //winbox/public rw,vers=3.1.1\n"
      "35 28 11:0 / /media/user/UBUNTU\\04022_04 ro,nosuid,nodev shared:50 - iso9660 /dev/sr0 ro\n"
      "36 28 8:17 / /media/user/STICK rw,nosuid,nodev shared:51 - vfat /dev/sdb1 rw,fmask=0022\n"
      "37 28 8:2 /etc/hostname /etc/hostname rw,relatime - ext4 /dev/sda2 rw\n"
      "38 28 8:33 / /mnt/my\\040disk rw shared:60 - ext4 /dev/sdc1 rw\n"
      "39 28 0:51 / /home/user/remote rw,nosuid - fuse.sshfs alice@build.example.org:/srv/projects rw\n"
      "40 28 8:3 /srv /srv rw - ext4 /dev/sda3 rw\n"
      "41 28 0:60 / /mnt/nfs-down rw - nfs oldserver:/vol rw\n"
      "42 28 8:49 / /mnt/data rw - ext4 /dev/sdd1 rw\n"
      "43 42 0:61 / /mnt/data rw - tmpfs tmpfs rw\n"
      "44 28 0:62 / /mnt/weird rw - mysteryfs none rw\n"
      "45 28 0:63 / /proc/sys/fs/binfmt_misc rw - binfmt_misc binfmt_misc rw\n"
      "46 28 7:1 / /snap/core/1234 ro - squashfs /dev/loop1 ro\n"
      "47 28 8:50 / /mnt/usb/backup rw - ext4 /dev/sde1 rw\n"
      "48 28 8:51 / /var/backup rw - xfs /dev/sdf1 rw\n"
      "garbage line\n"
      "\n"
      "49 28 0:64 / /mnt/half rw - \n";

FileSystem::Probes fakeProbes(const QString &mountInfoPath = QString())
{
    FileSystem::Probes probes;
    probes.mountInfoPath = mountInfoPath;
    probes.isFileMount = [](const QString &mountPoint) { return mountPoint == "/etc/hostname"; };
    probes.statVolume = [](const QString &mountPoint, qint64 &total, qint64 &free) {
        if (mountPoint == "/mnt/nfs-down")
            return false;
        total = 1000 * 1024;
        free = 250 * 1024;
        return true;
    };
    probes.volumeLabel = [](const QString &device) {
        const QHash<QString, QString> labels
            = {{"/dev/sda3", "Home"}, {"/dev/sr0", "Ubuntu 22.04 LTS"}, {"/dev/sdb1", "STICK"}};
        return labels.value(device);
    };
    probes.isRemovable = [](const QString &majorMinor) { return majorMinor == "8:17" || majorMinor == "11:0"; };
    return probes;
}

/// Every drive of @p mountInfo as "root | type | ready | share | volume | file system | device".
QStringList drivesOf(const QByteArray &mountInfo)
{
    QStringList drives;
    for (const DriveInfo &d : FileSystem::parseMountInfo(mountInfo, fakeProbes())) {
        QString text = QStringList{d.rootPath, QString::number(d.driveType), d.isReady ? "ready" : "not ready",
            d.shareName, d.volumeName, d.fileSystem, d.device}
                           .join(" | ");
        if (d.totalSize != (d.isReady ? 1000 * 1024 : 0) || d.freeSpace != (d.isReady ? 250 * 1024 : 0))
            text += " | wrong sizes";
        if (!d.driveLetter.isEmpty())
            text += " | letter " + d.driveLetter;
        drives << text;
    }
    return drives;
}

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

class tst_FileSystem : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

private Q_SLOTS:
    void init() { QVERIFY(KeloTest::emptyFolder(m_dir.path())); }

    // In kernel order: the over-mounted /mnt/data at its first place, each mount point once, the system mounts
    // left out.
    void parseMountInfo()
    {
        QCOMPARE(drivesOf(sampleMountInfo),
            QStringList({"/ | 2 | ready |  | Root | ext4 | /dev/sda2", "/home | 2 | ready |  | Home | ext4 | /dev/sda3",
                "/tmp | 5 | ready |  | tmp | tmpfs | tmpfs",
                "/mnt/nfs | 3 | ready | \\\\fileserver\\export/docs | nfs | nfs4 | fileserver:/export/docs",
                "/mnt/share | 3 | ready | \\\\winbox\\public | share | cifs | //winbox/public",
                "/media/user/UBUNTU 22_04 | 4 | ready |  | Ubuntu 22.04 LTS | iso9660 | /dev/sr0",
                "/media/user/STICK | 1 | ready |  | STICK | vfat | /dev/sdb1",
                "/mnt/my disk | 2 | ready |  | my disk | ext4 | /dev/sdc1",
                "/home/user/remote | 3 | ready | \\\\build.example.org\\srv/projects | remote | fuse.sshfs | "
                "alice@build.example.org:/srv/projects",
                "/srv | 2 | ready |  | srv | ext4 | /dev/sda3",
                "/mnt/nfs-down | 3 | not ready | \\\\oldserver\\vol | nfs-down | nfs | oldserver:/vol",
                "/mnt/data | 5 | ready |  | data | tmpfs | tmpfs",
                "/mnt/weird | 0 | ready |  | weird | mysteryfs | none",
                "/mnt/usb/backup | 2 | ready |  | /mnt/usb/backup | ext4 | /dev/sde1",
                "/var/backup | 2 | ready |  | /var/backup | xfs | /dev/sdf1"}));
        QCOMPARE(drivesOf(QByteArray()), QStringList());
        QCOMPARE(drivesOf("1 2 3\n - - -\n\n"), QStringList());
        // Escapes: tab, newline, backslash; an incomplete escape stays as written. A non-block source of a known
        // disk file system is still fixed; a removable device outside /dev/ names still counts as removable.
        QCOMPARE(drivesOf("5 1 8:1 / /mnt/a\\011b\\012c\\134d rw - ext4 /dev/sdx1 rw\n"
                          "6 1 8:2 / /mnt/e\\04 rw - ext4 /dev/sdx2 rw\n"
                          "7 1 0:90 / /pool rw - zfs rpool/data rw\n"
                          "8 1 8:17 / /mnt/stick rw - exfat /dev/sdb1 rw\n"
                          "9 1 0:91 / /mnt/ram rw - ramfs ramfs rw\n"
                          "10 1 0:92 / /mnt/dvd rw - udf /dev/sr1 rw\n"
                          // A derived name equal to a label is made distinct; the label stays.
                          "30 1 8:3 / /home rw - ext4 /dev/sda3 rw\n"
                          "31 1 8:4 / /mnt/Home rw - ext4 /dev/sda4 rw\n"),
            QStringList({"/mnt/a\tb\nc\\d | 2 | ready |  | a\tb\nc\\d | ext4 | /dev/sdx1",
                "/mnt/e\\04 | 2 | ready |  | e\\04 | ext4 | /dev/sdx2",
                "/pool | 2 | ready |  | pool | zfs | rpool/data",
                "/mnt/stick | 1 | ready |  | STICK | exfat | /dev/sdb1",
                "/mnt/ram | 5 | ready |  | ram | ramfs | ramfs", "/mnt/dvd | 4 | ready |  | dvd | udf | /dev/sr1",
                "/home | 2 | ready |  | Home | ext4 | /dev/sda3",
                "/mnt/Home | 2 | ready |  | /mnt/Home | ext4 | /dev/sda4"}));
    }

    void shareNameFromSource_data()
    {
        KeloTest::addColumns<QString, QString>({"source", "share"});
        const auto row = [](const char *name, const char *source, const char *share) {
            QTest::newRow(name) << QString(source) << QString(share);
        };
        row("smb", "//srv/docs", "\\\\srv\\docs");
        row("smb, sub-folder", "//srv/docs/sub", "\\\\srv\\docs\\sub");
        row("backslashes kept", "\\\\srv\\docs", "\\\\srv\\docs");
        row("nfs", "srv:/export/docs", "\\\\srv\\export/docs");
        row("sshfs user", "user@host:/p", "\\\\host\\p");
        row("sshfs home", "user@host:", "\\\\host\\");
        row("ipv6 nfs", "[fe80::1]:/vol", "\\\\[fe80::1]\\vol");
        row("webdav", "https://cloud.example.org/dav/files", "\\\\cloud.example.org\\dav/files");
        row("plain word", "hostshare", "");
        row("device", "/dev/sda1", "");
        row("empty", "", "");
        row("leading colon", ":/x", "");
    }

    void shareNameFromSource()
    {
        QFETCH(QString, source);
        QTEST(FileSystem::shareNameFromSource(source), "share");
    }

    void labelsAndRemovableFlags()
    {
        const QString root = m_dir.path();
        // Labels: links named by the label, with \x escapes, into /dev.
        QVERIFY(makeTree(root,
            {"dev/", "dev/sdb1=", "dev/sdc1=", "dev/disk/", "dev/disk/by-label/", "dev/disk/by-uuid/",
                "dev/disk/by-label/Data\\x20Disk->../../sdb1", "dev/disk/by-label/M\\xc3\\xbcller->../../sdc1",
                "dev/disk/by-label/Broken->../../gone", "dev/disk/by-uuid/1234-ABCD->../../sdb1"}));
        QStringList labels;
        for (const char *device : {"sdb1", "disk/by-uuid/1234-ABCD", "sdc1", "gone", "sdz9"})
            labels << FileSystem::labelFromDirectory(root + "/dev/disk/by-label", root + "/dev/" + device);
        QCOMPARE(labels, QStringList({"Data Disk", "Data Disk", QString::fromUtf8("Müller"), "", ""}));
        QCOMPARE(FileSystem::labelFromDirectory(root + "/missing", root + "/dev/sdb1"), QString());

        // sysfs: /sys/dev/block/MAJ:MIN links into the device tree, where a disk has a "removable" flag and its
        // partitions are sub-folders without one.
        QVERIFY(makeTree(root,
            {"sys/", "sys/dev/", "sys/dev/block/", "sys/devices/", "sys/devices/usb/", "sys/devices/usb/block/",
                "sys/devices/usb/block/sdb/", "sys/devices/usb/block/sdb/sdb1/",
                "sys/devices/usb/block/sdb/removable=1\n", "sys/devices/ata/", "sys/devices/ata/block/",
                "sys/devices/ata/block/sda/", "sys/devices/ata/block/sda/sda1/",
                "sys/devices/ata/block/sda/removable=0\n", "sys/devices/ata/block/sr0/",
                "sys/devices/ata/block/sr0/removable=1\n", "sys/dev/block/8:16->../../devices/usb/block/sdb",
                "sys/dev/block/8:17->../../devices/usb/block/sdb/sdb1",
                "sys/dev/block/8:0->../../devices/ata/block/sda", "sys/dev/block/8:1->../../devices/ata/block/sda/sda1",
                "sys/dev/block/11:0->../../devices/ata/block/sr0"}));
        QStringList removable;
        for (const char *device : {"8:16", "8:17", "11:0", "8:0", "8:1", "99:9", "", "../../devices/usb/block/sdb"}) {
            if (FileSystem::removableFromSysfs(root + "/sys", device))
                removable << device;
        }
        QCOMPARE(removable, QStringList({"8:16", "8:17", "11:0"}));
    }

    void driveLookups()
    {
        const QString table = m_dir.filePath("mountinfo");
        QVERIFY(writeFile(table, sampleMountInfo));
        const FileSystem fs(fakeProbes(table));
        QCOMPARE(fs.drives(), FileSystem::parseMountInfo(sampleMountInfo, fakeProbes()));

        // Mount points of volumes (a trailing slash allowed) and shares by name; not what lies below them, system
        // or file mounts, or another case.
        QStringList exist;
        for (const char *path : {"/", "/home", "/home/", "/mnt/my disk", "\\\\winbox\\public", "/home/user", "/run",
                 "/etc/hostname", "/HOME", ""}) {
            if (fs.driveExists(path))
                exist << path;
        }
        QCOMPARE(exist, QStringList({"/", "/home", "/home/", "/mnt/my disk", "\\\\winbox\\public"}));
        QCOMPARE(fs.getDrive("/home").volumeName, QString("Home"));
        QCOMPARE(fs.getDrive("/mnt/nfs/").shareName, QString("\\\\fileserver\\export/docs"));
        QCOMPARE(fs.getDrive("\\\\winbox\\public").rootPath, QString("/mnt/share"));
        // An existing path that is no root: the drive holding it.
        QCOMPARE(fs.getDrive(m_dir.path()).rootPath, fs.driveOf(m_dir.path()).rootPath);
        QCOMPARE(errorNumberOf([&] { fs.getDrive("/no/such/place"); }), ErrorNumber::PathNotFound);
        QCOMPARE(errorNumberOf([&] { fs.getDrive(""); }), ErrorNumber::PathNotFound);

        // Longest prefix on whole components; paths need not exist.
        QStringList roots;
        for (const char *path : {"/home/user/a/b/c.txt", "/home/user/remote/src/main.cpp", "/homeland/x",
                 "/mnt/my disk/x/../y", "/mnt/nfs/../share/z"})
            roots << fs.driveOf(path).rootPath;
        QCOMPARE(roots, QStringList({"/home", "/home/user/remote", "/", "/mnt/my disk", "/mnt/share"}));
        QCOMPARE(errorNumberOf([&] { fs.driveOf(""); }), ErrorNumber::PathNotFound);

        // Without a drive at "/", a path outside every mount has no drive.
        QVERIFY(writeFile(table, "30 28 8:3 / /home rw - ext4 /dev/sda3 rw\n"));
        QCOMPARE(errorNumberOf([&] { fs.driveOf("/usr/bin"); }), ErrorNumber::PathNotFound);
        QCOMPARE(fs.driveOf("/home/x").rootPath, QString("/home"));
        QVERIFY(QFile::remove(table));
        QCOMPARE(errorNumberOf([&] { fs.drives(); }), ErrorNumber::PathNotFound);
        QCOMPARE(errorNumberOf([&] { fs.driveExists("/"); }), ErrorNumber::PathNotFound);
    }

    void realSystem()
    {
        const FileSystem &fs = FileSystem::instance();
        QCOMPARE(&fs, &FileSystem::instance());
        const QList<DriveInfo> drives = fs.drives();
        QVERIFY(fs.driveExists("/"));
        const DriveInfo root = fs.getDrive("/");
        QCOMPARE(root.rootPath, QString("/"));
        QVERIFY(root.isReady && root.totalSize > 0 && !root.volumeName.isEmpty());
        for (const DriveInfo &drive : drives) {
            QVERIFY2(
                !drive.rootPath.startsWith("/proc") && !drive.rootPath.startsWith("/sys"), qPrintable(drive.rootPath));
            QVERIFY(drive.fileSystem != "devpts" && drive.fileSystem != "cgroup" && drive.fileSystem != "cgroup2");
            QVERIFY(drive.driveLetter.isEmpty());
        }
        // The drive of a deep path is the mount with the longest root above it.
        const QString deep = m_dir.filePath("a/b/c");
        QVERIFY(QDir().mkpath(deep));
        const DriveInfo holder = fs.driveOf(deep + "/not-yet.txt");
        const QString canonical = QFileInfo(deep).canonicalFilePath();
        QVERIFY(holder.rootPath == "/" || canonical.startsWith(holder.rootPath + "/"));
        for (const DriveInfo &drive : drives) {
            if (drive.rootPath.size() > holder.rootPath.size())
                QVERIFY2(!canonical.startsWith(drive.rootPath + "/"), qPrintable(drive.rootPath));
        }
    }

    void folderAndFileSize()
    {
        const FileSystem &fs = FileSystem::instance();
        QCOMPARE(fs.folder("/"), (FolderInfo{"", "/", true}));
        QCOMPARE(fs.folder("//"), (FolderInfo{"", "/", true}));
        QCOMPARE(fs.folder("/usr/"), (FolderInfo{"usr", "/usr", true}));
        QCOMPARE(fs.folder("/usr/share/../lib"), (FolderInfo{"lib", "/usr/lib", QFileInfo("/usr/lib").isDir()}));
        QCOMPARE(fs.folder("/no/such/folder"), (FolderInfo{"folder", "/no/such/folder", false}));
        QCOMPARE(fs.folder(""), FolderInfo{});
        QVERIFY(makeTree(m_dir.path(), {"with blank/", "data.bin=" + QString(1234, 'x'), "empty="}));
        QCOMPARE(
            fs.folder(m_dir.filePath("with blank")), (FolderInfo{"with blank", m_dir.filePath("with blank"), true}));
        QCOMPARE(fs.folder(m_dir.filePath("data.bin")).exists, false);
        // Relative paths are taken from the current folder.
        const QString previous = QDir::currentPath();
        QVERIFY(QDir::setCurrent(m_dir.path()));
        const FolderInfo relative = fs.folder("with blank");
        QDir::setCurrent(previous);
        QCOMPARE(relative.path, QFileInfo(m_dir.filePath("with blank")).absoluteFilePath());
        QVERIFY(relative.exists);

        QCOMPARE(fs.fileSize(m_dir.filePath("data.bin")), 1234);
        QCOMPARE(fs.fileSize(m_dir.filePath("empty")), 0);
        for (const QString &path : {m_dir.filePath("missing.bin"), m_dir.path(), QString()})
            QCOMPARE(errorNumberOf([&] { fs.fileSize(path); }), ErrorNumber::FileNotFound);
    }

    void driveNames_data()
    {
        // typeName: "-" where not checked
        KeloTest::addColumns<DriveInfo, QString, QString>({"drive", "typeName", "displayName"});
        const auto row = [](const char *name, const DriveInfo &drive, const QString &type, const QString &display) {
            QTest::newRow(name) << drive << type << display;
        };
        row("removable, no medium", drive(1, false, "A"), "Removable Disk", "(A:)");
        row("empty floppy, stale volume", drive(1, false, "A", "Old"), "-", "(A:)");
        row("fixed", drive(2, true, "C"), "Local Disk", "Local Disk (C:)");
        row("fixed, volume name", drive(2, true, "C", "System"), "-", "System (C:)");
        row("fixed, not ready", drive(2, false), "Local Disk", "-");
        row("mount, no letter", drive(2, true, "", "home"), "-", "home ");
        row("remote with letter", drive(3, true, "Z"), "Network Disk", "-");
        row("remote without letter", drive(3, true), "Network Folder", "Network Folder ");
        row("remote not ready, letter", drive(3, false, "Z"), "Drive Unavailable", "(Z:)");
        row("remote not ready", drive(3, false), "Drive Unavailable", "");
        row("mapped share", drive(3, true, "Z", "", "\\\\srv\\docs"), "-", "docs on 'srv' (Z:)");
        row("share beats volume", drive(3, true, "Z", "Vol", "\\\\srv\\docs"), "-", "docs on 'srv' (Z:)");
        row("share not ready", drive(3, false, "Z", "", "\\\\srv\\docs"), "-", "docs on 'srv' (Z:)");
        row("share, no letter", drive(3, true, "", "", "\\\\srv\\docs"), "-", "docs on 'srv' ");
        row("cd-rom, empty", drive(4, false, "E"), "Compact Disk", "-");
        row("cd-rom", drive(4, true, "E"), "-", "Compact Disk (E:)");
        row("ram disk", drive(5, true), "RAM Disk", "RAM Disk ");
        row("ram disk, letter", drive(5, true, "R"), "-", "RAM Disk (R:)");
        row("unknown", drive(0, true, "Q"), "Unknown Disk", "Unknown Disk (Q:)");
        row("code 6", drive(6, true), "Unknown Disk", "-");
        row("code -1", drive(-1, true), "Unknown Disk", "-");
    }

    void driveNames()
    {
        const auto [drive, typeName, displayName]
            = KeloTest::fetch<DriveInfo, QString, QString>({"drive", "typeName", "displayName"});
        if (typeName != "-")
            QCOMPARE(DriveTypeName(drive), typeName);
        if (displayName != "-")
            QCOMPARE(DriveDisplayName(drive), displayName);
    }

    void shareAndFolderDisplayNames()
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

        const QString table = m_dir.filePath("mountinfo");
        QVERIFY(writeFile(table,
            "27 1 8:2 / / rw - ext4 /dev/sda2 rw\n30 27 8:3 / /home rw - ext4 /dev/sda3 rw\n"
            "40 27 0:41 / /mnt/share rw - cifs //winbox/public rw\n"));
        const FileSystem fs(fakeProbes(table));
        QCOMPARE(FolderDisplayName(FolderInfo{"docs", "/home/docs", true}, fs), QString("docs"));
        QCOMPARE(FolderDisplayName(FolderInfo{"", "/", true}, fs), QString("Root "));
        QCOMPARE(FolderDisplayName(FolderInfo{"", "/mnt/share", true}, fs), QString("public on 'winbox' "));
        // A root whose drive has gone, and a record of nothing at all.
        QCOMPARE(FolderDisplayName(FolderInfo{"", "/media/gone", false}, fs), QString("Unknown drive or folder"));
        QCOMPARE(FolderDisplayName(FolderInfo{}, fs), QString("Unknown drive or folder"));
        // Paths: a mount point keeps its own folder name, only "/" shows as its drive.
        QStringList names;
        for (const char *path : {"/home", "/home/user/", "/", "//"})
            names << FolderDisplayName(QString(path), fs);
        QCOMPARE(names, QStringList({"home", "user", "Root ", "Root "}));
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

    void sizeInKB_data()
    {
        // expected: -1: Overflow
        KeloTest::addColumns<double, int>({"bytes", "expected"});
        QTest::newRow("0") << 0.0 << 0;
        QTest::newRow("1") << 1.0 << 1;
        QTest::newRow("1023") << 1023.0 << 1;
        QTest::newRow("1024") << 1024.0 << 1;
        QTest::newRow("1025") << 1025.0 << 2;
        QTest::newRow("1048577") << 1048577.0 << 1025;
        QTest::newRow("4 GiB") << 4294967296.0 << 4194304;
        QTest::newRow("largest") << 2199023254528.0 << 2147483647;
        QTest::newRow("one byte more") << 2199023254529.0 << -1;
        QTest::newRow("negative") << -1e20 << -1;
        QTest::newRow("infinity") << std::numeric_limits<double>::infinity() << -1;
        QTest::newRow("NaN") << std::numeric_limits<double>::quiet_NaN() << -1;
    }

    void sizeInKB()
    {
        const auto [bytes, expected] = KeloTest::fetch<double, int>({"bytes", "expected"});
        int result = -1;
        QCOMPARE(errorNumberOf([&] { result = SizeInKB(bytes); }), expected < 0 ? int(ErrorNumber::Overflow) : 0);
        QCOMPARE(result, expected);
        QCOMPARE(SizeInKB(Q_INT64_C(3) * 1024 * 1024 * 1024), 3145728); // a 64-bit count converts implicitly
    }

    void stripAtNull()
    {
        QStringList stripped;
        for (const QString &text : {u"C:\\Windows"_qs, QString(), QString::fromUtf16(u"abc\0def", 7),
                 QString::fromUtf16(u"\0abc", 4), QString::fromUtf16(u"abc\0", 4), QString::fromUtf16(u"a\0b\0", 4)})
            stripped << StripAtNull(text);
        QCOMPARE(stripped, QStringList({"C:\\Windows", "", "abc", "", "abc", "a"}));
    }
};

QTEST_GUILESS_MAIN(tst_FileSystem)
#include "tst_filesystem.moc"
