// The stored order ("filters"), the stored current filter ("roster_filter")
// and the files on disk disagree in every way a crash, a hand edit or an
// older version can leave them: dangling ids, orphan files, duplicates,
// "default" anywhere. Start-up lists "default" first and once, then the
// stored ids that have a file in stored order, then every other file; the
// current filter is the stored one when it exists, else "default".

#include "reliabilitysupport.h"

#include <veskfield.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <vesksettingsmanager.h>
#include <veskstandin.h>

#include <QDir>
#include <QRandomGenerator>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

using namespace VeskReliability;

namespace {

const QStringList pool { QStringLiteral("default"), QStringLiteral("a"), QStringLiteral("b"),
    QStringLiteral("B"), QStringLiteral("work"), QStringLiteral("home"), QStringLiteral("x1") };
const QStringList dangling { QStringLiteral("ghost"), QStringLiteral("gone"), QString(),
    QStringLiteral("../a"), QStringLiteral(".a") };

QString pick(QRandomGenerator &random, const QStringList &from)
{
    return from.at(random.bounded(from.size()));
}

struct State
{
    QStringList files; // identifiers with a file, "default" included
    bool storeOrder = false;
    QStringList storedOrder;
    bool storeCurrent = false;
    QString storedCurrent;
    QString text() const
    {
        return QStringLiteral("files [%1], filters %2, roster_filter %3")
            .arg(files.join(QLatin1Char(',')),
                storeOrder
                    ? QLatin1Char('[') + storedOrder.join(QLatin1Char(',')) + QLatin1Char(']')
                    : QStringLiteral("unset"),
                storeCurrent ? QLatin1Char('"') + storedCurrent + QLatin1Char('"')
                             : QStringLiteral("unset"));
    }
};

State randomState(QRandomGenerator &random)
{
    State state;
    for (const QString &id : pool) {
        if (random.bounded(2))
            state.files.append(id);
    }
    state.storeOrder = random.bounded(5) != 0;
    const int stored = random.bounded(9);
    for (int i = 0; i < stored; ++i)
        state.storedOrder.append(random.bounded(4) ? pick(random, pool) : pick(random, dangling));
    state.storeCurrent = random.bounded(5) != 0;
    state.storedCurrent = random.bounded(4) ? pick(random, pool) : pick(random, dangling);
    return state;
}

} // namespace

class tst_SettingsOutOfStep : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { shutDown(); }

    void startUpReconcilesAnyStoredStateWithTheFiles();

private:
    QList<QByteArray> contents;
};

void tst_SettingsOutOfStep::initTestCase()
{
    buildSmallRoster();
    QTemporaryDir dir;
    VeskStandIn::setSettingsDir(dir.path());
    addLargeStack(QStringLiteral("sample"), 7, 1)->writeFilterSettings();
    shutDown();
    contents = { readFile(dir.path() + QLatin1String("/roster_filters/sample")), QByteArray(),
        QByteArray("<stack_filter type=\"OR\"><display/></stack_filter>"),
        QByteArray("\x89PNG junk", 9) };
    QVERIFY(!contents.constFirst().isEmpty());
}

void tst_SettingsOutOfStep::startUpReconcilesAnyStoredStateWithTheFiles()
{
    const int states = envInt("VESK_SETTINGS_STATES", 1000);
    const quint32 seed = quint32(envInt("VESK_SETTINGS_SEED", 1123));
    QRandomGenerator random(seed);
    for (int round = 0; round < states; ++round) {
        const State state = randomState(random);
        const QString where
            = QStringLiteral("state %1 (seed %2): %3").arg(round).arg(seed).arg(state.text());
        QTemporaryDir root;
        const QString stackDir = root.path() + QLatin1String("/roster_filters");
        QVERIFY(QDir().mkpath(stackDir + QLatin1String("/a directory")));
        QVERIFY(writeFile(stackDir + QLatin1String("/.hidden leftover"), contents.constFirst()));
        for (const QString &id : state.files)
            QVERIFY(writeFile(
                stackDir + QLatin1Char('/') + id, contents.at(random.bounded(contents.size()))));

        VeskStandIn::setSettingsDir(root.path());
        if (state.storeOrder)
            VeskFilterTestEnv::store(QStringLiteral("filters"), state.storedOrder);
        if (state.storeCurrent) {
            VeskSettingsManager::getInstance()->writeGlobalSetting(VeskField::lineEdit(
                QString(), QStringLiteral("roster_filter"), state.storedCurrent, 32767, QString()));
        }
        VeskStandIn::setSettingsDir(root.path());

        QStringList expected { QStringLiteral("default") };
        const QStringList stored = state.storeOrder ? state.storedOrder : QStringList();
        for (const QString &id : stored) {
            if (id != QLatin1String("default") && state.files.contains(id))
                expected.append(id);
        }
        QStringList unlisted;
        for (const QString &id : state.files) {
            if (id != QLatin1String("default") && !expected.contains(id))
                unlisted.append(id);
        }
        const QString expectedCurrent = state.storeCurrent
                && (state.files.contains(state.storedCurrent)
                    || state.storedCurrent == QLatin1String("default"))
            ? state.storedCurrent
            : QStringLiteral("default");

        VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
        const QStringList listed = manager->getFilterNames();
        QStringList tail = listed.mid(expected.size());
        tail.sort();
        unlisted.sort();
        QVERIFY2(listed.mid(0, expected.size()) == expected && tail == unlisted,
            qPrintable(where + QLatin1String("\nlisted: ") + listed.join(QLatin1Char(','))));
        // A fallback is stored, so that the next start agrees.
        const QString current = manager->getCurrentFilterName() + QLatin1Char('|')
            + VeskFilterTestEnv::storedText(QStringLiteral("roster_filter"));
        QVERIFY2(current == expectedCurrent + QLatin1Char('|') + expectedCurrent,
            qPrintable(where + QLatin1String("\ncurrent|stored: ") + current));
        for (const QString &id : listed) {
            VeskRosterFilter *filter = manager->getStackFilter(id);
            answers(filter ? filter : manager->getCurrentFilter());
        }
        shutDown();
    }
}

QTEST_GUILESS_MAIN(tst_SettingsOutOfStep)
#include "tst_settingsoutofstep.moc"
