#pragma once

// State of the stand-in host, shared by its sources and by the stand-in's
// construction API. Exported for that library only: private, never installed.

#include "vesk_host_export.h"
#include "veskarg.h"
#include "veskpresence.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <memory>
#include <utility>
#include <vector>

class VeskAccountConnection;
class VeskBuddy;
class VeskProtocol;

// A contact's attributes by name. A contact has a handful at most: a list
// searched in order costs a few bytes, where Qt 6 gives every QHash a span of
// 128 slots, some kilobytes per contact of a large roster.
struct VeskAttributeList
{
    VeskArg value(const QString &name) const
    {
        for (const auto &item : items) {
            if (item.first == name)
                return item.second;
        }
        return VeskArg();
    }
    void insert(const QString &name, const VeskArg &value)
    {
        for (auto &item : items) {
            if (item.first == name) {
                item.second = value;
                return;
            }
        }
        items.emplace_back(name, value);
    }

    std::vector<std::pair<QString, VeskArg>> items;
};

struct VeskRosterEntry
{
    int type = 0;
    QString display;
    const VeskRosterEntry *group = nullptr;
    VeskAccountConnection *account = nullptr;
    VeskPresence presence;
    VeskSubscriptionType subscription;
    VeskAttributeList attributes;
    int pos = 0;
};

struct VESK_HOST_EXPORT VeskStandInAccess
{
    static VeskPresence makePresence(const QString &id, const QString &display,
        const QString &description, int flag, int priority);
    static VeskSubscriptionType makeSubscription(int priority);
    static VeskArg makeArg(int type, const QVariant &value);
    static VeskAccountConnection *newAccount(const QString &uid, const QString &protocol);
    static void deleteAccount(VeskAccountConnection *account);
    static VeskProtocol *newProtocol(const QString &name, const QList<VeskPresence> &p);
    static void deleteProtocol(VeskProtocol *protocol);
    static QList<VeskAccountConnection *> &accounts();
    static QList<VeskProtocol *> &protocols();
    static VeskBuddy handle(const VeskRosterEntry *entry);
    static const VeskRosterEntry *entryOf(const VeskBuddy &buddy);
};

struct VESK_HOST_EXPORT VeskRosterStore
{
    std::vector<std::unique_ptr<VeskRosterEntry>> entries;
    QStringList groupNames;

    static VeskRosterStore &self();
};

// One store of global settings, kept as a file in the settings directory.
class VESK_HOST_EXPORT VeskSettingsStore
{
public:
    static VeskSettingsStore &self();

    void open(const QString &dir);
    QString dir() const;
    QString filePath() const;

    bool contains(const QString &key) const;
    bool isList(const QString &key) const;
    QString text(const QString &key) const;
    QStringList list(const QString &key) const;
    void setText(const QString &key, const QString &value);
    void setList(const QString &key, const QStringList &value);
    void remove(const QString &key);

    // Off: changes stay in memory and the directory is never created, for a
    // program that only reads while others may write.
    void setPersistent(bool persistent);
    // Whether a fresh read of the file gives the values in memory; *error
    // names the file and why not.
    bool isStored(QString *error) const;

private:
    struct Value
    {
        bool isList = false;
        QString text;
        QStringList list;
        bool operator==(const Value &other) const
        {
            return isList == other.isList && text == other.text && list == other.list;
        }
    };
    void ensureOpen() const;
    void load();
    void store(const QString &key, const Value &value);
    void save();
    bool readFile(QHash<QString, Value> *read, QString *error) const;

    QString settingsDir;
    QHash<QString, Value> values;
    bool persistent = true;
    QString saveError; // of the last save that failed, until one succeeds
};
