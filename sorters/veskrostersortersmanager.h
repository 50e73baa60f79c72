#pragma once

#include "veskrostersorterbyname.h"
#include "veskrostersorterbypresence.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

#include <veskbuddy.h>

// Keeps the user's sorting methods (named chains of comparators) in the
// settings, builds the chain of the current method once, and answers the
// roster view's comparisons by walking it.
class VESK_ROSTER_FILTER_EXPORT VeskRosterSortersManager
{
public:
    static VeskRosterSortersManager *instance;
    static VeskRosterSortersManager *getInstance();

    VeskRosterSortersManager();
    ~VeskRosterSortersManager();

    QString getSorterDisplay(const QString &id) const;
    QString getSorterName(const QString &display) const;
    QStringList getAvailableSorters() const;

    QString getDefault() const;
    void setDefault(const QString &name);
    QStringList getSorters() const;
    QStringList getSorters(const QString &name) const;
    QStringList getSortersAscending(const QString &name) const;
    void addSorter(const QString &name, const QStringList &ids);
    void removeSorter(const QString &name);
    void setSorterAscending(const QString &name, const QStringList &flags);

    // A new comparator for one of "name", "presence", "presence_priority" and
    // "chats_count", owned by the caller; null for any other id.
    VeskRosterSorter *createSorter(const QString &id);
    // Builds the chain of the method (the default method for the empty name)
    // and records the method in the current filter, or as the default while
    // the default filter is current. Stored ids this version does not know
    // are left out with their directions; positions without a stored
    // direction are ascending.
    void setCurrentSorter(const QString &name);

    // The first comparator of the chain that tells a and b apart decides:
    // ascending, true when its value is positive; descending, when negative.
    // Without a chain, standardSort() decides. All comparators' values are
    // positive when a belongs after b, so a view places x before y when
    // lessThan(y, x) is true.
    bool lessThan(const VeskBuddy &a, const VeskBuddy &b) const;
    // Presence, then name, both read as ascending.
    bool standardSort(const VeskBuddy &a, const VeskBuddy &b) const;

    // A whole list at once, in the order std::stable_sort with lessThan()
    // gives it: every pair gets lessThan()'s answer, but each entry is read
    // from the host once per call rather than twice per comparison, and names
    // are collated through sort keys. Nothing read is kept after the call.
    // sortedOrder() answers indices into `entries`; sort() reorders in place.
    QVector<int> sortedOrder(const QVector<VeskBuddy> &entries) const;
    void sort(QVector<VeskBuddy> &entries) const;

private:
    Q_DISABLE_COPY(VeskRosterSortersManager)

    QList<VeskRosterSorter *> currentSorters;
    VeskRosterSorterByPresence standardPresenceSorter;
    VeskRosterSorterByName standardNameSorter;
    QHash<QString, QString> sorterDisplays;
    QString defaultSorter;
};
