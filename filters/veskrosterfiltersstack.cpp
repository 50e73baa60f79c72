#include "veskrosterfiltersstack.h"

#include "veskfilterplan_p.h"
#include "veskrosterfiltersmanager.h"
#include "veskstackfile_p.h"

#include <veskfield.h>
#include <veskxmlnode.h>

namespace {

QString typeAttribute(VeskRosterFilter::RosterFilterType type)
{
    switch (type) {
    case VeskRosterFilter::RosterFilterAnd:
        return QStringLiteral("AND");
    case VeskRosterFilter::RosterFilterOr:
        return QStringLiteral("OR");
    default:
        return QString();
    }
}

} // namespace

VeskRosterFiltersStack::VeskRosterFiltersStack(
    const QString &name, VeskRosterFilter::RosterFilterType type)
    : stackName(name)
    , type(type)
    , advanced(false)
    , plan(nullptr)
    , walks(0)
    , retired(nullptr)
    , reading(false)
{
    readFilterSettings();
}

VeskRosterFiltersStack::~VeskRosterFiltersStack()
{
    qDeleteAll(filters);
    delete plan;
    releaseRetired();
}

VeskRosterFilter::RosterFilterType VeskRosterFiltersStack::getType() const
{
    return type;
}

QString VeskRosterFiltersStack::id() const
{
    return stackName;
}

QString VeskRosterFiltersStack::name() const
{
    return stackName;
}

QString VeskRosterFiltersStack::display() const
{
    QLatin1String separator;
    switch (type) {
    case RosterFilterAnd:
        if (filters.isEmpty())
            return QStringLiteral("AND");
        separator = QLatin1String(" AND (");
        break;
    case RosterFilterOr:
        if (filters.isEmpty())
            return QStringLiteral("OR");
        separator = QLatin1String(" OR (");
        break;
    default:
        return QString();
    }

    // A child with an empty text still shows as "()", so the first child is
    // recognised by its position rather than by the text being empty.
    QString text;
    bool first = true;
    for (const VeskRosterFilter *child : filters) {
        text += first ? QLatin1String("(") : separator;
        text += child->display();
        text += QLatin1Char(')');
        first = false;
    }
    return text;
}

bool VeskRosterFiltersStack::filter(const VeskBuddy &buddy) const
{
    // AND stops at the first child that refuses, OR at the first that passes
    // (and an empty OR passes); any other type refuses. The plan holds the
    // tree as it stood when the walk began: a filter of the host's that
    // changes the tree while it is asked changes the next walk, not this one.
    return walk(buddy);
}

void VeskRosterFiltersStack::releaseRetired() const
{
    while (VeskFilterPlan *old = retired) {
        retired = old->nextRetired;
        delete old;
    }
}

void VeskRosterFiltersStack::prepare()
{
    VeskFilterPlan *fresh = new VeskFilterPlan(*this);
    if (walks > 0) {
        plan->nextRetired = retired;
        retired = plan;
    } else {
        delete plan;
    }
    plan = fresh;
    auto *parentStack = dynamic_cast<VeskRosterFiltersStack *>(getParent());
    if (parentStack && !parentStack->reading)
        parentStack->prepare();
}

void VeskRosterFiltersStack::setName(const QString &name)
{
    stackName = name;
}

void VeskRosterFiltersStack::appendFilter(VeskRosterFilter *filter)
{
    // Every child has exactly one owner and the tree has no cycle; otherwise
    // the destructor would delete a filter twice or recurse forever.
    if (!filter || filter == this || filter->getParent() || filters.contains(filter))
        return;
    for (const VeskRosterFilter *ancestor = getParent(); ancestor;
         ancestor = ancestor->getParent()) {
        if (ancestor == filter)
            return;
    }
    filter->setParent(this);
    filters.append(filter);
    prepare();
}

