#include "benchworld.h"

#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrostersortersmanager.h>
#include <veskstandin.h>

#include <QDir>
#include <QLocale>
#include <QSet>
#include <QTemporaryDir>

#include <memory>

namespace {

std::unique_ptr<QTemporaryDir> temporaryDir;
bool mainWorldReady = false;

const QString benchFilterName = QStringLiteral("bench");

void storeSortingMethods(VeskRosterSortersManager *sorters)
{
    sorters->addSorter(
        QStringLiteral("presence_name"), { QStringLiteral("presence"), QStringLiteral("name") });
    sorters->setSorterAscending(
        QStringLiteral("presence_name"), { QStringLiteral("f"), QStringLiteral("f") });
    sorters->addSorter(
        QStringLiteral("chats_name"), { QStringLiteral("chats_count"), QStringLiteral("name") });
    sorters->setSorterAscending(
        QStringLiteral("chats_name"), { QStringLiteral("f"), QStringLiteral("f") });
}

void buildMainWorld()
{
    using namespace BenchWorld;
    dropManagers();
    VeskStandIn::setSettingsDir(mainSettingsDir());
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    storeSortingMethods(VeskRosterSortersManager::getInstance());

    // Null checks only matter while a kind is missing from the library.
    auto append = [](VeskRosterFilter *stack, VeskRosterFilter *child) {
        if (stack && child)
            static_cast<VeskRosterFiltersStack *>(stack)->appendFilter(child);
    };
    for (const FilterCase &filterCase : filterCases()) {
        const HandWritten::FilterParameters &p = filterCase.parameters;
        VeskRosterFilter *stack
            = manager->addStackFilter(filterCase.stackName, VeskRosterFilter::RosterFilterAnd);
        append(stack,
            createLeaf(QStringLiteral("display"),
                textFields(
                    QStringLiteral("contains"), QStringLiteral("display_filter_regexp"), p.text)));
        VeskRosterFilter *either = manager->createFilter(
            QStringLiteral("stack_filter"), VeskRosterFilter::RosterFilterOr);
        append(either,
            createLeaf(QStringLiteral("presence"),
                choiceFields(true, QStringLiteral("presence_filter_presence"), p.presence1)));
        append(either,
            createLeaf(QStringLiteral("presence"),
                choiceFields(true, QStringLiteral("presence_filter_presence"), p.presence2)));
        append(stack, either);
        append(stack,
            createLeaf(QStringLiteral("group"),
                choiceFields(false, QStringLiteral("group_filter_presence"), p.group)));
    }
    manager->setCurrentFilter(benchFilterName);
    mainWorldReady = true;
}

} // namespace

void BenchWorld::init()
{
    temporaryDir = std::make_unique<QTemporaryDir>();
    // The roster view sorts in the user's locale; fix one so that runs compare.
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    buildMainWorld();
}

QString BenchWorld::mainSettingsDir()
{
    return temporaryDir->filePath(QStringLiteral("main"));
}

QString BenchWorld::scratchDir(const QString &name)
{
    const QString path = temporaryDir->filePath(name);
    QDir(path).removeRecursively();
    QDir().mkpath(path);
    return path;
}

const QList<BenchWorld::FilterCase> &BenchWorld::filterCases()
{
    // In the generated rosters "an" is rare (names are capitalised), "i" is in
    // about a third of the names and a space in nine of ten; "online" or
    // "away" is about half of the presences, "offline" or "xa" a little more.
    static const QList<FilterCase> cases {
        { "3%", benchFilterName,
            { QStringLiteral("an"), QStringLiteral("online"), QStringLiteral("away"),
                QStringLiteral("Blocked") } },
        { "15%", QStringLiteral("bench15"),
            { QStringLiteral("i"), QStringLiteral("online"), QStringLiteral("away"),
                QStringLiteral("Blocked") } },
        { "50%", QStringLiteral("bench50"),
            { QStringLiteral(" "), QStringLiteral("offline"), QStringLiteral("xa"),
                QStringLiteral("Blocked") } },
    };
    return cases;
}

VeskRosterFiltersManager *BenchWorld::filtersManager(const QString &stackName)
{
    if (!mainWorldReady || !VeskRosterFiltersManager::instance)
        buildMainWorld();
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::instance;
    if (manager->getCurrentFilterName() != stackName)
        manager->setCurrentFilter(stackName);
    return manager;
}

VeskRosterSortersManager *BenchWorld::sortersManager(const QString &method)
{
    filtersManager();
    VeskRosterSortersManager *sorters = VeskRosterSortersManager::getInstance();
    sorters->setCurrentSorter(method);
    return sorters;
}

void BenchWorld::dropManagers()
{
    mainWorldReady = false;
    if (VeskRosterFiltersManager *manager = VeskRosterFiltersManager::instance) {
        QSet<VeskRosterFiltersStack *> stacks;
        const QStringList names = manager->getFilterNames();
        for (const QString &name : names)
            stacks.insert(manager->getStackFilter(name));
        stacks.remove(nullptr);
        qDeleteAll(stacks);
        manager->setCurrentFilter(QStringLiteral("default"));
        delete manager->getCurrentFilter();
        delete manager;
    }
    delete VeskRosterSortersManager::instance;
}

QList<VeskField> BenchWorld::choiceFields(
    bool positive, const QString &fieldId, const QString &value)
{
    const QStringList conditions = { QStringLiteral("is"), QStringLiteral("is not") };
    return { VeskField::comboBox(QString(), QStringLiteral("is_or_not"), conditions, conditions,
                 conditions.at(positive ? 0 : 1), QString()),
        VeskField::comboBox(QString(), fieldId, { value }, { value }, value, QString()) };
}

QList<VeskField> BenchWorld::textFields(
    const QString &condition, const QString &fieldId, const QString &text)
{
    const QStringList conditions = { QStringLiteral("contains"), QStringLiteral("does not contain"),
        QStringLiteral("match exactly"), QStringLiteral("is not empty") };
    return { VeskField::comboBox(QString(), QStringLiteral("is_or_not"), conditions, conditions,
                 condition, QString()),
        VeskField::lineEdit(QString(), fieldId, text, 32767, QString()) };
}

VeskRosterFilter *BenchWorld::createLeaf(const QString &kind, const QList<VeskField> &fields)
{
    VeskRosterFilter *leaf = VeskRosterFiltersManager::getInstance()->createFilter(
        kind, VeskRosterFilter::RosterFilterDefault);
    if (leaf)
        leaf->setConfiguration(fields);
    return leaf;
}
