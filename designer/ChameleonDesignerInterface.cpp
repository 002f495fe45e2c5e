#include "ChameleonDesignerInterface.h"

#include "ChameleonTaskMenuFactory.h"

#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtDesigner/QDesignerTaskMenuExtension>
#include <QtDesigner/QExtensionManager>

namespace Kelocontrols::Designer {

ChameleonDesignerInterface::ChameleonDesignerInterface(ControlEntry entry, QObject *parent)
    : ControlDesignerInterface(std::move(entry), parent)
{
}

// QUiLoader never hands over a form editor: no task menu is needed there.
void ChameleonDesignerInterface::initialize(QDesignerFormEditorInterface *core)
{
    if (core && !m_taskMenuRegistered) {
        QExtensionManager *manager = core->extensionManager();
        manager->registerExtensions(new ChameleonTaskMenuFactory(manager), Q_TYPEID(QDesignerTaskMenuExtension));
        m_taskMenuRegistered = true;
    }
    ControlDesignerInterface::initialize(core);
}

} // namespace Kelocontrols::Designer
