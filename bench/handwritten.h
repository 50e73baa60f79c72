#pragma once

#include <QString>
#include <QVector>

class VeskBuddy;

#define VESK_BENCH_HANDWRITTEN_EXPORT __attribute__((visibility("default")))

// The fastest code we know that gives the library's answers, written against
// the same host operations: the limit the library is measured against.
namespace HandWritten VESK_BENCH_HANDWRITTEN_EXPORT {

// The shape of the benchmarks' filters: AND[display contains `text`,
// OR[presence is `presence1`, presence is `presence2`], group is not `group`].
struct FilterParameters
{
    QString text;
    QString presence1;
    QString presence2;
    QString group;
};
// The fastest predicate a person would write for that condition: each piece
// of the entry read once, the presence once for both presence tests.
bool fastestFilter(const VeskBuddy &buddy, const FilterParameters &parameters);
// How far fastestFilter() goes with an entry before it answers: 1 when it
// stops after the display name, 2 after the presence, 3 when it reads the
// group's name too.
int fastestFilterReach(const VeskBuddy &buddy, const FilterParameters &parameters);
// The host calls fastestFilter() makes for an entry it takes `reach` far, and
// nothing else (no comparison): answers the sizes of the texts read.
int fastestFilterReads(const VeskBuddy &buddy, int reach);
// The same checks made leaf by leaf, each leaf reading what it needs itself.
bool leafByLeafFilter(const VeskBuddy &buddy, const FilterParameters &parameters);

// The six leaf conditions the leaf benchmarks configure, one signature for all:
// "is" (positive) or "is not" a value; the text leaves test "contains" and
// ignore `positive`.
using LeafPredicate = bool (*)(const VeskBuddy &buddy, const QString &value, bool positive);
bool displayContains(const VeskBuddy &buddy, const QString &text, bool);
bool descriptionContains(const VeskBuddy &buddy, const QString &text, bool);
bool groupIs(const VeskBuddy &buddy, const QString &group, bool positive);
bool presenceIs(const VeskBuddy &buddy, const QString &presenceId, bool positive);
bool accountIs(const VeskBuddy &buddy, const QString &accountIdentity, bool positive);
bool protocolIs(const VeskBuddy &buddy, const QString &protocolName, bool positive);

// The sorting methods [presence descending, name descending] and [chats count
// descending, name descending], answered as the sorters manager answers them.
// Descending is what a user picks here: contacts that are not offline (flag 5)
// first, most chats first, names in alphabetical order.
bool presenceThenName(const VeskBuddy &a, const VeskBuddy &b);
bool chatsThenName(const VeskBuddy &a, const VeskBuddy &b);

// The same two methods for a whole list of contacts and temporary contacts at
// once, as a person would write it: a rank and a collation key of the lowered
// name per entry, built once, then a stable sort of indices. The order of
// std::stable_sort with the comparators above.
QVector<int> presenceThenNameByKeys(const QVector<VeskBuddy> &entries);
QVector<int> chatsThenNameByKeys(const QVector<VeskBuddy> &entries);

} // namespace VESK_BENCH_HANDWRITTEN_EXPORT
