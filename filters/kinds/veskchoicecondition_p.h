#pragma once

// Not part of the library's API: the code the group, account, protocol and
// presence filters share. Each of them holds a chosen value, an "is"/"is not"
// flag and the label of the chosen condition, and passes an entry when the
// entry's value equals the chosen one ("is") or does not ("is not").

#include <veskfield.h>

#include <QList>
#include <QString>
#include <QStringList>

class VeskAccountConnection;
class VeskBuddy;

namespace VeskChoiceCondition {

inline bool decide(bool match, bool positive)
{
    return match == positive;
}

// Walks the fields in order, the last field of a kind winning: "is_or_not"
// sets the condition; any other field, whatever its id, is the value field
// (whose selected label goes to valueLabel when one is asked for).
void read(const QList<VeskField> &fields, QString *value, bool *positive, QString *conditionLabel,
    QString *valueLabel = nullptr);

// The "is_or_not" combo box, then the value combo box.
QList<VeskField> configuration(bool positive, const QString &valueFieldId, const QStringList &ids,
    const QStringList &labels, const QString &value);

// The account through which a contact or a temporary contact is known; null
// for any other entry and for an entry without an account.
VeskAccountConnection *accountOf(const VeskBuddy &buddy);

// Whether identity is uid + "@" + protocol, compared piece by piece so that
// the roster view's per-entry call builds no string.
inline bool isAccountIdentity(const QString &identity, const QString &uid, const QString &protocol)
{
    return identity.size() == uid.size() + 1 + protocol.size()
        && identity.startsWith(uid, Qt::CaseSensitive)
        && identity.at(uid.size()) == QLatin1Char('@')
        && identity.endsWith(protocol, Qt::CaseSensitive);
}

// The distinct texts that the user's accounts give, in no particular order.
enum AccountText { AccountIdentity, ProtocolName };
QStringList distinctAccountTexts(AccountText what);

} // namespace VeskChoiceCondition
