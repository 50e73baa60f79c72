#pragma once

#include <veskrosterfilter.h>

#include <QString>

class VeskRosterFiltersManager;
class VeskRosterFiltersStack;

// Filters as the filter editor handles them: copies made through the
// manager's factory.
namespace VeskFilterTreeOps {

// A copy of a leaf (its kind, its configuration) or of a stack and all its
// children, owned by the caller; the copy of a stack has no name.
VeskRosterFilter *copy(VeskRosterFilter *filter, VeskRosterFiltersManager *manager);
// A new stack of another type holding the children of `stack`, which is left empty.
VeskRosterFiltersStack *retype(VeskRosterFiltersStack *stack,
    VeskRosterFilter::RosterFilterType type, VeskRosterFiltersManager *manager);
VeskRosterFiltersStack *asStack(VeskRosterFilter *filter);

// True when the tree holds a stack without children.
bool hasEmptyStack(VeskRosterFilter *filter);

} // namespace VeskFilterTreeOps
