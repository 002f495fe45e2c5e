#include "GalleryPages.h"

#include <Kelocontrols/KelofileView.h>
#include <Kelocontrols/KelofolderView.h>

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QSplitter>
#include <QStandardPaths>
#include <QVBoxLayout>

namespace {

// A small tree of folders with a few files, made once beside the file view's sample.
QString createSampleTree()
{
    QString base = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    if (base.isEmpty() || !QDir().mkpath(base)) {
        base = QDir::tempPath() + QStringLiteral("/kelogallery");
    }
    const QString root = base + QStringLiteral("/Sample tree");
    for (const char *folder : {"Documents/Letters", "Documents/Reports/2025", "Documents/Reports/2026", "Music/Jazz",
             "Music/Classical", "Pictures/Holidays", "Pictures/Family", "Projects/Website/images", "Projects/Garden"}) {
        QDir().mkpath(root + QLatin1Char('/') + QLatin1String(folder));
    }
    for (const char *file : {"Documents/Letters/thanks.txt", "Documents/Reports/2026/march.csv",
             "Projects/Website/index.html", "Projects/Garden/plan.txt", "Music/Jazz/playlist.m3u"}) {
        QFile f(root + QLatin1Char('/') + QLatin1String(file));
        if (!f.exists() && f.open(QIODevice::WriteOnly)) {
            f.write("sample\n");
        }
    }
    return root;
}

} // namespace

QWidget *createFolderViewPage(QWidget *parent)
{
    auto *page = new QWidget(parent);
    auto *layout = new QVBoxLayout(page);
    auto *top = new QHBoxLayout;
    auto *roots = new QComboBox(page);
    const QString sample = createSampleTree();
    roots->addItem(QStringLiteral("Sample tree"), sample);
    roots->addItem(QStringLiteral("My Computer"), QStringLiteral("My Computer"));
    roots->addItem(QStringLiteral("My Folders"), QStringLiteral("My Folders"));
    top->addWidget(new QLabel(QStringLiteral("PathRoot:"), page));
    top->addWidget(roots);
    auto *status = new QLabel(page);
    top->addWidget(status, 1);
    layout->addLayout(top);

    auto *splitter = new QSplitter(page);
    auto *folders = new KelofolderView(splitter);
    folders->setObjectName(QStringLiteral("Folders"));
    folders->setBorderStyle(1);
    auto *files = new KelofileView(splitter);
    files->setObjectName(QStringLiteral("Files"));
    files->setView(1); // small icons: the names in full beside the narrow tree
    splitter->setStretchFactor(1, 2);
    layout->addWidget(splitter, 1);

    // The two controls do not know each other: the page connects the tree's NodeClick to the list's Path.
    QObject::connect(folders, &KelofolderView::NodeClick, files, [files, status](const QString &Node) {
        files->setPathRoot(Node);
        status->setText(QStringLiteral("NodeClick: ") + Node);
    });
    const auto setRoot = [folders, files, roots, sample] {
        const QString root = roots->currentData().toString();
        folders->setPathRoot(root);
        if (root == QStringLiteral("My Folders")) {
            for (const QString &favourite : QStringList{sample + QStringLiteral("/Documents"),
                     sample + QStringLiteral("/Music"), sample + QStringLiteral("/Archive")}) {
                folders->AddNewFolder(favourite);
            }
        }
        files->setPathRoot(root == QStringLiteral("My Folders") ? sample : root);
    };
    QObject::connect(roots, &QComboBox::currentIndexChanged, page, setRoot);
    setRoot();
    folders->setPath(sample + QStringLiteral("/Documents/Reports/2026"));
    folders->setPath(sample + QStringLiteral("/Projects/Website"));
    files->setPathRoot(folders->Path());
    return page;
}
