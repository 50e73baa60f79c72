#pragma once

// Not part of the library's API: a stack's condition tree, prepared whenever
// the tree or a condition in it changes, so that the roster view's per-entry
// call walks one flat array instead of a tree of virtual calls and list
// copies.

#include "veskchoicecondition_p.h"
#include "veskleafrule_p.h"
#include "veskrosterfiltersstack.h"

#include <veskaccount.h>
#include <veskbuddy.h>
#include <veskentrykind_p.h>
#include <veskpresence.h>

#include <QString>
#include <QtAlgorithms>

#include <vector>

class VeskRosterFiltersStack;

class VeskFilterPlan
{
public:
    // The plan of `stack` and everything below it, as they are now.
    explicit VeskFilterPlan(const VeskRosterFiltersStack &stack);

    // The answer of the stack the plan was made from. Each piece of the entry
    // that some condition needs is read from the host at most once per call;
    // nothing is kept from one call to the next.
    Q_ALWAYS_INLINE bool evaluate(const VeskBuddy &buddy) const;

    // The same for an entry read through `reader` (see veskleafrule_p.h).
    template <class Entry> bool evaluate(Entry &reader, const VeskBuddy &buddy) const
    {
        return entry < 0 ? entry == Pass : run(reader, buddy);
    }
    bool readsPresence() const { return readsPresenceId; }
    bool readsStatusText() const { return readsDescription; }
    // Whether every entry's evaluation starts by reading its display name and
    // runs no code of the host's own classes (so cannot change the stack
    // while a call walks it): the name can then be read ahead of the entry.
    bool readsDisplayFirst() const { return displayFirst; }

    // A leaf's condition changed: every stack above it prepares again.
    static void conditionChanged(const VeskRosterFilter *leaf);

    // Plans that a stack replaced while a walk still used them, freed when
    // the last walk ends.
    VeskFilterPlan *nextRetired = nullptr;

private:
    // One test per leaf, each the leaf's own rule.
    enum class Test : unsigned char {
        Opaque, // a filter of a class the library does not know: asked itself
        Display,
        Description,
        Group,
        Account,
        Protocol,
        Presence,
    };
    // A test, and where to go on from it: the index of the next step, or one
    // of the two outcomes. Short-circuiting AND and OR become jumps.
    enum Target : int { Fail = -1, Pass = -2 };
    struct Step
    {
        Test test;
        bool positive;
        int mode; // of a text leaf's condition
        int onTrue;
        int onFalse;
        QString value;
        const VeskRosterFilter *filter;
    };

    int compile(const VeskRosterFilter *filter, int onTrue, int onFalse, bool isRoot);
    // The walk over the steps, for any reader of the entry (see veskleafrule_p.h).
    template <class Entry> Q_ALWAYS_INLINE bool run(Entry &entry, const VeskBuddy &buddy) const;

    std::vector<Step> steps;
    int entry = Fail;
    bool readsPresenceId = false;
    bool readsDescription = false;
    bool asksOthers = false;
    bool displayFirst = false;
};

// Each test gives exactly the answer of the leaf it was made from: both ask
// the same rule.
template <class Entry>
Q_ALWAYS_INLINE bool VeskFilterPlan::run(Entry &subject, const VeskBuddy &buddy) const
{
    const Step *all = steps.data();
    int at = entry;
    do {
        const Step &step = all[at];
        bool passes;
        switch (step.test) {
        case Test::Display:
            passes = VeskLeafRule::display(subject, step.mode, step.value);
            break;
        case Test::Description:
            passes = VeskLeafRule::description(subject, step.mode, step.value);
            break;
        case Test::Group:
            passes = VeskLeafRule::group(subject, step.value, step.positive);
            break;
        case Test::Account:
            passes = VeskLeafRule::account(subject, step.value, step.positive);
            break;
        case Test::Protocol:
            passes = VeskLeafRule::protocol(subject, step.value, step.positive);
            break;
        case Test::Presence:
            passes = VeskLeafRule::presence(subject, step.value, step.positive);
            break;
        default:
            passes = step.filter->filter(buddy);
            break;
        }
        at = passes ? step.onTrue : step.onFalse;
    } while (at >= 0);
    return at == Pass;
}

Q_ALWAYS_INLINE bool VeskFilterPlan::evaluate(const VeskBuddy &buddy) const
{
    if (entry < 0)
        return entry == Pass;
    VeskEntryReader subject(buddy, readsPresenceId, readsDescription);
    return run(subject, buddy);
}

inline bool VeskRosterFiltersStack::walk(const VeskBuddy &buddy) const
{
    ++walks;
    const bool passes = plan->evaluate(buddy);
    if (--walks == 0 && Q_UNLIKELY(retired))
        releaseRetired();
    return passes;
}
