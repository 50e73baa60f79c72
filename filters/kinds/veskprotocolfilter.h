#pragma once

#include <veskrosterfilter.h>

// Passes a contact or temporary contact whose account is, or is not, of the
// protocol the user chose; "is not" passes every other entry too.
class VESK_ROSTER_FILTER_EXPORT VeskProtocolFilter : public VeskRosterFilter
{
public:
    VeskProtocolFilter();
    ~VeskProtocolFilter() override;

    RosterFilterType getType() const override;
    QString id() const override;
    QString name() const override;
    QString display() const override;
    bool filter(const VeskBuddy &buddy) const override;
    QList<VeskField> getConfiguration() const override;
    void setConfiguration(const QList<VeskField> &fields) override;

private:
    friend class VeskFilterPlan; // prepares the stacks' walks from the condition

    QString protocolName;
    bool positive;
    QString conditionLabel;
};
