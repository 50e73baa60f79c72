#pragma once

#include <veskrosterfilter.h>

// Passes an entry whose group is, or is not, the group the user chose. Entries
// other than contacts and temporary contacts stand in a group with an empty name.
class VESK_ROSTER_FILTER_EXPORT VeskGroupFilter : public VeskRosterFilter
{
public:
    VeskGroupFilter();
    ~VeskGroupFilter() override;

    RosterFilterType getType() const override;
    QString id() const override;
    QString name() const override;
    QString display() const override;
    bool filter(const VeskBuddy &buddy) const override;
    QList<VeskField> getConfiguration() const override;
    void setConfiguration(const QList<VeskField> &fields) override;

private:
    friend class VeskFilterPlan; // prepares the stacks' walks from the condition

    QString groupName;
    bool positive;
    QString conditionLabel;
};
