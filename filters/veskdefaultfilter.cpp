#include "veskdefaultfilter.h"

VeskDefaultFilter::VeskDefaultFilter()
    : VeskRosterFiltersStack(QStringLiteral("default"), RosterFilterDefault)
{ }

VeskDefaultFilter::~VeskDefaultFilter() = default;

QString VeskDefaultFilter::id() const
{
    return QStringLiteral("default");
}

QString VeskDefaultFilter::name() const
{
    return QStringLiteral("default");
}

QString VeskDefaultFilter::display() const
{
    return QString();
}

bool VeskDefaultFilter::filter(const VeskBuddy &) const
{
    return true;
}
