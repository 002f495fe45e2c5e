#pragma once

#include <kelocontrols_export.h>

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace Kelocontrols {

/**
 * One application's desktop entry (a `.desktop` file of an applications
 * folder): what it is called, which file types it handles and how it is
 * started.
 *
 * Only the `[Desktop Entry]` group counts; localized keys (Name[de]) are
 * not read.
 */
class KELOCONTROLS_EXPORT DesktopEntry
{
public:
    /**
     * Reads the desktop entry at @p filePath and gives it the desktop file
     * id @p id ("org.gnome.gedit.desktop"). nullopt when the file cannot be
     * read or has no `[Desktop Entry]` group.
     */
    static std::optional<DesktopEntry> load(const QString &filePath, const QString &id);
    /// The same from file text, for entries that are not on disk.
    static std::optional<DesktopEntry> parse(const QByteArray &text, const QString &filePath, const QString &id);

    QString id() const { return m_id; }
    QString filePath() const { return m_filePath; }
    QString type() const { return m_type; }
    QString name() const { return m_name; }
    QString icon() const { return m_icon; }
    QString exec() const { return m_exec; }
    QString tryExec() const { return m_tryExec; }
    QString workingDirectory() const { return m_workingDirectory; }
    bool isHidden() const { return m_hidden; }
    bool runsInTerminal() const { return m_terminal; }
    QStringList mimeTypes() const { return m_mimeTypes; }

    /// True when the entry lists @p mimeType (compared without regard to case) in its MimeType key.
    bool handles(const QString &mimeType) const;

    /**
     * True when the entry can be started now: an Application entry, not
     * Hidden, whose Exec line is well formed and whose program (and TryExec
     * program, and for Terminal entries x-terminal-emulator) is found on
     * $PATH or at its given path.
     */
    bool isLaunchable() const;

    /**
     * The arguments of the Exec line with its quoting removed: blanks
     * separate arguments; inside double quotes a backslash makes the next
     * `"`, `` ` ``, `$` or `\` literal and blanks do not separate. Outside
     * quotes a backslash makes the next character literal. nullopt for an
     * empty line or an unterminated quote. Field codes are left in place.
     */
    static std::optional<QStringList> splitExec(const QString &exec);

    /**
     * The command line that opens the file @p filePath (the exact bytes of
     * its path): the Exec arguments with the field codes expanded. %f, %F,
     * %u and %U give the path (a local path is a valid URL argument too);
     * %i gives "--icon" and the Icon when it has one; %c the Name; %k the
     * entry's own file; %% a "%". The deprecated codes (%d %D %n %N %v %m)
     * and unknown ones give nothing, and an argument made of nothing else is
     * dropped. When the line has no file code the path is added at the end,
     * so the program still gets the file. A Terminal entry is run as
     * `x-terminal-emulator -e <command line>`. nullopt when the Exec line is
     * malformed. The first item is argv[0] as written (a name or a path).
     */
    std::optional<QList<QByteArray>> commandLine(const QByteArray &filePath) const;

    /// The executable that commandLine() starts, resolved along $PATH; "" when it is not found.
    QByteArray programPath() const;

private:
    QString m_id;
    QString m_filePath;
    QString m_type;
    QString m_name;
    QString m_icon;
    QString m_exec;
    QString m_tryExec;
    QString m_workingDirectory;
    bool m_hidden = false;
    bool m_terminal = false;
    QStringList m_mimeTypes;
};

} // namespace Kelocontrols
