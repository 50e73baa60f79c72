#pragma once

#include <QString>

// A command that cannot be carried out: the program prints the message, exits
// with status 2 and leaves the settings directory as it found it.
class VeskRefusal
{
public:
    explicit VeskRefusal(const QString &message)
        : text(message)
    { }

    QString message() const { return text; }

private:
    QString text;
};

[[noreturn]] inline void refuse(const QString &message)
{
    throw VeskRefusal(message);
}
