#include "ScoreCardArtwork_p.h"

#include "ImageList.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace Kelocontrols::ScoreCardArtwork {

namespace {

const QStringList families = {QStringLiteral("ScoreCard"), QStringLiteral("Smiley"), QStringLiteral("Traffic")};

// Worst to best: red, orange, yellow, light green, green.
QColor gradeTint(int grade)
{
    static const QColor tints[] = {QColor(0xd3, 0x2f, 0x2f), QColor(0xf5, 0x7c, 0x00), QColor(0xfb, 0xc0, 0x2d),
        QColor(0x9c, 0xcc, 0x65), QColor(0x2e, 0x9d, 0x3c)};
    return tints[qBound(1, grade, 5) - 1];
}

void paintCard(QPainter &p, int grade, qreal s)
{
    const QRectF card(s * 0.06, s * 0.10, s * 0.88, s * 0.80);
    p.setPen(QPen(QColor(0x30, 0x30, 0x30), qMax(1.0, s / 16.0)));
    p.setBrush(gradeTint(grade));
    p.drawRoundedRect(card, s * 0.12, s * 0.12);
    static const char letters[] = {'E', 'D', 'C', 'B', 'A'};
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setBold(true);
    font.setPixelSize(qRound(s * 0.68));
    p.setFont(font);
    p.setPen(grade == 3 ? QColor(0x20, 0x20, 0x20) : Qt::white);
    p.drawText(card, Qt::AlignCenter, QString(QLatin1Char(letters[qBound(1, grade, 5) - 1])));
}

void paintSmiley(QPainter &p, int grade, qreal s)
{
    const qreal pen = qMax(1.0, s / 16.0);
    const QRectF face(pen / 2 + s * 0.02, pen / 2 + s * 0.02, s - pen - s * 0.04, s - pen - s * 0.04);
    p.setPen(QPen(QColor(0x30, 0x30, 0x30), pen));
    p.setBrush(gradeTint(grade));
    p.drawEllipse(face);
    // Eyes.
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0x20, 0x20, 0x20));
    const qreal eye = qMax(1.5, s * 0.11);
    p.drawEllipse(QPointF(s * 0.35, s * 0.38), eye / 2, eye * 0.65);
    p.drawEllipse(QPointF(s * 0.65, s * 0.38), eye / 2, eye * 0.65);
    // Mouth: a curve whose bend goes from a frown (grade 1) to a smile (grade 5).
    const qreal bend = (grade - 3) * s * 0.11;
    const qreal mouthY = s * 0.68 - bend / 2;
    QPainterPath mouth;
    mouth.moveTo(s * 0.28, mouthY);
    mouth.quadTo(s * 0.5, mouthY + bend * 2, s * 0.72, mouthY);
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(QColor(0x20, 0x20, 0x20), qMax(1.2, s / 12.0), Qt::SolidLine, Qt::RoundCap));
    p.drawPath(mouth);
}

void paintTraffic(QPainter &p, int grade, qreal s)
{
    const QRectF housing(s * 0.24, s * 0.02, s * 0.52, s * 0.96);
    p.setPen(QPen(QColor(0x10, 0x10, 0x10), qMax(1.0, s / 24.0)));
    p.setBrush(QColor(0x3a, 0x3a, 0x3a));
    p.drawRoundedRect(housing, s * 0.12, s * 0.12);
    // Which lamps are lit, top (red) to bottom (green), for each grade.
    static const bool lit[5][3]
        = {{true, false, false}, {true, true, false}, {false, true, false}, {false, true, true}, {false, false, true}};
    static const QColor on[3] = {QColor(0xff, 0x30, 0x30), QColor(0xff, 0xb3, 0x00), QColor(0x30, 0xe0, 0x40)};
    static const QColor off[3] = {QColor(0x5a, 0x20, 0x20), QColor(0x5a, 0x48, 0x10), QColor(0x1c, 0x48, 0x20)};
    const qreal r = s * 0.13;
    p.setPen(Qt::NoPen);
    for (int lamp = 0; lamp < 3; ++lamp) {
        p.setBrush(lit[qBound(1, grade, 5) - 1][lamp] ? on[lamp] : off[lamp]);
        p.drawEllipse(QPointF(s * 0.5, s * (0.2 + 0.3 * lamp)), r, r);
    }
}

} // namespace

QString familyOf(int style)
{
    return style >= 0 && style <= 5 ? families.at(style / 2) : QString();
}

QImage paint(const QString &family, int grade, int size)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::TextAntialiasing);
    if (family == families.at(0)) {
        paintCard(p, grade, size);
    } else if (family == families.at(1)) {
        paintSmiley(p, grade, size);
    } else {
        paintTraffic(p, grade, size);
    }
    return image;
}

void fill(ImageList &list)
{
    for (const QString &family : families) {
        for (int grade = 1; grade <= 5; ++grade) {
            list.add(
                QPixmap::fromImage(paint(family, grade, list.imageSize().width())), family + QString::number(grade));
        }
    }
}

} // namespace Kelocontrols::ScoreCardArtwork
