#include "FileSystem.h"
#include "RuntimeError.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "KeloTestSupport.h"

using namespace Kelocontrols;
using KeloTest::errorNumberOf;
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

FileSystem::Probes fakeProbes()
{
    FileSystem::Probes probes;
    probes.isFileMount = [](const QString &mountPoint) { return mountPoint == "/etc/hostname"; };
    probes.statVolume = [](const QString &mountPoint, qint64 &total, qint64 &free) {
        if (mountPoint == "/mnt/nfs-down")
            return false;
        total = 1000 * 1024;
        free = 250 * 1024;
        return true;
    };
    probes.volumeLabel = [](const QString &device) {
        if (device == "/dev/sda3")
            return QString("Home");
        if (device == "/dev/sr0")
            return QString("Ubuntu 22.04 LTS");
        if (device == "/dev/sdb1")
            return QString("STICK");
        return QString();
    };
    probes.isRemovable = [](const QString &majorMinor) { return majorMinor == "8:17" || majorMinor == "11:0"; };
    return probes;
}

FileSystem fileSystemOver(const QString &mountInfoPath)
{
    FileSystem::Probes probes = fakeProbes();
    probes.mountInfoPath = mountInfoPath;
    return FileSystem(probes);
}

} // namespace

class tst_FileSystem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parseMountInfo();
    void parseMountInfoEdgeCases();
    void shareNameFromSource_data();
    void shareNameFromSource();
    void labelFromDirectory();
    void removableFromSysfs();
    void driveLookups();
    void realSystem();
    void folder();
    void fileSize();
};

// Every volume a user sees, as "root | type | ready | share | volume | file system | device", in kernel order: the
// over-mounted /mnt/data at its first place, each mount point once, the system mounts left out.
void tst_FileSystem::parseMountInfo()
{
    QStringList drives;
    for (const DriveInfo &d : FileSystem::parseMountInfo(sampleMountInfo, fakeProbes())) {
        QVERIFY(d.driveLetter.isEmpty());
        QCOMPARE(d.totalSize, d.isReady ? 1000 * 1024 : 0);
        QCOMPARE(d.freeSpace, d.isReady ? 250 * 1024 : 0);
        drives << QStringList{d.rootPath, QString::number(d.driveType), d.isReady ? "ready" : "not ready", d.shareName,
            d.volumeName, d.fileSystem, d.device}
                      .join(" | ");
    }
    QCOMPARE(drives,
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
            "/mnt/data | 5 | ready |  | data | tmpfs | tmpfs", "/mnt/weird | 0 | ready |  | weird | mysteryfs | none",
            "/mnt/usb/backup | 2 | ready |  | /mnt/usb/backup | ext4 | /dev/sde1",
            "/var/backup | 2 | ready |  | /var/backup | xfs | /dev/sdf1"}));
}

