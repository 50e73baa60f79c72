// Stack files: what is written comes back after a restart, depth and saving
// are bounded, and only files the library spells are filters. Hostile names
// and file contents are tests/reliability's hostile-names and hostile-files
// property tests.

#include <veskfiltertestenv.h>
#include <veskfiltertree.h>

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QDomDocument>
#include <QtTest>

using namespace VeskFilterTree;

namespace {

const VeskRosterFilter::RosterFilterType AND = VeskRosterFilter::RosterFilterAnd;
const VeskRosterFilter::RosterFilterType OR = VeskRosterFilter::RosterFilterOr;

// Every entry under root, hidden ones included, as sorted relative paths; a
// symbolic link is marked with "@".
QStringList entriesUnder(const QString &root)
{
    QStringList entries;
    QDirIterator it(root, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
        QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        entries.append(QDir(root).relativeFilePath(it.filePath())
            + QLatin1String(it.fileInfo().isSymLink() ? "@" : ""));
    }
    entries.sort();
    return entries;
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(bytes), bytes.size());
}

// Saves a stack with one presence leaf under the given name.
void saveOneLeaf(const QString &name, const QString &presenceId = QStringLiteral("online"))
{
    VeskRosterFiltersStack stack(name, AND);
    stack.appendFilter(presence(presenceId));
    stack.writeFilterSettings();
}

QByteArray oneLeafFile()
{
    VeskRosterFiltersStack stack(QString(), AND);
    stack.appendFilter(presence(QStringLiteral("online")));
    stack.writeFilterSettings();
    return stack.getNode()->toByteArray();
}

} // namespace

class tst_VeskStackFile : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        env.reset(new VeskFilterTestEnv);
        addPresences();
    }
    void cleanup() { env.reset(); }

    void treeSurvivesARestart();
    void writingTwiceReplacesAndReadingTwiceDoesNotDuplicate();
    void emptyStackKeepsItsConstructedTypeAfterARestart();
    void advancedModeIsOnOnlyForT_data();
    void advancedModeIsOnOnlyForT();
    void onlyTheLibrarysOwnSpellingOfANameFeedsAFilter_data();
    void onlyTheLibrarysOwnSpellingOfANameFeedsAFilter();
    void aHashedFileHoldingAnotherNameIsNoFilter();
    void deepestReadableTreeSurvivesAndADeeperOneKeepsTheOldFile();
    void savesLeaveNoTemporaryFileAndAnInterruptedOneIsNoFilterAndGoesWhenOld();

private:
    QScopedPointer<VeskFilterTestEnv> env;
};

void tst_VeskStackFile::treeSurvivesARestart()
{
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    VeskRosterFiltersStack *tree = manager->addStackFilter(QStringLiteral("tree"), AND);
    VeskRosterFiltersStack *inner
        = nested(OR, { presence(QStringLiteral("online")), presence(QStringLiteral("dnd")) });
    tree->appendFilter(presence(QStringLiteral("away"), false));
    tree->appendFilter(inner);
    tree->setSorter(QStringLiteral("by name"));
    tree->setAdvancedMode(true);
    const QString stored = describe(tree);
    // Only the top-level stack keeps a sorter and the advanced mode.
    inner->setSorter(QStringLiteral("inner sorter"));
    inner->setAdvancedMode(true);
    tree->writeFilterSettings();
    // The host's own files have this shape: attributes on the root, only a
    // type on a nested stack, leaves as elements named by kind.
    QDomDocument document;
    QVERIFY(document.setContent(readFile(env->filePath(QStringLiteral("tree")))));
    const QDomElement root = document.documentElement();
    const QDomElement nestedStack = root.firstChildElement(QStringLiteral("stack_filter"));
    QCOMPARE(QStringList({ root.tagName(), root.attribute(QStringLiteral("type")),
                 root.attribute(QStringLiteral("sort")), root.attribute(QStringLiteral("advanced")),
                 root.firstChildElement().tagName(), nestedStack.attribute(QStringLiteral("type")),
                 QString::number(nestedStack.attributes().count()) }),
        QStringList({ QStringLiteral("stack_filter"), QStringLiteral("AND"),
            QStringLiteral("by name"), QStringLiteral("t"), QStringLiteral("presence"),
            QStringLiteral("OR"), QStringLiteral("1") }));

    QCOMPARE(describe(env->restart()->getStackFilter(QStringLiteral("tree"))), stored);
}

