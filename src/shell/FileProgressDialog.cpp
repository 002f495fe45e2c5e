#include "FileProgressDialog.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace Kelocontrols {

namespace {

int &defaultShowDelay()
{
    static int delay = 500;
    return delay;
}

/// The event loop runs at most this often while the dialog is up: often enough to paint, rarely enough to cost nothing.
constexpr qint64 kPumpInterval = 30;

} // namespace

struct FileProgressDialog::Private
{
    bool copy = true;
    int delay = defaultShowDelay();
    QElapsedTimer clock;
    QElapsedTimer sincePump;
    bool cancelled = false;
    int files = 0;
    qint64 bytes = 0;
    QString current;
    QLabel *labAction = nullptr;
    QLabel *labName = nullptr;
    QLabel *labCount = nullptr;
    QProgressBar *barProgress = nullptr;
};

FileProgressDialog::FileProgressDialog(bool copy, QWidget *parent)
    : QDialog(parent)
    , d(std::make_unique<Private>())
{
    d->copy = copy;
    d->clock.start();
    setObjectName(QStringLiteral("frmFileProgress"));
    setWindowTitle(copy ? tr("Copying") : tr("Moving"));
    setWindowModality(Qt::ApplicationModal);

    auto *layout = new QVBoxLayout(this);
    d->labAction = new QLabel(copy ? tr("Copying...") : tr("Moving..."), this);
    d->labAction->setObjectName(QStringLiteral("labAction"));
    d->labName = new QLabel(this);
    d->labName->setObjectName(QStringLiteral("labName"));
    d->labName->setMinimumWidth(360);
    d->labName->setTextFormat(Qt::PlainText);
    d->barProgress = new QProgressBar(this);
    d->barProgress->setObjectName(QStringLiteral("barProgress"));
    d->barProgress->setRange(0, 0); // the total is not counted beforehand: a busy bar
    d->labCount = new QLabel(this);
    d->labCount->setObjectName(QStringLiteral("labCount"));
    auto *buttons = new QDialogButtonBox(this);
    QPushButton *cmdCancel = buttons->addButton(QDialogButtonBox::Cancel);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    connect(cmdCancel, &QPushButton::clicked, this, &FileProgressDialog::cancel);
    layout->addWidget(d->labAction);
    layout->addWidget(d->labName);
    layout->addWidget(d->barProgress);
    layout->addWidget(d->labCount);
    layout->addWidget(buttons);
    updateTexts();
}

FileProgressDialog::~FileProgressDialog() = default;

void FileProgressDialog::beginItem(const QString &name, qint64 bytes)
{
    Q_UNUSED(bytes)
    d->current = name;
}

void FileProgressDialog::addBytes(qint64 bytes)
{
    d->bytes += bytes;
}

void FileProgressDialog::endItem()
{
    ++d->files;
}

bool FileProgressDialog::isCancelled()
{
    if (!isVisible()) {
        if (!d->cancelled && d->clock.elapsed() >= d->delay)
            appear();
    } else if (d->sincePump.elapsed() >= kPumpInterval) {
        updateTexts();
        QCoreApplication::processEvents();
        d->sincePump.restart();
    }
    return d->cancelled;
}

int FileProgressDialog::filesDone() const
{
    return d->files;
}

qint64 FileProgressDialog::bytesDone() const
{
    return d->bytes;
}

QString FileProgressDialog::currentName() const
{
    return d->current;
}

int FileProgressDialog::showDelay()
{
    return defaultShowDelay();
}

void FileProgressDialog::setShowDelay(int milliseconds)
{
    defaultShowDelay() = qMax(0, milliseconds);
}

void FileProgressDialog::reject()
{
    cancel(); // Escape and the window's close button stop the work; the caller closes the dialog
}

void FileProgressDialog::cancel()
{
    d->cancelled = true;
    d->labAction->setText(tr("Cancelling..."));
}

void FileProgressDialog::appear()
{
    updateTexts();
    show();
    QCoreApplication::processEvents();
    d->sincePump.start();
}

void FileProgressDialog::updateTexts()
{
    d->labName->setText(d->current);
    const QString files = d->files == 1 ? tr("1 file") : tr("%1 files").arg(QLocale().toString(d->files));
    d->labCount->setText(tr("%1, %2 done").arg(files, QLocale().formattedDataSize(d->bytes, 1)));
}

} // namespace Kelocontrols