void tst_FileSystem::parseMountInfoEdgeCases()
{
    const FileSystem::Probes probes = fakeProbes();
    QVERIFY(FileSystem::parseMountInfo(QByteArray(), probes).isEmpty());
    QVERIFY(FileSystem::parseMountInfo("1 2 3\n - - -\n\n", probes).isEmpty());

    // Escapes: tab, newline, backslash; an incomplete escape stays as written.
    const QList<DriveInfo> escaped
        = FileSystem::parseMountInfo("5 1 8:1 / /mnt/a\\011b\\012c\\134d rw - ext4 /dev/sdx1 rw\n"
                                     "6 1 8:2 / /mnt/e\\04 rw - ext4 /dev/sdx2 rw\n",
            probes);
    QCOMPARE(escaped.size(), 2);
    QCOMPARE(escaped[0].rootPath, QString("/mnt/a\tb\nc\\d"));
    QCOMPARE(escaped[1].rootPath, QString("/mnt/e\\04"));

    // A non-block local source of a known disk file system is still fixed; a
    // removable device outside /dev/ names still counts as removable.
    const QList<DriveInfo> other = FileSystem::parseMountInfo("7 1 0:90 / /pool rw - zfs rpool/data rw\n"
                                                              "8 1 8:17 / /mnt/stick rw - exfat /dev/sdb1 rw\n"
                                                              "9 1 0:91 / /mnt/ram rw - ramfs ramfs rw\n"
                                                              "10 1 0:92 / /mnt/dvd rw - udf /dev/sr1 rw\n",
        probes);
    QCOMPARE(other.size(), 4);
    QCOMPARE(other[0].driveType, DriveType::Fixed);
    QCOMPARE(other[1].driveType, DriveType::Removable);
    QCOMPARE(other[2].driveType, DriveType::RamDisk);
    QCOMPARE(other[3].driveType, DriveType::CDRom);

    // A derived name equal to a label is made distinct; the label stays.
    const QList<DriveInfo> clash = FileSystem::parseMountInfo("30 1 8:3 / /home rw - ext4 /dev/sda3 rw\n"
                                                              "31 1 8:4 / /mnt/Home rw - ext4 /dev/sda4 rw\n",
        probes);
    QCOMPARE(clash.size(), 2);
    QCOMPARE(clash[0].volumeName, QString("Home"));
    QCOMPARE(clash[1].volumeName, QString("/mnt/Home"));
}

void tst_FileSystem::shareNameFromSource_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("share");
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

void tst_FileSystem::shareNameFromSource()
{
    QFETCH(QString, source);
    QTEST(FileSystem::shareNameFromSource(source), "share");
}

void tst_FileSystem::labelFromDirectory()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QDir root(dir.path());
    QVERIFY(root.mkpath("dev/disk/by-label") && root.mkpath("dev/disk/by-uuid"));
    QVERIFY(writeFile(root.filePath("dev/sdb1"), {}) && writeFile(root.filePath("dev/sdc1"), {}));
    QVERIFY(QFile::link("../../sdb1", root.filePath("dev/disk/by-label/Data\\x20Disk")));
    QVERIFY(QFile::link("../../sdc1", root.filePath("dev/disk/by-label/M\\xc3\\xbcller")));
    QVERIFY(QFile::link("../../gone", root.filePath("dev/disk/by-label/Broken")));
    QVERIFY(QFile::link("../../sdb1", root.filePath("dev/disk/by-uuid/1234-ABCD")));
    const QString labels = root.filePath("dev/disk/by-label");

    QCOMPARE(FileSystem::labelFromDirectory(labels, root.filePath("dev/sdb1")), QString("Data Disk"));
    QCOMPARE(FileSystem::labelFromDirectory(labels, root.filePath("dev/disk/by-uuid/1234-ABCD")), QString("Data Disk"));
    QCOMPARE(FileSystem::labelFromDirectory(labels, root.filePath("dev/sdc1")), QString::fromUtf8("Müller"));
    QCOMPARE(FileSystem::labelFromDirectory(labels, root.filePath("dev/gone")), QString());
    QCOMPARE(FileSystem::labelFromDirectory(labels, root.filePath("dev/sdz9")), QString());
    QCOMPARE(FileSystem::labelFromDirectory(root.filePath("missing"), root.filePath("dev/sdb1")), QString());
}

