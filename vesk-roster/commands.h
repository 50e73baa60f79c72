#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

class VeskLibrarySession;
class VeskOutput;
struct VeskCommand;

// What a command gets to work with. `session` is set for the commands that
// run the library; the others never touch the settings directory.
struct VeskCommandContext
{
    const VeskCommand *command = nullptr;
    QStringList args;
    bool json = false;
    VeskOutput *out = nullptr;
    VeskLibrarySession *session = nullptr;
    QString settingsDir; // set for OwnSessions commands
    QString rosterFile; // as --roster gave it; empty: the bundled sample

    // Refuses unless there are between `min` and `max` arguments (max < 0:
    // no upper bound), quoting the command's synopsis.
    void expectArgs(int min, int max = -1) const;
};

struct VeskCommand
{
    // What a command does with the settings directory: nothing, read it
    // (under a shared lock, storing nothing), or change it (under the
    // exclusive lock, every change read back before it is reported).
    // OwnSessions: the roster is loaded and `settingsDir` set, and the command
    // opens its sessions itself through VeskRosterProgram::runInSession (edit,
    // which must not hold the lock while an editor is open).
    enum Settings { None, Reads, Writes, OwnSessions };

    const char *name;
    const char *synopsis;
    const char *summary; // null: a helper left out of the overview
    const char *details;
    Settings settings;
    void (*run)(VeskCommandContext &context);
};

namespace VeskCommands {
const QVector<VeskCommand> &all();
const VeskCommand *find(const QString &name);
QString usage();
QString help(const VeskCommand &command);
} // namespace VeskCommands
