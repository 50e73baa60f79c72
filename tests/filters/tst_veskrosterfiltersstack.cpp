// Evaluation, display text and ownership of stack filters, and the default
// filter.

#include <veskfiltertestenv.h>

#include <standin/veskstandin.h>
#include <veskdefaultfilter.h>
#include <veskpresencefilter.h>
#include <veskrosterfiltersstack.h>

#include <QtTest>

namespace {

// A leaf whose answer and text the test chooses, and which records how often
// it was asked and whether it was destroyed.
class ProbeFilter : public VeskRosterFilter
{
public:
    explicit ProbeFilter(
        bool answer = true, const QString &text = QString(), int *destroyed = nullptr)
        : answer(answer)
        , text(text)
        , destroyed(destroyed)
    { }
    ~ProbeFilter() override
    {
        if (destroyed)
            ++*destroyed;
    }

    RosterFilterType getType() const override { return RosterFilterLeaf; }
    QString id() const override { return QStringLiteral("probe"); }
    QString name() const override { return QStringLiteral("probe"); }
    QString display() const override { return text; }
    bool filter(const VeskBuddy &) const override
    {
        ++asked;
        return answer;
    }

    bool answer;
    QString text;
    int *destroyed;
    mutable int asked = 0;
};

using Type = VeskRosterFilter::RosterFilterType;

QString askedCounts(const QList<ProbeFilter *> &probes)
{
    QStringList counts;
    for (const ProbeFilter *probe : probes)
        counts.append(QString::number(probe->asked));
    return counts.join(QLatin1Char(','));
}

} // namespace

Q_DECLARE_METATYPE(VeskRosterFilter::RosterFilterType)

class tst_VeskRosterFiltersStack : public QObject
{
    Q_OBJECT

private slots:
    void init() { env.reset(new VeskFilterTestEnv); }
    void cleanup() { env.reset(); }

    void evaluationAsksChildrenOnlyUntilTheAnswerIsKnown_data();
    void evaluationAsksChildrenOnlyUntilTheAnswerIsKnown();
    void displayJoinsChildTextsInParentheses_data();
    void displayJoinsChildTextsInParentheses();
    void displayNestsTheTextsOfNestedStacks();
    void childWithAnEmptyTextShowsEmptyParentheses();

    void destroyingAStackDestroysItsWholeSubtreeOnce();
    void removeFilterHandsAChildBackAlive();
    void removeFilterLeavesANonChildAlone();
    void getFiltersIsACopy();
    void appendFilterRefusesWhatWouldBreakOwnership_data();
    void appendFilterRefusesWhatWouldBreakOwnership();

    void defaultFilterPassesEveryKindOfEntry_data();
    void defaultFilterPassesEveryKindOfEntry();
    void defaultFilterIgnoresChildrenAndTypeFromItsFile();
    void defaultFilterIsNamedDefaultAndShowsNothing();

private:
    QScopedPointer<VeskFilterTestEnv> env;
};

void tst_VeskRosterFiltersStack::evaluationAsksChildrenOnlyUntilTheAnswerIsKnown_data()
{
    QTest::addColumn<Type>("type");
    QTest::addColumn<QList<bool>>("answers");
    QTest::addColumn<bool>("expected");
    QTest::addColumn<QString>("askedCounts");

    const Type AND = VeskRosterFilter::RosterFilterAnd;
    const Type OR = VeskRosterFilter::RosterFilterOr;
    QTest::newRow("AND without children passes") << AND << QList<bool> {} << true << QString();
    QTest::newRow("AND of trues asks all")
        << AND << QList<bool> { true, true, true } << true << QStringLiteral("1,1,1");
    QTest::newRow("AND stops at the first false")
        << AND << QList<bool> { true, false, true } << false << QStringLiteral("1,1,0");
    QTest::newRow("AND stops at a leading false")
        << AND << QList<bool> { false, false } << false << QStringLiteral("1,0");
    QTest::newRow("OR without children passes") << OR << QList<bool> {} << true << QString();
    QTest::newRow("OR stops at the first true")
        << OR << QList<bool> { false, true, true } << true << QStringLiteral("1,1,0");
    QTest::newRow("OR of falses asks all and fails")
        << OR << QList<bool> { false, false } << false << QStringLiteral("1,1");
    QTest::newRow("default type rejects without asking")
        << VeskRosterFilter::RosterFilterDefault << QList<bool> { true, true } << false
        << QStringLiteral("0,0");
    QTest::newRow("leaf type rejects without asking")
        << VeskRosterFilter::RosterFilterLeaf << QList<bool> { true } << false
        << QStringLiteral("0");
}

