#include "IconLookup.h"

#include "XdgIniFile.h"

#include <QDir>
#include <QFileInfo>
#include <QIcon>
#include <QImageReader>
#include <QMutexLocker>
#include <QPainter>
#include <QPainterPath>
#include <QRegularExpression>
#include <QSet>

#include <cstdlib>

namespace Kelocontrols {

namespace {

// The contexts whose icons stand for files, folders and drives; Adwaita
// keeps its full-colour pictures of them in "Legacy" since it went symbolic.
const QSet<QString> &wantedContexts()
{
    static const QSet<QString> contexts{u"mimetypes"_qs, u"places"_qs, u"devices"_qs, u"legacy"_qs};
    return contexts;
}

QString envPath(const char *name)
{
    return QString::fromLocal8Bit(qgetenv(name));
}

// Centres @p image on a transparent square of @p size, scaled to fit.
QPixmap squarePixmap(const QImage &image, int size)
{
    QImage square(size, size, QImage::Format_ARGB32_Premultiplied);
    square.fill(Qt::transparent);
    if (!image.isNull()) {
        QImage scaled = image;
        if (image.width() != size || image.height() != size) {
            scaled = image.scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        }
        QPainter painter(&square);
        painter.drawImage((size - scaled.width()) / 2, (size - scaled.height()) / 2, scaled);
    }
    QPixmap pixmap = QPixmap::fromImage(square);
    pixmap.setDevicePixelRatio(1.0);
    return pixmap;
}

QImage readIconImage(const QString &path, int size)
{
    QImageReader reader(path);
    const QSize natural = reader.size();
    if (natural.isValid() && natural != QSize(size, size) && path.endsWith(u".svg"_qs, Qt::CaseInsensitive)) {
        // Vector pictures are rendered at the wanted size instead of scaled afterwards.
        reader.setScaledSize(natural.scaled(size, size, Qt::KeepAspectRatio));
    }
    return reader.read();
}

void paintFile(QPainter &p)
{
    QPainterPath sheet;
    sheet.moveTo(6, 2);
    sheet.lineTo(20, 2);
    sheet.lineTo(27, 9);
    sheet.lineTo(27, 30);
    sheet.lineTo(6, 30);
    sheet.closeSubpath();
    p.setPen(QPen(QColor(96, 96, 96), 1.2));
    p.setBrush(QColor(250, 250, 250));
    p.drawPath(sheet);
    QPainterPath corner;
    corner.moveTo(20, 2);
    corner.lineTo(20, 9);
    corner.lineTo(27, 9);
    p.setBrush(QColor(210, 210, 210));
    p.drawPath(corner);
    p.setPen(QPen(QColor(170, 170, 170), 1.2));
    for (int y = 14; y <= 26; y += 4) {
        p.drawLine(QPointF(10, y), QPointF(23, y));
    }
}

void paintFolder(QPainter &p, bool open)
{
    const QColor back(196, 140, 30);
    const QColor front(240, 190, 70);
    p.setPen(QPen(back.darker(130), 1.0));
    QPainterPath rear;
    rear.moveTo(2, 7);
    rear.lineTo(12, 7);
    rear.lineTo(15, 10);
    rear.lineTo(30, 10);
    rear.lineTo(30, 27);
    rear.lineTo(2, 27);
    rear.closeSubpath();
    p.setBrush(back);
    p.drawPath(rear);
    QPainterPath flap;
    if (open) {
        // The front flap tilts forward and shows a sheet inside.
        p.setBrush(QColor(250, 250, 250));
        p.drawRect(QRectF(6, 12, 20, 12));
        flap.moveTo(6, 15);
        flap.lineTo(32, 15);
        flap.lineTo(28, 27);
        flap.lineTo(2, 27);
    } else {
        flap.moveTo(2, 13);
        flap.lineTo(30, 13);
        flap.lineTo(30, 27);
        flap.lineTo(2, 27);
    }
    flap.closeSubpath();
    p.setBrush(front);
    p.drawPath(flap);
}

void paintDrive(QPainter &p)
{
    p.setPen(QPen(QColor(70, 70, 70), 1.2));
    p.setBrush(QColor(200, 200, 205));
    p.drawRoundedRect(QRectF(2, 11, 28, 12), 2.5, 2.5);
    p.setPen(QPen(QColor(140, 140, 145), 1.0));
    p.drawLine(QPointF(5, 20), QPointF(20, 20));
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(40, 200, 60));
    p.drawEllipse(QRectF(24, 16, 3, 3));
}

} // namespace

IconLookup::IconLookup()
    : IconLookup(defaultSearchRoots(), {u"Adwaita"_qs, u"hicolor"_qs}, true)
{
}

