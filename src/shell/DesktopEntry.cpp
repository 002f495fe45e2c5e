#include "DesktopEntry.h"

#include "DetachedLauncher.h"
#include "XdgIniFile.h"

#include <QFile>

namespace Kelocontrols {

namespace {

const QString entryGroup = QStringLiteral("Desktop Entry");
const QByteArray terminalProgram = "x-terminal-emulator";

bool isFileCode(QChar code)
{
    return code == u'f' || code == u'F' || code == u'u' || code == u'U';
}

// One Exec argument with its field codes expanded; @p usedFile tells whether it held a file code.
QByteArray expandArgument(
    const QString &argument, const QByteArray &filePath, const DesktopEntry &entry, bool &usedFile)
{
    QByteArray expanded;
    QString literal; // collected and encoded whole, so surrogate pairs stay together
    for (qsizetype i = 0; i < argument.size(); ++i) {
        const QChar c = argument.at(i);
        if (c != u'%' || i + 1 >= argument.size()) {
            literal.append(c);
            continue;
        }
        const QChar code = argument.at(++i);
        if (code == u'%') {
            literal.append(u'%');
            continue;
        }
        expanded += literal.toUtf8();
        literal.clear();
        if (isFileCode(code)) {
            expanded += filePath;
            usedFile = true;
        } else if (code == u'c') {
            expanded += entry.name().toUtf8();
        } else if (code == u'k') {
            expanded += entry.filePath().toUtf8();
        }
        // %i inside a longer argument, the deprecated codes and unknown ones give nothing.
    }
    return expanded + literal.toUtf8();
}

} // namespace

std::optional<DesktopEntry> DesktopEntry::load(const QString &filePath, const QString &id)
{
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    return parse(file.readAll(), filePath, id);
}

std::optional<DesktopEntry> DesktopEntry::parse(const QByteArray &text, const QString &filePath, const QString &id)
{
    const XdgIniFile ini = XdgIniFile::parse(text);
    if (!ini.hasGroup(entryGroup)) {
        return std::nullopt;
    }
    DesktopEntry entry;
    entry.m_id = id;
    entry.m_filePath = filePath;
    entry.m_type = ini.string(entryGroup, QStringLiteral("Type"));
    entry.m_name = ini.string(entryGroup, QStringLiteral("Name"));
    entry.m_icon = ini.string(entryGroup, QStringLiteral("Icon"));
    entry.m_exec = ini.string(entryGroup, QStringLiteral("Exec"));
    entry.m_tryExec = ini.string(entryGroup, QStringLiteral("TryExec"));
    entry.m_workingDirectory = ini.string(entryGroup, QStringLiteral("Path"));
    entry.m_hidden = ini.boolean(entryGroup, QStringLiteral("Hidden"));
    entry.m_terminal = ini.boolean(entryGroup, QStringLiteral("Terminal"));
    entry.m_mimeTypes = ini.list(entryGroup, QStringLiteral("MimeType"));
    return entry;
}

bool DesktopEntry::handles(const QString &mimeType) const
{
    return m_mimeTypes.contains(mimeType, Qt::CaseInsensitive);
}

bool DesktopEntry::isLaunchable() const
{
    if (m_type != u"Application" || m_hidden) {
        return false;
    }
    if (!m_tryExec.isEmpty() && DetachedLauncher::findExecutable(m_tryExec.toUtf8()).isEmpty()) {
        return false;
    }
    // A terminal entry needs both the terminal and its own program.
    const std::optional<QStringList> arguments = splitExec(m_exec);
    return arguments && !DetachedLauncher::findExecutable(arguments->first().toUtf8()).isEmpty()
        && !programPath().isEmpty();
}

std::optional<QStringList> DesktopEntry::splitExec(const QString &exec)
{
    QStringList arguments;
    QString current;
    bool inArgument = false;
    bool quoted = false;
    for (qsizetype i = 0; i < exec.size(); ++i) {
        const QChar c = exec.at(i);
        if (quoted) {
            if (c == u'"') {
                quoted = false;
            } else if (c == u'\\' && i + 1 < exec.size() && QStringView(u"\"`$\\").contains(exec.at(i + 1))) {
                current.append(exec.at(++i));
            } else {
                current.append(c);
            }
        } else if (c == u' ' || c == u'\t' || c == u'\n') {
            if (inArgument) {
                arguments.append(current);
                current.clear();
                inArgument = false;
            }
        } else if (c == u'"') {
            quoted = true;
            inArgument = true;
        } else if (c == u'\\' && i + 1 < exec.size()) {
            current.append(exec.at(++i));
            inArgument = true;
        } else {
            current.append(c);
            inArgument = true;
        }
    }
    if (quoted) {
        return std::nullopt;
    }
    if (inArgument) {
        arguments.append(current);
    }
    if (arguments.isEmpty()) {
        return std::nullopt;
    }
    return arguments;
}

std::optional<QList<QByteArray>> DesktopEntry::commandLine(const QByteArray &filePath) const
{
    const std::optional<QStringList> arguments = splitExec(m_exec);
    if (!arguments) {
        return std::nullopt;
    }
    QList<QByteArray> command;
    if (m_terminal) {
        command << terminalProgram << "-e";
    }
    bool usedFile = false;
    for (const QString &argument : *arguments) {
        if (argument == u"%i") {
            if (!m_icon.isEmpty()) {
                command << "--icon" << m_icon.toUtf8();
            }
            continue;
        }
        const QByteArray expanded = expandArgument(argument, filePath, *this, usedFile);
        if (!expanded.isEmpty() || argument.isEmpty()) {
            command << expanded;
        }
    }
    if (command.size() == (m_terminal ? 2 : 0)) {
        return std::nullopt; // the Exec line held nothing but field codes
    }
    if (!usedFile) {
        command << filePath;
    }
    return command;
}

QByteArray DesktopEntry::programPath() const
{
    if (m_terminal) {
        return DetachedLauncher::findExecutable(terminalProgram);
    }
    const std::optional<QStringList> arguments = splitExec(m_exec);
    if (!arguments) {
        return {};
    }
    return DetachedLauncher::findExecutable(arguments->first().toUtf8());
}

} // namespace Kelocontrols
