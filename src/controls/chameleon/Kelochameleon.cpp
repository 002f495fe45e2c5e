#include "Kelochameleon.h"

#include "ClassicFaceEntries_p.h"
#include "ClassicFace_p.h"
#include "ColorEngine_p.h"
#include "ControlAccess_p.h"
#include "Conversions.h"
#include "FormPictureLayer_p.h"
#include "PictureBox.h"
#include "PicturePlacement_p.h"
#include "PropertyTable.h"
#include "PropertyValues.h"
#include "RuntimeError.h"
#include "SettingsStore.h"
#include "WandPool_p.h"
#include "WandSurface_p.h"

#include <QFileInfo>
#include <QImageReader>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
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

// The state of one chameleon and the work behind its members.
class Kelochameleon::Private
{
public:
    explicit Private(Kelochameleon *owner);

    // Read and written in this order.
    static const PropertyTable<Kelochameleon> &table();

    void applyModeSize();
    void runShow();
    QString fetchSettingsApplicationName();
    void ensureThemeName();
    void onTimer1Tick();
    void applyBackground(bool fromTimer);
    void setColour(OleColor colour);
    void applyFont();
    void drawPicture();
    void followMouse();
    void stopFollowingMouse();
    void paintFace(QPainter &painter) const;

    Kelochameleon *const q;
    PictureBox *const picBackground;
    QTimer *const timer1;
    FormPictureLayer *const pictureLayer;
    ClassicFace face; ///< Enabled
    // The form whose mouse the wand follows, while WandFollowsMouse is set.
    QPointer<QWidget> watchedForm;
    // Whether following the mouse turned the form's mouse tracking on.
    bool trackingTurnedOn = false;

    // The persisted state, in the order of declaration of the classic control.
    bool themeIsUsed = false;
    QString themeName;
    QString backgroundPicture;
    int backgroundPictureStyle = 0;
    QFont newFont;
    int fontStyle = 0;
    qint16 interval = 1000;
    int backgroundStyle = 0;
    int wandStyle = 0;
    OleColor newBackColor = 0;
    ColorRange range;
    QPixmap mouseIcon;
    bool wandFollowsMouse = false;

    QString settingsAppName;
    OleColor backColor = ControlAccess::ButtonFace;
    ColorEngine engine;
};

const PropertyTable<Kelochameleon> &Kelochameleon::Private::table()
{
    static const PropertyTable<Kelochameleon> properties = [] {
        using C = Kelochameleon;
        PropertyTable<C> t;
        t.add(
             "ColorMinimum", QVariant(0), [](const C &c) { return QVariant(c.ColorMinimum()); },
             [](C &c, const QVariant &v) { c.d->range.minimum = CInt(v); })
            .add(
                "ColorMaximum", QVariant(255), [](const C &c) { return QVariant(c.ColorMaximum()); },
                [](C &c, const QVariant &v) { c.d->range.maximum = CInt(v); })
            .add(
                "ColorStepRate", QVariant(10), [](const C &c) { return QVariant(c.ColorStepRate()); },
                [](C &c, const QVariant &v) { c.d->range.stepRate = CInt(v); });
        ClassicFaceEntries<C>(t, [](C &c) -> ClassicFace & { return c.d->face; }).enabled();
        t.add(
             "BackgroundStyle", QVariant(0), [](const C &c) { return QVariant(c.d->backgroundStyle); },
             [](C &c, const QVariant &v) { c.d->backgroundStyle = CLng(v); })
            .add(
                "WandStyle", QVariant(0), [](const C &c) { return QVariant(c.d->wandStyle); },
                [](C &c, const QVariant &v) { c.d->wandStyle = CLng(v); })
            .add(
                "NewBackColor", QVariant(uint(0)), [](const C &c) { return QVariant(c.d->newBackColor); },
                [](C &c, const QVariant &v) { c.d->newBackColor = colorFromVariant(v); })
            .add(
                "Interval", QVariant(1000), [](const C &c) { return QVariant(c.Interval()); },
                [](C &c, const QVariant &v) { c.d->interval = CInt(v); })
            .add(
                "FontStyle", QVariant(0), [](const C &c) { return QVariant(c.d->fontStyle); },
                [](C &c, const QVariant &v) { c.d->fontStyle = CLng(v); })
            .add(
                "NewFont", [](const C &c) { return QVariant(c.ambientFont()); },
                [](const C &c) { return QVariant(c.d->newFont); },
                [](C &c, const QVariant &v) { c.d->newFont = fontFromVariant(v); })
            .add(
                "BackgroundPicture", QVariant(QString()), [](const C &c) { return QVariant(c.d->backgroundPicture); },
                [](C &c, const QVariant &v) { c.d->backgroundPicture = textFromVariant(v); })
            .add(
                "BackgroundPictureStyle", QVariant(0), [](const C &c) { return QVariant(c.d->backgroundPictureStyle); },
                [](C &c, const QVariant &v) { c.d->backgroundPictureStyle = CLng(v); })
            .add(
                "ThemeName", QVariant(QStringLiteral("DefaultTheme")),
                [](const C &c) { return QVariant(c.d->themeName); },
                [](C &c, const QVariant &v) { c.d->themeName = textFromVariant(v); })
            .add(
                "ThemeIsUsed", QVariant(false), [](const C &c) { return QVariant(c.d->themeIsUsed); },
                [](C &c, const QVariant &v) { c.d->themeIsUsed = CBool(v); })
            .add(
                "MouseIcon", QVariant(QPixmap()), [](const C &c) { return QVariant(c.d->mouseIcon); },
                [](C &c, const QVariant &v) { c.setMouseIcon(pictureFromVariant(v)); })
            .add(
                "WandFollowsMouse", QVariant(false), [](const C &c) { return QVariant(c.d->wandFollowsMouse); },
                [](C &c, const QVariant &v) { c.d->wandFollowsMouse = CBool(v); });
        return t;
    }();
    return properties;
}

