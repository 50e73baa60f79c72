// sorter, sorter-remove, sorter-default and sort: the commands that edit and
// choose sorting methods.
#include "commands.h"
#include "commands_p.h"
#include "librarysession.h"
#include "output.h"
#include "refusal.h"
#include "sessiontext_p.h"

#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrostersortersmanager.h>

namespace {

// Refuses a name that is not a stored method, listing those that are.
void checkMethod(const VeskRosterSortersManager *sorters, const QString &name)
{
    if (!sorters->getSorters().contains(name)) {
        QStringList names;
        const QStringList methods = sorters->getSorters();
        for (const QString &method : methods)
            names.append(shownName(method));
        refuse(vtr("unknown sorting method \"%1\"; methods: %2").arg(name, quotedList(names)));
    }
}

} // namespace

namespace VeskCommands {

void sorter(VeskCommandContext &context)
{
    context.expectArgs(2);
    VeskLibrarySession &session = *context.session;
    VeskRosterSortersManager *sorters = session.sorters();
    const QString name = context.args.at(0);
    if (name.isEmpty())
        refuse(vtr("a sorting method's name cannot be empty"));
    QStringList known = sorters->getAvailableSorters();
    known.sort();
    QStringList ids;
    QStringList flags;
    for (int i = 1; i < context.args.size(); ++i) {
        const QString &arg = context.args.at(i);
        const int colon = arg.indexOf(QLatin1Char(':'));
        const QString id = colon < 0 ? arg : arg.left(colon);
        const QString direction = colon < 0 ? QStringLiteral("asc") : arg.mid(colon + 1);
        if (!known.contains(id))
            refuse(vtr("unknown comparator \"%1\"; comparators: %2").arg(id, quotedList(known)));
        if (direction != QLatin1String("asc") && direction != QLatin1String("desc")) {
            refuse(vtr("unknown direction \"%1\" in \"%2\"; write ID, ID:asc or ID:desc")
                       .arg(direction, arg));
        }
        ids.append(id);
        flags.append(direction == QLatin1String("asc") ? QStringLiteral("t") : QStringLiteral("f"));
    }
    QString error;
    require(session.storeSorter(name, ids, flags, &error), error);
    context.out->print(vtr("stored sorting method %1: %2\n")
                           .arg(shownName(name), context.args.mid(1).join(QLatin1String(", "))));
}

void sorterRemove(VeskCommandContext &context)
{
    context.expectArgs(1, 1);
    VeskLibrarySession &session = *context.session;
    const QString name = typedMethodName(session.sorters(), context.args.at(0));
    checkMethod(session.sorters(), name);
    const bool wasDefault = session.sorters()->getDefault() == name;
    QString error;
    require(session.removeSorter(name, &error), error);
    context.out->print(wasDefault ? vtr("removed sorting method %1; it was the default, so the "
                                        "built-in order (presence, then name) is the default now\n")
                                        .arg(shownName(name))
                                  : vtr("removed sorting method %1\n").arg(shownName(name)));
}

void sorterDefault(VeskCommandContext &context)
{
    context.expectArgs(1, 1);
    VeskLibrarySession &session = *context.session;
    QString error;
    if (context.args.at(0) == QLatin1String("--none")) {
        require(session.setDefaultSorter(QString(), &error), error);
        context.out->print(vtr("no default sorting method: the built-in order (presence, then "
                               "name)\n"));
        return;
    }
    const QString name = typedMethodName(session.sorters(), context.args.at(0));
    checkMethod(session.sorters(), name);
    require(session.setDefaultSorter(name, &error), error);
    context.out->print(vtr("default sorting method: %1\n").arg(shownName(name)));
}

void sort(VeskCommandContext &context)
{
    context.expectArgs(1, 1);
    VeskLibrarySession &session = *context.session;
    const QString name = typedMethodName(session.sorters(), context.args.at(0));
    checkMethod(session.sorters(), name);
    const QString current = session.filters()->getCurrentFilterName();
    QString error;
    if (session.stack(current) && !session.isEditable(current, &error))
        refuse(error);
    require(session.sortCurrentFilter(name, &error), error);
    context.out->print(vtr("%1 is sorted by %2\n").arg(shownName(current), shownName(name)));
}

} // namespace VeskCommands
