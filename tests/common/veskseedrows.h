#pragma once

#include <QTest>

// The rows of a data-driven test run once for each of the seeds 1 to `last`
// of generated rosters, in the column "seed".
inline void addSeedRows(quint32 last)
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= last; ++seed)
        QTest::newRow(qPrintable(QStringLiteral("seed %1").arg(seed))) << seed;
}