Kelochameleon::Private::Private(Kelochameleon *owner)
    : q(owner)
    , picBackground(new PictureBox(owner))
    , timer1(new QTimer(owner))
    , pictureLayer(new FormPictureLayer(owner))
    , face(*owner)
{
    // In a designer the face shows whether the chameleon is enabled.
    face.setChangedStep([owner](ClassicFace::Member) { owner->update(); });
    picBackground->setObjectName(QStringLiteral("picBackground"));
    picBackground->setBorderStyle(0);
    picBackground->hide();
    timer1->setObjectName(QStringLiteral("Timer1"));
    timer1->setInterval(TimerInterval);
    QObject::connect(timer1, &QTimer::timeout, owner, [this] { onTimer1Tick(); });
    pictureLayer->setObjectName(QStringLiteral("BackgroundLayer"));
}

Kelochameleon::Kelochameleon(QWidget *parent)
    : ControlBase(parent)
    , d(std::make_unique<Private>(this))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    d->applyModeSize();
    InitProperties();
}

// Closing the form stops the colour steps and the wand ticks of this
// chameleon; elements it started keep their place in the shared pool.
Kelochameleon::~Kelochameleon()
{
    d->timer1->stop();
}

const PropertyTableBase &Kelochameleon::propertyTable() const
{
    return Private::table();
}

// ---- properties ---------------------------------------------------------------

int Kelochameleon::ColorMinimum() const
{
    return d->range.minimum;
}

int Kelochameleon::ColorMaximum() const
{
    return d->range.maximum;
}

int Kelochameleon::ColorStepRate() const
{
    return d->range.stepRate;
}

keloBackgroundStyle Kelochameleon::BackgroundStyle() const
{
    return keloBackgroundStyle(d->backgroundStyle);
}

keloWandStyle Kelochameleon::WandStyle() const
{
    return keloWandStyle(d->wandStyle);
}

OleColor Kelochameleon::NewBackColor() const
{
    return d->newBackColor;
}

int Kelochameleon::Interval() const
{
    return d->interval;
}

keloFontStyle Kelochameleon::FontStyle() const
{
    return keloFontStyle(d->fontStyle);
}

QFont Kelochameleon::NewFont() const
{
    return d->newFont;
}

QString Kelochameleon::BackgroundPicture() const
{
    return d->backgroundPicture;
}

keloPictureStyle Kelochameleon::BackgroundPictureStyle() const
{
    return keloPictureStyle(d->backgroundPictureStyle);
}

