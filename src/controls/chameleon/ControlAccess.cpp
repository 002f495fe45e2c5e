#include "ControlAccess.h"

#include "ControlBase.h"
#include "Conversions.h"
#include "RuntimeError.h"

#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QHash>
#include <QLayout>
#include <QLineEdit>
#include <QMetaObject>
#include <QWidget>

namespace Kelocontrols::ControlAccess {

namespace {

constexpr char BackColorName[] = "BackColor";
constexpr char FontName[] = "Font";

const QObject &require(const QObject *object)
{
    if (!object) {
        throw RuntimeError(ObjectVariableNotSet, QStringLiteral("Object variable or With block variable not set"));
    }
    return *object;
}

[[noreturn]] void raiseMissingMember()
{
    throw RuntimeError(ObjectDoesNotSupportMember, QStringLiteral("Object doesn't support this property or method"));
}

// A Qt widget that is not one of the library's controls: its colour and
// font are its palette and QWidget font.
const QWidget *plainWidget(const QObject &object)
{
    if (!object.isWidgetType() || qobject_cast<const ControlBase *>(&object)) {
        return nullptr;
    }
    return static_cast<const QWidget *>(&object);
}

// The widget that shows a plain widget's background: the viewport of a
// scroll area (text, list, table and tree views), the line edit of a spin
// box or an editable combo box, else the widget itself.
QWidget *faceOf(QWidget *widget)
{
    if (auto *area = qobject_cast<QAbstractScrollArea *>(widget)) {
        return area->viewport();
    }
    if (auto *combo = qobject_cast<QComboBox *>(widget); combo && combo->lineEdit()) {
        return combo->lineEdit();
    }
    if (qobject_cast<QAbstractSpinBox *>(widget)) {
        if (auto *edit = widget->findChild<QLineEdit *>(QString(), Qt::FindDirectChildrenOnly)) {
            return edit;
        }
    }
    return widget;
}

const QWidget *faceOf(const QWidget *widget)
{
    return faceOf(const_cast<QWidget *>(widget));
}

OleColor colorFromVariant(const QVariant &value)
{
    const double number = CDbl(value);
    if (number < -2147483648.0 || number > 4294967295.0) {
        throw RuntimeError(ErrorNumber::Overflow);
    }
    return OleColor(qint64(number) & 0xFFFFFFFF);
}

// The colour a role shows while the widget has not been given one: the
// desktop scheme's colour for that kind of surface.
OleColor systemColorOfRole(QPalette::ColorRole role, const QPalette &palette)
{
    switch (role) {
    case QPalette::Base:
        return WindowBackground;
    case QPalette::Window:
    case QPalette::Button:
        return ButtonFace;
    default:
        return fromQColor(palette.color(QPalette::Active, role));
    }
}

// A palette with one role recoloured. The controls of one kind on a form
// mostly hold palettes of the same contents; handing them one shared result
// spares a deep copy per control, which adds up at ten colour steps a second
// on a large form.
QPalette recoloured(const QPalette &palette, QPalette::ColorRole role, const QColor &colour)
{
    struct Entry
    {
        QPalette source;
        QPalette::ColorRole role;
        QRgb colour;
        QPalette result;
    };
    static QList<Entry> recent;
    const QRgb rgb = colour.rgba();
    for (const Entry &entry : std::as_const(recent)) {
        if (entry.role == role && entry.colour == rgb && entry.source.resolveMask() == palette.resolveMask()
            && entry.source == palette) {
            return entry.result;
        }
    }
    QPalette result = palette;
    result.setColor(role, colour);
    if (recent.size() >= 8) {
        recent.removeFirst();
    }
    recent.append({palette, role, rgb, result});
    return result;
}

void writeProperty(QObject &object, const char *name, const QVariant &value)
{
    if (!object.setProperty(name, value) && object.metaObject()->indexOfProperty(name) >= 0) {
        throw RuntimeError(ErrorNumber::TypeMismatch);
    }
}

} // namespace

// A form of a few hundred controls is walked ten times a second, and a
// declared property is looked up by comparing names: remember the answer
// per class.
bool hasMember(const QObject *object, const char *name)
{
    if (!object) {
        return false;
    }
    static QHash<QPair<const QMetaObject *, const char *>, bool> declared;
    const QMetaObject *meta = object->metaObject();
    const auto key = qMakePair(meta, name);
    auto it = declared.constFind(key);
    if (it == declared.constEnd()) {
        it = declared.insert(key, meta->indexOfProperty(name) >= 0);
    }
    return it.value() || object->dynamicPropertyNames().contains(name);
}

bool hasProperty(const QObject *object, const char *name)
{
    if (!object) {
        return false;
    }
    return object->metaObject()->indexOfProperty(name) >= 0 || object->dynamicPropertyNames().contains(name);
}

void markInternal(QObject *object)
{
    object->setProperty(InternalMarker, true);
}

bool isInternal(const QObject *object)
{
    if (qobject_cast<const QLayout *>(object)) {
        return true;
    }
    if (object->objectName().startsWith(QLatin1String("qt_"))) {
        return true;
    }
    // QUiLoader leaves a retranslation helper among a loaded form's children.
    if (qstrncmp(object->metaObject()->className(), "QFormInternal::", 15) == 0) {
        return true;
    }
    return object->dynamicPropertyNames().contains(InternalMarker) && object->property(InternalMarker).toBool();
}

QList<QObject *> parentControls(const QWidget *form)
{
    QList<QObject *> controls;
    if (!form) {
        return controls;
    }
    for (QObject *child : form->children()) {
        if (!isInternal(child)) {
            controls.append(child);
        }
    }
    return controls;
}

QString nameOf(const QObject *control)
{
    return require(control).objectName();
}

OleColor backColor(const QObject *control)
{
    const QObject &object = require(control);
    if (hasMember(&object, BackColorName)) {
        return colorFromVariant(object.property(BackColorName));
    }
    const QWidget *plain = plainWidget(object);
    if (!plain) {
        raiseMissingMember();
    }
    const QWidget *widget = faceOf(plain);
    const QPalette::ColorRole role = widget->backgroundRole();
    const QPalette &palette = widget->palette();
    if (!palette.isBrushSet(QPalette::Active, role)) {
        return systemColorOfRole(role, palette);
    }
    return fromQColor(palette.color(QPalette::Active, role));
}

void setBackColor(QObject *control, OleColor color)
{
    QObject &object = const_cast<QObject &>(require(control));
    if (hasMember(&object, BackColorName)) {
        writeProperty(object, BackColorName, QVariant::fromValue(uint(color)));
        return;
    }
    if (!plainWidget(object)) {
        raiseMissingMember();
    }
    QWidget &widget = *faceOf(static_cast<QWidget *>(&object));
    const QColor wanted = toQColor(color);
    const QPalette &current = widget.palette();
    const QPalette::ColorRole role = widget.backgroundRole();
    if (!current.isBrushSet(QPalette::Active, role) || current.color(QPalette::Active, role) != wanted
        || current.color(QPalette::Inactive, role) != wanted || current.color(QPalette::Disabled, role) != wanted) {
        widget.setPalette(recoloured(current, role, wanted));
    }
    widget.setAutoFillBackground(true);
}

QFont font(const QObject *control)
{
    const QObject &object = require(control);
    if (hasMember(&object, FontName)) {
        const QVariant value = object.property(FontName);
        if (value.typeId() != QMetaType::QFont) {
            throw RuntimeError(ErrorNumber::TypeMismatch);
        }
        return value.value<QFont>();
    }
    const QWidget *widget = plainWidget(object);
    if (!widget) {
        raiseMissingMember();
    }
    return widget->font();
}

void setFont(QObject *control, const QFont &font)
{
    QObject &object = const_cast<QObject &>(require(control));
    if (hasMember(&object, FontName)) {
        writeProperty(object, FontName, QVariant(font));
        return;
    }
    if (!plainWidget(object)) {
        raiseMissingMember();
    }
    static_cast<QWidget &>(object).setFont(font);
}

} // namespace Kelocontrols::ControlAccess