void VeskRosterFiltersStack::removeFilter(VeskRosterFilter *filter)
{
    if (filters.removeAll(filter) > 0) {
        filter->setParent(nullptr);
        prepare();
    }
}

QList<VeskRosterFilter *> VeskRosterFiltersStack::getFilters() const
{
    return filters;
}

void VeskRosterFiltersStack::setAdvancedMode(bool advanced)
{
    this->advanced = advanced;
}

bool VeskRosterFiltersStack::isAdvancedMode() const
{
    return advanced;
}

void VeskRosterFiltersStack::readFilterSettings()
{
    reading = true;
    readChildren();
    reading = false;
    prepare();
}

void VeskRosterFiltersStack::readChildren()
{
    const QList<VeskRosterFilter *> old = filters;
    filters.clear();
    qDeleteAll(old);

    VeskXmlNode *node = getNode();
    if (VeskRosterFilter *parentFilter = getParent()) {
        // The parent has pointed its own node at this stack's element.
        *node = *parentFilter->getNode();
    } else if (!stackName.isEmpty()) {
        const VeskStackFile::ReadResult file = VeskStackFile::read(stackName);
        if (file.status != VeskStackFile::Missing) {
            *node = VeskXmlNode(QString(), QString(), nullptr);
            // A file that is too large, too deep or carries a DTD is treated
            // like one that does not parse: the DOM is never built from it.
            if (file.status == VeskStackFile::Acceptable)
                node->setContent(file.bytes);
            setSorter(node->getAttribute(QStringLiteral("sort"), QString()));
            setAdvancedMode(
                node->getAttribute(QStringLiteral("advanced"), QString()) == QLatin1String("t"));
        }
    }

    if (node->isNull() || !node->hasChildNodes())
        return;

    const QString typeText = node->getAttribute(QStringLiteral("type"), QString());
    if (typeText == QLatin1String("AND"))
        type = RosterFilterAnd;
    else if (typeText == QLatin1String("OR"))
        type = RosterFilterOr;
    if (stackName.isEmpty())
        stackName = typeText;

    const QList<VeskXmlNode> elements = node->getChildNodes();
    for (const VeskXmlNode &element : elements) {
        if (!element.hasChildNodes())
            continue;
        VeskRosterFilter *child = VeskRosterFiltersManager::getInstance()->createFilter(
            element.name(), RosterFilterDefault);
        if (!child)
            continue; // a tag that names no kind of filter
        child->setParent(this);
        if (child->getType() != RosterFilterLeaf) {
            *node = element;
            if (auto *stack = dynamic_cast<VeskRosterFiltersStack *>(child))
                stack->readFilterSettings();
        } else {
            child->setConfiguration(
                VeskField::fromXml(child->getConfiguration(), element.getChildNodes().first()));
        }
        filters.append(child);
    }
}

void VeskRosterFiltersStack::writeFilterSettings()
{
    VeskXmlNode *node = getNode();
    *node = VeskXmlNode(QStringLiteral("stack_filter"), QString(), nullptr);
    node->setAttribute(QStringLiteral("type"), typeAttribute(type), QString());

    const QList<VeskRosterFilter *> children = filters;
    for (VeskRosterFilter *child : children) {
        if (child->getType() != RosterFilterLeaf) {
            // The nested stack appends its own element to this node.
            if (auto *stack = dynamic_cast<VeskRosterFiltersStack *>(child))
                stack->writeFilterSettings();
        } else {
            node->addChild(child->id(), QString())
                .appendChild(VeskField::toXml(child->getConfiguration()));
        }
    }

    if (VeskRosterFilter *parentFilter = getParent()) {
        parentFilter->getNode()->appendChild(*node);
        return;
    }

    node->setAttribute(QStringLiteral("sort"), getSorter(), QString());
    node->setAttribute(QStringLiteral("advanced"),
        advanced ? QStringLiteral("t") : QStringLiteral("f"), QString());
    VeskStackFile::write(stackName, node);
}
