// PLACEHOLDER: replaced by the real implementation; exists only so the tree links.
#include "veskrostersortersmanager.h"

VeskRosterSortersManager *VeskRosterSortersManager::instance = nullptr;
VeskRosterSortersManager *VeskRosterSortersManager::getInstance() { if (!instance) instance = new VeskRosterSortersManager; return instance; }
VeskRosterSortersManager::VeskRosterSortersManager() = default;
VeskRosterSortersManager::~VeskRosterSortersManager() { qDeleteAll(currentSorters); instance = nullptr; }
QString VeskRosterSortersManager::getSorterDisplay(const QString &id) const { return sorterDisplays.value(id); }
QString VeskRosterSortersManager::getSorterName(const QString &display) const { return sorterDisplays.key(display); }
QStringList VeskRosterSortersManager::getAvailableSorters() const { return sorterDisplays.keys(); }
QString VeskRosterSortersManager::getDefault() const { return defaultSorter; }
void VeskRosterSortersManager::setDefault(const QString &name) { defaultSorter = name; }
QStringList VeskRosterSortersManager::getSorters() const { return {}; }
QStringList VeskRosterSortersManager::getSorters(const QString &) const { return {}; }
QStringList VeskRosterSortersManager::getSortersAscending(const QString &) const { return {}; }
void VeskRosterSortersManager::addSorter(const QString &, const QStringList &) {}
void VeskRosterSortersManager::removeSorter(const QString &) {}
void VeskRosterSortersManager::setSorterAscending(const QString &, const QStringList &) {}
VeskRosterSorter *VeskRosterSortersManager::createSorter(const QString &) { return nullptr; }
void VeskRosterSortersManager::setCurrentSorter(const QString &) {}
bool VeskRosterSortersManager::lessThan(const VeskBuddy &a, const VeskBuddy &b) const { return standardSort(a, b); }
bool VeskRosterSortersManager::standardSort(const VeskBuddy &, const VeskBuddy &) const { return false; }
