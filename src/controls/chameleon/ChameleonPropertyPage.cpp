#include "ChameleonPropertyPage.h"

#include "Conversions.h"
#include "MsgBox.h"
#include "PropertyValues.h"
#include "RuntimeError.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSlider>
#include <QVBoxLayout>

#include <utility>

using namespace Kelocontrols;

namespace {

constexpr int ObjectDoesNotSupportMember = 438;
constexpr int IntervalStep = 100;
constexpr int IntervalMinimum = 100;
constexpr int IntervalMaximum = 10000;
constexpr QSize PreviewSize(180, 135);
const QString CRLF = QStringLiteral("\r\n");

[[noreturn]] void raiseMissingMember(const char *name)
{
    throw RuntimeError(ObjectDoesNotSupportMember,
        QStringLiteral("Object doesn't support this property or method: %1").arg(QLatin1String(name)));
}

QVariant readProperty(const QObject *control, const char *name)
{
    const QVariant value = control->property(name);
    if (!value.isValid()) {
        raiseMissingMember(name);
    }
    return value;
}

// A declared property refuses a value it cannot convert (setProperty returns
// false); a dynamic one takes anything.
void writeProperty(QObject *control, const char *name, const QVariant &value)
{
    if (control->metaObject()->indexOfProperty(name) >= 0) {
        if (!control->setProperty(name, value)) {
            throw RuntimeError(ErrorNumber::TypeMismatch);
        }
    } else if (control->dynamicPropertyNames().contains(name)) {
        control->setProperty(name, value);
    } else {
        raiseMissingMember(name);
    }
}

bool callGetTheme(QObject *control)
{
    bool found = false;
    if (!QMetaObject::invokeMethod(control, "GetTheme", Qt::DirectConnection, Q_RETURN_ARG(bool, found))) {
        raiseMissingMember("GetTheme");
    }
    return found;
}

void callSaveTheme(QObject *control)
{
    // The result (always empty) is not needed; leaving it out accepts any return type.
    if (!QMetaObject::invokeMethod(control, "SaveTheme", Qt::DirectConnection)) {
        raiseMissingMember("SaveTheme");
    }
}

QSlider *makeSlider(const char *name, int minimum, int maximum, int pageStep, int tickInterval)
{
    auto *slider = new QSlider(Qt::Horizontal);
    slider->setObjectName(QLatin1String(name));
    slider->setRange(minimum, maximum);
    slider->setPageStep(pageStep);
    slider->setTickPosition(QSlider::TicksBelow);
    slider->setTickInterval(tickInterval);
    slider->setMinimumWidth(180);
    return slider;
}

// A right-aligned value label wide enough for "255".
QLabel *makeValueLabel(const char *name)
{
    auto *label = new QLabel;
    label->setObjectName(QLatin1String(name));
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label->setMinimumWidth(label->fontMetrics().horizontalAdvance(QStringLiteral("0000")));
    return label;
}

QLabel *makeSwatch(const char *name)
{
    auto *swatch = new QLabel;
    swatch->setObjectName(QLatin1String(name));
    swatch->setFrameShape(QFrame::Box);
    swatch->setAutoFillBackground(true);
    swatch->setFixedSize(40, 22);
    return swatch;
}

void showGrey(QLabel *swatch, int value)
{
    QPalette palette = swatch->palette();
    palette.setColor(QPalette::Window, QColor(value, value, value));
    swatch->setPalette(palette);
}

QLineEdit *makeLineEdit(const char *name)
{
    auto *edit = new QLineEdit;
    edit->setObjectName(QLatin1String(name));
    return edit;
}

} // namespace

// ---- construction and layout -----------------------------------------------------

QString ChameleonPropertyPage::browseTitle()
{
    return QStringLiteral("Browse for background picture");
}

QString ChameleonPropertyPage::pictureFilter()
{
    return QStringLiteral("Picture files|*.bmp;*.ico;*.cur;*.rle;*.wmf;*.emf;*.gif;*.jpg|")
        + QStringLiteral("All files|*.*");
}

