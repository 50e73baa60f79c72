// The filters manager: start-up from disk and settings, the current filter,
// the order, renaming and removing, and the kind factory.

#include <veskfiltertestenv.h>
#include <veskfiltertree.h>

#include <veskfield.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <vesksettingsmanager.h>

#include <QCoreApplication>
#include <QDir>
#include <QtTest>

using namespace VeskFilterTree;

namespace {

const VeskRosterFilter::RosterFilterType AND = VeskRosterFilter::RosterFilterAnd;
const QString unset = QStringLiteral("<unset>");

QString storedCurrent()
{
    return VeskSettingsManager::getInstance()
        ->readGlobalSetting(VeskField::lineEdit(
            QString(), QStringLiteral("roster_filter"), unset, 32767, QString()))
        .getText();
}

QStringList storedOrder()
{
    return VeskSettingsManager::getInstance()
        ->readGlobalSetting(VeskField::comboBox(
            QString(), QStringLiteral("filters"), { unset }, {}, QString(), QString()))
        .getComboBoxIds();
}

void storeOrder(const QStringList &order)
{
    VeskSettingsManager::getInstance()->writeGlobalSetting(
        VeskField::comboBox(QString(), QStringLiteral("filters"), order, {}, QString(), QString()));
}

void storeCurrent(const QString &id)
{
    VeskSettingsManagerPrivate::settingsMgrPrivInstance->writeGlobalSetting(
        VeskField::lineEdit(QString(), QStringLiteral("roster_filter"), id, 32767, QString()));
}

// Adds and saves a stack with one presence leaf per name.
void addSaved(const QStringList &names)
{
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    for (const QString &name : names) {
        VeskRosterFiltersStack *stack = manager->addStackFilter(name, AND);
        stack->appendFilter(presence(QStringLiteral("online")));
        stack->writeFilterSettings();
    }
}

QStringList filesOnDisk(const VeskFilterTestEnv &env)
{
    QStringList files = QDir(env.filtersDir()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    return files;
}

} // namespace

class tst_VeskRosterFiltersManager : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        env.reset(new VeskFilterTestEnv);
        addPresences();
    }
    void cleanup() { env.reset(); }

    void firstStartHasOnlyTheDefaultFilter();
    void beforeStartUpEveryEntryPassesAndNothingIsCurrent();
    void storedOrderIsReconciledWithTheFiles_data();
    void storedOrderIsReconciledWithTheFiles();
    void storedOrderKeepsAMissingIdUntilTheOrderIsStoredAgain();
    void currentFilterIsRestoredOrFallsBackToDefault_data();
    void currentFilterIsRestoredOrFallsBackToDefault();
    void setCurrentFilterWithAnUnknownIdChangesNothing();
    void filterAnswersThroughTheCurrentFilter();

    void upAndDownMoveOnePlaceAndStoreTheOrder_data();
    void upAndDownMoveOnePlaceAndStoreTheOrder();

    void removeDeletesTheFileAndFallsBackFromTheCurrentFilter();
    void removeOfAnUnregisteredIdStillDeletesItsFile();
    void renameKeepsPlaceFileAndCurrentFilterAcrossARestart_data();
    void renameKeepsPlaceFileAndCurrentFilterAcrossARestart();
    void renameOfAnotherStackLeavesTheCurrentFilterStored();
    void renameRefusesWhatWouldLoseAFilter_data();
    void renameRefusesWhatWouldLoseAFilter();
    void defaultFilterCanBeNeitherRemovedNorReplaced();
    void caseDifferentNamesAreTwoFilters();
    void addStackFilterWithARegisteredNameReplacesTheEntry();

    void createFilterMakesEveryKind_data();
    void createFilterMakesEveryKind();
    void createFilterOfAnUnknownKindIsNull_data();
    void createFilterOfAnUnknownKindIsNull();
    void kindNamesAreTranslatedAndFoundBack();

private:
    QScopedPointer<VeskFilterTestEnv> env;
};

void tst_VeskRosterFiltersManager::firstStartHasOnlyTheDefaultFilter()
{
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    QCOMPARE(manager->getFilterNames(), QStringList { QStringLiteral("default") });
    QCOMPARE(manager->getCurrentFilterName(), QStringLiteral("default"));
    QCOMPARE(storedCurrent(), QStringLiteral("default"));
    QCOMPARE(storedOrder(), QStringList { unset });
    QCOMPARE(manager->getStackFilter(QStringLiteral("default")), nullptr);
    QVERIFY(!QFileInfo::exists(env->filtersDir()));
}

