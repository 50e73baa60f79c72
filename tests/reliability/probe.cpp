// Starts the filters manager on a settings directory and reports what it
// found, how long the start-up took and the peak memory of the process. The
// hostile-files test runs it with a 1 MiB stack.
//
//   reliability_probe SETTINGS_DIR
// prints "elapsed_ms N", "peak_kib N", then "filter ID: DESCRIPTION" per
// listed filter (identifiers and descriptions with control characters
// escaped).

#include "reliabilitysupport.h"

#include <veskrosterfiltersmanager.h>
#include <veskstandin.h>

#include <QElapsedTimer>

#include <cstdio>

using namespace VeskReliability;

int main(int argc, char **argv)
{
    if (argc < 2)
        return 2;
    buildSmallRoster();
    VeskStandIn::setSettingsDir(QString::fromLocal8Bit(argv[1]));

    QElapsedTimer timer;
    timer.start();
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    const QStringList ids = manager->getFilterNames();
    for (const QString &id : ids) {
        manager->setCurrentFilter(id);
        answers(manager->getCurrentFilter());
        manager->getCurrentFilter()->display();
    }
    const qint64 elapsed = timer.elapsed();

    std::printf("elapsed_ms %lld\npeak_kib %lld\n", static_cast<long long>(elapsed),
        static_cast<long long>(peakRssKiB()));
    const QStringList described = describeAll(false);
    for (const QString &line : described)
        std::printf("filter %s\n",
            QString(line).toUtf8().toPercentEncoding(" :()[]{}\"=>;,*#@").constData());
    shutDown();
    return 0;
}