void tst_VeskRosterFiltersStack::evaluationAsksChildrenOnlyUntilTheAnswerIsKnown()
{
    QFETCH(Type, type);
    QFETCH(QList<bool>, answers);
    QFETCH(bool, expected);
    QFETCH(QString, askedCounts);

    VeskRosterFiltersStack stack(QStringLiteral("s"), type);
    QList<ProbeFilter *> probes;
    for (bool answer : answers) {
        probes.append(new ProbeFilter(answer));
        stack.appendFilter(probes.last());
    }
    const VeskBuddy entry = VeskStandIn::addEntry(VeskBuddy::TypeContact, QStringLiteral("x"));
    QCOMPARE(stack.filter(entry), expected);
    QCOMPARE(::askedCounts(probes), askedCounts);
}

void tst_VeskRosterFiltersStack::displayJoinsChildTextsInParentheses_data()
{
    QTest::addColumn<Type>("type");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QString>("expected");

    const Type AND = VeskRosterFilter::RosterFilterAnd;
    const Type OR = VeskRosterFilter::RosterFilterOr;
    QTest::newRow("empty AND") << AND << QStringList {} << QStringLiteral("AND");
    QTest::newRow("empty OR") << OR << QStringList {} << QStringLiteral("OR");
    QTest::newRow("one child keeps its parentheses")
        << AND << QStringList { QStringLiteral("a") } << QStringLiteral("(a)");
    QTest::newRow("AND of three") << AND
                                  << QStringList { QStringLiteral("a"), QStringLiteral("b c"),
                                         QStringLiteral("d") }
                                  << QStringLiteral("(a) AND (b c) AND (d)");
    QTest::newRow("OR of two") << OR << QStringList { QStringLiteral("a"), QStringLiteral("b") }
                               << QStringLiteral("(a) OR (b)");
    QTest::newRow("empty texts after the first")
        << OR << QStringList { QStringLiteral("a"), {}, {} } << QStringLiteral("(a) OR () OR ()");
    QTest::newRow("default type shows nothing") << VeskRosterFilter::RosterFilterDefault
                                                << QStringList { QStringLiteral("a") } << QString();
    QTest::newRow("default type without children shows nothing")
        << VeskRosterFilter::RosterFilterDefault << QStringList {} << QString();
}

void tst_VeskRosterFiltersStack::displayJoinsChildTextsInParentheses()
{
    QFETCH(Type, type);
    QFETCH(QStringList, texts);
    QFETCH(QString, expected);

    VeskRosterFiltersStack stack(QStringLiteral("s"), type);
    for (const QString &text : texts)
        stack.appendFilter(new ProbeFilter(true, text));
    QCOMPARE(stack.display(), expected);
}

void tst_VeskRosterFiltersStack::displayNestsTheTextsOfNestedStacks()
{
    VeskRosterFiltersStack root(QStringLiteral("root"), VeskRosterFilter::RosterFilterAnd);
    auto *nested = new VeskRosterFiltersStack(QString(), VeskRosterFilter::RosterFilterOr);
    nested->appendFilter(new ProbeFilter(true, QStringLiteral("a")));
    nested->appendFilter(new ProbeFilter(true, QStringLiteral("b")));
    root.appendFilter(nested);
    root.appendFilter(new ProbeFilter(true, QStringLiteral("c")));
    auto *emptyNested = new VeskRosterFiltersStack(QString(), VeskRosterFilter::RosterFilterOr);
    root.appendFilter(emptyNested);

    QCOMPARE(root.display(), QStringLiteral("((a) OR (b)) AND (c) AND (OR)"));
}

void tst_VeskRosterFiltersStack::childWithAnEmptyTextShowsEmptyParentheses()
{
    VeskRosterFiltersStack stack(QStringLiteral("s"), VeskRosterFilter::RosterFilterAnd);
    stack.appendFilter(new VeskDefaultFilter);
    stack.appendFilter(new ProbeFilter(true, QStringLiteral("x")));
    QCOMPARE(stack.display(), QStringLiteral("() AND (x)"));
}

