#include "DesktopAssociations.h"

#include "XdgIniFile.h"

#include <QDir>
#include <QDirIterator>
#include <QMimeDatabase>
#include <QSet>

#include <algorithm>

namespace Kelocontrols {

namespace {

const QString defaultGroup = QStringLiteral("Default Applications");
const QString addedGroup = QStringLiteral("Added Associations");
const QString removedGroup = QStringLiteral("Removed Associations");

// An absolute folder from the environment variable @p name, else @p fallback.
QString folderFromEnvironment(const char *name, const QString &fallback)
{
    const QString value = qEnvironmentVariable(name);
    return QDir::isAbsolutePath(value) ? QDir::cleanPath(value) : fallback;
}

// The absolute folders of a ':'-separated variable; @p fallback when it names none.
QStringList foldersFromEnvironment(const char *name, const QStringList &fallback)
{
    QStringList folders;
    for (const QString &folder : qEnvironmentVariable(name).split(u':', Qt::SkipEmptyParts)) {
        // Relative entries are not allowed in these lists and are skipped.
        if (QDir::isAbsolutePath(folder) && !folders.contains(QDir::cleanPath(folder))) {
            folders.append(QDir::cleanPath(folder));
        }
    }
    return folders.isEmpty() ? fallback : folders;
}

// The desktop ids a list file gives @p group for any of @p names (keys compared without regard to case).
QStringList idsFor(const XdgIniFile &list, const QString &group, const QStringList &names)
{
    QStringList ids;
    for (const QString &key : list.keys(group)) {
        if (names.contains(key, Qt::CaseInsensitive)) {
            ids += list.list(group, key);
        }
    }
    return ids;
}

} // namespace

DesktopAssociations::Environment DesktopAssociations::Environment::current()
{
    Environment environment;
    const QString home = QDir::homePath();
    environment.configHome = folderFromEnvironment("XDG_CONFIG_HOME", home + u"/.config"_qs);
    environment.configDirs = foldersFromEnvironment("XDG_CONFIG_DIRS", {u"/etc/xdg"_qs});
    environment.dataHome = folderFromEnvironment("XDG_DATA_HOME", home + u"/.local/share"_qs);
    environment.dataDirs = foldersFromEnvironment("XDG_DATA_DIRS", {u"/usr/local/share"_qs, u"/usr/share"_qs});
    for (const QString &desktop : qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':', Qt::SkipEmptyParts)) {
        environment.desktops.append(desktop.toLower());
    }
    return environment;
}

DesktopAssociations::DesktopAssociations()
    : DesktopAssociations(Environment::current())
{
}

DesktopAssociations::DesktopAssociations(const Environment &environment)
    : m_environment(environment)
{
}

QList<DesktopAssociations::MimeAppsList> DesktopAssociations::mimeAppsListFiles() const
{
    QList<MimeAppsList> lists;
    const auto addFolder = [&](const QString &folder, bool withDefaultsList) {
        for (const QString &desktop : m_environment.desktops) {
            lists.append({folder + u'/' + desktop + u"-mimeapps.list"_qs, false});
        }
        lists.append({folder + u"/mimeapps.list"_qs, false});
        if (withDefaultsList) {
            lists.append({folder + u"/defaults.list"_qs, true});
        }
    };
    addFolder(m_environment.configHome, false);
    for (const QString &folder : m_environment.configDirs) {
        addFolder(folder, false);
    }
    for (const QString &folder : applicationDirs()) {
        addFolder(folder, true);
    }
    return lists;
}

QStringList DesktopAssociations::mimeAppsLists() const
{
    QStringList paths;
    for (const MimeAppsList &list : mimeAppsListFiles()) {
        paths.append(list.path);
    }
    return paths;
}

QStringList DesktopAssociations::applicationDirs() const
{
    QStringList folders{m_environment.dataHome + u"/applications"_qs};
    for (const QString &folder : m_environment.dataDirs) {
        const QString applications = folder + u"/applications"_qs;
        if (!folders.contains(applications)) {
            folders.append(applications);
        }
    }
    return folders;
}

