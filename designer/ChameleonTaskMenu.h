#pragma once

#include <QObject>
#include <QPointer>
#include <QtDesigner/QDesignerTaskMenuExtension>

class Kelochameleon;
class QAction;

namespace Kelocontrols::Designer {

/**
 * The chameleon's entry in Qt Designer's context menu, "Edit Chameleon
 * Settings...", also its double-click action: it opens the chameleon's
 * property page in a ChameleonSettingsDialog over the chameleon.
 */
class ChameleonTaskMenu
    : public QObject
    , public QDesignerTaskMenuExtension
{
    Q_OBJECT
    Q_INTERFACES(QDesignerTaskMenuExtension)

public:
    /// The text of the action.
    static QString actionText() { return QStringLiteral("Edit Chameleon Settings..."); }

    ChameleonTaskMenu(Kelochameleon *chameleon, QObject *parent = nullptr);

    QAction *preferredEditAction() const override { return m_editAction; }
    QList<QAction *> taskActions() const override { return {m_editAction}; }

private:
    void editSettings();

    QPointer<Kelochameleon> m_chameleon;
    QAction *m_editAction;
};

} // namespace Kelocontrols::Designer
