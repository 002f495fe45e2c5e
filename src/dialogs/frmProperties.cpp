#include "frmProperties.h"

#include "CommonFile.h"
#include "Conversions.h"
#include "FileAttributes.h"
#include "FileEntry.h"
#include "FileIcon.h"
#include "FileSystem.h"
#include "FileTypes.h"
#include "MsgBox.h"
#include "PictureBox.h"
#include "RuntimeError.h"

#include <QCheckBox>
#include <QDateTime>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include <array>

using namespace Kelocontrols;

namespace {

constexpr int valueCount = 7;
constexpr int dividerCount = 3;

/// The "#,##0" number format: the locale's digits with its group separator, even where it omits them by default.
QString groupedNumber(qint64 value)
{
    QLocale locale;
    locale.setNumberOptions(locale.numberOptions() & ~QLocale::OmitGroupSeparator);
    return locale.toString(value);
}

QString sizeText(qint64 bytes)
{
    qint64 kilobytes;
    try {
        kilobytes = SizeInKB(double(bytes));
    } catch (const RuntimeError &) {
        // Beyond 32 bits of kilobytes (2 TiB): the same rounding up, in 64 bits.
        kilobytes = (bytes + 1023) / 1024;
    }
    return QString::number(kilobytes) + QStringLiteral("KB (") + groupedNumber(bytes) + QStringLiteral(" bytes)");
}

QString contentsText(qsizetype files, qsizetype folders)
{
    if (files == 0 && folders == 0)
        return QStringLiteral("Contains: Nothing.");
    const QString filesPart = files == 0 ? QStringLiteral("No files.")
        : files == 1                     ? QStringLiteral("1 file.")
                                         : QString::number(files) + QStringLiteral(" files.");
    const QString foldersPart = folders == 0 ? QStringLiteral(" No folders.")
        : folders == 1                       ? QStringLiteral(" 1 folder.")
                       : QLatin1Char(' ') + QString::number(folders) + QStringLiteral(" folders.");
    return QStringLiteral("Contains: ") + filesPart + foldersPart;
}

/// A value label that, when its text is wider than its place, shows it shortened in the middle ("/home/…/file").
class ElidingLabel : public QLabel
{
public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent *event) override
    {
        const QRect area = contentsRect();
        if (text().contains(QLatin1Char('\n')) || fontMetrics().horizontalAdvance(text()) <= area.width()) {
            QLabel::paintEvent(event);
            return;
        }
        QPainter painter(this);
        const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, area.width());
        style()->drawItemText(&painter, area, int(alignment()), palette(), isEnabled(), shown, foregroundRole());
    }
};

QLabel *captionLabel(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    return label;
}

} // namespace

class frmProperties::Private
{
public:
    explicit Private(frmProperties *q);

    void clear();
    void fill(const QString &itemPath, const QString &displayName, bool file);
    void setDate(QLabel *label, qint64 milliseconds);
    void apply();
    bool applyTellingFailures();
    int currentAttributes() const;

    frmProperties *q;
    PictureBox *picFile;
    std::array<QLabel *, valueCount> labProperty{};
    std::array<QLabel *, dividerCount> labDividers{};
    QCheckBox *readOnlyBox;
    QCheckBox *hiddenBox;
    std::array<QPushButton *, 3> commands{};

    QString path; ///< the cleaned path of the item shown
    bool isFile = true; ///< which kind of item Apply works on
};