ChameleonPropertyPage::ChameleonPropertyPage(QWidget *parent)
    : QWidget(parent)
    , m_sliColorMinimum(makeSlider("sliColorMinimum", 0, 255, 16, 16))
    , m_labColorMinimum(makeValueLabel("labColorMinimum"))
    , m_labColorMinimumDisplay(makeSwatch("labColorMinimumDisplay"))
    , m_sliColorMaximum(makeSlider("sliColorMaximum", 0, 255, 16, 16))
    , m_labColorMaximum(makeValueLabel("labColorMaximum"))
    , m_labColorMaximumDisplay(makeSwatch("labColorMaximumDisplay"))
    , m_sliColorStepRate(makeSlider("sliColorStepRate", 0, 255, 16, 16))
    , m_labColorStepRate(makeValueLabel("labColorStepRate"))
    , m_sliInterval(makeSlider("sliInterval", IntervalMinimum, IntervalMaximum, 1000, 1000))
    , m_labInterval(new QLabel)
    , m_txtThemeName(makeLineEdit("txtThemeName"))
    , m_chkThemeIsUsed(new QCheckBox(QStringLiteral("Read the theme whenever the form is shown")))
    , m_txtBackgroundPicture(makeLineEdit("txtBackgroundPicture"))
    , m_imgPreview(new QLabel)
{
    setObjectName(QStringLiteral("ChameleonPropertyPage"));
    m_sliInterval->setSingleStep(IntervalStep);
    m_labInterval->setObjectName(QStringLiteral("labInterval"));
    m_chkThemeIsUsed->setObjectName(QStringLiteral("chkThemeIsUsed"));
    m_imgPreview->setObjectName(QStringLiteral("imgPreview"));
    m_imgPreview->setFrameShape(QFrame::StyledPanel);
    m_imgPreview->setAlignment(Qt::AlignCenter);
    m_imgPreview->setMinimumSize(PreviewSize);
    m_imgPreview->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    m_txtThemeName->setPlaceholderText(QStringLiteral("DefaultTheme"));
    m_txtBackgroundPicture->setPlaceholderText(QStringLiteral("No picture"));

    const QStringList captions{QStringLiteral("&Get theme"), QStringLiteral("&Save theme"),
        QStringLiteral("&Browse..."), QStringLiteral("&Preview")};
    for (int i = 0; i < CommandCount; ++i) {
        auto *button = new QPushButton(captions.at(i));
        button->setObjectName(QStringLiteral("Commands_%1").arg(i));
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, i] { runCommand(i); });
        m_commands.append(button);
    }
    m_sliInterval->setValue(1000);
    buildLayout();
    connectEdits();
    showSliderValues();
}

ChameleonPropertyPage::~ChameleonPropertyPage() = default;

void ChameleonPropertyPage::buildLayout()
{
    auto *grid = new QGridLayout(this);
    grid->addWidget(buildColoursGroup(), 0, 0);
    grid->addWidget(buildTimingGroup(), 1, 0);
    grid->addWidget(buildThemeGroup(), 2, 0);
    grid->addWidget(buildPictureGroup(), 0, 1, 3, 1);
    grid->setRowStretch(3, 1);
    grid->setColumnStretch(0, 3);
    grid->setColumnStretch(1, 2);
    // One caption width in all groups on the left, so their fields line up.
    int captionWidth = 0;
    for (const QLabel *caption : std::as_const(m_captions)) {
        captionWidth = qMax(captionWidth, caption->sizeHint().width());
    }
    for (QLabel *caption : std::as_const(m_captions)) {
        caption->setMinimumWidth(captionWidth);
    }
}

QLabel *ChameleonPropertyPage::makeCaption(const QString &text, QWidget *buddy)
{
    auto *caption = new QLabel(text);
    caption->setBuddy(buddy);
    m_captions.append(caption);
    return caption;
}

