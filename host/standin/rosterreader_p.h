#pragma once

// The reader behind VeskRosterFile::load(): walks a parsed roster document
// with explicit type checks into plain structures, naming the place of
// anything the format does not allow. Not API.

#include <veskarg.h>
#include <veskpresence.h>

#include <QHash>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

#include <vector>

class QJsonArray;
class QJsonDocument;

namespace VeskRosterReading {

QString tr(const char *text);

// A text as a JSON string literal: quoted, with control characters, lone
// surrogates and the quote itself escaped, so that a message naming it is
// unambiguous and never carries raw control characters.
QString quoted(const QString &text);
bool isIdentifier(const QString &key);

// The place of a value in the document, as a JSON path (contacts[17].group).
// Paths live on the stack of the reader's calls and are spelled out only for
// an error, so reading a valid roster builds no path text at all.
class Path
{
public:
    Path() = default;
    Path key(const char *name) const { return Path(this, name, nullptr, -1); }
    Path member(const QString &name) const { return Path(this, nullptr, &name, -1); }
    Path index(int i) const { return Path(this, nullptr, nullptr, i); }

    QString toString() const
    {
        if (!parent)
            return QString();
        QString text = parent->toString();
        if (position >= 0)
            return text + QLatin1Char('[') + QString::number(position) + QLatin1Char(']');
        const QString name = literal ? QString::fromLatin1(literal) : *string;
        if (!isIdentifier(name))
            return text + QLatin1Char('[') + quoted(name) + QLatin1Char(']');
        return text.isEmpty() ? name : text + QLatin1Char('.') + name;
    }

private:
    Path(const Path *parent, const char *literal, const QString *string, int position)
        : parent(parent)
        , literal(literal)
        , string(string)
        , position(position)
    { }

    const Path *parent = nullptr;
    const char *literal = nullptr;
    const QString *string = nullptr;
    int position = -1;
};

struct Contact
{
    QString display;
    int group = -1;
    int account = -1;
    bool temporary = false;
    QString presenceId, presenceDisplay, presenceDescription;
    int presenceFlag = 0;
    int presencePriority = 0;
    int subscription = 0;
    bool hasChats = false;
    VeskArg chats;
};

struct Account
{
    QString uid;
    QString protocol;
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

// Qt's parser turns an escaped lone surrogate (\ud800) into a QString that
// holds one; raw UTF-8 cannot encode one. Only a document with a \u escape
// into the surrogate range needs its strings checked.
bool mayHoldLoneSurrogates(const QByteArray &json);

// Walks the parsed document with explicit type checks and fills plain
// structures; the stand-in host is filled only once the whole document has
// been read and its references resolved, so a bad file leaves no half-built
// roster behind.
class RosterReader
{
public:
    explicit RosterReader(bool checkSurrogates)
        : checkSurrogates(checkSurrogates)
    { }

    bool read(const QJsonDocument &document);

    QString error;
    QVector<Protocol> protocols;
    QVector<Account> accounts;
    QVector<Group> groups;
    std::vector<Contact> contacts;

private:
    bool fail(const Path &at, const QString &message)
    {
        const QString place = at.toString();
        error = place.isEmpty() ? message : tr("%1: %2").arg(place, message);
        return false;
    }

    bool members(const QJsonObject &object, const Path &at, const char *const *keys, int count,
        QJsonValue *values);
    bool object(const QJsonValue &value, const Path &at, QJsonObject *out);
    bool array(const QJsonValue &value, const Path &at, QJsonArray *out);
    bool string(const QJsonValue &value, const Path &at, QString *out);
    bool sharedString(const QJsonValue &value, const Path &at, QString *out);
    bool integer(const QJsonValue &value, const Path &at, int *out);
    bool boolean(const QJsonValue &value, const Path &at, bool *out);

    bool readProtocol(const QJsonValue &value, const Path &at);
    bool readPresence(const QJsonValue &value, const Path &at, Contact *into, bool withDescription);
    bool readAccount(const QJsonValue &value, const Path &at);
    bool readGroup(const QJsonValue &value, const Path &at);
    bool readContact(const QJsonValue &value, const Path &at);

    QString nameList(const QStringList &names) const;

    const bool checkSurrogates;
    QHash<QString, int> protocolIndex;
    QHash<QString, int> groupIndex;
    // Presence texts repeat across thousands of contacts; sharing one copy
    // of each keeps large rosters small.
    QHash<QString, QString> sharedStrings;
};

} // namespace VeskRosterReading
