#pragma once

#include <QString>

class VeskBuddy;

#define VESK_BENCH_HANDWRITTEN_EXPORT __attribute__((visibility("default")))

// The fastest code we know that gives the library's answers, written against
// the same host operations: the limit the library is measured against.
namespace HandWritten VESK_BENCH_HANDWRITTEN_EXPORT {

// AND[display contains "an", OR[presence is "online", presence is "away"],
// group is not "Blocked"]: the benchmarks' current filter.
bool benchmarkFilter(const VeskBuddy &buddy);

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

} // namespace VESK_BENCH_HANDWRITTEN_EXPORT
