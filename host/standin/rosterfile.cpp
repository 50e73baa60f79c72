#include "rosterfile.h"

#include "rosterreader_p.h"

#include <veskstandin.h>

#include <QJsonDocument>
#include <QVector>

using namespace VeskRosterReading;

namespace {

bool isBlank(const QByteArray &json)
{
    for (const char c : json) {
        if (c != ' ' && c != '\n' && c != '\r' && c != '\t')
            return false;
    }
    return true;
}

} // namespace

namespace VeskRosterFile {

QString syntaxError(const QByteArray &json, const QJsonParseError &error)
{
    int line = 1;
    int lineStart = 0;
    const int offset = qBound(0, int(error.offset), int(json.size()));
    for (int i = 0; i < offset; ++i) {
        if (json.at(i) == '\n') {
            ++line;
            lineStart = i + 1;
        }
    }
    // Columns count characters, not bytes: UTF-8 continuation bytes are
    // skipped, and a byte order mark is not a column.
    int column = 1;
    for (int i = lineStart; i < offset; ++i)
        column += (uchar(json.at(i)) & 0xC0) != 0x80;
    if (line == 1 && json.startsWith("\xEF\xBB\xBF") && offset >= 3)
        --column;
    return tr("line %1, column %2: %3").arg(line).arg(column).arg(error.errorString());
}

bool load(const QByteArray &json, QString *error)
{
    VeskStandIn::resetRoster();
    RosterReader reader(mayHoldLoneSurrogates(json));
    {
        // The parsed document is dropped before the stand-in is filled, so the
        // two never take memory at the same time.
        QJsonParseError parseError;
        const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
        QString message;
        if (parseError.error != QJsonParseError::NoError) {
            const bool bom = json.startsWith("\xEF\xBB\xBF");
            message = isBlank(bom ? json.mid(3) : json)
                ? tr("the roster is empty (expected a JSON object)")
                : syntaxError(json, parseError);
        } else if (!reader.read(document)) {
            message = reader.error;
        }
        if (!message.isEmpty()) {
            if (error)
                *error = message;
            return false;
        }
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
        if (contact.group >= 0)
            info.group = groups.at(contact.group);
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
            info.attributes.insert(QStringLiteral("chats_count"), contact.chats);
        VeskStandIn::addContact(info);
    }
    return true;
}

} // namespace VeskRosterFile