QString Kelochameleon::ThemeName() const
{
    return d->themeName;
}

bool Kelochameleon::ThemeIsUsed() const
{
    return d->themeIsUsed;
}

QPixmap Kelochameleon::MouseIcon() const
{
    return d->mouseIcon;
}

bool Kelochameleon::WandFollowsMouse() const
{
    return d->wandFollowsMouse;
}

QString Kelochameleon::settingsApplicationName() const
{
    return d->settingsAppName;
}

OleColor Kelochameleon::backColor() const
{
    return d->backColor;
}

void Kelochameleon::setColorMinimum(int value)
{
    d->range.minimum = clampValue(value, 0, d->range.maximum);
    propertyChanged("ColorMinimum");
}

void Kelochameleon::setColorMaximum(int value)
{
    d->range.maximum = clampValue(value, d->range.minimum, 255);
    propertyChanged("ColorMaximum");
}

void Kelochameleon::setColorStepRate(int value)
{
    d->range.stepRate = clampValue(value, 0, 255);
    propertyChanged("ColorStepRate");
}

KELO_CLASSIC_FORWARD(Kelochameleon, Enabled, d->face)

void Kelochameleon::setBackgroundStyle(keloBackgroundStyle style)
{
    d->backgroundStyle = int(style);
    propertyChanged("BackgroundStyle");
}

void Kelochameleon::setWandStyle(keloWandStyle style)
{
    d->wandStyle = int(style);
    propertyChanged("WandStyle");
}

void Kelochameleon::setNewBackColor(OleColor color)
{
    d->newBackColor = color;
    propertyChanged("NewBackColor");
}

void Kelochameleon::setInterval(int milliseconds)
{
    d->interval = CInt(double(milliseconds));
    propertyChanged("Interval");
}

void Kelochameleon::setFontStyle(keloFontStyle style)
{
    d->fontStyle = int(style);
    propertyChanged("FontStyle");
}

void Kelochameleon::setNewFont(const QFont &font)
{
    d->newFont = font;
    propertyChanged("NewFont");
}

void Kelochameleon::setBackgroundPicture(const QString &path)
{
    d->backgroundPicture = path;
    propertyChanged("BackgroundPicture");
}

void Kelochameleon::setBackgroundPictureStyle(keloPictureStyle style)
{
    d->backgroundPictureStyle = int(style);
    propertyChanged("BackgroundPictureStyle");
}

void Kelochameleon::setThemeName(const QString &name)
{
    d->themeName = name;
    propertyChanged("ThemeName");
}

void Kelochameleon::setThemeIsUsed(bool used)
{
    d->themeIsUsed = used;
    propertyChanged("ThemeIsUsed");
}

void Kelochameleon::setMouseIcon(const QPixmap &icon)
{
    d->mouseIcon = icon;
    if (icon.isNull()) {
        unsetCursor();
    } else {
        setCursor(QCursor(icon));
    }
    propertyChanged("MouseIcon");
}

// ---- life cycle -----------------------------------------------------------------

// A toolbox-sized face in a designer, no room at all in a running program.
void Kelochameleon::Private::applyModeSize()
{
    const int side = q->UserMode() ? 0 : FaceSize;
    q->setFixedSize(side, side);
    q->updateGeometry();
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
    d->applyModeSize();
    if (!UserMode()) {
        d->timer1->stop();
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
        d->runShow();
    } catch (const std::exception &error) {
        qWarning("Kelochameleon %s: %s", qPrintable(objectName()), error.what());
    }
}

void Kelochameleon::Refresh()
{
    d->runShow();
}

void Kelochameleon::Private::runShow()
{
    q->update();
    if (!q->UserMode()) {
        timer1->stop();
        return;
    }
    if (!q->Enabled()) {
        timer1->stop();
        return;
    }
    if (themeIsUsed) {
        q->GetTheme();
    }
    engine.seed(range);
    applyBackground(false);
    applyFont();
    if (wandFollowsMouse) {
        followMouse();
    } else {
        stopFollowingMouse();
    }
    timer1->setInterval(TimerInterval);
    // A theme read above may have disabled the chameleon.
    if (q->Enabled()) {
        timer1->start();
    } else {
        timer1->stop();
    }
}

// ---- themes ---------------------------------------------------------------------

