#pragma once

#include "vesk_host_export.h"

#include <QString>

// The presence state of a roster entry: a value type.
class VESK_HOST_EXPORT VeskPresence
{
public:
    VeskPresence();
    VeskPresence(const VeskPresence &other);
    VeskPresence &operator=(const VeskPresence &other);
    ~VeskPresence();

    QString getId() const;
    QString getDisplay() const;
    QString getDescription() const;
    int getFlag() const;
    int getPriority() const;

private:
    friend struct VeskStandInAccess;
    QString id;
    QString display;
    QString description;
    int flag;
    int priority;
};

// The subscription state of a contact: a value type.
class VESK_HOST_EXPORT VeskSubscriptionType
{
public:
    VeskSubscriptionType();
    int getPriority() const;

private:
    friend struct VeskStandInAccess;
    int priority;
};
