#include "veskeditedtree_p.h"

#include "veskfilterkinds.h"

#include <veskrosterfiltersstack.h>

namespace VeskEditedTree {

VeskRosterFiltersStack *asStack(VeskRosterFilter *filter)
{
    if (!filter || filter->getType() == VeskRosterFilter::RosterFilterLeaf)
        return nullptr;
    return dynamic_cast<VeskRosterFiltersStack *>(filter);
}

const VeskRosterFiltersStack *asStack(const VeskRosterFilter *filter)
{
    return asStack(const_cast<VeskRosterFilter *>(filter));
}

namespace {

    // A stack only appends and removes: a new order is every child out, then in.
    void setChildren(VeskRosterFiltersStack *parent, const QList<VeskRosterFilter *> &children)
    {
        const QList<VeskRosterFilter *> before = parent->getFilters();
        for (VeskRosterFilter *child : before)
            parent->removeFilter(child);
        for (VeskRosterFilter *child : children)
            parent->appendFilter(child);
    }

} // namespace

void replaceChild(
    VeskRosterFiltersStack *parent, VeskRosterFilter *child, VeskRosterFilter *replacement)
{
    QList<VeskRosterFilter *> children = parent->getFilters();
    const int at = children.indexOf(child);
    if (at < 0)
        return;
    children[at] = replacement;
    setChildren(parent, children);
}

bool moveChild(VeskRosterFiltersStack *parent, VeskRosterFilter *child, int delta)
{
    QList<VeskRosterFilter *> children = parent->getFilters();
    const int from = children.indexOf(child);
    const int to = from + delta;
    if (from < 0 || to < 0 || to >= children.size())
        return false;
    children.move(from, to);
    setChildren(parent, children);
    return true;
}

VeskRosterFiltersStack *retype(VeskRosterFiltersStack *stack,
    VeskRosterFilter::RosterFilterType type, const VeskFilterKinds &kinds)
{
    VeskRosterFiltersStack *result = kinds.createStack(type);
    const QList<VeskRosterFilter *> children = stack->getFilters();
    for (VeskRosterFilter *child : children) {
        stack->removeFilter(child);
        result->appendFilter(child);
    }
    result->setAdvancedMode(stack->isAdvancedMode());
    result->setSorter(stack->getSorter());
    return result;
}

} // namespace VeskEditedTree
