#include "veskroster.h"

#include "veskhost_p.h"

VeskRoster::VeskRoster() = default;
VeskRoster::~VeskRoster() = default;

VeskRoster *VeskRoster::getInstance()
{
    static VeskRoster roster;
    return &roster;
}

QStringList VeskRoster::getGroupsNames() const
{
    return VeskRosterStore::self().groupNames;
}
