// vesk-roster edit: the filter's definition goes through an "editor" that is
// a shell script, and what is stored afterwards is read back with export.

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace {

struct Result
{
    int status = -1;
    QString out;
    QString err;
};

void writeScript(const QString &path, const QByteArray &body)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("#!/bin/sh\n" + body);
    file.close();
    QVERIFY(file.setPermissions(file.permissions() | QFileDevice::ExeOwner));
}

// The path a refusal names after "kept in ".
QString keptFile(const QString &message)
{
    const int at = message.indexOf(QLatin1String("kept in "));
    return at < 0 ? QString() : message.mid(at + 8).trimmed();
}

} // namespace

class TestVeskRosterEdit : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir scratch;
    QString settings;

    QProcessEnvironment environment(const QString &editor, const QString &visual = QString()) const
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        env.remove(QStringLiteral("VISUAL"));
        env.insert(QStringLiteral("EDITOR"), editor);
        if (!visual.isNull())
            env.insert(QStringLiteral("VISUAL"), visual);
        return env;
    }

    QProcess *start(
        const QStringList &args, const QString &editor, const QString &visual = QString()) const
    {
        auto *process = new QProcess;
        process->setProcessEnvironment(environment(editor, visual));
        process->start(QStringLiteral(VESK_ROSTER_PROGRAM),
            QStringList { QStringLiteral("--settings"), settings } + args);
        return process;
    }

    static Result finish(QProcess *process)
    {
        Result result;
        process->closeWriteChannel();
        if (process->waitForFinished(60000) && process->exitStatus() == QProcess::NormalExit)
            result.status = process->exitCode();
        result.out = QString::fromUtf8(process->readAllStandardOutput());
        result.err = QString::fromUtf8(process->readAllStandardError());
        delete process;
        return result;
    }

    Result run(const QStringList &args, const QString &editor = QStringLiteral("false"),
        const QString &visual = QString()) const
    {
        return finish(start(args, editor, visual));
    }

    QByteArray exported(const QString &name) const
    {
        const Result result = run({ QStringLiteral("export"), name });
        return result.status == 0 ? result.out.toUtf8() : QByteArray();
    }

    QString editor(const char *name, const QByteArray &body) const
    {
        const QString path = scratch.filePath(QLatin1String(name));
        writeScript(path, body);
        return path;
    }

    QByteArray storedBytes() const
    {
        QByteArray all;
        for (const char *file : { "/settings.dat", "/roster_filters/here" }) {
            QFile in(settings + QLatin1String(file));
            if (in.open(QIODevice::ReadOnly))
                all += in.readAll();
        }
        return all;
    }

