#pragma once

#include "vesk_roster_filter_export.h"

#include <QVector>

#include <memory>

class VeskBuddy;
class VeskRosterQuickSearch;

// The texts the quick search looks at (see VeskRosterQuickSearch) of a list
// of entries, read from the host and folded once, so that a search typed
// letter by letter neither asks the host nor folds anything but the typed
// text. A view keeps one beside its rows: the index knows nothing of later
// changes, so its owner reads an entry again with update() whenever it learns
// that the entry changed (a status text, a name, a group), as a view does on
// its model's dataChanged(). Every answer is the one
// VeskRosterQuickSearch::matches() gives for the entry as it was read.
class VESK_ROSTER_FILTER_EXPORT VeskRosterSearchIndex
{
public:
    VeskRosterSearchIndex();
    explicit VeskRosterSearchIndex(const QVector<VeskBuddy> &entries);
    ~VeskRosterSearchIndex();
    VeskRosterSearchIndex(VeskRosterSearchIndex &&other) noexcept;
    VeskRosterSearchIndex &operator=(VeskRosterSearchIndex &&other) noexcept;
    VeskRosterSearchIndex(const VeskRosterSearchIndex &) = delete;
    VeskRosterSearchIndex &operator=(const VeskRosterSearchIndex &) = delete;

    // The number of entries, as given to the constructor and appended.
    int size() const;
    // Reads one more entry, the last from now on: a long list can be read a
    // slice at a time.
    void append(const VeskBuddy &entry);
    // Reads entry `i` (0 <= i < size()) again, now `entry`.
    void update(int i, const VeskBuddy &entry);

    // Whether entry `i` matches the search (an empty search matches all).
    bool matches(const VeskRosterQuickSearch &search, int i) const;
    // Those of `candidates` (indices of entries, any order) that match, in
    // the order given. Indices outside the index never match.
    QVector<int> matching(
        const VeskRosterQuickSearch &search, const QVector<int> &candidates) const;

private:
    class Private;
    std::unique_ptr<Private> d;
};
