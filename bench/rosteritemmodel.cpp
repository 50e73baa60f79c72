#include "rosteritemmodel.h"

#include "benchroster.h"

#include <QStandardItemModel>

#include <memory>

namespace {

bool isContactOrTemporary(int type)
{
    return type == VeskBuddy::TypeContact || type == VeskBuddy::TypeTemporary;
}

VeskPresence presenceOf(const VeskBuddy &entry, int type)
{
    return type == VeskBuddy::TypeContact ? VeskBuddyContact(entry).getPresence()
                                          : VeskBuddyTemporary(entry).getPresence();
}

} // namespace

int RosterItemModel::presenceRank(const VeskBuddy &entry)
{
    const int type = entry.getType();
    if (!isContactOrTemporary(type))
        return 0;
    const int subscription = type == VeskBuddy::TypeContact
        ? VeskBuddyContact(entry).getSubscription().getPriority()
        : 0;
    return (presenceOf(entry, type).getFlag() == 5 ? 1000 : 0) - subscription;
}

int RosterItemModel::chatsRank(const VeskBuddy &entry)
{
    const VeskArg chats = VeskBuddyContact(entry).getAttrib(QStringLiteral("chats_count"));
    return chats.getType() == VeskArg::TypeInt ? -chats.toInt() : 0;
}

QStandardItemModel *RosterItemModel::create(const std::vector<VeskBuddy> &entries)
{
    auto *model = new QStandardItemModel(int(entries.size()), 1);
    int row = 0;
    for (const VeskBuddy &entry : entries) {
        auto *item = new QStandardItem(entry.getDisplay());
        const int type = entry.getType();
        if (isContactOrTemporary(type))
            item->setData(presenceOf(entry, type).getId(), PresenceIdRole);
        if (type == VeskBuddy::TypeContact)
            item->setData(VeskBuddyContact(entry).getParent().getDisplay(), GroupNameRole);
        else if (type == VeskBuddy::TypeTemporary)
            item->setData(VeskBuddyTemporary(entry).getGroup().getDisplay(), GroupNameRole);
        item->setData(presenceRank(entry), PresenceRankRole);
        item->setData(chatsRank(entry), ChatsRankRole);
        model->setItem(row++, item);
    }
    return model;
}

QStandardItemModel *RosterItemModel::forRoster(int contacts)
{
    static std::unique_ptr<QStandardItemModel> model;
    static int modelContacts = -1;
    const std::vector<VeskBuddy> &entries = BenchRoster::load(contacts);
    if (contacts != modelContacts) {
        model.reset();
        model.reset(create(entries));
        modelContacts = contacts;
    }
    return model.get();
}

RosterFilterProxy::RosterFilterProxy()
{
    setFilterCaseSensitivity(Qt::CaseSensitive);
    setFilterFixedString(QStringLiteral("an"));
}

bool RosterFilterProxy::filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const
{
    if (!QSortFilterProxyModel::filterAcceptsRow(sourceRow, sourceParent))
        return false;
    const QModelIndex index = sourceModel()->index(sourceRow, 0, sourceParent);
    const QString presence = index.data(RosterItemModel::PresenceIdRole).toString();
    if (presence != QLatin1String("online") && presence != QLatin1String("away"))
        return false;
    return index.data(RosterItemModel::GroupNameRole).toString() != QLatin1String("Blocked");
}

RosterSortProxy::RosterSortProxy(int rankRole)
    : rankRole(rankRole)
{
    setSortLocaleAware(true);
    setSortCaseSensitivity(Qt::CaseInsensitive);
}

bool RosterSortProxy::lessThan(const QModelIndex &left, const QModelIndex &right) const
{
    const int rankLeft = left.data(rankRole).toInt();
    const int rankRight = right.data(rankRole).toInt();
    if (rankLeft != rankRight)
        return rankLeft < rankRight;
    return QSortFilterProxyModel::lessThan(left, right);
}
