#pragma once

#include <veskrosterfilter.h>

// Passes a contact or temporary contact known through, or not through, the
// account the user chose; "is not" passes every other entry too. An account is
// identified as its user id, "@" and its protocol name.
class VESK_ROSTER_FILTER_EXPORT VeskAccountFilter : public VeskRosterFilter
{
public:
    VeskAccountFilter();
    ~VeskAccountFilter() override;

    RosterFilterType getType() const override;
    QString id() const override;
    QString name() const override;
    QString display() const override;
    bool filter(const VeskBuddy &buddy) const override;
    QList<VeskField> getConfiguration() const override;
    void setConfiguration(const QList<VeskField> &fields) override;

private:
    friend class VeskFilterPlan; // prepares the stacks' walks from the condition

    QString accountId;
    bool positive;
    QString conditionLabel;
};
