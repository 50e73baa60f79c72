#include "handwritten.h"

#include <veskaccount.h>
#include <veskbuddy.h>

#include <QCollator>

#include <algorithm>
#include <numeric>
#include <vector>

namespace {

bool isContactOrTemporary(int type)
{
    return type == VeskBuddy::TypeContact || type == VeskBuddy::TypeTemporary;
}

VeskPresence presenceOf(const VeskBuddy &buddy, int type)
{
    return type == VeskBuddy::TypeContact ? VeskBuddyContact(buddy).getPresence()
                                          : VeskBuddyTemporary(buddy).getPresence();
}

QString groupNameOf(const VeskBuddy &buddy, int type)
{
    if (type == VeskBuddy::TypeContact)
        return VeskBuddyContact(buddy).getParent().getDisplay();
    if (type == VeskBuddy::TypeTemporary)
        return VeskBuddyTemporary(buddy).getGroup().getDisplay();
    return QString();
}

VeskAccountConnection *accountOf(const VeskBuddy &buddy, int type)
{
    if (type == VeskBuddy::TypeContact)
        return VeskBuddyContact(buddy).getAccount();
    if (type == VeskBuddy::TypeTemporary)
        return VeskBuddyTemporary(buddy).getAccount();
    return nullptr;
}

int presenceValue(const VeskBuddy &a, const VeskBuddy &b)
{
    const int typeA = a.getType();
    const int typeB = b.getType();
    if (!isContactOrTemporary(typeA) || !isContactOrTemporary(typeB))
        return 0;
    const bool fiveA = presenceOf(a, typeA).getFlag() == 5;
    const bool fiveB = presenceOf(b, typeB).getFlag() == 5;
    if (fiveA != fiveB)
        return fiveA ? 1 : -1;
    const int subscriptionA
        = typeA == VeskBuddy::TypeContact ? VeskBuddyContact(a).getSubscription().getPriority() : 0;
    const int subscriptionB
        = typeB == VeskBuddy::TypeContact ? VeskBuddyContact(b).getSubscription().getPriority() : 0;
    return subscriptionB - subscriptionA;
}

int chatsCountOf(const VeskBuddy &buddy)
{
    static const QString key = QStringLiteral("chats_count");
    const VeskBuddyContact contact(buddy);
    if (!contact.isValid())
        return 0;
    const VeskArg count = contact.getAttrib(key);
    return count.getType() == VeskArg::TypeInt ? count.toInt() : 0;
}

// QString::toLower() into a buffer that keeps its capacity, so that comparing
// two names allocates nothing once the buffers have grown. Gives exactly
// toLower()'s text: code point by code point, surrogate pairs as one, and the
// one character whose lower case is two characters (U+0130) left to toLower().
void lowerInto(const QString &text, QString &buffer)
{
    const int size = text.size();
    buffer.resize(size);
    const QChar *from = text.constData();
    QChar *to = buffer.data();
    for (int i = 0; i < size; ++i) {
        const QChar c = from[i];
        if (c.unicode() < 0x80) {
            to[i] = c.unicode() >= 'A' && c.unicode() <= 'Z' ? QChar(c.unicode() + 0x20) : c;
        } else if (c.unicode() == 0x130) {
            buffer = text.toLower();
            return;
        } else if (c.isHighSurrogate() && i + 1 < size && from[i + 1].isLowSurrogate()) {
            const uint lower = QChar::toLower(QChar::surrogateToUcs4(c, from[i + 1]));
            to[i] = QChar(QChar::highSurrogate(lower));
            to[i + 1] = QChar(QChar::lowSurrogate(lower));
            ++i;
        } else {
            to[i] = c.toLower();
        }
    }
}

int nameValue(const VeskBuddy &a, const VeskBuddy &b)
{
    thread_local QString lowerA;
    thread_local QString lowerB;
    if (a.getType() == VeskBuddy::TypeGroup && b.getType() == VeskBuddy::TypeGroup) {
        const int positionA = VeskBuddyGroup(a).getPos();
        const int positionB = VeskBuddyGroup(b).getPos();
        if (positionA != 0 || positionB != 0)
            return positionA > positionB ? 1 : 0;
    }
    lowerInto(a.getDisplay(), lowerA);
    lowerInto(b.getDisplay(), lowerB);
    return lowerA.localeAwareCompare(lowerB);
}

} // namespace

bool HandWritten::fastestFilter(const VeskBuddy &buddy, const FilterParameters &parameters)
{
    if (!buddy.getDisplay().contains(parameters.text))
        return false;
    const int type = buddy.getType();
    if (!isContactOrTemporary(type))
        return false; // no presence: neither presence test passes
    const QString presence = presenceOf(buddy, type).getId();
    if (presence != parameters.presence1 && presence != parameters.presence2)
        return false;
    return groupNameOf(buddy, type) != parameters.group;
}

