#include "ChameleonTaskMenuFactory.h"

#include "ChameleonTaskMenu.h"
#include "Kelochameleon.h"

#include <QtDesigner/QExtensionManager>

namespace Kelocontrols::Designer {

ChameleonTaskMenuFactory::ChameleonTaskMenuFactory(QExtensionManager *parent)
    : QExtensionFactory(parent)
{
}

QObject *ChameleonTaskMenuFactory::createExtension(QObject *object, const QString &iid, QObject *parent) const
{
    if (iid != Q_TYPEID(QDesignerTaskMenuExtension)) {
        return nullptr;
    }
    if (auto *chameleon = qobject_cast<Kelochameleon *>(object)) {
        return new ChameleonTaskMenu(chameleon, parent);
    }
    return nullptr;
}

} // namespace Kelocontrols::Designer
