// Stack files: what is written comes back after a restart, and no name and no
// file content can make the library touch anything outside its directory,
// lose a filter or crash.

#include <veskfiltertestenv.h>
#include <veskfiltertree.h>

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
    void advancedModeIsOnOnlyForT();
    void namesStayInsideTheDirectoryAndComeBack_data();
    void namesStayInsideTheDirectoryAndComeBack();
    void emptyTopLevelNameTouchesNoFile();
    void filesNotSpelledByTheLibraryAreNotListed();
    void hostileFilesLoadAsEmptyStacksBesideGoodOnes_data();
    void hostileFilesLoadAsEmptyStacksBesideGoodOnes();
    void deepestReadableTreeSurvivesAndADeeperOneKeepsTheOldFile();
    void savesLeaveNoTemporaryFileAndAnInterruptedOneIsNoFilter();
    void plantedLinkIsReplacedOrRemovedButItsTargetIsNotTouched();

private:
    QScopedPointer<VeskFilterTestEnv> env;
};

void tst_VeskStackFile::treeSurvivesARestart()
{
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    VeskRosterFiltersStack *tree = manager->addStackFilter(QStringLiteral("tree"), AND);
    VeskRosterFiltersStack *inner
        = nested(OR, { presence(QStringLiteral("online")), presence(QStringLiteral("dnd")) });
    // Only the top-level stack keeps a sorter and the advanced mode.
    inner->setSorter(QStringLiteral("inner sorter"));
    inner->setAdvancedMode(true);
    tree->appendFilter(presence(QStringLiteral("away"), false));
    tree->appendFilter(inner);
    tree->setSorter(QStringLiteral("by name"));
    tree->setAdvancedMode(true);
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

    manager = env->restart();
    QCOMPARE(describe(manager->getStackFilter(QStringLiteral("tree"))),
        QStringLiteral("AND tree sort=by name advanced ["
                       "presence{is_or_not=[is,is not|is,is not] is not; presence_filter_presence="
                       "[online,away,dnd|Online,Away,Busy] away}'presence is not Away', "
                       "OR OR sort= [presence{is_or_not=[is,is not|is,is not] is; "
                       "presence_filter_presence=[online,away,dnd|Online,Away,Busy] online}"
                       "'presence is Online', presence{is_or_not=[is,is not|is,is not] is; "
                       "presence_filter_presence=[online,away,dnd|Online,Away,Busy] dnd}'presence "
                       "is Busy']]"));
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
        QStringLiteral("DEFAULT empty sort=by presence []"));
}

void tst_VeskStackFile::advancedModeIsOnOnlyForT()
{
    QString modes;
    for (const char *value : { "t", "f", "true", "T", "" }) {
        writeFile(env->filePath(QStringLiteral("s")),
            QByteArray("<stack_filter type=\"AND\" sort=\"x\" advanced=\"") + value + "\"/>");
        VeskRosterFiltersStack stack(QStringLiteral("s"), AND);
        modes += QLatin1Char(stack.isAdvancedMode() ? 't' : 'f');
    }
    QCOMPARE(modes, QStringLiteral("tffff"));
}

void tst_VeskStackFile::namesStayInsideTheDirectoryAndComeBack_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("plain"); // stored under its own name
    QTest::newRow("friends") << QStringLiteral("friends") << true;
    QTest::newRow("blanks and punctuation") << QStringLiteral("work & play (2), v1.0!") << true;
    QTest::newRow("looks like a temporary file") << QStringLiteral("friends.abc123") << true;
    QTest::newRow("non-ASCII") << QStringLiteral("Zoë 東京") << true;
    QTest::newRow("parent directory") << QStringLiteral("..") << false;
    QTest::newRow("current directory") << QStringLiteral(".") << false;
    QTest::newRow("climbs out") << QStringLiteral("../../x") << false;
    QTest::newRow("subdirectory") << QStringLiteral("a/b") << false;
    QTest::newRow("absolute path") << QStringLiteral("/etc/passwd") << false;
    QTest::newRow("leading dot hides") << QStringLiteral(".hidden") << false;
    QTest::newRow("backslash") << QStringLiteral("a\\b") << false;
    QTest::newRow("control characters") << QString::fromUtf16(u"a\u0000b\n\t\u007f", 6) << false;
    QTest::newRow("percent escapes") << QStringLiteral("%2E%2F%u0041%") << false;
    QTest::newRow("lone surrogate") << QString(QChar(0xD800)) + QStringLiteral("x") << false;
    QTest::newRow("200 two-byte letters") << QString(200, QChar(0xE9)) << false;
    QTest::newRow("long with slashes")
        << QString(100, QLatin1Char('/')) + QStringLiteral("..") << false;
    QTest::newRow("at the length limit") << QString(128, QLatin1Char('m')) << true;
    QTest::newRow("one past the length limit") << QString(129, QLatin1Char('m')) << false;
}

