#include "DesktopAssociations.h"

#include <QMimeDatabase>
#include <QTest>

#include "XdgTestSandbox.h"

using namespace Kelocontrols;

namespace {

// The id of the handler for a type, "" for none.
QString handlerId(const QString &mimeType)
{
    const std::optional<DesktopEntry> handler = DesktopAssociations().handlerFor(mimeType);
    return handler ? handler->id() : QString();
}

} // namespace

class tst_DesktopAssociations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void environmentAndFileOrder();
    void listedTypeFoundInIdOrder();
    void defaultsWinInPrecedenceOrder();
    void addedAndRemovedAssociations();
    void desktopSpecificListComesFirst();
    void moreImportantFolderMasksEntries();
    void subfolderIds();
    void parentTypesAndAliases();
    void unusableEntriesArePassedOver();

private:
    std::unique_ptr<XdgTestSandbox> m_sandbox;
};

void tst_DesktopAssociations::init()
{
    m_sandbox = std::make_unique<XdgTestSandbox>();
    for (const char *program : {"app-a", "app-b", "app-c"}) {
        m_sandbox->addRecorder(QString::fromLatin1(program));
    }
    m_sandbox->addEntry(u"a.desktop"_qs, u"app-a %f"_qs, u"text/plain;"_qs);
    m_sandbox->addEntry(u"b.desktop"_qs, u"app-b %f"_qs, u"text/plain;image/png;"_qs);
    m_sandbox->addEntry(u"c.desktop"_qs, u"app-c %f"_qs, u"image/png;"_qs);
}

void tst_DesktopAssociations::cleanup()
{
    m_sandbox.reset();
}

void tst_DesktopAssociations::environmentAndFileOrder()
{
    qputenv("XDG_CURRENT_DESKTOP", "GNOME:Unity");
    const DesktopAssociations::Environment environment = DesktopAssociations::Environment::current();
    QCOMPARE(environment.desktops, (QStringList{u"gnome"_qs, u"unity"_qs}));
    QCOMPARE(environment.dataDirs, QStringList{m_sandbox->path(u"data"_qs)});
    const QString config = m_sandbox->path(u"config"_qs);
    const QString configDir = m_sandbox->path(u"configdirs"_qs);
    const QString dataHome = m_sandbox->path(u"datahome/applications"_qs);
    const QString data = m_sandbox->path(u"data/applications"_qs);
    QCOMPARE(DesktopAssociations().mimeAppsLists(),
        (QStringList{config + u"/gnome-mimeapps.list"_qs, config + u"/unity-mimeapps.list"_qs,
            config + u"/mimeapps.list"_qs, configDir + u"/gnome-mimeapps.list"_qs,
            configDir + u"/unity-mimeapps.list"_qs, configDir + u"/mimeapps.list"_qs,
            dataHome + u"/gnome-mimeapps.list"_qs, dataHome + u"/unity-mimeapps.list"_qs,
            dataHome + u"/mimeapps.list"_qs, dataHome + u"/defaults.list"_qs, data + u"/gnome-mimeapps.list"_qs,
            data + u"/unity-mimeapps.list"_qs, data + u"/mimeapps.list"_qs, data + u"/defaults.list"_qs}));
    QCOMPARE(DesktopAssociations().applicationDirs(), (QStringList{dataHome, data}));

    // Unset or relative values fall back to the standard folders.
    qunsetenv("XDG_CONFIG_DIRS");
    qputenv("XDG_DATA_DIRS", "relative/share::");
    qunsetenv("XDG_CURRENT_DESKTOP");
    const DesktopAssociations::Environment defaults = DesktopAssociations::Environment::current();
    QCOMPARE(defaults.configDirs, QStringList{u"/etc/xdg"_qs});
    QCOMPARE(defaults.dataDirs, (QStringList{u"/usr/local/share"_qs, u"/usr/share"_qs}));
    QCOMPARE(defaults.desktops, QStringList());
}

void tst_DesktopAssociations::listedTypeFoundInIdOrder()
{
    QCOMPARE(handlerId(u"text/plain"_qs), u"a.desktop"_qs);
    QCOMPARE(handlerId(u"image/png"_qs), u"b.desktop"_qs);
    QCOMPARE(handlerId(u"application/x-kelo-nothing"_qs), QString());
    QCOMPARE(handlerId(u"video/mp4"_qs), QString());
    // The environment is read at each call.
    m_sandbox->addEntry(u"0first.desktop"_qs, u"app-c %f"_qs, u"text/plain;"_qs);
    QCOMPARE(handlerId(u"text/plain"_qs), u"0first.desktop"_qs);
}