QWidget *ChameleonPropertyPage::buildColoursGroup()
{
    auto *group = new QGroupBox(QStringLiteral("Colours"));
    auto *grid = new QGridLayout(group);
    const auto addRow = [this, grid](int row, const QString &caption, QSlider *slider, QLabel *value, QLabel *swatch) {
        grid->addWidget(makeCaption(caption, slider), row, 0);
        grid->addWidget(slider, row, 1);
        grid->addWidget(value, row, 2);
        if (swatch) {
            grid->addWidget(swatch, row, 3);
        }
    };
    addRow(0, QStringLiteral("M&inimum"), m_sliColorMinimum, m_labColorMinimum, m_labColorMinimumDisplay);
    addRow(1, QStringLiteral("M&aximum"), m_sliColorMaximum, m_labColorMaximum, m_labColorMaximumDisplay);
    addRow(2, QStringLiteral("Step &rate"), m_sliColorStepRate, m_labColorStepRate, nullptr);
    grid->setColumnStretch(1, 1);
    return group;
}

QWidget *ChameleonPropertyPage::buildTimingGroup()
{
    auto *group = new QGroupBox(QStringLiteral("Timing"));
    auto *grid = new QGridLayout(group);
    grid->addWidget(makeCaption(QStringLiteral("I&nterval"), m_sliInterval), 0, 0);
    grid->addWidget(m_sliInterval, 0, 1);
    grid->addWidget(m_labInterval, 1, 1);
    grid->setColumnStretch(1, 1);
    return group;
}

QWidget *ChameleonPropertyPage::buildThemeGroup()
{
    auto *group = new QGroupBox(QStringLiteral("Theme"));
    auto *grid = new QGridLayout(group);
    grid->addWidget(makeCaption(QStringLiteral("&Name"), m_txtThemeName), 0, 0);
    grid->addWidget(m_txtThemeName, 0, 1);
    grid->addWidget(m_chkThemeIsUsed, 1, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_commands.at(GetThemeCommand));
    buttons->addWidget(m_commands.at(SaveThemeCommand));
    buttons->addStretch(1);
    grid->addLayout(buttons, 2, 1);
    grid->setColumnStretch(1, 1);
    return group;
}

QWidget *ChameleonPropertyPage::buildPictureGroup()
{
    auto *group = new QGroupBox(QStringLiteral("Background picture"));
    auto *column = new QVBoxLayout(group);
    auto *label = new QLabel(QStringLiteral("&File"));
    label->setBuddy(m_txtBackgroundPicture);
    column->addWidget(label);
    auto *file = new QHBoxLayout;
    file->addWidget(m_txtBackgroundPicture, 1);
    file->addWidget(m_commands.at(BrowseCommand));
    column->addLayout(file);
    column->addWidget(m_imgPreview, 1);
    auto *previewRow = new QHBoxLayout;
    previewRow->addStretch(1);
    previewRow->addWidget(m_commands.at(PreviewCommand));
    column->addLayout(previewRow);
    return group;
}

void ChameleonPropertyPage::connectEdits()
{
    connect(m_sliColorMinimum, &QSlider::valueChanged, this, &ChameleonPropertyPage::onColorMinimumChanged);
    connect(m_sliColorMaximum, &QSlider::valueChanged, this, &ChameleonPropertyPage::onColorMaximumChanged);
    connect(m_sliColorStepRate, &QSlider::valueChanged, this, [this](int value) {
        m_labColorStepRate->setText(QString::number(value));
        markChanged();
    });
    connect(m_sliInterval, &QSlider::valueChanged, this, &ChameleonPropertyPage::onIntervalChanged);
    connect(m_txtThemeName, &QLineEdit::textChanged, this, &ChameleonPropertyPage::markChanged);
    connect(m_txtBackgroundPicture, &QLineEdit::textChanged, this, &ChameleonPropertyPage::markChanged);
    connect(m_chkThemeIsUsed, &QCheckBox::toggled, this, &ChameleonPropertyPage::markChanged);
}

// ---- sliders -------------------------------------------------------------------------

// valueChanged fires while dragging as well, so the other bound follows the
// handle all the way.
void ChameleonPropertyPage::onColorMinimumChanged(int value)
{
    m_labColorMinimum->setText(QString::number(value));
    showGrey(m_labColorMinimumDisplay, value);
    if (value > m_sliColorMaximum->value()) {
        m_sliColorMaximum->setValue(value);
    }
    markChanged();
}

