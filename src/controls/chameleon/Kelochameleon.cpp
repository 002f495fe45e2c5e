#include "Kelochameleon.h"

#include "ControlAccess.h"
#include "Conversions.h"
#include "FormPictureLayer.h"
#include "PictureBox.h"
#include "PicturePlacement.h"
#include "PropertyValues.h"
#include "RuntimeError.h"
#include "SettingsStore.h"
#include "WandPool.h"
#include "WandSurface.h"

#include <QFileInfo>
#include <QImageReader>
#include <QMouseEvent>
#include <QPainter>
#include <QShowEvent>
#include <QTimer>

#include <exception>

using namespace Kelocontrols;

namespace {

constexpr char ScaleModeName[] = "ScaleMode";
constexpr int InvalidPicture = 481;
constexpr OleColor FaceCrossColour = 0x000000FFu;

// The theme an empty ThemeName stands for.
const QString DefaultThemeName = QStringLiteral("DefaultTheme");

QString booleanText(bool value)
{
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

// A statement of the styling: its failure is passed over and the next
// statement runs.
template<typename Statement>
void ignoringErrors(Statement statement)
{
    try {
        statement();
    } catch (const std::exception &) {
    }
}

// Below the lower bound the value becomes the lower bound; then, above the
// upper bound, the upper bound. With bounds out of order the upper one wins.
qint16 clampValue(int value, int lower, int upper)
{
    qint16 result = CInt(double(value));
    if (result < lower) {
        result = qint16(lower);
    }
    if (result > upper) {
        result = qint16(upper);
    }
    return result;
}

QPixmap pictureFromVariant(const QVariant &value)
{
    if (!value.isValid()) {
        return QPixmap();
    }
    if (value.typeId() == QMetaType::QPixmap) {
        return value.value<QPixmap>();
    }
    if (value.typeId() == QMetaType::QImage) {
        return QPixmap::fromImage(value.value<QImage>());
    }
    throw RuntimeError(ErrorNumber::TypeMismatch);
}

// An empty path is no picture; a missing or unreadable file is an error.
QPixmap loadPicture(const QString &path)
{
    if (path.isEmpty()) {
        return QPixmap();
    }
    if (!QFileInfo(path).isFile()) {
        throw RuntimeError(ErrorNumber::FileNotFound);
    }
    QImageReader reader(path);
    const QImage image = reader.read();
    if (image.isNull()) {
        throw RuntimeError(InvalidPicture, QStringLiteral("Invalid picture"));
    }
    return QPixmap::fromImage(image);
}

} // namespace

const PropertyTable<Kelochameleon> &Kelochameleon::table()
{
    // Read and written in this order.
    static const PropertyTable<Kelochameleon> properties = [] {
        using C = Kelochameleon;
        PropertyTable<C> t;
        t.add(
             "ColorMinimum", QVariant(0), [](const C &c) { return QVariant(c.ColorMinimum()); },
             [](C &c, const QVariant &v) { c.m_range.minimum = CInt(v); })
            .add(
                "ColorMaximum", QVariant(255), [](const C &c) { return QVariant(c.ColorMaximum()); },
                [](C &c, const QVariant &v) { c.m_range.maximum = CInt(v); })
            .add(
                "ColorStepRate", QVariant(10), [](const C &c) { return QVariant(c.ColorStepRate()); },
                [](C &c, const QVariant &v) { c.m_range.stepRate = CInt(v); })
            .add(
                "Enabled", QVariant(true), [](const C &c) { return QVariant(c.Enabled()); },
                [](C &c, const QVariant &v) { c.QWidget::setEnabled(CBool(v)); })
            .add(
                "BackgroundStyle", QVariant(0), [](const C &c) { return QVariant(c.m_backgroundStyle); },
                [](C &c, const QVariant &v) { c.m_backgroundStyle = CLng(v); })
            .add(
                "WandStyle", QVariant(0), [](const C &c) { return QVariant(c.m_wandStyle); },
                [](C &c, const QVariant &v) { c.m_wandStyle = CLng(v); })
            .add(
                "NewBackColor", QVariant(uint(0)), [](const C &c) { return QVariant(c.m_newBackColor); },
                [](C &c, const QVariant &v) { c.m_newBackColor = colorFromVariant(v); })
            .add(
                "Interval", QVariant(1000), [](const C &c) { return QVariant(c.Interval()); },
                [](C &c, const QVariant &v) { c.m_interval = CInt(v); })
            .add(
                "FontStyle", QVariant(0), [](const C &c) { return QVariant(c.m_fontStyle); },
                [](C &c, const QVariant &v) { c.m_fontStyle = CLng(v); })
            .add(
                "NewFont", [](const C &c) { return QVariant(c.ambientFont()); },
                [](const C &c) { return QVariant(c.m_newFont); },
                [](C &c, const QVariant &v) { c.m_newFont = fontFromVariant(v); })
            .add(
                "BackgroundPicture", QVariant(QString()), [](const C &c) { return QVariant(c.m_backgroundPicture); },
                [](C &c, const QVariant &v) { c.m_backgroundPicture = textFromVariant(v); })
            .add(
                "BackgroundPictureStyle", QVariant(0), [](const C &c) { return QVariant(c.m_backgroundPictureStyle); },
                [](C &c, const QVariant &v) { c.m_backgroundPictureStyle = CLng(v); })
            .add(
                "ThemeName", QVariant(QStringLiteral("DefaultTheme")),
                [](const C &c) { return QVariant(c.m_themeName); },
                [](C &c, const QVariant &v) { c.m_themeName = textFromVariant(v); })
            .add(
                "ThemeIsUsed", QVariant(false), [](const C &c) { return QVariant(c.m_themeIsUsed); },
                [](C &c, const QVariant &v) { c.m_themeIsUsed = CBool(v); })
            .add(
                "MouseIcon", QVariant(QPixmap()), [](const C &c) { return QVariant(c.m_mouseIcon); },
                [](C &c, const QVariant &v) { c.setMouseIcon(pictureFromVariant(v)); })
            .add(
                "WandFollowsMouse", QVariant(false), [](const C &c) { return QVariant(c.m_wandFollowsMouse); },
                [](C &c, const QVariant &v) { c.m_wandFollowsMouse = CBool(v); });
        return t;
    }();
    return properties;
}

Kelochameleon::Kelochameleon(QWidget *parent)
    : ControlBase(parent)
    , m_picBackground(new PictureBox(this))
    , m_timer1(new QTimer(this))
    , m_pictureLayer(new FormPictureLayer(this))
{
    m_picBackground->setObjectName(QStringLiteral("picBackground"));
    m_picBackground->setBorderStyle(0);
    m_picBackground->hide();
    m_timer1->setObjectName(QStringLiteral("Timer1"));
    m_timer1->setInterval(TimerInterval);
    connect(m_timer1, &QTimer::timeout, this, &Kelochameleon::onTimer1Tick);
    m_pictureLayer->setObjectName(QStringLiteral("BackgroundLayer"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    applyModeSize();
    InitProperties();
}

// Closing the form stops the colour steps and the wand ticks of this
// chameleon; elements it started keep their place in the shared pool.
Kelochameleon::~Kelochameleon()
{
    m_timer1->stop();
}

const PropertyTableBase &Kelochameleon::propertyTable() const
{
    return table();
}

// ---- properties ---------------------------------------------------------------

void Kelochameleon::setColorMinimum(int value)
{
    m_range.minimum = clampValue(value, 0, m_range.maximum);
    propertyChanged("ColorMinimum");
}

void Kelochameleon::setColorMaximum(int value)
{
    m_range.maximum = clampValue(value, m_range.minimum, 255);
    propertyChanged("ColorMaximum");
}

void Kelochameleon::setColorStepRate(int value)
{
    m_range.stepRate = clampValue(value, 0, 255);
    propertyChanged("ColorStepRate");
}

bool Kelochameleon::Enabled() const
{
    return !testAttribute(Qt::WA_ForceDisabled);
}

void Kelochameleon::setEnabled(bool enabled)
{
    QWidget::setEnabled(enabled);
    propertyChanged("Enabled");
    update();
}

void Kelochameleon::setBackgroundStyle(keloBackgroundStyle style)
{
    m_backgroundStyle = int(style);
    propertyChanged("BackgroundStyle");
}

void Kelochameleon::setWandStyle(keloWandStyle style)
{
    m_wandStyle = int(style);
    propertyChanged("WandStyle");
}

void Kelochameleon::setNewBackColor(OleColor color)
{
    m_newBackColor = color;
    propertyChanged("NewBackColor");
}

void Kelochameleon::setInterval(int milliseconds)
{
    m_interval = CInt(double(milliseconds));
    propertyChanged("Interval");
}

void Kelochameleon::setFontStyle(keloFontStyle style)
{
    m_fontStyle = int(style);
    propertyChanged("FontStyle");
}

void Kelochameleon::setNewFont(const QFont &font)
{
    m_newFont = font;
    propertyChanged("NewFont");
}

void Kelochameleon::setBackgroundPicture(const QString &path)
{
    m_backgroundPicture = path;
    propertyChanged("BackgroundPicture");
}

void Kelochameleon::setBackgroundPictureStyle(keloPictureStyle style)
{
    m_backgroundPictureStyle = int(style);
    propertyChanged("BackgroundPictureStyle");
}

void Kelochameleon::setThemeName(const QString &name)
{
    m_themeName = name;
    propertyChanged("ThemeName");
}

void Kelochameleon::setThemeIsUsed(bool used)
{
    m_themeIsUsed = used;
    propertyChanged("ThemeIsUsed");
}

void Kelochameleon::setMouseIcon(const QPixmap &icon)
{
    m_mouseIcon = icon;
    if (icon.isNull()) {
        unsetCursor();
    } else {
        setCursor(QCursor(icon));
    }
    propertyChanged("MouseIcon");
}

// ---- life cycle -----------------------------------------------------------------

// A toolbox-sized face in a designer, no room at all in a running program.
void Kelochameleon::applyModeSize()
{
    const int side = UserMode() ? 0 : FaceSize;
    setFixedSize(side, side);
    updateGeometry();
}

QSize Kelochameleon::sizeHint() const
{
    return UserMode() ? QSize(0, 0) : QSize(FaceSize, FaceSize);
}

QSize Kelochameleon::minimumSizeHint() const
{
    return sizeHint();
}

void Kelochameleon::propertiesLoaded()
{
    update();
}

void Kelochameleon::userModeChanged()
{
    applyModeSize();
    if (!UserMode()) {
        m_timer1->stop();
    }
    update();
}

void Kelochameleon::showEvent(QShowEvent *event)
{
    ControlBase::showEvent(event);
    if (event->spontaneous()) {
        return;
    }
    try {
        runShow();
    } catch (const std::exception &error) {
        qWarning("Kelochameleon %s: %s", qPrintable(objectName()), error.what());
    }
}

void Kelochameleon::Refresh()
{
    runShow();
}

void Kelochameleon::runShow()
{
    update();
    if (!UserMode()) {
        m_timer1->stop();
        return;
    }
    if (!Enabled()) {
        m_timer1->stop();
        return;
    }
    if (m_themeIsUsed) {
        GetTheme();
    }
    m_engine.seed(m_range);
    applyBackground(false);
    applyFont();
    if (m_wandFollowsMouse) {
        followMouse();
    } else {
        stopFollowingMouse();
    }
    m_timer1->setInterval(TimerInterval);
    // A theme read above may have disabled the chameleon.
    if (Enabled()) {
        m_timer1->start();
    } else {
        m_timer1->stop();
    }
}

// ---- themes ---------------------------------------------------------------------

// Fetched afresh at every theme call: the name may have changed since.
QString Kelochameleon::fetchSettingsApplicationName()
{
    m_settingsAppName = objectName().isEmpty() ? QString::fromLatin1(staticMetaObject.className()) : objectName();
    return m_settingsAppName;
}

// The property itself changes, so a designer saves the name the theme went under.
void Kelochameleon::ensureThemeName()
{
    if (m_themeName.isEmpty()) {
        setThemeName(DefaultThemeName);
    }
}

QVariant Kelochameleon::SaveTheme()
{
    const QString appName = fetchSettingsApplicationName();
    ensureThemeName();
    const QString section = m_themeName;
    const auto save = [&](const char *key, const QString &value) {
        SaveSetting(appName, section, QString::fromLatin1(key), value);
    };
    save("ThemeExists", booleanText(true));
    save("BackgroundPicture", m_backgroundPicture);
    save("BackgroundPictureStyle", QString::number(m_backgroundPictureStyle));
    save("FontStyle", QString::number(m_fontStyle));
    save("Interval", QString::number(m_interval));
    save("BackgroundStyle", QString::number(m_backgroundStyle));
    save("WandStyle", QString::number(m_wandStyle));
    save("NewBackColor", QString::number(qint32(m_newBackColor)));
    save("Enabled", booleanText(Enabled()));
    save("ColorMinimum", QString::number(m_range.minimum));
    save("ColorMaximum", QString::number(m_range.maximum));
    save("ColorStepRate", QString::number(m_range.stepRate));
    return QVariant();
}

bool Kelochameleon::GetTheme()
{
    const QString appName = fetchSettingsApplicationName();
    ensureThemeName();
    const QString section = m_themeName;
    const auto read = [&](const char *key, const QString &fallback) {
        return QVariant(GetSetting(appName, section, QString::fromLatin1(key), fallback));
    };
    if (!CBool(read("ThemeExists", booleanText(false)))) {
        Q_EMIT ThemeMissing();
        return false;
    }
    // Each value goes straight into the control as it is read: no clamping,
    // no PropertyChanged. A bad value raises from its own read, and the
    // values read before it stay stored.
    m_backgroundPicture = read("BackgroundPicture", QString()).toString();
    m_backgroundPictureStyle = CLng(read("BackgroundPictureStyle", QStringLiteral("0")));
    m_fontStyle = CLng(read("FontStyle", QStringLiteral("0")));
    m_interval = CInt(read("Interval", QStringLiteral("1000")));
    m_backgroundStyle = CLng(read("BackgroundStyle", QStringLiteral("0")));
    m_wandStyle = CLng(read("WandStyle", QStringLiteral("0")));
    m_newBackColor = colorFromVariant(read("NewBackColor", QStringLiteral("0")));
    QWidget::setEnabled(CBool(read("Enabled", booleanText(true))));
    // The maximum is read on both sides of the minimum; both reads give the same text.
    m_range.maximum = CInt(read("ColorMaximum", QStringLiteral("255")));
    m_range.minimum = CInt(read("ColorMinimum", QStringLiteral("0")));
    m_range.maximum = CInt(read("ColorMaximum", QStringLiteral("255")));
    m_range.stepRate = CInt(read("ColorStepRate", QStringLiteral("10")));
    update();
    return true;
}

void Kelochameleon::onTimer1Tick()
{
    if (m_engine.tick(m_interval)) {
        applyBackground(true);
    }
    WandPool::shared().advance();
}

// ---- styling ----------------------------------------------------------------------

void Kelochameleon::applyBackground(bool fromTimer)
{
    WandPool &wand = WandPool::shared();
    if (!fromTimer) {
        ignoringErrors([&] { wand.reset(); });
        m_picBackground->setPicture(QPixmap());
        m_picBackground->cls();
        m_pictureLayer->clear();
    }
    switch (keloBackgroundStyle(m_backgroundStyle)) {
    case keloBackgroundStyle::None:
        if (!fromTimer) {
            wand.setPictureMode(false);
        }
        break;
    case keloBackgroundStyle::SystemDefault:
        if (!fromTimer) {
            wand.setPictureMode(false);
            ignoringErrors([&] { setColour(ControlAccess::ButtonFace); });
        }
        break;
    case keloBackgroundStyle::FixedColor:
        if (!fromTimer) {
            wand.setPictureMode(false);
            ignoringErrors([&] { setColour(m_newBackColor); });
        }
        break;
    case keloBackgroundStyle::VariedColor:
        if (!fromTimer) {
            wand.setPictureMode(false);
        }
        ignoringErrors([&] { m_engine.step(m_range); });
        ignoringErrors([&] { setColour(m_engine.currentColor()); });
        break;
    case keloBackgroundStyle::Picture:
        if (!fromTimer) {
            wand.setPictureMode(true);
            ignoringErrors([&] { drawPicture(); });
        }
        break;
    }
}

// The chameleon itself, the form, then the form's controls in order. The
// first control without a background colour ends the pass; controls at the
// window-background colour keep it.
void Kelochameleon::setColour(OleColor colour)
{
    m_backColor = colour;
    update();
    QWidget *form = parentWidget();
    ControlAccess::setBackColor(form, colour);
    const QString ownName = objectName();
    for (QObject *control : ControlAccess::parentControls(form)) {
        if (control == this || (!ownName.isEmpty() && ControlAccess::nameOf(control) == ownName)) {
            continue;
        }
        if (ControlAccess::backColor(control) != ControlAccess::WindowBackground) {
            ControlAccess::setBackColor(control, colour);
        }
    }
}

// Every control that has a font gets NewFont; the others are skipped.
void Kelochameleon::applyFont()
{
    if (keloFontStyle(m_fontStyle) != keloFontStyle::ChangeFont) {
        return;
    }
    QWidget *form = parentWidget();
    ignoringErrors([&] { ControlAccess::setFont(form, m_newFont); });
    for (QObject *control : ControlAccess::parentControls(form)) {
        ignoringErrors([&] { ControlAccess::setFont(control, m_newFont); });
    }
}

// A form that counts in its own scale is switched to twips while the
// picture is placed and switched back afterwards; when the picture cannot be
// loaded it is left in twips.
void Kelochameleon::drawPicture()
{
    if (m_backgroundPictureStyle == 0) {
        return;
    }
    QWidget *form = parentWidget();
    if (!form) {
        throw RuntimeError(
            ControlAccess::ObjectVariableNotSet, QStringLiteral("Object variable or With block variable not set"));
    }
    const bool scaled = ControlAccess::hasMember(form, ScaleModeName);
    QVariant savedScaleMode;
    if (scaled) {
        savedScaleMode = form->property(ScaleModeName);
        form->setProperty(ScaleModeName, WandSurface::Twips);
    }
    const QPixmap picture = loadPicture(m_backgroundPicture);
    m_picBackground->setPicture(picture);
    if (!picture.isNull()) {
        m_picBackground->resize(picture.size());
    }
    constexpr float twips = PicturePlacement::TwipsPerPixel;
    const QSize pictureSize = picture.isNull() ? m_picBackground->size() : picture.size();
    const QList<QPointF> positions = PicturePlacement::positions(m_backgroundPictureStyle, form->width() * twips,
        form->height() * twips, pictureSize.width() * twips, pictureSize.height() * twips);
    if (!positions.isEmpty() && picture.isNull()) {
        throw RuntimeError(InvalidPicture, QStringLiteral("Invalid picture"));
    }
    QList<QPointF> pixels;
    pixels.reserve(positions.size());
    for (const QPointF &position : positions) {
        pixels.append(position / twips);
    }
    m_pictureLayer->paint(form, picture, pixels);
    if (scaled) {
        form->setProperty(ScaleModeName, savedScaleMode);
    }
}

// ---- the wand -------------------------------------------------------------------------

void Kelochameleon::WandMovement(QObject *MyControl, float X, float Y)
{
    if (!Enabled()) {
        return;
    }
    WandPool::shared().movement(MyControl, X, Y, WandStyle());
}

void Kelochameleon::setWandFollowsMouse(bool follows)
{
    m_wandFollowsMouse = follows;
    propertyChanged("WandFollowsMouse");
    if (!follows) {
        stopFollowingMouse();
    } else if (UserMode() && Enabled() && isVisible()) {
        followMouse();
    }
}

// The form's mouse movements reach the wand as a MouseMove handler of the
// form would pass them on.
void Kelochameleon::followMouse()
{
    QWidget *form = parentWidget();
    if (form != m_watchedForm) {
        stopFollowingMouse();
    }
    if (!form || form == m_watchedForm) {
        return;
    }
    m_watchedForm = form;
    form->installEventFilter(this);
    m_trackingTurnedOn = !form->hasMouseTracking();
    form->setMouseTracking(true);
}

// Mouse tracking is turned off again only when the chameleon turned it on.
void Kelochameleon::stopFollowingMouse()
{
    if (m_watchedForm) {
        m_watchedForm->removeEventFilter(this);
        if (m_trackingTurnedOn) {
            m_watchedForm->setMouseTracking(false);
        }
    }
    m_watchedForm = nullptr;
    m_trackingTurnedOn = false;
}

bool Kelochameleon::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_watchedForm && event->type() == QEvent::MouseMove && UserMode()) {
        const auto *move = static_cast<QMouseEvent *>(event);
        try {
            const QPointF position = WandSurface::fromPixels(m_watchedForm, move->position());
            WandMovement(m_watchedForm, float(position.x()), float(position.y()));
        } catch (const std::exception &) {
            // A form whose scale cannot be read gets no wand.
        }
    }
    return ControlBase::eventFilter(watched, event);
}

bool Kelochameleon::event(QEvent *event)
{
    if (event->type() == QEvent::ParentChange && m_watchedForm && m_watchedForm != parentWidget()) {
        stopFollowingMouse();
    }
    return ControlBase::event(event);
}

// ---- the design-time face ------------------------------------------------------------

void Kelochameleon::paintEvent(QPaintEvent *)
{
    if (width() <= 0 || height() <= 0) {
        return;
    }
    QPainter painter(this);
    paintFace(painter);
}

// A small chameleon on the control's background; crossed out in red from
// corner to corner while a designer shows it disabled.
void Kelochameleon::paintFace(QPainter &painter) const
{
    const QRect face = rect();
    painter.fillRect(face, toQColor(m_backColor));
    const double sx = face.width() / double(FaceSize);
    const double sy = face.height() / double(FaceSize);
    painter.save();
    painter.scale(sx, sy);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0x1E, 0x6B, 0x2E), 1.0));
    painter.setBrush(QColor(0x3C, 0xB3, 0x4A));
    painter.drawEllipse(QRectF(2.5, 5.5, 10.0, 6.0));
    painter.setBrush(Qt::NoBrush);
    painter.drawArc(QRectF(0.5, 8.5, 5.0, 5.0), 90 * 16, 270 * 16);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawEllipse(QPointF(10.5, 7.5), 1.6, 1.6);
    painter.setBrush(Qt::black);
    painter.drawEllipse(QPointF(10.8, 7.5), 0.7, 0.7);
    painter.restore();
    if (!UserMode() && !Enabled()) {
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.setPen(QPen(toQColor(FaceCrossColour), 0));
        painter.drawLine(face.topLeft(), face.bottomRight());
        painter.drawLine(face.bottomLeft(), face.topRight());
    }
}