void tst_VeskStackFile::writingTwiceReplacesAndReadingTwiceDoesNotDuplicate()
{
    VeskRosterFiltersStack stack(QStringLiteral("s"), OR);
    stack.appendFilter(presence(QStringLiteral("online")));
    stack.appendFilter(nested(AND, { presence(QStringLiteral("away")) }));
    stack.writeFilterSettings();
    QScopedPointer<VeskRosterFilter> first(stack.getFilters().first());
    stack.removeFilter(first.data());
    stack.writeFilterSettings();

    VeskRosterFiltersStack reread(QStringLiteral("s"), VeskRosterFilter::RosterFilterDefault);
    reread.readFilterSettings();
    QCOMPARE(describe(&reread), describe(&stack));
}

void tst_VeskStackFile::emptyStackKeepsItsConstructedTypeAfterARestart()
{
    VeskRosterFiltersStack *empty
        = VeskRosterFiltersManager::getInstance()->addStackFilter(QStringLiteral("empty"), OR);
    empty->setSorter(QStringLiteral("by presence"));
    empty->writeFilterSettings();
    QCOMPARE(describe(env->restart()->getStackFilter(QStringLiteral("empty"))),
        QStringLiteral("DEFAULT sort=\"by presence\" advanced=f ()"));
}

void tst_VeskStackFile::advancedModeIsOnOnlyForT_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("advanced");
    QTest::newRow("t") << QByteArray("t") << true;
    QTest::newRow("f") << QByteArray("f") << false;
    QTest::newRow("true") << QByteArray("true") << false;
    QTest::newRow("T") << QByteArray("T") << false;
    QTest::newRow("empty") << QByteArray() << false;
}

void tst_VeskStackFile::advancedModeIsOnOnlyForT()
{
    QFETCH(QByteArray, value);
    writeFile(env->filePath(QStringLiteral("s")),
        "<stack_filter type=\"AND\" sort=\"x\" advanced=\"" + value + "\"/>");
    QTEST(VeskRosterFiltersStack(QStringLiteral("s"), AND).isAdvancedMode(), "advanced");
}

void tst_VeskStackFile::onlyTheLibrarysOwnSpellingOfANameFeedsAFilter_data()
{
    QTest::addColumn<QStringList>("files"); // written in this order, holding online, away, dnd
    QTest::addColumn<QString>("expected"); // the stacks listed and what feeds each
    QTest::newRow("a plain name beside an escaped spelling of it") << QStringList(
        { QStringLiteral("%41"), QStringLiteral("A") }) << QStringLiteral("A: (presence is Away)");
    QTest::newRow("escaped spellings alone")
        << QStringList({ QStringLiteral("%41"), QStringLiteral("%u0041") }) << QString();
    QTest::newRow("the library's own escape")
        << QStringList(QStringLiteral("%2E")) << QStringLiteral(".: (presence is Online)");
    QTest::newRow("a '%' that starts no escape")
        << QStringList({ QStringLiteral("50%off"), QStringLiteral("x%u12"), QStringLiteral("%2e") })
        << QString();
}

void tst_VeskStackFile::onlyTheLibrarysOwnSpellingOfANameFeedsAFilter()
{
    QFETCH(QStringList, files);
    const QStringList presences { QStringLiteral("online"), QStringLiteral("away"),
        QStringLiteral("dnd") };
    for (int i = 0; i < files.size(); ++i) {
        VeskRosterFiltersStack stack(QString(), AND);
        stack.appendFilter(presence(presences.at(i)));
        stack.writeFilterSettings();
        writeFile(env->filePath(files.at(i)), stack.getNode()->toByteArray());
    }
    VeskRosterFiltersManager *manager = env->restart();
    QStringList listed;
    const QStringList names = manager->getFilterNames();
    for (const QString &name : names) {
        if (VeskRosterFilter *stack = manager->getStackFilter(name))
            listed << name + QLatin1String(": ") + stack->display();
    }
    QTEST(listed.join(QLatin1Char('\n')), "expected");
}

