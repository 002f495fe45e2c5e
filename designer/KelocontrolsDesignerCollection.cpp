#include "KelocontrolsDesignerCollection.h"

#include "ChameleonDesignerInterface.h"
#include "ControlDesignerInterface.h"
#include "ToolboxIcons.h"

#include "Kelochameleon.h"
#include "KelofileView.h"
#include "KelofolderView.h"
#include "KelolistBox.h"
#include "KeloscoreCard.h"

namespace Kelocontrols::Designer {

namespace {

// Every control of the library, in widget-box order. A new control joins
// with one line here.
QList<ControlEntry> controlEntries()
{
    return {
        controlEntry<KelofileView>(QStringLiteral("File view: an explorer-like list of a folder's files"),
            QStringLiteral("Lists a folder (or the drives of \"My Computer\", or the host's \"My Folders\") with "
                           "icons, sizes, types and dates in large icon, small icon, list or details view; set "
                           "PathRoot to show a folder."),
            ToolboxIcons::fileView),
        controlEntry<KelofolderView>(QStringLiteral("Folder view: a folder tree"),
            QStringLiteral("Shows the drives of \"My Computer\", the host's \"My Folders\" or one folder's sub-tree as "
                           "a tree filled one level ahead, with cut, copy, paste, delete, rename and new folder; "
                           "set PathRoot to build it."),
            ToolboxIcons::folderView),
        controlEntry<KeloscoreCard>(QStringLiteral("Score card: a score as a grade picture, a colour card or a gauge"),
            QStringLiteral("Shows a numeric score graded against four thresholds (ScoreBad, ScoreMaybe, ScoreGood, "
                           "ScoreStar) as a score card, smiley or traffic light picture, a flash card in the grade "
                           "colour, or a gauge with blocks, marker, limit and tick lines."),
            ToolboxIcons::scoreCard),
        controlEntry<KelolistBox>(QStringLiteral("List box filled from a database recordset"),
            QStringLiteral("Fills itself from an SQL query or item model in one Populate call, shows texts and hands "
                           "back their hidden integer values, and can lock to a read-only label."),
            ToolboxIcons::listBox),
        controlEntry<Kelochameleon>(QStringLiteral("Chameleon: styles the form it sits on"),
            QStringLiteral("Gives its form and the form's controls a system, fixed or drifting background colour or a "
                           "placed or tiled picture, a common font, and a mouse-following wand. Invisible at run "
                           "time."),
            ToolboxIcons::chameleon),
    };
}

} // namespace

KelocontrolsDesignerCollection::KelocontrolsDesignerCollection(QObject *parent)
    : QObject(parent)
{
    // The chameleon's entry also brings its task menu into Designer.
    const QString chameleon = QString::fromLatin1(Kelochameleon::staticMetaObject.className());
    for (ControlEntry &entry : controlEntries()) {
        if (entry.className == chameleon) {
            m_widgets.append(new ChameleonDesignerInterface(std::move(entry), this));
        } else {
            m_widgets.append(new ControlDesignerInterface(std::move(entry), this));
        }
    }
}

} // namespace Kelocontrols::Designer
