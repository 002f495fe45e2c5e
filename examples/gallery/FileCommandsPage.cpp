#include "GalleryPages.h"

#include <Kelocontrols/KelofileView.h>
#include <Kelocontrols/ListView.h>

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QStandardPaths>
#include <QVBoxLayout>

namespace {

// Two sample folders to drag between, made on first use and left as the user leaves them.
QString sampleFolder(const QString &name, const QStringList &files)
{
    QString base = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    if (base.isEmpty() || !QDir().mkpath(base)) {
        base = QDir::tempPath() + QStringLiteral("/kelogallery");
    }
    const QString folder = base + QStringLiteral("/Drag and drop/") + name;
    if (!QDir(folder).exists()) {
        QDir().mkpath(folder + QStringLiteral("/Archive"));
        for (const QString &file : files) {
            QFile out(folder + QLatin1Char('/') + file);
            if (out.open(QIODevice::WriteOnly)) {
                out.write(QByteArray("Sample file ").append(file.toUtf8()).append('\n'));
            }
        }
    }
    return folder;
}

KelofileView *fileList(const QString &name, const QString &folder, QWidget *parent)
{
    auto *files = new KelofileView(parent);
    files->setObjectName(name);
    files->setMultiSelect(true);
    files->setOLEDragMode(2); // dragging selected items starts a drag by itself
    files->setRefreshInterval(1000); // shows what a drop or another program changed
    files->listFiles()->setColumnWidth(0, 4200);
    files->setPathRoot(folder);
    return files;
}

} // namespace

QWidget *createFileCommandsPage(QWidget *parent)
{
    auto *page = new QWidget(parent);
    auto *layout = new QVBoxLayout(page);
    auto *hint = new QLabel(QStringLiteral("Drag files between the lists (Ctrl copies), right-click an item or the "
                                           "background for the menus, F2 renames, Delete deletes, Ctrl+C / Ctrl+X / "
                                           "Ctrl+V copy, cut and paste, F5 fills the list afresh."),
        page);
    hint->setWordWrap(true);
    layout->addWidget(hint);
    auto *trash = new QCheckBox(QStringLiteral("Delete to the trash (DeleteToTrash)"), page);
    trash->setChecked(true);
    layout->addWidget(trash);

    auto *lists = new QHBoxLayout;
    KelofileView *left = fileList(QStringLiteral("LeftFiles"),
        sampleFolder(QStringLiteral("Left"),
            {QStringLiteral("agenda.txt"), QStringLiteral("minutes.txt"), QStringLiteral("photo.png"),
                QStringLiteral("budget.csv")}),
        page);
    KelofileView *right = fileList(QStringLiteral("RightFiles"),
        sampleFolder(QStringLiteral("Right"), {QStringLiteral("letter.txt"), QStringLiteral("invoice.pdf")}), page);
    lists->addWidget(left);
    lists->addWidget(right);
    layout->addLayout(lists, 1);
    for (KelofileView *files : {left, right}) {
        files->setDeleteToTrash(true);
        QObject::connect(trash, &QCheckBox::toggled, files, &KelofileView::setDeleteToTrash);
    }

    // What the gallery's screenshot shows: the item menu open over the second item of the left list.
    QObject::connect(
        left, &KelofileView::AfterPaint, left, [left] { left->setItemSelected(2); }, Qt::SingleShotConnection);
    page->setProperty(
        "shotMenu", QVariant::fromValue<QObject *>(left->findChild<QMenu *>(QStringLiteral("popOnFile"))));
    page->setProperty("shotMenuWidget", QVariant::fromValue<QObject *>(left));
    page->setProperty("shotMenuAt", QPoint(90, 52));
    return page;
}
