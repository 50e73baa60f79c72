// show, filters, export and generate: the commands that print the roster
// and the stored filters.
#include "commands.h"
#include "commands_p.h"
#include "filterbuilder.h"
#include "filterdefinition.h"
#include "jsonwriter.h"
#include "librarysession.h"
#include "output.h"
#include "refusal.h"
#include "rosterfile.h"
#include "rosterview.h"
#include "sessiontext_p.h"
#include "texttable.h"

#include <veskfield.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrostersortersmanager.h>
#include <veskstandin.h>

#include <veskaccount.h>

#include <algorithm>
#include <memory>
#include <numeric>

namespace {

const QString defaultId = QStringLiteral("default");

// The method in use: the current filter's, or the default method while the
// default filter is current.
QString methodInUse(const VeskLibrarySession &session)
{
    if (session.filters()->getCurrentFilterName() == defaultId)
        return session.sorters()->getDefault();
    VeskRosterFilter *current = session.filters()->getCurrentFilter();
    return current ? current->getSorter() : QString();
}

QString methodOf(const VeskLibrarySession &session, const QString &id, VeskRosterFilter *filter)
{
    return id == defaultId ? session.sorters()->getDefault() : filter->getSorter();
}

bool isAdvanced(VeskRosterFilter *filter)
{
    auto *stack = dynamic_cast<VeskRosterFiltersStack *>(filter);
    return stack && stack->isAdvancedMode();
}

VeskTextTable::Style presenceStyle(const QString &id)
{
    if (id == QLatin1String("online") || id == QLatin1String("chat"))
        return VeskTextTable::Green;
    if (id == QLatin1String("away") || id == QLatin1String("xa") || id == QLatin1String("na"))
        return VeskTextTable::Yellow;
    if (id == QLatin1String("dnd") || id == QLatin1String("occupied"))
        return VeskTextTable::Red;
    if (id == QLatin1String("offline"))
        return VeskTextTable::Dim;
    return VeskTextTable::Plain;
}

void writeEntry(VeskJsonWriter &json, const VeskRosterView::Entry &entry)
{
    json.beginObject();
    json.key("display");
    json.value(entry.display);
    json.key("kind");
    json.value(entry.temporary ? "temporary" : "contact");
    json.key("group");
    if (entry.hasGroup)
        json.value(entry.group);
    else
        json.null();
    json.key("account");
    if (entry.hasAccount)
        json.value(entry.account);
    else
        json.null();
    json.key("presence");
    json.value(entry.presence);
    json.key("description");
    json.value(entry.description);
    json.key("chats_count");
    if (entry.hasChats)
        json.value(entry.chats);
    else
        json.null();
    json.endObject();
}

QVector<VeskTextTable::Cell> entryRow(const VeskRosterView::Entry &entry)
{
    using Cell = VeskTextTable::Cell;
    return { Cell(entry.display),
        Cell(entry.temporary ? vtr("temporary") : QString(), VeskTextTable::Cyan),
        Cell(entry.presence, presenceStyle(entry.presence)),
        Cell(entry.hasChats ? QString::number(entry.chats) : QStringLiteral("-")),
        Cell(entry.account), Cell(entry.description, VeskTextTable::Dim) };
}

// Start-up passes over a file it cannot read without a word; the listings
// say which filter it was and what to do.
void warnUnreadable(const VeskCommandContext &context)
{
    const QList<VeskLibrarySession::Unreadable> files = context.session->unreadableFilters();
    for (const VeskLibrarySession::Unreadable &file : files) {
        if (file.id.isEmpty()) {
            context.out->warn(vtr("the file %1 is not read as a filter: %2; move it out of the "
                                  "filter directory")
                                  .arg(file.path, file.reason));
        } else {
            context.out->warn(vtr("the filter \"%1\" could not be read from %2: %3; remove it "
                                  "with \"remove %1\" or replace it with \"import FILE --as %1 "
                                  "--replace\"")
                                  .arg(shownName(file.id), file.path, file.reason));
        }
    }
}

} // namespace

// "name ↑, chats_count ↓", or the built-in order when the method has no
// comparators.
QString describeMethod(const VeskRosterSortersManager *sorters, const QString &name)
{
    const QStringList ids = sorters->getSorters(name);
    if (ids.isEmpty())
        return vtr("built-in order: presence, then name");
    const QStringList flags = sorters->getSortersAscending(name);
    QStringList parts;
    for (int i = 0; i < ids.size(); ++i) {
        const QString flag = flags.value(i);
        parts.append(ids.at(i)
            + (i >= flags.size()                 ? QString()
                    : flag == QLatin1String("t") ? vtr(" ascending")
                                                 : vtr(" descending")));
    }
    return parts.join(QLatin1String(", "));
}

