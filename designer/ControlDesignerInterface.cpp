#include "ControlDesignerInterface.h"

#include "ControlBase.h"

#include <QApplication>
#include <QWidget>
#include <QXmlStreamWriter>

#include <memory>

namespace Kelocontrols::Designer {

ControlDesignerInterface::ControlDesignerInterface(ControlEntry entry, QObject *parent)
    : QObject(parent)
    , m_entry(std::move(entry))
{
}

QIcon ControlDesignerInterface::icon() const
{
    // Painted on first use: painting text needs the running application.
    if (m_icon.isNull() && m_entry.icon) {
        m_icon = m_entry.icon();
    }
    return m_icon;
}

QWidget *ControlDesignerInterface::createWidget(QWidget *parent)
{
    if (m_core) {
        ControlBase::DesignModeScope designMode;
        return m_entry.create(parent);
    }
    return m_entry.create(parent);
}

void ControlDesignerInterface::initialize(QDesignerFormEditorInterface *core)
{
    m_core = core;
    m_initialized = true;
}

QString ControlDesignerInterface::defaultObjectName() const
{
    QString name = m_entry.className;
    if (!name.isEmpty()) {
        name[0] = name.at(0).toLower();
    }
    return name;
}

// The size a freshly placed control asks for. Creating a throw-away instance
// keeps the default geometry in step with the control's own sizeHint().
QSize ControlDesignerInterface::preferredSize() const
{
    if (!qobject_cast<QApplication *>(QCoreApplication::instance())) {
        return QSize();
    }
    ControlBase::DesignModeScope designMode;
    const std::unique_ptr<QWidget> sample(m_entry.create(nullptr));
    return sample->sizeHint();
}

QString ControlDesignerInterface::domXml() const
{
    QString xml;
    QXmlStreamWriter out(&xml);
    out.setAutoFormatting(true);
    out.writeStartElement(QStringLiteral("ui"));
    out.writeAttribute(QStringLiteral("language"), QStringLiteral("c++"));
    out.writeAttribute(QStringLiteral("displayname"), m_entry.className);
    out.writeStartElement(QStringLiteral("widget"));
    out.writeAttribute(QStringLiteral("class"), m_entry.className);
    out.writeAttribute(QStringLiteral("name"), defaultObjectName());
    const QSize size = preferredSize();
    if (size.isValid()) {
        out.writeStartElement(QStringLiteral("property"));
        out.writeAttribute(QStringLiteral("name"), QStringLiteral("geometry"));
        out.writeStartElement(QStringLiteral("rect"));
        out.writeTextElement(QStringLiteral("x"), QStringLiteral("0"));
        out.writeTextElement(QStringLiteral("y"), QStringLiteral("0"));
        out.writeTextElement(QStringLiteral("width"), QString::number(size.width()));
        out.writeTextElement(QStringLiteral("height"), QString::number(size.height()));
        out.writeEndElement(); // rect
        out.writeEndElement(); // property
    }
    out.writeEndElement(); // widget
    out.writeEndElement(); // ui
    return xml;
}

} // namespace Kelocontrols::Designer
