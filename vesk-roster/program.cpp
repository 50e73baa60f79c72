#include "program.h"

#include "commandline.h"
#include "commands.h"
#include "librarysession.h"
#include "output.h"
#include "refusal.h"
#include "rosterfile.h"
#include "sessiontext_p.h"
#include "xmppoptions.h"

#include <veskxmpphost.h>

#include <veskstandin.h>

#include <QFile>

#include <cstdio>

namespace {

void loadRoster(const QString &path)
{
    QByteArray document;
    if (path.isEmpty()) {
        document = VeskRosterFile::sampleRoster();
    } else if (path == QLatin1String("-")) {
        QFile in;
        if (!in.open(stdin, QIODevice::ReadOnly))
            refuse(vtr("cannot read the roster from standard input: %1").arg(in.errorString()));
        document = in.readAll();
    } else {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            refuse(vtr("cannot read the roster file \"%1\": %2").arg(path, file.errorString()));
        document = file.readAll();
    }
    QString error;
    if (!VeskRosterFile::load(document, &error)) {
        refuse(path.isEmpty()                ? vtr("the bundled roster: %1").arg(error)
                : path == QLatin1String("-") ? vtr("the roster on standard input: %1").arg(error)
                                             : vtr("the roster file \"%1\": %2").arg(path, error));
    }
}

QString commandNames()
{
    QStringList names;
    for (const VeskCommand &command : VeskCommands::all()) {
        if (command.summary)
            names.append(QString::fromUtf8(command.name));
    }
    return names.join(QLatin1String(", "));
}

// Runs a command on an open session. A writing command's report is held
// back until its changes are read back; a refusal puts back what this run
// changed, and only that.
void runWithSession(VeskCommandContext &context, VeskLibrarySession &session, VeskOutput &out,
    bool writes, const std::function<void()> &work)
{
    context.session = &session;
    if (writes)
        out.hold();
    try {
        work();
        QString error;
        if (!session.commit(&error))
            refuse(error);
    } catch (const VeskRefusal &refusal) {
        out.discard();
        QString error;
        const bool restored = session.rollback(&error);
        session.close();
        if (!restored)
            refuse(vtr("%1; and %2").arg(refusal.message(), error));
        throw;
    }
    session.close();
    context.session = nullptr;
    out.release();
}

} // namespace

void VeskRosterProgram::runInSession(
    VeskCommandContext &context, bool writes, const std::function<void()> &work)
{
    VeskLibrarySession session;
    QString error;
    if (!session.open(context.settingsDir,
            writes ? VeskLibrarySession::ReadWrite : VeskLibrarySession::ReadOnly, &error))
        refuse(error);
    runWithSession(context, session, *context.out, writes, work);
}

int VeskRosterProgram::run(const QStringList &arguments)
{
    VeskOutput out;
    try {
        const VeskCommandLine line = VeskCommandLine::parse(arguments);
        if (line.help && !line.hasCommand) {
            out.print(VeskCommands::usage());
            return 0;
        }
        if (line.version && !line.hasCommand) {
            out.print(QStringLiteral("vesk-roster %1\n").arg(QLatin1String(VESK_VERSION)));
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
        context.rosterFile = line.rosterFile;
        if (command->settings == VeskCommand::None) {
            command->run(context);
            return 0;
        }
        if (line.rosterFile == QLatin1String("-") && command->name == QByteArrayLiteral("import")
            && line.args.contains(QStringLiteral("-")))
            refuse(vtr("standard input cannot hold both the roster and the definition"));

        const QString settingsDir
            = line.settingsDir.isEmpty() ? VeskCommandLine::defaultSettingsDir() : line.settingsDir;
        // The roster is loaded before the lock is taken: other runs wait only
        // while this one works on the settings.
        // A live roster stays connected until the command has run; its host
        // goes after the stand-in's reset without touching the entries.
        std::unique_ptr<VeskXmppHost> live;
        if (line.xmpp.isSet())
            live = veskLoadLiveRoster(line.xmpp);
        else
            loadRoster(line.rosterFile);
        if (command->settings == VeskCommand::OwnSessions) {
            context.settingsDir = settingsDir;
            try {
                command->run(context);
            } catch (const VeskRefusal &) {
                VeskStandIn::resetRoster();
                throw;
            }
            VeskStandIn::resetRoster();
            return 0;
        }
        VeskLibrarySession session;
        QString error;
        if (!session.open(settingsDir,
                command->settings == VeskCommand::Writes ? VeskLibrarySession::ReadWrite
                                                         : VeskLibrarySession::ReadOnly,
                &error)) {
            VeskStandIn::resetRoster();
            refuse(error);
        }
        try {
            runWithSession(context, session, out, command->settings == VeskCommand::Writes,
                [&context] { context.command->run(context); });
        } catch (const VeskRefusal &) {
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
