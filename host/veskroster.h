#pragma once

#include "vesk_host_export.h"

#include <QStringList>

// The roster singleton.
class VESK_HOST_EXPORT VeskRoster
{
public:
    static VeskRoster *getInstance();
    // The names of all roster groups, in roster order (duplicates kept).
    QStringList getGroupsNames() const;

private:
    friend struct VeskStandInAccess;
    VeskRoster();
    ~VeskRoster();
    Q_DISABLE_COPY(VeskRoster)
};
