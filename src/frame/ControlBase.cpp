#include "ControlBase.h"

#include "PropertyTable.h"
#include "RuntimeError.h"

#include <QApplication>

namespace Kelocontrols {

namespace {
int designModeScopes = 0;
}

ControlBase::DesignModeScope::DesignModeScope()
{
    ++designModeScopes;
}

ControlBase::DesignModeScope::~DesignModeScope()
{
    --designModeScopes;
}

bool ControlBase::defaultUserMode()
{
    return designModeScopes == 0;
}

ControlBase::ControlBase(QWidget *parent)
    : QWidget(parent)
    , m_userMode(defaultUserMode())
{
    qRegisterMetaType<Kelocontrols::PropertyBag>();
}

ControlBase::~ControlBase() = default;

void ControlBase::InitProperties()
{
    propertyTable().initialise(*this);
    propertiesLoaded();
}

void ControlBase::ReadProperties(const PropertyBag &PropBag)
{
    propertyTable().read(*this, PropBag);
    propertiesLoaded();
}

void ControlBase::WriteProperties(PropertyBag &PropBag) const
{
    propertyTable().write(*this, PropBag);
}

void ControlBase::setUserMode(bool userMode)
{
    if (userMode == m_userMode) {
        return;
    }
    m_userMode = userMode;
    userModeChanged();
}

QFont ControlBase::ambientFont() const
{
    return parentWidget() ? parentWidget()->font() : QApplication::font();
}

void ControlBase::requireRunMode() const
{
    if (!m_userMode) {
        RuntimeError::raiseSetNotPermitted();
    }
}

} // namespace Kelocontrols
