#include "KeloTestSupport.h"

#include <Kelocontrols/Conversions.h>
#include <Kelocontrols/FileListFilter.h>
#include <Kelocontrols/FileListModel.h>
#include <Kelocontrols/FileSystem.h>
#include <Kelocontrols/FileTypes.h>

#include <QDateTime>
#include <QPersistentModelIndex>
#include <QRandomGenerator>
#include <QTest>

using namespace Kelocontrols;
using Column = FileListModel::Column;

namespace {

FileEntry fileEntry(const QString &name, qint64 size, qint64 modified, qint64 created)
{
    FileEntry e;
    e.name = name;
    e.size = size;
    e.modified = modified;
    e.created = created;
    e.attributes = FileAttribute::Archive;
    return e;
}

FileListRow file(const QString &name, qint64 size)
{
    return FileListRow::file(fileEntry(name, size, 0, 0), u"/d"_qs);
}

QStringList names(const FileListModel &model)
{
    QStringList list;
    for (int r = 0; r < model.count(); ++r)
        list << model.row(r).text();
    return list;
}

} // namespace

class TestFileListModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sizeTexts_data()
    {
        QTest::addColumn<qint64>("bytes");
        QTest::addColumn<QString>("size");
        QTest::addColumn<QString>("sorted");
        const auto row = [](const char *name, qint64 bytes, const char *size, const char *sorted) {
            QTest::newRow(name) << bytes << QString(size) << QString(sorted);
        };
        row("empty", 0, "0KB", "000000000000");
        row("one byte", 1, "1KB", "000000000001");
        row("1024", 1024, "1KB", "000000001024");
        row("1025", 1025, "2KB", "000000001025");
        // Beyond the 32-bit kilobyte count: the true figure, all digits shown.
        row("5 TB", qint64(5) * 1024 * 1024 * 1024 * 1024, "5368709120KB", "5497558138880");
    }
    void sizeTexts()
    {
        QFETCH(qint64, bytes);
        QFETCH(QString, size);
        QFETCH(QString, sorted);
        const FileListRow row = file(u"a.bin"_qs, bytes);
        QCOMPARE(row.columnText(Column::Size), size);
        QCOMPARE(row.columnText(Column::SortedSize), sorted);
        QCOMPARE(row.rawValue(Column::Size).toLongLong(), bytes);
        QVERIFY(!FileListRow::differInSeconds(10000, 10999));
        QVERIFY(FileListRow::differInSeconds(10999, 11000));
        QVERIFY(FileListRow::differInSeconds(-1, 0)); // before the epoch rounds down
        QVERIFY(!FileListRow::differInSeconds(-1000, -1));
    }
    void textsAndRawValuesOfEachKind()
    {
        const qint64 created = QDateTime(QDate(2023, 5, 6), QTime(7, 8, 9)).toMSecsSinceEpoch();
        const qint64 modified = created + 61 * 1000;
        FileListModel model;
        model.append(FileListRow::file(fileEntry(u"Notes.TXT"_qs, 5, modified, created), u"/d"_qs));
        FileEntry folder = fileEntry(u"Sub"_qs, 0, modified, modified);
        folder.attributes = FileAttribute::Directory;
        model.append(FileListRow::folderOf(folder, u"/missing-parent"_qs, false));
        DriveInfo drive;
        drive.rootPath = u"/media/stick"_qs;
        drive.driveType = DriveType::Removable;
        drive.isReady = true;
        model.append(FileListRow::drive(drive));
        model.append(FileListRow::unavailable(u"/gone"_qs));

        const QStringList file = {"Notes.TXT", "1KB", FileTypes::instance().fileTypeText(u"Notes.TXT"_qs),
            formatGeneralDate(QDateTime::fromMSecsSinceEpoch(modified)),
            formatGeneralDate(QDateTime::fromMSecsSinceEpoch(created)), "Yes", "/d", "000000000005",
            "2023-05-06 07:09:10", "2023-05-06 07:08:09", "Notes.TXT", "", "Notes.TXT"};
        const QStringList sub = {"Sub", "", FileTypes::instance().folderTypeText(), "", "", "", "/missing-parent",
            "000000000000", "2023-05-06 07:09:10", "2023-05-06 07:09:10", "Sub", "", " Sub"};
        const QString driveType = model.text(2, Column::Type);
        const QStringList driveTexts
            = {"/media/stick", "", driveType, "", "", "", "", "", "", "", "/media/stick", "", "/media/stick"};
        const QStringList gone = {"/gone (Unavailable)", "", "", "", "", "", "", "", "", "", "", "", " /gone"};
        const QList<QStringList> expected = {file, sub, driveTexts, gone};
        QCOMPARE(model.rowCount(), 4);
        for (int r = 0; r < 4; ++r) {
            for (int c = 0; c < FileListModel::ColumnCount; ++c)
                QCOMPARE(model.data(model.index(r, c)).toString(), expected[r][c]);
        }
        QVERIFY(!driveType.isEmpty());
        QCOMPARE(model.data(model.index(0, Column::Modified), FileListModel::RawValueRole).toDateTime(),
            QDateTime::fromMSecsSinceEpoch(modified));
        QCOMPARE(model.data(model.index(0, Column::Changed), FileListModel::RawValueRole).toBool(), true);
        QCOMPARE(model.data(model.index(1, Column::Size), FileListModel::RawValueRole).toLongLong(), 0);
        QCOMPARE(model.data(model.index(0, 0), FileListModel::PathRole).toString(), u"/d/Notes.TXT"_qs);
        QCOMPARE(model.data(model.index(3, 0), FileListModel::KindRole).toInt(), int(FileListKind::Unavailable));
        QCOMPARE(model.row(0).baseImageKey(), u"TXT"_qs);

        // With details a folder shows its count and dates; the refresh mark shows while a pass runs.
        model.markAllUnmet();
        QCOMPARE(model.text(0, Column::Refresh), u"RemoveThis"_qs);
        model.setText(0, u"Shown"_qs);
        model.setRealName(0, u"real"_qs);
        QCOMPARE(model.text(0, Column::Name), u"Shown"_qs);
        QCOMPARE(model.text(0, Column::RealName), u"real"_qs);
        QCOMPARE(model.text(0, Column::SortName), u"Notes.TXT"_qs); // from the name on disk
    }
    void batchPublishesOnceAndKeepsRowsReadable()
    {
        FileListModel model;
        QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
        model.append(FileListRow::unavailable(u"/first"_qs));
        QCOMPARE(inserted.count(), 1);
        {
            FileListModel::Batch batch(&model);
            model.append(FileListRow::unavailable(u"/a"_qs));
            model.append(FileListRow::unavailable(u"/b"_qs));
            QCOMPARE(model.count(), 3); // stored and readable
            QCOMPARE(model.row(2).entry.name, u"/b"_qs);
            QCOMPARE(model.rowCount(), 1); // not yet announced
            QVERIFY(!model.data(model.index(2, 0)).isValid());
            model.remove(2); // an unannounced row goes quietly
        }
        QCOMPARE(inserted.count(), 2);
        QCOMPARE(inserted.last().at(1).toInt(), 1);
        QCOMPARE(inserted.last().at(2).toInt(), 1);
        {
            FileListModel::Batch nothing(&model);
        }
        QCOMPARE(inserted.count(), 2); // nothing new: nothing announced

        QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
        model.clear();
        QCOMPARE(reset.count(), 0); // rows go, the columns stay
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(model.columnCount(), 13);
    }
    void layoutGenerationMovesOnRemovalAndRename()
    {
        FileListModel model;
        const quint64 start = model.layoutGeneration();
        model.append(FileListRow::unavailable(u"/a"_qs));
        model.append(FileListRow::unavailable(u"/b"_qs));
        QCOMPARE(model.layoutGeneration(), start); // appending keeps every row number valid
        model.setText(0, u"x"_qs);
        QCOMPARE(model.layoutGeneration(), start);
        model.setRealName(0, u"x"_qs);
        const quint64 renamed = model.layoutGeneration();
        QVERIFY(renamed != start);
        model.remove(1);
        QVERIFY(model.layoutGeneration() != renamed);
        const quint64 removed = model.layoutGeneration();
        model.clear();
        QVERIFY(model.layoutGeneration() != removed);
    }
    void sortGivesTheOrderOfTheTexts_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<int>("order");
        for (int column : {int(Column::SortName), int(Column::SortedSize), int(Column::SortedModified),
                 int(Column::SortedCreated), int(Column::Type), int(Column::Changed), int(Column::Size)}) {
            for (int order : {0, 1}) {
                const QByteArray name
                    = QByteArray(FileListModel::columnSpec(column).caption) + (order ? " desc" : " asc");
                QTest::newRow(name.constData()) << column << order;
            }
        }
    }
    // Rows of every kind with few distinct values (many ties), sorted by the model from raw facts, must come
    // out in the order a stable case-insensitive sort of the column texts gives; so must a row added later.
    void sortGivesTheOrderOfTheTexts()
    {
        QFETCH(int, column);
        QFETCH(int, order);
        QRandomGenerator random(column * 2 + order + 1);
        const qint64 base = QDateTime(QDate(2021, 3, 1), QTime(12, 0)).toMSecsSinceEpoch();
        const QStringList names{
            u"b"_qs, u"B"_qs, u"a.TXT"_qs, u"a.txt"_qs, u"Zed.doc"_qs, u"_x"_qs, u"\x01ctl"_qs, u"\u00e9t\u00e9"_qs};
        auto makeRow = [&](int i) {
            const QString name = names[random.bounded(int(names.size()))];
            const qint64 modified = base + random.bounded(4) * 700 - 1500; // some in the same second
            const qint64 created = base + random.bounded(3) * 1000;
            switch (i % 4) {
            case 0: {
                FileListRow row
                    = FileListRow::folderOf(fileEntry(name, 0, modified, created), u"/missing"_qs, i % 8 == 0);
                row.fileCount = random.bounded(3);
                return row;
            }
            case 1:
                return FileListRow::unavailable(u"/gone/"_qs + name);
            default:
                return FileListRow::file(fileEntry(name, random.bounded(3) * 1000, modified, created), u"/d"_qs);
            }
        };
        FileListModel model;
        for (int i = 0; i < 120; ++i)
            model.append(makeRow(i));
        QStringList before;
        for (int r = 0; r < model.count(); ++r)
            before << model.text(r, column);
        const QPersistentModelIndex tracked = model.index(7, 0);
        const QString trackedName = model.text(7, Column::RealName);

        model.setSortKey(column);
        model.setSortOrder(order);
        model.setSorted(true);

        auto expectTextOrder = [&] {
            for (int r = 1; r < model.count(); ++r) {
                const int c = QString::compare(model.text(r - 1, column), model.text(r, column), Qt::CaseInsensitive);
                QVERIFY2(order == 0 ? c <= 0 : c >= 0, qPrintable(u"row %1"_qs.arg(r)));
            }
        };
        expectTextOrder();
        QCOMPARE(model.text(tracked.row(), Column::RealName), trackedName);
        // Ties keep their earlier order: the texts in order of the stable sort of the texts before.
        std::stable_sort(before.begin(), before.end(), [order](const QString &a, const QString &b) {
            const int c = QString::compare(a, b, Qt::CaseInsensitive);
            return order == 0 ? c < 0 : c > 0;
        });
        for (int r = 0; r < model.count(); ++r)
            QCOMPARE(model.text(r, column), before[r]);
        for (int i = 0; i < 10; ++i) {
            const int at = model.append(makeRow(i));
            QCOMPARE(model.rowCount(), model.count());
            QVERIFY(at >= 0 && at < model.count());
        }
        {
            FileListModel::Batch batch(&model);
            for (int i = 0; i < 10; ++i)
                model.append(makeRow(i));
        }
        expectTextOrder();
    }
    void takeFactsComparesAsTheTextsDo_data()
    {
        QTest::addColumn<QString>("freshName");
        QTest::addColumn<qint64>("size");
        QTest::addColumn<qint64>("modifiedDelta");
        QTest::addColumn<bool>("changed");
        QTest::addColumn<QString>("shownName");
        QTest::newRow("same") << "a.txt" << qint64(10) << qint64(0) << false << "a.txt";
        QTest::newRow("case of the name only") << "A.TXT" << qint64(10) << qint64(0) << false << "a.txt";
        QTest::newRow("within the same second") << "a.txt" << qint64(10) << qint64(400) << false << "a.txt";
        QTest::newRow("next second") << "a.txt" << qint64(10) << qint64(1000) << true << "a.txt";
        QTest::newRow("one byte more") << "a.txt" << qint64(11) << qint64(0) << true << "a.txt";
    }
    void takeFactsComparesAsTheTextsDo()
    {
        QFETCH(QString, freshName);
        QFETCH(qint64, size);
        QFETCH(qint64, modifiedDelta);
        QFETCH(bool, changed);
        QFETCH(QString, shownName);
        const qint64 base = QDateTime(QDate(2022, 1, 1), QTime(10, 0, 0, 100)).toMSecsSinceEpoch();
        FileListModel model;
        model.append(FileListRow::file(fileEntry(u"a.txt"_qs, 10, base, base), u"/d"_qs));
        QSignalSpy dataChanged(&model, &QAbstractItemModel::dataChanged);
        QCOMPARE(
            model.updateFacts(0, FileListRow::file(fileEntry(freshName, size, base + modifiedDelta, base), u"/D"_qs)),
            changed);
        QCOMPARE(dataChanged.count(), changed ? 1 : 0);
        QCOMPARE(model.text(0, Column::Name), shownName);
        QCOMPARE(model.text(0, Column::Folder), u"/d"_qs); // differs in case only: kept
        QCOMPARE(model.row(0).entry.size, size); // the raw facts are taken either way
    }
    void folderCountIsAFactOfItsStamp()
    {
        QTemporaryDir dir;
        QVERIFY(KeloTest::writeFile(dir.filePath(u"sub/one"_qs)) && KeloTest::writeFile(dir.filePath(u"sub/two"_qs)));
        const FolderContents contents = FileSystem::instance().listFolder(dir.path());
        QCOMPARE(contents.folders.size(), 1);
        FileEntry sub = contents.folders.first();
        QVERIFY(sub.statusChanged > 0);

        // A count taken long after the folder's last change is valid while the stamp stays.
        sub.statusChanged -= 60 * 1000;
        const FileListRow first = FileListRow::folderOf(sub, contents.path, true);
        QCOMPARE(first.fileCount, 2);
        QCOMPARE(first.columnText(Column::Size), u"2"_qs);
        QVERIFY(KeloTest::writeFile(dir.filePath(u"sub/three"_qs)));
        QVERIFY(first.holdsFacts(sub, contents.path, FileListKind::Folder, true));
        QCOMPARE(FileListRow::folderOf(sub, contents.path, true, &first).fileCount, 2); // not read again

        // The folder's stamp moved: counted again.
        FileEntry moved = sub;
        moved.statusChanged += 1;
        QVERIFY(!first.holdsFacts(moved, contents.path, FileListKind::Folder, true));
        QCOMPARE(FileListRow::folderOf(moved, contents.path, true, &first).fileCount, 3);

        // A count taken within the racy window of the stamp is checked again even with the same stamp.
        FileEntry recent = sub;
        recent.statusChanged = QDateTime::currentMSecsSinceEpoch();
        const FileListRow racy = FileListRow::folderOf(recent, contents.path, true);
        QVERIFY(!racy.holdsFacts(recent, contents.path, FileListKind::Folder, true));
        // No stamp from the file system: never trusted.
        FileEntry unstamped = sub;
        unstamped.statusChanged = 0;
        const FileListRow noStamp = FileListRow::folderOf(unstamped, contents.path, true);
        QVERIFY(!noStamp.holdsFacts(unstamped, contents.path, FileListKind::Folder, true));
    }
    void filterRules_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("matches");
        const auto row = [](const char *name, const char *pattern, const char *file, bool matches) {
            QTest::newRow(name) << QString(pattern) << QString(file) << matches;
        };
        row("empty lets all through", "", "x.bin", true);
        row("star, any case", "*.txt", "B.TXT", true);
        row("star, other ext", "*.txt", "b.csv", false);
        row("list", "[ab].*", "a.log", true);
        row("digit", "#.txt", "x.txt", false);
    }
    void filterRules()
    {
        QFETCH(QString, pattern);
        QFETCH(QString, name);
        QFETCH(bool, matches);
        FileListFilter rules;
        rules.pattern = pattern;
        QCOMPARE(rules.matches(name), matches);

        FileEntry hidden;
        hidden.attributes = FileAttribute::Hidden;
        FileEntry system;
        system.attributes = FileAttribute::System;
        QVERIFY(!rules.passesAttributes(hidden) && !rules.passesAttributes(system));
        rules.allowHidden = rules.allowSystem = true;
        QVERIFY(rules.passesAttributes(hidden) && rules.passesAttributes(system));
        QVERIFY(FileListFilter::isMyComputer(u"mY cOMPUTER"_qs));
        QVERIFY(FileListFilter::isMyFolders(u"MY FOLDERS"_qs));
        QVERIFY(!FileListFilter::isMyFolders(u"My Folders/x"_qs));
    }
    // Sorting again by a text column reuses what the last sort by it learnt, and must give exactly the order
    // a sort of the texts gives: ties (names equal without regard to case) keep the order they had before.
    void sortingAgainGivesTheOrderOfTheTexts()
    {
        FileListModel model;
        for (const auto &[name, size] : {std::pair{"B", 1}, {"a", 3}, {"A", 2}, {"c", 0}})
            model.append(file(QString::fromLatin1(name), size));
        model.sort(Column::SortName);
        QCOMPARE(names(model), (QStringList{"a", "A", "B", "c"}));
        model.sort(Column::SortedSize);
        QCOMPARE(names(model), (QStringList{"c", "B", "A", "a"}));
        model.sort(Column::SortName); // the tie a / A keeps the order the size sort left
        QCOMPARE(names(model), (QStringList{"A", "a", "B", "c"}));
        model.sort(Column::SortName, Qt::DescendingOrder);
        QCOMPARE(names(model), (QStringList{"c", "B", "A", "a"}));
        model.sort(Column::SortedSize, Qt::DescendingOrder);
        QCOMPARE(names(model), (QStringList{"a", "A", "B", "c"}));

        // A row removed: the others keep their places in the name order.
        model.remove(2); // B
        model.sort(Column::SortName, Qt::DescendingOrder);
        QCOMPARE(names(model), (QStringList{"c", "a", "A"}));

        // The Name column (the item's text) sorted once, then a text changed by the host and a row added:
        // the texts decide again.
        model.sort(Column::Name);
        QCOMPARE(names(model), (QStringList{"a", "A", "c"}));
        model.setText(2, QStringLiteral("0 first"));
        model.append(file(QStringLiteral("b"), 9));
        model.sort(Column::SortedSize);
        QCOMPARE(names(model), (QStringList{"0 first", "A", "a", "b"}));
        model.sort(Column::Name);
        QCOMPARE(names(model), (QStringList{"0 first", "A", "a", "b"}));
        model.setText(3, QStringLiteral("Z last"));
        model.sort(Column::SortedSize);
        model.sort(Column::Name, Qt::DescendingOrder);
        QCOMPARE(names(model), (QStringList{"Z last", "A", "a", "0 first"}));
    }
    void aSortThatMovesNothingTellsNoView()
    {
        FileListModel model;
        for (const char *name : {"d", "b", "a", "c"})
            model.append(file(QString::fromLatin1(name), 1));
        model.setSortKey(Column::SortName);
        model.setSortOrder(0);
        model.setSorted(true);
        QCOMPARE(names(model), (QStringList{"a", "b", "c", "d"}));
        const QPersistentModelIndex c = model.index(2, 0);
        QSignalSpy layout(&model, &QAbstractItemModel::layoutChanged);
        // A header click sets all three in turn: one sort, one layout change.
        model.setSortKey(Column::SortName);
        model.setSortOrder(1);
        model.setSorted(true);
        QCOMPARE(layout.count(), 1);
        QCOMPARE(names(model), (QStringList{"d", "c", "b", "a"}));
        QCOMPARE(c.row(), 1); // a persistent index follows its row
        model.setSorted(true);
        QCOMPARE(layout.count(), 1);
    }
};

QTEST_MAIN(TestFileListModel)
#include "tst_filelistmodel.moc"
