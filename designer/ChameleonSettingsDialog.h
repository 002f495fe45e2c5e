#pragma once

#include <QDialog>

class ChameleonPropertyPage;
class Kelochameleon;
class QDesignerFormWindowInterface;
class QDialogButtonBox;

namespace Kelocontrols::Designer {

class ChameleonDesignerProxy;

/**
 * "Edit Chameleon Settings": the chameleon's property page in a dialog with
 * OK, Cancel and Apply, editing one chameleon of a form in Qt Designer.
 *
 * Apply (enabled once the page has changes) writes the page through
 * Designer's property sheet as one undoable command; OK applies what is
 * pending and closes; Cancel closes without applying (what was applied
 * stays, and can be undone in the form).
 */
class ChameleonSettingsDialog : public QDialog
{
    Q_OBJECT

public:
    /// The caption of the dialog and the name of the undo command of Apply.
    static QString title() { return QStringLiteral("Edit Chameleon Settings"); }

    ChameleonSettingsDialog(
        Kelochameleon *chameleon, QDesignerFormWindowInterface *formWindow, QWidget *parent = nullptr);
    ~ChameleonSettingsDialog() override;

    ChameleonPropertyPage *page() const { return m_page; }

    /// Applies pending changes, then closes.
    void accept() override;

private:
    /// Writes the page to the chameleon; false (after telling the user) when it fails.
    bool apply();

    ChameleonDesignerProxy *m_proxy;
    ChameleonPropertyPage *m_page;
    QDialogButtonBox *m_buttons;
};

} // namespace Kelocontrols::Designer
