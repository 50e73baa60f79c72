#pragma once

#include <veskbuddy.h>

#include <QList>
#include <QString>
#include <QVector>

class VeskRosterFiltersManager;
class VeskRosterQuickSearch;
class VeskRosterSortersManager;

// The visible roster as a client's roster view shows it: the contacts and
// temporary contacts that pass the current filter, under the groups that
// hold at least one of them, then those without a group; groups and the
// members of each group ordered by the current sorting method.
class VeskRosterView
{
public:
    struct Entry
    {
        VeskBuddy buddy;
        bool temporary = false;
        QString display;
        QString group;
        bool hasGroup = false;
        QString account; // "uid@protocol", empty without an account
        bool hasAccount = false;
        QString presence;
        QString description;
        bool hasChats = false;
        int chats = 0;
    };
    struct Group
    {
        VeskBuddy buddy;
        QString name;
        QVector<Entry> entries;
    };

    // With a quick search, the members that the filters manager shows with it.
    VeskRosterView(const QList<VeskBuddy> &roster, const VeskRosterFiltersManager *filters,
        const VeskRosterSortersManager *sorters, const VeskRosterQuickSearch *search = nullptr);

    QVector<Group> groups;
    QVector<Entry> ungrouped;
    int rosterEntries = 0; // contacts and temporary contacts the view asked about
    int shownEntries = 0;
};