void tst_DesktopAssociations::defaultsWinInPrecedenceOrder()
{
    m_sandbox->write(u"data/applications/mimeapps.list"_qs, "[Default Applications]\ntext/plain=c.desktop\n");
    QCOMPARE(handlerId(u"text/plain"_qs), u"c.desktop"_qs); // even though c does not list the type
    m_sandbox->write(u"data/applications/defaults.list"_qs,
        "[Default Applications]\nimage/png=c.desktop\n[Added Associations]\ntext/plain=b.desktop\n");
    QCOMPARE(handlerId(u"image/png"_qs), u"c.desktop"_qs);
    m_sandbox->write(u"configdirs/mimeapps.list"_qs, "[Default Applications]\ntext/plain=b.desktop\n");
    QCOMPARE(handlerId(u"text/plain"_qs), u"b.desktop"_qs);
    m_sandbox->write(
        u"config/mimeapps.list"_qs, "[Default Applications]\nText/Plain=missing.desktop;a.desktop;c.desktop\n");
    QCOMPARE(handlerId(u"text/plain"_qs), u"a.desktop"_qs); // first installed one, key without regard to case
}

void tst_DesktopAssociations::addedAndRemovedAssociations()
{
    m_sandbox->write(u"config/mimeapps.list"_qs, "[Removed Associations]\ntext/plain=a.desktop;\n");
    QCOMPARE(handlerId(u"text/plain"_qs), u"b.desktop"_qs);
    m_sandbox->write(u"config/mimeapps.list"_qs,
        "[Added Associations]\ntext/plain=c.desktop;\n[Removed Associations]\ntext/plain=a.desktop;\n");
    QCOMPARE(handlerId(u"text/plain"_qs), u"c.desktop"_qs);
    // A removal in the same file beats an addition there.
    m_sandbox->write(u"config/mimeapps.list"_qs,
        "[Added Associations]\ntext/plain=c.desktop;a.desktop\n"
        "[Removed Associations]\ntext/plain=c.desktop;\n");
    QCOMPARE(handlerId(u"text/plain"_qs), u"a.desktop"_qs);
    // A removal in a more important file beats an addition in a less important one ...
    m_sandbox->write(u"config/mimeapps.list"_qs, "[Removed Associations]\ntext/plain=c.desktop;a.desktop;b.desktop\n");
    m_sandbox->write(u"datahome/applications/mimeapps.list"_qs, "[Added Associations]\ntext/plain=c.desktop;\n");
    QCOMPARE(handlerId(u"text/plain"_qs), QString());
    // ... but not a default.
    m_sandbox->write(u"datahome/applications/mimeapps.list"_qs, "[Default Applications]\ntext/plain=c.desktop;\n");
    QCOMPARE(handlerId(u"text/plain"_qs), u"c.desktop"_qs);
    // An addition in a more important file than the removal holds.
    m_sandbox->write(u"config/mimeapps.list"_qs, "[Added Associations]\ntext/plain=b.desktop\n");
    m_sandbox->write(u"datahome/applications/mimeapps.list"_qs, "[Removed Associations]\ntext/plain=b.desktop\n");
    QCOMPARE(handlerId(u"text/plain"_qs), u"b.desktop"_qs);
}

void tst_DesktopAssociations::desktopSpecificListComesFirst()
{
    m_sandbox->write(u"config/mimeapps.list"_qs, "[Default Applications]\ntext/plain=b.desktop\n");
    m_sandbox->write(u"config/kde-mimeapps.list"_qs, "[Default Applications]\ntext/plain=c.desktop\n");
    QCOMPARE(handlerId(u"text/plain"_qs), u"b.desktop"_qs);
    qputenv("XDG_CURRENT_DESKTOP", "KDE");
    QCOMPARE(handlerId(u"text/plain"_qs), u"c.desktop"_qs);
    qputenv("XDG_CURRENT_DESKTOP", "X-Other:KDE");
    QCOMPARE(handlerId(u"text/plain"_qs), u"c.desktop"_qs);
}

