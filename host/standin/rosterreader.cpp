#include "rosterreader_p.h"

#include <veskstandin.h>

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>
#include <cstring>
#include <limits>

namespace VeskRosterReading {

QString tr(const char *text)
{
    return QCoreApplication::translate("VeskRosterFile", text);
}

QString quoted(const QString &text)
{
    QString out;
    out.reserve(text.size() + 2);
    out += QLatin1Char('"');
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const ushort u = c.unicode();
        const bool pair
            = c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (c == QLatin1Char('"') || c == QLatin1Char('\\')) {
            out += QLatin1Char('\\');
            out += c;
        } else if (u < 0x20 || (u >= 0x7F && u < 0xA0) || (c.isSurrogate() && !pair)) {
            out += QStringLiteral("\\u%1").arg(u, 4, 16, QLatin1Char('0'));
        } else {
            out += c;
            if (pair)
                out += text.at(++i);
        }
    }
    out += QLatin1Char('"');
    return out;
}

bool isIdentifier(const QString &key)
{
    if (key.isEmpty() || key.at(0).isDigit())
        return false;
    for (const QChar c : key) {
        if (!(c.isLetterOrNumber() && c.unicode() < 0x80) && c != QLatin1Char('_'))
            return false;
    }
    return true;
}

bool mayHoldLoneSurrogates(const QByteArray &json)
{
    const char *p = json.constData();
    const char *end = p + json.size();
    while ((p = static_cast<const char *>(std::memchr(p, '\\', size_t(end - p))))) {
        // \uD800 to \uDFFF: the third hex digit is 8 to F.
        if (end - p >= 4 && p[1] == 'u' && (p[2] == 'd' || p[2] == 'D')
            && ((p[3] >= '8' && p[3] <= '9') || (p[3] >= 'a' && p[3] <= 'f')
                || (p[3] >= 'A' && p[3] <= 'F')))
            return true;
        p += 2; // an escaped backslash must not start another escape
        if (p >= end)
            break;
    }
    return false;
}

namespace {

    bool holdsLoneSurrogate(const QString &text)
    {
        for (int i = 0; i < text.size(); ++i) {
            const QChar c = text.at(i);
            if (!c.isSurrogate())
                continue;
            if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
                ++i;
            else
                return true;
        }
        return false;
    }

} // namespace

// Fills values[i] with the member keys[i] (undefined when absent) and refuses
// any other key, naming the valid ones. Looking the known keys up, instead of
// iterating the members, builds no key strings for a valid object.
bool RosterReader::members(const QJsonObject &object, const Path &at, const char *const *keys,
    int count, QJsonValue *values)
{
    int found = 0;
    for (int i = 0; i < count; ++i) {
        const auto it = object.constFind(QLatin1String(keys[i]));
        if (it == object.constEnd()) {
            values[i] = QJsonValue(QJsonValue::Undefined);
        } else {
            values[i] = it.value();
            ++found;
        }
    }
    if (found == object.size())
        return true;
    QStringList valid;
    for (int i = 0; i < count; ++i)
        valid.append(QLatin1String(keys[i]));
    for (auto it = object.begin(); it != object.end(); ++it) {
        const QString key = it.key();
        if (!valid.contains(key)) {
            return fail(at.member(key),
                tr("unknown key; valid keys: %1").arg(valid.join(QLatin1String(", "))));
        }
    }
    return true;
}

bool RosterReader::object(const QJsonValue &value, const Path &at, QJsonObject *out)
{
    if (!value.isObject())
        return fail(at, tr("must be an object"));
    *out = value.toObject();
    return true;
}

bool RosterReader::array(const QJsonValue &value, const Path &at, QJsonArray *out)
{
    if (value.isUndefined())
        return true;
    if (!value.isArray())
        return fail(at, tr("must be an array"));
    *out = value.toArray();
    return true;
}

bool RosterReader::string(const QJsonValue &value, const Path &at, QString *out)
{
    if (value.isUndefined())
        return true;
    if (!value.isString())
        return fail(at, tr("must be a string"));
    *out = value.toString();
    if (checkSurrogates && holdsLoneSurrogate(*out)) {
        return fail(
            at, tr("%1 holds a lone surrogate, which is not a character").arg(quoted(*out)));
    }
    return true;
}

bool RosterReader::sharedString(const QJsonValue &value, const Path &at, QString *out)
{
    if (!string(value, at, out))
        return false;
    if (out->size() > 64)
        return true;
    auto it = sharedStrings.constFind(*out);
    if (it != sharedStrings.constEnd())
        *out = *it;
    else if (sharedStrings.size() < 4096)
        sharedStrings.insert(*out, *out);
    return true;
}

