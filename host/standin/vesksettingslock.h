#pragma once

#include "vesk_standin_export.h"

#include <QString>

// A lock on a settings directory, held by one process for as long as it
// works on the directory: many readers (Shared) or one writer (Exclusive).
// Every program that reads or writes a settings directory takes it, so that
// two runs never interleave their changes.
//
// The lock is taken on the directory itself, not on a file in it: it works
// on a directory that cannot be written, leaves nothing behind, and the
// system releases it when the holder exits or is killed. The directory must
// exist; a writer creates it before locking, a reader of a missing directory
// has nothing to lock.
class VESK_STANDIN_EXPORT VeskSettingsLock
{
public:
    enum Mode { Shared, Exclusive };

    VeskSettingsLock();
    ~VeskSettingsLock();

    // Waits up to timeoutMs for the lock (0: one try). On failure *error says
    // why; when another process holds the lock, it names that process.
    // Locking again first releases the lock held.
    bool lock(const QString &settingsDir, Mode mode, int timeoutMs, QString *error);
    void unlock();
    bool isLocked() const;

private:
    int fd = -1;

    VeskSettingsLock(const VeskSettingsLock &) = delete;
    VeskSettingsLock &operator=(const VeskSettingsLock &) = delete;
};