void DesktopAssociations::indexApplications() const
{
    if (m_indexed) {
        return;
    }
    m_indexed = true;
    for (const QString &folder : applicationDirs()) {
        const QDir root(folder);
        QStringList idsHere;
        QHash<QString, QString> pathsHere;
        QDirIterator it(folder, {u"*.desktop"_qs}, QDir::Files | QDir::Readable, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            // The id of applications/kde/app.desktop is kde-app.desktop.
            const QString id = root.relativeFilePath(path).replace(u'/', u'-');
            idsHere.append(id);
            pathsHere.insert(id, path);
        }
        std::sort(idsHere.begin(), idsHere.end());
        for (const QString &id : std::as_const(idsHere)) {
            // A more important folder's entry hides one of the same id (a Hidden one too).
            if (!m_pathById.contains(id)) {
                m_pathById.insert(id, pathsHere.value(id));
                m_idsInOrder.append(id);
            }
        }
    }
}

std::optional<DesktopEntry> DesktopAssociations::entry(const QString &desktopId) const
{
    indexApplications();
    const auto cached = m_loaded.constFind(desktopId);
    if (cached != m_loaded.constEnd()) {
        return *cached;
    }
    const auto path = m_pathById.constFind(desktopId);
    std::optional<DesktopEntry> loaded;
    if (path != m_pathById.constEnd()) {
        loaded = DesktopEntry::load(*path, desktopId);
    }
    m_loaded.insert(desktopId, loaded);
    return loaded;
}

std::optional<DesktopEntry> DesktopAssociations::launchable(const QString &desktopId) const
{
    std::optional<DesktopEntry> found = entry(desktopId);
    if (found && found->isLaunchable()) {
        return found;
    }
    return std::nullopt;
}

std::optional<DesktopEntry> DesktopAssociations::handlerForType(
    const QString &mimeType, const QStringList &aliases) const
{
    const QStringList names = QStringList{mimeType} + aliases;
    QList<std::pair<MimeAppsList, XdgIniFile>> lists;
    for (const MimeAppsList &list : mimeAppsListFiles()) {
        XdgIniFile content = XdgIniFile::load(list.path);
        if (!content.isEmpty()) {
            lists.append({list, content});
        }
    }
    for (const auto &[list, content] : std::as_const(lists)) {
        for (const QString &id : idsFor(content, defaultGroup, names)) {
            if (auto handler = launchable(id)) {
                return handler;
            }
        }
    }
    // A removal holds for its own file and every less important one.
    QSet<QString> removed;
    for (const auto &[list, content] : std::as_const(lists)) {
        if (list.defaultsOnly) {
            continue;
        }
        for (const QString &id : idsFor(content, removedGroup, names)) {
            removed.insert(id);
        }
        for (const QString &id : idsFor(content, addedGroup, names)) {
            if (removed.contains(id)) {
                continue;
            }
            if (auto handler = launchable(id)) {
                return handler;
            }
        }
    }
    indexApplications();
    for (const QString &id : std::as_const(m_idsInOrder)) {
        if (removed.contains(id)) {
            continue;
        }
        const std::optional<DesktopEntry> candidate = entry(id);
        if (!candidate) {
            continue;
        }
        const bool listsType
            = std::any_of(names.begin(), names.end(), [&](const QString &name) { return candidate->handles(name); });
        if (listsType && candidate->isLaunchable()) {
            return candidate;
        }
    }
    return std::nullopt;
}

std::optional<DesktopEntry> DesktopAssociations::handlerFor(const QMimeType &type) const
{
    if (!type.isValid()) {
        return std::nullopt;
    }
    if (auto handler = handlerForType(type.name(), type.aliases())) {
        return handler;
    }
    const QMimeDatabase database;
    for (const QString &ancestor : type.allAncestors()) {
        if (auto handler = handlerForType(ancestor, database.mimeTypeForName(ancestor).aliases())) {
            return handler;
        }
    }
    return std::nullopt;
}

std::optional<DesktopEntry> DesktopAssociations::handlerFor(const QString &mimeType) const
{
    const QMimeType type = QMimeDatabase().mimeTypeForName(mimeType);
    if (!type.isValid()) {
        return handlerForType(mimeType);
    }
    return handlerFor(type);
}

} // namespace Kelocontrols
