// Evaluation, display text and ownership of stack filters, and the default
// filter.

#include <veskfiltertestenv.h>

#include <veskdefaultfilter.h>
#include <veskpresencefilter.h>

#include <QtTest>

#include <memory>

namespace {

using Type = VeskRosterFilter::RosterFilterType;
const Type AND = VeskRosterFilter::RosterFilterAnd;
const Type OR = VeskRosterFilter::RosterFilterOr;

// A leaf whose answer and text the test chooses, and which records how often
// it was asked and how many probes were destroyed.
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
    QString name() const override { return id(); }
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

// A filter of the host's that, asked for the first time, takes the stack's
// last child out and appends another.
class EditingFilter : public ProbeFilter
{
public:
    EditingFilter(VeskRosterFiltersStack *stack, VeskRosterFilter *replacement)
        : ProbeFilter(false)
        , stack(stack)
        , replacement(replacement)
    { }
    bool filter(const VeskBuddy &buddy) const override
    {
        if (replacement) {
            removed.reset(stack->getFilters().last());
            stack->removeFilter(removed.get());
            stack->appendFilter(std::exchange(replacement, nullptr));
        }
        return ProbeFilter::filter(buddy);
    }

    VeskRosterFiltersStack *stack;
    mutable VeskRosterFilter *replacement;
    mutable std::unique_ptr<VeskRosterFilter> removed;
};

VeskRosterFiltersStack *stackOf(Type type, const QList<VeskRosterFilter *> &children)
{
    auto *stack = new VeskRosterFiltersStack(QString(), type);
    for (VeskRosterFilter *child : children)
        stack->appendFilter(child);
    return stack;
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
    void aChangeDuringAWalkTakesEffectAtTheNextWalk();
    void displayJoinsChildTextsInParentheses();
    void removingAndDestroyingKeepOwnershipExact();
    void appendFilterRefusesWhatWouldBreakOwnership();
    void defaultFilterPassesEveryEntryWhateverItsFileHolds();

private:
    QScopedPointer<VeskFilterTestEnv> env;
};

void tst_VeskRosterFiltersStack::evaluationAsksChildrenOnlyUntilTheAnswerIsKnown_data()
{
    QTest::addColumn<Type>("type");
    QTest::addColumn<QList<bool>>("answers");
    QTest::addColumn<QString>("expected"); // answer, then how often each child was asked
    QTest::newRow("empty AND passes") << AND << QList<bool> {} << "1:";
    QTest::newRow("AND stops at the first false")
        << AND << QList<bool> { true, false, true } << "0:110";
    QTest::newRow("AND of trues asks all") << AND << QList<bool> { true, true } << "1:11";
    QTest::newRow("empty OR passes") << OR << QList<bool> {} << "1:";
    QTest::newRow("OR stops at the first true")
        << OR << QList<bool> { false, true, true } << "1:110";
    QTest::newRow("OR of falses asks all") << OR << QList<bool> { false, false } << "0:11";
    QTest::newRow("default type rejects without asking")
        << VeskRosterFilter::RosterFilterDefault << QList<bool> { true } << "0:0";
}

void tst_VeskRosterFiltersStack::evaluationAsksChildrenOnlyUntilTheAnswerIsKnown()
{
    QFETCH(Type, type);
    QFETCH(QList<bool>, answers);
    QList<ProbeFilter *> probes;
    for (bool answer : answers)
        probes.append(new ProbeFilter(answer));
    QScopedPointer<VeskRosterFiltersStack> stack(
        stackOf(type, QList<VeskRosterFilter *>(probes.begin(), probes.end())));
    QString result = QLatin1String(stack->filter(VeskStandIn::addContact({})) ? "1:" : "0:");
    for (const ProbeFilter *probe : qAsConst(probes))
        result += QString::number(probe->asked);
    QTEST(result, "expected");
}

void tst_VeskRosterFiltersStack::aChangeDuringAWalkTakesEffectAtTheNextWalk()
{
    // OR[editor, passing] becomes OR[editor, refusing] while the first walk
    // asks the editor: that walk still asks `passing`, the next `refusing`.
    VeskRosterFiltersStack stack(QString(), OR);
    auto *refusing = new ProbeFilter(false);
    auto *passing = new ProbeFilter(true);
    auto *editor = new EditingFilter(&stack, refusing);
    stack.appendFilter(editor);
    stack.appendFilter(passing);
    const VeskBuddy entry = VeskStandIn::addContact({});
    QString walks;
    for (int walk = 0; walk < 2; ++walk) {
        const bool passes = stack.filter(entry);
        walks += QLatin1String(passes ? "1:" : "0:") + QString::number(passing->asked)
            + QString::number(refusing->asked) + u' ';
    }
    QCOMPARE(walks, QStringLiteral("1:10 0:11 "));
    QCOMPARE(stack.getFilters(), (QList<VeskRosterFilter *> { editor, refusing }));
}

void tst_VeskRosterFiltersStack::displayJoinsChildTextsInParentheses()
{
    const auto probe = [](const char *text) {
        return new ProbeFilter(true, QLatin1String(text));
    };
    QScopedPointer<VeskRosterFiltersStack> root(stackOf(AND,
        { stackOf(OR, { probe("a"), probe("b c") }), probe("d"), stackOf(OR, {}),
            new VeskDefaultFilter }));
    QScopedPointer<VeskRosterFiltersStack> rejecting(
        stackOf(VeskRosterFilter::RosterFilterDefault, { probe("a") }));
    QCOMPARE(QStringList({ root->display(), rejecting->display() }),
        QStringList({ QStringLiteral("((a) OR (b c)) AND (d) AND (OR) AND ()"), QString() }));
}

void tst_VeskRosterFiltersStack::removingAndDestroyingKeepOwnershipExact()
{
    int destroyed = 0;
    auto *kept = new ProbeFilter(true, QString(), &destroyed);
    auto *removed = new ProbeFilter(true, QString(), &destroyed);
    VeskRosterFiltersStack other(QString(), AND);
    auto *stranger = new ProbeFilter;
    other.appendFilter(stranger);
    auto *root = stackOf(AND,
        { kept, removed,
            stackOf(OR,
                { new ProbeFilter(true, QString(), &destroyed),
                    stackOf(AND, { new ProbeFilter(true, QString(), &destroyed) }) }) });

    QList<VeskRosterFilter *> copy = root->getFilters();
    copy.clear();
    root->removeFilter(removed);
    root->removeFilter(stranger);
    root->removeFilter(nullptr);
    QCOMPARE(root->getFilters().size(), 2);
    QCOMPARE(root->getFilters().first(), kept);
    QCOMPARE(removed->getParent(), nullptr);
    QCOMPARE(stranger->getParent(), &other);
    QCOMPARE(other.getFilters(), QList<VeskRosterFilter *> { stranger });
    delete root;
    QCOMPARE(destroyed, 3);
    delete removed;
}

void tst_VeskRosterFiltersStack::appendFilterRefusesWhatWouldBreakOwnership()
{
    // root > parent > stack > child; other > othersChild
    auto *child = new ProbeFilter;
    auto *stack = stackOf(AND, { child });
    auto *parent = stackOf(AND, { stack });
    QScopedPointer<VeskRosterFiltersStack> root(stackOf(AND, { parent }));
    auto *othersChild = stackOf(OR, {});
    VeskRosterFiltersStack other(QString(), AND);
    other.appendFilter(othersChild);

    for (VeskRosterFilter *refused :
        QList<VeskRosterFilter *> { nullptr, child, othersChild, stack, parent, root.data() })
        stack->appendFilter(refused);
    root->appendFilter(root.data());
    const QList<VeskRosterFilter *> shape { stack->getFilters().value(1), child->getParent(),
        stack->getParent(), parent->getParent(), root->getParent(), othersChild->getParent() };
    QCOMPARE(shape,
        (QList<VeskRosterFilter *> { nullptr, stack, parent, root.data(), nullptr, &other }));
    QCOMPARE(
        root->getFilters().size() + parent->getFilters().size() + other.getFilters().size(), 3);
}

void tst_VeskRosterFiltersStack::defaultFilterPassesEveryEntryWhateverItsFileHolds()
{
    // A file called "default" holding an AND stack whose only child rejects
    // every entry.
    {
        VeskRosterFiltersStack stored(QStringLiteral("default"), AND);
        stored.appendFilter(new VeskPresenceFilter);
        stored.writeFilterSettings();
    }
    VeskDefaultFilter filter;
    filter.appendFilter(new ProbeFilter(false, QStringLiteral("x")));
    QCOMPARE(filter.getFilters().size(), 2);
    const QList<VeskBuddy> entries { VeskStandIn::addGroup(QStringLiteral("g"), 0),
        VeskStandIn::addContact({}), VeskStandIn::addTemporary({}),
        VeskStandIn::addEntry(0, QString()), VeskStandIn::addEntry(7, QString()), VeskBuddy() };
    for (const VeskBuddy &entry : entries)
        QVERIFY(filter.filter(entry));
    QCOMPARE(QStringList({ filter.id(), filter.name(), filter.display() }),
        QStringList({ QStringLiteral("default"), QStringLiteral("default"), QString() }));
}

QTEST_GUILESS_MAIN(tst_VeskRosterFiltersStack)
#include "tst_veskrosterfiltersstack.moc"
