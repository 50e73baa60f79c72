#include "rosterfile.h"

#include <veskstandin.h>

#include <QCoreApplication>
#include <QHash>
#include <QVector>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("VeskRosterFile", text);
}

// A key or a short literal as it stands in the document, without a copy.
struct Span
{
    const char *data = nullptr;
    int size = 0;

    bool is(const char *literal) const
    {
        return int(std::strlen(literal)) == size && std::memcmp(data, literal, size_t(size)) == 0;
    }
    QString toString() const { return QString::fromUtf8(data, size); }
};

struct Number
{
    double value = 0;
    bool whole = false; // an integral value within int range
};

// One value of the document, as much as the roster needs of it.
struct Value
{
    enum Kind { Null, Bool, Num, String, Array, Object };
    Kind kind = Null;
    bool boolean = false;
    Number number;
    QString string;
    const char *at = nullptr;
};

struct Contact
{
    QString display;
    QString group;
    bool hasGroup = false;
    const char *groupAt = nullptr;
    int account = -1;
    const char *accountAt = nullptr;
    bool temporary = false;
    QString presenceId, presenceDisplay, presenceDescription;
    int presenceFlag = 0;
    int presencePriority = 0;
    int subscription = 0;
    bool hasChats = false;
    Value chats;
};

struct Account
{
    QString uid;
    QString protocol;
    const char *protocolAt = nullptr;
};

struct Group
{
    QString name;
    int pos = 0;
};

struct Protocol
{
    QString name;
    QList<VeskPresence> presences;
};

// A strict JSON reader that walks the roster document once, in place, and
// fills plain structures; the stand-in host is filled only once the whole
// document has been read and its references resolved, so a bad file leaves no
// half-built roster behind.
class RosterReader
{
public:
    explicit RosterReader(const QByteArray &json)
        : begin(json.constData())
        , p(json.constData())
        , end(json.constData() + json.size())
    { }

    bool read();
    QString errorMessage() const;

    QVector<Protocol> protocols;
    QVector<Account> accounts;
    QVector<Group> groups;
    std::vector<Contact> contacts;

    bool fail(const char *at, const QString &message)
    {
        if (errorAt)
            return false;
        errorAt = at ? at : p;
        error = message;
        return false;
    }

private:
    void skipSpace()
    {
        while (p < end && (*p == ' ' || *p == '\n' || *p == '\r' || *p == '\t'))
            ++p;
    }
    bool expect(char c, const char *what)
    {
        skipSpace();
        if (p < end && *p == c) {
            ++p;
            return true;
        }
        return fail(p, tr("expected %1").arg(QLatin1String(what)));
    }

    bool readKey(Span *key, QByteArray *unescaped);
    bool readString(QString *out);
    bool readRawString(const char **start, const char **stop, bool *escaped);
    bool readNumber(Number *out);
    bool matchLiteral(const char *literal);
    bool readLiteral(const char *literal);
    bool readValue(Value *out);

    template <typename Member> bool readObject(const char *what, Member member);
    template <typename Element> bool readArray(const char *what, Element element);

    bool readStringMember(const Span &key, QString *out);
    bool readSharedStringMember(const Span &key, QString *out);
    bool readIntMember(const Span &key, int *out);
    bool readBoolMember(const Span &key, bool *out);
    bool unknownKey(const char *at, const Span &key, const char *where, const char *valid);

    bool readProtocol();
    bool readPresence(QString *id, QString *display, QString *description, int *flag, int *priority,
        bool withDescription);
    bool readAccount();
    bool readGroup();
    bool readContact();

    const char *begin;
    const char *p;
    const char *end;
    const char *errorAt = nullptr;
    QString error;
    // Presence texts repeat across thousands of contacts; sharing one copy
    // of each keeps large rosters small.
    QHash<QByteArray, QString> sharedStrings;
};

QString RosterReader::errorMessage() const
{
    int line = 1;
    const char *lineStart = begin;
    for (const char *c = begin; c < errorAt; ++c) {
        if (*c == '\n') {
            ++line;
            lineStart = c + 1;
        }
    }
    // Columns count characters, not bytes: continuation bytes are skipped.
    int column = 1;
    for (const char *c = lineStart; c < errorAt; ++c) {
        if ((uchar(*c) & 0xC0) != 0x80)
            ++column;
    }
    return tr("line %1, column %2: %3").arg(line).arg(column).arg(error);
}

