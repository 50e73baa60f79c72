// What people expect of a command-line program: --version, and "-" for
// standard input where a file is read.

#include <QProcess>
#include <QtTest>

namespace {

struct Result
{
    int status = -1;
    QByteArray out;
    QByteArray err;
};

Result run(const QStringList &args, const QByteArray &input = QByteArray())
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(VESK_ROSTER_PROGRAM), args);
    process.write(input);
    process.closeWriteChannel();
    Result result;
    if (process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit)
        result.status = process.exitCode();
    result.out = process.readAllStandardOutput();
    result.err = process.readAllStandardError();
    return result;
}

const char roster[] = R"({
  "protocols": [{"name": "jabber"}],
  "accounts": [{"uid": "me@example.org", "protocol": "jabber"}],
  "groups": [{"name": "Work", "pos": 1}],
  "contacts": [
    {"display": "Carol", "group": "Work", "account": 0, "presence": {"id": "online"}},
    {"display": "Dave", "presence": {"id": "offline"}}
  ]
})";

} // namespace

class TestVeskRosterHabits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void version()
    {
        const Result result = run({ QStringLiteral("--version") });
        QCOMPARE(result.status, 0);
        QCOMPARE(result.out, QByteArray("vesk-roster " VESK_VERSION "\n"));
    }

    void helpListsVersionAndLeavesTheHelperOut()
    {
        const Result result = run({ QStringLiteral("--help") });
        QCOMPARE(result.status, 0);
        QVERIFY(result.out.contains("--version"));
        QVERIFY(result.out.contains("\n  edit "));
        QVERIFY(!result.out.contains("complete"));
        QVERIFY(result.out.contains("Exit status:"));
    }

    void rosterFromStandardInput()
    {
        QTemporaryDir dir;
        QFile file(dir.filePath(QStringLiteral("roster.json")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(roster);
        file.close();
        const QString settings = dir.filePath(QStringLiteral("settings"));
        const Result fromFile
            = run({ QStringLiteral("--settings"), settings, QStringLiteral("--roster"),
                file.fileName(), QStringLiteral("show"), QStringLiteral("--json") });
        const Result fromInput
            = run({ QStringLiteral("--settings"), settings, QStringLiteral("--roster"),
                      QStringLiteral("-"), QStringLiteral("show"), QStringLiteral("--json") },
                roster);
        QCOMPARE(fromFile.status, 0);
        QCOMPARE(fromInput.status, 0);
        QVERIFY(fromFile.out.contains("Carol"));
        QCOMPARE(fromInput.out, fromFile.out);

        const Result broken = run({ QStringLiteral("--settings"), settings,
                                      QStringLiteral("--roster"), QStringLiteral("-") },
            "{ not a roster");
        QCOMPARE(broken.status, 2);
        QVERIFY2(broken.err.contains("standard input"), broken.err.constData());

        // One standard input cannot be both.
        const Result both
            = run({ QStringLiteral("--settings"), settings, QStringLiteral("--roster"),
                      QStringLiteral("-"), QStringLiteral("import"), QStringLiteral("-") },
                roster);
        QCOMPARE(both.status, 2);
        QVERIFY2(both.err.contains("both"), both.err.constData());
    }
};

QTEST_GUILESS_MAIN(TestVeskRosterHabits)
#include "tst_vesk_roster_habits.moc"
