#pragma once

#include <QStringList>

// vesk-roster as a whole: parses the command line, loads the roster, runs the
// command against a fresh start of the library, and turns a refusal into one
// message, exit status 2 and an untouched settings directory.
class VeskRosterProgram
{
public:
    // The arguments without the program name; returns the exit status.
    static int run(const QStringList &arguments);
};
