// use, new, add, drop, remove, rename, up, down, advanced and import: the
// commands that choose and edit filters.
#include "commands.h"
#include "commands_p.h"
#include "filterbuilder.h"
#include "filterdefinition.h"
#include "librarysession.h"
#include "output.h"
#include "refusal.h"
#include "sessiontext_p.h"

#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrostersortersmanager.h>

#include <QFile>

#include <memory>
#include <vector>

namespace {

const QString defaultId = QStringLiteral("default");

// Said whenever a command would store a stack without children.
QString emptyStackReason()
{
    return vtr("a stack stored without children does not read back as it was (an empty filter "
               "rejects every contact after the next start, an empty nested stack is skipped), "
               "so it is never stored");
}

VeskFilterBuilder builderFor(const VeskCommandContext &context)
{
    const VeskOutput *out = context.out;
    return VeskFilterBuilder(
        context.session->filters(), [out](const QString &message) { out->warn(message); });
}

// Any other name will do: the library makes a file name of any text.
void checkNewName(const VeskLibrarySession &session, const QString &name, const QString &hint)
{
    if (name.isEmpty())
        refuse(vtr("a filter name cannot be empty"));
    if (session.isRegistered(name))
        refuse(vtr("a filter named \"%1\" already exists; %2").arg(name, hint));
}

VeskRosterFiltersStack *addStack(
    VeskLibrarySession &session, const QString &name, VeskRosterFilter::RosterFilterType type)
{
    QString error;
    VeskRosterFiltersStack *stack = session.createStack(name, type, &error);
    if (!stack)
        refuse(error);
    return stack;
}

// The top-level stack to edit: refuses "default", unknown names and filters
// whose file could not be read.
VeskRosterFiltersStack *editableStack(const VeskLibrarySession &session, const QString &id)
{
    if (id == defaultId) {
        refuse(vtr("the default filter cannot be edited; create a filter of your own with "
                   "\"new NAME and|or CONDITION...\""));
    }
    QString error;
    if (!session.isEditable(id, &error)) {
        if (session.stack(id)) {
            refuse(vtr("%1: remove it with \"remove %2\" or replace it with \"import FILE --as %2 "
                       "--replace\"")
                       .arg(error, shownName(id)));
        }
        refuse(error);
    }
    return session.stack(id);
}

QString display(VeskRosterFilter *filter)
{
    return filter->display();
}

std::vector<std::unique_ptr<VeskRosterFilter>> buildConditions(
    const VeskFilterBuilder &builder, const QStringList &args)
{
    std::vector<std::unique_ptr<VeskRosterFilter>> children;
    const QList<QStringList> conditions = VeskFilterBuilder::splitConditions(args);
    for (const QStringList &condition : conditions)
        children.push_back(builder.leaf(condition));
    return children;
}

struct ChildPath
{
    QString text;
    QString name;
    QList<int> indexes;
};

ChildPath parsePath(const QString &text)
{
    ChildPath path;
    path.text = text;
    const QStringList parts = text.split(QLatin1Char('/'));
    path.name = parts.first();
    for (int i = 1; i < parts.size(); ++i) {
        const QString &part = parts.at(i);
        bool digits = !part.isEmpty();
        for (const QChar c : part)
            digits = digits && c >= QLatin1Char('0') && c <= QLatin1Char('9');
        bool ok = false;
        const int index = part.toInt(&ok);
        if (!digits || !ok) {
            refuse(vtr("bad child path \"%1\": \"%2\" is not a child index (0, 1, 2...)")
                       .arg(text, part));
        }
        path.indexes.append(index);
    }
    return path;
}

QString describeChild(VeskRosterFilter *child)
{
    if (child->getType() == VeskRosterFilter::RosterFilterLeaf)
        return vtr("%1 \"%2\"").arg(child->id(), child->display());
    return vtr("stack %1").arg(child->display());
}

// The child at path.indexes[i] for i < count, checked at every step.
VeskRosterFilter *childAt(VeskRosterFiltersStack *top, const ChildPath &path, int count)
{
    VeskRosterFilter *node = top;
    for (int i = 0; i < count; ++i) {
        auto *stack = dynamic_cast<VeskRosterFiltersStack *>(node);
        if (!stack || node->getType() == VeskRosterFilter::RosterFilterLeaf) {
            refuse(vtr("bad child path \"%1\": it goes through the condition %2, which has no "
                       "children")
                       .arg(path.text, describeChild(node)));
        }
        const QList<VeskRosterFilter *> children = stack->getFilters();
        const int index = path.indexes.at(i);
        if (index >= children.size()) {
            refuse(children.isEmpty()
                    ? vtr("bad child path \"%1\": index %2 is out of range (the stack has no "
                          "children)")
                          .arg(path.text)
                          .arg(index)
                    : children.size() == 1
                    ? vtr("bad child path \"%1\": index %2 is out of range (the stack has one "
                          "child, index 0)")
                          .arg(path.text)
                          .arg(index)
                    : vtr("bad child path \"%1\": index %2 is out of range (the stack has %3 "
                          "children, 0 to %4)")
                          .arg(path.text)
                          .arg(index)
                          .arg(children.size())
                          .arg(children.size() - 1));
        }
        node = children.at(index);
    }
    return node;
}

VeskRosterFiltersStack *stackAt(VeskRosterFiltersStack *top, const ChildPath &path, int count)
{
    VeskRosterFilter *node = childAt(top, path, count);
    auto *stack = dynamic_cast<VeskRosterFiltersStack *>(node);
    if (!stack || node->getType() == VeskRosterFilter::RosterFilterLeaf) {
        refuse(vtr("bad child path \"%1\": it leads to the condition %2, not to a stack")
                   .arg(path.text, describeChild(node)));
    }
    return stack;
}

void refuseUnknownFilter(const VeskLibrarySession &session, const QString &id)
{
    QStringList names;
    const QStringList ids = session.filters()->getFilterNames();
    for (const QString &known : ids)
        names.append(shownName(known));
    refuse(vtr("unknown filter \"%1\"; filters: %2").arg(id, quotedList(names)));
}

// Definitions are small: a filter's file holds at most a mebibyte.
const qint64 maximumDefinitionSize = 16 * 1024 * 1024;

QByteArray readDefinition(const QString &path)
{
    QFile file;
    if (path == QLatin1String("-")) {
        if (!file.open(stdin, QIODevice::ReadOnly))
            refuse(vtr("cannot read the definition from standard input"));
    } else {
        file.setFileName(path);
        if (!file.open(QIODevice::ReadOnly)) {
            refuse(vtr("cannot read the definition file \"%1\": %2").arg(path, file.errorString()));
        }
    }
    QByteArray document;
    while (document.size() <= maximumDefinitionSize) {
        const QByteArray chunk = file.read(maximumDefinitionSize + 1 - document.size());
        if (chunk.isEmpty())
            break;
        document += chunk;
    }
    if (document.size() > maximumDefinitionSize) {
        refuse(vtr("the definition is larger than %1 bytes; no filter that can be stored is "
                   "that large")
                   .arg(maximumDefinitionSize));
    }
    return document;
}

} // namespace

