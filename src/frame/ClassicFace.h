#pragma once

/**
 * \file
 * The face that classic controls share: the BackColor, ForeColor, Enabled,
 * Font and MousePointer properties, with their help strings, and the eight
 * stock events (Click, DblClick, KeyDown, KeyPress, KeyUp, MouseDown,
 * MouseMove, MouseUp), declared once here and published by each control
 * member by member.
 *
 * A control publishes only the members its interface has (the chameleon has
 * Enabled but no colours; the list box has no mouse events), and in its own
 * order: a member's Q_PROPERTY goes where the control lists its properties,
 * because that order is the order hosts and forms see. So each member has
 * its own macros rather than a common base class:
 *
 * - KELO_CLASSIC_PROPERTY(Name) in the property block: the Q_PROPERTY line
 *   and the "Help:Name" class information entry.
 * - KELO_CLASSIC_ACCESSORS(Name) in the public section: the read and write
 *   functions (BackColor() / setBackColor() ...).
 * - KELO_CLASSIC_CLICK_EVENTS (Click, DblClick), KELO_CLASSIC_KEY_EVENTS
 *   (KeyDown, KeyPress, KeyUp) and KELO_CLASSIC_MOUSE_EVENTS (MouseDown,
 *   MouseMove, MouseUp) under Q_SIGNALS, with the arguments a host expects
 *   (see Kelocontrols::StockEventFilter).
 *
 * - KELO_CLASSIC_STOCK_CLICK_IDS, KELO_CLASSIC_STOCK_KEY_IDS and
 *   KELO_CLASSIC_STOCK_MOUSE_IDS among the class information: the standard
 *   dispatch ids of those events (Click -600 to MouseUp -607). A control
 *   that numbers its events itself (the file view) writes its ids out.
 *
 * Every other dispatch id stays in the control's header, as does each
 * property's documentation with its default.
 * The accessors are implemented once, in Kelocontrols::ClassicFace
 * (ClassicFace_p.h), which each control's private data holds.
 *
 * moc sees through these macros: it preprocesses the header with the
 * target's include path, so the expanded Q_PROPERTY, Q_CLASSINFO and signal
 * declarations reach the meta-object exactly as if they were written out.
 * The control's header must include this one itself. (moc does not go as
 * far as finding a Q_OBJECT or Q_GADGET class that a macro declares, which
 * is why KeloEnums.h writes its classes out.)
 *
 * \code
 * class KeloExample : public Kelocontrols::ControlBase
 * {
 *     Q_OBJECT
 *     Q_CLASSINFO("DispId:Click", "-600")
 *     /// The background colour. Default: 0x8000000F
 *     KELO_CLASSIC_PROPERTY(BackColor)
 *     Q_PROPERTY(int Own READ Own WRITE setOwn)
 * public:
 *     KELO_CLASSIC_ACCESSORS(BackColor)
 * Q_SIGNALS:
 *     KELO_CLASSIC_CLICK_EVENTS
 * };
 * \endcode
 */

#include "OleColor.h"

#include <QFont>

/// The Q_PROPERTY line and help string of the shared member `Name`.
#define KELO_CLASSIC_PROPERTY(Name) KELO_CLASSIC_PROPERTY_##Name
/// The read and write functions of the shared member `Name`.
#define KELO_CLASSIC_ACCESSORS(Name) KELO_CLASSIC_ACCESSORS_##Name

// ---- BackColor: an OLE colour; system colours follow the palette -----------

#define KELO_CLASSIC_PROPERTY_BackColor                                                                                \
    Q_PROPERTY(uint BackColor READ BackColor WRITE setBackColor)                                                       \
    Q_CLASSINFO("Help:BackColor", "Returns/sets the background color used to display text and graphics in an object.")
#define KELO_CLASSIC_ACCESSORS_BackColor                                                                               \
    Kelocontrols::OleColor BackColor() const;                                                                          \
    void setBackColor(Kelocontrols::OleColor color);

