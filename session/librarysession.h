#pragma once

#include <veskrosterfilter.h>

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>

class VeskRosterFiltersManager;
class VeskRosterFiltersStack;
class VeskRosterSortersManager;
class VeskSettingsJournal;
class VeskSettingsLock;

// One run of the library on a settings directory, for a program that must
// report a change only once it is stored. The library stores without looking
// at results; the session stores through it, then reads back what a fresh
// start will find and compares. Every writing operation answers true only
// when what it meant to store is what a fresh read gives back; otherwise
// *error says what could not be stored and why, and the caller calls
// rollback(), which puts back exactly what this session changed.
//
// The session holds a lock on the directory from open() to close():
// exclusive for ReadWrite, so that runs are serialised rather than
// interleaved, shared for ReadOnly. A ReadOnly session never writes: what the
// library stores (it does while it starts) stays in memory. A directory that
// is not there yet cannot be locked: a writer creates it under an exclusive
// lock of the nearest directory that exists, and a reader of the missing
// directory holds a shared lock of that one instead, so it reads either
// nothing or everything a writer stored.
//
// The library's managers are singletons, so one session is open at a time.
// Nothing here prints; errors are one translated sentence each.
class VeskLibrarySession
{
public:
    enum Access { ReadOnly, ReadWrite };
    static constexpr int DefaultLockTimeoutMs = 10000;

    // Where both programs keep their settings without --settings:
    // $XDG_CONFIG_HOME/vesk-roster, else ~/.config/vesk-roster. A relative
    // XDG_CONFIG_HOME is ignored, as the base directory rules say; without an
    // absolute HOME either, empty with *error.
    static QString defaultSettingsDir(QString *error);

    VeskLibrarySession();
    ~VeskLibrarySession();

    // Refuses a place that is not a directory, and for ReadWrite one that
    // cannot be created or written; takes the lock and starts the library.
    bool open(const QString &settingsDir, Access access, QString *error,
        int lockTimeoutMs = DefaultLockTimeoutMs);
    bool isOpen() const { return filtersManager != nullptr; }
    // Frees the library's objects and releases the lock; stored changes stay.
    void close();
    // Releases the lock and keeps the library's objects, for a program that
    // goes on showing what it read (a window) while other runs change the
    // directory. Writing operations refuse from then on.
    void releaseLock();

    // Puts back every file this session changed and removes the directories
    // it created. The library's state in memory no longer matches the files
    // afterwards: close the session.
    bool rollback(QString *error = nullptr);
    // Final check before a program reports success: the settings in memory
    // are those on disk. Then forgets what rollback() would put back.
    bool commit(QString *error);

    QString settingsDir() const { return directory; }
    VeskRosterFiltersManager *filters() const { return filtersManager; }
    VeskRosterSortersManager *sorters() const { return sortersManager; }

    // The registered filter under this identifier, the default filter
    // included; null when there is none.
    VeskRosterFilter *filter(const QString &id) const;
    bool isRegistered(const QString &id) const;
    // A user's top-level stack; null for "default" and unknown identifiers.
    VeskRosterFiltersStack *stack(const QString &id) const;

    // The bounds every stored filter keeps, whichever way it comes in: the
    // library reads no file larger or deeper than this at start-up.
    static int maximumNesting(); // stack levels, the filter itself being 1
    static qint64 maximumFileSize(); // bytes
    static int nestingOf(VeskRosterFilter *filter);

    // Files of the filter directory that start-up could not read, or read
    // as something that cannot be what was stored: an empty id when the file
    // does not even tell which filter it is.
    struct Unreadable
    {
        QString id;
        QString path;
        QString reason;
    };
    QList<Unreadable> unreadableFilters() const { return unreadable; }
    // False, with the reason, for "default", an unknown id and an unreadable
    // filter, whose file an edit would overwrite with what little was read.
    bool isEditable(const QString &id, QString *error) const;

    // Whether the stack would be stored under `id` and read back as it is:
    // nesting, size, every text and the method it keeps. Writes nothing.
    bool checkStorable(VeskRosterFiltersStack *stack, const QString &id, QString *error);

    // A new top-level stack, registered and listed last; stored by
    // storeNewStack(). Null (with *error) for a name in use or not allowed.
    VeskRosterFiltersStack *createStack(
        const QString &name, VeskRosterFilter::RosterFilterType type, QString *error);
    bool storeNewStack(VeskRosterFiltersStack *stack, QString *error);
    // Stores a registered stack after an edit.
    bool storeStack(VeskRosterFiltersStack *stack, QString *error);
    // Stores `replacement` (built with an empty name, owned by the caller) as
    // the filter `id`, in its place; the old filter stays untouched, file
    // and all, unless the replacement is stored and verified. A replacement
    // that carries over the method the old filter was only lent (see
    // storedMethod()) keeps following the default method.
    bool replaceStack(const QString &id, VeskRosterFiltersStack *replacement, QString *error);
    bool removeStack(const QString &id, QString *error);
    bool renameStack(const QString &oldId, const QString &newId, QString *error);
    // Refused for "default" and for moves that change nothing.
    bool moveUp(const QString &id, QString *error);
    bool moveDown(const QString &id, QString *error);
    bool setCurrentFilter(const QString &id, QString *error);

    // The sorting method a user's filter keeps in its file: empty for one
    // without a method of its own, which follows the default method. It
    // differs from the filter's getSorter() while such a filter is current,
    // since the library then lends it the default method in memory. Every
    // store keeps this method; only sortCurrentFilter() changes it.
    QString storedMethod(VeskRosterFiltersStack *stack) const;

    bool storeSorter(
        const QString &name, const QStringList &ids, const QStringList &ascending, QString *error);
    // Removing the default method clears the default: the built-in order.
    bool removeSorter(const QString &name, QString *error);
    // Renames a method together with every filter that sorts by it and the
    // default; refused for a name in use or when such a filter cannot be
    // stored. (sortermethods.cpp)
    bool renameSorter(const QString &oldName, const QString &newName, QString *error);
    // An empty name: no default method, the built-in order.
    bool setDefaultSorter(const QString &name, QString *error);
    // Makes the method current and stores it with the current filter.
    bool sortCurrentFilter(const QString &method, QString *error);

private:
    bool startLibrary(QString *error);
    bool lockForReading(int timeoutMs, QString *error);
    bool lockCreation(VeskSettingsLock *creation, int timeoutMs, QString *error);
    bool isWritable(QString *error) const;
    void findUnreadable();
    void findFiltersWithoutMethod();
    void noteStoredMethod(VeskRosterFiltersStack *stack, const QString &method);
    bool verifySettings(QString *error) const;
    bool verifyStored(VeskRosterFiltersStack *stack, const QString &id, QString *error);
    bool verifyRemoved(const QString &id, QString *error) const;
    bool storeDisplayOrder(QString *error);
    QString filePath(const QString &id) const;
    QString notStored(const QString &id) const;

    QString directory;
    Access access = ReadOnly;
    std::unique_ptr<VeskSettingsLock> lock;
    std::unique_ptr<VeskSettingsJournal> journal;
    VeskRosterFiltersManager *filtersManager = nullptr;
    VeskRosterSortersManager *sortersManager = nullptr;
    VeskRosterFilter *defaultFilter = nullptr;
    QList<VeskRosterFiltersStack *> stacks;
    QList<Unreadable> unreadable;
    // The user's filters whose files name no sorting method.
    QSet<VeskRosterFiltersStack *> followingDefault;
};