namespace VeskCommands {

void use(VeskCommandContext &context)
{
    context.expectArgs(1, 1);
    VeskLibrarySession &session = *context.session;
    const QString id = typedFilterName(session, context.args.at(0));
    if (!session.isRegistered(id))
        refuseUnknownFilter(session, id);
    QString error;
    require(session.setCurrentFilter(id, &error), error);
    context.out->print(vtr("using %1\n").arg(shownName(id)));
}

void newFilter(VeskCommandContext &context)
{
    context.expectArgs(2);
    VeskLibrarySession &session = *context.session;
    const QString name = context.args.at(0);
    checkNewName(session, name, vtr("choose another name, or edit it with \"add\" and \"drop\""));
    const VeskRosterFilter::RosterFilterType type
        = VeskFilterBuilder::parseType(context.args.at(1));
    if (context.args.size() < 3) {
        refuse(vtr("\"new\" needs at least one CONDITION: %1; for example: new %2 %3 display "
                   "is_or_not=contains display_filter_regexp=bob")
                   .arg(emptyStackReason(), name, context.args.at(1)));
    }
    auto children = buildConditions(builderFor(context), context.args.mid(2));

    VeskRosterFiltersStack *stack = addStack(session, name, type);
    for (auto &child : children)
        stack->appendFilter(child.release());
    QString error;
    require(session.storeNewStack(stack, &error), error);
    context.out->print(vtr("created %1: %2\n").arg(shownName(name), display(stack)));
}

void add(VeskCommandContext &context)
{
    context.expectArgs(2);
    VeskLibrarySession &session = *context.session;
    ChildPath path = parsePath(context.args.at(0));
    path.name = typedFilterName(session, path.name);
    VeskRosterFiltersStack *top = editableStack(session, path.name);
    VeskRosterFiltersStack *target = stackAt(top, path, path.indexes.size());
    const VeskFilterBuilder builder = builderFor(context);

    const QStringList rest = context.args.mid(1);
    std::unique_ptr<VeskRosterFilter> child;
    if (rest.first() == QLatin1String("stack_filter")) {
        if (rest.size() < 2) {
            refuse(vtr("missing argument: a nested stack needs \"and\" or \"or\" and at least "
                       "one CONDITION"));
        }
        const VeskRosterFilter::RosterFilterType type = VeskFilterBuilder::parseType(rest.at(1));
        if (rest.size() < 3) {
            refuse(vtr("a nested stack needs at least one CONDITION: %1").arg(emptyStackReason()));
        }
        child = builder.nestedStack(type, buildConditions(builder, rest.mid(2)));
    } else {
        const QList<QStringList> conditions = VeskFilterBuilder::splitConditions(rest);
        if (conditions.size() != 1) {
            refuse(vtr("\"add\" appends one CONDITION, and %1 were given; append several at once "
                       "as a nested stack: add %2 stack_filter and|or CONDITION...")
                       .arg(conditions.size())
                       .arg(path.text));
        }
        child = builder.leaf(conditions.first());
    }
    target->appendFilter(child.release());
    QString error;
    require(session.storeStack(top, &error), error);
    context.out->print(vtr("%1 is now: %2\n").arg(shownName(top->id()), display(top)));
}

void drop(VeskCommandContext &context)
{
    context.expectArgs(1, 1);
    VeskLibrarySession &session = *context.session;
    ChildPath path = parsePath(context.args.at(0));
    path.name = typedFilterName(session, path.name);
    VeskRosterFiltersStack *top = editableStack(session, path.name);
    if (path.indexes.isEmpty()) {
        refuse(vtr("\"drop\" needs the path of a child, NAME/I (0-based); to delete the whole "
                   "filter use \"remove %1\"")
                   .arg(shownName(path.name)));
    }
    VeskRosterFiltersStack *parent = stackAt(top, path, path.indexes.size() - 1);
    VeskRosterFilter *child = childAt(top, path, path.indexes.size());
    if (parent->getFilters().size() == 1) {
        if (parent == top) {
            refuse(vtr("\"%1\" is the last child of %2: %3; to delete the filter, use \"remove "
                       "%2\"")
                       .arg(path.text, shownName(path.name), emptyStackReason()));
        }
        ChildPath parentPath = path;
        parentPath.indexes.removeLast();
        QStringList parts(shownName(path.name));
        for (int index : qAsConst(parentPath.indexes))
            parts.append(QString::number(index));
        refuse(vtr("\"%1\" is the last child of its nested stack: %2; drop the nested stack "
                   "itself with \"drop %3\", or \"remove %4\" to delete the whole filter")
                   .arg(path.text, emptyStackReason(), parts.join(QLatin1Char('/')),
                       shownName(path.name)));
    }
    parent->removeFilter(child);
    delete child;
    QString error;
    require(session.storeStack(top, &error), error);
    context.out->print(vtr("%1 is now: %2\n").arg(shownName(top->id()), display(top)));
}

void remove(VeskCommandContext &context)
{
    context.expectArgs(1, 1);
    VeskLibrarySession &session = *context.session;
    const QString id = typedFilterName(session, context.args.at(0));
    if (id == defaultId) {
        refuse(vtr("the default filter cannot be edited; create a filter of your own with "
                   "\"new NAME and|or CONDITION...\""));
    }
    if (!session.stack(id))
        refuseUnknownFilter(session, id);
    QString error;
    require(session.removeStack(id, &error), error);
    context.out->print(vtr("removed %1\n").arg(shownName(id)));
}

void rename(VeskCommandContext &context)
{
    context.expectArgs(2, 2);
    VeskLibrarySession &session = *context.session;
    const QString oldId = typedFilterName(session, context.args.at(0));
    const QString newId = context.args.at(1);
    if (oldId == defaultId) {
        refuse(vtr("the default filter cannot be edited; create a filter of your own with "
                   "\"new NAME and|or CONDITION...\""));
    }
    if (!session.stack(oldId))
        refuseUnknownFilter(session, oldId);
    checkNewName(session, newId, vtr("choose another name"));
    QString error;
    require(session.renameStack(oldId, newId, &error), error);
    context.out->print(vtr("renamed %1 to %2\n").arg(shownName(oldId), shownName(newId)));
}

namespace {
    void move(VeskCommandContext &context, bool up)
    {
        context.expectArgs(1, 1);
        VeskLibrarySession &session = *context.session;
        const QString id = typedFilterName(session, context.args.at(0));
        if (!session.isRegistered(id))
            refuseUnknownFilter(session, id);
        QString error;
        require(up ? session.moveUp(id, &error) : session.moveDown(id, &error), error);
        QStringList order;
        const QStringList ids = session.filters()->getFilterNames();
        for (const QString &known : ids)
            order.append(shownName(known));
        context.out->print(
            vtr("moved %1 %2: %3\n")
                .arg(shownName(id), up ? vtr("up") : vtr("down"), order.join(QLatin1String(", "))));
    }
} // namespace

void up(VeskCommandContext &context)
{
    move(context, true);
}

void down(VeskCommandContext &context)
{
    move(context, false);
}

void advanced(VeskCommandContext &context)
{
    context.expectArgs(2, 2);
    VeskLibrarySession &session = *context.session;
    VeskRosterFiltersStack *stack
        = editableStack(session, typedFilterName(session, context.args.at(0)));
    const QString flag = context.args.at(1);
    if (flag != QLatin1String("on") && flag != QLatin1String("off"))
        refuse(vtr("the advanced flag is \"on\" or \"off\", not \"%1\"").arg(flag));
    stack->setAdvancedMode(flag == QLatin1String("on"));
    QString error;
    require(session.storeStack(stack, &error), error);
    context.out->print(vtr("%1: advanced %2\n").arg(shownName(stack->id()), flag));
}

void importFilter(VeskCommandContext &context)
{
    QString file;
    QString as;
    bool hasAs = false;
    bool replace = false;
    const QStringList &args = context.args;
    for (int i = 0; i < args.size(); ++i) {
        const QString &arg = args.at(i);
        if (arg == QLatin1String("--as")) {
            if (i + 1 >= args.size())
                refuse(vtr("missing argument: --as needs a NAME"));
            as = args.at(++i);
            hasAs = true;
        } else if (arg == QLatin1String("--replace")) {
            replace = true;
        } else if (arg.startsWith(QLatin1String("--"))) {
            refuse(vtr("unknown option \"%1\" for import; options: --as NAME, --replace").arg(arg));
        } else if (file.isNull()) {
            file = arg;
        } else {
            refuse(vtr("unexpected argument \"%1\": usage: vesk-roster %2")
                       .arg(arg, QString::fromUtf8(context.command->synopsis)));
        }
    }
    if (file.isNull()) {
        refuse(vtr("missing argument: usage: vesk-roster %1")
                   .arg(QString::fromUtf8(context.command->synopsis)));
    }

    VeskLibrarySession &session = *context.session;
    const QByteArray document = readDefinition(file);
    VeskFilterDefinition definition = VeskFilterDefinition::read(document, builderFor(context));
    if (!hasAs && !definition.hasName)
        refuse(vtr("the definition has no \"name\"; give one with --as NAME"));
    QString name = hasAs ? as : definition.name;
    if (replace)
        name = typedFilterName(session, name);
    if (name == defaultId)
        refuse(
            vtr("the default filter cannot be edited; import under another name with --as NAME"));
    const bool replacing = replace && session.stack(name);
    if (!replacing) {
        checkNewName(
            session, name, vtr("choose another name with --as NAME, or replace it with --replace"));
    }
    if (!definition.sorter.isEmpty()
        && !session.sorters()->getSorters().contains(definition.sorter)) {
        context.out->warn(vtr("the sorting method \"%1\" is not stored here; the filter keeps the "
                              "name and sorts by the built-in order until a method of that name "
                              "is stored")
                              .arg(definition.sorter));
    }

    QString error;
    if (replacing) {
        // The old filter keeps its place, its file and its content until the
        // new one is stored and read back.
        VeskRosterFiltersStack replacement(QString(), definition.type);
        for (auto &child : definition.children)
            replacement.appendFilter(child.release());
        replacement.setAdvancedMode(definition.advanced);
        replacement.setSorter(definition.sorter);
        if (!session.replaceStack(name, &replacement, &error))
            refuse(vtr("%1; the filter \"%2\" stays as it was").arg(error, shownName(name)));
        context.out->print(
            vtr("replaced %1: %2\n").arg(shownName(name), display(session.stack(name))));
        return;
    }
    VeskRosterFiltersStack *stack = addStack(session, name, definition.type);
    for (auto &child : definition.children)
        stack->appendFilter(child.release());
    stack->setAdvancedMode(definition.advanced);
    stack->setSorter(definition.sorter);
    require(session.storeNewStack(stack, &error), error);
    context.out->print(vtr("imported %1: %2\n").arg(shownName(name), display(stack)));
}

} // namespace VeskCommands
