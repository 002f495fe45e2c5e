#pragma once

#include <kelocontrols_export.h>

#include "DesktopEntry.h"

#include <QHash>
#include <QMimeType>
#include <QString>
#include <QStringList>

#include <optional>

namespace Kelocontrols {

/**
 * Finds the application that opens a file type, the way xdg-open and
 * xdg-mime do on a freedesktop system.
 *
 * For a MIME type the candidates come, in this order, from:
 * 1. the `[Default Applications]` of the mimeapps.list files, taken in
 *    precedence order (see mimeAppsLists());
 * 2. their `[Added Associations]`, less the `[Removed Associations]` of the
 *    same or a more important file;
 * 3. every installed desktop entry whose MimeType lists the type, in the
 *    order of the applications folders (then by desktop file id), less the
 *    removed associations.
 * The first candidate that is installed and launchable
 * (DesktopEntry::isLaunchable()) wins. Keys match the type's name and its
 * aliases. When the type itself has no handler its ancestors are tried in
 * the order of QMimeType::allAncestors() (text/x-csrc falls back to
 * text/plain).
 *
 * An instance is a snapshot of the environment ($XDG_CONFIG_HOME,
 * $XDG_CONFIG_DIRS, $XDG_DATA_HOME, $XDG_DATA_DIRS, $XDG_CURRENT_DESKTOP, with
 * their standard defaults) and reads the files when asked; make a new one
 * for each request so that changes show.
 */
class KELOCONTROLS_EXPORT DesktopAssociations
{
public:
    /// The folders the look-up reads.
    struct Environment
    {
        QString configHome; ///< $XDG_CONFIG_HOME or ~/.config
        QStringList configDirs; ///< $XDG_CONFIG_DIRS or /etc/xdg
        QString dataHome; ///< $XDG_DATA_HOME or ~/.local/share
        QStringList dataDirs; ///< $XDG_DATA_DIRS or /usr/local/share, /usr/share
        QStringList desktops; ///< $XDG_CURRENT_DESKTOP split at ':', lower-cased

        /// The environment of the process as it is now.
        static Environment current();
    };

    /// A look-up over the process environment as it is now.
    DesktopAssociations();
    explicit DesktopAssociations(const Environment &environment);

    /**
     * The mimeapps.list files in precedence order, whether they exist or
     * not: for each of $XDG_CONFIG_HOME, each $XDG_CONFIG_DIRS,
     * $XDG_DATA_HOME/applications and each $XDG_DATA_DIRS/applications, the
     * files `<desktop>-mimeapps.list` of the current desktops and then
     * `mimeapps.list`; in the data folders the older `defaults.list` (its
     * defaults only) comes last.
     */
    QStringList mimeAppsLists() const;

    /// The applications folders, most important first.
    QStringList applicationDirs() const;

    /// The desktop entry with the id @p desktopId from the most important folder that has it; nullopt when none.
    std::optional<DesktopEntry> entry(const QString &desktopId) const;

    /// The application for exactly @p mimeType and the names in @p aliases (no ancestors); nullopt when none.
    std::optional<DesktopEntry> handlerForType(const QString &mimeType, const QStringList &aliases = {}) const;

    /// The application for @p type, trying its ancestors when it has none; nullopt when none.
    std::optional<DesktopEntry> handlerFor(const QMimeType &type) const;

    /// The application for the type named @p mimeType (its aliases and ancestors from QMimeDatabase).
    std::optional<DesktopEntry> handlerFor(const QString &mimeType) const;

private:
    struct MimeAppsList
    {
        QString path;
        bool defaultsOnly = false; ///< defaults.list: only [Default Applications] counts
    };
    QList<MimeAppsList> mimeAppsListFiles() const;
    void indexApplications() const;
    std::optional<DesktopEntry> launchable(const QString &desktopId) const;

    Environment m_environment;
    mutable bool m_indexed = false;
    mutable QHash<QString, QString> m_pathById; ///< desktop file id -> file of the most important folder
    mutable QStringList m_idsInOrder; ///< ids by folder precedence, then by id
    mutable QHash<QString, std::optional<DesktopEntry>> m_loaded;
};

} // namespace Kelocontrols
