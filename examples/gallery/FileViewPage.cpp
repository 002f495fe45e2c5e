#include "GalleryPages.h"

#include <Kelocontrols/ClipboardFiles.h>
#include <Kelocontrols/FileIcon.h>
#include <Kelocontrols/FileTransfer.h>
#include <Kelocontrols/KelofileView.h>
#include <Kelocontrols/ListView.h>
#include <Kelocontrols/frmProperties.h>

#include <QBuffer>
#include <QCheckBox>
#include <QComboBox>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QStandardPaths>
#include <QVBoxLayout>

namespace {

// The sample folder the page lists: a few files of common types, a hidden
// file and some sub-folders, with dates spread over the past weeks.
QString sampleFolder()
{
    QString base = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    if (base.isEmpty() || !QDir().mkpath(base)) {
        base = QDir::tempPath() + QStringLiteral("/kelogallery");
    }
    return base + QStringLiteral("/Sample files");
}

void writeFile(const QString &path, const QByteArray &bytes, int daysAgo)
{
    QFile file(path);
    if (!file.exists() && file.open(QIODevice::WriteOnly)) {
        file.write(bytes);
        file.close();
    }
    if (file.open(QIODevice::ReadWrite)) {
        file.setFileTime(
            QDateTime::currentDateTime().addDays(-daysAgo).addSecs(-daysAgo * 3917), QFileDevice::FileModificationTime);
    }
}

QByteArray pngPicture()
{
    QImage image(64, 48, QImage::Format_RGB32);
    image.fill(QColor(70, 130, 180));
    QPainter painter(&image);
    painter.setBrush(QColor(255, 215, 0));
    painter.drawEllipse(8, 8, 20, 20);
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

QString createSampleFolder()
{
    const QString root = sampleFolder();
    QDir dir;
    for (const char *sub : {"Documents", "Pictures", "Projects", ".cache"}) {
        dir.mkpath(root + QLatin1Char('/') + QLatin1String(sub));
    }
    writeFile(root + QStringLiteral("/notes.txt"), "Shopping: bread, milk, coffee\n", 1);
    writeFile(root + QStringLiteral("/budget.csv"), QByteArray("month,amount\n").repeated(80), 3);
    writeFile(root + QStringLiteral("/photo.png"), pngPicture(), 12);
    writeFile(root + QStringLiteral("/index.html"), "<!DOCTYPE html><title>Hello</title>\n", 5);
    writeFile(root + QStringLiteral("/backup.sh"), "#!/bin/sh\necho backup\n", 20);
    writeFile(root + QStringLiteral("/report.pdf"), QByteArray("%PDF-1.4\n").repeated(300), 8);
    writeFile(root + QStringLiteral("/settings.json"), "{ \"theme\": \"dark\" }\n", 2);
    writeFile(root + QStringLiteral("/Makefile"), "all:\n\techo done\n", 30);
    writeFile(root + QStringLiteral("/empty.log"), QByteArray(), 0);
    writeFile(root + QStringLiteral("/.profile"), "export EDITOR=vi\n", 40);
    return root;
}

QLabel *caption(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    QFont bold = label->font();
    bold.setBold(true);
    label->setFont(bold);
    return label;
}

// Copy and paste on the sample folder through the clipboard's file list:
// what is copied here pastes into a file manager, and the other way round.
QWidget *clipboardBar(KelofileView *files, QWidget *parent)
{
    auto *bar = new QWidget(parent);
    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *copy = new QPushButton(QStringLiteral("Copy selected"), bar);
    auto *paste = new QPushButton(QStringLiteral("Paste"), bar);
    auto *pasteMove = new QPushButton(QStringLiteral("Paste (move)"), bar);
    auto *state = new QLabel(bar);
    layout->addWidget(copy);
    layout->addWidget(paste);
    layout->addWidget(pasteMove);
    layout->addWidget(state, 1);
    QObject::connect(copy, &QPushButton::clicked, files, [files, state] {
        const int selected = files->ItemSelected();
        if (selected <= 0) {
            state->setText(QStringLiteral("Select a file or folder first."));
            return;
        }
        files->setItemIndex(selected);
        const QString path = files->PathRoot() + QLatin1Char('/') + files->ItemName();
        if (Kelocontrols::ClipboardPutFiles({path}))
            state->setText(QStringLiteral("On the clipboard: %1").arg(path));
    });
    const auto pasteHere = [files](bool asCopy) {
        Kelocontrols::PasteFiles(files->PathRoot(), asCopy);
        files->Refresh(); // show what the paste did
    };
    QObject::connect(paste, &QPushButton::clicked, files, [pasteHere] { pasteHere(true); });
    QObject::connect(pasteMove, &QPushButton::clicked, files, [pasteHere] { pasteHere(false); });
    return bar;
}

QWidget *folderPanel(QWidget *parent)
{
    auto *panel = new QWidget(parent);
    auto *layout = new QVBoxLayout(panel);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(caption(
        QStringLiteral("A folder in Details view: click a header to sort, again to reverse; double-click to open"),
        panel));

    auto *files = new KelofileView(panel);
    files->setObjectName(QStringLiteral("SampleFiles"));
    auto *status = new QLabel(panel);
    QObject::connect(files, &KelofileView::AfterPaint, status, [files, status] {
        status->setText(QStringLiteral("%1 items, %2 bytes in matching files (TotalSize)")
                            .arg(files->ItemCount())
                            .arg(files->TotalSize()));
    });
    // The designed widths are narrow for long names; a host widens what it needs (HIMETRIC units).
    files->listFiles()->setColumnWidth(0, 5200);
    files->listFiles()->setColumnWidth(4, 3600);
    files->setPathRoot(createSampleFolder());
    // Start sorted by size, smallest first, as a click on the "Size" header does (its sort arrow included).
    Q_EMIT files->listFiles()->columnClicked(1);

    auto *controls = new QHBoxLayout;
    auto *filter = new QLineEdit(panel);
    filter->setPlaceholderText(QStringLiteral("Filter, e.g. *.txt"));
    auto *view = new QComboBox(panel);
    view->addItems({QStringLiteral("Large icons"), QStringLiteral("Small icons"), QStringLiteral("List"),
        QStringLiteral("Details")});
    view->setCurrentIndex(3);
    auto *hidden = new QCheckBox(QStringLiteral("Hidden files"), panel);
    auto *open = new QPushButton(QStringLiteral("Open selected"), panel);
    controls->addWidget(filter, 1);
    controls->addWidget(view);
    controls->addWidget(hidden);
    controls->addWidget(open);
    auto *properties = new QPushButton(QStringLiteral("Properties..."), panel);
    properties->setObjectName(QStringLiteral("ShowProperties"));
    controls->addWidget(properties);

    const auto relist = [files] { files->setPathRoot(files->PathRoot()); };
    QObject::connect(filter, &QLineEdit::textChanged, files, [files, relist](const QString &text) {
        files->setFilter(text);
        relist();
    });
    QObject::connect(view, &QComboBox::currentIndexChanged, files, [files](int index) { files->setView(index); });
    QObject::connect(hidden, &QCheckBox::toggled, files, [files, relist](bool on) {
        files->setAllowHiddenFiles(on);
        relist();
    });
    QObject::connect(open, &QPushButton::clicked, files, [files] {
        const int selected = files->ItemSelected();
        if (selected > 0) {
            files->setItemIndex(selected);
            Kelocontrols::OpenWithAssociatedApp(files->PathRoot() + QLatin1Char('/') + files->ItemName(), files, false);
        }
    });

    // The selected item's properties, or the folder's when nothing is selected.
    QObject::connect(properties, &QPushButton::clicked, files, [files] {
        QString path = files->Path();
        if (const int selected = files->ItemSelected(); selected > 0) {
            files->setItemIndex(selected);
            path += QLatin1Char('/') + files->ItemName();
        }
        Kelocontrols::ShowFileProperties(path, QString(), files->window());
        files->Refresh(); // show what the dialog changed
    });

    // Navigation: Up (Backspace and Alt+Up on the list do the same) and a search of the tree below PathRoot.
    auto *navigation = new QHBoxLayout;
    auto *up = new QPushButton(QStringLiteral("Up"), panel);
    up->setObjectName(QStringLiteral("GoUp"));
    auto *search = new QLineEdit(panel);
    search->setObjectName(QStringLiteral("SearchFor"));
    search->setPlaceholderText(QStringLiteral("Search below the sample folder, e.g. *.txt, then Enter"));
    auto *stop = new QPushButton(QStringLiteral("Stop"), panel);
    navigation->addWidget(up);
    navigation->addWidget(search, 1);
    navigation->addWidget(stop);
    QObject::connect(up, &QPushButton::clicked, files, [files] { files->GoUp(); });
    QObject::connect(search, &QLineEdit::returnPressed, files,
        [files, search] { files->Search(search->text(), files->PathRoot(), true); });
    QObject::connect(stop, &QPushButton::clicked, files, [files] { files->StopSearch(); });

    layout->addLayout(controls);
    layout->addWidget(clipboardBar(files, panel));
    layout->addLayout(navigation);
    layout->addWidget(files, 1);
    layout->addWidget(status);
    return panel;
}

QWidget *computerPanel(QWidget *parent)
{
    auto *panel = new QWidget(parent);
    auto *layout = new QVBoxLayout(panel);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(caption(QStringLiteral("\"My Computer\": the mounted drives, in Large icons view"), panel));
    auto *drives = new KelofileView(panel);
    drives->setObjectName(QStringLiteral("Drives"));
    drives->listFiles()->setColumnWidth(0, 5200);
    drives->setView(0);
    drives->setPathRoot(KelofileView::MyComputer);
    layout->addWidget(drives, 1);
    return panel;
}

} // namespace

QWidget *createFileViewPage(QWidget *parent)
{
    auto *page = new QWidget(parent);
    auto *layout = new QVBoxLayout(page);
    layout->addWidget(folderPanel(page), 3);
    layout->addWidget(computerPanel(page), 2);
    return page;
}
