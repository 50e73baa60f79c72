// `vesk-roster show --search`: the quick search on the command line, run as
// a separate process on the bundled sample roster.

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class tst_VeskRosterSearch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void search_data();
    void search();
    void footerNamesTheSearch();
    void searchWithoutTextIsRefused();

private:
    struct Result
    {
        int status;
        QString out;
        QString err;
    };
    Result run(const QStringList &args);
    QTemporaryDir dir;
};

tst_VeskRosterSearch::Result tst_VeskRosterSearch::run(const QStringList &args)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), dir.path());
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(VESK_ROSTER_PROGRAM),
        QStringList { QStringLiteral("--settings"), dir.path() + QLatin1String("/settings") }
            + args);
    if (!process.waitForFinished(60000))
        return { -1, QString(), QStringLiteral("did not finish") };
    return { process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
        QString::fromUtf8(process.readAllStandardError()) };
}

void tst_VeskRosterSearch::search_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("shown");
    QTest::newRow("accent found by the plain letter") << QStringList { QStringLiteral("--search"),
        QStringLiteral("EMILE") } << QStringLiteral("Friends: Émile Roux");
    QTest::newRow("option with =, status text") << QStringList { QStringLiteral("--search=LUNCH") }
                                                << QStringLiteral("Friends: Alice Martin");
    QTest::newRow("account uid")
        << QStringList { QStringLiteral("--search"), QStringLiteral("123456") }
        << QStringLiteral(
               "Friends: Dana Kowalski, Fatima, Ivan | Work: Igor Petrov | Family: "
               "Grandma Rose, Mum, uncle Sam, Dad | Band: Marco, Olga | Blocked: spammer42");
    QTest::newRow("every entry, option before the text") << QStringList {
        QStringLiteral("--every-entry"), QStringLiteral("--search"), QStringLiteral("fatim")
    } << QStringLiteral("Friends: Fatima");
    QTest::newRow("nothing") << QStringList { QStringLiteral("--search"), QStringLiteral("zzzz") }
                             << QString();
}

// "Group: a, b | Group: c" from show --json.
void tst_VeskRosterSearch::search()
{
    QFETCH(QStringList, args);
    QFETCH(QString, shown);
    const Result result
        = run(QStringList { QStringLiteral("--json"), QStringLiteral("show") } + args);
    QCOMPARE(result.status, 0);
    const QJsonObject document = QJsonDocument::fromJson(result.out.toUtf8()).object();
    QStringList parts;
    const QJsonArray groups = document.value(QLatin1String("groups")).toArray();
    for (const QJsonValue &group : groups) {
        QStringList names;
        const QJsonArray entries = group.toObject().value(QLatin1String("entries")).toArray();
        for (const QJsonValue &entry : entries)
            names.append(entry.toObject().value(QLatin1String("display")).toString());
        parts.append(group.toObject().value(QLatin1String("name")).toString() + QLatin1String(": ")
            + names.join(QLatin1String(", ")));
    }
    QCOMPARE(parts.join(QLatin1String(" | ")), shown);
}

void tst_VeskRosterSearch::footerNamesTheSearch()
{
    const Result result
        = run({ QStringLiteral("show"), QStringLiteral("--search"), QStringLiteral("émile") });
    QCOMPARE(result.status, 0);
    QVERIFY2(result.out.contains(QStringLiteral("1 of 42 entries shown, searching for émile")),
        qPrintable(result.out));
}

void tst_VeskRosterSearch::searchWithoutTextIsRefused()
{
    const Result result = run({ QStringLiteral("show"), QStringLiteral("--search") });
    QCOMPARE(result.status, 2);
    QVERIFY(result.out.isEmpty());
    QCOMPARE(result.err.trimmed(),
        QStringLiteral("vesk-roster: missing argument: --search needs a value"));
}

QTEST_GUILESS_MAIN(tst_VeskRosterSearch)
#include "tst_vesk_roster_search.moc"