// Whole-valued numbers in int range are integers, whether written 7 or 7.0.
bool isWhole(double number)
{
    return std::floor(number) == number && number >= std::numeric_limits<int>::min()
        && number <= std::numeric_limits<int>::max();
}

VeskArg chatsArg(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Double:
        if (isWhole(value.toDouble()))
            return VeskStandIn::makeIntArg(int(value.toDouble()));
        return VeskStandIn::makeArg(VeskArg::TypeDouble, value.toDouble());
    case QJsonValue::String:
        return VeskStandIn::makeArg(VeskArg::TypeString, value.toString());
    case QJsonValue::Bool:
        return VeskStandIn::makeArg(VeskArg::TypeBool, value.toBool());
    default:
        return VeskStandIn::makeArg(VeskArg::TypeNone, QVariant());
    }
}

bool RosterReader::integer(const QJsonValue &value, const Path &at, int *out)
{
    if (value.isUndefined())
        return true;
    if (!value.isDouble() || !isWhole(value.toDouble()))
        return fail(at, tr("must be a whole number from -2147483648 to 2147483647"));
    *out = int(value.toDouble());
    return true;
}

bool RosterReader::boolean(const QJsonValue &value, const Path &at, bool *out)
{
    if (value.isUndefined())
        return true;
    if (!value.isBool())
        return fail(at, tr("must be true or false"));
    *out = value.toBool();
    return true;
}

QString RosterReader::nameList(const QStringList &names) const
{
    // Enough to spot a typo without burying the message under a huge roster's groups.
    const int shown = 8;
    QStringList quotedNames;
    for (int i = 0; i < names.size() && i < shown; ++i)
        quotedNames.append(quoted(names.at(i)));
    if (names.isEmpty())
        return tr("(none)");
    if (names.size() > shown)
        return tr("%1, … (%2 in all)").arg(quotedNames.join(QLatin1String(", "))).arg(names.size());
    return quotedNames.join(QLatin1String(", "));
}

bool RosterReader::readPresence(
    const QJsonValue &value, const Path &at, Contact *into, bool withDescription)
{
    static const char *const keys[] = { "id", "display", "flag", "priority", "description" };
    QJsonObject presence;
    QJsonValue v[5];
    return object(value, at, &presence) && members(presence, at, keys, withDescription ? 5 : 4, v)
        && sharedString(v[0], at.key(keys[0]), &into->presenceId)
        && sharedString(v[1], at.key(keys[1]), &into->presenceDisplay)
        && integer(v[2], at.key(keys[2]), &into->presenceFlag)
        && integer(v[3], at.key(keys[3]), &into->presencePriority)
        && (!withDescription || sharedString(v[4], at.key(keys[4]), &into->presenceDescription));
}

bool RosterReader::readProtocol(const QJsonValue &value, const Path &at)
{
    static const char *const keys[] = { "name", "presences" };
    QJsonObject object;
    QJsonValue v[2];
    Protocol protocol;
    QJsonArray presences;
    if (!this->object(value, at, &object) || !members(object, at, keys, 2, v)
        || !string(v[0], at.key(keys[0]), &protocol.name)
        || !array(v[1], at.key(keys[1]), &presences))
        return false;
    if (protocol.name.isEmpty())
        return fail(at, tr("a protocol needs a non-empty \"name\""));
    const Path presencesAt = at.key(keys[1]);
    for (int i = 0; i < presences.size(); ++i) {
        Contact presence;
        if (!readPresence(presences.at(i), presencesAt.index(i), &presence, false))
            return false;
        protocol.presences.append(VeskStandIn::makePresence(presence.presenceId,
            presence.presenceDisplay, QString(), presence.presenceFlag, presence.presencePriority));
    }
    if (!protocolIndex.contains(protocol.name))
        protocolIndex.insert(protocol.name, protocols.size());
    protocols.append(protocol);
    return true;
}

bool RosterReader::readAccount(const QJsonValue &value, const Path &at)
{
    static const char *const keys[] = { "uid", "protocol" };
    QJsonObject object;
    QJsonValue v[2];
    Account account;
    if (!this->object(value, at, &object) || !members(object, at, keys, 2, v)
        || !string(v[0], at.key(keys[0]), &account.uid)
        || !string(v[1], at.key(keys[1]), &account.protocol))
        return false;
    if (v[1].isUndefined())
        return fail(at, tr("an account needs a \"protocol\""));
    if (!protocolIndex.contains(account.protocol)) {
        QStringList names;
        for (const Protocol &protocol : qAsConst(protocols))
            names.append(protocol.name);
        return fail(at.key(keys[1]),
            tr("no protocol %1; protocols: %2").arg(quoted(account.protocol), nameList(names)));
    }
    accounts.append(account);
    return true;
}

