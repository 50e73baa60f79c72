#include "veskarg.h"

VeskArg::VeskArg()
    : type(TypeNone)
{ }

VeskArg::~VeskArg() = default;

int VeskArg::getType() const
{
    return type;
}

int VeskArg::toInt() const
{
    return value.toInt();
}
