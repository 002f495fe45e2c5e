#include "ControlBase.h"

#include "PropertyTable.h"
#include "RuntimeError.h"

#include <QApplication>
#include <QEvent>

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
    // The first turn of the event loop ends the first batch of writes.
    QMetaObject::invokeMethod(
        this, [this] { settleFirstWrites(); }, Qt::QueuedConnection);
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

void ControlBase::noteFirstWrite(const char *property)
{
    if (!m_firstWritesOpen) {
        return;
    }
    const int index = metaObject()->indexOfProperty(property);
    if (index <= m_lastFirstWrite) {
        settleFirstWrites();
    } else {
        m_lastFirstWrite = index;
    }
}

void ControlBase::settleFirstWrites()
{
    if (!m_firstWritesOpen) {
        return;
    }
    m_firstWritesOpen = false;
    firstWritesSettled();
}

bool ControlBase::event(QEvent *event)
{
    if (event->type() == QEvent::Polish) {
        settleFirstWrites();
    }
    return QWidget::event(event);
}

void ControlBase::requireRunMode() const
{
    if (!m_userMode) {
        RuntimeError::raiseSetNotPermitted();
    }
}

} // namespace Kelocontrols
