// The session on a temporary settings directory, as the programs drive it:
// every test opens, changes, closes and opens again, which is a restart.

#include <librarysession.h>
#include <vesksettingslock.h>

#include <veskfield.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrostersortersmanager.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace {

// A display condition "contains a", as an editor builds one.
VeskRosterFilter *containsA(VeskRosterFiltersManager *manager)
{
    VeskRosterFilter *leaf
        = manager->createFilter(QStringLiteral("display"), VeskRosterFilter::RosterFilterLeaf);
    QList<VeskField> fields = leaf->getConfiguration();
    for (VeskField &field : fields) {
        if (field.getId() == QLatin1String("display_filter_regexp"))
            field.setText(QStringLiteral("a"));
    }
    leaf->setConfiguration(fields);
    return leaf;
}

} // namespace

class tst_LibrarySession : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void editorStoreOfTheCurrentFilterKeepsFollowingTheDefault_data();
    void editorStoreOfTheCurrentFilterKeepsFollowingTheDefault();
    void removedMethodTakesItsDirectionsAlong();
    void writingRunRemovesTheSettingsSaveLeftOverByAKilledRun();
    void readingAMissingDirectoryWaitsForTheWriterCreatingIt();

private:
    bool open(VeskLibrarySession::Access access, int timeoutMs = 1000)
    {
        QString error;
        const bool opened = session.open(settings, access, &error, timeoutMs);
        lastError = error;
        return opened;
    }

    std::unique_ptr<QTemporaryDir> temp;
    QString settings;
    VeskLibrarySession session;
    QString lastError;
};

void tst_LibrarySession::init()
{
    temp = std::make_unique<QTemporaryDir>();
    QVERIFY(temp->isValid());
    settings = temp->filePath(QStringLiteral("settings"));
}

void tst_LibrarySession::cleanup()
{
    session.close();
}

void tst_LibrarySession::editorStoreOfTheCurrentFilterKeepsFollowingTheDefault_data()
{
    QTest::addColumn<bool>("rename");
    QTest::addColumn<bool>("defaultSet");
    QTest::newRow("replaced, default method set") << false << true;
    QTest::newRow("replaced and renamed, default method set") << true << true;
    QTest::newRow("replaced, no default method") << false << false;
    QTest::newRow("replaced and renamed, no default method") << true << false;
}

// The window's filter editor hands back a copy of the filter carrying the
// method it showed, which for the current filter is the one start-up lent.
void tst_LibrarySession::editorStoreOfTheCurrentFilterKeepsFollowingTheDefault()
{
    QFETCH(bool, rename);
    QFETCH(bool, defaultSet);
    QString error;
    QVERIFY(open(VeskLibrarySession::ReadWrite));
    QVERIFY2(session.storeSorter(QStringLiteral("d"), { QStringLiteral("chats_count") },
                 { QStringLiteral("t") }, &error),
        qPrintable(error));
    if (defaultSet)
        QVERIFY2(session.setDefaultSorter(QStringLiteral("d"), &error), qPrintable(error));
    VeskRosterFiltersStack *q
        = session.createStack(QStringLiteral("q"), VeskRosterFilter::RosterFilterOr, &error);
    QVERIFY2(q, qPrintable(error));
    q->appendFilter(containsA(session.filters()));
    QVERIFY2(session.storeNewStack(q, &error), qPrintable(error));
    QVERIFY2(session.setCurrentFilter(QStringLiteral("q"), &error), qPrintable(error));
    QVERIFY2(session.commit(&error), qPrintable(error));
    session.close();

    QVERIFY(open(VeskLibrarySession::ReadWrite));
    q = session.stack(QStringLiteral("q"));
    QVERIFY(q);
    QCOMPARE(q->getSorter(), defaultSet ? QStringLiteral("d") : QString()); // the loan
    VeskRosterFiltersStack replacement(QString(), VeskRosterFilter::RosterFilterOr);
    replacement.appendFilter(containsA(session.filters()));
    replacement.appendFilter(containsA(session.filters()));
    replacement.setSorter(q->getSorter());
    QVERIFY2(session.replaceStack(QStringLiteral("q"), &replacement, &error), qPrintable(error));
    const QString target = rename ? QStringLiteral("zz") : QStringLiteral("q");
    if (rename)
        QVERIFY2(session.renameStack(QStringLiteral("q"), target, &error), qPrintable(error));
    QVERIFY2(session.commit(&error), qPrintable(error));
    session.close();

    // The file names no method, so the filter follows whatever the default
    // becomes.
    QVERIFY(open(VeskLibrarySession::ReadWrite));
    QCOMPARE(session.filters()->getCurrentFilterName(), target);
    VeskRosterFiltersStack *stored = session.stack(target);
    QVERIFY(stored);
    QCOMPARE(stored->getFilters().size(), 2);
    QCOMPARE(session.storedMethod(stored), QString());
    QVERIFY2(session.storeSorter(
                 QStringLiteral("m3"), { QStringLiteral("name") }, { QStringLiteral("t") }, &error),
        qPrintable(error));
    QVERIFY2(session.setDefaultSorter(QStringLiteral("m3"), &error), qPrintable(error));
    QVERIFY2(session.commit(&error), qPrintable(error));
    session.close();
    QVERIFY(open(VeskLibrarySession::ReadOnly));
    QCOMPARE(session.stack(target)->getSorter(), QStringLiteral("m3"));
}

