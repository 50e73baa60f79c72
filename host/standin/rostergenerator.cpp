#include "rosterfile.h"

#include <QVector>

#include <algorithm>
#include <iterator>

namespace {

// splitmix64: tiny, fast and the same on every platform and standard library,
// which the distributions of <random> are not.
class Random
{
public:
    explicit Random(quint64 seed)
        : state(seed)
    { }

    quint64 next()
    {
        quint64 z = (state += 0x9E3779B97F4A7C15ULL);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return z ^ (z >> 31);
    }
    // Uniform in [0, bound).
    int below(int bound) { return bound <= 1 ? 0 : int(next() % quint64(bound)); }
    // True with the given chance in percent.
    bool chance(int percent) { return below(100) < percent; }

private:
    quint64 state;
};

struct PresenceKind
{
    const char *id;
    const char *display;
    int flag;
    int priority;
    int weight; // share among contacts, in percent
};

// Most of a large roster is offline; "online" and "away" are the common live states.
const PresenceKind jabberPresences[] = {
    { "online", "Online", 0, 50, 24 },
    { "chat", "Free for chat", 0, 60, 3 },
    { "away", "Away", 1, 30, 14 },
    { "xa", "Extended away", 2, 20, 6 },
    { "dnd", "Do not disturb", 3, 40, 5 },
    { "offline", "Offline", 5, 0, 48 },
};
const PresenceKind icqPresences[] = {
    { "online", "Online", 0, 50, 22 },
    { "away", "Away", 1, 30, 15 },
    { "na", "Not available", 2, 20, 7 },
    { "occupied", "Occupied", 3, 35, 4 },
    { "invisible", "Invisible", 4, 10, 2 },
    { "offline", "Offline", 5, 0, 50 },
};
const PresenceKind ircPresences[] = {
    { "online", "Online", 0, 50, 45 },
    { "away", "Away", 1, 30, 25 },
    { "offline", "Offline", 5, 0, 30 },
};

struct ProtocolKind
{
    const char *name;
    const PresenceKind *presences;
    int count;
    const char *domain;
};

const ProtocolKind protocolKinds[] = {
    { "jabber", jabberPresences, int(std::size(jabberPresences)), "example.org" },
    { "icq", icqPresences, int(std::size(icqPresences)), nullptr },
    { "irc", ircPresences, int(std::size(ircPresences)), "irc.example.net" },
};

const char *const firstNames[] = { "Anna", "Ben", "Chloé", "Dmitri", "Eva", "Farid", "Greta",
    "Hiro", "Inès", "Jonas", "Kwame", "Lena", "Marta", "Noah", "Olga", "Pablo", "Qing", "Rosa",
    "Søren", "Tomasz", "Ursula", "Vikram", "Wen", "Xavier", "Yusuf", "Zoë", "al", "bo", "Юлия",
    "Алексей", "maría josé", "Jean-Baptiste" };
const char *const lastNames[] = { "Müller", "Smith", "García", "Nakamura", "Okafor", "Rossi",
    "Kowalski", "Dubois", "Andersson", "O'Brien", "Nguyen", "Haddad", "Van der Berg", "Ivanova",
    "da Silva", "Schmidt-Wellenburg", "Li", "Papadopoulos" };
const char *const nickParts[] = { "dark", "star", "cat", "ninja", "blue", "wolf", "pixel", "moon",
    "code", "fox", "zen", "byte", "rock", "sky", "tea" };
const char *const groupWords[] = { "Friends", "Work", "Family", "Colleagues", "School",
    "University", "Neighbours", "Gaming", "Football", "Band", "Book club", "Project", "Clients",
    "Old friends", "Travel", "Support" };
const char *const descriptions[] = { "at lunch", "back in 5", "in a meeting", "working from home",
    "on holiday", "do not call", "listening to music", "gone fishing", "busy", "writing code",
    "call me", "exam week", "🎉 birthday!", "auf Reisen", "в отпуске" };

void appendInt(QByteArray &out, qint64 value)
{
    char buffer[24];
    char *c = buffer + sizeof buffer;
    const bool negative = value < 0;
    quint64 v = negative ? quint64(-value) : quint64(value);
    do {
        *--c = char('0' + v % 10);
        v /= 10;
    } while (v);
    if (negative)
        *--c = '-';
    out.append(c, int(buffer + sizeof buffer - c));
}

// The word lists hold nothing that needs escaping but quotes and backslashes.
void appendString(QByteArray &out, const char *text)
{
    out.append('"');
    for (const char *c = text; *c; ++c) {
        if (*c == '"' || *c == '\\')
            out.append('\\');
        out.append(*c);
    }
    out.append('"');
}

void appendString(QByteArray &out, const QByteArray &text)
{
    appendString(out, text.constData());
}

template <typename T, size_t N> const T &pick(Random &random, const T (&table)[N])
{
    return table[random.below(int(N))];
}

const PresenceKind &pickPresence(Random &random, const ProtocolKind &protocol)
{
    int roll = random.below(100);
    for (int i = 0; i < protocol.count; ++i) {
        roll -= protocol.presences[i].weight;
        if (roll < 0)
            return protocol.presences[i];
    }
    return protocol.presences[protocol.count - 1];
}

// Short nicknames, ordinary full names and the occasional very long one.
QByteArray makeName(Random &random, int serial)
{
    QByteArray name;
    const int shape = random.below(100);
    if (shape < 45) {
        name = pick(random, firstNames);
        name += ' ';
        name += pick(random, lastNames);
    } else if (shape < 70) {
        name = pick(random, firstNames);
    } else if (shape < 90) {
        name = pick(random, nickParts);
        name += pick(random, nickParts);
        appendInt(name, random.below(1000));
    } else if (shape < 97) {
        name = pick(random, firstNames);
        name += " (";
        name += pick(random, lastNames);
        name += ", ";
        name += pick(random, groupWords);
        name += ')';
    } else {
        name = "x";
    }
    // A few contacts share a name; the rest are told apart by a serial number.
    if (random.chance(90)) {
        name += ' ';
        appendInt(name, serial);
    }
    return name;
}

} // namespace

