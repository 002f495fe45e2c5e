#include "SettingsStore.h"

#include "RuntimeError.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QSettings>
#include <QStringList>

#include <utility>

namespace Kelocontrols {

namespace {

SettingsAccessHook &currentHook()
{
    static SettingsAccessHook hook;
    return hook;
}

void notify(SettingsAccess access, const QString &appName, const QString &section, const QString &key)
{
    if (currentHook()) {
        currentHook()(access, appName, section, key);
    }
}

void requireName(const QString &name, const char *what)
{
    if (name.isEmpty()) {
        throw RuntimeError(ErrorNumber::InvalidProcedureCall,
            QStringLiteral("Invalid procedure call or argument: empty %1").arg(QLatin1String(what)));
    }
}

// QSettings reads '/' and '\' in a key as group separators; encoding them
// (and the escape character itself) keeps every name one level deep.
QString encodeName(const QString &name)
{
    QString encoded;
    encoded.reserve(name.size());
    for (const QChar c : name) {
        if (c == u'%') {
            encoded += QLatin1String("%25");
        } else if (c == u'/') {
            encoded += QLatin1String("%2F");
        } else if (c == u'\\') {
            encoded += QLatin1String("%5C");
        } else {
            encoded += c;
        }
    }
    return encoded;
}

// The spelling already in use for @p encoded among @p existing, compared
// without regard to case; @p encoded itself when there is none.
QString spellingIn(const QStringList &existing, const QString &encoded)
{
    for (const QString &candidate : existing) {
        if (candidate.compare(encoded, Qt::CaseInsensitive) == 0) {
            return candidate;
        }
    }
    return encoded;
}

QString configHome()
{
    const QString xdg = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (!xdg.isEmpty() && QDir::isAbsolutePath(xdg)) {
        return xdg;
    }
    return QDir::homePath() + QLatin1String("/.config");
}

[[noreturn]] void raiseAccessError(const QString &path)
{
    throw RuntimeError(ErrorNumber::PermissionDenied, QStringLiteral("Permission denied: %1").arg(path));
}

[[noreturn]] void raiseFormatError(const QString &path)
{
    throw RuntimeError(ErrorNumber::InvalidFileFormat, QStringLiteral("Invalid file format: %1").arg(path));
}

// A file's size and time of last change: while both stay, so do its contents.
struct FileStamp
{
    qint64 size = -1;
    QDateTime modified;
    bool operator==(const FileStamp &other) const = default;
};

FileStamp stampOf(const QString &path)
{
    const QFileInfo info(path);
    return {info.size(), info.lastModified()};
}

// QSettings keeps the parsed contents of a file it has read, and reports a
// format error only while parsing; the next QSettings on the unchanged file
// takes the cached contents and says nothing. The store therefore remembers
// which files failed to parse, so that they fail again as long as they stay
// as they are, and are never rewritten.
QHash<QString, FileStamp> &malformedFiles()
{
    static QHash<QString, FileStamp> files;
    return files;
}

void refuseKnownMalformed(const QString &path)
{
    const auto known = malformedFiles().constFind(path);
    if (known == malformedFiles().cend()) {
        return;
    }
    if (*known == stampOf(path)) {
        raiseFormatError(path);
    }
    malformedFiles().remove(path);
}

void checkStatus(const QSettings &settings, const QString &path)
{
    switch (settings.status()) {
    case QSettings::NoError:
        return;
    case QSettings::AccessError:
        raiseAccessError(path);
    case QSettings::FormatError:
        malformedFiles().insert(path, stampOf(path));
        raiseFormatError(path);
    }
}

// The group of @p section in @p settings, entered; the key's spelling in it.
QString enterSection(QSettings &settings, const QString &section, const QString &key)
{
    settings.beginGroup(spellingIn(settings.childGroups(), encodeName(section)));
    return spellingIn(settings.childKeys(), encodeName(key));
}

// A value a hand edit left unquoted with commas reads as a list.
QString textOf(const QVariant &value)
{
    if (value.typeId() == QMetaType::QStringList) {
        return value.toStringList().join(QLatin1Char(','));
    }
    return value.toString();
}

} // namespace

QString settingsFolder()
{
    return configHome() + QLatin1String("/Kelocontrols");
}

QString settingsFilePath(const QString &AppName)
{
    requireName(AppName, "application name");
    const QString folder = settingsFolder();
    const QString fileName = encodeName(AppName) + QLatin1String(".ini");
    const QStringList existing = QDir(folder).entryList({QStringLiteral("*.ini")}, QDir::Files | QDir::Hidden);
    return folder + QLatin1Char('/') + spellingIn(existing, fileName);
}

void SaveSetting(const QString &AppName, const QString &Section, const QString &Key, const QString &Setting)
{
    requireName(Section, "section");
    requireName(Key, "key");
    const QString path = settingsFilePath(AppName);
    if (!QDir().mkpath(QFileInfo(path).absolutePath())) {
        raiseAccessError(path);
    }
    refuseKnownMalformed(path);
    QSettings settings(path, QSettings::IniFormat);
    checkStatus(settings, path); // a file that cannot be parsed must not be rewritten
    const QString key = enterSection(settings, Section, Key);
    settings.setValue(key, Setting);
    settings.endGroup();
    settings.sync();
    checkStatus(settings, path);
    notify(SettingsAccess::Write, AppName, Section, Key);
}

QString GetSetting(const QString &AppName, const QString &Section, const QString &Key, const QString &Default)
{
    requireName(Section, "section");
    requireName(Key, "key");
    const QString path = settingsFilePath(AppName);
    QString result = Default;
    if (QFileInfo::exists(path)) {
        refuseKnownMalformed(path);
        QSettings settings(path, QSettings::IniFormat);
        checkStatus(settings, path);
        const QString key = enterSection(settings, Section, Key);
        if (settings.contains(key)) {
            result = textOf(settings.value(key));
        }
    }
    notify(SettingsAccess::Read, AppName, Section, Key);
    return result;
}

SettingsAccessHook setSettingsAccessHook(SettingsAccessHook hook)
{
    return std::exchange(currentHook(), std::move(hook));
}

} // namespace Kelocontrols