namespace VeskCommands {

void show(VeskCommandContext &context)
{
    context.expectArgs(0, 0);
    warnUnreadable(context);
    const VeskLibrarySession &session = *context.session;
    const VeskRosterView view(VeskStandIn::entries(), session.filters(), session.sorters());
    const QString filterId = session.filters()->getCurrentFilterName();
    const QString method = methodInUse(session);

    if (context.json) {
        VeskJsonWriter json;
        json.beginObject();
        json.key("filter");
        json.value(filterId);
        json.key("sorter");
        json.value(method);
        json.key("groups");
        json.beginArray();
        for (const VeskRosterView::Group &group : view.groups) {
            json.beginObject();
            json.key("name");
            json.value(group.name);
            json.key("entries");
            json.beginArray();
            for (const VeskRosterView::Entry &entry : group.entries)
                writeEntry(json, entry);
            json.endArray();
            json.endObject();
        }
        json.endArray();
        json.key("ungrouped");
        json.beginArray();
        for (const VeskRosterView::Entry &entry : view.ungrouped)
            writeEntry(json, entry);
        json.endArray();
        json.endObject();
        context.out->printBytes(json.toJson());
        return;
    }

    VeskTextTable title;
    title.addHeading(vtr("filter %1 · sorted by %2")
                         .arg(shownName(filterId),
                             method.isEmpty() ? describeMethod(session.sorters(), method)
                                              : vtr("%1 (%2)").arg(shownName(method),
                                                  describeMethod(session.sorters(), method))),
        VeskTextTable::Dim);
    title.addHeading(QString());

    VeskTextTable table;
    for (const VeskRosterView::Group &group : view.groups) {
        table.addHeading(group.name);
        for (const VeskRosterView::Entry &entry : group.entries)
            table.addRow(entryRow(entry), 2);
    }
    if (!view.ungrouped.isEmpty()) {
        table.addHeading(vtr("(no group)"), VeskTextTable::Dim);
        for (const VeskRosterView::Entry &entry : view.ungrouped)
            table.addRow(entryRow(entry), 2);
    }
    VeskTextTable footer;
    footer.addHeading(QString());
    footer.addHeading(vtr("%1 of %2 entries shown").arg(view.shownEntries).arg(view.rosterEntries),
        VeskTextTable::Dim);
    context.out->printTable(title);
    context.out->printTable(table);
    context.out->printTable(footer);
}

void filters(VeskCommandContext &context)
{
    context.expectArgs(0, 0);
    warnUnreadable(context);
    const VeskLibrarySession &session = *context.session;
    const QString current = session.filters()->getCurrentFilterName();
    const QStringList ids = session.filters()->getFilterNames();

    if (context.json) {
        VeskJsonWriter json;
        json.beginObject();
        json.key("current");
        json.value(current);
        json.key("filters");
        json.beginArray();
        for (const QString &id : ids) {
            VeskRosterFilter *filter = session.filter(id);
            if (!filter)
                continue;
            json.beginObject();
            json.key("id");
            json.value(id);
            json.key("type");
            json.value(VeskFilterBuilder::typeName(filter->getType()));
            json.key("sorter");
            json.value(methodOf(session, id, filter));
            json.key("advanced");
            json.value(isAdvanced(filter));
            json.key("display");
            json.value(filter->display());
            json.endObject();
        }
        json.endArray();
        json.endObject();
        context.out->printBytes(json.toJson());
        return;
    }

    using Cell = VeskTextTable::Cell;
    VeskTextTable table;
    table.setHeader(
        { QString(), vtr("ID"), vtr("TYPE"), vtr("SORTER"), vtr("ADVANCED"), vtr("DISPLAY") });
    for (const QString &id : ids) {
        VeskRosterFilter *filter = session.filter(id);
        if (!filter)
            continue;
        const bool isCurrent = id == current;
        table.addRow({ Cell(isCurrent ? QStringLiteral("*") : QString(), VeskTextTable::Green),
            Cell(shownName(id), isCurrent ? VeskTextTable::Bold : VeskTextTable::Plain),
            Cell(VeskFilterBuilder::typeName(filter->getType())),
            Cell(shownName(methodOf(session, id, filter))),
            Cell(isAdvanced(filter) ? vtr("yes") : vtr("no")),
            Cell(filter->display(), VeskTextTable::Dim) });
    }
    context.out->printTable(table);
}

void exportFilter(VeskCommandContext &context)
{
    context.expectArgs(1, 1);
    const VeskLibrarySession &session = *context.session;
    const QString id = typedFilterName(session, context.args.at(0));
    if (id == defaultId) {
        refuse(vtr("the default filter lets every entry through and has no conditions to "
                   "export"));
    }
    VeskRosterFilter *filter = session.filter(id);
    if (!filter) {
        QStringList names;
        const QStringList ids = session.filters()->getFilterNames();
        for (const QString &known : ids)
            names.append(shownName(known));
        refuse(vtr("unknown filter \"%1\"; filters: %2").arg(id, quotedList(names)));
    }
    // What export prints must import again: not the little that was read
    // of a file that could not be read.
    QString error;
    if (!session.isEditable(id, &error))
        refuse(error);
    VeskJsonWriter json;
    VeskFilterDefinition::write(
        json, id, filter, methodOf(session, id, filter), isAdvanced(filter));
    context.out->printBytes(json.toJson());
}

void generate(VeskCommandContext &context)
{
    QStringList args = context.args;
    quint32 seed = 1;
    const int seedAt = args.indexOf(QStringLiteral("--seed"));
    if (seedAt >= 0) {
        bool ok = false;
        seed = args.value(seedAt + 1).toUInt(&ok);
        if (!ok) {
            refuse(vtr("--seed needs a whole number from 0 to 4294967295, not \"%1\"")
                       .arg(args.value(seedAt + 1)));
        }
        args.erase(
            args.begin() + seedAt, args.begin() + std::min<qsizetype>(seedAt + 2, args.size()));
    }
    context.args = args;
    context.expectArgs(1, 1);
    bool ok = false;
    const int count = args.at(0).toInt(&ok);
    if (!ok || count < 0) {
        refuse(
            vtr("N must be a number of contacts from 0 to 2147483647, not \"%1\"").arg(args.at(0)));
    }
    context.out->printBytes(VeskRosterFile::generate(count, seed));
}

} // namespace VeskCommands
