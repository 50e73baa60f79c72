// A representative session of a host, end to end, small enough to run under
// Valgrind: start-up on a fresh settings directory, build and save a filter
// with every leaf kind and a nested stack, make it current, filter and sort
// the roster, define a sorting method, rename, reorder, restart, reload and
// remove. Exits 0 when every step gave the expected answer.
//
//   reliability_scenario [SETTINGS_DIR]

#include "reliabilitysupport.h"

#include <veskbuddy.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrostersortersmanager.h>
#include <veskstandin.h>

#include <QTemporaryDir>

#include <cstdio>

using namespace VeskReliability;

namespace {

int failures = 0;

void expect(bool condition, const char *what)
{
    if (!condition) {
        std::fprintf(stderr, "scenario: %s\n", what);
        ++failures;
    }
}

} // namespace

int main(int argc, char **argv)
{
    QTemporaryDir scratch;
    const QString dir = argc > 1 ? QString::fromLocal8Bit(argv[1]) : scratch.path();
    buildSmallRoster();
    VeskStandIn::setSettingsDir(dir);

    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    addLargeStack(QStringLiteral("friends"), 12, 0)->writeFilterSettings();
    addLargeStack(QStringLiteral("work"), 6, 1)->writeFilterSettings();
    manager->setCurrentFilter(QStringLiteral("friends"));

    VeskRosterSortersManager *sorters = VeskRosterSortersManager::getInstance();
    sorters->addSorter(
        QStringLiteral("by name"), { QStringLiteral("name"), QStringLiteral("presence") });
    sorters->setSorterAscending(
        QStringLiteral("by name"), { QStringLiteral("t"), QStringLiteral("f") });
    sorters->setCurrentSorter(QStringLiteral("by name"));
    const QList<VeskBuddy> entries = VeskStandIn::entries();
    for (const VeskBuddy &a : entries) {
        for (const VeskBuddy &b : entries)
            sorters->lessThan(a, b);
    }

    // Making a method current records it in the current filter.
    const QString before = describe(manager->getStackFilter(QStringLiteral("friends")), false);
    const QString answered = answers(manager->getCurrentFilter());

    manager->rename(QStringLiteral("work"), QStringLiteral("office"));
    manager->downFilter(QStringLiteral("default"));
    manager->upFilter(QStringLiteral("office"));
    manager->getStackFilter(QStringLiteral("friends"))->writeFilterSettings();
    shutDown();

    VeskStandIn::setSettingsDir(dir);
    manager = VeskRosterFiltersManager::getInstance();
    expect(manager->getCurrentFilterName() == QLatin1String("friends"), "current filter lost");
    expect(manager->getFilterNames().contains(QStringLiteral("office")), "renamed filter lost");
    expect(describe(manager->getStackFilter(QStringLiteral("friends")), false) == before,
        "filter changed across a restart");
    expect(answers(manager->getCurrentFilter()) == answered, "answers changed across a restart");
    VeskRosterFiltersStack *office = manager->getStackFilter(QStringLiteral("office"));
    manager->removeStackFilter(QStringLiteral("office"));
    delete office;
    expect(!manager->getFilterNames().contains(QStringLiteral("office")), "removed filter listed");
    shutDown();
    VeskStandIn::resetRoster();
    return failures == 0 ? 0 : 1;
}
