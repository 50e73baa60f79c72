// Filters and sorting together: the current filter's sorting method is the
// one the roster view sorts by, now and after a restart.

#include "sortersfixture.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace SortersFixture;

class tst_SortersIntegration : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void pickingAnotherFilterAppliesItsMethod();
    void methodGivenToTheCurrentStackIsRestoredFromItsFile();
    void defaultFilterRestoresTheDefaultMethodOnRestart();
    void methodMadeCurrentBeforeTheFiltersManagerExistsStays();

private:
    void restart() { destroyManagers(dir->path()); }
    // How the current chain orders Zed (1 chat) and Amy (9 chats): "tf" by
    // ascending chats count, "ft" by descending name.
    QString answers() const;

    std::unique_ptr<QTemporaryDir> dir;
    VeskBuddy fewChats;
    VeskBuddy manyChats;
};

void tst_SortersIntegration::init()
{
    VeskStandIn::resetRoster();
    dir.reset(new QTemporaryDir);
    QVERIFY(dir->isValid());
    VeskStandIn::setSettingsDir(dir->path());
    fewChats = contactWithChats(QStringLiteral("Zed"), VeskStandIn::makeIntArg(1));
    manyChats = contactWithChats(QStringLiteral("Amy"), VeskStandIn::makeIntArg(9));

    VeskRosterSortersManager *sorters = VeskRosterSortersManager::getInstance();
    sorters->addSorter(QStringLiteral("by chats"), { QStringLiteral("chats_count") });
    sorters->setSorterAscending(QStringLiteral("by chats"), { QStringLiteral("t") });
    sorters->addSorter(QStringLiteral("by name"), { QStringLiteral("name") });
    sorters->setSorterAscending(QStringLiteral("by name"), { QStringLiteral("f") });
}

void tst_SortersIntegration::cleanup()
{
    destroyManagers(dir->path());
    VeskStandIn::resetRoster();
}

QString tst_SortersIntegration::answers() const
{
    const VeskRosterSortersManager *sorters = VeskRosterSortersManager::getInstance();
    return QString(QLatin1Char(sorters->lessThan(fewChats, manyChats) ? 't' : 'f'))
        + QLatin1Char(sorters->lessThan(manyChats, fewChats) ? 't' : 'f');
}

void tst_SortersIntegration::pickingAnotherFilterAppliesItsMethod()
{
    VeskRosterSortersManager::getInstance()->setDefault(QStringLiteral("by name"));
    VeskRosterFiltersManager *filters = VeskRosterFiltersManager::getInstance();
    filters->addStackFilter(QStringLiteral("work"), VeskRosterFilter::RosterFilterAnd)
        ->setSorter(QStringLiteral("by chats"));

    QStringList seen;
    for (const char *id : { "work", "default", "work" }) {
        filters->setCurrentFilter(QLatin1String(id));
        seen << answers();
    }
    QCOMPARE(
        seen, QStringList({ QStringLiteral("tf"), QStringLiteral("ft"), QStringLiteral("tf") }));
}

void tst_SortersIntegration::methodGivenToTheCurrentStackIsRestoredFromItsFile()
{
    VeskRosterSortersManager::getInstance()->setDefault(QStringLiteral("by name"));
    VeskRosterFiltersManager *filters = VeskRosterFiltersManager::getInstance();
    VeskRosterFiltersStack *work
        = filters->addStackFilter(QStringLiteral("work"), VeskRosterFilter::RosterFilterAnd);
    filters->setCurrentFilter(QStringLiteral("work"));
    VeskRosterSortersManager::getInstance()->setCurrentSorter(QStringLiteral("by chats"));
    work->writeFilterSettings();

    restart();
    filters = VeskRosterFiltersManager::getInstance();
    QCOMPARE(filters->getCurrentFilterName(), QStringLiteral("work"));
    QCOMPARE(
        filters->getStackFilter(QStringLiteral("work"))->getSorter(), QStringLiteral("by chats"));
    QCOMPARE(answers(), QStringLiteral("tf"));
    QCOMPARE(VeskRosterSortersManager::getInstance()->getDefault(), QStringLiteral("by name"));
}

void tst_SortersIntegration::defaultFilterRestoresTheDefaultMethodOnRestart()
{
    QCOMPARE(
        VeskRosterFiltersManager::getInstance()->getCurrentFilterName(), QStringLiteral("default"));
    VeskRosterSortersManager::getInstance()->setCurrentSorter(QStringLiteral("by name"));

    restart();
    VeskRosterFiltersManager::getInstance();
    QCOMPARE(VeskRosterSortersManager::getInstance()->getDefault(), QStringLiteral("by name"));
    QCOMPARE(answers(), QStringLiteral("ft"));
}

// The filters manager, created by this first call, makes the default method
// current on its own start-up; the method asked for must still win.
void tst_SortersIntegration::methodMadeCurrentBeforeTheFiltersManagerExistsStays()
{
    VeskRosterSortersManager *sorters = VeskRosterSortersManager::getInstance();
    sorters->setDefault(QStringLiteral("by chats"));
    QVERIFY(!VeskRosterFiltersManager::instance);

    sorters->setCurrentSorter(QStringLiteral("by name"));
    QCOMPARE(answers(), QStringLiteral("ft"));
    QCOMPARE(sorters->getDefault(), QStringLiteral("by name"));
}

QTEST_GUILESS_MAIN(tst_SortersIntegration)
#include "tst_sortersintegration.moc"
