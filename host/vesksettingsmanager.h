#pragma once

#include "vesk_host_export.h"
#include "veskfield.h"

#include <QString>

class VeskSettingsStore;

// The public front end of the host's settings store.
class VESK_HOST_EXPORT VeskSettingsManager
{
public:
    static VeskSettingsManager *getInstance();

    // The settings directory, always ending with a separator.
    QString getSettingsDir() const;
    VeskField readGlobalSetting(const VeskField &field) const;
    void writeGlobalSetting(const VeskField &field);

private:
    friend struct VeskStandInAccess;
    VeskSettingsManager();
    ~VeskSettingsManager();
    Q_DISABLE_COPY(VeskSettingsManager)
};

// The second front end of the same store.
class VESK_HOST_EXPORT VeskSettingsManagerPrivate
{
public:
    static VeskSettingsManagerPrivate *settingsMgrPrivInstance;

    VeskField readGlobalSetting(const VeskField &field);
    void writeGlobalSetting(const VeskField &field);
    void removeKey(const QString &key);

private:
    friend struct VeskStandInAccess;
    friend class VeskSettingsManager;
    VeskSettingsManagerPrivate();
    ~VeskSettingsManagerPrivate();
    Q_DISABLE_COPY(VeskSettingsManagerPrivate)
};
