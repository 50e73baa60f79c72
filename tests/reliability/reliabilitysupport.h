#pragma once

// Shared by the reliability tests, their helper programs and the fuzz
// targets: a small roster, a comparable description of a filter tree, and
// the tear-down of the singletons a start-up creates.

#include <veskfiltertestenv.h>
#include <veskfiltertree.h>

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

class VeskBuddy;
class VeskRosterFilter;
class VeskRosterFiltersStack;

namespace VeskReliability {

// Resets the stand-in roster and fills it with a few entries of every kind,
// including the odd ones (no account, unknown presence, kind codes 0 and 7).
void buildSmallRoster();

using VeskFilterTree::answers;
using VeskFilterTree::describe;

// describe() of every listed filter, keyed by identifier, in listing order.
QStringList describeAll(bool normalised, bool withDisplay = true);

// Deletes what a start-up made: the listed stacks, the default filter, the
// filters manager and the sorters manager.
inline void shutDown()
{
    VeskFilterTestEnv::shutDownManagers();
}

// Replaces the children of `stack` with `leaves` leaf filters of every kind,
// a quarter of them inside one nested OR stack, and sets its sorting method
// and advanced flag; `generation` goes into every value so that generations
// differ in content and in size.
void fillLargeStack(VeskRosterFiltersStack *stack, int leaves, int generation);
// A new top-level stack (AND for an even generation, OR for an odd one),
// filled as above.
VeskRosterFiltersStack *addLargeStack(const QString &name, int leaves, int generation);

bool writeFile(const QString &path, const QByteArray &bytes);
QByteArray readFile(const QString &path);

// Every path below `dir` (relative), with its type and, for files, a hash of
// the content; symbolic links are listed with their target and not followed.
QStringList snapshotTree(const QString &dir);

// The integer in environment variable `name`, or `fallback`.
inline int envInt(const char *name, int fallback)
{
    bool ok = false;
    const int value = qEnvironmentVariableIntValue(name, &ok);
    return ok ? value : fallback;
}

// Peak resident set size of this process so far, in KiB.
qint64 peakRssKiB();

} // namespace VeskReliability
