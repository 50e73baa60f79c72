#include "veskrosterquicksearch.h"

#include "veskrosterpass_p.h"
#include "vesksearchfold_p.h"

VeskRosterQuickSearch::VeskRosterQuickSearch()
    : where(CurrentFilter)
{ }

VeskRosterQuickSearch::VeskRosterQuickSearch(const QString &text, Scope scope)
    : searchText(text)
    , folded(VeskSearchFold::folded(text))
    , where(scope)
{ }

VeskRosterQuickSearch::~VeskRosterQuickSearch() = default;
VeskRosterQuickSearch::VeskRosterQuickSearch(const VeskRosterQuickSearch &other) = default;
VeskRosterQuickSearch &VeskRosterQuickSearch::operator=(const VeskRosterQuickSearch &other)
    = default;

QString VeskRosterQuickSearch::text() const
{
    return searchText;
}

void VeskRosterQuickSearch::setText(const QString &text)
{
    searchText = text;
    folded = VeskSearchFold::folded(text);
}

VeskRosterQuickSearch::Scope VeskRosterQuickSearch::scope() const
{
    return where;
}

void VeskRosterQuickSearch::setScope(Scope scope)
{
    where = scope == EveryEntry ? EveryEntry : CurrentFilter;
}

bool VeskRosterQuickSearch::isEmpty() const
{
    return folded.isEmpty();
}

bool VeskRosterQuickSearch::narrows(const VeskRosterQuickSearch &previous) const
{
    // Each piece of an entry is looked at on its own, so a piece holding the
    // longer text holds every part of it.
    if (previous.isEmpty())
        return isEmpty() || where == CurrentFilter;
    return where == previous.where && folded.contains(previous.folded, Qt::CaseSensitive);
}

// The search alone is the view's answer when there is no filter, whatever
// the scope.
bool VeskRosterQuickSearch::matches(const VeskBuddy &buddy) const
{
    return VeskRosterPass::passesOne(nullptr, nullptr, this, buddy);
}

QVector<int> VeskRosterQuickSearch::matching(const QVector<VeskBuddy> &entries) const
{
    return VeskRosterPass::passAll(nullptr, nullptr, this, entries);
}

QString VeskRosterQuickSearch::fold(const QString &text)
{
    return VeskSearchFold::folded(text);
}
