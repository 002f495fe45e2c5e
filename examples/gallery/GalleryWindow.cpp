#include "GalleryWindow.h"

#include "GalleryPages.h"

#include <Kelocontrols/KeloVersion.h>

#include <QApplication>
#include <QDir>
#include <QTabWidget>

namespace {

// Pages in tab order. A new control's page is one more line here.
const QList<GalleryPage> &pages()
{
    static const QList<GalleryPage> list = {
        {QStringLiteral("File view"), &createFileViewPage, QStringLiteral("fileview")},
        {QStringLiteral("Folder view"), &createFolderViewPage, QStringLiteral("folderview")},
        {QStringLiteral("Score cards"), &createScoreCardPage, QStringLiteral("scorecards")},
        {QStringLiteral("List box"), &createListBoxPage, QStringLiteral("listbox")},
        {QStringLiteral("Chameleon"), &createChameleonPage, QStringLiteral("chameleon")},
    };
    return list;
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
        if (grab().save(file)) {
            files << file;
        }
    }
    m_tabs->setCurrentIndex(0);
    return files;
}
