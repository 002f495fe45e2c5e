#include "ToolboxIcons.h"

#include "ScoreCardArtwork_p.h"

#include <QFont>
#include <QPainter>
#include <QPixmap>

namespace Kelocontrols::Designer::ToolboxIcons {

namespace {
constexpr int iconSizes[] = {16, 32};
}

QIcon scoreCard()
{
    QIcon icon;
    for (int size : iconSizes) {
        icon.addPixmap(QPixmap::fromImage(ScoreCardArtwork::paint(QStringLiteral("ScoreCard"), 5, size)));
    }
    return icon;
}

QIcon badge(const QString &letters, const QColor &color)
{
    QIcon icon;
    for (int size : iconSizes) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(color.darker(150));
        painter.setBrush(color);
        const QRectF box(0.5, 0.5, size - 1.0, size - 1.0);
        painter.drawRoundedRect(box, size / 6.0, size / 6.0);
        QFont font = painter.font();
        font.setBold(true);
        font.setPixelSize(qMax(6, size * 2 / (letters.size() + 2)));
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(box, Qt::AlignCenter, letters.left(3));
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

QIcon listBox()
{
    return badge(QStringLiteral("LB"), QColor(0x1e, 0x88, 0xe5));
}

QIcon fileView()
{
    return badge(QStringLiteral("FV"), QColor(0xf5, 0x7c, 0x00));
}

QIcon folderView()
{
    return badge(QStringLiteral("FT"), QColor(0xc6, 0x8a, 0x00));
}

QIcon chameleon()
{
    return badge(QStringLiteral("Ch"), QColor(0x43, 0xa0, 0x47));
}

} // namespace Kelocontrols::Designer::ToolboxIcons
