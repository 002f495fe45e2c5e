#include "GalleryPages.h"

#include <Kelocontrols/Kelochameleon.h>
#include <Kelocontrols/KeloscoreCard.h>
#include <Kelocontrols/RuntimeError.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMetaEnum>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Kelocontrols;

namespace {

// A soft 48 x 48 tile, written once to the temporary folder: the chameleon
// takes its background picture from a file, as a program would.
QString tilePicturePath()
{
    const QString path = QDir::temp().filePath(QStringLiteral("kelocontrols-gallery-tile.png"));
    QImage tile(48, 48, QImage::Format_RGB32);
    tile.fill(QColor(0xf4, 0xee, 0xe0));
    QPainter painter(&tile);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xe2, 0xd5, 0xb8));
    painter.drawEllipse(QPointF(12, 12), 9, 9);
    painter.drawEllipse(QPointF(36, 36), 9, 9);
    painter.setBrush(QColor(0xc9, 0xdc, 0xc4));
    painter.drawEllipse(QPointF(36, 12), 5, 5);
    painter.drawEllipse(QPointF(12, 36), 5, 5);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(0xd0, 0xc2, 0xa0), 1));
    painter.drawRect(QRectF(0.5, 0.5, 47, 47));
    painter.end();
    tile.save(path);
    return path;
}

// A picture is placed for the form's size at the time; a form that is
// resized has its chameleon apply the look again.
class RefreshOnResize : public QObject
{
public:
    RefreshOnResize(QWidget *form, Kelochameleon *chameleon)
        : QObject(chameleon)
        , m_chameleon(chameleon)
    {
        form->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Resize && m_chameleon->isVisible()) {
            m_chameleon->Refresh();
        }
        return QObject::eventFilter(watched, event);
    }

private:
    Kelochameleon *m_chameleon;
};

// A small data-entry form of the kind a chameleon is dropped on.
QWidget *makeForm(const QString &title, const QString &name)
{
    auto *form = new QWidget;
    form->setObjectName(name);
    form->setMinimumSize(360, 300);
    auto *grid = new QGridLayout(form);
    auto *heading = new QLabel(QStringLiteral("<b>%1</b>").arg(title));
    heading->setObjectName(QStringLiteral("labTitle"));
    grid->addWidget(heading, 0, 0, 1, 2);
    const QStringList fields{QStringLiteral("Name"), QStringLiteral("E-mail"), QStringLiteral("City")};
    for (int i = 0; i < fields.size(); ++i) {
        auto *label = new QLabel(fields.at(i));
        label->setObjectName(QStringLiteral("lab") + fields.at(i));
        auto *text = new QLineEdit;
        text->setObjectName(QStringLiteral("txt") + fields.at(i));
        text->setPlaceholderText(fields.at(i));
        grid->addWidget(label, i + 1, 0);
        grid->addWidget(text, i + 1, 1);
    }
    auto *subscribe = new QCheckBox(QStringLiteral("Send me the newsletter"));
    subscribe->setObjectName(QStringLiteral("chkSubscribe"));
    grid->addWidget(subscribe, 4, 1);
    auto *scoreLabel = new QLabel(QStringLiteral("Profile"));
    auto *score = new KeloscoreCard;
    score->setObjectName(QStringLiteral("scoProfile"));
    score->setStyle(keloScoreCardStyle::GaugeRainbow);
    score->setShowValue(keloShowValue::AtMiddle);
    score->setValue(0.68);
    score->setMinimumSize(200, 26);
    grid->addWidget(scoreLabel, 5, 0);
    grid->addWidget(score, 5, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    for (const QString &caption : {QStringLiteral("OK"), QStringLiteral("Cancel")}) {
        auto *button = new QPushButton(caption);
        button->setObjectName(QStringLiteral("cmd") + caption);
        buttons->addWidget(button);
    }
    grid->addLayout(buttons, 6, 0, 1, 2);
    grid->setRowStretch(7, 1);
    return form;
}

// A combo box listing the members of one of the library's enumerations.
template<typename Enum>
QComboBox *enumChooser(Enum current)
{
    auto *combo = new QComboBox;
    const QMetaEnum members = QMetaEnum::fromType<Enum>();
    for (int i = 0; i < members.keyCount(); ++i) {
        combo->addItem(QString::fromLatin1(members.key(i)), members.value(i));
    }
    combo->setCurrentIndex(combo->findData(int(current)));
    return combo;
}

} // namespace

