#pragma once

#include <QString>

class QWidget;

/// One page of the gallery: its tab title and a factory.
struct GalleryPage
{
    QString title;
    QWidget *(*create)(QWidget *parent);
    /// The PNG file name used when the gallery renders its pages offscreen.
    QString shotName;
};

QWidget *createScoreCardPage(QWidget *parent);
QWidget *createListBoxPage(QWidget *parent);
QWidget *createChameleonPage(QWidget *parent);
QWidget *createFileViewPage(QWidget *parent);
QWidget *createFolderViewPage(QWidget *parent);
QWidget *createFileCommandsPage(QWidget *parent);
