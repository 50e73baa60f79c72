#include "program.h"

#include "commandline.h"
#include "commands.h"
#include "librarysession.h"
#include "output.h"
#include "refusal.h"
#include "rosterfile.h"
#include "settingssnapshot.h"
#include "text_p.h"

#include <veskstandin.h>

#include <QFile>

namespace {

void loadRoster(const QString &path)
{
    QByteArray document;
    if (path.isEmpty()) {
        document = VeskRosterFile::sampleRoster();
    } else {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            refuse(vtr("cannot read the roster file \"%1\": %2").arg(path, file.errorString()));
        document = file.readAll();
    }
    QString error;
    if (!VeskRosterFile::load(document, &error)) {
        refuse(path.isEmpty() ? vtr("the bundled roster: %1").arg(error)
                              : vtr("the roster file \"%1\": %2").arg(path, error));
    }
}

QString commandNames()
{
    QStringList names;
    for (const VeskCommand &command : VeskCommands::all())
        names.append(QString::fromUtf8(command.name));
    return names.join(QLatin1String(", "));
}

} // namespace

int VeskRosterProgram::run(const QStringList &arguments)
{
    const VeskOutput out;
    try {
        const VeskCommandLine line = VeskCommandLine::parse(arguments);
        if (line.help && !line.hasCommand) {
            out.print(VeskCommands::usage());
            return 0;
        }
        const VeskCommand *command = VeskCommands::find(line.command);
        if (!command) {
            refuse(vtr("unknown command \"%1\"; commands: %2 (see \"vesk-roster --help\")")
                       .arg(line.command, commandNames()));
        }
        if (line.help || line.args.contains(QStringLiteral("--help"))) {
            out.print(VeskCommands::help(*command));
            return 0;
        }

        VeskCommandContext context;
        context.command = command;
        context.args = line.args;
        context.json = line.json;
        context.out = &out;
        if (!command->usesLibrary) {
            command->run(context);
            return 0;
        }

        loadRoster(line.rosterFile);
        // Start-up writes settings before the command can tell whether it
        // will be refused; the snapshot lets a refusal undo that too.
        const VeskSettingsSnapshot snapshot = VeskSettingsSnapshot::take(line.settingsDir);
        try {
            VeskLibrarySession session(line.settingsDir);
            context.session = &session;
            command->run(context);
        } catch (const VeskRefusal &) {
            snapshot.restore();
            VeskStandIn::resetRoster();
            throw;
        }
        VeskStandIn::resetRoster();
        return 0;
    } catch (const VeskRefusal &refusal) {
        out.error(refusal.message());
        return 2;
    }
}
