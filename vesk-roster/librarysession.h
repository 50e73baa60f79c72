#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class VeskRosterFilter;
class VeskRosterFiltersManager;
class VeskRosterFiltersStack;
class VeskRosterSortersManager;

// One run of the library, started fresh from the settings directory. The
// program owns what the library never deletes (the top-level stacks, the
// default filter, both managers) and frees it all when the session ends.
class VeskLibrarySession
{
public:
    explicit VeskLibrarySession(const QString &settingsDir);
    ~VeskLibrarySession();

    VeskRosterFiltersManager *filters() const { return filtersManager; }
    VeskRosterSortersManager *sorters() const { return sortersManager; }

    // The registered filter under this identifier, the default filter
    // included; null when there is none.
    VeskRosterFilter *filter(const QString &id) const;
    bool isRegistered(const QString &id) const;
    // The stack that `id` names, for editing: refuses "default" and unknown
    // identifiers with a message that lists the valid ones.
    VeskRosterFiltersStack *editableStack(const QString &id) const;

    // A top-level stack created during the session, to be freed at the end.
    void adopt(VeskRosterFiltersStack *stack);
    // A stack the manager no longer registers; the caller deletes it.
    void release(VeskRosterFiltersStack *stack);

    // Stores the display order; the manager itself stores it only when a
    // filter moves up or down.
    void storeDisplayOrder(const QStringList &order) const;

private:
    QString settingsDir;
    VeskRosterFiltersManager *filtersManager = nullptr;
    VeskRosterSortersManager *sortersManager = nullptr;
    VeskRosterFilter *defaultFilter = nullptr;
    QList<VeskRosterFiltersStack *> stacks;
};
