#pragma once

#include "veskrosterfilter.h"

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
    QString stackName;
    QList<VeskRosterFilter *> filters;
    RosterFilterType type;
    bool advanced;
};