void tst_VeskRosterFiltersManager::beforeStartUpEveryEntryPassesAndNothingIsCurrent()
{
    VeskRosterFiltersManager manager;
    QCOMPARE(manager.getCurrentFilterName(), QString());
    QVERIFY(manager.filter(VeskStandIn::addContact({})));
    QCOMPARE(VeskRosterFiltersManager::instance, nullptr);
}

void tst_VeskRosterFiltersManager::storedOrderIsReconciledWithTheFiles_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QStringList>("stored");
    QTest::addColumn<QStringList>("expected");

    const QString d = QStringLiteral("default");
    const QString a = QStringLiteral("a");
    const QString b = QStringLiteral("b");
    const QString c = QStringLiteral("c");
    QTest::newRow("stored order wins")
        << QStringList { a, b, c } << QStringList { d, c, a, b } << QStringList { d, c, a, b };
    QTest::newRow("nothing stored") << QStringList { a } << QStringList {} << QStringList { d, a };
    QTest::newRow("ids without a file are dropped")
        << QStringList { a }
        << QStringList { d, QStringLiteral("ghost"), a, QStringLiteral("ghost") }
        << QStringList { d, a };
    QTest::newRow("unlisted files come last")
        << QStringList { a, b, c } << QStringList { c, b } << QStringList { d, c, b, a };
    QTest::newRow("default is moved first")
        << QStringList { a, b } << QStringList { a, d, b } << QStringList { d, a, b };
    QTest::newRow("default named twice is listed once")
        << QStringList { a } << QStringList { d, a, d } << QStringList { d, a };
    QTest::newRow("a stored duplicate stays")
        << QStringList { a, b } << QStringList { a, b, a } << QStringList { d, a, b, a };
    QTest::newRow("a file named default is the default filter")
        << QStringList { d, a } << QStringList {} << QStringList { d, a };
}

void tst_VeskRosterFiltersManager::storedOrderIsReconciledWithTheFiles()
{
    QFETCH(QStringList, files);
    QFETCH(QStringList, stored);
    QFETCH(QStringList, expected);

    for (const QString &name : files) {
        VeskRosterFiltersStack stack(name, AND);
        stack.appendFilter(presence(QStringLiteral("online")));
        stack.writeFilterSettings();
    }
    env->restart();
    if (!stored.isEmpty())
        storeOrder(stored);

    QCOMPARE(env->restart()->getFilterNames(), expected);
}

void tst_VeskRosterFiltersManager::storedOrderKeepsAMissingIdUntilTheOrderIsStoredAgain()
{
    addSaved({ QStringLiteral("a") });
    const QStringList stored { QStringLiteral("default"), QStringLiteral("ghost"),
        QStringLiteral("a") };
    storeOrder(stored);
    VeskRosterFiltersManager *manager = env->restart();
    QCOMPARE(storedOrder(), stored);
    manager->upFilter(QStringLiteral("a"));
    QCOMPARE(storedOrder(), (QStringList { QStringLiteral("default"), QStringLiteral("a") }));
}

void tst_VeskRosterFiltersManager::currentFilterIsRestoredOrFallsBackToDefault_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("current");

    QTest::newRow("a registered stack") << QStringLiteral("a") << QStringLiteral("a");
    QTest::newRow("the default filter") << QStringLiteral("default") << QStringLiteral("default");
    QTest::newRow("an id without a file") << QStringLiteral("ghost") << QStringLiteral("default");
    QTest::newRow("an id differing in case") << QStringLiteral("A") << QStringLiteral("default");
    QTest::newRow("the empty id") << QString() << QStringLiteral("default");
    QTest::newRow("nothing stored") << unset << QStringLiteral("default");
}

void tst_VeskRosterFiltersManager::currentFilterIsRestoredOrFallsBackToDefault()
{
    QFETCH(QString, stored);
    QFETCH(QString, current);
    addSaved({ QStringLiteral("a"), QStringLiteral("b") });
    if (stored == unset)
        VeskSettingsManagerPrivate::settingsMgrPrivInstance->removeKey(
            QStringLiteral("roster_filter"));
    else
        storeCurrent(stored);

    VeskRosterFiltersManager *manager = env->restart();
    QCOMPARE(manager->getCurrentFilterName(), current);
    QCOMPARE(storedCurrent(), current);
}

