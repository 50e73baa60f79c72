// The settings-directory lock: readers together, a writer alone, a bounded
// wait that names the holder, and no lock left behind by a killed holder.

#include <vesksettingslock.h>

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class tst_SettingsLock : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void writersExcludeEveryoneReadersOnlyWriters_data();
    void writersExcludeEveryoneReadersOnlyWriters();
    void waitIsBoundedAndNamesTheHolder();
    void killedHolderLeavesNoLock();

private:
    // Another process holding the lock: util-linux flock(1) on the directory,
    // which (-o) keeps it in itself alone, not in the command it runs.
    void holdInChild(QProcess *child, const char *mode);

    std::unique_ptr<QTemporaryDir> dir;
};

void tst_SettingsLock::init()
{
    dir = std::make_unique<QTemporaryDir>();
    QVERIFY(dir->isValid());
}

void tst_SettingsLock::writersExcludeEveryoneReadersOnlyWriters_data()
{
    QTest::addColumn<int>("held");
    QTest::addColumn<int>("wanted");
    QTest::addColumn<bool>("granted");
    QTest::newRow("two readers") << int(VeskSettingsLock::Shared) << int(VeskSettingsLock::Shared)
                                 << true;
    QTest::newRow("a writer after a reader")
        << int(VeskSettingsLock::Shared) << int(VeskSettingsLock::Exclusive) << false;
    QTest::newRow("a reader after a writer")
        << int(VeskSettingsLock::Exclusive) << int(VeskSettingsLock::Shared) << false;
    QTest::newRow("two writers") << int(VeskSettingsLock::Exclusive)
                                 << int(VeskSettingsLock::Exclusive) << false;
}

void tst_SettingsLock::writersExcludeEveryoneReadersOnlyWriters()
{
    QFETCH(int, held);
    QFETCH(int, wanted);
    QFETCH(bool, granted);
    // Each lock opens the directory anew, so two locks of one process
    // exclude each other like two processes.
    VeskSettingsLock first;
    VeskSettingsLock second;
    QString error;
    QVERIFY2(first.lock(dir->path(), VeskSettingsLock::Mode(held), 0, &error), qPrintable(error));
    QCOMPARE(second.lock(dir->path(), VeskSettingsLock::Mode(wanted), 50, &error), granted);
    first.unlock();
    QVERIFY2(
        second.lock(dir->path(), VeskSettingsLock::Mode(wanted), 0, &error), qPrintable(error));
}

void tst_SettingsLock::holdInChild(QProcess *child, const char *mode)
{
    child->start(QStringLiteral("flock"),
        { QStringLiteral("-o"), QString::fromLatin1(mode), dir->path(), QStringLiteral("sleep"),
            QStringLiteral("10") });
    if (!child->waitForStarted())
        QSKIP("flock(1) is not installed");
    // Until the child holds it, a try succeeds; wait for the first failure.
    VeskSettingsLock probe;
    QString error;
    QElapsedTimer timer;
    timer.start();
    while (probe.lock(dir->path(), VeskSettingsLock::Exclusive, 0, &error)) {
        probe.unlock();
        QVERIFY(timer.elapsed() < 10000);
        QTest::qWait(10);
    }
}

void tst_SettingsLock::waitIsBoundedAndNamesTheHolder()
{
    QProcess child;
    holdInChild(&child, "--shared");
    VeskSettingsLock lock;
    QString error;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!lock.lock(dir->path(), VeskSettingsLock::Exclusive, 300, &error));
    QVERIFY2(timer.elapsed() >= 300 && timer.elapsed() < 5000, qPrintable(error));
    QVERIFY2(error.contains(QString::number(child.processId()))
            && error.contains(QLatin1String("flock -o --shared")) && error.contains(dir->path()),
        qPrintable(error));
    // Readers still come in beside it.
    QVERIFY2(lock.lock(dir->path(), VeskSettingsLock::Shared, 0, &error), qPrintable(error));
    child.kill();
    child.waitForFinished();
}

void tst_SettingsLock::killedHolderLeavesNoLock()
{
    QProcess child;
    holdInChild(&child, "--exclusive");
    // SIGKILL: no clean-up of its own; the system drops the lock.
    child.kill();
    child.waitForFinished();
    VeskSettingsLock lock;
    QString error;
    QVERIFY2(lock.lock(dir->path(), VeskSettingsLock::Exclusive, 5000, &error), qPrintable(error));
}

QTEST_GUILESS_MAIN(tst_SettingsLock)
#include "tst_settingslock.moc"
