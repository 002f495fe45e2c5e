#pragma once

#include <kelocontrols_export.h>

#include <QHash>
#include <QMutex>
#include <QPixmap>
#include <QString>
#include <QStringList>

namespace Kelocontrols {

/**
 * Finds named icons (freedesktop icon names such as "folder" or
 * "text-x-generic") as square pixmaps of a given pixel size, and keeps
 * every answer for the life of the process.
 *
 * An icon is taken from the first source that has it:
 * 1. the desktop's icon theme (QIcon::fromTheme), when the session has one;
 * 2. the Adwaita and then the hicolor theme found under the search roots
 *    (by default $XDG_DATA_HOME/icons, each $XDG_DATA_DIRS/icons,
 *    /usr/local/share/icons and /usr/share/icons, read when the instance is
 *    made), which the offscreen platform and minimal sessions lack as their
 *    theme: the fixed-size folder of the exact size first, then a scalable
 *    (SVG) picture, then the nearest other size scaled;
 * 3. for pixmapOrBuiltin(), a small painted set (BuiltinIcon) so that there
 *    always is a picture.
 *
 * The theme folders are indexed once, on the first look-up that needs them;
 * afterwards a look-up costs a hash probe. Answers, "not found" included,
 * are cached per (icon name, size). The pixmaps are exactly size x size
 * pixels (device pixel ratio 1), the icon centred on a transparent ground.
 * Needs a QGuiApplication, as every QPixmap does.
 */
class KELOCONTROLS_EXPORT IconLookup
{
public:
    /// The painted pictures of the last resort.
    enum class BuiltinIcon {
        File, ///< a sheet of paper with a folded corner
        Folder, ///< a closed folder
        OpenFolder, ///< an open folder
        Drive, ///< a disk drive
    };

    /// A look-up over the default search roots and themes.
    IconLookup();
    /// A look-up over the given folders that hold themes, in the given theme order.
    IconLookup(const QStringList &searchRoots, const QStringList &themes, bool useDesktopTheme);
    IconLookup(const IconLookup &) = delete;
    IconLookup &operator=(const IconLookup &) = delete;

    /// The process-wide look-up, made on first use.
    static IconLookup &instance();

    /// The default folders that may hold themes, in order of precedence.
    static QStringList defaultSearchRoots();

    /// The icon @p iconName at @p size pixels, or a null pixmap when no source has it (or @p size < 1).
    QPixmap pixmap(const QString &iconName, int size);

    /// The first of @p iconNames that some source has, else the painted @p fallback.
    QPixmap pixmapOrBuiltin(const QStringList &iconNames, BuiltinIcon fallback, int size);

    /**
     * The file of the fallback themes that pixmap() would use for
     * @p iconName at @p size (the desktop theme aside), or "" when none of
     * them has the icon.
     */
    QString themeFile(const QString &iconName, int size);

    /// The painted picture @p icon at @p size pixels (null for @p size < 1).
    static QPixmap builtinPixmap(BuiltinIcon icon, int size);

    /// How many theme folders have been read so far (they are read once).
    int directoryScans() const;

private:
    struct ThemeFile
    {
        QString path;
        int size = 0; ///< nominal size of its folder
        int minSize = 0; ///< scalable range (equal to size for fixed folders)
        int maxSize = 0;
        bool scalable = false;
    };
    using ThemeIndex = QHash<QString, QList<ThemeFile>>;

    void ensureIndexed();
    void indexTheme(const QString &themeFolder, ThemeIndex &index);
    void indexDirectory(const QString &directory, const ThemeFile &pattern, ThemeIndex &index);
    static const ThemeFile *bestFile(const QList<ThemeFile> &files, int size);
    QPixmap loadThemePixmap(const QString &iconName, int size);
    static QPixmap desktopThemePixmap(const QString &iconName, int size);

    QStringList m_searchRoots;
    QStringList m_themes;
    bool m_useDesktopTheme = true;
    bool m_indexed = false;
    int m_directoryScans = 0;
    QList<ThemeIndex> m_themeIndexes; ///< one per theme, in m_themes order
    QHash<QString, QPixmap> m_cache; ///< "size:name" -> pixmap (null when not found)
    mutable QMutex m_mutex;
};

} // namespace Kelocontrols
