#include "commands.h"

#include "commands_p.h"
#include "inerttext.h"
#include "librarysession.h"
#include "refusal.h"
#include "sessiontext_p.h"

#include <veskrostersortersmanager.h>

#include <algorithm>

void VeskCommandContext::expectArgs(int min, int max) const
{
    const int count = args.size();
    if (count < min) {
        refuse(vtr("missing argument: usage: vesk-roster %1")
                   .arg(QString::fromUtf8(command->synopsis)));
    }
    if (max >= 0 && count > max) {
        refuse(vtr("unexpected argument \"%1\": usage: vesk-roster %2")
                   .arg(args.at(max), QString::fromUtf8(command->synopsis)));
    }
}

QString typedFilterName(const VeskLibrarySession &session, const QString &typed)
{
    QString name;
    if (!session.isRegistered(typed) && VeskInertText::unescapeName(typed, &name)
        && session.isRegistered(name))
        return name;
    return typed;
}

QString typedMethodName(const VeskRosterSortersManager *sorters, const QString &typed)
{
    const QStringList methods = sorters->getSorters();
    QString name;
    if (!methods.contains(typed) && VeskInertText::unescapeName(typed, &name)
        && methods.contains(name))
        return name;
    return typed;
}

QString shownName(const QString &name)
{
    return VeskInertText::escapedName(name);
}

void require(bool stored, const QString &error)
{
    if (!stored)
        refuse(error);
}