void tst_VeskRosterFiltersStack::destroyingAStackDestroysItsWholeSubtreeOnce()
{
    int destroyed = 0;
    auto *root
        = new VeskRosterFiltersStack(QStringLiteral("root"), VeskRosterFilter::RosterFilterAnd);
    auto *nested = new VeskRosterFiltersStack(QString(), VeskRosterFilter::RosterFilterOr);
    auto *deeper = new VeskRosterFiltersStack(QString(), VeskRosterFilter::RosterFilterAnd);
    deeper->appendFilter(new ProbeFilter(true, QString(), &destroyed));
    nested->appendFilter(new ProbeFilter(true, QString(), &destroyed));
    nested->appendFilter(deeper);
    root->appendFilter(new ProbeFilter(true, QString(), &destroyed));
    root->appendFilter(nested);
    delete root;
    QCOMPARE(destroyed, 3);
}

void tst_VeskRosterFiltersStack::removeFilterHandsAChildBackAlive()
{
    int destroyed = 0;
    VeskRosterFiltersStack stack(QStringLiteral("s"), VeskRosterFilter::RosterFilterAnd);
    auto *first = new ProbeFilter(true, QStringLiteral("1"), &destroyed);
    auto *second = new ProbeFilter(true, QStringLiteral("2"), &destroyed);
    stack.appendFilter(first);
    stack.appendFilter(second);

    stack.removeFilter(first);
    QCOMPARE(stack.getFilters(), QList<VeskRosterFilter *> { second });
    QCOMPARE(first->getParent(), nullptr);
    QCOMPARE(destroyed, 0);
    QCOMPARE(first->display(), QStringLiteral("1"));
    delete first;
}

void tst_VeskRosterFiltersStack::removeFilterLeavesANonChildAlone()
{
    VeskRosterFiltersStack stack(QStringLiteral("s"), VeskRosterFilter::RosterFilterAnd);
    VeskRosterFiltersStack other(QStringLiteral("o"), VeskRosterFilter::RosterFilterAnd);
    auto *mine = new ProbeFilter;
    auto *theirs = new ProbeFilter;
    stack.appendFilter(mine);
    other.appendFilter(theirs);

    stack.removeFilter(theirs);
    stack.removeFilter(nullptr);
    QCOMPARE(stack.getFilters(), QList<VeskRosterFilter *> { mine });
    QCOMPARE(other.getFilters(), QList<VeskRosterFilter *> { theirs });
    QCOMPARE(theirs->getParent(), &other);
}

void tst_VeskRosterFiltersStack::getFiltersIsACopy()
{
    VeskRosterFiltersStack stack(QStringLiteral("s"), VeskRosterFilter::RosterFilterAnd);
    auto *child = new ProbeFilter;
    stack.appendFilter(child);
    QList<VeskRosterFilter *> copy = stack.getFilters();
    copy.clear();
    ProbeFilter stranger;
    copy.append(&stranger);
    QCOMPARE(stack.getFilters(), QList<VeskRosterFilter *> { child });
}

void tst_VeskRosterFiltersStack::appendFilterRefusesWhatWouldBreakOwnership_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("candidate");
    const QString stack = QStringLiteral("stack");
    QTest::newRow("a null filter") << stack << QStringLiteral("null");
    QTest::newRow("a filter already in the stack") << stack << QStringLiteral("child");
    QTest::newRow("a filter held by another stack") << stack << QStringLiteral("other's child");
    QTest::newRow("a nested stack itself") << stack << stack;
    QTest::newRow("a top-level stack itself") << QStringLiteral("root") << QStringLiteral("root");
    QTest::newRow("the stack's parent") << stack << QStringLiteral("parent");
    QTest::newRow("the stack's root ancestor") << stack << QStringLiteral("root");
}