void tst_LibrarySession::removedMethodTakesItsDirectionsAlong()
{
    QString error;
    QVERIFY(open(VeskLibrarySession::ReadWrite));
    QVERIFY2(session.storeSorter(QStringLiteral("m"),
                 { QStringLiteral("presence"), QStringLiteral("name") },
                 { QStringLiteral("f"), QStringLiteral("f") }, &error),
        qPrintable(error));
    QVERIFY2(session.removeSorter(QStringLiteral("m"), &error), qPrintable(error));
    QVERIFY2(session.commit(&error), qPrintable(error));
    session.close();

    QVERIFY(open(VeskLibrarySession::ReadOnly));
    QCOMPARE(session.sorters()->getSorters(), QStringList());
    QCOMPARE(session.sorters()->getSorters(QStringLiteral("m")), QStringList());
    QCOMPARE(session.sorters()->getSortersAscending(QStringLiteral("m")), QStringList());
}

void tst_LibrarySession::writingRunRemovesTheSettingsSaveLeftOverByAKilledRun()
{
    QString error;
    QVERIFY(open(VeskLibrarySession::ReadWrite));
    QVERIFY2(session.setDefaultSorter(QString(), &error), qPrintable(error));
    QVERIFY2(session.commit(&error), qPrintable(error));
    session.close();
    // What a save killed before it replaced the settings file leaves.
    const QString leftover = settings + QLatin1String("/settings.dat.Ab3xYz");
    QFile file(leftover);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("VSKS half a save");
    file.close();
    const QString unrelated = settings + QLatin1String("/notes.txt");
    QVERIFY(QFile(unrelated).open(QIODevice::WriteOnly));

    // A reading run writes nothing, not even a removal.
    QVERIFY(open(VeskLibrarySession::ReadOnly));
    session.close();
    QVERIFY(QFile::exists(leftover));

    QVERIFY(open(VeskLibrarySession::ReadWrite));
    QVERIFY(!QFile::exists(leftover));
    QVERIFY(QFile::exists(unrelated));
    QVERIFY(QFile::exists(settings + QLatin1String("/settings.dat")));
}

// A writer that creates the settings directory holds the lock of the
// directory it creates it in, as this test does; a reader must not read the
// half-made directory meanwhile, and no second writer may create it too.
void tst_LibrarySession::readingAMissingDirectoryWaitsForTheWriterCreatingIt()
{
    VeskSettingsLock creator;
    QString error;
    QVERIFY2(creator.lock(temp->path(), VeskSettingsLock::Exclusive, 0, &error), qPrintable(error));

    QVERIFY2(!open(VeskLibrarySession::ReadOnly, 200), "the reader did not wait for the writer");
    QVERIFY2(lastError.contains(temp->path()), qPrintable(lastError));
    QVERIFY(!open(VeskLibrarySession::ReadWrite, 200));
    QVERIFY(!QFileInfo::exists(settings));

    creator.unlock();
    QVERIFY2(open(VeskLibrarySession::ReadOnly, 200), qPrintable(lastError));
    QVERIFY(!QFileInfo::exists(settings)); // reading creates nothing
    session.close();
    QVERIFY2(open(VeskLibrarySession::ReadWrite, 200), qPrintable(lastError));
    QVERIFY(QFileInfo(settings).isDir());
    session.close();
    // Once the directory exists, its own lock is the one that counts.
    QVERIFY2(creator.lock(temp->path(), VeskSettingsLock::Exclusive, 0, &error), qPrintable(error));
    QVERIFY2(open(VeskLibrarySession::ReadOnly, 200), qPrintable(lastError));
}

QTEST_GUILESS_MAIN(tst_LibrarySession)
#include "tst_librarysession.moc"
