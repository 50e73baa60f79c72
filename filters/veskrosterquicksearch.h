#pragma once

#include "vesk_roster_filter_export.h"

#include <QString>
#include <QVector>

class VeskBuddy;

// A text the user types to find entries while the roster is shown: not a
// filter, never stored. An entry matches when its display name, the uid of
// its account, the name of its group or its status text contains the text,
// blind to letter case and accents (see fold()). The search narrows the
// current filter (CurrentFilter, the default) or looks at every entry
// (EveryEntry); an empty search, or one that folds to nothing, leaves the
// current filter alone. VeskRosterFiltersManager answers the view with it.
class VESK_ROSTER_FILTER_EXPORT VeskRosterQuickSearch
{
public:
    enum Scope { CurrentFilter, EveryEntry };

    VeskRosterQuickSearch();
    explicit VeskRosterQuickSearch(const QString &text, Scope scope = CurrentFilter);
    ~VeskRosterQuickSearch();
    VeskRosterQuickSearch(const VeskRosterQuickSearch &other);
    VeskRosterQuickSearch &operator=(const VeskRosterQuickSearch &other);

    QString text() const;
    void setText(const QString &text);
    Scope scope() const;
    void setScope(Scope scope);

    // Whether the search narrows nothing: the view is the current filter's.
    bool isEmpty() const;
    // Whether every entry this search matches is one that `previous` matched
    // too (the text grew, the scope stayed), so that only the entries shown
    // under `previous` need asking again.
    bool narrows(const VeskRosterQuickSearch &previous) const;

    // The search alone, without the current filter.
    bool matches(const VeskBuddy &buddy) const;
    // The same for a whole list in one call: the indices of the entries that
    // match, in order.
    QVector<int> matching(const QVector<VeskBuddy> &entries) const;

    // The text as the search compares it: compatibility-decomposed, accents
    // and other combining marks dropped, case-folded; ı and İ give "i", ø
    // "o", đ "d", ł "l", ħ "h", ß "ss", æ "ae", œ "oe", whatever the locale.
    static QString fold(const QString &text);

private:
    friend class VeskRosterPass;
    friend class VeskRosterSearchIndex;
    QString searchText;
    QString folded;
    Scope where;
};
