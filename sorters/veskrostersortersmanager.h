#pragma once

#include "veskrostersorterbyname.h"
#include "veskrostersorterbypresence.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

class VeskBuddy;

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

    VeskRosterSorter *createSorter(const QString &id);
    void setCurrentSorter(const QString &name);

    bool lessThan(const VeskBuddy &a, const VeskBuddy &b) const;
    bool standardSort(const VeskBuddy &a, const VeskBuddy &b) const;

private:
    Q_DISABLE_COPY(VeskRosterSortersManager)

    QList<VeskRosterSorter *> currentSorters;
    VeskRosterSorterByPresence standardPresenceSorter;
    VeskRosterSorterByName standardNameSorter;
    QHash<QString, QString> sorterDisplays;
    QString defaultSorter;
};
