#include "veskpresence.h"

VeskPresence::VeskPresence()
    : flag(0)
    , priority(0)
{ }

VeskPresence::VeskPresence(const VeskPresence &other) = default;
VeskPresence &VeskPresence::operator=(const VeskPresence &other) = default;
VeskPresence::~VeskPresence() = default;

QString VeskPresence::getId() const
{
    return id;
}

QString VeskPresence::getDisplay() const
{
    return display;
}

QString VeskPresence::getDescription() const
{
    return description;
}

int VeskPresence::getFlag() const
{
    return flag;
}

int VeskPresence::getPriority() const
{
    return priority;
}

VeskSubscriptionType::VeskSubscriptionType()
    : priority(0)
{ }

int VeskSubscriptionType::getPriority() const
{
    return priority;
}