frmProperties::Private::Private(frmProperties *q)
    : q(q)
{
    picFile = new PictureBox(q);
    picFile->setObjectName(QStringLiteral("picFile"));
    picFile->setBorderStyle(0);
    picFile->setFocusPolicy(Qt::NoFocus);
    picFile->setFixedSize(FileIconSize::Large, FileIconSize::Large);

    for (int i = 0; i < valueCount; ++i) {
        labProperty[i] = new ElidingLabel(q);
        labProperty[i]->setObjectName(QStringLiteral("labProperty_%1").arg(i));
        labProperty[i]->setTextFormat(Qt::PlainText);
        labProperty[i]->setTextInteractionFlags(Qt::TextSelectableByMouse);
        // Long names and paths are shortened at the dialog's edge (the tooltip has them whole) rather than widening it.
        labProperty[i]->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    }
    for (int i = 0; i < dividerCount; ++i) {
        labDividers[i] = new QLabel(q);
        labDividers[i]->setObjectName(QStringLiteral("labDividers_%1").arg(i));
        labDividers[i]->setFrameStyle(QFrame::HLine | QFrame::Sunken);
    }
    readOnlyBox = new QCheckBox(QStringLiteral("Read-only"), q);
    readOnlyBox->setObjectName(QStringLiteral("chkProperty_0"));
    hiddenBox = new QCheckBox(QStringLiteral("Hidden"), q);
    hiddenBox->setObjectName(QStringLiteral("chkProperty_1"));

    const std::array<QString, 3> captions{QStringLiteral("OK"), QStringLiteral("Cancel"), QStringLiteral("Apply")};
    for (int i = 0; i < 3; ++i) {
        commands[i] = new QPushButton(captions[i], q);
        commands[i]->setObjectName(QStringLiteral("Commands_%1").arg(i));
        commands[i]->setAutoDefault(false);
    }
    commands[0]->setDefault(true);
}

void frmProperties::Private::clear()
{
    for (QLabel *label : labProperty) {
        label->clear();
        label->setToolTip(QString());
    }
    readOnlyBox->setChecked(false);
    hiddenBox->setChecked(false);
    hiddenBox->setEnabled(true);
    hiddenBox->setToolTip(QString());
    picFile->setPicture(QPixmap());
    picFile->cls();
}

void frmProperties::Private::fill(const QString &itemPath, const QString &displayName, bool file)
{
    FileSystem &fileSystem = FileSystem::instance();
    path = FileSystem::cleanPath(itemPath);
    isFile = file;
    const std::optional<FileEntry> entry = fileSystem.entry(path);
    if (!entry)
        throw RuntimeError(file ? ErrorNumber::FileNotFound : ErrorNumber::PathNotFound);

    QString typeKey;
    DrawFileIcon(path, true, *picFile, typeKey, false);

    // The root of the tree has no name of its own; it goes by its drive's.
    const QString ownName = entry->name.isEmpty() ? FolderDisplayName(path) : entry->name;
    const QString name = displayName.isEmpty() ? ownName : displayName;
    q->setWindowTitle(name + QStringLiteral(" Properties"));
    labProperty[0]->setText(name);
    labProperty[1]->setText(
        file ? FileTypes::instance().fileTypeText(entry->name) : FileTypes::instance().folderTypeText());
    labProperty[2]->setText(FileSystem::parentFolderName(path));
    if (file) {
        labProperty[3]->setText(sizeText(entry->size));
    } else {
        const FolderContents contents = fileSystem.listFolder(path);
        labProperty[3]->setText(contentsText(contents.files.size(), contents.folders.size()));
    }
    setDate(labProperty[4], entry->created);
    setDate(labProperty[5], entry->modified);
    setDate(labProperty[6], entry->accessed);
    for (QLabel *label : labProperty) {
        if (label->toolTip().isEmpty())
            label->setToolTip(label->text());
    }

    readOnlyBox->setChecked(entry->attributes & FileAttribute::ReadOnly);
    hiddenBox->setChecked(entry->attributes & FileAttribute::Hidden);
    if (entry->name.startsWith(QLatin1Char('.'))) {
        hiddenBox->setEnabled(false);
        hiddenBox->setToolTip(QStringLiteral("A name beginning with \".\" is always hidden"));
    }
}

void frmProperties::Private::setDate(QLabel *label, qint64 milliseconds)
{
    const QDateTime when = QDateTime::fromMSecsSinceEpoch(milliseconds);
    label->setText(QLocale().toString(when.date(), QLocale::LongFormat));
    label->setToolTip(formatGeneralDate(when));
}

int frmProperties::Private::currentAttributes() const
{
    const std::optional<FileEntry> entry = FileSystem::instance().entry(path);
    if (!entry)
        throw RuntimeError(isFile ? ErrorNumber::FileNotFound : ErrorNumber::PathNotFound);
    return entry->attributes;
}

