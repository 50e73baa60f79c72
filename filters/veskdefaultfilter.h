#pragma once

#include "veskrosterfiltersstack.h"

// The built-in filter "default": lets every roster entry through.
class VESK_ROSTER_FILTER_EXPORT VeskDefaultFilter : public VeskRosterFiltersStack
{
public:
    VeskDefaultFilter();
    ~VeskDefaultFilter() override;

    QString id() const override;
    QString name() const override;
    QString display() const override;
    bool filter(const VeskBuddy &buddy) const override;
};
