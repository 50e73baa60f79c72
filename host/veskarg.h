#pragma once

#include "vesk_host_export.h"

#include <QVariant>

// A variant value handed out for contact attributes. The type code 3 marks an
// integer; every other code is some other kind of value.
class VESK_HOST_EXPORT VeskArg
{
public:
    enum { TypeNone = 0, TypeBool = 1, TypeInt = 3, TypeDouble = 6, TypeString = 10 };

    VeskArg();
    ~VeskArg();

    int getType() const;
    int toInt() const;

private:
    friend struct VeskStandInAccess;
    int type;
    QVariant value;
};
