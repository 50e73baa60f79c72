#pragma once

// A settings directory inside a temporary sandbox (so that a test can see
// anything written beside it), a fresh stand-in roster, and the tear-down of
// both managers with the stacks the filters manager keeps: it never deletes
// them itself, so a test must.

#include <veskrosterfilter.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrostersortersmanager.h>
#include <vesksettingsmanager.h>
#include <veskstandin.h>

#include <QFile>
#include <QSet>
#include <QTemporaryDir>

class VeskFilterTestEnv
{
public:
    VeskFilterTestEnv()
    {
        shutDownManagers();
        VeskStandIn::resetRoster();
        VeskStandIn::setSettingsDir(path());
    }
    ~VeskFilterTestEnv()
    {
        shutDownManagers();
        VeskStandIn::resetRoster();
    }

    QString sandbox() const { return dir.path(); }
    QString path() const { return dir.path() + QLatin1String("/settings"); }
    QString filtersDir() const { return path() + QLatin1String("/roster_filters"); }
    QString filePath(const QString &name) const { return filtersDir() + QLatin1Char('/') + name; }

    // Destroys the managers and starts the filters manager afresh from what
    // is on disk, as a new process would.
    VeskRosterFiltersManager *restart()
    {
        shutDownManagers();
        VeskStandIn::setSettingsDir(path());
        return VeskRosterFiltersManager::getInstance();
    }

    static void shutDownManagers()
    {
        if (VeskRosterFiltersManager *manager = VeskRosterFiltersManager::instance) {
            QSet<VeskRosterFilter *> owned;
            const QStringList ids = manager->getFilterNames();
            for (const QString &id : ids)
                owned.insert(manager->getStackFilter(id));
            // The default filter is only reachable as the current filter, and
            // making it current writes settings that a restart must not see.
            QFile file(VeskStandIn::settingsFilePath());
            const bool existed = file.open(QIODevice::ReadOnly);
            const QByteArray saved = file.readAll();
            file.close();
            manager->setCurrentFilter(QStringLiteral("default"));
            owned.insert(manager->getCurrentFilter());
            if (existed && file.open(QIODevice::WriteOnly | QIODevice::Truncate))
                file.write(saved);
            else if (!existed)
                file.remove();
            delete manager;
            qDeleteAll(owned);
        }
        delete VeskRosterSortersManager::instance;
    }

    // A global setting as the host stores it; the fallback shows an unset key.
    static QStringList storedList(const QString &key, const QString &fallback = QStringLiteral("-"))
    {
        return VeskSettingsManager::getInstance()
            ->readGlobalSetting(
                VeskField::comboBox(QString(), key, { fallback }, {}, QString(), QString()))
            .getComboBoxIds();
    }
    static QString storedText(const QString &key, const QString &fallback = QStringLiteral("-"))
    {
        return VeskSettingsManager::getInstance()
            ->readGlobalSetting(VeskField::lineEdit(QString(), key, fallback, 32767, QString()))
            .getText();
    }
    static void store(const QString &key, const QStringList &ids)
    {
        VeskSettingsManager::getInstance()->writeGlobalSetting(
            VeskField::comboBox(QString(), key, ids, {}, QString(), QString()));
    }

private:
    QTemporaryDir dir;
};