void tst_VeskRosterFiltersManager::setCurrentFilterWithAnUnknownIdChangesNothing()
{
    addSaved({ QStringLiteral("a") });
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    manager->setCurrentFilter(QStringLiteral("a"));
    manager->setCurrentFilter(QStringLiteral("ghost"));
    QCOMPARE(manager->getCurrentFilterName(), QStringLiteral("a"));
    QCOMPARE(storedCurrent(), QStringLiteral("a"));
}

void tst_VeskRosterFiltersManager::filterAnswersThroughTheCurrentFilter()
{
    addSaved({ QStringLiteral("online only") });
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    VeskStandIn::ContactInfo online;
    online.presence = VeskStandIn::makePresence(QStringLiteral("online"));
    VeskStandIn::ContactInfo away;
    away.presence = VeskStandIn::makePresence(QStringLiteral("away"));
    const VeskBuddy onlineContact = VeskStandIn::addContact(online);
    const VeskBuddy awayContact = VeskStandIn::addContact(away);

    QVector<bool> answers;
    answers << manager->filter(onlineContact) << manager->filter(awayContact);
    manager->setCurrentFilter(QStringLiteral("online only"));
    answers << manager->filter(onlineContact) << manager->filter(awayContact);
    QCOMPARE(answers, (QVector<bool> { true, true, true, false }));
}

void tst_VeskRosterFiltersManager::upAndDownMoveOnePlaceAndStoreTheOrder_data()
{
    QTest::addColumn<bool>("up");
    QTest::addColumn<QString>("id");
    QTest::addColumn<QStringList>("expected");

    const QString d = QStringLiteral("default");
    const QString a = QStringLiteral("a");
    const QString b = QStringLiteral("b");
    const QString c = QStringLiteral("c");
    QTest::newRow("up of the third") << true << b << QStringList { d, b, a, c };
    QTest::newRow("up of the last") << true << c << QStringList { d, a, c, b };
    QTest::newRow("up of the second never takes the first place")
        << true << a << QStringList { d, a, b, c };
    QTest::newRow("up of default") << true << d << QStringList { d, a, b, c };
    QTest::newRow("up of an unknown id")
        << true << QStringLiteral("ghost") << QStringList { d, a, b, c };
    QTest::newRow("down of default") << false << d << QStringList { a, d, b, c };
    QTest::newRow("down of the second") << false << a << QStringList { d, b, a, c };
    QTest::newRow("down of the last") << false << c << QStringList { d, a, b, c };
    QTest::newRow("down of an unknown id")
        << false << QStringLiteral("ghost") << QStringList { d, a, b, c };
}

