#pragma once

// Not part of the library's API: the rule of each leaf condition, written
// once. A leaf's filter() and the prepared plan apply it to an entry whose
// pieces are read at most once per call (VeskEntryReader below); the whole-roster call to one whose
// shared pieces (a group's name, an account's texts) it reads once per call.
// Whatever reads the entry, the rule is this one, so the answers cannot drift
// apart.
//
// `Entry` is any reader with these members, each answering a QString or a
// const reference to one:
//   int type()                    the entry's kind code
//   display()                     its display name
//   description()                 a contact's status text
//   presenceId()                  a contact's or a temporary contact's presence id
//   group()                       the name of a contact's or a temporary
//                                 contact's group, empty for any other entry
//   const VeskAccountConnection *account()
//                                 the account of a contact or a temporary
//                                 contact, null for any other entry
//   uid(), protocolName()         of that account, asked only when it is not null

#include "veskchoicecondition_p.h"
#include "vesktextcondition_p.h"

#include <veskaccount.h>
#include <veskbuddy.h>
#include <veskentrykind_p.h>

#include <QString>
#include <QtAlgorithms>

#include <new>

namespace VeskLeafRule {

template <class Entry> inline bool display(Entry &entry, int mode, const QString &needle)
{
    return VeskTextCondition::matches(mode, needle, entry.display());
}

// Only a contact has a status text; every other entry fails, whatever the
// condition ("does not contain" included).
template <class Entry> inline bool description(Entry &entry, int mode, const QString &needle)
{
    return entry.type() == VeskEntryKind::Contact
        && VeskTextCondition::matches(mode, needle, entry.description());
}

// An entry outside any group has the empty name.
template <class Entry> inline bool group(Entry &entry, const QString &name, bool positive)
{
    return VeskChoiceCondition::decide(entry.group() == name, positive);
}

// An entry without an account never is the account, always is not.
template <class Entry> inline bool account(Entry &entry, const QString &identity, bool positive)
{
    if (!entry.account())
        return !positive;
    return VeskChoiceCondition::decide(
        VeskChoiceCondition::isAccountIdentity(identity, entry.uid(), entry.protocolName()),
        positive);
}

template <class Entry> inline bool protocol(Entry &entry, const QString &name, bool positive)
{
    if (!entry.account())
        return !positive;
    return VeskChoiceCondition::decide(entry.protocolName() == name, positive);
}

// Only contacts and temporary contacts have a presence: anything else never
// is one, always is not.
template <class Entry> inline bool presence(Entry &entry, const QString &id, bool positive)
{
    const int type = entry.type();
    if (type != VeskEntryKind::Contact && type != VeskEntryKind::Temporary)
        return !positive;
    return VeskChoiceCondition::decide(entry.presenceId() == id, positive);
}

} // namespace VeskLeafRule

// One entry as the rules see it in one call: each piece read from the host on
// first use, then reused by the later tests of the same call. The texts are
// built in place only when read, so a call that reads one text pays for one.
class VeskEntryReader
{
public:
    // The presence's id and status text are read only when asked for here,
    // both in one look at the presence.
    VeskEntryReader(const VeskBuddy &buddy, bool readsPresenceId, bool readsDescription)
        : buddy(buddy)
        , readsPresenceId(readsPresenceId)
        , readsDescription(readsDescription)
    { }
    ~VeskEntryReader()
    {
        for (unsigned pieces = read & AllTexts; pieces; pieces &= pieces - 1)
            text(Piece(qCountTrailingZeroBits(pieces))).~QString();
    }
    VeskEntryReader(const VeskEntryReader &) = delete;
    VeskEntryReader &operator=(const VeskEntryReader &) = delete;

    const VeskBuddy &buddy;

    int type()
    {
        if (!(read & TypeRead)) {
            entryType = buddy.getType();
            read |= TypeRead;
        }
        return entryType;
    }
    const QString &display()
    {
        if (!(read & bit(Display))) {
            new (texts[Display]) QString(buddy.getDisplay());
            read |= bit(Display);
        }
        return text(Display);
    }
    // The display name, read from the host by the caller just before: the
    // later display() answers it without asking again. Only before any read.
    void takeDisplay(QString &&name) { setText(Display, std::move(name)); }
    // Of a contact or a temporary contact.
    const QString &presenceId()
    {
        readPresence();
        return text(PresenceId);
    }
    // Of a contact.
    const QString &description()
    {
        readPresence();
        return text(Description);
    }
    const QString &group()
    {
        if (!(read & bit(Group))) {
            const int kind = type();
            setText(Group,
                kind == VeskEntryKind::Contact ? VeskBuddyContact(buddy).getParent().getDisplay()
                    : kind == VeskEntryKind::Temporary
                    ? VeskBuddyTemporary(buddy).getGroup().getDisplay()
                    : QString());
        }
        return text(Group);
    }
    const VeskAccountConnection *account()
    {
        if (!(read & AccountRead)) {
            const int kind = type();
            entryAccount = kind == VeskEntryKind::Contact ? VeskBuddyContact(buddy).getAccount()
                : kind == VeskEntryKind::Temporary        ? VeskBuddyTemporary(buddy).getAccount()
                                                          : nullptr;
            read |= AccountRead;
        }
        return entryAccount;
    }
    // Of an entry with an account.
    const QString &protocolName()
    {
        if (!(read & bit(Protocol)))
            setText(Protocol, entryAccount->getProtocolName());
        return text(Protocol);
    }
    const QString &uid()
    {
        if (!(read & bit(Uid)))
            setText(Uid, entryAccount->getUid());
        return text(Uid);
    }

    // The quick search's questions (see vesksearchfold_p.h), for a needle
    // with foundIn(const QString &).
    template <class Needle> bool uidHas(Needle &needle) { return needle.foundIn(uid()); }
    template <class Needle> bool groupHas(Needle &needle) { return needle.foundIn(group()); }

private:
    enum Piece { Display, PresenceId, Description, Group, Protocol, Uid, PieceCount };
    enum : unsigned {
        AllTexts = (1u << PieceCount) - 1,
        TypeRead = 1u << 8,
        AccountRead = 1u << 9,
        PresenceRead = 1u << 10,
    };
    static unsigned bit(Piece piece) { return 1u << piece; }

    QString &text(Piece piece) { return *std::launder(reinterpret_cast<QString *>(texts[piece])); }
    void setText(Piece piece, QString &&value)
    {
        new (texts[piece]) QString(std::move(value));
        read |= bit(piece);
    }
    void readPresence()
    {
        if (read & PresenceRead)
            return;
        read |= PresenceRead;
        QString id, description;
        if (type() == VeskEntryKind::Contact) {
            const VeskPresence current = VeskBuddyContact(buddy).getPresence();
            if (readsPresenceId)
                id = current.getId();
            if (readsDescription)
                description = current.getDescription();
        } else if (readsPresenceId) {
            id = VeskBuddyTemporary(buddy).getPresence().getId();
        }
        setText(PresenceId, std::move(id));
        setText(Description, std::move(description));
    }

    const bool readsPresenceId;
    const bool readsDescription;
    unsigned read = 0;
    int entryType = 0;
    const VeskAccountConnection *entryAccount = nullptr;
    alignas(QString) unsigned char texts[PieceCount][sizeof(QString)];
};
