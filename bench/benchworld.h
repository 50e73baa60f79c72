#pragma once

#include "handwritten.h"

#include <veskfield.h>

#include <QList>
#include <QString>

class VeskRosterFilter;
class VeskRosterFiltersManager;
class VeskRosterSortersManager;

// The library as a host has it while the benchmarks run: settings of its own in
// a temporary directory, the benchmarks' filter current and the two sorting
// methods stored.
namespace BenchWorld {

// Call once, after the application object exists and before any benchmark.
void init();

// The filters the filter benchmarks make current, one per selectivity, all
// of one shape (HandWritten::FilterParameters); stored under their stack names.
struct FilterCase
{
    const char *label; // "3%": about that share of the entries passes
    QString stackName;
    HandWritten::FilterParameters parameters;
};
const QList<FilterCase> &filterCases();

// The settings directory of the filter and sorting benchmarks.
QString mainSettingsDir();
// A fresh directory for benchmarks that need settings of their own.
QString scratchDir(const QString &name);

// The filters manager with a benchmark filter current ("bench" unless another
// stack name is given), created again on the main settings directory when a
// benchmark dropped it.
VeskRosterFiltersManager *filtersManager(const QString &stackName = QStringLiteral("bench"));
// Makes "presence_name" or "chats_name" the current sorting method.
VeskRosterSortersManager *sortersManager(const QString &method);
// Deletes both managers and every filter the filters manager holds, as a host
// would before a restart.
void dropManagers();

// Configuration of a leaf with an "is" / "is not" combo box and a combo box of
// values.
QList<VeskField> choiceFields(bool positive, const QString &fieldId, const QString &value);
// Configuration of a display or description leaf.
QList<VeskField> textFields(const QString &condition, const QString &fieldId, const QString &text);
// A new leaf of the kind, configured with the fields; the caller owns it.
VeskRosterFilter *createLeaf(const QString &kind, const QList<VeskField> &fields);

} // namespace BenchWorld