// Fetched afresh at every theme call: the name may have changed since.
QString Kelochameleon::Private::fetchSettingsApplicationName()
{
    settingsAppName = q->objectName().isEmpty() ? QString::fromLatin1(Kelochameleon::staticMetaObject.className())
                                                : q->objectName();
    return settingsAppName;
}

// The property itself changes, so a designer saves the name the theme went under.
void Kelochameleon::Private::ensureThemeName()
{
    if (themeName.isEmpty()) {
        q->setThemeName(DefaultThemeName);
    }
}

QVariant Kelochameleon::SaveTheme()
{
    const QString appName = d->fetchSettingsApplicationName();
    d->ensureThemeName();
    const QString section = d->themeName;
    const auto save = [&](const char *key, const QString &value) {
        SaveSetting(appName, section, QString::fromLatin1(key), value);
    };
    save("ThemeExists", booleanText(true));
    save("BackgroundPicture", d->backgroundPicture);
    save("BackgroundPictureStyle", QString::number(d->backgroundPictureStyle));
    save("FontStyle", QString::number(d->fontStyle));
    save("Interval", QString::number(d->interval));
    save("BackgroundStyle", QString::number(d->backgroundStyle));
    save("WandStyle", QString::number(d->wandStyle));
    save("NewBackColor", QString::number(qint32(d->newBackColor)));
    save("Enabled", booleanText(Enabled()));
    save("ColorMinimum", QString::number(d->range.minimum));
    save("ColorMaximum", QString::number(d->range.maximum));
    save("ColorStepRate", QString::number(d->range.stepRate));
    return QVariant();
}

bool Kelochameleon::GetTheme()
{
    const QString appName = d->fetchSettingsApplicationName();
    d->ensureThemeName();
    const QString section = d->themeName;
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
    d->backgroundPicture = read("BackgroundPicture", QString()).toString();
    d->backgroundPictureStyle = CLng(read("BackgroundPictureStyle", QStringLiteral("0")));
    d->fontStyle = CLng(read("FontStyle", QStringLiteral("0")));
    d->interval = CInt(read("Interval", QStringLiteral("1000")));
    d->backgroundStyle = CLng(read("BackgroundStyle", QStringLiteral("0")));
    d->wandStyle = CLng(read("WandStyle", QStringLiteral("0")));
    d->newBackColor = colorFromVariant(read("NewBackColor", QStringLiteral("0")));
    d->face.storeEnabled(CBool(read("Enabled", booleanText(true))));
    // The maximum is read on both sides of the minimum; both reads give the same text.
    d->range.maximum = CInt(read("ColorMaximum", QStringLiteral("255")));
    d->range.minimum = CInt(read("ColorMinimum", QStringLiteral("0")));
    d->range.maximum = CInt(read("ColorMaximum", QStringLiteral("255")));
    d->range.stepRate = CInt(read("ColorStepRate", QStringLiteral("10")));
    update();
    return true;
}

void Kelochameleon::Private::onTimer1Tick()
{
    if (engine.tick(interval)) {
        applyBackground(true);
    }
    WandPool::shared().advance();
}

// ---- styling ----------------------------------------------------------------------