bool RosterReader::readRawString(const char **start, const char **stop, bool *escaped)
{
    skipSpace();
    if (p >= end || *p != '"')
        return fail(p, tr("expected a string"));
    ++p;
    *start = p;
    *escaped = false;
    while (p < end) {
        const uchar c = uchar(*p);
        if (c == '"') {
            *stop = p++;
            return true;
        }
        if (c < 0x20)
            return fail(p, tr("control character inside a string (write it as an escape)"));
        if (c == '\\') {
            *escaped = true;
            if (++p >= end)
                break;
        }
        ++p;
    }
    return fail(*start - 1, tr("unterminated string"));
}

// Decodes the escapes of a string that readRawString() has delimited.
bool decodeEscapes(RosterReader *reader, const char *start, const char *stop, QByteArray *out)
{
    out->clear();
    out->reserve(int(stop - start));
    for (const char *c = start; c < stop; ++c) {
        if (*c != '\\') {
            out->append(*c);
            continue;
        }
        const char *escape = c++;
        switch (*c) {
        case '"':
            out->append('"');
            break;
        case '\\':
            out->append('\\');
            break;
        case '/':
            out->append('/');
            break;
        case 'b':
            out->append('\b');
            break;
        case 'f':
            out->append('\f');
            break;
        case 'n':
            out->append('\n');
            break;
        case 'r':
            out->append('\r');
            break;
        case 't':
            out->append('\t');
            break;
        case 'u': {
            auto hex4 = [&](const char *h, uint *code) {
                if (stop - h < 4)
                    return false;
                *code = 0;
                for (int i = 0; i < 4; ++i) {
                    const char d = h[i];
                    *code <<= 4;
                    if (d >= '0' && d <= '9')
                        *code |= uint(d - '0');
                    else if (d >= 'a' && d <= 'f')
                        *code |= uint(d - 'a' + 10);
                    else if (d >= 'A' && d <= 'F')
                        *code |= uint(d - 'A' + 10);
                    else
                        return false;
                }
                return true;
            };
            uint code = 0;
            if (!hex4(c + 1, &code))
                return reader->fail(escape, tr("bad \\u escape (expected four hex digits)"));
            c += 4;
            if (code >= 0xD800 && code < 0xDC00) {
                uint low = 0;
                if (stop - c >= 7 && c[1] == '\\' && c[2] == 'u' && hex4(c + 3, &low)
                    && low >= 0xDC00 && low < 0xE000) {
                    code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
                    c += 6;
                } else {
                    return reader->fail(escape, tr("unpaired surrogate in a \\u escape"));
                }
            } else if (code >= 0xDC00 && code < 0xE000) {
                return reader->fail(escape, tr("unpaired surrogate in a \\u escape"));
            }
            const char32_t ch = char32_t(code);
            out->append(QString::fromUcs4(&ch, 1).toUtf8());
            break;
        }
        default:
            return reader->fail(escape, tr("unknown escape in a string"));
        }
    }
    return true;
}

bool RosterReader::readString(QString *out)
{
    const char *start = nullptr;
    const char *stop = nullptr;
    bool escaped = false;
    if (!readRawString(&start, &stop, &escaped))
        return false;
    if (!escaped) {
        *out = QString::fromUtf8(start, int(stop - start));
        return true;
    }
    QByteArray bytes;
    if (!decodeEscapes(this, start, stop, &bytes))
        return false;
    *out = QString::fromUtf8(bytes);
    return true;
}

bool RosterReader::readKey(Span *key, QByteArray *unescaped)
{
    const char *start = nullptr;
    const char *stop = nullptr;
    bool escaped = false;
    if (!readRawString(&start, &stop, &escaped))
        return false;
    if (!escaped) {
        key->data = start;
        key->size = int(stop - start);
        return true;
    }
    if (!decodeEscapes(this, start, stop, unescaped))
        return false;
    key->data = unescaped->constData();
    key->size = unescaped->size();
    return true;
}

