#pragma once

#include <veskrosterfilter.h>

// Passes an entry whose display name contains, does not contain or equals a
// text the user typed.
class VESK_ROSTER_FILTER_EXPORT VeskDisplayFilter : public VeskRosterFilter
{
public:
    VeskDisplayFilter();
    ~VeskDisplayFilter() override;

    RosterFilterType getType() const override;
    QString id() const override;
    QString name() const override;
    QString display() const override;
    bool filter(const VeskBuddy &buddy) const override;
    QList<VeskField> getConfiguration() const override;
    void setConfiguration(const QList<VeskField> &fields) override;

private:
    friend class VeskFilterPlan; // prepares the stacks' walks from the condition

    QString text;
    QString conditionId;
    // What filter() tests, as the last known condition compiled it: a
    // VeskTextCondition::Mode and the text it looks for. A new filter matches
    // only the empty display name.
    int matchMode;
    QString matchText;
};
