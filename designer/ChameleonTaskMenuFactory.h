#pragma once

#include <QtDesigner/QExtensionFactory>

class QExtensionManager;

namespace Kelocontrols::Designer {

/**
 * Gives every Kelochameleon on a Qt Designer form its ChameleonTaskMenu.
 * Registered with the form editor's extension manager for
 * QDesignerTaskMenuExtension when the plugin is initialised.
 */
class ChameleonTaskMenuFactory : public QExtensionFactory
{
    Q_OBJECT

public:
    explicit ChameleonTaskMenuFactory(QExtensionManager *parent = nullptr);

protected:
    QObject *createExtension(QObject *object, const QString &iid, QObject *parent) const override;
};

} // namespace Kelocontrols::Designer
