// Hostile stack files: absurd nesting, a huge file, a DTD, entity expansion, broken
// encodings, unknown tags. Each is started on in a child process with a
// 1 MiB stack, so that a recursion that would crash a client with a small
// stack crashes here: start-up must finish within a second and 256 MiB, list
// the hostile filter and load the intact one next to it unchanged.

#include "reliabilitysupport.h"

#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskstandin.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace VeskReliability;

namespace {

const QByteArray validLeaf
    = "<display><fields><field id=\"is_or_not\" value=\"contains\"/>"
      "<field id=\"display_filter_regexp\" value=\"Al\"/></fields></display>";

QByteArray stackDocument(const QByteArray &body, const QByteArray &prolog = QByteArray())
{
    return prolog + "<stack_filter type=\"AND\" sort=\"\" advanced=\"f\">" + body
        + "</stack_filter>\n";
}

// `levels` nested stacks below the root, each with one leaf beside its child.
QByteArray nested(int levels, bool withLeaves)
{
    QByteArray body;
    body.reserve(levels * (withLeaves ? 150 : 40));
    for (int i = 0; i < levels; ++i) {
        if (withLeaves)
            body += validLeaf;
        body += "<stack_filter type=\"OR\">";
    }
    if (withLeaves)
        body += validLeaf;
    for (int i = 0; i < levels; ++i)
        body += "</stack_filter>";
    return stackDocument(body);
}

QByteArray billionLaughs()
{
    QByteArray prolog
        = "<?xml version=\"1.0\"?>\n<!DOCTYPE stack_filter [\n<!ENTITY lol0 \"lol\">\n";
    for (int i = 1; i <= 9; ++i) {
        prolog += "<!ENTITY lol" + QByteArray::number(i) + " \"";
        for (int j = 0; j < 10; ++j)
            prolog += "&lol" + QByteArray::number(i - 1) + ';';
        prolog += "\">\n";
    }
    prolog += "]>\n";
    return stackDocument("<display><fields><field id=\"display_filter_regexp\" value=\"&lol9;\"/>"
                         "</fields></display>",
        prolog);
}

QByteArray quadraticBlowup()
{
    const QByteArray prolog = "<?xml version=\"1.0\"?>\n<!DOCTYPE stack_filter [\n<!ENTITY a \""
        + QByteArray(50000, 'a') + "\">\n]>\n";
    return stackDocument("<display><fields><field id=\"display_filter_regexp\" value=\""
            + QByteArray("&a;").repeated(20000) + "\"/></fields></display>",
        prolog);
}

QByteArray externalEntity()
{
    return stackDocument("<display><fields><field id=\"display_filter_regexp\" value=\"&x;\"/>"
                         "</fields></display>"
            + validLeaf,
        "<?xml version=\"1.0\"?>\n<!DOCTYPE stack_filter [\n"
        "<!ENTITY x SYSTEM \"file:///etc/passwd\">\n]>\n");
}

struct ProbeResult
{
    bool ran = false;
    QString failure;
    qint64 elapsedMs = -1;
    qint64 peakKiB = -1;
    QHash<QString, QString> filters;
};

ProbeResult probe(const QString &settingsDir)
{
    ProbeResult result;
    QProcess process;
    // The stack limit of the main thread is fixed when the program starts.
    process.start(QStringLiteral("/bin/sh"),
        { QStringLiteral("-c"), QStringLiteral("ulimit -s 1024 && exec \"$0\" \"$@\""),
            QStringLiteral(RELIABILITY_PROBE), settingsDir });
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        result.failure = QStringLiteral("start-up did not finish within a minute");
        return result;
    }
    const QByteArray output = process.readAllStandardOutput();
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        result.failure
            = QStringLiteral("start-up crashed (exit %1):\n%2")
                  .arg(process.exitCode())
                  .arg(QString::fromLocal8Bit(process.readAllStandardError().right(4000)));
        return result;
    }
    result.ran = true;
    const QList<QByteArray> lines = output.split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("elapsed_ms "))
            result.elapsedMs = line.mid(11).toLongLong();
        else if (line.startsWith("peak_kib "))
            result.peakKiB = line.mid(9).toLongLong();
        else if (line.startsWith("filter ")) {
            const QString text = QString::fromUtf8(QByteArray::fromPercentEncoding(line.mid(7)));
            const int colon = text.indexOf(QLatin1String(": "));
            result.filters.insert(text.left(colon), text.mid(colon + 2));
        }
    }
    return result;
}

} // namespace

