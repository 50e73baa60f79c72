#pragma once

#include <veskrosterfilter.h>

// Passes a contact whose presence description contains, does not contain or
// equals a text the user typed, or is not empty.
class VESK_ROSTER_FILTER_EXPORT VeskDescriptionFilter : public VeskRosterFilter
{
public:
    VeskDescriptionFilter();
    ~VeskDescriptionFilter() override;

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
    // only the empty description.
    int matchMode;
    QString matchText;
};
