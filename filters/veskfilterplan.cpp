#include "veskfilterplan_p.h"

#include "veskaccountfilter.h"
#include "veskdefaultfilter.h"
#include "veskdescriptionfilter.h"
#include "veskdisplayfilter.h"
#include "veskgroupfilter.h"
#include "veskpresencefilter.h"
#include "veskprotocolfilter.h"
#include "veskrosterfiltersstack.h"

#include <typeinfo>

VeskFilterPlan::VeskFilterPlan(const VeskRosterFiltersStack &stack)
{
    entry = compile(&stack, Pass, Fail, true);
    displayFirst = entry >= 0 && steps[std::size_t(entry)].test == Test::Display && !asksOthers;
}

// Emits the tests of `filter` so that they lead to onTrue when it passes and
// to onFalse when it does not, and answers the index of its first test (or an
// outcome, when it needs no test). Children are compiled last to first, so
// each knows where its successor starts.
int VeskFilterPlan::compile(const VeskRosterFilter *filter, int onTrue, int onFalse, bool isRoot)
{
    const std::type_info &type = typeid(*filter);
    Step step { Test::Opaque, true, 0, onTrue, onFalse, QString(), filter };
    // A stack of a subclass may answer otherwise (the default filter passes
    // everything); only plain stacks are taken apart. The root is the stack
    // the plan is for, whichever class asks.
    if (isRoot || type == typeid(VeskRosterFiltersStack)) {
        auto *stack = static_cast<const VeskRosterFiltersStack *>(filter);
        const QList<VeskRosterFilter *> children = stack->getFilters();
        int next;
        switch (stack->getType()) {
        case VeskRosterFilter::RosterFilterAnd:
            next = onTrue;
            for (auto child = children.crbegin(); child != children.crend(); ++child)
                next = compile(*child, next, onFalse, false);
            return next;
        case VeskRosterFilter::RosterFilterOr:
            if (children.isEmpty())
                return onTrue;
            next = onFalse;
            for (auto child = children.crbegin(); child != children.crend(); ++child)
                next = compile(*child, onTrue, next, false);
            return next;
        default:
            return onFalse;
        }
    } else if (type == typeid(VeskDefaultFilter)) {
        return onTrue;
    } else if (type == typeid(VeskDisplayFilter)) {
        auto *leaf = static_cast<const VeskDisplayFilter *>(filter);
        step.test = Test::Display;
        step.mode = leaf->matchMode;
        step.value = leaf->matchText;
    } else if (type == typeid(VeskDescriptionFilter)) {
        auto *leaf = static_cast<const VeskDescriptionFilter *>(filter);
        step.test = Test::Description;
        step.mode = leaf->matchMode;
        step.value = leaf->matchText;
        readsDescription = true;
    } else if (type == typeid(VeskGroupFilter)) {
        auto *leaf = static_cast<const VeskGroupFilter *>(filter);
        step.test = Test::Group;
        step.positive = leaf->positive;
        step.value = leaf->groupName;
    } else if (type == typeid(VeskAccountFilter)) {
        auto *leaf = static_cast<const VeskAccountFilter *>(filter);
        step.test = Test::Account;
        step.positive = leaf->positive;
        step.value = leaf->accountId;
    } else if (type == typeid(VeskProtocolFilter)) {
        auto *leaf = static_cast<const VeskProtocolFilter *>(filter);
        step.test = Test::Protocol;
        step.positive = leaf->positive;
        step.value = leaf->protocolName;
    } else if (type == typeid(VeskPresenceFilter)) {
        auto *leaf = static_cast<const VeskPresenceFilter *>(filter);
        step.test = Test::Presence;
        step.positive = leaf->positive;
        step.value = leaf->presenceId;
        readsPresenceId = true;
    }
    if (step.test == Test::Opaque)
        asksOthers = true;
    steps.push_back(step);
    return int(steps.size()) - 1;
}

void VeskFilterPlan::conditionChanged(const VeskRosterFilter *leaf)
{
    if (auto *stack = dynamic_cast<VeskRosterFiltersStack *>(leaf->getParent()))
        stack->prepare();
}