IconLookup::IconLookup(const QStringList &searchRoots, const QStringList &themes, bool useDesktopTheme)
    : m_searchRoots(searchRoots)
    , m_themes(themes)
    , m_useDesktopTheme(useDesktopTheme)
{
}

IconLookup &IconLookup::instance()
{
    static IconLookup lookup;
    return lookup;
}

QStringList IconLookup::defaultSearchRoots()
{
    QStringList roots;
    QString dataHome = envPath("XDG_DATA_HOME");
    if (dataHome.isEmpty()) {
        dataHome = QDir::homePath() + u"/.local/share"_qs;
    }
    roots.append(dataHome + u"/icons"_qs);
    for (const QString &dir : envPath("XDG_DATA_DIRS").split(u':', Qt::SkipEmptyParts)) {
        roots.append(dir + u"/icons"_qs);
    }
    // The system folders count even when XDG_DATA_DIRS leaves them out.
    roots.append(u"/usr/local/share/icons"_qs);
    roots.append(u"/usr/share/icons"_qs);
    QStringList unique;
    for (const QString &root : roots) {
        const QString clean = QDir::cleanPath(root);
        if (!unique.contains(clean)) {
            unique.append(clean);
        }
    }
    return unique;
}

QPixmap IconLookup::pixmap(const QString &iconName, int size)
{
    if (size < 1 || iconName.isEmpty()) {
        return {};
    }
    QMutexLocker locker(&m_mutex);
    const QString key = QString::number(size) + u':' + iconName;
    const auto cached = m_cache.constFind(key);
    if (cached != m_cache.constEnd()) {
        return *cached;
    }
    QPixmap found;
    if (m_useDesktopTheme) {
        found = desktopThemePixmap(iconName, size);
    }
    if (found.isNull()) {
        found = loadThemePixmap(iconName, size);
    }
    m_cache.insert(key, found);
    return found;
}

QPixmap IconLookup::pixmapOrBuiltin(const QStringList &iconNames, BuiltinIcon fallback, int size)
{
    if (size < 1) {
        return {};
    }
    for (const QString &name : iconNames) {
        const QPixmap found = pixmap(name, size);
        if (!found.isNull()) {
            return found;
        }
    }
    QMutexLocker locker(&m_mutex);
    const QString key = QString::number(size) + u":builtin:"_qs + QString::number(int(fallback));
    auto cached = m_cache.constFind(key);
    if (cached == m_cache.constEnd()) {
        cached = m_cache.insert(key, builtinPixmap(fallback, size));
    }
    return *cached;
}

QString IconLookup::themeFile(const QString &iconName, int size)
{
    QMutexLocker locker(&m_mutex);
    ensureIndexed();
    for (const ThemeIndex &index : std::as_const(m_themeIndexes)) {
        const auto files = index.constFind(iconName);
        if (files == index.constEnd()) {
            continue;
        }
        if (const ThemeFile *best = bestFile(*files, size)) {
            return best->path;
        }
    }
    return {};
}

int IconLookup::directoryScans() const
{
    QMutexLocker locker(&m_mutex);
    return m_directoryScans;
}

QPixmap IconLookup::builtinPixmap(BuiltinIcon icon, int size)
{
    if (size < 1) {
        return {};
    }
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    // Drawn on a 32-unit grid and scaled, so every size looks alike.
    painter.scale(size / 32.0, size / 32.0);
    switch (icon) {
    case BuiltinIcon::File:
        paintFile(painter);
        break;
    case BuiltinIcon::Folder:
        paintFolder(painter, false);
        break;
    case BuiltinIcon::OpenFolder:
        paintFolder(painter, true);
        break;
    case BuiltinIcon::Drive:
        paintDrive(painter);
        break;
    }
    painter.end();
    return QPixmap::fromImage(image);
}

void IconLookup::ensureIndexed()
{
    if (m_indexed) {
        return;
    }
    m_indexed = true;
    for (const QString &theme : std::as_const(m_themes)) {
        ThemeIndex index;
        for (const QString &root : std::as_const(m_searchRoots)) {
            const QString folder = root + u'/' + theme;
            if (QFileInfo(folder).isDir()) {
                indexTheme(folder, index);
            }
        }
        m_themeIndexes.append(index);
    }
}

