#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

namespace Kelocontrols::Designer {

/**
 * The widget-box icons of the controls, painted in code at 16 and 32 pixels
 * so that they stay sharp in Designer's list and icon views.
 */
namespace ToolboxIcons {

/// The score card: its best grade card, the green "A".
QIcon scoreCard();

/// The data-aware list box: a list badge.
QIcon listBox();

/// The file view: a file-list badge.
QIcon fileView();

/// The folder view: a folder-tree badge.
QIcon folderView();

/// The chameleon: a colour badge.
QIcon chameleon();

/// A rounded badge with up to three letters, for a control without artwork of its own.
QIcon badge(const QString &letters, const QColor &color);

} // namespace ToolboxIcons
} // namespace Kelocontrols::Designer