void ChameleonPropertyPage::onColorMaximumChanged(int value)
{
    m_labColorMaximum->setText(QString::number(value));
    showGrey(m_labColorMaximumDisplay, value);
    if (value < m_sliColorMinimum->value()) {
        m_sliColorMinimum->setValue(value);
    }
    markChanged();
}

// Only whole hundreds: the slider is put back onto the hundred below, which
// comes round here again with the snapped value.
void ChameleonPropertyPage::onIntervalChanged(int value)
{
    const int snapped = value / IntervalStep * IntervalStep;
    if (snapped != value) {
        m_sliInterval->setValue(snapped);
        return;
    }
    m_labInterval->setText(intervalText(value));
    markChanged();
}

QString ChameleonPropertyPage::intervalText(int milliseconds)
{
    return QString::number(milliseconds) + QStringLiteral(" milliseconds = ")
        + QString::number(milliseconds / 1000.0, 'g', 15) + QStringLiteral(" seconds");
}

// Labels and swatches for the current positions (a setValue() that does not
// move a slider does not signal).
void ChameleonPropertyPage::showSliderValues()
{
    m_labColorMinimum->setText(QString::number(m_sliColorMinimum->value()));
    showGrey(m_labColorMinimumDisplay, m_sliColorMinimum->value());
    m_labColorMaximum->setText(QString::number(m_sliColorMaximum->value()));
    showGrey(m_labColorMaximumDisplay, m_sliColorMaximum->value());
    m_labColorStepRate->setText(QString::number(m_sliColorStepRate->value()));
    m_labInterval->setText(intervalText(m_sliInterval->value()));
}

// ---- the changed mark ------------------------------------------------------------------

void ChameleonPropertyPage::markChanged()
{
    if (!m_loading) {
        setChanged(true);
    }
}

void ChameleonPropertyPage::setChanged(bool changed)
{
    m_changed = changed;
    if (changed) {
        Q_EMIT Changed();
    }
}

// ---- selection and applying --------------------------------------------------------------

void ChameleonPropertyPage::setSelectedControls(const QList<QObject *> &controls)
{
    m_selected.clear();
    for (QObject *control : controls) {
        m_selected.append(control);
    }
    SelectionChanged();
}

QList<QObject *> ChameleonPropertyPage::SelectedControls() const
{
    QList<QObject *> controls;
    for (const QPointer<QObject> &control : m_selected) {
        if (control) {
            controls.append(control);
        }
    }
    return controls;
}

QObject *ChameleonPropertyPage::firstControl() const
{
    return m_selected.isEmpty() ? nullptr : m_selected.first().data();
}

void ChameleonPropertyPage::SelectionChanged()
{
    QObject *control = firstControl();
    if (!control) {
        return;
    }
    // Everything is read before the page changes, so a control that lacks a
    // property leaves the page as it was.
    const int minimum = CLng(readProperty(control, "ColorMinimum"));
    const int maximum = CLng(readProperty(control, "ColorMaximum"));
    const int stepRate = CLng(readProperty(control, "ColorStepRate"));
    const int interval = CLng(readProperty(control, "Interval"));
    const QString themeName = textFromVariant(readProperty(control, "ThemeName"));
    const bool themeIsUsed = CBool(readProperty(control, "ThemeIsUsed"));
    const QString picture = textFromVariant(readProperty(control, "BackgroundPicture"));

    const QScopedValueRollback<bool> loading(m_loading, true);
    m_sliColorMinimum->setValue(minimum);
    m_sliColorMaximum->setValue(maximum);
    m_sliColorStepRate->setValue(stepRate);
    m_sliInterval->setValue(interval);
    m_txtThemeName->setText(themeName);
    m_chkThemeIsUsed->setChecked(themeIsUsed);
    m_txtBackgroundPicture->setText(picture);
    showSliderValues();
    m_changed = false;
}

void ChameleonPropertyPage::ApplyChanges()
{
    QObject *control = firstControl();
    if (!control) {
        return;
    }
    const int maximum = m_sliColorMaximum->value();
    writeProperty(control, "ThemeIsUsed", m_chkThemeIsUsed->isChecked());
    writeProperty(control, "ThemeName", m_txtThemeName->text());
    writeProperty(control, "BackgroundPicture", m_txtBackgroundPicture->text());
    writeProperty(control, "ColorStepRate", m_sliColorStepRate->value());
    writeProperty(control, "ColorMaximum", maximum);
    writeProperty(control, "ColorMinimum", m_sliColorMinimum->value());
    writeProperty(control, "ColorMaximum", maximum);
    writeProperty(control, "Interval", m_sliInterval->value());
    m_changed = false;
}

