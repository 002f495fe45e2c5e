#pragma once

#include <kelocontrols_export.h>

#include "OleColor.h"

#include <QFont>
#include <QList>
#include <QString>

class QObject;
class QWidget;

namespace Kelocontrols {

/**
 * Late-bound access to the controls of a form, the way the chameleon
 * reaches them: by name, background colour and font only, whatever their
 * class.
 *
 * A form's controls are the objects its author placed on it: every widget
 * and non-widget object (a QTimer, a QAction) of the form, also those inside
 * frames, group boxes, tab pages and other containers, listed depth first
 * in creation order (QObject::children() order, which raise() and lower()
 * change): a container comes first, then what it holds, then the next
 * object. A widget holds controls in one of three ways, decided by the
 * first of these classes it derives from:
 * - compound widgets hold only their own make-up, never controls: the
 *   library's own controls (a list box's list, a score card's picture),
 *   buttons, labels, line edits, spin boxes, combo boxes, sliders, item and
 *   text views (QAbstractScrollArea), tab bars, menus, tool and status bars,
 *   button boxes, calendars, progress bars, LCD numbers, key sequence edits;
 * - paged and scrolled containers hold the widgets they show, in the order
 *   of their pages, but not their machinery (a QTabWidget's tab bar and
 *   stack, a scroll area's viewport and scroll bars): QTabWidget and
 *   QToolBox pages, QScrollArea::widget(), the widgets of QMdiArea's sub
 *   windows, QDockWidget::widget();
 * - every other widget is a plain container whose children are controls:
 *   QWidget, QFrame, QGroupBox, QStackedWidget, QSplitter, QDialog, and
 *   custom classes derived from them (a promoted container of a form
 *   file).
 * Left out, with everything they hold, are the objects that only serve Qt
 * or this library:
 * - layouts (QLayout): the form's geometry, not controls;
 * - Qt's own helpers: objects whose objectName starts with "qt_", and the
 *   helpers QUiLoader leaves in the forms it loads (classes of its
 *   QFormInternal namespace);
 * - objects marked with the dynamic property `_kelo_internal` (the wand's
 *   drawing layers, see markInternal()); a custom composite widget marks
 *   its inner parts this way to keep them out.
 *
 * A control's `BackColor` and `Font` are, in this order of preference:
 * - its own `BackColor` / `Font` property, when it has one (the library's
 *   controls have them; BackColor holds an OLE colour);
 * - for a plain Qt widget, the colour of the background palette role of
 *   its face (painted with autoFillBackground) and its QWidget font. The
 *   face is what shows the widget's background: the viewport of a scroll
 *   area (text, list, table and tree views), the line edit of a spin box or
 *   of an editable combo box, else the widget itself.
 * A non-widget, or one of the library's controls without such a property,
 * lacks the member: reading or writing it raises RuntimeError 438.
 *
 * A plain widget whose background role has not been given a colour of its
 * own follows the desktop scheme and reports the system colour of that role:
 * 0x80000005 (window background) for the Base role of text and list boxes,
 * 0x8000000F (button face) for Window and Button. A system colour written to
 * a plain widget is resolved through the palette when it is written.
 */
namespace ControlAccess {

/// "Object doesn't support this property or method": a member that a control lacks.
constexpr int ObjectDoesNotSupportMember = 438;
/// "Object variable or With block variable not set": a member of no object at all.
constexpr int ObjectVariableNotSet = 91;

/// The system colour of window backgrounds (text and list boxes).
constexpr OleColor WindowBackground = 0x80000005u;
/// The system colour of button faces (forms, labels, buttons).
constexpr OleColor ButtonFace = 0x8000000Fu;

/// The dynamic property that keeps an object out of parentControls().
inline constexpr char InternalMarker[] = "_kelo_internal";

/// The controls of `form`, nested ones included, depth first in creation order (see above); empty for no form.
KELOCONTROLS_TESTS_EXPORT QList<QObject *> parentControls(const QWidget *form);

/// Keeps `object` out of its parent's controls.
KELOCONTROLS_TESTS_EXPORT void markInternal(QObject *object);

/// Whether `object` is one of the helpers that parentControls() leaves out.
KELOCONTROLS_TESTS_EXPORT bool isInternal(const QObject *object);

/// The name of a control: its objectName.
KELOCONTROLS_TESTS_EXPORT QString nameOf(const QObject *control);

/// The control's BackColor as an OLE colour. @throws RuntimeError 438 when it has none, 91 for no object.
KELOCONTROLS_TESTS_EXPORT OleColor backColor(const QObject *control);

/// Sets the control's BackColor. @throws RuntimeError 438 when it has none, 91 for no object.
KELOCONTROLS_TESTS_EXPORT void setBackColor(QObject *control, OleColor color);

/// The control's Font. @throws RuntimeError 438 when it has none, 91 for no object.
KELOCONTROLS_TESTS_EXPORT QFont font(const QObject *control);

/// Sets the control's Font. @throws RuntimeError 438 when it has none, 91 for no object.
KELOCONTROLS_TESTS_EXPORT void setFont(QObject *control, const QFont &font);

/// Whether `object` has a property `name`, declared or dynamic.
KELOCONTROLS_TESTS_EXPORT bool hasProperty(const QObject *object, const char *name);

/**
 * hasProperty() for the member names asked of every control again and again
 * ("BackColor", "Font", "ScaleMode" ...): whether a class declares the
 * property is looked up once per class and name. @p name must be a string
 * that lives as long as the process (a literal), since it is remembered by
 * address.
 */
KELOCONTROLS_TESTS_EXPORT bool hasMember(const QObject *object, const char *name);

} // namespace ControlAccess

} // namespace Kelocontrols