void frmProperties::Private::apply()
{
    auto withFlag = [](int attributes, int flag, bool on) { return on ? attributes | flag : attributes & ~flag; };
    FileAttributes::setAttributes(
        path, withFlag(currentAttributes(), FileAttribute::ReadOnly, readOnlyBox->isChecked()));
    FileAttributes::setAttributes(path, withFlag(currentAttributes(), FileAttribute::Hidden, hiddenBox->isChecked()));
}

bool frmProperties::Private::applyTellingFailures()
{
    // A button's handler is no place for an exception to leave through the event loop.
    try {
        apply();
        return true;
    } catch (const RuntimeError &error) {
        MsgBox(error.description(), MsgBoxStyle::Critical);
        return false;
    }
}

frmProperties::frmProperties(QWidget *parent)
    : QDialog(parent)
    , d(std::make_unique<Private>(this))
{
    setObjectName(QStringLiteral("frmProperties"));
    setWindowTitle(QStringLiteral("Properties"));
    setModal(true);

    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(16);
    grid->setVerticalSpacing(6);
    grid->setColumnStretch(1, 1);
    int row = 0;
    grid->addWidget(d->picFile, row, 0, Qt::AlignLeft | Qt::AlignVCenter);
    grid->addWidget(d->labProperty[0], row++, 1);
    auto addDivider = [&](int index) {
        grid->addItem(new QSpacerItem(0, 4), row++, 0);
        grid->addWidget(d->labDividers[index], row++, 0, 1, 2);
        grid->addItem(new QSpacerItem(0, 4), row++, 0);
    };
    auto addLine = [&](const QString &caption, QWidget *value) {
        grid->addWidget(captionLabel(caption, this), row, 0);
        grid->addWidget(value, row++, 1);
    };
    addDivider(0);
    addLine(QStringLiteral("Type of file:"), d->labProperty[1]);
    addLine(QStringLiteral("Location:"), d->labProperty[2]);
    addLine(QStringLiteral("Size:"), d->labProperty[3]);
    addDivider(1);
    addLine(QStringLiteral("Created:"), d->labProperty[4]);
    addLine(QStringLiteral("Modified:"), d->labProperty[5]);
    addLine(QStringLiteral("Accessed:"), d->labProperty[6]);
    addDivider(2);
    auto *attributes = new QHBoxLayout;
    attributes->setSpacing(16);
    attributes->addWidget(d->readOnlyBox);
    attributes->addWidget(d->hiddenBox);
    attributes->addStretch(1);
    grid->addWidget(captionLabel(QStringLiteral("Attributes:"), this), row, 0, Qt::AlignLeft | Qt::AlignVCenter);
    grid->addLayout(attributes, row++, 1);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    for (QPushButton *button : d->commands)
        buttons->addWidget(button);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 14, 14, 12);
    layout->addLayout(grid);
    layout->addSpacing(14);
    layout->addStretch(1);
    layout->addLayout(buttons);
    setMinimumWidth(380);

    connect(d->commands[0], &QPushButton::clicked, this, [this] {
        if (d->applyTellingFailures())
            accept();
    });
    connect(d->commands[1], &QPushButton::clicked, this, &QDialog::reject);
    connect(d->commands[2], &QPushButton::clicked, this, [this] { d->applyTellingFailures(); });
}

frmProperties::~frmProperties() = default;

void frmProperties::ShowFile(const QString &Path, const QString &DisplayName)
{
    d->clear();
    FileSystem &fileSystem = FileSystem::instance();
    if (fileSystem.fileExists(Path)) {
        d->fill(Path, DisplayName, true);
    } else if (fileSystem.folderExists(Path)) {
        d->fill(Path, DisplayName, false);
    } else {
        MsgBox(QStringLiteral("Can not find '") + Path + QLatin1Char('\''), MsgBoxStyle::Information);
        return;
    }
    exec();
}

namespace Kelocontrols {

void ShowFileProperties(const QString &path, const QString &displayName, QWidget *parent)
{
    frmProperties dialog(parent);
    try {
        dialog.ShowFile(path, displayName);
    } catch (const RuntimeError &error) {
        MsgBox(error.description(), MsgBoxStyle::Critical);
    }
}

} // namespace Kelocontrols