namespace VeskRosterFile {

QByteArray generate(int contacts, quint32 seed)
{
    contacts = std::max(contacts, 0);
    Random random(quint64(seed) * 0x2545F4914F6CDD1DULL + 1);
    QByteArray out;
    out.reserve(int(std::min<qint64>(4096 + qint64(contacts) * 230, 1 << 30)));

    // Larger rosters have more accounts and groups, as real users' do.
    const int protocolCount = contacts < 100 ? 2 : 3;
    const int accountCount = std::min(2 + contacts / 20000, 12);
    const int groupCount = std::clamp(contacts / 40, 3, 400);

    out += "{\n\"protocols\": [\n";
    for (int i = 0; i < protocolCount; ++i) {
        const ProtocolKind &protocol = protocolKinds[i];
        out += "  { \"name\": ";
        appendString(out, protocol.name);
        out += ", \"presences\": [";
        for (int j = 0; j < protocol.count; ++j) {
            const PresenceKind &presence = protocol.presences[j];
            out += j ? ", { \"id\": " : " { \"id\": ";
            appendString(out, presence.id);
            out += ", \"display\": ";
            appendString(out, presence.display);
            out += ", \"flag\": ";
            appendInt(out, presence.flag);
            out += ", \"priority\": ";
            appendInt(out, presence.priority);
            out += " }";
        }
        out += i + 1 < protocolCount ? " ] },\n" : " ] }\n";
    }

    out += "],\n\"accounts\": [\n";
    QVector<int> accountProtocol(accountCount);
    for (int i = 0; i < accountCount; ++i) {
        // Every protocol gets an account; the first, the most popular, gets the rest.
        accountProtocol[i]
            = i < protocolCount ? i : (random.chance(60) ? 0 : random.below(protocolCount));
        const ProtocolKind &protocol = protocolKinds[accountProtocol[i]];
        QByteArray uid;
        if (protocol.domain) {
            uid = "user";
            appendInt(uid, i);
            uid += '@';
            uid += protocol.domain;
        } else {
            appendInt(uid, 100000000 + qint64(random.below(900000000)));
        }
        out += "  { \"uid\": ";
        appendString(out, uid);
        out += ", \"protocol\": ";
        appendString(out, protocol.name);
        out += i + 1 < accountCount ? " },\n" : " }\n";
    }

    out += "],\n\"groups\": [\n";
    QVector<QByteArray> groupNames(groupCount);
    for (int i = 0; i < groupCount; ++i) {
        // Every twentieth group is a per-account "Blocked" group, so the name
        // repeats; the others are numbered so they stay distinct.
        QByteArray name;
        if (i % 20 == 19 || (i == groupCount - 1 && i < 20)) {
            name = "Blocked";
        } else {
            name = groupWords[i % int(std::size(groupWords))];
            if (i >= int(std::size(groupWords))) {
                name += ' ';
                appendInt(name, i / int(std::size(groupWords)) + 1);
            }
        }
        groupNames[i] = name;
        out += "  { \"name\": ";
        appendString(out, name);
        out += ", \"pos\": ";
        // Most groups have a position; a few were never placed (0).
        appendInt(out, random.chance(90) ? i + 1 : 0);
        out += i + 1 < groupCount ? " },\n" : " }\n";
    }

    out += "],\n\"contacts\": [\n";
    for (int i = 0; i < contacts; ++i) {
        const bool temporary = random.chance(1);
        out += "  { \"display\": ";
        appendString(out, makeName(random, i));
        // Group sizes are skewed: low-numbered groups are the big ones.
        if (!random.chance(3)) {
            const int a = random.below(groupCount);
            const int b = random.below(groupCount);
            out += ", \"group\": ";
            appendString(out, groupNames[std::min(a, b)]);
        }
        int protocol = random.below(protocolCount);
        if (random.chance(2)) {
            out += ", \"account\": null";
        } else {
            const int account = random.below(accountCount);
            protocol = accountProtocol[account];
            out += ", \"account\": ";
            appendInt(out, account);
        }
        if (temporary)
            out += ", \"temporary\": true";
        const PresenceKind &presence = pickPresence(random, protocolKinds[protocol]);
        out += ", \"presence\": { \"id\": ";
        appendString(out, presence.id);
        out += ", \"display\": ";
        appendString(out, presence.display);
        out += ", \"flag\": ";
        appendInt(out, presence.flag);
        out += ", \"priority\": ";
        appendInt(out, presence.priority);
        if (random.chance(25)) {
            out += ", \"description\": ";
            appendString(out, pick(random, descriptions));
        }
        out += " }";
        if (!temporary) {
            out += ", \"subscription\": ";
            appendInt(out, random.chance(85) ? 3 : random.below(3));
            const int kind = random.below(100);
            if (kind < 85) {
                // Chat counts fall off steeply: many small, few large.
                const int a = random.below(500);
                out += ", \"chats_count\": ";
                appendInt(out, a * random.below(a + 1) / 500);
            } else if (kind < 95) {
                // no attribute at all
            } else if (kind < 97) {
                out += ", \"chats_count\": 2.5";
            } else if (kind < 99) {
                out += ", \"chats_count\": \"7\"";
            } else {
                out += random.chance(50) ? ", \"chats_count\": null" : ", \"chats_count\": true";
            }
        }
        out += i + 1 < contacts ? " },\n" : " }\n";
    }
    out += "]\n}\n";
    return out;
}

} // namespace VeskRosterFile
