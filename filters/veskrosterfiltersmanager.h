#pragma once

#include "veskrosterfilter.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

class VeskBuddy;
class VeskRosterFiltersStack;
class VeskRosterQuickSearch;

// Holds the user's stack filters, their display order and the current filter,
// answers the roster view through the current filter, and creates filters by
// kind.
class VESK_ROSTER_FILTER_EXPORT VeskRosterFiltersManager
{
public:
    static VeskRosterFiltersManager *instance;
    static VeskRosterFiltersManager *getInstance();

    VeskRosterFiltersManager();
    ~VeskRosterFiltersManager();

    bool filter(const VeskBuddy &buddy) const;
    // The whole-roster call: the indices of the entries that filter() passes,
    // in order, answered in one call that reads what entries share once.
    QVector<int> filterEntries(const QVector<VeskBuddy> &entries) const;
    // What the view shows while a quick search is typed: the current filter
    // narrowed by the search (or the search alone, by its scope); an empty
    // search gives filter()'s answers.
    bool filter(const VeskBuddy &buddy, const VeskRosterQuickSearch &search) const;
    QVector<int> filterEntries(
        const QVector<VeskBuddy> &entries, const VeskRosterQuickSearch &search) const;
    VeskRosterFilter *getCurrentFilter();
    QString getCurrentFilterName() const;
    void setCurrentFilter(const QString &id);
    void setupCurrentFilter();
    void readFilters();

    QStringList getFilterNames() const;
    QStringList getAvailableFilters() const;
    QString getFilterName(const QString &kindId) const;
    QString getFilterId(const QString &kindName) const;

    VeskRosterFilter *createFilter(const QString &kindId, VeskRosterFilter::RosterFilterType type);
    VeskRosterFiltersStack *addStackFilter(
        const QString &name, VeskRosterFilter::RosterFilterType type);
    VeskRosterFiltersStack *getStackFilter(const QString &id);
    void rename(const QString &oldId, const QString &newId);
    void removeStackFilter(const QString &id);
    void upFilter(const QString &id);
    void downFilter(const QString &id);

private:
    Q_DISABLE_COPY(VeskRosterFiltersManager)

    QHash<QString, VeskRosterFiltersStack *> stacks;
    QStringList order;
    QHash<QString, QString> filterNames;
    VeskRosterFilter *current;
    // `current` when it is a plain stack, which filter() walks directly.
    const VeskRosterFiltersStack *currentStack;
};