void tst_VeskRosterFiltersManager::upAndDownMoveOnePlaceAndStoreTheOrder()
{
    QFETCH(bool, up);
    QFETCH(QString, id);
    QFETCH(QStringList, expected);
    addSaved({ QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c") });
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();

    if (up)
        manager->upFilter(id);
    else
        manager->downFilter(id);
    QCOMPARE(manager->getFilterNames(), expected);
    QCOMPARE(storedOrder(), expected);
}

void tst_VeskRosterFiltersManager::removeDeletesTheFileAndFallsBackFromTheCurrentFilter()
{
    addSaved({ QStringLiteral("a"), QStringLiteral("b") });
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    manager->setCurrentFilter(QStringLiteral("a"));
    VeskRosterFiltersStack *removed = manager->getStackFilter(QStringLiteral("a"));

    manager->removeStackFilter(QStringLiteral("a"));
    delete removed;
    QCOMPARE(manager->getCurrentFilterName(), QStringLiteral("default"));
    QCOMPARE(manager->getFilterNames(),
        (QStringList { QStringLiteral("default"), QStringLiteral("b") }));
    QCOMPARE(manager->getStackFilter(QStringLiteral("a")), nullptr);
    QCOMPARE(filesOnDisk(*env), QStringList { QStringLiteral("b") });
    QCOMPARE(storedCurrent(), QStringLiteral("a"));

    manager = env->restart();
    QCOMPARE(manager->getCurrentFilterName(), QStringLiteral("default"));
    QCOMPARE(manager->getFilterNames(),
        (QStringList { QStringLiteral("default"), QStringLiteral("b") }));
}

void tst_VeskRosterFiltersManager::removeOfAnUnregisteredIdStillDeletesItsFile()
{
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    {
        VeskRosterFiltersStack stray(QStringLiteral("stray"), AND);
        stray.appendFilter(presence(QStringLiteral("online")));
        stray.writeFilterSettings();
    }
    manager->removeStackFilter(QStringLiteral("stray"));
    QCOMPARE(filesOnDisk(*env), QStringList());
    QCOMPARE(manager->getFilterNames(), QStringList { QStringLiteral("default") });
}

void tst_VeskRosterFiltersManager::renameKeepsPlaceFileAndCurrentFilterAcrossARestart_data()
{
    QTest::addColumn<QString>("oldId");
    QTest::addColumn<QString>("newId");
    const QString longName(300, QLatin1Char('l'));
    const QString otherLongName(300, QChar(0x4E2D));
    QTest::newRow("plain to plain") << QStringLiteral("b") << QStringLiteral("b renamed");
    QTest::newRow("plain to a long name") << QStringLiteral("b") << longName;
    QTest::newRow("long name to plain") << longName << QStringLiteral("short");
    QTest::newRow("long name to long name") << longName << otherLongName;
    QTest::newRow("plain to a path") << QStringLiteral("b") << QStringLiteral("../../b");
    QTest::newRow("case only") << QStringLiteral("b") << QStringLiteral("B");
}

void tst_VeskRosterFiltersManager::renameKeepsPlaceFileAndCurrentFilterAcrossARestart()
{
    QFETCH(QString, oldId);
    QFETCH(QString, newId);
    addSaved({ QStringLiteral("a"), oldId, QStringLiteral("c") });
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    storeOrder(manager->getFilterNames());
    manager->setCurrentFilter(oldId);
    VeskRosterFiltersStack *stack = manager->getStackFilter(oldId);

    manager->rename(oldId, newId);
    QCOMPARE(stack->name(), newId);
    const QString tree = describe(stack);
    const QStringList expected { QStringLiteral("default"), QStringLiteral("a"), newId,
        QStringLiteral("c") };
    QCOMPARE(manager->getFilterNames(), expected);
    QCOMPARE(manager->getStackFilter(oldId), nullptr);
    QCOMPARE(storedCurrent(), newId);

    manager = env->restart();
    QCOMPARE(manager->getFilterNames(), expected);
    QCOMPARE(manager->getCurrentFilterName(), newId);
    QCOMPARE(describe(manager->getStackFilter(newId)), tree);
    QCOMPARE(filesOnDisk(*env).size(), 3);
}

void tst_VeskRosterFiltersManager::renameOfAnotherStackLeavesTheCurrentFilterStored()
{
    addSaved({ QStringLiteral("a"), QStringLiteral("b") });
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    manager->setCurrentFilter(QStringLiteral("a"));
    manager->rename(QStringLiteral("b"), QStringLiteral("c"));
    QCOMPARE(storedCurrent(), QStringLiteral("a"));
    QCOMPARE(manager->getCurrentFilterName(), QStringLiteral("a"));
}

void tst_VeskRosterFiltersManager::renameRefusesWhatWouldLoseAFilter_data()
{
    QTest::addColumn<QString>("oldId");
    QTest::addColumn<QString>("newId");
    QTest::newRow("renaming default") << QStringLiteral("default") << QStringLiteral("x");
    QTest::newRow("renaming to default") << QStringLiteral("a") << QStringLiteral("default");
    QTest::newRow("an unknown old id") << QStringLiteral("ghost") << QStringLiteral("x");
    QTest::newRow("to the empty name") << QStringLiteral("a") << QString();
    QTest::newRow("onto another filter") << QStringLiteral("a") << QStringLiteral("b");
    QTest::newRow("to itself") << QStringLiteral("a") << QStringLiteral("a");
}

void tst_VeskRosterFiltersManager::renameRefusesWhatWouldLoseAFilter()
{
    QFETCH(QString, oldId);
    QFETCH(QString, newId);
    addSaved({ QStringLiteral("a"), QStringLiteral("b") });
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    manager->setCurrentFilter(QStringLiteral("a"));
    const QStringList names = manager->getFilterNames();
    storeOrder(names);
    const QString a = describe(manager->getStackFilter(QStringLiteral("a")));
    const QString b = describe(manager->getStackFilter(QStringLiteral("b")));
    const QStringList files = filesOnDisk(*env);

    manager->rename(oldId, newId);
    QCOMPARE(manager->getFilterNames(), names);
    QCOMPARE(storedOrder(), names);
    QCOMPARE(describe(manager->getStackFilter(QStringLiteral("a"))), a);
    QCOMPARE(describe(manager->getStackFilter(QStringLiteral("b"))), b);
    QCOMPARE(manager->getCurrentFilterName(), QStringLiteral("a"));
    QCOMPARE(storedCurrent(), QStringLiteral("a"));
    QCOMPARE(filesOnDisk(*env), files);
    manager->setCurrentFilter(QStringLiteral("default"));
    QCOMPARE(manager->getCurrentFilter()->id(), QStringLiteral("default"));
}

void tst_VeskRosterFiltersManager::defaultFilterCanBeNeitherRemovedNorReplaced()
{
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    VeskRosterFilter *defaultFilter = manager->getCurrentFilter();
    manager->removeStackFilter(QStringLiteral("default"));
    QCOMPARE(manager->addStackFilter(QStringLiteral("default"), AND), nullptr);
    QCOMPARE(manager->getFilterNames(), QStringList { QStringLiteral("default") });
    addSaved({ QStringLiteral("a") });
    manager->setCurrentFilter(QStringLiteral("a"));
    manager->setCurrentFilter(QStringLiteral("default"));
    QCOMPARE(manager->getCurrentFilter(), defaultFilter);
}

void tst_VeskRosterFiltersManager::caseDifferentNamesAreTwoFilters()
{
    addSaved({ QStringLiteral("Work"), QStringLiteral("work") });
    QCOMPARE(filesOnDisk(*env), (QStringList { QStringLiteral("Work"), QStringLiteral("work") }));
    QStringList names = env->restart()->getFilterNames();
    names.sort();
    QCOMPARE(names,
        (QStringList {
            QStringLiteral("Work"), QStringLiteral("default"), QStringLiteral("work") }));
}

void tst_VeskRosterFiltersManager::addStackFilterWithARegisteredNameReplacesTheEntry()
{
    addSaved({ QStringLiteral("a") });
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    VeskRosterFiltersStack *first = manager->getStackFilter(QStringLiteral("a"));
    VeskRosterFiltersStack *second = manager->addStackFilter(QStringLiteral("a"), AND);
    QCOMPARE(manager->getStackFilter(QStringLiteral("a")), second);
    // The new stack read the file that the first one saved.
    QCOMPARE(describe(second), describe(first));
    QCOMPARE(manager->getFilterNames(),
        (QStringList { QStringLiteral("default"), QStringLiteral("a"), QStringLiteral("a") }));
    delete first;
}

void tst_VeskRosterFiltersManager::createFilterMakesEveryKind_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind :
        { "presence", "display", "protocol", "account", "description", "group" })
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void tst_VeskRosterFiltersManager::createFilterMakesEveryKind()
{
    QFETCH(QString, kind);
    QScopedPointer<VeskRosterFilter> filter(
        VeskRosterFiltersManager::getInstance()->createFilter(kind, AND));
    QVERIFY(filter);
    QCOMPARE(filter->id(), kind);
    QCOMPARE(filter->getType(), VeskRosterFilter::RosterFilterLeaf);
    QCOMPARE(filter->getParent(), nullptr);
}

void tst_VeskRosterFiltersManager::createFilterOfAnUnknownKindIsNull_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("empty") << QString();
    QTest::newRow("other case") << QStringLiteral("Presence");
    QTest::newRow("translated name") << QStringLiteral("presence ");
    QTest::newRow("default") << QStringLiteral("default");
}

