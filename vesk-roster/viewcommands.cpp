// show, filters, kinds, sorters, export, generate and help: the commands that
// only read.
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
#include "searchoption.h"
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

// The account and protocol filters offer their items in a per-process hash
// order; shown in the order of the accounts instead, so that two runs list
// them alike.
void sortAccountItems(QStringList *ids, QStringList *labels)
{
    QStringList known;
    const QList<VeskAccountConnection *> accounts
        = VeskAccountManager::getInstance()->getAccounts();
    for (const VeskAccountConnection *account : accounts) {
        if (!account)
            continue;
        known.append(account->getUid() + QLatin1Char('@') + account->getProtocolName());
        if (!known.contains(account->getProtocolName()))
            known.append(account->getProtocolName());
    }
    QVector<int> order(ids->size());
    std::iota(order.begin(), order.end(), 0);
    auto rank = [&](int i) {
        const int at = known.indexOf(ids->at(i));
        return at < 0 ? known.size() : at;
    };
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
        const int x = rank(a);
        const int y = rank(b);
        return x != y ? x < y : ids->at(a) < ids->at(b);
    });
    QStringList sortedIds;
    QStringList sortedLabels;
    for (int i : qAsConst(order)) {
        sortedIds.append(ids->at(i));
        sortedLabels.append(labels->value(i));
    }
    *ids = sortedIds;
    *labels = sortedLabels;
}

} // namespace

