#include "GalleryPages.h"

#include <Kelocontrols/KelolistBox.h>

#include <QCheckBox>
#include <QDir>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QVBoxLayout>

namespace {

const char *const kConnection = "gallery-listbox";

struct Country
{
    int code; // ISO 3166-1 numeric
    const char *name;
};

const Country kCountries[] = {{32, "Argentina"}, {36, "Australia"}, {40, "Austria"}, {56, "Belgium"}, {76, "Brazil"},
    {124, "Canada"}, {152, "Chile"}, {156, "China"}, {203, "Czechia"}, {208, "Denmark"}, {246, "Finland"},
    {250, "France"}, {276, "Germany"}, {300, "Greece"}, {356, "India"}, {372, "Ireland"}, {380, "Italy"},
    {392, "Japan"}, {484, "Mexico"}, {528, "Netherlands"}, {554, "New Zealand"}, {578, "Norway"}, {604, "Peru"},
    {616, "Poland"}, {620, "Portugal"}, {710, "South Africa"}, {724, "Spain"}, {752, "Sweden"}, {756, "Switzerland"},
    {826, "United Kingdom"}, {840, "United States of America"}};

// The gallery keeps its database with its other data (a temporary folder
// when that place cannot be written).
QString databaseFile()
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    if (folder.isEmpty() || !QDir().mkpath(folder)) {
        folder = QDir::tempPath();
    }
    return QDir(folder).filePath(QStringLiteral("countries.sqlite"));
}

QString fillCountries(QSqlDatabase &db)
{
    QSqlQuery query(db);
    if (!db.transaction()
        || !query.exec(QStringLiteral("CREATE TABLE countries (code INTEGER PRIMARY KEY, name TEXT NOT NULL)"))
        || !query.prepare(QStringLiteral("INSERT INTO countries (code, name) VALUES (?, ?)"))) {
        const QString error = query.lastError().isValid() ? query.lastError().text() : db.lastError().text();
        db.rollback();
        return error;
    }
    for (const Country &country : kCountries) {
        query.addBindValue(country.code);
        query.addBindValue(QString::fromLatin1(country.name));
        if (!query.exec()) {
            const QString error = query.lastError().text();
            db.rollback();
            return error;
        }
    }
    return db.commit() ? QString() : db.lastError().text();
}

// Opens the database, creating it and its table on the first start; returns
// an error text, empty on success.
QString openCountries(QSqlDatabase &db)
{
    const QString connection = QString::fromLatin1(kConnection);
    db = QSqlDatabase::contains(connection) ? QSqlDatabase::database(connection, false)
                                            : QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
    db.setDatabaseName(databaseFile());
    if (!db.isOpen() && !db.open()) {
        return db.lastError().text();
    }
    if (db.tables().contains(QStringLiteral("countries"))) {
        return QString();
    }
    return fillCountries(db);
}

} // namespace

QWidget *createListBoxPage(QWidget *parent)
{
    auto *page = new QWidget(parent);
    auto *layout = new QHBoxLayout(page);

    auto *listGroup = new QGroupBox(QStringLiteral("Countries from SQLite"));
    auto *listLayout = new QVBoxLayout(listGroup);
    auto *countries = new KelolistBox;
    countries->setObjectName(QStringLiteral("countries"));
    countries->setToolTipText(QStringLiteral("ISO 3166 countries; each line's value is its numeric code"));
    countries->setMinimumSize(240, 320);
    listLayout->addWidget(countries);
    layout->addWidget(listGroup, 1);

    auto *sideGroup = new QGroupBox(QStringLiteral("Selection"));
    auto *side = new QFormLayout(sideGroup);
    auto *locked = new QCheckBox(QStringLiteral("Locked"));
    auto *value = new QLabel;
    auto *text = new QLabel;
    auto *status = new QLabel;
    status->setWordWrap(true);
    status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *france = new QPushButton(QStringLiteral("Value = 250"));
    auto *nowhere = new QPushButton(QStringLiteral("Value = 999 (not in the list)"));
    side->addRow(locked);
    side->addRow(QStringLiteral("Value:"), value);
    side->addRow(QStringLiteral("Text:"), text);
    side->addRow(france);
    side->addRow(nowhere);
    side->addRow(QStringLiteral("Database:"), status);
    layout->addWidget(sideGroup);

    auto showSelection = [countries, value, text] {
        value->setText(QString::number(countries->Value()));
        text->setText(countries->Text());
    };
    QObject::connect(countries, &KelolistBox::Click, page, showSelection);
    QObject::connect(locked, &QCheckBox::toggled, countries, &KelolistBox::setLocked);
    QObject::connect(france, &QPushButton::clicked, countries, [countries] { countries->setValue(250); });
    QObject::connect(nowhere, &QPushButton::clicked, countries, [countries] { countries->setValue(999); });

    QSqlDatabase db;
    QString error = openCountries(db);
    if (error.isEmpty()) {
        QSqlQuery query(db);
        query.setForwardOnly(true);
        query.exec(QStringLiteral("SELECT name, code FROM countries ORDER BY name"));
        error = countries->Populate(
            query, QStringLiteral("name"), QStringLiteral("code"), QStringLiteral("(no country)"), 0);
    }
    status->setText(error.isEmpty() ? QDir::toNativeSeparators(db.databaseName()) : error);
    countries->setValue(250);
    showSelection();
    return page;
}
