#include "commandline.h"

#include "librarysession.h"
#include "refusal.h"
#include "sessiontext_p.h"

bool VeskCommandLine::takeValue(
    const QStringList &arguments, int *i, const QString &name, QString *value)
{
    const QString &arg = arguments.at(*i);
    if (arg == name) {
        if (*i + 1 >= arguments.size())
            refuse(vtr("missing argument: %1 needs a value").arg(name));
        *value = arguments.at(++*i);
        return true;
    }
    if (arg.startsWith(name + QLatin1Char('='))) {
        *value = arg.mid(name.size() + 1);
        return true;
    }
    return false;
}

QString VeskCommandLine::defaultSettingsDir()
{
    QString error;
    const QString dir = VeskLibrarySession::defaultSettingsDir(&error);
    if (dir.isEmpty())
        refuse(error);
    return dir;
}

VeskCommandLine VeskCommandLine::parse(const QStringList &arguments)
{
    VeskCommandLine line;
    int i = 0;
    for (; i < arguments.size(); ++i) {
        const QString &arg = arguments.at(i);
        if (!arg.startsWith(QLatin1Char('-')) || arg == QLatin1String("-"))
            break;
        QString value;
        if (VeskCommandLine::takeValue(arguments, &i, QStringLiteral("--settings"), &value)) {
            if (value.isEmpty())
                refuse(vtr("--settings needs a directory, not an empty text"));
            line.settingsDir = value;
        } else if (VeskCommandLine::takeValue(arguments, &i, QStringLiteral("--roster"), &value)) {
            if (value.isEmpty())
                refuse(vtr("--roster needs a file, not an empty text"));
            line.rosterFile = value;
        } else if (line.xmpp.take(arguments, &i)) {
        } else if (arg == QLatin1String("--json")) {
            line.json = true;
        } else if (arg == QLatin1String("--help") || arg == QLatin1String("-h")) {
            line.help = true;
        } else if (arg == QLatin1String("--version")) {
            line.version = true;
        } else {
            refuse(vtr("unknown option \"%1\"; options: --settings DIR, --roster FILE, %2, "
                       "--json, --help, --version")
                       .arg(arg, VeskXmppOptions::names()));
        }
    }
    if (line.xmpp.isSet() && !line.rosterFile.isEmpty())
        refuse(vtr("--roster and --xmpp exclude each other: one roster is shown"));
    if (!line.xmpp.isSet()
        && (!line.xmpp.server.isEmpty() || !line.xmpp.caFile.isEmpty() || line.xmpp.insecure))
        refuse(vtr("--xmpp-server, --xmpp-ca and --xmpp-insecure go with --xmpp JID"));
    // A bare invocation shows the roster, so that the program shows something
    // useful on a fresh machine.
    line.hasCommand = i < arguments.size();
    line.command = line.hasCommand ? arguments.at(i) : QStringLiteral("show");
    line.args = arguments.mid(i + 1);
    // Listings also take --json after the command, where people tend to type it.
    if (line.args.removeAll(QStringLiteral("--json")) > 0) {
        const QStringList listings = { QStringLiteral("show"), QStringLiteral("filters"),
            QStringLiteral("kinds"), QStringLiteral("sorters") };
        if (listings.contains(line.command))
            line.json = true;
        else
            line.args = arguments.mid(i + 1);
    }
    return line;
}
