#include "rosterfile.h"

namespace VeskRosterFile {

// Small enough to read in a terminal, varied enough that every filter kind and
// every comparator has something to tell apart.
QByteArray sampleRoster()
{
    return QByteArrayLiteral(R"json({
  "protocols": [
    { "name": "jabber", "presences": [
        { "id": "online", "display": "Online", "flag": 0, "priority": 50 },
        { "id": "chat", "display": "Free for chat", "flag": 0, "priority": 60 },
        { "id": "away", "display": "Away", "flag": 1, "priority": 30 },
        { "id": "xa", "display": "Extended away", "flag": 2, "priority": 20 },
        { "id": "dnd", "display": "Do not disturb", "flag": 3, "priority": 40 },
        { "id": "offline", "display": "Offline", "flag": 5, "priority": 0 } ] },
    { "name": "icq", "presences": [
        { "id": "online", "display": "Online", "flag": 0, "priority": 50 },
        { "id": "away", "display": "Away", "flag": 1, "priority": 30 },
        { "id": "na", "display": "Not available", "flag": 2, "priority": 20 },
        { "id": "occupied", "display": "Occupied", "flag": 3, "priority": 35 },
        { "id": "offline", "display": "Offline", "flag": 5, "priority": 0 } ] }
  ],
  "accounts": [
    { "uid": "me@example.org", "protocol": "jabber" },
    { "uid": "me@work.example.com", "protocol": "jabber" },
    { "uid": "123456789", "protocol": "icq" }
  ],
  "groups": [
    { "name": "Friends", "pos": 1 },
    { "name": "Work", "pos": 2 },
    { "name": "Family", "pos": 3 },
    { "name": "Band", "pos": 4 },
    { "name": "Blocked", "pos": 5 }
  ],
  "contacts": [
    { "display": "Alice Martin", "group": "Friends", "account": 0, "presence": { "id": "online", "display": "Online", "flag": 0, "priority": 50, "description": "at lunch" }, "subscription": 3, "chats_count": 42 },
    { "display": "Bob", "group": "Friends", "account": 0, "presence": { "id": "away", "display": "Away", "flag": 1, "priority": 30, "description": "back at 3" }, "subscription": 3, "chats_count": 17 },
    { "display": "charlie", "group": "Friends", "account": 0, "presence": { "id": "chat", "display": "Free for chat", "flag": 0, "priority": 60 }, "subscription": 3, "chats_count": 5 },
    { "display": "Dana Kowalski", "group": "Friends", "account": 2, "presence": { "id": "online", "display": "Online", "flag": 0, "priority": 50 }, "subscription": 3, "chats_count": 23 },
    { "display": "Émile Roux", "group": "Friends", "account": 0, "presence": { "id": "offline", "display": "Offline", "flag": 5, "priority": 0 }, "subscription": 3, "chats_count": 8 },
    { "display": "Fatima", "group": "Friends", "account": 2, "presence": { "id": "na", "display": "Not available", "flag": 2, "priority": 20, "description": "on holiday until Monday" }, "subscription": 3, "chats_count": 31 },
    { "display": "Greg", "group": "Friends", "account": 0, "presence": { "id": "dnd", "display": "Do not disturb", "flag": 3, "priority": 40, "description": "exam week" }, "subscription": 2 },
    { "display": "Hana Sato", "group": "Friends", "account": 0, "presence": { "id": "online", "display": "Online", "flag": 0, "priority": 50 }, "subscription": 1, "chats_count": 0 },
    { "display": "Ivan", "group": "Friends", "account": 2, "presence": { "id": "offline", "display": "Offline", "flag": 5, "priority": 0, "description": "see you in spring" }, "subscription": 3, "chats_count": 2 },
    { "display": "Julia", "group": "Friends", "account": 0, "presence": { "id": "xa", "display": "Extended away", "flag": 2, "priority": 20 }, "subscription": 3, "chats_count": "12" },
    { "display": "Ada Lovelace", "group": "Work", "account": 1, "presence": { "id": "online", "display": "Online", "flag": 0, "priority": 50, "description": "reviewing the roster patch" }, "subscription": 3, "chats_count": 64 },
    { "display": "Ben Okafor", "group": "Work", "account": 1, "presence": { "id": "dnd", "display": "Do not disturb", "flag": 3, "priority": 40, "description": "in a meeting" }, "subscription": 3, "chats_count": 38 },
    { "display": "Chloé Dubois", "group": "Work", "account": 1, "presence": { "id": "away", "display": "Away", "flag": 1, "priority": 30 }, "subscription": 3, "chats_count": 12 },
    { "display": "build-bot", "group": "Work", "account": 1, "presence": { "id": "online", "display": "Online", "flag": 0, "priority": 50, "description": "build 4127 passed" }, "subscription": 2, "chats_count": 250 },
    { "display": "Deepak", "group": "Work", "account": 1, "presence": { "id": "offline", "display": "Offline", "flag": 5, "priority": 0 }, "subscription": 3, "chats_count": 9 },
    { "display": "Eva Lindqvist", "group": "Work", "account": 1, "presence": { "id": "xa", "display": "Extended away", "flag": 2, "priority": 20, "description": "parental leave" }, "subscription": 3, "chats_count": 3 },
    { "display": "Frank", "group": "Work", "account": 1, "presence": { "id": "online", "display": "Online", "flag": 0, "priority": 50 }, "subscription": 3, "chats_count": 2.5 },
    { "display": "Grace Ho", "group": "Work", "account": 1, "presence": { "id": "chat", "display": "Free for chat", "flag": 0, "priority": 60, "description": "ask me about the release" }, "subscription": 3, "chats_count": 27 },
    { "display": "helpdesk", "group": "Work", "account": 1, "presence": { "id": "away", "display": "Away", "flag": 1, "priority": 30, "description": "tickets only" }, "subscription": 1 },
    { "display": "Igor Petrov", "group": "Work", "account": 2, "presence": { "id": "occupied", "display": "Occupied", "flag": 3, "priority": 35 }, "subscription": 3, "chats_count": 14 },
    { "display": "Mum", "group": "Family", "account": 2, "presence": { "id": "online", "display": "Online", "flag": 0, "priority": 50, "description": "call me" }, "subscription": 3, "chats_count": 120 },
    { "display": "Dad", "group": "Family", "account": 2, "presence": { "id": "offline", "display": "Offline", "flag": 5, "priority": 0 }, "subscription": 3, "chats_count": 45 },
    { "display": "Grandma Rose", "group": "Family", "account": 2, "presence": { "id": "away", "display": "Away", "flag": 1, "priority": 30, "description": "gardening" }, "subscription": 3, "chats_count": 7 },
    { "display": "Leo", "group": "Family", "account": 0, "presence": { "id": "online", "display": "Online", "flag": 0, "priority": 50, "description": "gaming" }, "subscription": 3, "chats_count": 60 },
    { "display": "Mia", "group": "Family", "account": 0, "presence": { "id": "dnd", "display": "Do not disturb", "flag": 3, "priority": 40 }, "subscription": 3, "chats_count": 33 },
    { "display": "uncle Sam", "group": "Family", "account": 2, "presence": { "id": "na", "display": "Not available", "flag": 2, "priority": 20 }, "subscription": 2, "chats_count": 1 },
    { "display": "Nora", "group": "Family", "account": 0, "presence": { "id": "offline", "display": "Offline", "flag": 5, "priority": 0, "description": "phone broken" }, "subscription": 3, "chats_count": null },
    { "display": "Kai", "group": "Band", "account": 0, "presence": { "id": "online", "display": "Online", "flag": 0, "priority": 50, "description": "rehearsal at 8" }, "subscription": 3, "chats_count": 19 },
    { "display": "Lena Vogel", "group": "Band", "account": 0, "presence": { "id": "away", "display": "Away", "flag": 1, "priority": 30 }, "subscription": 3, "chats_count": 22 },
    { "display": "Marco", "group": "Band", "account": 2, "presence": { "id": "online", "display": "Online", "flag": 0, "priority": 50, "description": "new drum kit!" }, "subscription": 3, "chats_count": 11 },
    { "display": "Nils", "group": "Band", "account": 0, "presence": { "id": "offline", "display": "Offline", "flag": 5, "priority": 0 }, "subscription": 3, "chats_count": 4 },
    { "display": "Olga", "group": "Band", "account": 2, "presence": { "id": "occupied", "display": "Occupied", "flag": 3, "priority": 35, "description": "recording" }, "subscription": 3, "chats_count": 16 },
    { "display": "Paul", "group": "Band", "account": 0, "presence": { "id": "xa", "display": "Extended away", "flag": 2, "priority": 20 }, "subscription": 0, "chats_count": true },
    { "display": "spammer42", "group": "Blocked", "account": 2, "presence": { "id": "online", "display": "Online", "flag": 0, "priority": 50, "description": "cheap watches" }, "subscription": 0, "chats_count": 1 },
    { "display": "Ex-colleague", "group": "Blocked", "account": 1, "presence": { "id": "offline", "display": "Offline", "flag": 5, "priority": 0 }, "subscription": 0, "chats_count": 3 },
    { "display": "Quentin", "account": 0, "presence": { "id": "online", "display": "Online", "flag": 0, "priority": 50, "description": "new here" }, "subscription": 2, "chats_count": 1 },
    { "display": "Rita", "account": 2, "presence": { "id": "away", "display": "Away", "flag": 1, "priority": 30 }, "subscription": 1, "chats_count": 6 },
    { "display": "Sven", "account": 0, "presence": { "id": "offline", "display": "Offline", "flag": 5, "priority": 0 }, "subscription": 0 },
    { "display": "Tariq", "group": "Friends", "presence": { "id": "online", "display": "Online", "flag": 0, "priority": 50, "description": "account not set up" }, "subscription": 3, "chats_count": 10 },
    { "display": "Ursula", "group": "Work", "account": 1, "presence": { "id": "online", "display": "Online", "flag": 0, "priority": 50 }, "subscription": 3, "chats_count": 29 },
    { "display": "conference@rooms.example.org", "group": "Work", "account": 1, "temporary": true, "presence": { "id": "online", "display": "Online", "flag": 0, "priority": 50, "description": "weekly sync" } },
    { "display": "Visitor 4711", "account": 2, "temporary": true, "presence": { "id": "away", "display": "Away", "flag": 1, "priority": 30 } }
  ]
}
)json");
}

} // namespace VeskRosterFile
