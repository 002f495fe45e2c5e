#pragma once

#include <QMainWindow>

class QTabWidget;

/// The gallery's main window: one tab per control.
class GalleryWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit GalleryWindow(QWidget *parent = nullptr);

    /// Renders every page to <folder>/<shot>.png and returns the files written.
    QStringList renderPages(const QString &folder);

private:
    QTabWidget *m_tabs;
};
