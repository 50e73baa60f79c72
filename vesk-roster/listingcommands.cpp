// kinds, sorters and help: the commands that list what there is to choose
// from, the kinds of condition, the sorting methods and the commands.
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