QWidget *createChameleonPage(QWidget *parent)
{
    auto *page = new QWidget(parent);
    auto *layout = new QVBoxLayout(page);
    const QString tile = tilePicturePath();

    // Left: a drifting colour. Right: a tiled picture.
    QWidget *variedForm = makeForm(QStringLiteral("Varied colour"), QStringLiteral("frmVaried"));
    auto *varied = new Kelochameleon(variedForm);
    varied->setObjectName(QStringLiteral("Kelochameleon1"));
    varied->setBackgroundStyle(keloBackgroundStyle::VariedColor);
    varied->setColorMinimum(150);
    varied->setColorMaximum(240);
    varied->setColorStepRate(12);
    varied->setInterval(200);
    varied->setBackgroundPicture(tile);
    varied->setBackgroundPictureStyle(keloPictureStyle::Tiled);
    varied->setWandStyle(keloWandStyle::Stars);
    varied->setWandFollowsMouse(true); // the whole form is the wand's surface

    QWidget *pictureForm = makeForm(QStringLiteral("Tiled picture"), QStringLiteral("frmPicture"));
    auto *pictured = new Kelochameleon(pictureForm);
    pictured->setObjectName(QStringLiteral("Kelochameleon1"));
    pictured->setBackgroundStyle(keloBackgroundStyle::Picture);
    pictured->setBackgroundPicture(tile);
    pictured->setBackgroundPictureStyle(keloPictureStyle::Tiled);
    pictured->setWandStyle(keloWandStyle::Stars);
    pictured->setWandFollowsMouse(true);
    new RefreshOnResize(pictureForm, pictured);

    auto *choosers = new QHBoxLayout;
    auto *background = enumChooser(keloBackgroundStyle::VariedColor);
    auto *placement = enumChooser(keloPictureStyle::Tiled);
    auto *wand = enumChooser(keloWandStyle::Stars);
    choosers->addWidget(new QLabel(QStringLiteral("Left form background")));
    choosers->addWidget(background);
    choosers->addSpacing(16);
    choosers->addWidget(new QLabel(QStringLiteral("Right form picture")));
    choosers->addWidget(placement);
    choosers->addSpacing(16);
    choosers->addWidget(new QLabel(QStringLiteral("Wand")));
    choosers->addWidget(wand);
    choosers->addStretch(1);
    layout->addLayout(choosers);

    // Themes: the left chameleon saves its look under a name; loading gives
    // it to both, as they share one name (and so one settings file).
    auto *themes = new QHBoxLayout;
    auto *themeName = new QLineEdit(QStringLiteral("Gallery"));
    themeName->setObjectName(QStringLiteral("txtThemeName"));
    themeName->setMaximumWidth(180);
    auto *saveTheme = new QPushButton(QStringLiteral("Save theme"));
    saveTheme->setObjectName(QStringLiteral("cmdSaveTheme"));
    auto *loadTheme = new QPushButton(QStringLiteral("Load theme"));
    loadTheme->setObjectName(QStringLiteral("cmdLoadTheme"));
    auto *themeStatus = new QLabel;
    themeStatus->setObjectName(QStringLiteral("labThemeStatus"));
    themes->addWidget(new QLabel(QStringLiteral("Theme")));
    themes->addWidget(themeName);
    themes->addWidget(saveTheme);
    themes->addWidget(loadTheme);
    themes->addWidget(themeStatus, 1);
    layout->addLayout(themes);

    auto *forms = new QHBoxLayout;
    forms->addWidget(variedForm, 1);
    forms->addWidget(pictureForm, 1);
    layout->addLayout(forms, 1);
    auto *hint = new QLabel(QStringLiteral("Move the mouse over a form's background to see the wand."));
    hint->setEnabled(false);
    layout->addWidget(hint);

    QObject::connect(background, &QComboBox::currentIndexChanged, varied, [varied, background] {
        varied->setBackgroundStyle(keloBackgroundStyle(background->currentData().toInt()));
        varied->Refresh();
    });
    QObject::connect(placement, &QComboBox::currentIndexChanged, pictured, [pictured, placement] {
        pictured->setBackgroundPictureStyle(keloPictureStyle(placement->currentData().toInt()));
        pictured->Refresh();
    });
    QObject::connect(wand, &QComboBox::currentIndexChanged, page, [varied, pictured, wand] {
        const auto style = keloWandStyle(wand->currentData().toInt());
        varied->setWandStyle(style);
        pictured->setWandStyle(style);
    });
    QObject::connect(saveTheme, &QPushButton::clicked, page, [varied, themeName, themeStatus] {
        try {
            varied->setThemeName(themeName->text());
            varied->SaveTheme();
            themeName->setText(varied->ThemeName()); // "DefaultTheme" for an empty name
            themeStatus->setText(QStringLiteral("Saved \"%1\" for %2").arg(varied->ThemeName(), varied->objectName()));
        } catch (const RuntimeError &error) {
            themeStatus->setText(error.description());
        }
    });
    QObject::connect(loadTheme, &QPushButton::clicked, page, [varied, pictured, background, themeName, themeStatus] {
        try {
            for (Kelochameleon *chameleon : {varied, pictured}) {
                chameleon->setThemeName(themeName->text());
                if (!chameleon->GetTheme()) {
                    themeStatus->setText(QStringLiteral("No theme \"%1\" yet").arg(chameleon->ThemeName()));
                    return;
                }
                chameleon->Refresh();
            }
            const QSignalBlocker quiet(background);
            background->setCurrentIndex(background->findData(int(varied->BackgroundStyle())));
            themeName->setText(varied->ThemeName());
            themeStatus->setText(QStringLiteral("Loaded \"%1\"").arg(varied->ThemeName()));
        } catch (const RuntimeError &error) {
            themeStatus->setText(error.description());
        }
    });
    return page;
}