namespace VeskCommands {

void show(VeskCommandContext &context)
{
    const VeskRosterQuickSearch search = takeSearchOptions(&context.args);
    context.expectArgs(0, 0);
    warnUnreadable(context);
    const VeskLibrarySession &session = *context.session;
    const VeskRosterView view(
        VeskStandIn::entries(), session.filters(), session.sorters(), &search);
    const QString filterId = session.filters()->getCurrentFilterName();
    const QString method = methodInUse(session);

    if (context.json) {
        VeskJsonWriter json;
        json.beginObject();
        json.key("filter");
        json.value(filterId);
        json.key("sorter");
        json.value(method);
        if (!search.isEmpty()) {
            json.key("search");
            json.value(search.text());
            json.key("every_entry");
            json.value(search.scope() == VeskRosterQuickSearch::EveryEntry);
        }
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
    footer.addHeading(search.isEmpty()
            ? vtr("%1 of %2 entries shown").arg(view.shownEntries).arg(view.rosterEntries)
            : vtr("%1 of %2 entries shown, searching for %3")
                  .arg(view.shownEntries)
                  .arg(view.rosterEntries)
                  .arg(shownName(search.text())),
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

void kinds(VeskCommandContext &context)
{
    context.expectArgs(0, 0);
    VeskRosterFiltersManager *manager = context.session->filters();
    const VeskFilterBuilder builder(manager, [](const QString &) {});
    const QStringList kindIds = builder.kinds();

    VeskJsonWriter json;
    json.beginObject();
    json.key("kinds");
    json.beginArray();
    using Cell = VeskTextTable::Cell;
    VeskTextTable table;
    for (const QString &kind : kindIds) {
        std::unique_ptr<VeskRosterFilter> filter(
            manager->createFilter(kind, VeskRosterFilter::RosterFilterDefault));
        const QList<VeskField> fields = filter ? filter->getConfiguration() : QList<VeskField>();
        json.beginObject();
        json.key("id");
        json.value(kind);
        json.key("name");
        json.value(manager->getFilterName(kind));
        json.key("fields");
        json.beginArray();
        const QString kindName = manager->getFilterName(kind);
        table.addHeading(kindName == kind ? kind : vtr("%1 (%2)").arg(kind, kindName));
        for (const VeskField &field : fields) {
            const bool combo = field.getKind() == VeskField::ComboBox;
            const QString value = combo ? field.getSelectedId() : field.getText();
            json.beginObject();
            json.key("id");
            json.value(field.getId());
            json.key("kind");
            json.value(combo ? "combo_box" : "line_edit");
            QStringList items;
            if (combo) {
                json.key("items");
                json.beginArray();
                QStringList ids = field.getComboBoxIds();
                QStringList labels = field.getComboBoxLabels();
                if (kind == QLatin1String("account") || kind == QLatin1String("protocol"))
                    sortAccountItems(&ids, &labels);
                for (int i = 0; i < ids.size(); ++i) {
                    json.beginObject();
                    json.key("id");
                    json.value(ids.at(i));
                    json.key("label");
                    json.value(labels.value(i));
                    json.endObject();
                    items.append(labels.value(i) == ids.at(i) || labels.value(i).isEmpty()
                            ? ids.at(i)
                            : vtr("%1 (%2)").arg(ids.at(i), labels.value(i)));
                }
                json.endArray();
            }
            json.key("value");
            json.value(value);
            json.endObject();
            table.addRow(
                { Cell(field.getId(), VeskTextTable::Bold),
                    Cell(combo ? vtr("combo box") : vtr("line edit")),
                    Cell(vtr("value \"%1\"").arg(value)),
                    Cell(combo ? vtr("items: %1")
                                     .arg(items.isEmpty() ? vtr("(none)")
                                                          : items.join(QLatin1String(", ")))
                               : vtr("any text"),
                        VeskTextTable::Dim) },
                2);
        }
        json.endArray();
        json.endObject();
    }
    json.endArray();
    json.endObject();
    if (context.json)
        context.out->printBytes(json.toJson());
    else
        context.out->printTable(table);
}

void sorters(VeskCommandContext &context)
{
    context.expectArgs(0, 0);
    const VeskRosterSortersManager *sorters = context.session->sorters();
    QStringList comparators = sorters->getAvailableSorters();
    comparators.sort();
    const QStringList methods = sorters->getSorters();
    const QString defaultMethod = sorters->getDefault();

    if (context.json) {
        VeskJsonWriter json;
        json.beginObject();
        json.key("comparators");
        json.beginArray();
        for (const QString &id : comparators) {
            json.beginObject();
            json.key("id");
            json.value(id);
            json.key("name");
            json.value(sorters->getSorterDisplay(id));
            json.endObject();
        }
        json.endArray();
        json.key("methods");
        json.beginArray();
        for (const QString &method : methods) {
            json.beginObject();
            json.key("name");
            json.value(method);
            json.key("comparators");
            json.beginArray();
            const QStringList ids = sorters->getSorters(method);
            const QStringList flags = sorters->getSortersAscending(method);
            for (int i = 0; i < ids.size(); ++i) {
                json.beginObject();
                json.key("id");
                json.value(ids.at(i));
                json.key("ascending");
                if (i < flags.size())
                    json.value(flags.at(i) == QLatin1String("t"));
                else
                    json.null();
                json.endObject();
            }
            json.endArray();
            json.endObject();
        }
        json.endArray();
        json.key("default");
        json.value(defaultMethod);
        json.endObject();
        context.out->printBytes(json.toJson());
        return;
    }

    using Cell = VeskTextTable::Cell;
    VeskTextTable table;
    table.addHeading(vtr("Comparators"));
    for (const QString &id : comparators)
        table.addRow({ Cell(id, VeskTextTable::Bold), Cell(sorters->getSorterDisplay(id)) }, 2);
    table.addHeading(QString());
    table.addHeading(defaultMethod.isEmpty()
            ? vtr("Methods (no default method: the built-in order)")
            : vtr("Methods (default: %1)").arg(shownName(defaultMethod)));
    if (methods.isEmpty())
        table.addHeading(
            vtr("  (none; store one with \"sorter NAME ID[:asc|:desc]...\")"), VeskTextTable::Dim);
    for (const QString &method : methods) {
        table.addRow(
            { Cell(shownName(method), VeskTextTable::Bold),
                Cell(method == defaultMethod ? vtr("default") : QString(), VeskTextTable::Green),
                Cell(describeMethod(sorters, method)) },
            2);
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

void help(VeskCommandContext &context)
{
    context.expectArgs(0, 1);
    if (context.args.isEmpty()) {
        context.out->print(usage());
        return;
    }
    const VeskCommand *command = find(context.args.at(0));
    if (!command) {
        QStringList names;
        for (const VeskCommand &known : all())
            names.append(QString::fromUtf8(known.name));
        refuse(vtr("unknown command \"%1\"; commands: %2")
                   .arg(context.args.at(0), names.join(QLatin1String(", "))));
    }
    context.out->print(VeskCommands::help(*command));
}

} // namespace VeskCommands
