#include "veskrostersortersmanager.h"

#include "veskrostersorterbychatscount.h"
#include "veskrostersorterbypresencepriority.h"
#include "veskrostersortkeys_p.h"

#include <veskfield.h>
#include <veskrosterfilter.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <vesksettingsmanager.h>

#include <QCoreApplication>

namespace {

QString defaultSorterKey()
{
    return QStringLiteral("default_sorter");
}

QString sortersKey()
{
    return QStringLiteral("sorters");
}

// The method name is appended verbatim: the empty name gives the bare prefix.
QString idsKey(const QString &name)
{
    return QLatin1String("sorter_") + name;
}

QString flagsKey(const QString &name)
{
    return QLatin1String("sorter_asc_") + name;
}

// The host sets its private front end before it loads the library. Should it
// not have, settings read as their defaults and writes are dropped: the host
// keeps running and nothing stored is touched.
VeskField readSetting(const VeskField &field)
{
    VeskSettingsManagerPrivate *settings = VeskSettingsManagerPrivate::settingsMgrPrivInstance;
    return settings ? settings->readGlobalSetting(field) : field;
}

void writeSetting(const VeskField &field)
{
    if (VeskSettingsManagerPrivate *settings = VeskSettingsManagerPrivate::settingsMgrPrivInstance)
        settings->writeGlobalSetting(field);
}

void removeSetting(const QString &key)
{
    if (VeskSettingsManagerPrivate *settings = VeskSettingsManagerPrivate::settingsMgrPrivInstance)
        settings->removeKey(key);
}

VeskField textField(const QString &key, const QString &text)
{
    return VeskField::lineEdit(QString(), key, text, 32767, QString());
}

VeskField listField(const QString &key, const QStringList &ids = QStringList())
{
    return VeskField::comboBox(QString(), key, ids, QStringList(), QString(), QString());
}

QStringList readList(const QString &key)
{
    return readSetting(listField(key)).getComboBoxIds();
}

// "sorters" is kept with the one list as both the item ids and the labels.
void writeMethodNames(VeskField field, const QStringList &names)
{
    field.setComboBoxItems(names, names);
    writeSetting(field);
}

} // namespace

VeskRosterSortersManager *VeskRosterSortersManager::instance = nullptr;

VeskRosterSortersManager *VeskRosterSortersManager::getInstance()
{
    if (!instance)
        instance = new VeskRosterSortersManager;
    return instance;
}

VeskRosterSortersManager::VeskRosterSortersManager()
{
    // Literal arguments, so that the translation tools find the texts.
    sorterDisplays.insert(QStringLiteral("name"),
        QCoreApplication::translate("translation", "name", "sorting method"));
    sorterDisplays.insert(QStringLiteral("presence"),
        QCoreApplication::translate("translation", "presence", "sorting method"));
    sorterDisplays.insert(QStringLiteral("presence_priority"),
        QCoreApplication::translate("translation", "presence priority", "sorting method"));
    sorterDisplays.insert(QStringLiteral("chats_count"),
        QCoreApplication::translate("translation", "chats count", "sorting method"));

    defaultSorter = readSetting(textField(defaultSorterKey(), QString())).getText();
}

VeskRosterSortersManager::~VeskRosterSortersManager()
{
    instance = nullptr;
    qDeleteAll(currentSorters);
}

QString VeskRosterSortersManager::getSorterDisplay(const QString &id) const
{
    return sorterDisplays.value(id);
}

QString VeskRosterSortersManager::getSorterName(const QString &display) const
{
    return sorterDisplays.key(display);
}

QStringList VeskRosterSortersManager::getAvailableSorters() const
{
    return sorterDisplays.keys();
}

QString VeskRosterSortersManager::getDefault() const
{
    return defaultSorter;
}

void VeskRosterSortersManager::setDefault(const QString &name)
{
    defaultSorter = name;
    writeSetting(textField(defaultSorterKey(), name));
}

QStringList VeskRosterSortersManager::getSorters() const
{
    return readList(sortersKey());
}

QStringList VeskRosterSortersManager::getSorters(const QString &name) const
{
    return readList(idsKey(name));
}

QStringList VeskRosterSortersManager::getSortersAscending(const QString &name) const
{
    return readList(flagsKey(name));
}