int HandWritten::fastestFilterReach(const VeskBuddy &buddy, const FilterParameters &parameters)
{
    if (!buddy.getDisplay().contains(parameters.text))
        return 1;
    const int type = buddy.getType();
    if (!isContactOrTemporary(type))
        return 1;
    const QString presence = presenceOf(buddy, type).getId();
    return presence != parameters.presence1 && presence != parameters.presence2 ? 2 : 3;
}

int HandWritten::fastestFilterReads(const VeskBuddy &buddy, int reach)
{
    int size = int(buddy.getDisplay().size());
    if (reach < 2)
        return size;
    const int type = buddy.getType();
    size += int(presenceOf(buddy, type).getId().size());
    if (reach > 2)
        size += int(groupNameOf(buddy, type).size());
    return size;
}

bool HandWritten::leafByLeafFilter(const VeskBuddy &buddy, const FilterParameters &parameters)
{
    return displayContains(buddy, parameters.text, true)
        && (presenceIs(buddy, parameters.presence1, true)
            || presenceIs(buddy, parameters.presence2, true))
        && groupIs(buddy, parameters.group, false);
}

bool HandWritten::displayContains(const VeskBuddy &buddy, const QString &text, bool)
{
    return buddy.getDisplay().contains(text);
}

bool HandWritten::descriptionContains(const VeskBuddy &buddy, const QString &text, bool)
{
    if (buddy.getType() != VeskBuddy::TypeContact)
        return false;
    return VeskBuddyContact(buddy).getPresence().getDescription().contains(text);
}

bool HandWritten::groupIs(const VeskBuddy &buddy, const QString &group, bool positive)
{
    return (groupNameOf(buddy, buddy.getType()) == group) == positive;
}

bool HandWritten::presenceIs(const VeskBuddy &buddy, const QString &presenceId, bool positive)
{
    const int type = buddy.getType();
    if (!isContactOrTemporary(type))
        return !positive;
    return (presenceOf(buddy, type).getId() == presenceId) == positive;
}

bool HandWritten::accountIs(const VeskBuddy &buddy, const QString &accountIdentity, bool positive)
{
    const VeskAccountConnection *account = accountOf(buddy, buddy.getType());
    if (!account)
        return !positive;
    // uid + "@" + protocol name, compared piece by piece instead of built.
    const QString uid = account->getUid();
    const QString protocol = account->getProtocolName();
    const bool match = accountIdentity.size() == uid.size() + 1 + protocol.size()
        && accountIdentity.startsWith(uid) && accountIdentity.at(uid.size()) == QLatin1Char('@')
        && accountIdentity.endsWith(protocol);
    return match == positive;
}

bool HandWritten::protocolIs(const VeskBuddy &buddy, const QString &protocolName, bool positive)
{
    const VeskAccountConnection *account = accountOf(buddy, buddy.getType());
    if (!account)
        return !positive;
    return (account->getProtocolName() == protocolName) == positive;
}

bool HandWritten::presenceThenName(const VeskBuddy &a, const VeskBuddy &b)
{
    if (const int presence = presenceValue(a, b))
        return presence < 0;
    return nameValue(a, b) < 0;
}

bool HandWritten::chatsThenName(const VeskBuddy &a, const VeskBuddy &b)
{
    if (const int chats = chatsCountOf(b) - chatsCountOf(a))
        return chats < 0;
    return nameValue(a, b) < 0;
}

namespace {

// Ranks ascending, then collation keys ascending (A to Z), stably.
QVector<int> byRankThenKey(const QVector<VeskBuddy> &entries, int (*rankOf)(const VeskBuddy &))
{
    const QCollator collator;
    std::vector<int> ranks;
    std::vector<QCollatorSortKey> keys;
    ranks.reserve(std::size_t(entries.size()));
    keys.reserve(std::size_t(entries.size()));
    for (const VeskBuddy &entry : entries) {
        ranks.push_back(rankOf(entry));
        keys.push_back(collator.sortKey(entry.getDisplay().toLower()));
    }
    QVector<int> order(entries.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
        if (ranks[std::size_t(a)] != ranks[std::size_t(b)])
            return ranks[std::size_t(a)] < ranks[std::size_t(b)];
        return keys[std::size_t(a)].compare(keys[std::size_t(b)]) < 0;
    });
    return order;
}

// Flag 5 last; then the highest subscription priority first (temporary: 0).
int presenceRank(const VeskBuddy &buddy)
{
    const int type = buddy.getType();
    const bool five = presenceOf(buddy, type).getFlag() == 5;
    const int subscription = type == VeskBuddy::TypeContact
        ? VeskBuddyContact(buddy).getSubscription().getPriority()
        : 0;
    return (five ? 1 << 16 : 0) - subscription;
}

int chatsRank(const VeskBuddy &buddy)
{
    return -chatsCountOf(buddy);
}

} // namespace

QVector<int> HandWritten::presenceThenNameByKeys(const QVector<VeskBuddy> &entries)
{
    return byRankThenKey(entries, presenceRank);
}

QVector<int> HandWritten::chatsThenNameByKeys(const QVector<VeskBuddy> &entries)
{
    return byRankThenKey(entries, chatsRank);
}
