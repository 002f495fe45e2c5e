#include "ChameleonSettingsDialog.h"

#include "ChameleonDesignerProxy.h"
#include "ChameleonPropertyPage.h"
#include "Kelochameleon.h"
#include "MsgBox.h"
#include "RuntimeError.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace Kelocontrols::Designer {

ChameleonSettingsDialog::ChameleonSettingsDialog(
    Kelochameleon *chameleon, QDesignerFormWindowInterface *formWindow, QWidget *parent)
    : QDialog(parent)
    , m_proxy(new ChameleonDesignerProxy(chameleon, formWindow, this))
    , m_page(new ChameleonPropertyPage)
    , m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Apply))
{
    setObjectName(QStringLiteral("ChameleonSettingsDialog"));
    setWindowTitle(chameleon && !chameleon->objectName().isEmpty()
            ? title() + QStringLiteral(" - ") + chameleon->objectName()
            : title());
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_page);
    layout->addWidget(m_buttons);

    QPushButton *applyButton = m_buttons->button(QDialogButtonBox::Apply);
    applyButton->setEnabled(false);
    connect(m_page, &ChameleonPropertyPage::Changed, applyButton, [applyButton] { applyButton->setEnabled(true); });
    connect(applyButton, &QPushButton::clicked, this, [this, applyButton] {
        if (apply()) {
            applyButton->setEnabled(false);
        }
    });
    connect(m_buttons, &QDialogButtonBox::accepted, this, &ChameleonSettingsDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &ChameleonSettingsDialog::reject);

    try {
        m_page->setSelectedControls({m_proxy});
    } catch (const RuntimeError &error) {
        MsgBox(error.description(), MsgBoxStyle::Critical, title());
    }
}

ChameleonSettingsDialog::~ChameleonSettingsDialog() = default;

bool ChameleonSettingsDialog::apply()
{
    m_proxy->beginCommand(title());
    try {
        m_page->ApplyChanges();
    } catch (const RuntimeError &error) {
        m_proxy->endCommand();
        MsgBox(error.description(), MsgBoxStyle::Critical, title());
        return false;
    }
    m_proxy->endCommand();
    return true;
}

void ChameleonSettingsDialog::accept()
{
    if (m_page->changed() && !apply()) {
        return;
    }
    QDialog::accept();
}

} // namespace Kelocontrols::Designer
