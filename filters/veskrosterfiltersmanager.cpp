#include "veskrosterfiltersmanager.h"

#include "veskfilterplan_p.h"
#include "veskrosterpass_p.h"

#include "veskaccountfilter.h"
#include "veskdefaultfilter.h"
#include "veskdescriptionfilter.h"
#include "veskdisplayfilter.h"
#include "veskgroupfilter.h"
#include "veskpresencefilter.h"
#include "veskprotocolfilter.h"
#include "veskrosterfiltersstack.h"
#include "veskrostersortersmanager.h"
#include "veskstackfile_p.h"

#include <veskfield.h>
#include <vesksettingsmanager.h>

#include <QCoreApplication>
#include <QDir>
#include <QSet>

#include <algorithm>
#include <typeinfo>

namespace {

// A stack of exactly this class: the manager may walk it without asking
// filter() (the default filter and a host's subclass answer otherwise).
const VeskRosterFiltersStack *plainStack(const VeskRosterFilter *filter)
{
    return filter && typeid(*filter) == typeid(VeskRosterFiltersStack)
        ? static_cast<const VeskRosterFiltersStack *>(filter)
        : nullptr;
}

const QLatin1String defaultId("default");

VeskField currentFilterField(const QString &id)
{
    return VeskField::lineEdit(QString(), QStringLiteral("roster_filter"), id, 32767, QString());
}

VeskField orderField(const QStringList &order)
{
    return VeskField::comboBox(
        QString(), QStringLiteral("filters"), order, QStringList(), QString(), QString());
}

} // namespace

VeskRosterFiltersManager *VeskRosterFiltersManager::instance = nullptr;

VeskRosterFiltersManager *VeskRosterFiltersManager::getInstance()
{
    if (!instance) {
        // Published before loading: the stack files' reader asks this very
        // instance for the filters it creates.
        instance = new VeskRosterFiltersManager;
        instance->readFilters();
        instance->setupCurrentFilter();
    }
    return instance;
}

VeskRosterFiltersManager::VeskRosterFiltersManager()
    : current(nullptr)
    , currentStack(nullptr)
{
    static const struct
    {
        const char *source;
        const char *comment;
    } kinds[] = {
        QT_TRANSLATE_NOOP3("translation", "presence", "nc"),
        QT_TRANSLATE_NOOP3("translation", "display", "nc"),
        QT_TRANSLATE_NOOP3("translation", "protocol", "nc"),
        QT_TRANSLATE_NOOP3("translation", "account", "nc"),
        QT_TRANSLATE_NOOP3("translation", "description", "nc"),
        QT_TRANSLATE_NOOP3("translation", "group", "nc"),
    };
    for (const auto &kind : kinds)
        filterNames.insert(QString::fromLatin1(kind.source),
            QCoreApplication::translate("translation", kind.source, kind.comment));
}

VeskRosterFiltersManager::~VeskRosterFiltersManager()
{
    if (instance == this)
        instance = nullptr;
}

bool VeskRosterFiltersManager::filter(const VeskBuddy &buddy) const
{
    if (currentStack)
        return currentStack->walk(buddy);
    return !current || current->filter(buddy);
}

QVector<int> VeskRosterFiltersManager::filterEntries(const QVector<VeskBuddy> &entries) const
{
    return VeskRosterPass::passAll(current, currentStack, nullptr, entries);
}

bool VeskRosterFiltersManager::filter(
    const VeskBuddy &buddy, const VeskRosterQuickSearch &search) const
{
    return VeskRosterPass::passesOne(current, currentStack, &search, buddy);
}

QVector<int> VeskRosterFiltersManager::filterEntries(
    const QVector<VeskBuddy> &entries, const VeskRosterQuickSearch &search) const
{
    return VeskRosterPass::passAll(current, currentStack, &search, entries);
}

VeskRosterFilter *VeskRosterFiltersManager::getCurrentFilter()
{
    return current;
}

QString VeskRosterFiltersManager::getCurrentFilterName() const
{
    return current ? current->id() : QString();
}

void VeskRosterFiltersManager::setCurrentFilter(const QString &id)
{
    VeskRosterFiltersStack *filter = stacks.value(id);
    if (!filter)
        return;
    // The sorters manager reads the current filter back, so it is set first.
    current = filter;
    currentStack = plainStack(filter);
    VeskSettingsManagerPrivate::settingsMgrPrivInstance->writeGlobalSetting(currentFilterField(id));
    VeskRosterSortersManager::getInstance()->setCurrentSorter(filter->getSorter());
}

void VeskRosterFiltersManager::setupCurrentFilter()
{
    const QString id = VeskSettingsManager::getInstance()
                           ->readGlobalSetting(currentFilterField(QString(defaultId)))
                           .getText();
    setCurrentFilter(stacks.contains(id) ? id : QString(defaultId));
}

