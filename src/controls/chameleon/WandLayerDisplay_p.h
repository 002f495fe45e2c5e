#pragma once

#include <kelocontrols_export.h>

#include "WandDisplay_p.h"

#include <QHash>
#include <QPointer>

class QWidget;

namespace Kelocontrols {

class WandLayer;

/**
 * Shows wand frames on real widgets, each surface through a WandLayer of
 * its own, made when the first frame is drawn on it. Surfaces that are not
 * widgets cannot be drawn on (RuntimeError 438).
 */
class KELOCONTROLS_TESTS_EXPORT WandLayerDisplay : public WandDisplay
{
public:
    /// The display of the process's shared wand.
    static WandLayerDisplay &instance();

    void showFrame(QObject *surface, int element, const WandFrame &frame) override;

    /// The layer on @p surface, if a frame has been drawn on it.
    WandLayer *layerOf(const QWidget *surface) const;

private:
    QHash<const QObject *, QPointer<WandLayer>> m_layers;
};

} // namespace Kelocontrols
