// vesk-roster end to end. Where the settings live, and a place that cannot take them.

#include "veskrosterrunner.h"

#include <QScopeGuard>

#include <unistd.h>

class tst_VeskRosterSettings : public QObject, public VeskRosterRunner
{
    Q_OBJECT

private slots:
    void initTestCase() { setUpFixture(); }
    void init() { newSettings(); }

    void unwritableSettingsAreRefusedUpFront_data();
    void unwritableSettingsAreRefusedUpFront();
    void settingsPlaceFollowsTheEnvironment_data();
    void settingsPlaceFollowsTheEnvironment();
};

void tst_VeskRosterSettings::unwritableSettingsAreRefusedUpFront_data()
{
    QTest::addColumn<QString>("place"); // file, below-file, read-only
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("message");
    const struct
    {
        const char *place;
        const char *message;
    } places[] = { { "file", "is not a directory" },
        { "below-file", "cannot create the settings directory" },
        { "read-only", "cannot write to the settings directory" } };
    const Commands commands { A({ "new", "x", "and", "display" }), A({ "use", "work" }),
        A({ "sorter", "m", "name" }), A({ "remove", "work" }), A({ "rename", "work", "w" }) };
    for (const auto &place : places) {
        for (const QStringList &command : commands) {
            QTest::addRow("%s: %s", place.place, qPrintable(command.first()))
                << QString::fromUtf8(place.place) << command << QString::fromUtf8(place.message);
        }
    }
}

void tst_VeskRosterSettings::unwritableSettingsAreRefusedUpFront()
{
    QFETCH(QString, place);
    QFETCH(QStringList, args);
    QFETCH(QString, message);
    QString dir = settings;
    QStringList wrapper;
    // Writable again afterwards, or the temporary directory stays behind.
    const auto restore = qScopeGuard([this] {
        for (const QString &path : { temp->path(), settings })
            QFile::setPermissions(
                path, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    });
    if (place == QLatin1String("read-only")) {
        useFixture();
        // Root writes into any directory: the program then runs as nobody.
        QVERIFY(QFile::setPermissions(temp->path(),
            QFileDevice::ReadOwner | QFileDevice::ExeOwner | QFileDevice::ReadOther
                | QFileDevice::ExeOther));
        QVERIFY(QFile::setPermissions(settings,
            QFileDevice::ReadOwner | QFileDevice::ExeOwner | QFileDevice::ReadOther
                | QFileDevice::ExeOther));
        if (::geteuid() == 0) {
            wrapper = A({ "setpriv", "--reuid=65534", "--regid=65534", "--clear-groups" });
            if (program(
                    A({ "--roster", "-", "help" }), QByteArray(), QProcessEnvironment(), wrapper)
                    .status
                != 0)
                QSKIP("the program cannot be run as an unprivileged user here");
        }
        // Reading still works, under a shared lock.
        const Result read
            = program(QStringList { QStringLiteral("--settings"), dir, QStringLiteral("filters") },
                QByteArray(), QProcessEnvironment(), wrapper);
        QVERIFY2(
            read.status == 0 && read.out.contains(QLatin1String("work")), qPrintable(read.err));
    } else {
        writeFile(settings, "not a directory");
        if (place == QLatin1String("below-file"))
            dir = settings + QLatin1String("/vesk-roster");
    }
    const QString before = fingerprint(temp->path());
    const Result result = program(QStringList { QStringLiteral("--settings"), dir } + args,
        QByteArray(), QProcessEnvironment(), wrapper);
    QCOMPARE(result.status, 2);
    QVERIFY2(result.err.contains(message) && result.err.contains(settings), qPrintable(result.err));
    QCOMPARE(fingerprint(temp->path()), before);
}

void tst_VeskRosterSettings::settingsPlaceFollowsTheEnvironment_data()
{
    QTest::addColumn<QString>("xdg");
    QTest::addColumn<QString>("home");
    QTest::addColumn<QString>("stored"); // relative to the temporary directory; empty: refused
    QTest::newRow("XDG_CONFIG_HOME first") << "xdg"
                                           << "home"
                                           << "xdg/vesk-roster";
    QTest::newRow("HOME without XDG_CONFIG_HOME") << ""
                                                  << "home"
                                                  << "home/.config/vesk-roster";
    QTest::newRow("a relative XDG_CONFIG_HOME is ignored") << "relative"
                                                           << "home"
                                                           << "home/.config/vesk-roster";
    QTest::newRow("neither is refused") << ""
                                        << ""
                                        << "";
}

void tst_VeskRosterSettings::settingsPlaceFollowsTheEnvironment()
{
    QFETCH(QString, xdg);
    QFETCH(QString, home);
    QFETCH(QString, stored);
    QProcessEnvironment environment;
    auto absolute = [&](const QString &name) {
        return name.isEmpty() || name == QLatin1String("relative") ? name : temp->filePath(name);
    };
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), absolute(xdg));
    environment.insert(QStringLiteral("HOME"), absolute(home));
    const Result result = program(A({ "sorter", "m", "name" }), QByteArray(), environment);
    QVERIFY(!QFileInfo::exists(fixture.filePath(QStringLiteral("relative"))));
    if (stored.isEmpty()) {
        QCOMPARE(result.status, 2);
        QVERIFY2(result.err.contains(QLatin1String("--settings")), qPrintable(result.err));
        return;
    }
    QVERIFY2(result.status == 0, qPrintable(result.err));
    QVERIFY(QFileInfo::exists(temp->filePath(stored + QLatin1String("/settings.dat"))));
}

QTEST_GUILESS_MAIN(tst_VeskRosterSettings)
#include "tst_vesk_roster_settings.moc"
