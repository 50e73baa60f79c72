#pragma once

#include "veskrosterfilter.h"

#include <QHash>
#include <QString>
#include <QStringList>

class VeskBuddy;
class VeskRosterFiltersStack;

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