bool RosterReader::readGroup(const QJsonValue &value, const Path &at)
{
    static const char *const keys[] = { "name", "pos" };
    QJsonObject object;
    QJsonValue v[2];
    Group group;
    if (!this->object(value, at, &object) || !members(object, at, keys, 2, v)
        || !string(v[0], at.key(keys[0]), &group.name)
        || !integer(v[1], at.key(keys[1]), &group.pos))
        return false;
    if (v[0].isUndefined())
        return fail(at, tr("a group needs a \"name\""));
    // Group names may repeat, as in a real roster; a contact joins the first
    // group of its name.
    if (!groupIndex.contains(group.name))
        groupIndex.insert(group.name, groups.size());
    groups.append(group);
    return true;
}

bool RosterReader::readContact(const QJsonValue &value, const Path &at)
{
    static const char *const keys[]
        = { "display", "group", "account", "temporary", "presence", "subscription", "chats_count" };
    QJsonObject object;
    QJsonValue v[7];
    Contact contact;
    QString group;
    if (!this->object(value, at, &object) || !members(object, at, keys, 7, v)
        || !string(v[0], at.key(keys[0]), &contact.display)
        || !string(v[1], at.key(keys[1]), &group))
        return false;
    if (!v[1].isUndefined()) {
        contact.group = groupIndex.value(group, -1);
        if (contact.group < 0) {
            QStringList names;
            for (const Group &known : qAsConst(groups))
                names.append(known.name);
            return fail(
                at.key(keys[1]), tr("no group %1; groups: %2").arg(quoted(group), nameList(names)));
        }
    }
    if (!v[2].isUndefined() && !v[2].isNull()) {
        if (!v[2].isDouble() || !isWhole(v[2].toDouble()) || v[2].toDouble() < 0)
            return fail(at.key(keys[2]), tr("must be null or an index into \"accounts\""));
        contact.account = int(v[2].toDouble());
        if (contact.account >= accounts.size()) {
            return fail(at.key(keys[2]),
                tr("no account %1; \"accounts\" lists %2 (indexes start at 0)")
                    .arg(contact.account)
                    .arg(accounts.size()));
        }
    }
    if (!boolean(v[3], at.key(keys[3]), &contact.temporary)
        || (!v[4].isUndefined() && !readPresence(v[4], at.key(keys[4]), &contact, true))
        || !integer(v[5], at.key(keys[5]), &contact.subscription))
        return false;
    if (v[6].isArray() || v[6].isObject()) {
        return fail(at.key(keys[6]), tr("must be a number, a string, true, false or null"));
    }
    QString chatsText;
    if (v[6].isString() && !string(v[6], at.key(keys[6]), &chatsText))
        return false;
    if (!v[6].isUndefined()) {
        contact.hasChats = true;
        contact.chats = chatsArg(v[6]);
    }
    contacts.push_back(std::move(contact));
    return true;
}

bool RosterReader::read(const QJsonDocument &document)
{
    if (!document.isObject())
        return fail(Path(), tr("the roster must be a JSON object"));
    static const char *const keys[] = { "protocols", "accounts", "groups", "contacts" };
    const Path root;
    QJsonValue v[4];
    QJsonArray list[4];
    if (!members(document.object(), root, keys, 4, v))
        return false;
    for (int i = 0; i < 4; ++i) {
        if (!array(v[i], root.key(keys[i]), &list[i]))
            return false;
    }
    // Protocols, accounts and groups are read first, whatever the order in
    // the file, so that each reference can be checked where it stands.
    contacts.reserve(size_t(list[3].size()));
    for (int i = 0; i < 4; ++i) {
        const Path at = root.key(keys[i]);
        for (int j = 0; j < list[i].size(); ++j) {
            const QJsonValue value = list[i].at(j);
            const Path element = at.index(j);
            const bool ok = i == 0 ? readProtocol(value, element)
                : i == 1           ? readAccount(value, element)
                : i == 2           ? readGroup(value, element)
                                   : readContact(value, element);
            if (!ok)
                return false;
        }
    }
    return true;
}

} // namespace VeskRosterReading
