#pragma once

#include <QStringList>

#include <functional>

struct VeskCommandContext;

// vesk-roster as a whole: parses the command line, loads the roster, runs the
// command against a fresh start of the library, and turns a refusal into one
// message, exit status 2 and an untouched settings directory.
class VeskRosterProgram
{
public:
    // The arguments without the program name; returns the exit status.
    static int run(const QStringList &arguments);

    // Opens a session on context.settingsDir, for writing or for reading, runs
    // `work` with context.session set, then commits. A refusal puts back what
    // this session changed and is thrown on. While a writing session is open,
    // what the command prints is held back until its changes are read back.
    static void runInSession(
        VeskCommandContext &context, bool writes, const std::function<void()> &work);
};