void tst_VeskRosterFiltersManager::createFilterOfAnUnknownKindIsNull()
{
    QFETCH(QString, kind);
    QCOMPARE(VeskRosterFiltersManager::getInstance()->createFilter(kind, AND), nullptr);
}

void tst_VeskRosterFiltersManager::kindNamesAreTranslatedAndFoundBack()
{
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    QStringList kinds = manager->getAvailableFilters();
    kinds.sort();
    QCOMPARE(kinds,
        (QStringList { QStringLiteral("account"), QStringLiteral("description"),
            QStringLiteral("display"), QStringLiteral("group"), QStringLiteral("presence"),
            QStringLiteral("protocol") }));
    for (const QString &kind : qAsConst(kinds)) {
        const QString name = manager->getFilterName(kind);
        QCOMPARE(
            name, QCoreApplication::translate("translation", kind.toLatin1().constData(), "nc"));
        QCOMPARE(manager->getFilterId(name), kind);
    }
    QCOMPARE(manager->getFilterName(QStringLiteral("stack_filter")), QString());
    QCOMPARE(manager->getFilterId(QStringLiteral("stack_filter")), QString());
}

QTEST_GUILESS_MAIN(tst_VeskRosterFiltersManager)
#include "tst_veskrosterfiltersmanager.moc"
