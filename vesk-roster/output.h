#pragma once

#include <QString>

// Where the program writes: UTF-8 on stdout and stderr, whatever the locale,
// and colour only when stdout is a terminal that wants it.
class VeskOutput
{
public:
    VeskOutput();

    bool useColour() const { return colour; }

    void print(const QString &text) const;
    void printBytes(const QByteArray &bytes) const;
    void warn(const QString &message) const;
    void error(const QString &message) const;

private:
    bool colour;
};
