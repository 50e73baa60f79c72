#pragma once

#include <QByteArray>
#include <QFileSystemWatcher>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>

class VeskLibrarySession;

// The roster window's hold on the settings directory. It reads the library's
// state once and keeps it while the window runs, but every change goes
// through change(): the settings are read afresh when another program
// changed them, the edit runs, the library is started again from what is now
// on disk and the caller checks that it reads back as intended. A refused
// edit puts every file back as it was. So vesk-roster can work on the same
// profile while the window is open.
class VeskRosterLibrary : public QObject
{
    Q_OBJECT
public:
    explicit VeskRosterLibrary(const QString &settingsDir, QObject *parent = nullptr);
    ~VeskRosterLibrary() override;

    QString settingsDir() const { return dir; }
    VeskLibrarySession *session() const { return current.get(); }
    // Why the last open or reload could not take the directory; empty when it did.
    bool open(QString *error);

    using Step = std::function<void(VeskLibrarySession &)>;
    // Runs `edit`, restarts the library from disk and runs `verify` on the new
    // session. Either may refuse (throw VeskRefusal); then nothing is stored,
    // *error says why and false is returned.
    bool change(const Step &edit, const Step &verify, QString *error);

public Q_SLOTS:
    // Starts the library again when the directory changed since it was last read.
    void reloadIfChanged();

Q_SIGNALS:
    // The managers were created anew: views must refresh before they paint.
    void reloaded();

private:
    // Where the settings directory's lock is taken and released: exclusive
    // around a change, shared while reading.
    bool lockForWriting(QString *error);
    void unlock();
    void reload();
    QByteArray fingerprint() const;
    void watch();

    QString dir;
    std::unique_ptr<VeskLibrarySession> current;
    QByteArray known; // the directory's fingerprint when it was last read or written
    QFileSystemWatcher watcher;
};