void tst_DesktopAssociations::moreImportantFolderMasksEntries()
{
    // datahome's a.desktop replaces data's, and no longer lists text/plain.
    m_sandbox->addEntry(u"a.desktop"_qs, u"app-c %f"_qs, u"image/gif;"_qs, true);
    QCOMPARE(handlerId(u"text/plain"_qs), u"b.desktop"_qs);
    const std::optional<DesktopEntry> replaced = DesktopAssociations().entry(u"a.desktop"_qs);
    QVERIFY(replaced);
    QCOMPARE(replaced->exec(), u"app-c %f"_qs);
    QCOMPARE(replaced->filePath(), m_sandbox->path(u"datahome/applications/a.desktop"_qs));
    // A Hidden entry deletes the id altogether, defaults naming it included.
    m_sandbox->addEntry(u"b.desktop"_qs, u"app-b %f"_qs, u"text/plain;"_qs, true, "Hidden=true\n");
    m_sandbox->write(u"config/mimeapps.list"_qs, "[Default Applications]\ntext/plain=b.desktop\n");
    QCOMPARE(handlerId(u"text/plain"_qs), QString());
    QVERIFY(!DesktopAssociations().entry(u"nothing.desktop"_qs));
}

void tst_DesktopAssociations::subfolderIds()
{
    m_sandbox->addEntry(u"kde/viewer.desktop"_qs, u"app-c %f"_qs, u"text/x-kelo;"_qs);
    m_sandbox->write(u"config/mimeapps.list"_qs, "[Default Applications]\ntext/plain=kde-viewer.desktop\n");
    QCOMPARE(handlerId(u"text/plain"_qs), u"kde-viewer.desktop"_qs);
    QCOMPARE(DesktopAssociations().entry(u"kde-viewer.desktop"_qs)->filePath(),
        m_sandbox->path(u"data/applications/kde/viewer.desktop"_qs));
}

void tst_DesktopAssociations::parentTypesAndAliases()
{
    const QMimeDatabase database;
    const QMimeType csrc = database.mimeTypeForName(u"text/x-csrc"_qs);
    QVERIFY(csrc.isValid());
    QVERIFY(csrc.allAncestors().contains(u"text/plain"_qs));
    // No handler of its own: the parent's.
    QCOMPARE(handlerId(u"text/x-csrc"_qs), u"a.desktop"_qs);
    // The parent's default does not beat a handler of the type itself.
    m_sandbox->write(u"config/mimeapps.list"_qs, "[Default Applications]\ntext/plain=b.desktop\n");
    m_sandbox->addEntry(u"z.desktop"_qs, u"app-c %f"_qs, u"text/x-csrc;"_qs);
    QCOMPARE(handlerId(u"text/x-csrc"_qs), u"z.desktop"_qs);
    // A key may name an alias of the type.
    QVERIFY(csrc.aliases().contains(u"text/x-c"_qs));
    m_sandbox->write(u"config/mimeapps.list"_qs, "[Default Applications]\ntext/x-c=c.desktop\n");
    QCOMPARE(handlerId(u"text/x-csrc"_qs), u"c.desktop"_qs);
    QCOMPARE(DesktopAssociations().handlerFor(csrc)->id(), u"c.desktop"_qs);
    QVERIFY(!DesktopAssociations().handlerFor(QMimeType()));
}

void tst_DesktopAssociations::unusableEntriesArePassedOver()
{
    m_sandbox->addEntry(u"0broken.desktop"_qs, u"app-a \"%f"_qs, u"text/plain;"_qs);
    m_sandbox->addEntry(u"0missing.desktop"_qs, u"kelo-not-installed %f"_qs, u"text/plain;"_qs);
    m_sandbox->addEntry(u"0tryexec.desktop"_qs, u"app-a %f"_qs, u"text/plain;"_qs, false, "TryExec=kelo-not-there\n");
    m_sandbox->write(u"data/applications/0link.desktop"_qs,
        "[Desktop Entry]\nType=Link\nURL=http://x\nExec=app-a\nMimeType=text/plain;\n");
    m_sandbox->write(u"data/applications/0junk.desktop"_qs, "no group at all\n");
    m_sandbox->write(
        u"config/mimeapps.list"_qs, "[Default Applications]\ntext/plain=0missing.desktop;0broken.desktop\n");
    QCOMPARE(handlerId(u"text/plain"_qs), u"a.desktop"_qs);
}

QTEST_GUILESS_MAIN(tst_DesktopAssociations)
#include "tst_desktopassociations.moc"
