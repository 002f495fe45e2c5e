#pragma once

#include "ControlDesignerInterface.h"

namespace Kelocontrols::Designer {

/**
 * The chameleon's widget-box entry: a ControlDesignerInterface that also
 * gives the chameleon its "Edit Chameleon Settings..." task menu once Qt
 * Designer hands over its form editor.
 */
class ChameleonDesignerInterface : public ControlDesignerInterface
{
    Q_OBJECT

public:
    explicit ChameleonDesignerInterface(ControlEntry entry, QObject *parent = nullptr);

    /// Registers the task menu with @p core's extension manager (once), then initialises as any control.
    void initialize(QDesignerFormEditorInterface *core) override;

private:
    bool m_taskMenuRegistered = false;
};

} // namespace Kelocontrols::Designer