bool RosterReader::readNumber(Number *out)
{
    const char *start = p;
    const char *c = p;
    auto digits = [&]() {
        const char *first = c;
        while (c < end && *c >= '0' && *c <= '9')
            ++c;
        return c > first;
    };
    if (c < end && *c == '-')
        ++c;
    if (c < end && *c == '0')
        ++c;
    else if (!digits())
        return fail(start, tr("malformed number"));
    const char *integralEnd = c;
    bool plain = true;
    if (c < end && *c == '.') {
        ++c;
        plain = false;
        if (!digits())
            return fail(start, tr("malformed number (digits must follow the decimal point)"));
    }
    if (c < end && (*c == 'e' || *c == 'E')) {
        ++c;
        plain = false;
        if (c < end && (*c == '+' || *c == '-'))
            ++c;
        if (!digits())
            return fail(start, tr("malformed number (digits must follow the exponent)"));
    }
    p = c;
    // Short integers, by far the most common, are read without a round trip
    // through floating point.
    if (plain && integralEnd - start <= 12) {
        qint64 v = 0;
        const char *d = start + (*start == '-' ? 1 : 0);
        for (; d < integralEnd; ++d)
            v = v * 10 + (*d - '0');
        if (*start == '-')
            v = -v;
        out->value = double(v);
        out->whole = v >= std::numeric_limits<int>::min() && v <= std::numeric_limits<int>::max();
        return true;
    }
    bool ok = false;
    out->value = QByteArray::fromRawData(start, int(c - start)).toDouble(&ok);
    if (!ok && !std::isinf(out->value))
        return fail(start, tr("malformed number"));
    out->whole = std::isfinite(out->value) && std::floor(out->value) == out->value
        && out->value >= std::numeric_limits<int>::min()
        && out->value <= std::numeric_limits<int>::max();
    return true;
}

bool RosterReader::matchLiteral(const char *literal)
{
    const size_t size = std::strlen(literal);
    if (size_t(end - p) >= size && std::memcmp(p, literal, size) == 0) {
        p += size;
        return true;
    }
    return false;
}

bool RosterReader::readLiteral(const char *literal)
{
    return matchLiteral(literal) || fail(p, tr("unexpected character (expected a value)"));
}

bool RosterReader::readValue(Value *out)
{
    skipSpace();
    out->at = p;
    if (p >= end)
        return fail(p, tr("unexpected end of the document (expected a value)"));
    switch (*p) {
    case '"':
        out->kind = Value::String;
        return readString(&out->string);
    case 't':
        out->kind = Value::Bool;
        out->boolean = true;
        return readLiteral("true");
    case 'f':
        out->kind = Value::Bool;
        out->boolean = false;
        return readLiteral("false");
    case 'n':
        out->kind = Value::Null;
        return readLiteral("null");
    case '[':
        out->kind = Value::Array;
        return true;
    case '{':
        out->kind = Value::Object;
        return true;
    default:
        if (*p == '-' || (*p >= '0' && *p <= '9')) {
            out->kind = Value::Num;
            return readNumber(&out->number);
        }
        return fail(p, tr("unexpected character (expected a value)"));
    }
}

template <typename Member> bool RosterReader::readObject(const char *what, Member member)
{
    skipSpace();
    if (p >= end || *p != '{')
        return fail(p, tr("expected %1 (an object)").arg(QLatin1String(what)));
    ++p;
    skipSpace();
    if (p < end && *p == '}') {
        ++p;
        return true;
    }
    QByteArray unescaped;
    for (;;) {
        skipSpace();
        const char *keyAt = p;
        if (p >= end || *p != '"')
            return fail(p, tr("expected a key in double quotes in %1").arg(QLatin1String(what)));
        Span key;
        if (!readKey(&key, &unescaped) || !expect(':', "':' after a key"))
            return false;
        if (!member(key, keyAt))
            return false;
        skipSpace();
        if (p < end && *p == ',') {
            ++p;
            continue;
        }
        if (p < end && *p == '}') {
            ++p;
            return true;
        }
        return fail(p, tr("expected ',' or '}' after a member of %1").arg(QLatin1String(what)));
    }
}

