#include "veskrosterpass_p.h"

#include "veskfilterplan_p.h"
#include "veskrosterfiltersstack.h"
#include "veskrosterquicksearch.h"

namespace {

// The one decision behind every answer of the view, for any reader of the
// entry: the per-entry call and the whole-roster call differ only in how
// they read it.
template <class Entry>
inline bool decide(Entry &entry, const VeskBuddy &buddy, const VeskRosterFilter *current,
    const VeskFilterPlan *plan, VeskRosterQuickSearch::Scope scope, VeskSearchFold::Needle *needle)
{
    if (needle && scope == VeskRosterQuickSearch::EveryEntry)
        return VeskSearchFold::matches(entry, *needle);
    const bool passes = plan ? plan->evaluate(entry, buddy) : !current || current->filter(buddy);
    return passes && (!needle || VeskSearchFold::matches(entry, *needle));
}

} // namespace

// A walk of the stack held for a whole call, as filter() holds one for one
// entry: a plan that a change made meanwhile (by a filter of the host's own
// class) replaced is freed only after it.
class VeskRosterPass::Walk
{
public:
    explicit Walk(const VeskRosterFiltersStack *stack)
        : stack(stack)
    {
        if (stack)
            ++stack->walks;
    }
    ~Walk()
    {
        if (stack && --stack->walks == 0 && Q_UNLIKELY(stack->retired))
            stack->releaseRetired();
    }
    Walk(const Walk &) = delete;
    Walk &operator=(const Walk &) = delete;

    // Asked again for every entry, as filter() would.
    const VeskFilterPlan *plan() const { return stack ? stack->plan : nullptr; }

private:
    const VeskRosterFiltersStack *stack;
};

bool VeskRosterPass::passesOne(const VeskRosterFilter *current, const VeskRosterFiltersStack *stack,
    const VeskRosterQuickSearch *search, const VeskBuddy &buddy)
{
    if (!search || search->isEmpty())
        return stack ? stack->walk(buddy) : !current || current->filter(buddy);
    VeskSearchFold::Needle needle(search->folded);
    const Walk walk(stack);
    const VeskFilterPlan *plan = walk.plan();
    VeskEntryReader entry(buddy, plan && plan->readsPresence(), true);
    return decide(entry, buddy, current, plan, search->where, &needle);
}

QVector<int> VeskRosterPass::passAll(const VeskRosterFilter *current,
    const VeskRosterFiltersStack *stack, const VeskRosterQuickSearch *search,
    const QVector<VeskBuddy> &entries)
{
    QVector<int> passing;
    passing.reserve(entries.size());
    const bool searching = search && !search->isEmpty();
    VeskSearchFold::Needle needle(searching ? search->folded : QString());
    VeskSharedPieces shared;
    const VeskRosterQuickSearch::Scope scope
        = searching ? search->where : VeskRosterQuickSearch::CurrentFilter;
    const Walk walk(stack);
    const int count = int(entries.size());
    const VeskBuddy *all = entries.constData();
    for (int i = 0; i < count; ++i) {
        const VeskFilterPlan *plan = walk.plan();
        VeskSharedEntryReader entry(all[i], shared, plan && plan->readsPresence(),
            searching || (plan && plan->readsStatusText()));
        if (decide(entry, all[i], current, plan, scope, searching ? &needle : nullptr))
            passing.append(i);
    }
    return passing;
}

bool VeskRosterPass::matchesOne(const VeskRosterQuickSearch &search, const VeskBuddy &buddy)
{
    if (search.isEmpty())
        return true;
    VeskSearchFold::Needle needle(search.folded);
    VeskEntryReader entry(buddy, false, true);
    return VeskSearchFold::matches(entry, needle);
}

QVector<int> VeskRosterPass::matchAll(
    const VeskRosterQuickSearch &search, const QVector<VeskBuddy> &entries)
{
    QVector<int> matching;
    matching.reserve(entries.size());
    if (search.isEmpty()) {
        for (int i = 0; i < int(entries.size()); ++i)
            matching.append(i);
        return matching;
    }
    VeskSearchFold::Needle needle(search.folded);
    VeskSharedPieces shared;
    const int count = int(entries.size());
    const VeskBuddy *all = entries.constData();
    for (int i = 0; i < count; ++i) {
        VeskSharedEntryReader entry(all[i], shared, false, true);
        if (VeskSearchFold::matches(entry, needle))
            matching.append(i);
    }
    return matching;
}
