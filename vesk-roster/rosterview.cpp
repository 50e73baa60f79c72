#include "rosterview.h"

#include <veskaccount.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterquicksearch.h>
#include <veskrostersortersmanager.h>

#include <QHash>

#include <algorithm>

namespace {

VeskRosterView::Entry describe(const VeskBuddy &buddy)
{
    VeskRosterView::Entry entry;
    entry.buddy = buddy;
    entry.display = buddy.getDisplay();
    VeskAccountConnection *account = nullptr;
    VeskPresence presence;
    if (buddy.getType() == VeskBuddy::TypeContact) {
        const VeskBuddyContact contact(buddy);
        const VeskBuddy parent = contact.getParent();
        entry.hasGroup = parent.isValid();
        entry.group = parent.getDisplay();
        account = contact.getAccount();
        presence = contact.getPresence();
        const VeskArg chats = contact.getAttrib(QStringLiteral("chats_count"));
        entry.hasChats = chats.getType() == VeskArg::TypeInt;
        entry.chats = entry.hasChats ? chats.toInt() : 0;
    } else {
        const VeskBuddyTemporary temporary(buddy);
        entry.temporary = true;
        const VeskBuddyGroup group = temporary.getGroup();
        entry.hasGroup = group.isValid();
        entry.group = group.getDisplay();
        account = temporary.getAccount();
        presence = temporary.getPresence();
    }
    if (account) {
        entry.hasAccount = true;
        entry.account = account->getUid() + QLatin1Char('@') + account->getProtocolName();
    }
    entry.presence = presence.getId();
    entry.description = presence.getDescription();
    return entry;
}

// Stable, x before y exactly when lessThan(y, x): the sorters manager's bulk
// order of the reversed list, read backwards, which reads each entry once
// rather than on every comparison.
void sortEntries(QVector<VeskRosterView::Entry> &entries, const VeskRosterSortersManager *sorters)
{
    QVector<VeskBuddy> reversed;
    reversed.reserve(entries.size());
    for (auto entry = entries.crbegin(); entry != entries.crend(); ++entry)
        reversed.append(entry->buddy);
    const QVector<int> order = sorters->sortedOrder(reversed);
    QVector<VeskRosterView::Entry> sorted;
    sorted.reserve(entries.size());
    const int last = int(entries.size()) - 1;
    for (auto index = order.crbegin(); index != order.crend(); ++index)
        sorted.append(entries.at(last - *index));
    entries.swap(sorted);
}

} // namespace

VeskRosterView::VeskRosterView(const QList<VeskBuddy> &roster,
    const VeskRosterFiltersManager *filters, const VeskRosterSortersManager *sorters,
    const VeskRosterQuickSearch *search)
{
    // Groups are matched by name, the first of a name standing for all of
    // them, as a contact names its group.
    QHash<QString, int> groupIndex;
    QVector<Group> allGroups;
    QVector<QVector<Entry>> members;
    for (const VeskBuddy &buddy : roster) {
        if (buddy.getType() == VeskBuddy::TypeGroup && !groupIndex.contains(buddy.getDisplay())) {
            groupIndex.insert(buddy.getDisplay(), allGroups.size());
            allGroups.append(Group { buddy, buddy.getDisplay(), {} });
        }
    }
    members.resize(allGroups.size());
    QVector<VeskBuddy> asked;
    for (const VeskBuddy &buddy : roster) {
        const int type = buddy.getType();
        if (type == VeskBuddy::TypeContact || type == VeskBuddy::TypeTemporary)
            asked.append(buddy);
    }
    rosterEntries = int(asked.size());
    // The whole roster in one call of the library.
    const QVector<int> passing
        = search ? filters->filterEntries(asked, *search) : filters->filterEntries(asked);
    shownEntries = int(passing.size());
    for (const int index : passing) {
        Entry entry = describe(asked.at(index));
        const auto group
            = entry.hasGroup ? groupIndex.constFind(entry.group) : groupIndex.constEnd();
        if (group == groupIndex.constEnd())
            ungrouped.append(entry);
        else
            members[*group].append(entry);
    }

    // x comes before y exactly when lessThan(y, x): an ascending name method
    // lists A to Z and an ascending chats method the most chats first.
    auto before = [sorters](const VeskBuddy &x, const VeskBuddy &y) {
        return sorters->lessThan(y, x);
    };
    for (int i = 0; i < allGroups.size(); ++i) {
        if (members.at(i).isEmpty())
            continue;
        allGroups[i].entries = members.at(i);
        sortEntries(allGroups[i].entries, sorters);
        groups.append(allGroups.at(i));
    }
    std::stable_sort(groups.begin(), groups.end(),
        [&](const Group &x, const Group &y) { return before(x.buddy, y.buddy); });
    sortEntries(ungrouped, sorters);
}