template <typename Element> bool RosterReader::readArray(const char *what, Element element)
{
    skipSpace();
    if (p >= end || *p != '[')
        return fail(p, tr("expected %1 (an array)").arg(QLatin1String(what)));
    ++p;
    skipSpace();
    if (p < end && *p == ']') {
        ++p;
        return true;
    }
    for (;;) {
        if (!element())
            return false;
        skipSpace();
        if (p < end && *p == ',') {
            ++p;
            continue;
        }
        if (p < end && *p == ']') {
            ++p;
            return true;
        }
        return fail(p, tr("expected ',' or ']' after an element of %1").arg(QLatin1String(what)));
    }
}

bool RosterReader::readStringMember(const Span &key, QString *out)
{
    skipSpace();
    if (p < end && *p == '"')
        return readString(out);
    return fail(p, tr("\"%1\" must be a string").arg(key.toString()));
}

bool RosterReader::readSharedStringMember(const Span &key, QString *out)
{
    skipSpace();
    if (p >= end || *p != '"')
        return fail(p, tr("\"%1\" must be a string").arg(key.toString()));
    const char *start = nullptr;
    const char *stop = nullptr;
    bool escaped = false;
    const char *at = p;
    if (!readRawString(&start, &stop, &escaped))
        return false;
    if (escaped || stop - start > 64 || sharedStrings.size() >= 4096) {
        p = at;
        return readString(out);
    }
    const QByteArray bytes = QByteArray::fromRawData(start, int(stop - start));
    auto it = sharedStrings.constFind(bytes);
    if (it == sharedStrings.constEnd())
        it = sharedStrings.insert(QByteArray(start, int(stop - start)), QString::fromUtf8(bytes));
    *out = *it;
    return true;
}

bool RosterReader::readIntMember(const Span &key, int *out)
{
    skipSpace();
    const char *at = p;
    Number number;
    if (p < end && (*p == '-' || (*p >= '0' && *p <= '9'))) {
        if (!readNumber(&number))
            return false;
        if (number.whole) {
            *out = int(number.value);
            return true;
        }
    }
    return fail(at, tr("\"%1\" must be a whole number").arg(key.toString()));
}

bool RosterReader::readBoolMember(const Span &key, bool *out)
{
    skipSpace();
    if (matchLiteral("true")) {
        *out = true;
        return true;
    }
    if (matchLiteral("false")) {
        *out = false;
        return true;
    }
    return fail(p, tr("\"%1\" must be true or false").arg(key.toString()));
}

bool RosterReader::unknownKey(const char *at, const Span &key, const char *where, const char *valid)
{
    return fail(at,
        tr("unknown key \"%1\" in %2 (valid keys: %3)")
            .arg(key.toString(), QLatin1String(where), QLatin1String(valid)));
}

bool RosterReader::readPresence(QString *id, QString *display, QString *description, int *flag,
    int *priority, bool withDescription)
{
    const char *valid = withDescription ? "id, display, flag, priority, description"
                                        : "id, display, flag, priority";
    return readObject("a presence", [&](const Span &key, const char *keyAt) {
        if (key.is("id"))
            return readSharedStringMember(key, id);
        if (key.is("display"))
            return readSharedStringMember(key, display);
        if (key.is("flag"))
            return readIntMember(key, flag);
        if (key.is("priority"))
            return readIntMember(key, priority);
        if (withDescription && key.is("description"))
            return readSharedStringMember(key, description);
        return unknownKey(keyAt, key, "a presence", valid);
    });
}

bool RosterReader::readProtocol()
{
    Protocol protocol;
    const char *at = p;
    const bool ok = readObject("a protocol", [&](const Span &key, const char *keyAt) {
        if (key.is("name"))
            return readStringMember(key, &protocol.name);
        if (key.is("presences")) {
            return readArray("\"presences\"", [&]() {
                QString id, display, unused;
                int flag = 0;
                int priority = 0;
                if (!readPresence(&id, &display, &unused, &flag, &priority, false))
                    return false;
                protocol.presences.append(
                    VeskStandIn::makePresence(id, display, QString(), flag, priority));
                return true;
            });
        }
        return unknownKey(keyAt, key, "a protocol", "name, presences");
    });
    if (!ok)
        return false;
    if (protocol.name.isEmpty())
        return fail(at, tr("a protocol needs a non-empty \"name\""));
    protocols.append(protocol);
    return true;
}

