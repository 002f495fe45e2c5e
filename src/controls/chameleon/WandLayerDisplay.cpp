#include "WandOverlayDisplay.h"

#include "ControlAccess.h"
#include "RuntimeError.h"
#include "WandFrame.h"
#include "WandOverlay.h"

#include <QWidget>

namespace Kelocontrols {

WandOverlayDisplay &WandOverlayDisplay::instance()
{
    static WandOverlayDisplay display;
    return display;
}

WandOverlay *WandOverlayDisplay::overlayOf(const QWidget *surface) const
{
    const QPointer<WandOverlay> overlay = m_overlays.value(surface);
    // A surface destroyed and another made at the same address: the old
    // overlay went with the old surface.
    if (overlay && overlay->parentWidget() == surface) {
        return overlay;
    }
    return nullptr;
}

void WandOverlayDisplay::showFrame(QObject *surface, int element, const WandFrame &frame)
{
    if (!surface || !surface->isWidgetType()) {
        throw RuntimeError(ControlAccess::ObjectDoesNotSupportMember,
            QStringLiteral("Object doesn't support this property or method"));
    }
    auto *widget = static_cast<QWidget *>(surface);
    WandOverlay *overlay = overlayOf(widget);
    if (!overlay) {
        if (frame.erasing) {
            return;
        }
        m_overlays.removeIf([](const auto &entry) { return entry.value().isNull(); });
        overlay = new WandOverlay(widget);
        m_overlays.insert(widget, overlay);
    }
    overlay->setFrame(element, frame);
}

} // namespace Kelocontrols
