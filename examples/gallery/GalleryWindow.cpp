#include "GalleryWindow.h"

#include "GalleryPages.h"

#include <Kelocontrols/KeloVersion.h>

#include <QApplication>
#include <QDir>
#include <QMenu>
#include <QPainter>
#include <QTabWidget>

namespace {

// Pages in tab order. A new control's page is one more line here.
const QList<GalleryPage> &pages()
{
    static const QList<GalleryPage> list = {
        {QStringLiteral("File view"), &createFileViewPage, QStringLiteral("fileview")},
        {QStringLiteral("Folder view"), &createFolderViewPage, QStringLiteral("folderview")},
        {QStringLiteral("File commands"), &createFileCommandsPage, QStringLiteral("filecommands")},
        {QStringLiteral("Score cards"), &createScoreCardPage, QStringLiteral("scorecards")},
        {QStringLiteral("List box"), &createListBoxPage, QStringLiteral("listbox")},
        {QStringLiteral("Chameleon"), &createChameleonPage, QStringLiteral("chameleon")},
    };
    return list;
}

// A page may ask for one of its popup menus in its picture ("shotMenu", opened at the middle of
// "shotMenuWidget", or at "shotMenuAt" in it): popups are windows of their own, so the menu is drawn into the picture.
void paintShotMenu(QWidget *page, QWidget *window, QPixmap &shot)
{
    auto *menu = qobject_cast<QMenu *>(page->property("shotMenu").value<QObject *>());
    auto *anchor = qobject_cast<QWidget *>(page->property("shotMenuWidget").value<QObject *>());
    if (!menu || !anchor) {
        return;
    }
    const QVariant place = page->property("shotMenuAt");
    const QPoint at
        = anchor->mapTo(window, place.isValid() ? place.toPoint() : QPoint(anchor->width() / 3, anchor->height() / 4));
    Q_EMIT menu->aboutToShow();
    menu->popup(window->mapToGlobal(at));
    QApplication::processEvents();
    QPainter painter(&shot);
    painter.drawPixmap(at, menu->grab());
    menu->close();
}

} // namespace

GalleryWindow::GalleryWindow(QWidget *parent)
    : QMainWindow(parent)
    , m_tabs(new QTabWidget(this))
{
    setWindowTitle(QStringLiteral("Kelocontrols %1 gallery").arg(QStringLiteral(KELOCONTROLS_VERSION_TEXT)));
    for (const GalleryPage &page : pages()) {
        m_tabs->addTab(page.create(m_tabs), page.title);
    }
    setCentralWidget(m_tabs);
    resize(900, 640);
}

QStringList GalleryWindow::renderPages(const QString &folder)
{
    QStringList files;
    QDir().mkpath(folder);
    for (int i = 0; i < m_tabs->count(); ++i) {
        m_tabs->setCurrentIndex(i);
        QApplication::processEvents();
        const QString file = QDir(folder).filePath(pages().at(i).shotName + QStringLiteral(".png"));
        QPixmap shot = grab();
        paintShotMenu(m_tabs->currentWidget(), this, shot);
        if (shot.save(file)) {
            files << file;
        }
    }
    m_tabs->setCurrentIndex(0);
    return files;
}
