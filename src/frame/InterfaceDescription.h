#pragma once

#include <kelocontrols_export.h>

#include <QString>

class QObject;

namespace Kelocontrols {

/**
 * The whole public interface of a control as text, read from its
 * meta-object: what a type-library browser would show.
 *
 * The description covers the class and its library base classes (for the
 * controls, everything from Kelocontrols::ControlBase down; Qt's own classes
 * such as QWidget are left out):
 *
 * \code
 * KeloscoreCard
 *   Interface: _KeloscoreCard
 *   EventInterface: __KeloscoreCard
 *   HelpFile: Kelocontrols.hlp
 *
 * Properties:
 *   uint BackColor = 2147483663 (0x8000000F)
 *       Returns/sets the background color used to display text and graphics in an object.
 *   Kelocontrols::keloScoreCardStyle Style = ScoreCardSmall (0)
 *       Style for the control, either an image or a gauge style type.
 *   bool UserMode = true [not saved]
 *
 * Methods:
 *   void Refresh()
 *       Forces a complete repaint of a object.
 *
 * Events:
 *   void Click() [DispId -600]
 *   void KeyDown(short &KeyCode, short &Shift) [DispId -602]
 *
 * Enumerations:
 *   keloScoreCardStyle
 *     ScoreCardSmall = 0
 *     ...
 * \endcode
 *
 * - The class information entries other than help strings and dispatch ids
 *   follow the class name, in declaration order.
 * - A property shows its type name and its default: for a control, the
 *   default of its property table (the value InitProperties() gives); a
 *   property the control does not save is marked "[not saved]" and shows its
 *   current value. Unsigned values (colours) are also shown in hex,
 *   enumerations as member and number, texts quoted, fonts as family and size.
 * - Methods are the public Q_INVOKABLE methods and slots, events the signals,
 *   each with parameter types and names. Types are written as the
 *   meta-object normalises them: a non-const reference keeps its "&"
 *   ("short &KeyCode"), a const reference shows as the plain type.
 * - A member with a "DispId:<name>" class information entry shows its
 *   dispatch id; one with a "Help:<name>" entry has its help string on the
 *   following line.
 * - Enumerations are the published ones (KeloEnums.h) that the properties,
 *   methods or events use, in order of first use, with every member and value.
 */
KELOCONTROLS_EXPORT QString describeInterface(const QObject &control);

} // namespace Kelocontrols