void tst_FileSystem::removableFromSysfs()
{
    // sysfs: /sys/dev/block/MAJ:MIN links into the device tree, where a disk
    // has a "removable" flag and its partitions are sub-folders without one.
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QDir sys(dir.path());
    QVERIFY(sys.mkpath("dev/block") && sys.mkpath("devices/usb/block/sdb/sdb1")
        && sys.mkpath("devices/ata/block/sda/sda1") && sys.mkpath("devices/ata/block/sr0"));
    QVERIFY(writeFile(sys.filePath("devices/usb/block/sdb/removable"), "1\n"));
    QVERIFY(writeFile(sys.filePath("devices/ata/block/sda/removable"), "0\n"));
    QVERIFY(writeFile(sys.filePath("devices/ata/block/sr0/removable"), "1\n"));
    QVERIFY(QFile::link("../../devices/usb/block/sdb", sys.filePath("dev/block/8:16")));
    QVERIFY(QFile::link("../../devices/usb/block/sdb/sdb1", sys.filePath("dev/block/8:17")));
    QVERIFY(QFile::link("../../devices/ata/block/sda", sys.filePath("dev/block/8:0")));
    QVERIFY(QFile::link("../../devices/ata/block/sda/sda1", sys.filePath("dev/block/8:1")));
    QVERIFY(QFile::link("../../devices/ata/block/sr0", sys.filePath("dev/block/11:0")));

    QVERIFY(FileSystem::removableFromSysfs(dir.path(), "8:16"));
    QVERIFY(FileSystem::removableFromSysfs(dir.path(), "8:17"));
    QVERIFY(FileSystem::removableFromSysfs(dir.path(), "11:0"));
    QVERIFY(!FileSystem::removableFromSysfs(dir.path(), "8:0"));
    QVERIFY(!FileSystem::removableFromSysfs(dir.path(), "8:1"));
    QVERIFY(!FileSystem::removableFromSysfs(dir.path(), "99:9"));
    QVERIFY(!FileSystem::removableFromSysfs(dir.path(), ""));
    QVERIFY(!FileSystem::removableFromSysfs(dir.path(), "../../devices/usb/block/sdb"));
}

void tst_FileSystem::driveLookups()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString table = dir.filePath("mountinfo");
    QVERIFY(writeFile(table, sampleMountInfo));
    const FileSystem fs = fileSystemOver(table);
    QCOMPARE(fs.drives(), FileSystem::parseMountInfo(sampleMountInfo, fakeProbes()));

    // Mount points of volumes (a trailing slash allowed) and shares by name; not what lies below them, system or
    // file mounts, or another case.
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
    QCOMPARE(fs.getDrive(dir.path()).rootPath, fs.driveOf(dir.path()).rootPath);
    QCOMPARE(errorNumberOf([&] { fs.getDrive("/no/such/place"); }), ErrorNumber::PathNotFound);
    QCOMPARE(errorNumberOf([&] { fs.getDrive(""); }), ErrorNumber::PathNotFound);

    // Longest prefix on whole components; paths need not exist.
    QCOMPARE(fs.driveOf("/home/user/a/b/c.txt").rootPath, QString("/home"));
    QCOMPARE(fs.driveOf("/home/user/remote/src/main.cpp").rootPath, QString("/home/user/remote"));
    QCOMPARE(fs.driveOf("/homeland/x").rootPath, QString("/"));
    QCOMPARE(fs.driveOf("/mnt/my disk/x/../y").rootPath, QString("/mnt/my disk"));
    QCOMPARE(fs.driveOf("/mnt/nfs/../share/z").rootPath, QString("/mnt/share"));
    QCOMPARE(errorNumberOf([&] { fs.driveOf(""); }), ErrorNumber::PathNotFound);

    // Without a drive at "/", a path outside every mount has no drive.
    QVERIFY(writeFile(table, "30 28 8:3 / /home rw - ext4 /dev/sda3 rw\n"));
    QCOMPARE(errorNumberOf([&] { fs.driveOf("/usr/bin"); }), ErrorNumber::PathNotFound);
    QCOMPARE(fs.driveOf("/home/x").rootPath, QString("/home"));

    QVERIFY(QFile::remove(table));
    QCOMPARE(errorNumberOf([&] { fs.drives(); }), ErrorNumber::PathNotFound);
    QCOMPARE(errorNumberOf([&] { fs.driveExists("/"); }), ErrorNumber::PathNotFound);
}

