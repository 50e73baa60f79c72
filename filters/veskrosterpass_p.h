#pragma once

// Not part of the library's API: the whole-roster call. One call answers a
// list of entries; within it the host cannot change, so what many entries
// share (an account's texts, whether a group's name holds the search) is read
// once and reused for all of them. Nothing is kept once the call returns.

#include "veskleafrule_p.h"
#include "vesksearchfold_p.h"

#include <QHash>
#include <QString>
#include <QVector>

#include <vector>

class VeskRosterFilter;
class VeskRosterFiltersStack;
class VeskRosterQuickSearch;

class VeskRosterPass
{
public:
    // What the manager answers the view: the current filter (a plain stack
    // walked through its plan, any other filter asked, none passing all),
    // narrowed by the search or replaced by it.
    static bool passesOne(const VeskRosterFilter *current, const VeskRosterFiltersStack *stack,
        const VeskRosterQuickSearch *search, const VeskBuddy &buddy);
    static QVector<int> passAll(const VeskRosterFilter *current,
        const VeskRosterFiltersStack *stack, const VeskRosterQuickSearch *search,
        const QVector<VeskBuddy> &entries);

private:
    class Walk;
};

// What the entries of one call share, read on first use.
class VeskSharedPieces
{
public:
    struct Account
    {
        const VeskAccountConnection *account;
        QString uid;
        QString protocolName;
        signed char uidHas; // -1: not looked at yet
    };

    Account &account(const VeskAccountConnection *account)
    {
        if (last < accounts.size() && accounts[last].account == account)
            return accounts[last];
        for (last = 0; last < accounts.size(); ++last) {
            if (accounts[last].account == account)
                return accounts[last];
        }
        accounts.push_back({ account, account->getUid(), account->getProtocolName(), -1 });
        last = accounts.size() - 1;
        return accounts.back();
    }

    bool uidHas(Account &account, VeskSearchFold::Needle &needle)
    {
        if (account.uidHas < 0)
            account.uidHas = needle.foundIn(account.uid);
        return account.uidHas;
    }

    // A group's name as the host hands it out is one shared text for all its
    // members: the text's storage identifies it. The text is kept for the
    // rest of the call, so that its storage cannot be reused by another text.
    bool groupHas(const QString &name, VeskSearchFold::Needle &needle)
    {
        if (name.isEmpty())
            return false;
        const QChar *key = name.constData();
        if (key == lastGroup && name.size() == lastGroupSize)
            return lastGroupHas;
        auto found = groups.constFind(key);
        if (found == groups.constEnd() || found->name.size() != name.size())
            found = groups.insert(key, { name, needle.foundIn(name) });
        lastGroup = key;
        lastGroupSize = name.size();
        lastGroupHas = found->has;
        return lastGroupHas;
    }

private:
    struct Group
    {
        QString name;
        bool has;
    };
    std::vector<Account> accounts;
    std::size_t last = 0;
    QHash<const QChar *, Group> groups;
    const QChar *lastGroup = nullptr;
    qsizetype lastGroupSize = 0;
    bool lastGroupHas = false;
};

// An entry of a whole-roster call: its own pieces through VeskEntryReader,
// the shared ones through the call's VeskSharedPieces.
class VeskSharedEntryReader
{
public:
    VeskSharedEntryReader(const VeskBuddy &buddy, VeskSharedPieces &shared, bool readsPresenceId,
        bool readsDescription)
        : own(buddy, readsPresenceId, readsDescription)
        , shared(shared)
    { }

    int type() { return own.type(); }
    const QString &display() { return own.display(); }
    void takeDisplay(QString &&name) { own.takeDisplay(std::move(name)); }
    const QString &description() { return own.description(); }
    const QString &presenceId() { return own.presenceId(); }
    const QString &group() { return own.group(); }
    const VeskAccountConnection *account()
    {
        if (!accountRead) {
            const VeskAccountConnection *found = own.account();
            entryAccount = found ? &shared.account(found) : nullptr;
            accountRead = true;
        }
        return entryAccount ? entryAccount->account : nullptr;
    }
    const QString &uid() const { return entryAccount->uid; }
    const QString &protocolName() const { return entryAccount->protocolName; }
    bool uidHas(VeskSearchFold::Needle &needle) { return shared.uidHas(*entryAccount, needle); }
    bool groupHas(VeskSearchFold::Needle &needle) { return shared.groupHas(own.group(), needle); }

private:
    VeskEntryReader own;
    VeskSharedPieces &shared;
    VeskSharedPieces::Account *entryAccount = nullptr;
    bool accountRead = false;
};
