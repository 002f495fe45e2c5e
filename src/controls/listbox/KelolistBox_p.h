#pragma once

// The state of a KelolistBox, shared by the control and its property table.

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
    {
    }

    Kelocontrols::ListBoxModel *const model;
    QListView *const list;
    QLabel *const label;

    bool populating = false;
    bool quietSelection = false;
    bool locked = false;
    bool lockedAlways = false;
    qint32 defaultValue = 0;
    QString defaultText;
    QVariant savedValue;
    Kelocontrols::OleColor backColor = 0x80000005;
    Kelocontrols::OleColor foreColor = 0x80000008;
    int appearance = 1;
};
