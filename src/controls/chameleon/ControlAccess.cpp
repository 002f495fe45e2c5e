#include "ControlAccess_p.h"

#include "ControlBase.h"
#include "Conversions.h"
#include "RuntimeError.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QCalendarWidget>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QHash>
#include <QKeySequenceEdit>
#include <QLCDNumber>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMetaObject>
#include <QProgressBar>
#include <QScrollArea>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>
#include <QToolBar>
#include <QToolBox>
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

namespace {

// What the walk does with a widget it meets among a form's controls.
enum class Inside {
    Parts, ///< a compound widget: whatever it holds is its own make-up
    Children, ///< a plain container: its children are controls
    Pages, ///< a paged or scrolled container: the widgets it shows are controls
};

// The deciding classes, most derived first within each family: the first one
// a class derives from decides. A class derived from none of them (a custom
// QWidget subclass, a promoted container) holds controls, as a container
// placed in a form designer does.
Inside insideOfClass(const QMetaObject *meta)
{
    static const QList<QPair<const QMetaObject *, Inside>> deciding{
        {&ControlBase::staticMetaObject, Inside::Parts},
        {&QTabWidget::staticMetaObject, Inside::Pages},
        {&QToolBox::staticMetaObject, Inside::Pages},
        {&QScrollArea::staticMetaObject, Inside::Pages},
        {&QMdiArea::staticMetaObject, Inside::Pages},
        {&QDockWidget::staticMetaObject, Inside::Pages},
        {&QAbstractScrollArea::staticMetaObject, Inside::Parts},
        {&QAbstractSpinBox::staticMetaObject, Inside::Parts},
        {&QComboBox::staticMetaObject, Inside::Parts},
        {&QAbstractButton::staticMetaObject, Inside::Parts},
        {&QAbstractSlider::staticMetaObject, Inside::Parts},
        {&QLineEdit::staticMetaObject, Inside::Parts},
        {&QLabel::staticMetaObject, Inside::Parts},
        {&QLCDNumber::staticMetaObject, Inside::Parts},
        {&QProgressBar::staticMetaObject, Inside::Parts},
        {&QDialogButtonBox::staticMetaObject, Inside::Parts},
        {&QCalendarWidget::staticMetaObject, Inside::Parts},
        {&QTabBar::staticMetaObject, Inside::Parts},
        {&QMenu::staticMetaObject, Inside::Parts},
        {&QMenuBar::staticMetaObject, Inside::Parts},
        {&QStatusBar::staticMetaObject, Inside::Parts},
        {&QToolBar::staticMetaObject, Inside::Parts},
        {&QKeySequenceEdit::staticMetaObject, Inside::Parts},
    };
    for (const QMetaObject *m = meta; m; m = m->superClass()) {
        for (const auto &[decidingClass, inside] : deciding) {
            if (m == decidingClass) {
                return inside;
            }
        }
    }
    return Inside::Children;
}

// A form of a few hundred controls is walked ten times a second: the answer
// is remembered per class.
Inside insideOf(const QObject *object)
{
    if (!object->isWidgetType()) {
        return Inside::Parts;
    }
    static QHash<const QMetaObject *, Inside> known;
    const QMetaObject *meta = object->metaObject();
    auto it = known.constFind(meta);
    if (it == known.constEnd()) {
        it = known.insert(meta, insideOfClass(meta));
    }
    return it.value();
}

// The widgets a paged or scrolled container shows, in the order of its pages.
QList<QWidget *> pagesOf(const QWidget *container)
{
    QList<QWidget *> pages;
    if (const auto *tabs = qobject_cast<const QTabWidget *>(container)) {
        for (int i = 0; i < tabs->count(); ++i) {
            pages.append(tabs->widget(i));
        }
    } else if (const auto *toolBox = qobject_cast<const QToolBox *>(container)) {
        for (int i = 0; i < toolBox->count(); ++i) {
            pages.append(toolBox->widget(i));
        }
    } else if (const auto *scroll = qobject_cast<const QScrollArea *>(container)) {
        pages.append(scroll->widget());
    } else if (const auto *mdi = qobject_cast<const QMdiArea *>(container)) {
        for (const QMdiSubWindow *window : mdi->subWindowList(QMdiArea::CreationOrder)) {
            pages.append(window->widget());
        }
    } else if (const auto *dock = qobject_cast<const QDockWidget *>(container)) {
        pages.append(dock->widget());
    }
    pages.removeAll(nullptr);
    return pages;
}

void collectControls(const QObject *container, QList<QObject *> &controls);

void addControl(QObject *control, QList<QObject *> &controls)
{
    if (isInternal(control)) {
        return;
    }
    controls.append(control);
    switch (insideOf(control)) {
    case Inside::Parts:
        break;
    case Inside::Children:
        collectControls(control, controls);
        break;
    case Inside::Pages:
        for (QWidget *page : pagesOf(static_cast<const QWidget *>(control))) {
            addControl(page, controls);
        }
        break;
    }
}

void collectControls(const QObject *container, QList<QObject *> &controls)
{
    for (QObject *child : container->children()) {
        addControl(child, controls);
    }
}

} // namespace

QList<QObject *> parentControls(const QWidget *form)
{
    QList<QObject *> controls;
    if (form) {
        collectControls(form, controls);
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