void Kelochameleon::Private::applyBackground(bool fromTimer)
{
    WandPool &wand = WandPool::shared();
    if (!fromTimer) {
        ignoringErrors([&] { wand.reset(); });
        picBackground->setPicture(QPixmap());
        picBackground->cls();
        pictureLayer->clear();
    }
    switch (keloBackgroundStyle(backgroundStyle)) {
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
            ignoringErrors([&] { setColour(newBackColor); });
        }
        break;
    case keloBackgroundStyle::VariedColor:
        if (!fromTimer) {
            wand.setPictureMode(false);
        }
        ignoringErrors([&] { engine.step(range); });
        ignoringErrors([&] { setColour(engine.currentColor()); });
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
void Kelochameleon::Private::setColour(OleColor colour)
{
    backColor = colour;
    q->update();
    QWidget *form = q->parentWidget();
    ControlAccess::setBackColor(form, colour);
    const QString ownName = q->objectName();
    for (QObject *control : ControlAccess::parentControls(form)) {
        if (control == q || (!ownName.isEmpty() && ControlAccess::nameOf(control) == ownName)) {
            continue;
        }
        if (ControlAccess::backColor(control) != ControlAccess::WindowBackground) {
            ControlAccess::setBackColor(control, colour);
        }
    }
}

// Every control that has a font gets NewFont; the others are skipped.
void Kelochameleon::Private::applyFont()
{
    if (keloFontStyle(fontStyle) != keloFontStyle::ChangeFont) {
        return;
    }
    QWidget *form = q->parentWidget();
    ignoringErrors([&] { ControlAccess::setFont(form, newFont); });
    for (QObject *control : ControlAccess::parentControls(form)) {
        ignoringErrors([&] { ControlAccess::setFont(control, newFont); });
    }
}

// A form that counts in its own scale is switched to twips while the
// picture is placed and switched back afterwards; when the picture cannot be
// loaded it is left in twips.
void Kelochameleon::Private::drawPicture()
{
    if (backgroundPictureStyle == 0) {
        return;
    }
    QWidget *form = q->parentWidget();
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
    const QPixmap picture = loadPicture(backgroundPicture);
    picBackground->setPicture(picture);
    if (!picture.isNull()) {
        picBackground->resize(picture.size());
    }
    constexpr float twips = PicturePlacement::TwipsPerPixel;
    const QSize pictureSize = picture.isNull() ? picBackground->size() : picture.size();
    const QList<QPointF> positions = PicturePlacement::positions(backgroundPictureStyle, form->width() * twips,
        form->height() * twips, pictureSize.width() * twips, pictureSize.height() * twips);
    if (!positions.isEmpty() && picture.isNull()) {
        throw RuntimeError(InvalidPicture, QStringLiteral("Invalid picture"));
    }
    QList<QPointF> pixels;
    pixels.reserve(positions.size());
    for (const QPointF &position : positions) {
        pixels.append(position / twips);
    }
    pictureLayer->paint(form, picture, pixels);
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
    d->wandFollowsMouse = follows;
    propertyChanged("WandFollowsMouse");
    if (!follows) {
        d->stopFollowingMouse();
    } else if (UserMode() && Enabled() && isVisible()) {
        d->followMouse();
    }
}

// The form's mouse movements reach the wand as a MouseMove handler of the
// form would pass them on.
void Kelochameleon::Private::followMouse()
{
    QWidget *form = q->parentWidget();
    if (form != watchedForm) {
        stopFollowingMouse();
    }
    if (!form || form == watchedForm) {
        return;
    }
    watchedForm = form;
    form->installEventFilter(q);
    trackingTurnedOn = !form->hasMouseTracking();
    form->setMouseTracking(true);
}

// Mouse tracking is turned off again only when the chameleon turned it on.
void Kelochameleon::Private::stopFollowingMouse()
{
    if (watchedForm) {
        watchedForm->removeEventFilter(q);
        if (trackingTurnedOn) {
            watchedForm->setMouseTracking(false);
        }
    }
    watchedForm = nullptr;
    trackingTurnedOn = false;
}

bool Kelochameleon::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == d->watchedForm && event->type() == QEvent::MouseMove && UserMode()) {
        const auto *move = static_cast<QMouseEvent *>(event);
        try {
            const QPointF position = WandSurface::fromPixels(d->watchedForm, move->position());
            WandMovement(d->watchedForm, float(position.x()), float(position.y()));
        } catch (const std::exception &) {
            // A form whose scale cannot be read gets no wand.
        }
    }
    return ControlBase::eventFilter(watched, event);
}

bool Kelochameleon::event(QEvent *event)
{
    if (event->type() == QEvent::ParentChange && d->watchedForm && d->watchedForm != parentWidget()) {
        d->stopFollowingMouse();
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
    d->paintFace(painter);
}

// A small chameleon on the control's background; crossed out in red from
// corner to corner while a designer shows it disabled.
void Kelochameleon::Private::paintFace(QPainter &painter) const
{
    const QRect face = q->rect();
    painter.fillRect(face, toQColor(backColor));
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
    if (!q->UserMode() && !q->Enabled()) {
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.setPen(QPen(toQColor(FaceCrossColour), 0));
        painter.drawLine(face.topLeft(), face.bottomRight());
        painter.drawLine(face.bottomLeft(), face.topRight());
    }
}
