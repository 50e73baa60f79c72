#include "veskrostersortkeys_p.h"

#include "veskrostersorterbychatscount.h"
#include "veskrostersorterbyname.h"
#include "veskrostersorterbypresence.h"
#include "veskrostersorterbypresencepriority.h"

#include <veskarg.h>
#include <veskbuddy.h>
#include <veskentrykind_p.h>

#include <QCollator>
#include <QString>

#include <algorithm>
#include <memory>
#include <numeric>
#include <typeinfo>
#include <vector>

namespace VeskRosterSortKeys {

namespace {

    enum class Kind { Name, ChatsCount, PresencePriority, Presence, Other };

    Kind kindOf(const VeskRosterSorter *sorter)
    {
        // Exact classes only: a subclass may answer differently, and is then
        // asked pair by pair like any comparator this file does not know.
        const std::type_info &type = typeid(*sorter);
        if (type == typeid(VeskRosterSorterByName))
            return Kind::Name;
        if (type == typeid(VeskRosterSorterByChatsCount))
            return Kind::ChatsCount;
        if (type == typeid(VeskRosterSorterByPresencePriority))
            return Kind::PresencePriority;
        if (type == typeid(VeskRosterSorterByPresence))
            return Kind::Presence;
        return Kind::Other;
    }

    struct Rule
    {
        Kind kind;
        bool ascending;
        const VeskRosterSorter *sorter;
    };

    // What the four comparators read of one entry, read once.
    struct EntryKeys
    {
        int type = 0;
        int position = 0; // of a group
        int presencePriority = 0;
        int subscription = 0; // 0 for a temporary contact
        int chats = 0;
        bool hasPresence = false; // a contact or a temporary contact
        bool setApart = false; // presence flag 5
    };

    int sign(int later, int earlier)
    {
        return later > earlier ? 1 : (later < earlier ? -1 : 0);
    }

    // Pairs of lower-case texts that the collations of many locales order
    // differently (letters that some alphabets place after z, digraphs,
    // dotless i, accents against the next letter, code units against code
    // points, canonically equal spellings, ignorable characters, Han order).
    // When the collator answers one of them otherwise than
    // QString::localeAwareCompare does, the two do not collate alike.
    const char16_t *const probes[][2] = {
        { u"ä", u"z" },
        { u"å", u"z" },
        { u"ö", u"z" },
        { u"æ", u"z" },
        { u"ø", u"z" },
        { u"þ", u"z" },
        { u"aa", u"z" },
        { u"ch", u"h" },
        { u"ı", u"i" },
        { u"č", u"cz" },
        { u"ł", u"lz" },
        { u"ñ", u"nz" },
        { u"ş", u"sz" },
        { u"ü", u"uz" },
        { u"ő", u"oz" },
        { u"w", u"vz" },
        { u"y", u"ü" },
        { u"ð", u"dz" },
        { u"ä", u"ae" },
        { u"é", u"f" },
        { u"é", u"e\u0301" },
        { u"ab", u"a\u200bb" },
        { u"a b", u"ab" },
        { u"a-b", u"ab" },
        { u"\uff41", u"\U0001f600" },
        { u"中", u"日" },
        { u"あ", u"ア" },
        { u"ß", u"ss" },
        { u"10", u"9" },
        { u"", u"a" },
    };

    bool collatesLikeLocaleAwareCompare(const QCollator &collator)
    {
        for (const auto &probe : probes) {
            const QString a = QString::fromUtf16(probe[0]);
            const QString b = QString::fromUtf16(probe[1]);
            const int byKeys = collator.sortKey(a).compare(collator.sortKey(b));
            const int byQString = QString::localeAwareCompare(a, b);
            if ((byKeys > 0) != (byQString > 0) || (byKeys < 0) != (byQString < 0))
                return false;
        }
        return true;
    }

    // The name comparator's order of lowered display names: collation keys
    // when they order names as QString::localeAwareCompare does, otherwise
    // that function itself on names lowered once.
    class NameOrder
    {
    public:
        explicit NameOrder(const QVector<VeskBuddy> &entries)
        {
            // The first use of localeAwareCompare in a thread may fix its
            // locale there; the probe makes that use, before the comparison.
            const QCollator collator;
            byKeys = collatesLikeLocaleAwareCompare(collator);
            const int count = int(entries.size());
            if (byKeys) {
                keys.reserve(std::size_t(count));
                for (const VeskBuddy &entry : entries)
                    keys.push_back(collator.sortKey(entry.getDisplay().toLower()));
            } else {
                lowered.reserve(std::size_t(count));
                for (const VeskBuddy &entry : entries)
                    lowered.push_back(entry.getDisplay().toLower());
            }
        }

