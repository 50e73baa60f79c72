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

// The display names of the next few entries, asked for before any of them is
// looked at. Reading a name waits on memory twice (the entry, then the text);
// names asked for one after another, with no test on what came back between
// them, let those waits overlap. The buffer is reused from block to block, so
// the call allocates nothing for it.
class DisplayReadAhead
{
public:
    enum { Size = 32 };

    void read(const VeskBuddy *all, int start, int end)
    {
        for (int i = start; i < end; ++i)
            names[i - start] = all[i].getDisplay();
    }
    QString take(int at) { return std::move(names[at]); }

private:
    QString names[Size];
};

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
    DisplayReadAhead ahead;
    for (int start = 0; start < count; start += DisplayReadAhead::Size) {
        const int end = qMin(count, start + DisplayReadAhead::Size);
        // The search of every entry starts with the display name, and so does
        // a plan whose first test is the display filter. Nothing the block
        // runs can replace such a plan (see readsDisplayFirst()).
        const VeskFilterPlan *first = walk.plan();
        const bool readAhead = (searching && scope == VeskRosterQuickSearch::EveryEntry)
            || (first ? first->readsDisplayFirst() : searching && !current);
        if (readAhead)
            ahead.read(all, start, end);
        for (int i = start; i < end; ++i) {
            const VeskFilterPlan *plan = walk.plan();
            VeskSharedEntryReader entry(all[i], shared, plan && plan->readsPresence(),
                searching || (plan && plan->readsStatusText()));
            if (readAhead)
                entry.takeDisplay(ahead.take(i - start));
            if (decide(entry, all[i], current, plan, scope, searching ? &needle : nullptr))
                passing.append(i);
        }
    }
    return passing;
}