class tst_HostileFiles : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { shutDown(); }

    void startUpSurvivesAHostileFile_data();
    void startUpSurvivesAHostileFile();
    void startUpReadsAHugeFileOnlyUpToTheSizeBound();

private:
    void checkStartUp(const QString &root, const QString &hostilePath, int leavesLoaded);

    QByteArray intactFile;
    QString intactDescription;
};

void tst_HostileFiles::initTestCase()
{
    buildSmallRoster();
    QTemporaryDir dir;
    VeskStandIn::setSettingsDir(dir.path());
    addLargeStack(QStringLiteral("friends"), 12, 2)->writeFilterSettings();
    shutDown();
    intactFile = readFile(dir.path() + QLatin1String("/roster_filters/friends"));
    QVERIFY(!intactFile.isEmpty());
    VeskStandIn::setSettingsDir(dir.path());
    intactDescription = describeAll(false).value(0);
    shutDown();
    QVERIFY(intactDescription.startsWith(QLatin1String("friends: ")));
}

void tst_HostileFiles::startUpSurvivesAHostileFile_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("leavesLoaded"); // -1: any number

    // Deep enough for every recursion the library has, yet within its depth
    // bound of 256 element levels: must not overflow a 1 MiB stack.
    QTest::newRow("nesting of 250 levels") << nested(250, true) << 251;
    // Past the depth bound, or the 1 MiB size bound, a file is an empty stack.
    QTest::newRow("nesting of 1,000 levels") << nested(1000, true) << 0;
    QTest::newRow("nesting of 100,000 levels") << nested(100000, false) << -1;
    QTest::newRow("nesting of 1,000,000 levels") << nested(1000000, false) << -1;
    QTest::newRow("nesting of 100,000 unknown elements")
        << stackDocument(QByteArray("<x>").repeated(100000) + QByteArray("</x>").repeated(100000))
        << -1;
    QTest::newRow("a billion laughs") << billionLaughs() << -1;
    QTest::newRow("a quadratic entity blow-up") << quadraticBlowup() << -1;
    QTest::newRow("an external entity") << externalEntity() << 0;
    // Harmless, yet a file with a DTD is never handed to the DOM.
    QTest::newRow("an internal DTD that declares nothing harmful")
        << stackDocument(validLeaf, "<!DOCTYPE stack_filter [<!ELEMENT stack_filter ANY>]>\n") << 0;
    QTest::newRow("invalid UTF-8") << stackDocument(
        "<display><fields><field id=\"display_filter_regexp\" value=\"\xc3\x28\xff\xfe"
        "\xed\xa0\x80\"/></fields></display>")
                                   << -1;
    QTest::newRow("NUL bytes") << stackDocument(QByteArray("\0\0", 2) + validLeaf
        + QByteArray("\0", 1)) << -1;
    QTest::newRow("a NUL inside a value") << stackDocument(
        "<display><fields><field id=\"display_filter_regexp\" value=\"a" + QByteArray("\0", 1)
        + "b\"/></fields></display>") << -1;
    QTest::newRow("unknown tags are skipped")
        << stackDocument("<bogus><fields><field id=\"is_or_not\" value=\"is\"/></fields></bogus>"
                         "<stack_filter type=\"OR\"><weird><x/></weird></stack_filter>"
               + validLeaf + "<presencex><fields/></presencex>")
        << 1;
    QTest::newRow("duplicate attributes")
        << QByteArray("<stack_filter type=\"AND\" type=\"OR\">" + validLeaf + "</stack_filter>")
        << -1;
    QTest::newRow("duplicate field attributes")
        << stackDocument("<display><fields><field id=\"is_or_not\" id=\"x\" value=\"is\" "
                         "value=\"contains\"/></fields></display>")
        << -1;
    QTest::newRow("a leaf without its fields node is skipped")
        << stackDocument("<display/><display></display><group/>" + validLeaf) << 1;
    QTest::newRow("a leaf with text instead of fields")
        << stackDocument("<display>just text</display>" + validLeaf) << -1;
    QTest::newRow("truncated") << stackDocument(validLeaf).left(60) << 0;
    QTest::newRow("a wrong root element") << QByteArray("<roster>" + validLeaf + "</roster>") << 0;
    QTest::newRow("binary junk") << QByteArray::fromHex("00ff13a7fe80c3000102fffe3c3f786d6c") << 0;
    QTest::newRow("an empty file") << QByteArray() << 0;
    QTest::newRow("a UTF-16 document") << QByteArray("\xff\xfe", 2)
            + QByteArray(reinterpret_cast<const char *>(
                             QString::fromLatin1(stackDocument(validLeaf)).utf16()),
                stackDocument(validLeaf).size() * 2)
                                       << 1;
}

