// Feeds arbitrary bytes to a fresh filters manager as the file of one stack
// filter, next to an intact one: start-up, evaluate every filter, write every
// stack back, start again, and demand the same filters with the same trees.
//
// An input that starts with "NAME:" names the file itself (up to the first
// newline), so the decoding of file names on disk is fuzzed as well.

#include "reliabilitysupport.h"

#include <veskfield.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskstandin.h>

#include <QDir>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <memory>

using namespace VeskReliability;

namespace {

// Owned here so that the directory goes when the fuzzer exits normally.
std::unique_ptr<QTemporaryDir> scratch;
QString settingsDir;
QString stackDir;
QByteArray intactFile;
QString intactDescription;

[[noreturn]] void fail(const char *what, const QStringList &before, const QStringList &after)
{
    std::fprintf(stderr, "fuzz_stackfile: %s\n--- before\n%s\n--- after\n%s\n", what,
        qPrintable(before.join(QLatin1Char('\n'))), qPrintable(after.join(QLatin1Char('\n'))));
    std::abort();
}

void resetDisk()
{
    QDir(settingsDir).removeRecursively();
    QDir().mkpath(stackDir);
}

void startUp()
{
    VeskStandIn::setSettingsDir(settingsDir);
    VeskRosterFiltersManager::getInstance();
}

void checkListing(const QStringList &ids, bool mustListIntact)
{
    if (ids.value(0) != QLatin1String("default") || ids.count(QStringLiteral("default")) != 1)
        fail("\"default\" is not listed first and once", ids, {});
    if (mustListIntact && !ids.contains(QStringLiteral("friends")))
        fail("the intact filter is missing", ids, {});
}

// The name the file gets on disk: what the input asks for, as far as a file
// name can carry it.
QString fileNameFor(const QByteArray &requested)
{
    QString name = QString::fromUtf8(requested.left(200));
    name.replace(QLatin1Char('/'), QLatin1Char('_'));
    name.remove(QChar(0));
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String(".."))
        return QStringLiteral("fuzzed");
    return name;
}

// Every listed filter but "default" (which checkListing() covers), sorted:
// files the stored order does not name are listed in no particular order.
QStringList snapshot(bool withDisplay)
{
    QStringList result = describeAll(true, withDisplay);
    result.sort();
    return result;
}

void saveAllAndRestart()
{
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    const QStringList ids = manager->getFilterNames();
    for (const QString &id : ids) {
        if (VeskRosterFiltersStack *stack = manager->getStackFilter(id))
            stack->writeFilterSettings();
    }
    shutDown();
    startUp();
    checkListing(VeskRosterFiltersManager::getInstance()->getFilterNames(), true);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    scratch.reset(new QTemporaryDir);
    settingsDir = scratch->path() + QLatin1String("/settings");
    stackDir = settingsDir + QLatin1String("/roster_filters");
    buildSmallRoster();

    resetDisk();
    startUp();
    addLargeStack(QStringLiteral("friends"), 7, 3)->writeFilterSettings();
    shutDown();
    intactFile = readFile(stackDir + QLatin1String("/friends"));
    startUp();
    intactDescription = describe(
        VeskRosterFiltersManager::getInstance()->getStackFilter(QStringLiteral("friends")), false);
    shutDown();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QByteArray input(reinterpret_cast<const char *>(data), int(size));
    QString fileName = QStringLiteral("fuzzed");
    const bool namedByInput = input.startsWith("NAME:");
    if (namedByInput) {
        const int end = input.indexOf('\n');
        fileName = fileNameFor(input.mid(5, end < 0 ? -1 : end - 5));
        input = end < 0 ? QByteArray() : input.mid(end + 1);
    }

    resetDisk();
    writeFile(stackDir + QLatin1String("/friends"), intactFile);
    if (fileName != QLatin1String("friends"))
        writeFile(stackDir + QLatin1Char('/') + fileName, input);

    startUp();
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    const QStringList firstIds = manager->getFilterNames();
    checkListing(firstIds, fileName != QLatin1String("friends"));
    if (fileName != QLatin1String("friends")) {
        const QString intact = describe(manager->getStackFilter(QStringLiteral("friends")), false);
        if (intact != intactDescription)
            fail("a hostile file changed another filter", { intactDescription }, { intact });
    }
    for (const QString &id : firstIds) {
        manager->setCurrentFilter(id);
        VeskRosterFilter *filter = manager->getCurrentFilter();
        answers(filter);
        filter->display();
        manager->filter(VeskStandIn::entries().value(0));
    }
    manager->setCurrentFilter(QStringLiteral("default"));

    // The first load holds what the hostile file gave; from the first save
    // on, writing and reading must be a fixed point, display texts included.
    const QStringList loaded = snapshot(false);
    saveAllAndRestart();
    const QStringList saved = snapshot(false);
    const QStringList savedTexts = snapshot(true);
    saveAllAndRestart();
    const QStringList savedTwice = snapshot(true);
    shutDown();
    // A file name that is not the spelling of any identifier is left alone,
    // so only inputs that name the file themselves may list differently.
    if (!namedByInput && loaded != saved)
        fail("a saved filter does not read back the same", loaded, saved);
    if (!namedByInput && savedTexts != savedTwice)
        fail("saving a second time changes the filters", savedTexts, savedTwice);

    const QStringList beside
        = QDir(settingsDir).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    if (beside.size() > 2)
        fail("something was written outside the stack-file directory", beside, {});
    return 0;
}
