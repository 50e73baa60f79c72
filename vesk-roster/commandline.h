#pragma once

#include <QString>
#include <QStringList>

#include "xmppoptions.h"

// The global options and the command with its arguments:
// vesk-roster [--settings DIR] [--roster FILE|- | --xmpp JID...] [--json] COMMAND [ARGS...]
class VeskCommandLine
{
public:
    // Refuses an unknown option or an option without its value.
    static VeskCommandLine parse(const QStringList &arguments);

    // $XDG_CONFIG_HOME/vesk-roster or ~/.config/vesk-roster; refuses when
    // neither can be known.
    static QString defaultSettingsDir();
    // At arguments[*i]: "NAME VALUE" (advancing *i) or "NAME=VALUE" gives
    // true with *value; another argument, false. A NAME without its value
    // is refused.
    static bool takeValue(
        const QStringList &arguments, int *i, const QString &name, QString *value);

    QString settingsDir; // empty: the default
    QString rosterFile; // empty: the bundled sample roster
    VeskXmppOptions xmpp; // accounts to show instead of a roster file
    bool json = false;
    bool help = false;
    bool version = false;
    bool hasCommand = false; // false: "show", the default
    QString command;
    QStringList args;
};
