// sorter, sorter-remove, sorter-default and sort: the commands that edit and
// choose sorting methods.
#include "commands.h"
#include "commands_p.h"
#include "librarysession.h"
#include "refusal.h"
#include "text_p.h"

#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrostersortersmanager.h>

namespace {

// Refuses a name that is not a stored method, listing those that are.
void checkMethod(const VeskRosterSortersManager *sorters, const QString &name)
{
    if (!sorters->getSorters().contains(name)) {
        refuse(vtr("unknown sorting method \"%1\"; methods: %2")
                   .arg(name, quotedList(sorters->getSorters())));
    }
}

} // namespace

namespace VeskCommands {

void sorter(VeskCommandContext &context)
{
    context.expectArgs(2);
    VeskRosterSortersManager *sorters = context.session->sorters();
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
    // A method is read with one direction per comparator; both are stored
    // before anything makes it current.
    sorters->addSorter(name, ids);
    sorters->setSorterAscending(name, flags);
}

void sorterRemove(VeskCommandContext &context)
{
    context.expectArgs(1, 1);
    VeskRosterSortersManager *sorters = context.session->sorters();
    checkMethod(sorters, context.args.at(0));
    sorters->removeSorter(context.args.at(0));
}

void sorterDefault(VeskCommandContext &context)
{
    context.expectArgs(1, 1);
    VeskRosterSortersManager *sorters = context.session->sorters();
    checkMethod(sorters, context.args.at(0));
    sorters->setDefault(context.args.at(0));
}

void sort(VeskCommandContext &context)
{
    context.expectArgs(1, 1);
    VeskLibrarySession &session = *context.session;
    const QString name = context.args.at(0);
    checkMethod(session.sorters(), name);
    session.sorters()->setCurrentSorter(name);
    // The method is kept by the current filter; a stack keeps it in its file,
    // the default filter as the default method (the sorters manager stores that).
    const QString current = session.filters()->getCurrentFilterName();
    if (VeskRosterFiltersStack *stack = session.filters()->getStackFilter(current))
        stack->writeFilterSettings();
}

} // namespace VeskCommands