        int compare(int a, int b) const
        {
            if (byKeys)
                return keys[std::size_t(a)].compare(keys[std::size_t(b)]);
            const QString &lowerA = lowered[std::size_t(a)];
            const QString &lowerB = lowered[std::size_t(b)];
            return lowerA == lowerB ? 0 : QString::localeAwareCompare(lowerA, lowerB);
        }

    private:
        bool byKeys = false;
        std::vector<QCollatorSortKey> keys;
        std::vector<QString> lowered;
    };

    int chatsCountOf(const VeskBuddy &buddy)
    {
        static const QString attribute = QStringLiteral("chats_count");
        const VeskBuddyContact contact(buddy);
        if (!contact.isValid())
            return 0;
        const VeskArg count = contact.getAttrib(attribute);
        return count.getType() == VeskArg::TypeInt ? count.toInt() : 0;
    }

} // namespace

QVector<int> sortedOrder(const QVector<Step> &chain, const QVector<VeskBuddy> &entries)
{
    const int count = int(entries.size());
    QVector<int> order(count);
    std::iota(order.begin(), order.end(), 0);
    if (count < 2 || chain.isEmpty())
        return order;

    std::vector<Rule> rules;
    bool needName = false, needPresence = false, needChats = false;
    for (const Step &step : chain) {
        const Kind kind = kindOf(step.sorter);
        rules.push_back(Rule { kind, step.ascending, step.sorter });
        needName |= kind == Kind::Name;
        needPresence |= kind == Kind::Presence || kind == Kind::PresencePriority;
        needChats |= kind == Kind::ChatsCount;
    }

    std::vector<EntryKeys> keys(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const VeskBuddy &entry = entries.at(i);
        EntryKeys &key = keys[std::size_t(i)];
        key.type = entry.getType();
        if (needName && key.type == VeskEntryKind::Group)
            key.position = VeskBuddyGroup(entry).getPos();
        key.hasPresence
            = key.type == VeskEntryKind::Contact || key.type == VeskEntryKind::Temporary;
        if (needPresence && key.hasPresence) {
            if (key.type == VeskEntryKind::Contact) {
                const VeskBuddyContact contact(entry);
                const VeskPresence presence = contact.getPresence();
                key.setApart = presence.getFlag() == 5;
                key.presencePriority = presence.getPriority();
                key.subscription = contact.getSubscription().getPriority();
            } else {
                const VeskPresence presence = VeskBuddyTemporary(entry).getPresence();
                key.setApart = presence.getFlag() == 5;
                key.presencePriority = presence.getPriority();
            }
        }
        if (needChats)
            key.chats = chatsCountOf(entry);
    }

    std::unique_ptr<NameOrder> names;
    if (needName)
        names = std::make_unique<NameOrder>(entries);

    // The comparators' values, each reduced to its sign, from the keys.
    auto value = [&](const Rule &rule, int a, int b) -> int {
        const EntryKeys &keyA = keys[std::size_t(a)];
        const EntryKeys &keyB = keys[std::size_t(b)];
        switch (rule.kind) {
        case Kind::Name:
            if (keyA.type == VeskEntryKind::Group && keyB.type == VeskEntryKind::Group
                && (keyA.position != 0 || keyB.position != 0))
                return keyA.position > keyB.position ? 1 : 0;
            return names->compare(a, b);
        case Kind::ChatsCount:
            return sign(keyB.chats, keyA.chats);
        case Kind::PresencePriority:
            if (!keyA.hasPresence || !keyB.hasPresence)
                return 0;
            return sign(keyB.presencePriority, keyA.presencePriority);
        case Kind::Presence:
            if (!keyA.hasPresence || !keyB.hasPresence)
                return 0;
            if (keyA.setApart != keyB.setApart)
                return keyA.setApart ? 1 : -1;
            return sign(keyB.subscription, keyA.subscription);
        case Kind::Other:
            break;
        }
        return rule.sorter->lessThan(entries.at(a), entries.at(b));
    };
    auto less = [&](int a, int b) {
        for (const Rule &rule : rules) {
            if (const int v = value(rule, a, b))
                return rule.ascending ? v > 0 : v < 0;
        }
        return false;
    };
    std::stable_sort(order.begin(), order.end(), less);
    return order;
}

} // namespace VeskRosterSortKeys