void tst_VeskStackFile::aHashedFileHoldingAnotherNameIsNoFilter()
{
    const QString longName(300, QLatin1Char('x'));
    saveOneLeaf(longName);
    const QStringList files = entriesUnder(env->filtersDir());
    saveOneLeaf(QString(300, QLatin1Char('y')));
    QStringList both = entriesUnder(env->filtersDir());
    for (const QString &file : files)
        both.removeAll(file);
    writeFile(env->filePath(both.value(0)), readFile(env->filePath(files.last())));

    QStringList names = env->restart()->getFilterNames();
    names.sort();
    QCOMPARE(names, QStringList({ QStringLiteral("default"), longName }));
}

void tst_VeskStackFile::deepestReadableTreeSurvivesAndADeeperOneKeepsTheOldFile()
{
    // Root, 252 nested stacks and a leaf whose fields take three levels: 256
    // levels of elements, the most a file may hold.
    const auto chain = [](int depth) {
        VeskRosterFilter *chain = presence(QStringLiteral("online"));
        for (int i = 0; i < depth; ++i)
            chain = nested(i % 2 ? AND : OR, { chain });
        return chain;
    };
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    VeskRosterFiltersStack *deep = manager->addStackFilter(QStringLiteral("deep"), AND);
    deep->appendFilter(chain(252));
    deep->writeFilterSettings();
    const QString stored = describe(deep);
    const QByteArray file = readFile(env->filePath(QStringLiteral("deep")));
    deep->appendFilter(chain(253));
    deep->writeFilterSettings();
    QCOMPARE(readFile(env->filePath(QStringLiteral("deep"))), file);
    QCOMPARE(describe(env->restart()->getStackFilter(QStringLiteral("deep"))), stored);
}

void tst_VeskStackFile::savesLeaveNoTemporaryFileAndAnInterruptedOneIsNoFilterAndGoesWhenOld()
{
    saveOneLeaf(QStringLiteral("friends"));
    saveOneLeaf(QStringLiteral("friends"));
    // A directory in the way makes the final rename fail.
    QVERIFY(QDir().mkpath(env->filePath(QStringLiteral("blocked"))));
    saveOneLeaf(QStringLiteral("blocked"));
    QCOMPARE(entriesUnder(env->filtersDir()),
        QStringList({ QStringLiteral("blocked"), QStringLiteral("friends") }));

    // What a crash between writing and renaming leaves, beside a filter whose
    // name only looks like a temporary file.
    QDir(env->filtersDir()).rmdir(QStringLiteral("blocked"));
    writeFile(env->filePath(QStringLiteral(".vesk-save-Ab12Cd")), oneLeafFile());
    writeFile(env->filePath(QStringLiteral(".vesk-save-Old123")), oneLeafFile());
    QFile old(env->filePath(QStringLiteral(".vesk-save-Old123")));
    QVERIFY(old.open(QIODevice::ReadWrite));
    QVERIFY(old.setFileTime(
        QDateTime::currentDateTime().addSecs(-2 * 3600), QFileDevice::FileModificationTime));
    old.close();
    writeFile(env->filePath(QStringLiteral("friends.Ab12Cd")), oneLeafFile());
    QStringList names = env->restart()->getFilterNames();
    names.sort();
    QCOMPARE(names,
        QStringList({ QStringLiteral("default"), QStringLiteral("friends"),
            QStringLiteral("friends.Ab12Cd") }));
    // Only the old leftover goes: a young one may be another client
    // instance's save in progress.
    QCOMPARE(entriesUnder(env->filtersDir()),
        QStringList({ QStringLiteral(".vesk-save-Ab12Cd"), QStringLiteral("friends"),
            QStringLiteral("friends.Ab12Cd") }));
}

QTEST_GUILESS_MAIN(tst_VeskStackFile)
#include "tst_veskstackfile.moc"
