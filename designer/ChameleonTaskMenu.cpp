#include "ChameleonTaskMenu.h"

#include "ChameleonSettingsDialog.h"
#include "Kelochameleon.h"

#include <QAction>
#include <QtDesigner/QDesignerFormWindowInterface>

namespace Kelocontrols::Designer {

ChameleonTaskMenu::ChameleonTaskMenu(Kelochameleon *chameleon, QObject *parent)
    : QObject(parent)
    , m_chameleon(chameleon)
    , m_editAction(new QAction(actionText(), this))
{
    m_editAction->setObjectName(QStringLiteral("actionEditChameleonSettings"));
    connect(m_editAction, &QAction::triggered, this, &ChameleonTaskMenu::editSettings);
}

void ChameleonTaskMenu::editSettings()
{
    if (!m_chameleon) {
        return;
    }
    QDesignerFormWindowInterface *formWindow = QDesignerFormWindowInterface::findFormWindow(m_chameleon.data());
    QWidget *parent = formWindow ? static_cast<QWidget *>(formWindow) : m_chameleon->window();
    ChameleonSettingsDialog dialog(m_chameleon, formWindow, parent);
    dialog.exec();
}

} // namespace Kelocontrols::Designer