// ---- ForeColor -------------------------------------------------------------

#define KELO_CLASSIC_PROPERTY_ForeColor                                                                                \
    Q_PROPERTY(uint ForeColor READ ForeColor WRITE setForeColor)                                                       \
    Q_CLASSINFO("Help:ForeColor", "Returns/sets the foreground color used to display text and graphics in an object.")
#define KELO_CLASSIC_ACCESSORS_ForeColor                                                                               \
    Kelocontrols::OleColor ForeColor() const;                                                                          \
    void setForeColor(Kelocontrols::OleColor color);

// ---- Enabled: setEnabled(bool) also emits PropertyChanged("Enabled") ---------

#define KELO_CLASSIC_PROPERTY_Enabled                                                                                  \
    Q_PROPERTY(bool Enabled READ Enabled WRITE setEnabled)                                                             \
    Q_CLASSINFO("Help:Enabled",                                                                                        \
        "Returns/sets a value that determines whether an object can respond to user-generated events.")
#define KELO_CLASSIC_ACCESSORS_Enabled                                                                                 \
    bool Enabled() const;                                                                                              \
    void setEnabled(bool enabled);

// ---- Font --------------------------------------------------------------------

#define KELO_CLASSIC_PROPERTY_Font                                                                                     \
    Q_PROPERTY(QFont Font READ Font WRITE setFont)                                                                     \
    Q_CLASSINFO("Help:Font", "Returns a Font object.")
#define KELO_CLASSIC_ACCESSORS_Font                                                                                    \
    QFont Font() const;                                                                                                \
    void setFont(const QFont &font);

// ---- MousePointer: one of the Kelocontrols::MousePointer codes ---------------

#define KELO_CLASSIC_PROPERTY_MousePointer                                                                             \
    Q_PROPERTY(int MousePointer READ MousePointer WRITE setMousePointer)                                               \
    Q_CLASSINFO("Help:MousePointer", "Returns/sets the type of mouse pointer displayed when over part of an object.")
#define KELO_CLASSIC_ACCESSORS_MousePointer                                                                            \
    int MousePointer() const;                                                                                          \
    void setMousePointer(int pointer);

// ---- the stock events (under Q_SIGNALS) --------------------------------------

#define KELO_CLASSIC_CLICK_EVENTS                                                                                      \
    void Click();                                                                                                      \
    void DblClick();
#define KELO_CLASSIC_KEY_EVENTS                                                                                        \
    void KeyDown(short &KeyCode, short &Shift);                                                                        \
    void KeyPress(short &KeyAscii);                                                                                    \
    void KeyUp(short &KeyCode, short &Shift);
#define KELO_CLASSIC_MOUSE_EVENTS                                                                                      \
    void MouseDown(short &Button, short &Shift, float &X, float &Y);                                                   \
    void MouseMove(short &Button, short &Shift, float &X, float &Y);                                                   \
    void MouseUp(short &Button, short &Shift, float &X, float &Y);

// ---- the standard dispatch ids of the stock events (among Q_CLASSINFO) -------

#define KELO_CLASSIC_STOCK_CLICK_IDS                                                                                   \
    Q_CLASSINFO("DispId:Click", "-600")                                                                                \
    Q_CLASSINFO("DispId:DblClick", "-601")
#define KELO_CLASSIC_STOCK_KEY_IDS                                                                                     \
    Q_CLASSINFO("DispId:KeyDown", "-602")                                                                              \
    Q_CLASSINFO("DispId:KeyPress", "-603")                                                                             \
    Q_CLASSINFO("DispId:KeyUp", "-604")
#define KELO_CLASSIC_STOCK_MOUSE_IDS                                                                                   \
    Q_CLASSINFO("DispId:MouseDown", "-605")                                                                            \
    Q_CLASSINFO("DispId:MouseMove", "-606")                                                                            \
    Q_CLASSINFO("DispId:MouseUp", "-607")
