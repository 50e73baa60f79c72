// The bash completion: the script is sourced into a bash, its function runs
// on a partial command line as bash would run it on Tab, and the candidates
// it leaves in COMPREPLY are compared, against a settings directory with
// known filters and sorting methods.

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class TestVeskRosterCompletion : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir scratch;
    QString settings;

    static QProcessEnvironment environment()
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        return env;
    }

    int vr(const QStringList &args) const
    {
        QProcess process;
        process.setProcessEnvironment(environment());
        process.start(QStringLiteral(VESK_ROSTER_PROGRAM),
            QStringList { QStringLiteral("--settings"), settings } + args);
        process.waitForFinished(60000);
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }

    // COMPREPLY after Tab at the end of "PROGRAM --settings DIR <typed>".
    QStringList complete(const QString &typed) const
    {
        const QString program = QStringLiteral(VESK_ROSTER_PROGRAM);
        const QString line
            = program + QLatin1String(" --settings ") + settings + QLatin1Char(' ') + typed;
        QProcess bash;
        bash.setProcessEnvironment(environment());
        // COMP_WORDS[0] is all the function reads of the words; bash sets
        // COMP_WORDBREAKS itself.
        bash.start(QStringLiteral("bash"),
            { QStringLiteral("-c"),
                QStringLiteral(
                    "source \"$1\" || exit 3\n"
                    "complete -p vesk-roster >/dev/null || exit 4\n"
                    "COMP_LINE=$3; COMP_POINT=${#COMP_LINE}; COMP_WORDS=(\"$2\"); COMP_CWORD=1\n"
                    "_vesk_roster\n"
                    "printf '%s\\n' \"${COMPREPLY[@]}\"\n"),
                QStringLiteral("bash"), QStringLiteral(VESK_COMPLETION_SCRIPT), program, line });
        if (!bash.waitForFinished(60000) || bash.exitCode() != 0)
            return { QStringLiteral("(bash failed: %1)")
                         .arg(QString::fromUtf8(bash.readAllStandardError())) };
        QStringList candidates
            = QString::fromUtf8(bash.readAllStandardOutput()).split(QLatin1Char('\n'));
        candidates.removeAll(QString());
        candidates.sort();
        return candidates;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(scratch.isValid());
        settings = scratch.filePath(QStringLiteral("settings"));
        QCOMPARE(
            vr({ QStringLiteral("new"), QStringLiteral("online friends"), QStringLiteral("and"),
                QStringLiteral("presence"), QStringLiteral("is_or_not=is not"),
                QStringLiteral("presence_filter_presence=offline") }),
            0);
        QCOMPARE(vr({ QStringLiteral("new"), QStringLiteral("work"), QStringLiteral("and"),
                     QStringLiteral("group"), QStringLiteral("is_or_not=is"),
                     QStringLiteral("group_filter_presence=Work") }),
            0);
        QCOMPARE(
            vr({ QStringLiteral("sorter"), QStringLiteral("by name"), QStringLiteral("name") }), 0);
        QCOMPARE(
            vr({ QStringLiteral("sorter"), QStringLiteral("busy"), QStringLiteral("chats_count") }),
            0);
    }

    void candidates_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QStringList>("expected");
        const auto L = [](std::initializer_list<const char *> words) {
            QStringList list;
            for (const char *word : words)
                list.append(QString::fromUtf8(word));
            list.sort();
            return list;
        };
        QTest::newRow("commands") << "u" << L({ "up", "use" });
        QTest::newRow("the helper is not offered") << "comp" << QStringList();
        QTest::newRow("global options") << "--v" << L({ "--version" });
        QTest::newRow("filters, the default one too")
            << "use " << L({ "default", "online\\ friends", "work" });
        QTest::newRow("filters to edit") << "edit " << L({ "online\\ friends", "work" });
        QTest::newRow("a filter by its start") << "remove on" << L({ "online\\ friends" });
        QTest::newRow("an escaped blank") << "export online\\ f" << L({ "online\\ friends" });
        QTest::newRow("inside quotes") << "export \"online f" << L({ "online friends" });
        QTest::newRow("sorting methods") << "sort " << L({ "busy", "by\\ name" });
        QTest::newRow("no default method") << "sorter-default b" << L({ "busy", "by\\ name" });
        QTest::newRow("and, or") << "new x " << L({ "and", "or" });
        QTest::newRow("kinds") << "new x and "
                               << L({ "account", "description", "display", "group", "presence",
                                      "protocol" });
        QTest::newRow("fields of the kind") << "new x and presence is" << L({ "is_or_not=" });
        // bash breaks words at '=': only what follows it is offered.
        QTest::newRow("values of a field")
            << "new x and presence is_or_not=" << L({ "is", "is\\ not" });
        QTest::newRow("values by their start")
            << "add work presence presence_filter_presence=of" << L({ "offline" });
        QTest::newRow("a nested stack") << "add work stack_filter " << L({ "and", "or" });
        QTest::newRow("comparators") << "sorter new ch" << L({ "chats_count" });
        QTest::newRow("directions") << "sorter new name:d" << L({ "desc" });
        QTest::newRow("files are the shell's") << "import " << QStringList();
        QTest::newRow("import's options") << "import f.json --r" << L({ "--replace" });
    }

    void candidates()
    {
        QFETCH(QString, typed);
        QFETCH(QStringList, expected);
        QCOMPARE(complete(typed), expected);
    }

    // Another settings directory on the line gives its own filters.
    void settingsComeFromTheLine()
    {
        QTemporaryDir other;
        const QString program = QStringLiteral(VESK_ROSTER_PROGRAM);
        QProcess process;
        process.setProcessEnvironment(environment());
        process.start(program,
            { QStringLiteral("complete"),
                program + QLatin1String(" --settings ") + other.path() + QLatin1String(" use ") });
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(QString::fromUtf8(process.readAllStandardOutput()), QStringLiteral("default\n"));
    }
};

QTEST_GUILESS_MAIN(TestVeskRosterCompletion)
#include "tst_vesk_roster_completion.moc"
