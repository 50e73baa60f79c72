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
    const VeskOutput *out = nullptr;
    VeskLibrarySession *session = nullptr;

    // Refuses unless there are between `min` and `max` arguments (max < 0:
    // no upper bound), quoting the command's synopsis.
    void expectArgs(int min, int max = -1) const;
};

struct VeskCommand
{
    // What a command does with the settings directory: nothing, read it
    // (under a shared lock, storing nothing), or change it (under the
    // exclusive lock, every change read back before it is reported).
    enum Settings { None, Reads, Writes };

    const char *name;
    const char *synopsis;
    const char *summary;
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
