#pragma once

#include <QList>
#include <QObject>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

namespace Kelocontrols::Designer {

/**
 * The plugin Qt Designer and QUiLoader load: one ControlDesignerInterface
 * per control, all in the widget-box group "Kelocontrols".
 */
class KelocontrolsDesignerCollection
    : public QObject
    , public QDesignerCustomWidgetCollectionInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface")
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)

public:
    explicit KelocontrolsDesignerCollection(QObject *parent = nullptr);

    QList<QDesignerCustomWidgetInterface *> customWidgets() const override { return m_widgets; }

private:
    QList<QDesignerCustomWidgetInterface *> m_widgets;
};

} // namespace Kelocontrols::Designer