bool RosterReader::readAccount()
{
    Account account;
    const char *at = p;
    const bool ok = readObject("an account", [&](const Span &key, const char *keyAt) {
        if (key.is("uid"))
            return readStringMember(key, &account.uid);
        if (key.is("protocol")) {
            skipSpace();
            account.protocolAt = p;
            return readStringMember(key, &account.protocol);
        }
        return unknownKey(keyAt, key, "an account", "uid, protocol");
    });
    if (!ok)
        return false;
    if (!account.protocolAt)
        return fail(at, tr("an account needs a \"protocol\""));
    accounts.append(account);
    return true;
}

bool RosterReader::readGroup()
{
    Group group;
    const char *at = p;
    bool named = false;
    const bool ok = readObject("a group", [&](const Span &key, const char *keyAt) {
        if (key.is("name")) {
            named = true;
            return readStringMember(key, &group.name);
        }
        if (key.is("pos"))
            return readIntMember(key, &group.pos);
        return unknownKey(keyAt, key, "a group", "name, pos");
    });
    if (!ok)
        return false;
    if (!named)
        return fail(at, tr("a group needs a \"name\""));
    groups.append(group);
    return true;
}

bool RosterReader::readContact()
{
    Contact contact;
    const bool ok = readObject("a contact", [&](const Span &key, const char *keyAt) {
        if (key.is("display"))
            return readStringMember(key, &contact.display);
        if (key.is("group")) {
            skipSpace();
            contact.groupAt = p;
            contact.hasGroup = true;
            return readStringMember(key, &contact.group);
        }
        if (key.is("account")) {
            skipSpace();
            contact.accountAt = p;
            if (p < end && *p == 'n') {
                contact.account = -1;
                return readLiteral("null");
            }
            if (!readIntMember(key, &contact.account))
                return false;
            if (contact.account < 0)
                return fail(
                    contact.accountAt, tr("\"account\" must be an index into \"accounts\""));
            return true;
        }
        if (key.is("temporary"))
            return readBoolMember(key, &contact.temporary);
        if (key.is("presence")) {
            return readPresence(&contact.presenceId, &contact.presenceDisplay,
                &contact.presenceDescription, &contact.presenceFlag, &contact.presencePriority,
                true);
        }
        if (key.is("subscription"))
            return readIntMember(key, &contact.subscription);
        if (key.is("chats_count")) {
            if (!readValue(&contact.chats))
                return false;
            if (contact.chats.kind == Value::Array || contact.chats.kind == Value::Object) {
                return fail(contact.chats.at,
                    tr("\"chats_count\" must be a number, a string, true, false or null"));
            }
            contact.hasChats = true;
            return true;
        }
        return unknownKey(keyAt, key, "a contact",
            "display, group, account, temporary, presence, subscription, chats_count");
    });
    if (!ok)
        return false;
    contacts.push_back(std::move(contact));
    return true;
}

bool RosterReader::read()
{
    // A byte order mark is tolerated, as editors like to write one.
    if (end - p >= 3 && std::memcmp(p, "\xEF\xBB\xBF", 3) == 0)
        p += 3;
    skipSpace();
    if (p == end)
        return fail(p, tr("the roster is empty (expected a JSON object)"));
    const bool ok = readObject("the roster", [&](const Span &key, const char *keyAt) {
        if (key.is("protocols"))
            return readArray("\"protocols\"", [&]() { return readProtocol(); });
        if (key.is("accounts"))
            return readArray("\"accounts\"", [&]() { return readAccount(); });
        if (key.is("groups"))
            return readArray("\"groups\"", [&]() { return readGroup(); });
        if (key.is("contacts"))
            return readArray("\"contacts\"", [&]() { return readContact(); });
        return unknownKey(keyAt, key, "the roster", "protocols, accounts, groups, contacts");
    });
    if (!ok)
        return false;
    skipSpace();
    if (p != end)
        return fail(p, tr("unexpected text after the roster object"));
    return true;
}

