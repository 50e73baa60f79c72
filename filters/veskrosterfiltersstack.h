#pragma once

#include "veskrosterfilter.h"

class VeskFilterPlan;

// A named list of child filters joined by AND or OR. It owns its children.
// A top-level stack is stored in a file of its own; a nested one inside its
// parent's file.
class VESK_ROSTER_FILTER_EXPORT VeskRosterFiltersStack : public VeskRosterFilter
{
public:
    // Reads the stack's file (if any) before returning.
    VeskRosterFiltersStack(const QString &name, VeskRosterFilter::RosterFilterType type);
    ~VeskRosterFiltersStack() override;

    RosterFilterType getType() const override;
    QString id() const override;
    QString name() const override;
    QString display() const override;
    bool filter(const VeskBuddy &buddy) const override;

    void setName(const QString &name);
    void appendFilter(VeskRosterFilter *filter);
    void removeFilter(VeskRosterFilter *filter);
    QList<VeskRosterFilter *> getFilters() const;
    void setAdvancedMode(bool advanced);
    bool isAdvancedMode() const;

    void readFilterSettings();
    void writeFilterSettings();

private:
    friend class VeskFilterPlan;
    friend class VeskRosterPass; // the whole-roster call walks the plan itself
    friend class VeskRosterFiltersManager; // walks its current stack without a virtual call
    Q_DISABLE_COPY(VeskRosterFiltersStack)

    // filter() of this class, whatever a subclass makes of filter().
    inline bool walk(const VeskBuddy &buddy) const;
    void releaseRetired() const;
    // Prepares the plan again, and those of the stacks above.
    void prepare();
    void readChildren();

    QString stackName;
    QList<VeskRosterFilter *> filters;
    RosterFilterType type;
    bool advanced;
    // What filter() walks: the tree below, as it stood at the last change.
    VeskFilterPlan *plan;
    // Walks in progress; while there are any, a replaced plan is kept in
    // `retired`, so that a change made during a walk does not affect it.
    mutable int walks;
    mutable VeskFilterPlan *retired;
    // Reading the file: the children's changes prepare nothing until the end.
    bool reading;
};