void IconLookup::indexTheme(const QString &themeFolder, ThemeIndex &index)
{
    const XdgIniFile description = XdgIniFile::load(themeFolder + u"/index.theme"_qs);
    const QStringList directories
        = description.string(u"Icon Theme"_qs, u"Directories"_qs).split(u',', Qt::SkipEmptyParts);
    if (directories.isEmpty()) {
        // No description: take the usual "NxN/context" and "scalable/context" layout.
        static const QRegularExpression sized(u"^(\\d+)x\\1$"_qs);
        const QDir theme(themeFolder);
        for (const QString &sizeFolder : theme.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            const auto match = sized.match(sizeFolder);
            if (!match.hasMatch() && sizeFolder != u"scalable") {
                continue;
            }
            for (const QString &context :
                QDir(theme.filePath(sizeFolder)).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
                if (!wantedContexts().contains(context.toLower())) {
                    continue;
                }
                ThemeFile pattern;
                pattern.scalable = !match.hasMatch();
                pattern.size = pattern.scalable ? 48 : match.captured(1).toInt();
                pattern.minSize = pattern.scalable ? 1 : pattern.size;
                pattern.maxSize = pattern.scalable ? 4096 : pattern.size;
                indexDirectory(themeFolder + u'/' + sizeFolder + u'/' + context, pattern, index);
            }
        }
        return;
    }
    for (const QString &directory : std::as_const(directories)) {
        const QString group = directory.trimmed();
        QString context = description.string(group, u"Context"_qs).toLower();
        if (context.isEmpty()) {
            context = group.section(u'/', -1).toLower();
        }
        const int scale = description.string(group, u"Scale"_qs).toInt();
        if (!wantedContexts().contains(context) || scale > 1) {
            continue;
        }
        ThemeFile pattern;
        pattern.size = description.string(group, u"Size"_qs).toInt();
        const QString type = description.string(group, u"Type"_qs);
        const int threshold
            = description.contains(group, u"Threshold"_qs) ? description.string(group, u"Threshold"_qs).toInt() : 2;
        if (type == u"Scalable") {
            pattern.scalable = true;
            pattern.minSize = description.contains(group, u"MinSize"_qs)
                ? description.string(group, u"MinSize"_qs).toInt()
                : pattern.size;
            pattern.maxSize = description.contains(group, u"MaxSize"_qs)
                ? description.string(group, u"MaxSize"_qs).toInt()
                : pattern.size;
        } else if (type == u"Fixed") {
            pattern.minSize = pattern.maxSize = pattern.size;
        } else {
            pattern.minSize = pattern.size - threshold;
            pattern.maxSize = pattern.size + threshold;
        }
        if (pattern.size > 0) {
            indexDirectory(themeFolder + u'/' + group, pattern, index);
        }
    }
}

void IconLookup::indexDirectory(const QString &directory, const ThemeFile &pattern, ThemeIndex &index)
{
    const QDir dir(directory);
    if (!dir.exists()) {
        return;
    }
    ++m_directoryScans;
    static const QStringList filters{u"*.png"_qs, u"*.svg"_qs};
    for (const QString &fileName : dir.entryList(filters, QDir::Files | QDir::Readable)) {
        ThemeFile file = pattern;
        file.path = dir.filePath(fileName);
        index[fileName.left(fileName.size() - 4)].append(file);
    }
}

const IconLookup::ThemeFile *IconLookup::bestFile(const QList<ThemeFile> &files, int size)
{
    const ThemeFile *best = nullptr;
    int bestRank = 0;
    for (const ThemeFile &file : files) {
        // Lower is better: the exact fixed size, then a scalable folder whose
        // range holds the size, then the nearest size, larger before smaller
        // because scaling down loses less than scaling up.
        int rank = 0;
        if (!file.scalable && file.size == size) {
            rank = 0;
        } else if (file.minSize <= size && size <= file.maxSize) {
            rank = file.scalable ? 1 : 2;
        } else {
            const int distance = size < file.minSize ? file.minSize - size : size - file.maxSize;
            rank = 10 + 2 * distance + (size < file.minSize ? 0 : 1);
        }
        if (!best || rank < bestRank) {
            best = &file;
            bestRank = rank;
        }
    }
    return best;
}

QPixmap IconLookup::loadThemePixmap(const QString &iconName, int size)
{
    ensureIndexed();
    for (const ThemeIndex &index : std::as_const(m_themeIndexes)) {
        const auto files = index.constFind(iconName);
        if (files == index.constEnd()) {
            continue;
        }
        const ThemeFile *best = bestFile(*files, size);
        const QImage image = best ? readIconImage(best->path, size) : QImage();
        if (!image.isNull()) {
            return squarePixmap(image, size);
        }
    }
    return {};
}

QPixmap IconLookup::desktopThemePixmap(const QString &iconName, int size)
{
    // Without a theme Qt searches only its fallback paths; the own index is
    // used then, so that the answer does not depend on Qt's fallback rules.
    if (QIcon::themeName().isEmpty()) {
        return {};
    }
    if (!QIcon::hasThemeIcon(iconName)) {
        return {};
    }
    const QIcon icon = QIcon::fromTheme(iconName);
    const QPixmap drawn = icon.pixmap(QSize(size, size), 1.0);
    if (drawn.isNull()) {
        return {};
    }
    return squarePixmap(drawn.toImage(), size);
}

} // namespace Kelocontrols
