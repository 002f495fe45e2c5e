#pragma once

#include <kelocontrols_export.h>

#include <QString>

#include <functional>

namespace Kelocontrols {

/**
 * The per-user settings store: named string values addressed by an
 * application name, a section and a key.
 *
 * Each application name is one INI file,
 * `$XDG_CONFIG_HOME/Kelocontrols/<AppName>.ini` (`~/.config` when
 * XDG_CONFIG_HOME is unset, empty or not an absolute path), each section one
 * group of that file, each key one entry of the group; values are strings.
 * The environment is read at every call, and every call opens the file
 * afresh and writes it back at once, so all processes of the user see each
 * other's values straight away.
 *
 * Names are matched as the classic store matched them, without regard to
 * case: a section saved as "Ocean" is found as "ocean", and writing to
 * "OCEAN" updates that same section (the spelling first used stays). Any
 * character is allowed in a name, the separators '/' and '\\' included:
 * they, and '%', are written percent-encoded ("%2F", "%5C", "%25") so that
 * they do not open sub-groups, and read back as they were given.
 *
 * Use the store from the user-interface thread only, as the rest of the
 * library.
 *
 * \code
 * Kelocontrols::SaveSetting("Kelochameleon1", "Ocean", "Interval", "1500");
 * QString interval = Kelocontrols::GetSetting("Kelochameleon1", "Ocean", "Interval", "1000");
 * \endcode
 */

/**
 * Stores @p Setting under (@p AppName, @p Section, @p Key), creating the
 * file, the section and the key as needed.
 * @throws RuntimeError InvalidProcedureCall (5) for an empty application
 *         name, section or key; PermissionDenied (70) when the file cannot be
 *         written (a read-only or missing folder that cannot be created, a
 *         folder in the file's place); InvalidFileFormat (321) when the
 *         existing file cannot be parsed (it is then left untouched).
 */
KELOCONTROLS_EXPORT void SaveSetting(
    const QString &AppName, const QString &Section, const QString &Key, const QString &Setting);

/**
 * The value stored under (@p AppName, @p Section, @p Key), or @p Default when
 * the file, the section or the key does not exist. A value that a hand edit
 * left as a comma-separated list comes back joined with ",".
 * @throws RuntimeError InvalidProcedureCall (5) for an empty application
 *         name, section or key; PermissionDenied (70) when the file exists but
 *         cannot be read; InvalidFileFormat (321) when it cannot be parsed.
 */
KELOCONTROLS_EXPORT QString GetSetting(
    const QString &AppName, const QString &Section, const QString &Key, const QString &Default = QString());

/**
 * The INI file that holds the settings of @p AppName, as the next call would
 * use it: the name as already on disk when a file differing only in case
 * exists, else the encoded name.
 * @throws RuntimeError InvalidProcedureCall (5) for an empty name.
 */
KELOCONTROLS_EXPORT QString settingsFilePath(const QString &AppName);

/// The folder of all settings files: `$XDG_CONFIG_HOME/Kelocontrols` or `~/.config/Kelocontrols`.
KELOCONTROLS_EXPORT QString settingsFolder();

/// What a call did with the store, for SettingsAccessHook.
enum class SettingsAccess {
    Read, ///< GetSetting
    Write, ///< SaveSetting
};

/// Called after every successful GetSetting / SaveSetting with the names as given.
using SettingsAccessHook
    = std::function<void(SettingsAccess access, const QString &AppName, const QString &Section, const QString &Key)>;

/**
 * Installs a hook that sees every access to the store, in order (for
 * diagnostics and tests), and returns the previous one; an empty hook
 * removes it.
 */
KELOCONTROLS_EXPORT SettingsAccessHook setSettingsAccessHook(SettingsAccessHook hook);

} // namespace Kelocontrols
