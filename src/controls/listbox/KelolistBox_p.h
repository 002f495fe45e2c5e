#pragma once

// The state of a KelolistBox, shared by the control and its property table.

#include "ClassicFace_p.h"
#include "KelolistBox.h"
#include "ListBoxModel_p.h"

#include <QLabel>
#include <QListView>

class KelolistBox::Private
{
public:
    explicit Private(KelolistBox *box)
        : model(new Kelocontrols::ListBoxModel(box))
        , list(new QListView(box))
        , label(new QLabel(box))
        , face(*box)
    {
        face.keepFontOn(list);
    }

    Kelocontrols::ListBoxModel *const model;
    QListView *const list;
    QLabel *const label;
    /// BackColor and ForeColor painted into the list's palette, Font on the list; Enabled.
    Kelocontrols::ClassicFace face;

    bool populating = false;
    bool quietSelection = false;
    bool locked = false;
    bool lockedAlways = false;
    qint32 defaultValue = 0;
    QString defaultText;
    QVariant savedValue;
    int appearance = 1;
};
