#include "FileViewMessage_p.h"

#include "Conversions.h"
#include "ListView.h"

#include <QLineEdit>

namespace Kelocontrols {

namespace {

// Layout of the message line, in twips as the control's geometry was
// designed (15 twips to the pixel).
constexpr int TwipsPerPixel = 15;
constexpr int MessageLeft = 120;
constexpr int MessageTopReport = 180; // plus 30 twips per point of font size: below the headers
constexpr int MessageTwipsPerPoint = 30;
constexpr int MessageTopOther = 120;

} // namespace

FileViewMessage::FileViewMessage(QWidget &control, ListView &list)
    : m_control(control)
    , m_list(list)
    , m_line(new QLineEdit(&control))
{
    m_line->setObjectName(QStringLiteral("txtMessage"));
    m_line->setReadOnly(true);
    m_line->setFrame(false);
    m_line->setFocusPolicy(Qt::NoFocus);
    m_line->hide();
}

void FileViewMessage::show(const QString &text)
{
    if (text.isEmpty()) {
        m_line->hide();
        return;
    }
    m_line->setText(text);
    m_line->setFont(m_list.font());
    QPalette p = m_line->palette();
    p.setColor(QPalette::Base, toQColor(m_list.backColor()));
    p.setColor(QPalette::Text, toQColor(m_list.foreColor()));
    m_line->setPalette(p);
    place();
    m_line->show();
    m_line->raise();
}

void FileViewMessage::place()
{
    const QFont font = m_list.font();
    const double points = font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize() * 0.75;
    const int topTwips = m_list.viewMode() == ListView::Report ? MessageTopReport + int(MessageTwipsPerPoint * points)
                                                               : MessageTopOther;
    const int left = MessageLeft / TwipsPerPixel;
    // ListFiles fills the control; the control's own width is right even before a hidden control is laid out.
    const int width = std::max(0, m_control.width() - 2 * MessageLeft / TwipsPerPixel);
    m_line->setGeometry(left, topTwips / TwipsPerPixel, width, m_line->sizeHint().height());
}

} // namespace Kelocontrols
