#pragma once

#include <QByteArray>
#include <QFileSystemWatcher>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>

class QLabel;
class VeskLibrarySession;

// The roster window's hold on the settings directory, which vesk-roster may
// change while the window is open. Between changes the window shows what a
// session read, without holding the directory's lock. A change takes the
// lock exclusively, starts the library afresh from disk, stores through the
// session (which reads back everything it stores) and releases the lock; a
// refused change puts back every file it touched. After either, the library
// is read again and reloaded() tells the views. When another program changes
// the directory, the library is read again too.
class VeskRosterLibrary : public QObject
{
    Q_OBJECT
public:
    explicit VeskRosterLibrary(const QString &settingsDir, QObject *parent = nullptr);
    ~VeskRosterLibrary() override;

    QString settingsDir() const { return dir; }
    // The session the window reads; its managers change at every reload.
    VeskLibrarySession *session() const { return reading.get(); }
    // Reads the directory (start-up may store the current filter). False with
    // *error when it cannot.
    bool open(QString *error);

    using Edit = std::function<bool(VeskLibrarySession &, QString *error)>;
    // Runs one change under the exclusive lock. False, with *error, when the
    // lock cannot be had or the change is refused; nothing is stored then.
    bool change(const Edit &edit, QString *error);
    // An editor's OK: change(), and on refusal the reason in messageLabel,
    // shown, so that the dialog can stay open with the user's drafts.
    bool changeOrExplain(const Edit &edit, QLabel *messageLabel);

    // How long a change waits for another program's lock.
    static constexpr int lockTimeoutMs = 3000;

public Q_SLOTS:
    // Reads the library again when the directory changed since it was read.
    void reloadIfChanged();

Q_SIGNALS:
    // The managers were created anew: views must refresh before they paint.
    void reloaded();
    // The directory could not be read again (its lock stayed taken, or it
    // became unreadable): the managers are gone and session() is null, so
    // views must let go of the library before the event loop runs again.
    void lost(const QString &error);

private:
    bool read(QString *error);
    QByteArray fingerprint() const;
    void watch();

    QString dir;
    std::unique_ptr<VeskLibrarySession> reading;
    QByteArray known; // the directory's fingerprint when it was last read
    QFileSystemWatcher watcher;
};