void tst_HostileFiles::startUpSurvivesAHostileFile()
{
    QFETCH(QByteArray, content);
    QFETCH(int, leavesLoaded);
    QTemporaryDir root;
    const QString path = root.path() + QLatin1String("/roster_filters/hostile");
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QVERIFY(writeFile(path, content));
    content.clear();
    checkStartUp(root.path(), path, leavesLoaded);
}

// A valid document followed by a gigabyte of zeros, sparse on disk: a reader
// that reads it whole before looking at its size exceeds the memory bound.
void tst_HostileFiles::startUpReadsAHugeFileOnlyUpToTheSizeBound()
{
    QTemporaryDir root;
    const QString path = root.path() + QLatin1String("/roster_filters/hostile");
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QVERIFY(writeFile(path, stackDocument(validLeaf)));
    QVERIFY(QFile::resize(path, qint64(1) << 30));
    checkStartUp(root.path(), path, 0);
}

// Starts up on the hostile file beside the intact one: within a second and
// 256 MiB, the hostile filter listed with leavesLoaded leaves (-1: any number),
// the intact one unchanged.
void tst_HostileFiles::checkStartUp(
    const QString &root, const QString &hostilePath, int leavesLoaded)
{
    QVERIFY(writeFile(QFileInfo(hostilePath).path() + QLatin1String("/friends"), intactFile));
    const ProbeResult result = probe(root);
    QVERIFY2(result.ran, qPrintable(result.failure));
    qInfo("start-up %lld ms, peak %lld KiB", result.elapsedMs, result.peakKiB);
    QVERIFY2(result.elapsedMs >= 0 && result.elapsedMs < 1000,
        qPrintable(QStringLiteral("start-up took %1 ms").arg(result.elapsedMs)));
    QVERIFY2(result.peakKiB > 0 && result.peakKiB < 256 * 1024,
        qPrintable(QStringLiteral("peak memory %1 KiB").arg(result.peakKiB)));
    QCOMPARE(QStringLiteral("friends: ") + result.filters.value(QStringLiteral("friends")),
        intactDescription);
    QVERIFY2(
        result.filters.contains(QStringLiteral("hostile")), "the hostile filter is not listed");
    const QString hostile = result.filters.value(QStringLiteral("hostile"));
    QVERIFY2(!hostile.contains(QLatin1String("root:")), "an external entity was read");
    if (leavesLoaded >= 0)
        QCOMPARE(hostile.count(QStringLiteral("display LEAF")), leavesLoaded);
}

QTEST_GUILESS_MAIN(tst_HostileFiles)
#include "tst_hostilefiles.moc"