void tst_VeskStackFile::namesStayInsideTheDirectoryAndComeBack()
{
    QFETCH(QString, name);
    QFETCH(bool, plain);
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    const QString settingsFile
        = QDir(env->sandbox()).relativeFilePath(VeskStandIn::settingsFilePath());
    QStringList before = entriesUnder(env->sandbox());
    before.removeAll(settingsFile);
    VeskRosterFiltersStack *stack = manager->addStackFilter(name, AND);
    stack->appendFilter(presence(QStringLiteral("away")));
    stack->writeFilterSettings();
    const QString stored = describe(stack);

    // One visible file directly in the directory, and nothing new elsewhere.
    const QStringList files = entriesUnder(env->filtersDir());
    QCOMPARE(files.size(), 1);
    QVERIFY(!files.first().startsWith(QLatin1Char('.')));
    QCOMPARE(files.first() == name, plain);
    QStringList after = entriesUnder(env->sandbox());
    after.removeAll(settingsFile);
    after.removeAll(QLatin1String("settings/roster_filters"));
    after.removeAll(QLatin1String("settings/roster_filters/") + files.first());
    QCOMPARE(after, before);

    manager = env->restart();
    QCOMPARE(manager->getFilterNames(), QStringList({ QStringLiteral("default"), name }));
    QScopedPointer<VeskRosterFiltersStack> reloaded(manager->getStackFilter(name));
    QCOMPARE(describe(reloaded.data()), stored);
    manager->removeStackFilter(name);
    QCOMPARE(entriesUnder(env->filtersDir()), QStringList());
}

void tst_VeskStackFile::emptyTopLevelNameTouchesNoFile()
{
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    saveOneLeaf(QStringLiteral("bystander"));
    const QStringList before = entriesUnder(env->path());
    QScopedPointer<VeskRosterFiltersStack> unnamed(manager->addStackFilter(QString(), AND));
    unnamed->appendFilter(presence(QStringLiteral("away")));
    unnamed->writeFilterSettings();
    unnamed->readFilterSettings();
    manager->removeStackFilter(QString());
    QCOMPARE(entriesUnder(env->path()), before);
}

void tst_VeskStackFile::filesNotSpelledByTheLibraryAreNotListed()
{
    // "%41" would decode to "A", which the library spells "A"; "50%off" and
    // "x%u12" are no spelling of the library at all. A long name's hashed
    // file holding another long name is no filter either.
    for (const char *name : { "A", "%41", "50%off", "x%u12", "%2e" })
        writeFile(env->filePath(QString::fromLatin1(name)), oneLeafFile());
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
    QCOMPARE(names, QStringList({ QStringLiteral("A"), QStringLiteral("default"), longName }));
}

