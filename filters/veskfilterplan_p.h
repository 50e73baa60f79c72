#pragma once

// Not part of the library's API: a stack's condition tree, prepared whenever
// the tree or a condition in it changes, so that the roster view's per-entry
// call walks one flat array instead of a tree of virtual calls and list
// copies.

#include "veskchoicecondition_p.h"
#include "veskrosterfiltersstack.h"

#include <veskaccount.h>
#include <veskbuddy.h>
#include <veskentrykind_p.h>
#include <veskpresence.h>

#include <QString>
#include <QtAlgorithms>

#include <new>
#include <vector>

class VeskRosterFiltersStack;

class VeskFilterPlan
{
public:
    // The plan of `stack` and everything below it, as they are now.
    explicit VeskFilterPlan(const VeskRosterFiltersStack &stack);

    // The answer of the stack the plan was made from. Each piece of the entry
    // that some condition needs is read from the host at most once per call;
    // nothing is kept from one call to the next.
    Q_ALWAYS_INLINE bool evaluate(const VeskBuddy &buddy) const;

    // A leaf's condition changed: every stack above it prepares again.
    static void conditionChanged(const VeskRosterFilter *leaf);

    // Plans that a stack replaced while a walk still used them, freed when
    // the last walk ends.
    VeskFilterPlan *nextRetired = nullptr;

private:
    // One test per leaf; a text leaf's condition is part of its test.
    enum class Test : unsigned char {
        Opaque, // a filter of a class the library does not know: asked itself
        DisplayEquals,
        DisplayContains,
        DisplayLacks,
        DisplayNotEmpty,
        DescriptionEquals,
        DescriptionContains,
        DescriptionLacks,
        DescriptionNotEmpty,
        Group,
        Account,
        Protocol,
        Presence,
    };
    // A test, and where to go on from it: the index of the next step, or one
    // of the two outcomes. Short-circuiting AND and OR become jumps.
    enum Target : int { Fail = -1, Pass = -2 };
    struct Step
    {
        Test test;
        bool positive;
        int onTrue;
        int onFalse;
        QString value;
        const VeskRosterFilter *filter;
    };
    class Subject;

    int compile(const VeskRosterFilter *filter, int onTrue, int onFalse, bool isRoot);
    static Test textTest(Test equals, int mode);
    static inline bool textMatches(
        Test test, Test equals, const QString &needle, const QString &text);

    std::vector<Step> steps;
    int entry = Fail;
    bool readsPresenceId = false;
    bool readsDescription = false;
};

// One entry as the tests of one call see it: each piece read from the host on
// first use, then reused by the later tests of the same call. The texts are
// built in place only when read, so a call that reads one text pays for one.
class VeskFilterPlan::Subject
{
public:
    Subject(const VeskBuddy &buddy, const VeskFilterPlan &plan)
        : buddy(buddy)
        , plan(plan)
    { }
    ~Subject()
    {
        for (unsigned pieces = read & AllTexts; pieces; pieces &= pieces - 1)
            text(Piece(qCountTrailingZeroBits(pieces))).~QString();
    }
    Subject(const Subject &) = delete;
    Subject &operator=(const Subject &) = delete;

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
            if (plan.readsPresenceId)
                id = current.getId();
            if (plan.readsDescription)
                description = current.getDescription();
        } else if (plan.readsPresenceId) {
            id = VeskBuddyTemporary(buddy).getPresence().getId();
        }
        setText(PresenceId, std::move(id));
        setText(Description, std::move(description));
    }

    const VeskFilterPlan &plan;
    unsigned read = 0;
    int entryType = 0;
    const VeskAccountConnection *entryAccount = nullptr;
    alignas(QString) unsigned char texts[PieceCount][sizeof(QString)];
};

inline bool VeskFilterPlan::textMatches(
    Test test, Test equals, const QString &needle, const QString &text)
{
    switch (int(test) - int(equals)) {
    case 0:
        return text == needle;
    case 1:
        return text.contains(needle, Qt::CaseSensitive);
    case 2:
        // Every text contains the empty text, so an empty needle passes nothing.
        return !text.contains(needle, Qt::CaseSensitive);
    default:
        return !text.isEmpty();
    }
}

// Each test gives exactly the answer of the leaf it was made from.
Q_ALWAYS_INLINE bool VeskFilterPlan::evaluate(const VeskBuddy &buddy) const
{
    if (entry < 0)
        return entry == Pass;
    Subject subject(buddy, *this);
    const Step *all = steps.data();
    int at = entry;
    do {
        const Step &step = all[at];
        bool passes;
        switch (step.test) {
        case Test::DisplayContains:
            passes = subject.display().contains(step.value, Qt::CaseSensitive);
            break;
        case Test::DisplayEquals:
        case Test::DisplayLacks:
        case Test::DisplayNotEmpty:
            passes = textMatches(step.test, Test::DisplayEquals, step.value, subject.display());
            break;
        case Test::DescriptionEquals:
        case Test::DescriptionContains:
        case Test::DescriptionLacks:
        case Test::DescriptionNotEmpty:
            passes = subject.type() == VeskEntryKind::Contact
                && textMatches(
                    step.test, Test::DescriptionEquals, step.value, subject.description());
            break;
        case Test::Group:
            passes = (subject.group() == step.value) == step.positive;
            break;
        case Test::Account:
            passes = subject.account() ? VeskChoiceCondition::isAccountIdentity(
                                             step.value, subject.uid(), subject.protocolName())
                    == step.positive
                                       : !step.positive;
            break;
        case Test::Protocol:
            passes = subject.account() ? (subject.protocolName() == step.value) == step.positive
                                       : !step.positive;
            break;
        case Test::Presence: {
            const int type = subject.type();
            passes = type == VeskEntryKind::Contact || type == VeskEntryKind::Temporary
                ? (subject.presenceId() == step.value) == step.positive
                : !step.positive;
            break;
        }
        default:
            passes = step.filter->filter(buddy);
            break;
        }
        at = passes ? step.onTrue : step.onFalse;
    } while (at >= 0);
    return at == Pass;
}

inline bool VeskRosterFiltersStack::walk(const VeskBuddy &buddy) const
{
    ++walks;
    const bool passes = plan->evaluate(buddy);
    if (--walks == 0 && Q_UNLIKELY(retired))
        releaseRetired();
    return passes;
}