namespace VeskCommands {

const QVector<VeskCommand> &all()
{
    static const QVector<VeskCommand> commands = {
        { "show", "show [--search TEXT [--every-entry]]",
            QT_TRANSLATE_NOOP("vesk-roster", "the visible roster"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Lists the contacts and temporary contacts that pass the current filter, under\n"
                "the groups that hold at least one of them, then those without a group. Groups,\n"
                "and the members of a group, are ordered by the current sorting method: x comes\n"
                "before y exactly when the method's lessThan(y, x) holds, and entries it does\n"
                "not tell apart keep roster order. With --json, prints one document:\n"
                "{\"filter\", \"sorter\", \"groups\": [{\"name\", \"entries\"}], \"ungrouped\"}.\n"
                "--search TEXT keeps the entries whose name, account uid, group or status text\n"
                "contains TEXT, blind to case and accents; --every-entry looks at every entry\n"
                "instead of those the current filter passes."),
            VeskCommand::Reads, show },
        { "filters", "filters", QT_TRANSLATE_NOOP("vesk-roster", "the filters in display order"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Lists every filter in display order: its identifier, whether it is current\n"
                "(*), its type (and, or, default), its sorting method, its advanced flag and\n"
                "its display text. With --json: {\"current\", \"filters\": [...]}."),
            VeskCommand::Reads, filters },
        { "use", "use ID", QT_TRANSLATE_NOOP("vesk-roster", "make a filter current"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Makes the filter ID current (\"default\" shows every entry). Its sorting\n"
                "method becomes current with it."),
            VeskCommand::Writes, use },
        { "new", "new NAME and|or CONDITION...",
            QT_TRANSLATE_NOOP("vesk-roster", "create a filter from conditions"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Creates the filter NAME joining the CONDITIONs with \"and\" or \"or\", stores it\n"
                "and lists it last. A CONDITION is a kind followed by FIELD=VALUE arguments:\n"
                "  vesk-roster new online-friends and presence is_or_not=is "
                "presence_filter_presence=online \\\n"
                "                                     group is_or_not=is "
                "group_filter_presence=Friends\n"
                "See \"vesk-roster kinds\" for the kinds, their fields and values."),
            VeskCommand::Writes, newFilter },
        { "add", "add NAME[/I...] CONDITION | add NAME[/I...] stack_filter and|or CONDITION...",
            QT_TRANSLATE_NOOP("vesk-roster", "append a condition or a nested stack"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Appends one CONDITION to the filter NAME, or to the nested stack reached by the\n"
                "0-based child indexes I (NAME/1 is the filter's second child, NAME/1/0 that\n"
                "stack's first). With \"stack_filter and|or CONDITION...\" it appends a nested\n"
                "stack with those children instead. The filter is stored."),
            VeskCommand::Writes, add },
        { "drop", "drop NAME/I[/I...]", QT_TRANSLATE_NOOP("vesk-roster", "remove a child"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Removes the child at the path and stores the filter. A stack's last child\n"
                "cannot be dropped: a stack stored without children does not read back as it\n"
                "was; remove the filter (or drop the nested stack) instead."),
            VeskCommand::Writes, drop },
        { "remove", "remove ID", QT_TRANSLATE_NOOP("vesk-roster", "delete a filter"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Deletes the filter ID and its file. When it was current, the default filter\n"
                "shows the roster for the rest of the run, and is current from the next run on."),
            VeskCommand::Writes, remove },
        { "rename", "rename OLD NEW", QT_TRANSLATE_NOOP("vesk-roster", "rename a filter"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Renames the filter OLD to NEW; it keeps its place, its content and, when it is\n"
                "current, stays current."),
            VeskCommand::Writes, rename },
        { "up", "up ID", QT_TRANSLATE_NOOP("vesk-roster", "move a filter up"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Moves the filter one place up in the display order. The default filter is\n"
                "always first: it does not move, and nothing moves above it."),
            VeskCommand::Writes, up },
        { "down", "down ID", QT_TRANSLATE_NOOP("vesk-roster", "move a filter down"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Moves the filter one place down in the display order. The default filter\n"
                "does not move, and the last filter cannot move further down."),
            VeskCommand::Writes, down },
        { "advanced", "advanced NAME on|off",
            QT_TRANSLATE_NOOP("vesk-roster", "set a filter's advanced flag"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Sets the advanced-mode flag that a filter editor keeps with the filter; it does\n"
                "not change what the filter shows."),
            VeskCommand::Writes, advanced },
        { "export", "export NAME", QT_TRANSLATE_NOOP("vesk-roster", "print a filter as JSON"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Prints the filter's whole definition: {\"name\", \"type\", \"sorter\", "
                "\"advanced\",\n"
                "\"children\"}, where a condition is {\"kind\", \"fields\": {FIELD: VALUE}} and a\n"
                "nested stack {\"kind\": \"stack_filter\", \"type\", \"children\"}."),
            VeskCommand::Reads, exportFilter },
        { "import", "import FILE|- [--as NAME] [--replace]",
            QT_TRANSLATE_NOOP("vesk-roster", "create a filter from JSON"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Creates a filter from a definition as \"export\" prints it (\"-\" reads standard\n"
                "input), under its \"name\" or NAME. --replace replaces a filter of that name in\n"
                "its place. Copy a filter with:\n"
                "  vesk-roster export A | vesk-roster import - --as B"),
            VeskCommand::Writes, importFilter },
        { "edit", "edit NAME",
            QT_TRANSLATE_NOOP("vesk-roster", "edit a filter's JSON in an editor"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Opens the filter's definition, as \"export\" prints it, in $VISUAL, else\n"
                "$EDITOR, else vi, and stores the saved text as \"import --replace\" would. Text\n"
                "that does not parse or would be refused is not stored: on a terminal you are\n"
                "asked to edit it again, otherwise it is kept in a file the message names. A\n"
                "file saved unchanged stores nothing. No lock is held while the editor is open;\n"
                "when another run changes the filter meanwhile, nothing is stored."),
            VeskCommand::OwnSessions, edit },
        { "kinds", "kinds",
            QT_TRANSLATE_NOOP("vesk-roster", "the condition kinds and their fields"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Lists each kind of condition with its name and its fields for the loaded\n"
                "roster: field id, kind (combo box or line edit), the items a combo box offers\n"
                "and the value a new condition starts with."),
            VeskCommand::Reads, kinds },
        { "sorters", "sorters", QT_TRANSLATE_NOOP("vesk-roster", "comparators and sorting methods"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Lists the comparator ids with their names, the stored sorting methods with\n"
                "their comparators and directions, and the default method."),
            VeskCommand::Reads, sorters },
        { "sorter", "sorter NAME ID[:asc|:desc]...",
            QT_TRANSLATE_NOOP("vesk-roster", "store a sorting method"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Stores the sorting method NAME as a chain of comparators, each ascending unless\n"
                "it ends in :desc. Ascending lists names A to Z and the most chats first:\n"
                "  vesk-roster sorter busy-first chats_count name"),
            VeskCommand::Writes, sorter },
        { "sorter-remove", "sorter-remove NAME",
            QT_TRANSLATE_NOOP("vesk-roster", "delete a sorting method"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Deletes the sorting method NAME. Filters that name it keep the name and sort\n"
                "by the built-in order (presence, then name); when it was the default method,\n"
                "there is no default method any more."),
            VeskCommand::Writes, sorterRemove },
        { "sorter-default", "sorter-default NAME|--none",
            QT_TRANSLATE_NOOP("vesk-roster", "choose the default sorting method"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Makes NAME the default method: the default filter's, and that of any filter\n"
                "that names none when it becomes current. --none returns to the built-in\n"
                "order (presence, then name)."),
            VeskCommand::Writes, sorterDefault },
        { "sort", "sort NAME",
            QT_TRANSLATE_NOOP("vesk-roster", "sort the current filter by a method"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Makes NAME the current sorting method and stores it with the current filter\n"
                "(or as the default method while the default filter is current)."),
            VeskCommand::Writes, sort },
        { "generate", "generate N [--seed S]",
            QT_TRANSLATE_NOOP("vesk-roster", "print a synthetic roster"),
            QT_TRANSLATE_NOOP("vesk-roster",
                "Prints a roster of N contacts in the roster format, the same for the same seed\n"
                "(default 1), with realistic spreads of groups, accounts, protocols, presences\n"
                "and name lengths:\n"
                "  vesk-roster generate 100000 --seed 7 > big.json\n"
                "  vesk-roster --roster big.json show"),
            VeskCommand::None, generate },
        { "help", "help [COMMAND]", QT_TRANSLATE_NOOP("vesk-roster", "this help, or a command's"),
            QT_TRANSLATE_NOOP("vesk-roster", "Prints the overview, or the help of one command."),
            VeskCommand::None, help },
        // The shell completion's helper, left out of the overview.
        { "complete", "complete [--breaks CHARS] LINE", nullptr,
            QT_TRANSLATE_NOOP("vesk-roster",
                "Prints the words that complete the last word of LINE, a vesk-roster command\n"
                "line up to the cursor, one a line, each quoted for the shell and cut after the\n"
                "last of the CHARS the shell breaks words at. For the shell completion."),
            VeskCommand::None, complete },
    };
    return commands;
}

const VeskCommand *find(const QString &name)
{
    const QVector<VeskCommand> &commands = all();
    for (const VeskCommand &command : commands) {
        if (name == QLatin1String(command.name))
            return &command;
    }
    return nullptr;
}

QString usage()
{
    QString text
        = vtr("Usage: vesk-roster [--settings DIR] [--roster FILE|-] [--json] COMMAND "
              "[ARGS...]\n"
              "\n"
              "Shows a roster through the user's filters and sorting methods, and edits "
              "them.\n"
              "Without COMMAND, runs \"show\".\n"
              "\n"
              "Options:\n"
              "  --settings DIR  settings directory (default: $XDG_CONFIG_HOME/vesk-roster,\n"
              "                  or ~/.config/vesk-roster); created when missing\n"
              "  --roster FILE   roster to load (default: the bundled sample roster);\n"
              "                  - reads it from standard input\n"
              "  --xmpp JID      instead, the live roster of an XMPP account (repeatable);\n"
              "                  password from VESK_XMPP_PASSWORD or a prompt; also\n"
              "                  --xmpp-server HOST:PORT, --xmpp-ca FILE, --xmpp-insecure\n"
              "                  (loopback only); see doc/live-roster.md\n"
              "  --json          show, filters, kinds and sorters print JSON\n"
              "  --help          this help\n"
              "  --version       the program's version\n"
              "\n"
              "Commands:\n");
    int width = 0;
    const QVector<VeskCommand> &commands = all();
    for (const VeskCommand &command : commands)
        width = std::max(width, int(qstrlen(command.name)));
    for (const VeskCommand &command : commands) {
        if (!command.summary)
            continue;
        text += QStringLiteral("  %1  %2\n")
                    .arg(QString::fromUtf8(command.name), -width)
                    .arg(vtr(command.summary));
    }
    text += vtr("\nRun \"vesk-roster help COMMAND\" for the arguments of a command.\n"
                "\n"
                "Files:\n"
                "  $XDG_CONFIG_HOME/vesk-roster (or ~/.config/vesk-roster)\n"
                "      the settings directory: the current filter, the filters' order and\n"
                "      the sorting methods in settings.dat, each filter in roster_filters/NAME\n"
                "\n"
                "Environment:\n"
                "  VISUAL, EDITOR  the editor \"edit\" opens (default: vi)\n"
                "\n"
                "Exit status:\n"
                "  0  the command was carried out: every change it reports was read back\n"
                "  2  the command was refused (one line on standard error says why); the\n"
                "     settings directory is as the command found it\n");
    return text;
}

QString help(const VeskCommand &command)
{
    return vtr("usage: vesk-roster %1\n\n%2\n")
        .arg(QString::fromUtf8(command.synopsis), vtr(command.details));
}

} // namespace VeskCommands
