#pragma once

// A settings directory inside a temporary sandbox (so that a test can see
// anything written beside it), a fresh stand-in roster, and the tear-down of both managers together
// with the stacks that the filters manager keeps: it never deletes them itself, so a test must.

#include <standin/veskstandin.h>
#include <veskrosterfilter.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrostersortersmanager.h>

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
    QString filePath(const QString &fileName) const
    {
        return filtersDir() + QLatin1Char('/') + fileName;
    }

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
            for (const QString &id : ids) {
                if (VeskRosterFiltersStack *stack = manager->getStackFilter(id))
                    owned.insert(stack);
            }
            // The default filter is only reachable as the current filter.
            // Making it current writes settings, which must not leak into
            // the state that a restart reads back.
            VeskRosterFilter *defaultFilter = manager->getCurrentFilter();
            if (!defaultFilter || defaultFilter->id() != QLatin1String("default")) {
                const QString settingsFile = VeskStandIn::settingsFilePath();
                QFile file(settingsFile);
                const bool existed = file.open(QIODevice::ReadOnly);
                const QByteArray saved = existed ? file.readAll() : QByteArray();
                file.close();
                manager->setCurrentFilter(QStringLiteral("default"));
                defaultFilter = manager->getCurrentFilter();
                if (existed && file.open(QIODevice::WriteOnly | QIODevice::Truncate))
                    file.write(saved);
                else if (!existed)
                    QFile::remove(settingsFile);
            }
            if (defaultFilter && defaultFilter->id() == QLatin1String("default"))
                owned.insert(defaultFilter);
            delete manager;
            qDeleteAll(owned);
        }
        delete VeskRosterSortersManager::instance;
    }

private:
    QTemporaryDir dir;
};
