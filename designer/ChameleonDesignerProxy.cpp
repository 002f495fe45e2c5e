#include "ChameleonDesignerProxy.h"

#include "Kelochameleon.h"

#include <QtDesigner/QDesignerFormWindowCursorInterface>
#include <QtDesigner/QDesignerFormWindowInterface>

namespace Kelocontrols::Designer {

namespace {

// What a theme sets, in the order it is written back: the maximum on both
// sides of the minimum, so that the chameleon's clamping accepts any pair.
const char *const ThemeProperties[]
    = {"BackgroundPicture", "BackgroundPictureStyle", "FontStyle", "Interval", "BackgroundStyle", "WandStyle",
        "NewBackColor", "Enabled", "ColorMaximum", "ColorMinimum", "ColorMaximum", "ColorStepRate"};

bool isColourBound(const char *name)
{
    return qstrcmp(name, "ColorMaximum") == 0 || qstrcmp(name, "ColorMinimum") == 0;
}

} // namespace

ChameleonDesignerProxy::ChameleonDesignerProxy(
    Kelochameleon *chameleon, QDesignerFormWindowInterface *formWindow, QObject *parent)
    : QObject(parent)
    , m_chameleon(chameleon)
    , m_formWindow(formWindow)
{
    setObjectName(QStringLiteral("ChameleonDesignerProxy"));
}

QVariant ChameleonDesignerProxy::read(const char *name) const
{
    return m_chameleon ? m_chameleon->property(name) : QVariant();
}

void ChameleonDesignerProxy::write(const char *name, const QVariant &value)
{
    if (!m_chameleon) {
        return;
    }
    if (m_formWindow && m_formWindow->cursor()) {
        m_formWindow->cursor()->setWidgetProperty(m_chameleon, QString::fromLatin1(name), value);
    } else {
        m_chameleon->setProperty(name, value);
    }
}

void ChameleonDesignerProxy::beginCommand(const QString &description)
{
    if (m_formWindow) {
        m_formWindow->beginCommand(description);
    }
}

void ChameleonDesignerProxy::endCommand()
{
    if (m_formWindow) {
        m_formWindow->endCommand();
    }
}

QVariantMap ChameleonDesignerProxy::themeValues() const
{
    QVariantMap values;
    for (const char *name : ThemeProperties) {
        values.insert(QString::fromLatin1(name), read(name));
    }
    return values;
}

void ChameleonDesignerProxy::putBack(const QVariantMap &values)
{
    for (const char *name : ThemeProperties) {
        m_chameleon->setProperty(name, values.value(QString::fromLatin1(name)));
    }
}

// The chameleon reads its theme into itself, unseen by Designer. The values
// it read are taken, the old ones put back, and the new ones written again
// as commands: undo then restores the old look, and the form file keeps the
// new one.
bool ChameleonDesignerProxy::GetTheme()
{
    if (!m_chameleon) {
        return false;
    }
    if (ThemeName().isEmpty()) {
        setThemeName(QStringLiteral("DefaultTheme"));
    }
    const QVariantMap before = themeValues();
    if (!m_chameleon->GetTheme()) {
        return false;
    }
    const QVariantMap after = themeValues();
    putBack(before);
    const bool boundsChanged
        = before.value(QStringLiteral("ColorMinimum")) != after.value(QStringLiteral("ColorMinimum"))
        || before.value(QStringLiteral("ColorMaximum")) != after.value(QStringLiteral("ColorMaximum"));
    beginCommand(QStringLiteral("Get Theme"));
    for (const char *name : ThemeProperties) {
        const QString key = QString::fromLatin1(name);
        if (isColourBound(name) ? boundsChanged : before.value(key) != after.value(key)) {
            write(name, after.value(key));
        }
    }
    endCommand();
    return true;
}

QVariant ChameleonDesignerProxy::SaveTheme()
{
    if (!m_chameleon) {
        return QVariant();
    }
    if (ThemeName().isEmpty()) {
        setThemeName(QStringLiteral("DefaultTheme"));
    }
    return m_chameleon->SaveTheme();
}

} // namespace Kelocontrols::Designer