VeskArg chatsArg(const Value &value)
{
    switch (value.kind) {
    case Value::Num:
        if (value.number.whole)
            return VeskStandIn::makeIntArg(int(value.number.value));
        return VeskStandIn::makeArg(VeskArg::TypeDouble, value.number.value);
    case Value::String:
        return VeskStandIn::makeArg(VeskArg::TypeString, value.string);
    case Value::Bool:
        return VeskStandIn::makeArg(VeskArg::TypeBool, value.boolean);
    default:
        return VeskStandIn::makeArg(VeskArg::TypeNone, QVariant());
    }
}

} // namespace

namespace VeskRosterFile {

bool load(const QByteArray &json, QString *error)
{
    VeskStandIn::resetRoster();
    RosterReader reader(json);
    bool ok = reader.read();

    // References are resolved before anything is built, so that a bad one
    // leaves the roster empty.
    QHash<QString, int> protocolIndex;
    QHash<QString, int> groupIndex;
    if (ok) {
        for (int i = 0; i < reader.protocols.size(); ++i) {
            if (!protocolIndex.contains(reader.protocols.at(i).name))
                protocolIndex.insert(reader.protocols.at(i).name, i);
        }
        for (const Account &account : qAsConst(reader.accounts)) {
            if (!protocolIndex.contains(account.protocol)) {
                ok = reader.fail(account.protocolAt,
                    tr("account \"%1\" names the protocol \"%2\", which \"protocols\" does not "
                       "list")
                        .arg(account.uid, account.protocol));
                break;
            }
        }
    }
    if (ok) {
        // Group names may repeat, as in a real roster; a contact joins the
        // first group of its name.
        for (int i = 0; i < reader.groups.size(); ++i) {
            if (!groupIndex.contains(reader.groups.at(i).name))
                groupIndex.insert(reader.groups.at(i).name, i);
        }
        for (const Contact &contact : reader.contacts) {
            if (contact.hasGroup && !groupIndex.contains(contact.group)) {
                ok = reader.fail(contact.groupAt,
                    tr("contact \"%1\" names the group \"%2\", which \"groups\" does not list")
                        .arg(contact.display, contact.group));
                break;
            }
            if (contact.account >= reader.accounts.size()) {
                ok = reader.fail(contact.accountAt,
                    tr("contact \"%1\" names account %2, but there are %3 accounts "
                       "(indexes start at 0)")
                        .arg(contact.display)
                        .arg(contact.account)
                        .arg(reader.accounts.size()));
                break;
            }
        }
    }
    if (!ok) {
        if (error)
            *error = reader.errorMessage();
        return false;
    }

    for (const Protocol &protocol : qAsConst(reader.protocols))
        VeskStandIn::addProtocol(protocol.name, protocol.presences);
    QVector<VeskAccountConnection *> accounts;
    accounts.reserve(reader.accounts.size());
    for (const Account &account : qAsConst(reader.accounts))
        accounts.append(VeskStandIn::addAccount(account.uid, account.protocol));
    QVector<VeskBuddy> groups;
    groups.reserve(reader.groups.size());
    for (const Group &group : qAsConst(reader.groups))
        groups.append(VeskStandIn::addGroup(group.name, group.pos));

    for (const Contact &contact : reader.contacts) {
        VeskStandIn::ContactInfo info;
        info.display = contact.display;
        if (contact.hasGroup)
            info.group = groups.at(groupIndex.value(contact.group));
        if (contact.account >= 0)
            info.account = accounts.at(contact.account);
        info.presence = VeskStandIn::makePresence(contact.presenceId, contact.presenceDisplay,
            contact.presenceDescription, contact.presenceFlag, contact.presencePriority);
        if (contact.temporary) {
            VeskStandIn::addTemporary(info);
            continue;
        }
        info.subscription = contact.subscription;
        if (contact.hasChats)
            info.attributes.insert(QStringLiteral("chats_count"), chatsArg(contact.chats));
        VeskStandIn::addContact(info);
    }
    return true;
}

} // namespace VeskRosterFile