void VeskRosterFiltersManager::readFilters()
{
    VeskStackFile::removeStaleTemporaries();
    // Hidden files (among them the temporary files of an interrupted save)
    // are left out of the listing.
    const QStringList files = QDir(VeskStackFile::directory()).entryList(QDir::Files, QDir::NoSort);
    for (const QString &file : files) {
        QString id;
        // The default filter reads its own file; a stack made for it here
        // would only be dropped from the table below.
        if (!VeskStackFile::idForFile(file, &id) || id == defaultId)
            continue;
        stacks.insert(id, new VeskRosterFiltersStack(id, VeskRosterFilter::RosterFilterDefault));
    }

    order
        = VeskSettingsManager::getInstance()->readGlobalSetting(orderField(order)).getComboBoxIds();

    stacks.insert(defaultId, new VeskDefaultFilter);
    order.removeAll(defaultId);
    order.prepend(defaultId);

    const QStringList stored = order;
    for (const QString &id : stored) {
        if (id != defaultId && !stacks.contains(id))
            order.removeAll(id);
    }
    // A set, not order.contains(): with thousands of stack files the list
    // scan made start-up quadratic.
    QSet<QString> listed(order.cbegin(), order.cend());
    for (auto it = stacks.cbegin(); it != stacks.cend(); ++it) {
        if (!listed.contains(it.key())) {
            order.append(it.key());
            listed.insert(it.key());
        }
    }
}

QStringList VeskRosterFiltersManager::getFilterNames() const
{
    return order;
}

QStringList VeskRosterFiltersManager::getAvailableFilters() const
{
    return filterNames.keys();
}

QString VeskRosterFiltersManager::getFilterName(const QString &kindId) const
{
    return filterNames.value(kindId);
}

QString VeskRosterFiltersManager::getFilterId(const QString &kindName) const
{
    for (auto it = filterNames.cbegin(); it != filterNames.cend(); ++it) {
        if (it.value() == kindName)
            return it.key();
    }
    return QString();
}

VeskRosterFilter *VeskRosterFiltersManager::createFilter(
    const QString &kindId, VeskRosterFilter::RosterFilterType type)
{
    if (kindId == QLatin1String("presence"))
        return new VeskPresenceFilter;
    if (kindId == QLatin1String("display"))
        return new VeskDisplayFilter;
    if (kindId == QLatin1String("protocol"))
        return new VeskProtocolFilter;
    if (kindId == QLatin1String("account"))
        return new VeskAccountFilter;
    if (kindId == QLatin1String("description"))
        return new VeskDescriptionFilter;
    if (kindId == QLatin1String("group"))
        return new VeskGroupFilter;
    if (kindId == QLatin1String("stack_filter"))
        return new VeskRosterFiltersStack(QString(), type);
    return nullptr;
}

VeskRosterFiltersStack *VeskRosterFiltersManager::addStackFilter(
    const QString &name, VeskRosterFilter::RosterFilterType type)
{
    // Registering a stack under "default" would take the default filter out
    // of the table for good.
    if (name == defaultId)
        return nullptr;
    auto *stack = new VeskRosterFiltersStack(name, type);
    stacks.insert(name, stack);
    order.append(name);
    return stack;
}

VeskRosterFiltersStack *VeskRosterFiltersManager::getStackFilter(const QString &id)
{
    if (id == defaultId)
        return nullptr;
    return stacks.value(id);
}

void VeskRosterFiltersManager::rename(const QString &oldId, const QString &newId)
{
    // Refused: the default filter, an unknown stack, an empty name (it has no
    // file, so the stack would be gone after a restart) and a name in use
    // (its stack and file would be lost).
    if (oldId == defaultId || newId == defaultId || newId.isEmpty() || oldId == newId
        || !stacks.contains(oldId) || stacks.contains(newId))
        return;

    VeskRosterFiltersStack *stack = stacks.take(oldId);
    stacks.insert(newId, stack);
    stack->setName(newId);

    // Display order, stored order and file follow the new name, so the
    // filter is found again at its place after a restart. The file moves
    // first: a stored order that names both identifiers then keeps the
    // filter at its place whenever the process dies in between.
    std::replace(order.begin(), order.end(), oldId, newId);
    VeskStackFile::move(oldId, newId);
    VeskSettingsManager::getInstance()->writeGlobalSetting(orderField(order));

    if (stack == current)
        setCurrentFilter(newId);
}

void VeskRosterFiltersManager::removeStackFilter(const QString &id)
{
    if (id == defaultId)
        return;
    const auto it = stacks.constFind(id);
    if (it != stacks.cend()) {
        if (it.value() == current) {
            current = stacks.value(defaultId);
            currentStack = plainStack(current);
        }
        stacks.erase(it);
    }
    order.removeAll(id);
    VeskStackFile::remove(id);
}

void VeskRosterFiltersManager::upFilter(const QString &id)
{
    const int i = order.indexOf(id);
    if (i >= 2)
        order.swapItemsAt(i, i - 1);
    VeskSettingsManager::getInstance()->writeGlobalSetting(orderField(order));
}

void VeskRosterFiltersManager::downFilter(const QString &id)
{
    const int i = order.indexOf(id);
    if (i >= 0 && i + 1 < order.size())
        order.swapItemsAt(i, i + 1);
    VeskSettingsManager::getInstance()->writeGlobalSetting(orderField(order));
}