void VeskRosterSortersManager::addSorter(const QString &name, const QStringList &ids)
{
    writeSetting(listField(idsKey(name), ids));

    const VeskField stored = readSetting(listField(sortersKey()));
    QStringList names = stored.getComboBoxIds();
    if (names.contains(name))
        return;
    names.append(name);
    writeMethodNames(stored, names);
}

void VeskRosterSortersManager::removeSorter(const QString &name)
{
    // The directions under "sorter_asc_" stay, and so does a default naming
    // the method: filters may still refer to it.
    removeSetting(idsKey(name));

    const VeskField stored = readSetting(listField(sortersKey()));
    QStringList names = stored.getComboBoxIds();
    names.removeAll(name);
    writeMethodNames(stored, names);
}

void VeskRosterSortersManager::setSorterAscending(const QString &name, const QStringList &flags)
{
    writeSetting(listField(flagsKey(name), flags));
}

VeskRosterSorter *VeskRosterSortersManager::createSorter(const QString &id)
{
    if (id == QLatin1String("name"))
        return new VeskRosterSorterByName;
    if (id == QLatin1String("presence"))
        return new VeskRosterSorterByPresence;
    if (id == QLatin1String("presence_priority"))
        return new VeskRosterSorterByPresencePriority;
    if (id == QLatin1String("chats_count"))
        return new VeskRosterSorterByChatsCount;
    return nullptr;
}

void VeskRosterSortersManager::setCurrentSorter(const QString &methodName)
{
    QString name = methodName;

    // Reaching the filters manager may create it, and its start-up makes its
    // current filter's method current through this very function. Let that
    // happen first, so the chain built below is the one that stays.
    VeskRosterFiltersManager *filters = VeskRosterFiltersManager::getInstance();

    qDeleteAll(currentSorters);
    currentSorters.clear();

    if (name.isEmpty())
        name = getDefault();

    const QStringList ids = getSorters(name);
    const QStringList flags = getSortersAscending(name);
    for (int i = 0; i < ids.size(); ++i) {
        // addSorter stores any id; one this version does not know is left out
        // of the chain together with its direction, and the rest keep theirs.
        VeskRosterSorter *sorter = createSorter(ids.at(i));
        if (!sorter)
            continue;
        // A position the flags do not reach (directions never written, or
        // written for a shorter chain) is ascending, like a new comparator.
        sorter->setAscending(i >= flags.size() || flags.at(i) == QLatin1String("t"));
        currentSorters.append(sorter);
    }

    VeskRosterFilter *current = filters->getCurrentFilter();
    if (!dynamic_cast<VeskRosterFiltersStack *>(current))
        return;
    if (current->id() == QLatin1String("default"))
        setDefault(name);
    else
        current->setSorter(name);
}

bool VeskRosterSortersManager::lessThan(const VeskBuddy &a, const VeskBuddy &b) const
{
    if (currentSorters.isEmpty())
        return standardSort(a, b);

    for (const VeskRosterSorter *sorter : currentSorters) {
        const int value = sorter->lessThan(a, b);
        if (value != 0)
            return sorter->isAscending() ? value > 0 : value < 0;
    }
    return false;
}

bool VeskRosterSortersManager::standardSort(const VeskBuddy &a, const VeskBuddy &b) const
{
    const int value = standardPresenceSorter.lessThan(a, b);
    if (value != 0)
        return value > 0;
    return standardNameSorter.lessThan(a, b) > 0;
}

QVector<int> VeskRosterSortersManager::sortedOrder(const QVector<VeskBuddy> &entries) const
{
    QVector<VeskRosterSortKeys::Step> chain;
    if (currentSorters.isEmpty()) {
        // The built-in order reads both values as ascending, whatever the flags.
        chain = { { &standardPresenceSorter, true }, { &standardNameSorter, true } };
    } else {
        for (const VeskRosterSorter *sorter : currentSorters)
            chain.append({ sorter, sorter->isAscending() });
    }
    return VeskRosterSortKeys::sortedOrder(chain, entries);
}

void VeskRosterSortersManager::sort(QVector<VeskBuddy> &entries) const
{
    const QVector<int> order = sortedOrder(entries);
    QVector<VeskBuddy> sorted;
    sorted.reserve(entries.size());
    for (const int index : order)
        sorted.append(entries.at(index));
    entries.swap(sorted);
}