// ---- the buttons ---------------------------------------------------------------------------

QPushButton *ChameleonPropertyPage::Commands(int index) const
{
    return m_commands.value(index, nullptr);
}

void ChameleonPropertyPage::Commands_Click(int Index)
{
    switch (Index) {
    case GetThemeCommand:
        getTheme();
        break;
    case SaveThemeCommand:
        saveTheme();
        break;
    case BrowseCommand:
        browse();
        break;
    case PreviewCommand:
        preview();
        break;
    default:
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    }
}

// Errors must not cross the event loop: a click reports them itself.
void ChameleonPropertyPage::runCommand(int index)
{
    try {
        Commands_Click(index);
    } catch (const RuntimeError &error) {
        MsgBox(QStringLiteral("Run-time error '%1':").arg(error.number()) + CRLF + CRLF + error.description(),
            MsgBoxStyle::Critical);
    }
}

void ChameleonPropertyPage::getTheme()
{
    QObject *control = firstControl();
    if (!control) {
        return;
    }
    writeProperty(control, "ThemeName", m_txtThemeName->text());
    if (callGetTheme(control)) {
        SelectionChanged();
        return;
    }
    const QString name = textFromVariant(readProperty(control, "ThemeName"));
    MsgBox(QStringLiteral("Error - Theme '") + name + QStringLiteral("' does not exist."), MsgBoxStyle::OKOnly);
}

void ChameleonPropertyPage::saveTheme()
{
    QObject *control = firstControl();
    if (!control) {
        return;
    }
    ApplyChanges();
    callSaveTheme(control);
    // An empty name was saved as the default theme: show which.
    const QScopedValueRollback<bool> loading(m_loading, true);
    m_txtThemeName->setText(textFromVariant(readProperty(control, "ThemeName")));
}

ChameleonPropertyPage::BrowseDialog ChameleonPropertyPage::setBrowseDialog(BrowseDialog dialog)
{
    return std::exchange(m_browseDialog, std::move(dialog));
}

void ChameleonPropertyPage::browse()
{
    const QString filter = qtFileFilter(pictureFilter());
    const QString start = m_txtBackgroundPicture->text();
    const QString chosen = m_browseDialog ? m_browseDialog(this, browseTitle(), start, filter)
                                          : QFileDialog::getOpenFileName(this, browseTitle(), start, filter);
    if (!chosen.isEmpty()) {
        m_txtBackgroundPicture->setText(chosen);
    }
}

void ChameleonPropertyPage::preview()
{
    m_imgPreview->clear();
    QPixmap picture;
    if (!picture.load(m_txtBackgroundPicture->text())) {
        return;
    }
    // Shrunk to the box (never below its minimum size), never enlarged.
    const QSize box = m_imgPreview->contentsRect().size().expandedTo(PreviewSize) - QSize(4, 4);
    if (picture.width() > box.width() || picture.height() > box.height()) {
        picture = picture.scaled(box, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }
    m_imgPreview->setPixmap(picture);
}

QString ChameleonPropertyPage::qtFileFilter(const QString &classicFilter)
{
    const QStringList parts = classicFilter.split(QLatin1Char('|'));
    QStringList filters;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        QStringList patterns = parts.at(i + 1).split(QLatin1Char(';'), Qt::SkipEmptyParts);
        for (QString &pattern : patterns) {
            pattern = pattern.trimmed();
            if (pattern == QLatin1String("*.*")) {
                pattern = QStringLiteral("*");
            }
        }
        if (!parts.at(i).isEmpty() || !patterns.isEmpty()) {
            filters.append(parts.at(i) + QStringLiteral(" (") + patterns.join(QLatin1Char(' ')) + QLatin1Char(')'));
        }
    }
    return filters.join(QStringLiteral(";;"));
}