private Q_SLOTS:
    void init()
    {
        QVERIFY(scratch.isValid());
        settings = scratch.filePath(
            QStringLiteral("settings-") + QString::fromLatin1(QTest::currentTestFunction()));
        QDir(settings).removeRecursively();
        QCOMPARE(run({ QStringLiteral("new"), QStringLiteral("here"), QStringLiteral("and"),
                         QStringLiteral("presence"), QStringLiteral("is_or_not=is"),
                         QStringLiteral("presence_filter_presence=online") })
                     .status,
            0);
    }

    void rewrittenTextIsStoredAndReadsBack()
    {
        const QString rewrite = editor("rewrite.sh", "sed -i 's/\"online\"/\"away\"/' \"$1\"\n");
        const Result result = run({ QStringLiteral("edit"), QStringLiteral("here") }, rewrite);
        QCOMPARE(result.status, 0);
        QVERIFY2(result.out.contains(QLatin1String("replaced here")), qPrintable(result.out));
        const QJsonObject filter
            = QJsonDocument::fromJson(exported(QStringLiteral("here"))).object();
        const QJsonObject fields = filter.value(QLatin1String("children"))
                                       .toArray()
                                       .at(0)
                                       .toObject()
                                       .value(QLatin1String("fields"))
                                       .toObject();
        QCOMPARE(fields.value(QLatin1String("presence_filter_presence")).toString(),
            QStringLiteral("away"));
    }

    // VISUAL wins over EDITOR, as everywhere else.
    void visualComesBeforeEditor()
    {
        const QString rewrite = editor("visual.sh", "sed -i 's/\"is\"/\"is not\"/' \"$1\"\n");
        const Result result = run(
            { QStringLiteral("edit"), QStringLiteral("here") }, QStringLiteral("false"), rewrite);
        QCOMPARE(result.status, 0);
        QVERIFY(exported(QStringLiteral("here")).contains("\"is not\""));
    }

    void brokenTextStoresNothingAndSaysWhere_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("said");
        QTest::newRow("not JSON") << QByteArray("{\n  \"name\": \"here\",\n  oops\n}\n")
                                  << QStringLiteral("line 3, column");
        QTest::newRow("unknown kind") << QByteArray(
            R"({"name": "here", "type": "and", "children": [{"kind": "mood", "fields": {}}]})")
                                      << QStringLiteral("mood");
        QTest::newRow("no children")
            << QByteArray(R"({"name": "here", "type": "and", "children": []})")
            << QStringLiteral("without children");
        QTest::newRow("another name") << QByteArray(
            R"({"name": "other", "type": "and", "children": [{"kind": "presence", "fields": {}}]})")
                                      << QStringLiteral("rename");
    }

    void brokenTextStoresNothingAndSaysWhere()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, said);
        QFile file(scratch.filePath(QStringLiteral("broken.json")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        const QString broken
            = editor("broken.sh", "cat '" + file.fileName().toUtf8() + "' > \"$1\"\n");
        const QByteArray before = exported(QStringLiteral("here"));
        const QByteArray stored = storedBytes();

        // No terminal here: refused, and the user's text kept where it says.
        const Result result = run({ QStringLiteral("edit"), QStringLiteral("here") }, broken);
        QCOMPARE(result.status, 2);
        QVERIFY2(result.err.contains(said), qPrintable(result.err));
        QVERIFY2(result.err.contains(QLatin1String("nothing stored")), qPrintable(result.err));
        QVERIFY(result.out.isEmpty());
        QFile kept(keptFile(result.err));
        QVERIFY2(kept.open(QIODevice::ReadOnly), qPrintable(result.err));
        QCOMPARE(kept.readAll(), text);
        QDir(QFileInfo(kept).absolutePath()).removeRecursively();

        QCOMPARE(exported(QStringLiteral("here")), before);
        QCOMPARE(storedBytes(), stored);
    }

    void unchangedTextStoresNothing()
    {
        const QByteArray stored = storedBytes();
        const QDateTime modified
            = QFileInfo(settings + QLatin1String("/roster_filters/here")).lastModified();
        const Result result
            = run({ QStringLiteral("edit"), QStringLiteral("here") }, QStringLiteral("true"));
        QCOMPARE(result.status, 0);
        QVERIFY2(result.out.contains(QLatin1String("unchanged")), qPrintable(result.out));
        QCOMPARE(storedBytes(), stored);
        QCOMPARE(
            QFileInfo(settings + QLatin1String("/roster_filters/here")).lastModified(), modified);
    }

    void failingEditorStoresNothing()
    {
        const QString failing = editor("failing.sh", "echo garbage > \"$1\"; exit 3\n");
        const QByteArray stored = storedBytes();
        const Result result = run({ QStringLiteral("edit"), QStringLiteral("here") }, failing);
        QCOMPARE(result.status, 2);
        QVERIFY2(result.err.contains(QLatin1String("exit status 3")), qPrintable(result.err));
        QCOMPARE(storedBytes(), stored);
    }

    void unknownOrDefaultFilterIsRefused_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("unknown") << QStringLiteral("nosuch");
        QTest::newRow("default") << QStringLiteral("default");
    }

    void unknownOrDefaultFilterIsRefused()
    {
        QFETCH(QString, name);
        // The editor would fail the run if it were ever started.
        const Result result = run({ QStringLiteral("edit"), name }, QStringLiteral("false"));
        QCOMPARE(result.status, 2);
        QVERIFY(!result.err.contains(QLatin1String("editor")));
    }

    // On a terminal a refusal asks "edit again? [y/n]", as crontab -e does;
    // the terminal is script(1)'s, with the answer typed ahead. The editor
    // breaks the text the first time and mends only its own break the second
    // time, so the stored result shows the user's text was kept.
    void onATerminalRefusedTextIsOfferedAgain_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<int>("status");
        QTest::newRow("yes") << QByteArray("y\n") << 0;
        QTest::newRow("no") << QByteArray("n\n") << 2;
    }

    void onATerminalRefusedTextIsOfferedAgain()
    {
        QFETCH(QByteArray, answer);
        QFETCH(int, status);
        const QString script = QStandardPaths::findExecutable(QStringLiteral("script"));
        if (script.isEmpty())
            QSKIP("script(1) is not installed");
        const QByteArray count = scratch.filePath(QStringLiteral("count")).toUtf8();
        QFile::remove(QString::fromUtf8(count));
        const QString twice = editor("twice.sh",
            "n=$(cat '" + count + "' 2>/dev/null || echo 0); n=$((n + 1)); echo $n > '" + count
                + "'\n"
                  "if [ $n = 1 ]; then sed -i 's/\"online\"/\"away\"/; s/\"children\"/oops/' "
                  "\"$1\"\n"
                  "else sed -i 's/oops/\"children\"/' \"$1\"; fi\n");
        const QByteArray before = exported(QStringLiteral("here"));
        QProcess process;
        process.setProcessEnvironment(environment(twice));
        const QString command = QStringLiteral("'%1' --settings '%2' edit here")
                                    .arg(QStringLiteral(VESK_ROSTER_PROGRAM), settings);
        process.start(script, { QStringLiteral("-qec"), command, QStringLiteral("/dev/null") });
        process.write(answer);
        QVERIFY(process.waitForFinished(60000));
        const QString said = QString::fromUtf8(process.readAll());
        QCOMPARE(process.exitCode(), status);
        QVERIFY2(said.contains(QLatin1String("line 6, column")), qPrintable(said));
        QVERIFY2(said.contains(QLatin1String("edit again? [y/n]")), qPrintable(said));
        if (status == 0) {
            QVERIFY(exported(QStringLiteral("here")).contains("\"away\""));
        } else {
            QCOMPARE(exported(QStringLiteral("here")), before);
            QFile kept(keptFile(said));
            QVERIFY2(kept.open(QIODevice::ReadOnly), qPrintable(said));
            QVERIFY(kept.readAll().contains("oops"));
            QDir(QFileInfo(kept).absolutePath()).removeRecursively();
        }
    }

    // Two runs edit one filter at once: the second to save finds the filter
    // changed under it and stores nothing, keeping its text; the first's
    // change stays. Neither holds the lock while its editor is open.
    void parallelEditsLoseNothing()
    {
        const QString barrier = scratch.filePath(QStringLiteral("barrier"));
        QDir().mkpath(barrier);
        // Each editor announces itself and waits for the other's, so that
        // both started from the same definition; the second also waits
        // until the first run has stored.
        const QString first = editor("first.sh",
            "touch '" + barrier.toUtf8()
                + "/first'\n"
                  "while [ ! -e '"
                + barrier.toUtf8()
                + "/second' ]; do sleep 0.05; done\n"
                  "sed -i 's/\"online\"/\"away\"/' \"$1\"\n");
        const QString second = editor("second.sh",
            "touch '" + barrier.toUtf8()
                + "/second'\n"
                  "while [ ! -e '"
                + barrier.toUtf8()
                + "/first-done' ]; do sleep 0.05; done\n"
                  "sed -i 's/\"is\"/\"is not\"/' \"$1\"\n");
        QProcess *a = start({ QStringLiteral("edit"), QStringLiteral("here") }, first);
        QProcess *b = start({ QStringLiteral("edit"), QStringLiteral("here") }, second);
        const Result ra = finish(a);
        QFile(barrier + QLatin1String("/first-done")).open(QIODevice::WriteOnly);
        const Result rb = finish(b);

        QCOMPARE(ra.status, 0);
        QCOMPARE(rb.status, 2);
        QVERIFY2(rb.err.contains(QLatin1String("changed by another run")), qPrintable(rb.err));
        const QByteArray stored = exported(QStringLiteral("here"));
        QVERIFY(stored.contains("\"away\""));
        QVERIFY(!stored.contains("\"is not\""));
        QFile kept(keptFile(rb.err));
        QVERIFY2(kept.open(QIODevice::ReadOnly), qPrintable(rb.err));
        const QByteArray text = kept.readAll();
        QVERIFY(text.contains("\"is not\"") && text.contains("\"online\""));
        QDir(QFileInfo(kept).absolutePath()).removeRecursively();
    }
};

QTEST_GUILESS_MAIN(TestVeskRosterEdit)
#include "tst_vesk_roster_edit.moc"
