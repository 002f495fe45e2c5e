// KelofileView::Search of a tree of 100,000 files in 1,000 folders for "*7*.txt"
// (sub-directories on), against `find ROOT -iname '*7*.txt'` of the same tree in
// the same run. KELO_BENCH_SMOKE=1 (scripts/bench --smoke) uses 2,000 files.
#include <Kelocontrols/KelofileView.h>

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace {

int folderCount()
{
    return qEnvironmentVariableIntValue("KELO_BENCH_SMOKE") ? 20 : 1000;
}

// Ten groups of folders, 100 files in each folder, every other one a .txt.
QString ensureTree(int folders)
{
    const QString root = QDir::tempPath() + QStringLiteral("/kelo-bench-filesearch-%1").arg(folders);
    const QString done = root + QStringLiteral("/.complete");
    if (QFile::exists(done)) {
        return root;
    }
    QDir(root).removeRecursively();
    for (int f = 0; f < folders; ++f) {
        const QString folder = root + QStringLiteral("/group %1/folder %2").arg(f % 10).arg(f);
        QDir().mkpath(folder);
        const QByteArray base = QFile::encodeName(folder);
        for (int i = 0; i < 100; ++i) {
            const QByteArray name
                = base + "/File " + QByteArray::number((f * 100 + i) * 7919 % 1000003) + (i % 2 ? ".txt" : ".dat");
            const int fd = ::open(name.constData(), O_CREAT | O_WRONLY, 0644);
            if (fd >= 0) {
                ::close(fd);
            }
        }
    }
    QFile marker(done);
    marker.open(QIODevice::WriteOnly);
    return root;
}

int findCount(const QString &root)
{
    QProcess find;
    find.start(QStringLiteral("find"), {root, QStringLiteral("-iname"), QStringLiteral("*7*.txt")});
    find.waitForFinished(-1);
    return int(find.readAllStandardOutput().count('\n'));
}

} // namespace

class BenchFileSearch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_root = ensureTree(folderCount());
        findCount(m_root); // warm the cache
    }

    void searchAgainstFind()
    {
        int found = 0;
        int expected = 0;
        QBENCHMARK
        {
            QElapsedTimer t;
            t.start();
            expected = findCount(m_root);
            const double find = t.nsecsElapsed() / 1e6;
            KelofileView view;
            t.restart();
            view.Search(QStringLiteral("*7*.txt"), m_root, true);
            const double search = t.nsecsElapsed() / 1e6;
            found = view.ItemCount();
            m_find = std::min(m_find, find);
            m_search = std::min(m_search, search);
            m_ratio = std::min(m_ratio, search / find);
        }
        QCOMPARE(found, expected);
        m_found = found;
    }

    void cleanupTestCase()
    {
        qInfo("search of %d folders for *7*.txt (%d found): Search %.1f ms, find %.1f ms; best ratio %.2fx",
            folderCount(), m_found, m_search, m_find, m_ratio);
    }

private:
    QString m_root;
    int m_found = 0;
    double m_find = 1e12;
    double m_search = 1e12;
    double m_ratio = 1e12;
};

QTEST_MAIN(BenchFileSearch)
#include "bench_filesearch.moc"
