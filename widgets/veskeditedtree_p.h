#pragma once

#include <veskrosterfilter.h>

class VeskFilterKinds;
class VeskRosterFiltersStack;

// Walks and rearranges the working copy a filter editor edits.
namespace VeskEditedTree {

VeskRosterFiltersStack *asStack(VeskRosterFilter *filter);
const VeskRosterFiltersStack *asStack(const VeskRosterFilter *filter);

// Puts `replacement` where `child` was among its parent's children and
// hands `child` back to the caller, out of the tree.
void replaceChild(
    VeskRosterFiltersStack *parent, VeskRosterFilter *child, VeskRosterFilter *replacement);
// Moves a child one or more places among its siblings; false when it cannot.
bool moveChild(VeskRosterFiltersStack *parent, VeskRosterFilter *child, int delta);
// A new stack of another type holding the children of `stack`, which is
// left empty; the stack's type is fixed when it is made.
VeskRosterFiltersStack *retype(VeskRosterFiltersStack *stack,
    VeskRosterFilter::RosterFilterType type, const VeskFilterKinds &kinds);

} // namespace VeskEditedTree