void tst_VeskStackFile::hostileFilesLoadAsEmptyStacksBesideGoodOnes_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("children");
    const QByteArray leaf = oneLeafFile();
    const int leafStart = leaf.indexOf("<presence");
    const QByteArray presenceElement = leaf.mid(
        leafStart, leaf.indexOf("</presence>") + int(qstrlen("</presence>")) - leafStart);
    const QByteArray open = "<stack_filter type=\"AND\" sort=\"\" advanced=\"f\">";
    const QByteArray close = "</stack_filter>";
    QByteArray junk(4096, '\0');
    for (int i = 0; i < junk.size(); ++i)
        junk[i] = char((i * 131 + 7) % 256);

    QTest::newRow("a good file, for comparison") << leaf << 1;
    QTest::newRow("empty file") << QByteArray() << 0;
    QTest::newRow("truncated XML") << leaf.left(leaf.size() / 2) << 0;
    QTest::newRow("wrong root") << QByteArray(leaf).replace("stack_filter", "filter_stack") << 0;
    QTest::newRow("binary junk") << junk << 0;
    QTest::newRow("100,000 nested stacks")
        << open.repeated(100000) + presenceElement + close.repeated(100000) << 0;
    QTest::newRow("larger than 1 MiB")
        << open + presenceElement + "<!--" + QByteArray(1024 * 1024, 'x') + "-->" + close << 0;
    QTest::newRow("external entity")
        << QByteArray("<!DOCTYPE s [<!ENTITY e SYSTEM \"file:///etc/passwd\">]>") + open
            + "<presence>&e;</presence>" + close
        << 0;
    QTest::newRow("unknown tags are skipped")
        << open + "<bogus><x/></bogus>" + presenceElement + "<Presence><x/></Presence>" + close
        << 1;
    QTest::newRow("leaf without its fields node")
        << open + "<presence/>" + presenceElement + close << 1;
    QTest::newRow("UTF-16 with a byte-order mark") << QByteArray("\xff\xfe", 2)
            + QByteArray(reinterpret_cast<const char *>(QString::fromUtf8(leaf).utf16()),
                leaf.size() * 2) << 1;
}

void tst_VeskStackFile::hostileFilesLoadAsEmptyStacksBesideGoodOnes()
{
    QFETCH(QByteArray, content);
    QFETCH(int, children);
    writeFile(env->filePath(QStringLiteral("hostile")), content);
    writeFile(env->filePath(QStringLiteral("good")), oneLeafFile());
    VeskRosterFiltersManager *manager = env->restart();
    QCOMPARE(manager->getFilterNames().size(), 3);
    QCOMPARE(manager->getStackFilter(QStringLiteral("good"))->getFilters().size(), 1);
    QCOMPARE(manager->getStackFilter(QStringLiteral("hostile"))->getFilters().size(), children);
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

void tst_VeskStackFile::savesLeaveNoTemporaryFileAndAnInterruptedOneIsNoFilter()
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
    writeFile(env->filePath(QStringLiteral("friends.Ab12Cd")), oneLeafFile());
    QStringList names = env->restart()->getFilterNames();
    names.sort();
    QCOMPARE(names,
        QStringList({ QStringLiteral("default"), QStringLiteral("friends"),
            QStringLiteral("friends.Ab12Cd") }));
}

void tst_VeskStackFile::plantedLinkIsReplacedOrRemovedButItsTargetIsNotTouched()
{
    const QString outside = env->path() + QLatin1String("/outside");
    const QByteArray precious = oneLeafFile();
    writeFile(outside, precious);
    QDir().mkpath(env->filtersDir());
    QVERIFY(QFile::link(outside, env->filePath(QStringLiteral("friends"))));
    QVERIFY(QFile::link(outside, env->filePath(QStringLiteral("foes"))));
    saveOneLeaf(QStringLiteral("friends"), QStringLiteral("away"));

    VeskRosterFiltersManager *manager = env->restart();
    QScopedPointer<VeskRosterFiltersStack> foes(manager->getStackFilter(QStringLiteral("foes")));
    QVERIFY(foes);
    manager->removeStackFilter(QStringLiteral("foes"));
    QCOMPARE(entriesUnder(env->filtersDir()), QStringList { QStringLiteral("friends") });
    QCOMPARE(readFile(outside), precious);
    QVERIFY(manager->getStackFilter(QStringLiteral("friends"))
                ->display()
                .contains(QLatin1String("Away")));
}

QTEST_GUILESS_MAIN(tst_VeskStackFile)
#include "tst_veskstackfile.moc"
