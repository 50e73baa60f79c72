#pragma once

#include <veskrosterfilter.h>

class VESK_ROSTER_FILTER_EXPORT VeskPresenceFilter : public VeskRosterFilter
{
public:
    VeskPresenceFilter();
    ~VeskPresenceFilter() override;

    RosterFilterType getType() const override;
    QString id() const override;
    QString name() const override;
    QString display() const override;
    bool filter(const VeskBuddy &buddy) const override;
    QList<VeskField> getConfiguration() const override;
    void setConfiguration(const QList<VeskField> &fields) override;

private:
    friend class VeskFilterPlan; // prepares the stacks' walks from the condition

    QString presenceId;
    QString presenceLabel;
    bool positive;
    QString conditionLabel;
};