void tst_FileSystem::realSystem()
{
    const FileSystem &fs = FileSystem::instance();
    QCOMPARE(&fs, &FileSystem::instance());
    const QList<DriveInfo> drives = fs.drives();
    QVERIFY(!drives.isEmpty());
    QVERIFY(fs.driveExists("/"));
    const DriveInfo root = fs.getDrive("/");
    QCOMPARE(root.rootPath, QString("/"));
    QVERIFY(root.isReady);
    QVERIFY(root.totalSize > 0);
    QVERIFY(!root.volumeName.isEmpty());
    for (const DriveInfo &drive : drives) {
        QVERIFY2(!drive.rootPath.startsWith("/proc") && !drive.rootPath.startsWith("/sys"), qPrintable(drive.rootPath));
        QVERIFY(drive.fileSystem != "devpts" && drive.fileSystem != "cgroup" && drive.fileSystem != "cgroup2");
        QVERIFY(drive.driveLetter.isEmpty());
    }

    // The drive of a deep path is the mount with the longest root above it.
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString deep = dir.filePath("a/b/c");
    QVERIFY(QDir().mkpath(deep));
    const DriveInfo holder = fs.driveOf(deep + "/not-yet.txt");
    const QString canonical = QFileInfo(deep).canonicalFilePath();
    QVERIFY(holder.rootPath == "/" || canonical.startsWith(holder.rootPath + "/"));
    for (const DriveInfo &drive : drives) {
        if (drive.rootPath.size() > holder.rootPath.size())
            QVERIFY2(!canonical.startsWith(drive.rootPath + "/"), qPrintable(drive.rootPath));
    }
}

void tst_FileSystem::folder()
{
    const FileSystem &fs = FileSystem::instance();
    QCOMPARE(fs.folder("/"), (FolderInfo{"", "/", true}));
    QCOMPARE(fs.folder("//"), (FolderInfo{"", "/", true}));
    QCOMPARE(fs.folder("/usr/"), (FolderInfo{"usr", "/usr", true}));
    QCOMPARE(fs.folder("/usr/share/../lib"), (FolderInfo{"lib", "/usr/lib", QFileInfo("/usr/lib").isDir()}));
    QCOMPARE(fs.folder("/no/such/folder"), (FolderInfo{"folder", "/no/such/folder", false}));
    QCOMPARE(fs.folder(""), FolderInfo{});

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(QDir(dir.path()).mkdir("with blank"));
    QVERIFY(writeFile(dir.filePath("plain.txt"), "x"));
    QCOMPARE(fs.folder(dir.filePath("with blank")), (FolderInfo{"with blank", dir.filePath("with blank"), true}));
    QCOMPARE(fs.folder(dir.filePath("plain.txt")).exists, false);

    // Relative paths are taken from the current folder.
    const QString previous = QDir::currentPath();
    QVERIFY(QDir::setCurrent(dir.path()));
    const FolderInfo relative = fs.folder("with blank");
    QDir::setCurrent(previous);
    QCOMPARE(relative.path, QFileInfo(dir.filePath("with blank")).absoluteFilePath());
    QVERIFY(relative.exists);
}

void tst_FileSystem::fileSize()
{
    const FileSystem &fs = FileSystem::instance();
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(writeFile(dir.filePath("data.bin"), QByteArray(1234, 'x')));
    QVERIFY(writeFile(dir.filePath("empty"), {}));
    QCOMPARE(fs.fileSize(dir.filePath("data.bin")), 1234);
    QCOMPARE(fs.fileSize(dir.filePath("empty")), 0);
    QCOMPARE(errorNumberOf([&] { fs.fileSize(dir.filePath("missing.bin")); }), ErrorNumber::FileNotFound);
    QCOMPARE(errorNumberOf([&] { fs.fileSize(dir.path()); }), ErrorNumber::FileNotFound);
    QCOMPARE(errorNumberOf([&] { fs.fileSize(""); }), ErrorNumber::FileNotFound);
}

QTEST_GUILESS_MAIN(tst_FileSystem)
#include "tst_filesystem.moc"