void tst_VeskRosterFiltersStack::appendFilterRefusesWhatWouldBreakOwnership()
{
    QFETCH(QString, target);
    QFETCH(QString, candidate);

    // root > parent > stack > child; other > othersChild (a stack)
    auto *root
        = new VeskRosterFiltersStack(QStringLiteral("root"), VeskRosterFilter::RosterFilterAnd);
    auto *parent = new VeskRosterFiltersStack(QString(), VeskRosterFilter::RosterFilterAnd);
    auto *stack = new VeskRosterFiltersStack(QString(), VeskRosterFilter::RosterFilterAnd);
    auto *child = new ProbeFilter;
    VeskRosterFiltersStack other(QStringLiteral("other"), VeskRosterFilter::RosterFilterAnd);
    auto *othersChild = new VeskRosterFiltersStack(QString(), VeskRosterFilter::RosterFilterOr);
    root->appendFilter(parent);
    parent->appendFilter(stack);
    stack->appendFilter(child);
    other.appendFilter(othersChild);

    const QHash<QString, VeskRosterFiltersStack *> stacks {
        { QStringLiteral("stack"), stack },
        { QStringLiteral("parent"), parent },
        { QStringLiteral("root"), root },
        { QStringLiteral("other's child"), othersChild },
    };
    VeskRosterFilter *filter = candidate == QLatin1String("child")
        ? child
        : static_cast<VeskRosterFilter *>(stacks.value(candidate));
    stacks.value(target)->appendFilter(filter);

    QCOMPARE(stack->getFilters(), QList<VeskRosterFilter *> { child });
    QCOMPARE(parent->getFilters(), QList<VeskRosterFilter *> { stack });
    QCOMPARE(root->getFilters(), QList<VeskRosterFilter *> { parent });
    QCOMPARE(other.getFilters(), QList<VeskRosterFilter *> { othersChild });
    QCOMPARE(othersChild->getFilters(), QList<VeskRosterFilter *> {});
    const QList<VeskRosterFilter *> parents { root->getParent(), parent->getParent(),
        stack->getParent(), child->getParent(), othersChild->getParent() };
    QCOMPARE(parents, (QList<VeskRosterFilter *> { nullptr, root, parent, stack, &other }));
    delete root;
}

void tst_VeskRosterFiltersStack::defaultFilterPassesEveryKindOfEntry_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("contact") << int(VeskBuddy::TypeContact);
    QTest::newRow("group") << int(VeskBuddy::TypeGroup);
    QTest::newRow("temporary contact") << int(VeskBuddy::TypeTemporary);
    QTest::newRow("kind 0") << 0;
    QTest::newRow("kind 7") << 7;
    QTest::newRow("invalid handle") << -1;
}

void tst_VeskRosterFiltersStack::defaultFilterPassesEveryKindOfEntry()
{
    QFETCH(int, kind);
    const VeskBuddy entry
        = kind < 0 ? VeskBuddy() : VeskStandIn::addEntry(kind, QStringLiteral("x"));
    VeskDefaultFilter filter;
    filter.appendFilter(new ProbeFilter(false));
    QVERIFY(filter.filter(entry));
}

void tst_VeskRosterFiltersStack::defaultFilterIgnoresChildrenAndTypeFromItsFile()
{
    // A file called "default" with an AND stack whose only child rejects
    // every entry.
    {
        VeskRosterFiltersStack stored(QStringLiteral("default"), VeskRosterFilter::RosterFilterAnd);
        stored.appendFilter(new VeskPresenceFilter);
        stored.writeFilterSettings();
    }
    VeskDefaultFilter filter;
    QCOMPARE(filter.getFilters().size(), 1);
    QCOMPARE(filter.getType(), VeskRosterFilter::RosterFilterAnd);
    const QList<VeskBuddy> entries {
        VeskStandIn::addGroup(QStringLiteral("g"), 0),
        VeskStandIn::addContact({}),
        VeskStandIn::addTemporary({}),
    };
    for (const VeskBuddy &entry : entries)
        QVERIFY(filter.filter(entry));
    QCOMPARE(filter.display(), QString());
}

void tst_VeskRosterFiltersStack::defaultFilterIsNamedDefaultAndShowsNothing()
{
    VeskDefaultFilter filter;
    filter.appendFilter(new ProbeFilter(true, QStringLiteral("x")));
    QCOMPARE(QStringList({ filter.id(), filter.name(), filter.display() }),
        QStringList({ QStringLiteral("default"), QStringLiteral("default"), QString() }));
    QCOMPARE(filter.getType(), VeskRosterFilter::RosterFilterDefault);
}

QTEST_GUILESS_MAIN(tst_VeskRosterFiltersStack)
#include "tst_veskrosterfiltersstack.moc"
