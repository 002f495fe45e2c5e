#pragma once

#include <kelocontrols_export.h>

class QObject;

namespace Kelocontrols {

class WandFrame;

/**
 * What shows the wand's frames: the overlays on real widgets, or a recorder
 * in a test.
 *
 * The pool hands over every frame it draws, in order: a drawing frame
 * replaces what element @p element showed on @p surface, an erasing frame
 * (WandFrame::erasing) takes it away.
 */
class KELOCONTROLS_TESTS_EXPORT WandDisplay
{
public:
    virtual ~WandDisplay() = default;
    virtual void showFrame(QObject *surface, int element, const WandFrame &frame) = 0;
};

} // namespace Kelocontrols
