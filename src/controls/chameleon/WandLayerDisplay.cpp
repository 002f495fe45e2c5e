#include "WandLayerDisplay_p.h"

#include "ControlAccess_p.h"
#include "RuntimeError.h"
#include "WandFrame_p.h"
#include "WandLayer_p.h"

#include <QWidget>

namespace Kelocontrols {

WandLayerDisplay &WandLayerDisplay::instance()
{
    static WandLayerDisplay display;
    return display;
}

WandLayer *WandLayerDisplay::layerOf(const QWidget *surface) const
{
    const QPointer<WandLayer> layer = m_layers.value(surface);
    // A surface destroyed and another made at the same address: the old
    // layer went with the old surface.
    if (layer && layer->parentWidget() == surface) {
        return layer;
    }
    return nullptr;
}

void WandLayerDisplay::showFrame(QObject *surface, int element, const WandFrame &frame)
{
    if (!surface || !surface->isWidgetType()) {
        throw RuntimeError(ControlAccess::ObjectDoesNotSupportMember,
            QStringLiteral("Object doesn't support this property or method"));
    }
    auto *widget = static_cast<QWidget *>(surface);
    WandLayer *layer = layerOf(widget);
    if (!layer) {
        if (frame.erasing) {
            return;
        }
        m_layers.removeIf([](const auto &entry) { return entry.value().isNull(); });
        layer = new WandLayer(widget);
        m_layers.insert(widget, layer);
    }
    layer->setFrame(element, frame);
}

} // namespace Kelocontrols
