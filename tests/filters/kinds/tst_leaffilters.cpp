// The six leaf filters: which entries each condition passes, what a new
// filter passes, the items they offer, and how their configuration is walked.

#include "kindsfixture.h"

#include <veskdefaultfilter.h>

#include <QtTest>

#include <algorithm>
#include <typeinfo>

namespace {

const QString conditionId = QStringLiteral("is_or_not");

void row(const char *kind, const char *condition, const char *value, const char *expected,
    const char *display)
{
    QTest::addRow("%s %s \"%s\"", kind, condition, value)
        << QString::fromUtf8(kind) << QString::fromUtf8(condition) << QString::fromUtf8(value)
        << QString::fromUtf8(expected) << QString::fromUtf8(display);
}

VeskField choice(const QString &id, const QString &selected)
{
    return VeskField::comboBox(QString(), id, {}, {}, selected, QString());
}

// Random trees of every kind of leaf, nested stacks of every type and the
// default filter, kept with their stacks and leaves so that they can be edited.
struct RandomTree
{
    quint64 state;
    QList<VeskRosterFiltersStack *> stacks;
    QList<VeskRosterFilter *> leaves;

    int below(int bound)
    {
        quint64 z = (state += 0x9E3779B97F4A7C15ULL);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return int((z ^ (z >> 31)) % quint64(bound));
    }
    template <typename T> const T &pick(const QList<T> &from)
    {
        return from.at(below(int(from.size())));
    }

    void configureLeaf(VeskRosterFilter *leaf)
    {
        const QString kind = leaf->id();
        const bool text = kind == QLatin1String("display") || kind == QLatin1String("description");
        QStringList conditions { QStringLiteral("is"), QStringLiteral("is not") };
        if (text)
            conditions
                = QStringList { QStringLiteral("contains"), QStringLiteral("does not contain"),
                      QStringLiteral("match exactly"), QStringLiteral("is not empty") };
        const QStringList values { QString(), QStringLiteral("bob"), QStringLiteral("Bobby"),
            QStringLiteral("away"), QStringLiteral("Work"), QStringLiteral("icq"),
            QStringLiteral("alice@home@jabber"), QStringLiteral("carol@") };
        configure(
            *leaf, { { conditionId, pick(conditions) }, { valueFieldOf(kind), pick(values) } });
    }
    VeskRosterFilter *node(int depth)
    {
        const int shape = below(10);
        if (shape == 0)
            return new VeskDefaultFilter;
        if (shape < 4 && depth < 3) {
            const VeskRosterFilter::RosterFilterType types[] = { VeskRosterFilter::RosterFilterAnd,
                VeskRosterFilter::RosterFilterOr, VeskRosterFilter::RosterFilterDefault };
            auto *stack = new VeskRosterFiltersStack(QString(), types[below(5) % 3]);
            for (int children = below(4); children > 0; --children)
                stack->appendFilter(node(depth + 1));
            stacks << stack;
            return stack;
        }
        const char *kinds[]
            = { "display", "description", "group", "account", "protocol", "presence" };
        VeskRosterFilter *leaf = makeFilter(QLatin1String(kinds[below(6)])).release();
        configureLeaf(leaf);
        leaves << leaf;
        return leaf;
    }
};

// The answer of a tree asked the way the stacks' rules read, leaf by leaf.
bool askOneByOne(const VeskRosterFilter &filter, const VeskBuddy &buddy)
{
    if (typeid(filter) != typeid(VeskRosterFiltersStack))
        return filter.filter(buddy);
    const auto &stack = static_cast<const VeskRosterFiltersStack &>(filter);
    const QList<VeskRosterFilter *> children = stack.getFilters();
    const auto asked = [&](const VeskRosterFilter *child) {
        return askOneByOne(*child, buddy);
    };
    switch (stack.getType()) {
    case VeskRosterFilter::RosterFilterAnd:
        return std::all_of(children.cbegin(), children.cend(), asked);
    case VeskRosterFilter::RosterFilterOr:
        return children.isEmpty() || std::any_of(children.cbegin(), children.cend(), asked);
    default:
        return false;
    }
}

} // namespace

class tst_LeafFilters : public QObject
{
    Q_OBJECT

private slots:
    void init() { entries = buildRoster(); }
    void cleanup() { VeskStandIn::resetRoster(); }

    void conditionPassesEntries_data();
    void conditionPassesEntries();
    void treesAnswerAsTheirLeavesAskedOneByOne();
    void lastFieldOfAnIdWinsAndAnEmptyListChangesNothing_data();
    void lastFieldOfAnIdWinsAndAnEmptyListChangesNothing();
    void unknownTextConditionKeepsThePreviousTest_data();
    void unknownTextConditionKeepsThePreviousTest();
    void presenceItemsAreUniqueByIdWithTheFirstProtocolsLabelAndPlace();
    void itemsAreDistinct_data();
    void itemsAreDistinct();

private:
    QList<LabelledEntry> entries;
};

void tst_LeafFilters::conditionPassesEntries_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("condition"); // empty: a new filter, never configured
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("display");
    const char *all = "contact, temporary, group, invalid, no account, bare";

    row("group", "", "", "group, invalid, bare", " ");
    row("group", "is", "Work", "temporary, no account", "is Work");
    row("group", "is", "friends", "", "is friends");
    row("group", "is not", "Friends", "temporary, group, invalid, no account, bare",
        "is not Friends");
    row("group", "is not", "", "contact, temporary, no account", "is not ");
    // Every identity holds at least the "@".
    row("account", "", "", "", "account  ");
    row("account", "is", "alice@home@jabber", "contact", "account is alice@home@jabber");
    row("account", "is", "carol@", "bare", "account is carol@");
    row("account", "is", "alice@home", "", "account is alice@home");
    row("account", "is", "alice@home#jabber", "", "account is alice@home#jabber");
    row("account", "is", "bob@icx", "", "account is bob@icx");
    row("account", "is", "Alice@home@jabber", "", "account is Alice@home@jabber");
    row("account", "is not", "bob@icq", "contact, group, invalid, no account, bare",
        "account is not bob@icq");
    row("protocol", "", "", "bare", "protocol  ");
    row("protocol", "is", "icq", "temporary", "protocol is icq");
    row("protocol", "is", "Jabber", "", "protocol is Jabber");
    row("protocol", "is not", "", "contact, temporary, group, invalid, no account",
        "protocol is not ");
    row("display", "", "", "bare", "display ");
    row("display", "contains", "bob", "contact, temporary", "display bob");
    row("display", "contains", "", all, "display ");
    row("display", "contains", "Bob", "contact, no account", "display Bob");
    row("display", "contains", "a.b", "invalid", "display a.b");
    row("display", "does not contain", "bob", "group, invalid, no account, bare", "display bob");
    row("display", "does not contain", "", "", "display ");
    row("display", "match exactly", "Bobby", "no account", "display Bobby");
    row("description", "", "", "no account, bare", "description ");
    row("description", "contains", "", "contact, no account, bare", "description ");
    row("description", "contains", "Away", "", "description Away");
    row("description", "does not contain", "away", "no account, bare", "description away");
    row("description", "does not contain", "", "", "description ");
    row("description", "match exactly", "awa", "", "description awa");
    row("description", "is not empty", "zzz", "contact", "description zzz");
    row("presence", "", "", "no account, bare", "presence  ");
    row("presence", "is", "away", "contact, temporary", "presence is Away");
    row("presence", "is", "Away", "", "presence is ");
    row("presence", "is not", "away", "group, invalid, no account, bare", "presence is not Away");
}

void tst_LeafFilters::conditionPassesEntries()
{
    QFETCH(QString, kind);
    QFETCH(QString, condition);
    QFETCH(QString, value);
    // Alone, and as the one child of a stack whose prepared walk must follow
    // an edit made after the leaf joined it.
    VeskRosterFiltersStack stack(QString(), VeskRosterFilter::RosterFilterAnd);
    VeskRosterFilter *filter = makeFilter(kind).release();
    stack.appendFilter(filter);
    if (!condition.isEmpty())
        configure(*filter, { { conditionId, condition }, { valueFieldOf(kind), value } });
    QCOMPARE(filter->getConfiguration().at(1).getText()
            + filter->getConfiguration().at(1).getSelectedId(),
        value);
    QTEST(passing(*filter, entries), "expected");
    QTEST(passing(stack, entries), "expected");
    QTEST(filter->display(), "display");
}

void tst_LeafFilters::treesAnswerAsTheirLeavesAskedOneByOne()
{
    // The default filter reads a stack file of its name; give it none.
    QTemporaryDir settings;
    VeskStandIn::setSettingsDir(settings.path());
    const auto answers = [&](const VeskRosterFilter &root, bool oneByOne) {
        QString result;
        for (const LabelledEntry &entry : qAsConst(entries))
            result += QLatin1Char(
                (oneByOne ? askOneByOne(root, entry.buddy) : root.filter(entry.buddy)) ? '1' : '0');
        return result;
    };
    for (quint64 seed = 1; seed <= 150; ++seed) {
        RandomTree tree { seed, {}, {} };
        auto *root = new VeskRosterFiltersStack(QString(), VeskRosterFilter::RosterFilterAnd);
        const std::unique_ptr<VeskRosterFiltersStack> owner(root);
        for (int children = tree.below(5); children > 0; --children)
            root->appendFilter(tree.node(1));
        tree.stacks << root;
        // Then edits of every kind: a condition, a removal, an addition.
        for (int edit = 0; edit < 4; ++edit) {
            QCOMPARE(answers(*root, false), answers(*root, true));
            if (edit == 1 && !tree.leaves.isEmpty()) {
                tree.configureLeaf(tree.pick(tree.leaves));
            } else if (edit == 2) {
                VeskRosterFiltersStack *stack = tree.pick(tree.stacks);
                const QList<VeskRosterFilter *> children = stack->getFilters();
                if (!children.isEmpty()) {
                    VeskRosterFilter *child = tree.pick(children);
                    // Forget what goes with it, while parents can still be walked.
                    const auto under = [child](const VeskRosterFilter *filter) {
                        for (const VeskRosterFilter *up = filter; up; up = up->getParent()) {
                            if (up == child)
                                return true;
                        }
                        return false;
                    };
                    tree.stacks.erase(std::remove_if(tree.stacks.begin(), tree.stacks.end(), under),
                        tree.stacks.end());
                    tree.leaves.erase(std::remove_if(tree.leaves.begin(), tree.leaves.end(), under),
                        tree.leaves.end());
                    stack->removeFilter(child);
                    delete child;
                }
            } else if (edit == 3) {
                tree.pick(tree.stacks)->appendFilter(tree.node(2));
            }
        }
    }
}

void tst_LeafFilters::lastFieldOfAnIdWinsAndAnEmptyListChangesNothing_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("first"); // condition, value
    QTest::addColumn<QString>("last");
    QTest::addColumn<QString>("expected");
    // For the choice kinds any field but the condition carries the value, and
    // only exactly "is" means "is".
    QTest::newRow("group") << QStringLiteral("group") << QStringLiteral("is,Friends")
                           << QStringLiteral("IS,Work")
                           << QStringLiteral("contact, group, invalid, bare");
    QTest::newRow("account") << QStringLiteral("account") << QStringLiteral("is,alice@home@jabber")
                             << QStringLiteral("IS,bob@icq")
                             << QStringLiteral("contact, group, invalid, no account, bare");
    QTest::newRow("protocol") << QStringLiteral("protocol") << QStringLiteral("is,jabber")
                              << QStringLiteral("IS,icq")
                              << QStringLiteral("contact, group, invalid, no account, bare");
    QTest::newRow("presence") << QStringLiteral("presence") << QStringLiteral("is,away")
                              << QStringLiteral("IS,online")
                              << QStringLiteral(
                                     "contact, temporary, group, invalid, no account, bare");
    QTest::newRow("display") << QStringLiteral("display") << QStringLiteral("match exactly,x")
                             << QStringLiteral("contains,a") << QStringLiteral("invalid");
    QTest::newRow("description") << QStringLiteral("description")
                                 << QStringLiteral("match exactly,x")
                                 << QStringLiteral("contains,a") << QStringLiteral("contact");
}

void tst_LeafFilters::lastFieldOfAnIdWinsAndAnEmptyListChangesNothing()
{
    QFETCH(QString, kind);
    QFETCH(QString, first);
    QFETCH(QString, last);
    const auto filter = makeFilter(kind);
    const bool text = filter->getConfiguration().at(1).getKind() == VeskField::LineEdit;
    const auto value = [&](const QString &v) {
        return text ? VeskField::lineEdit(QString(), valueFieldOf(kind), v, 32767, QString())
                    : choice(QStringLiteral("anything"), v);
    };
    QList<VeskField> fields { choice(conditionId, first.section(QLatin1Char(','), 0, 0)),
        value(first.section(QLatin1Char(','), 1)),
        choice(conditionId, last.section(QLatin1Char(','), 0, 0)),
        value(last.section(QLatin1Char(','), 1)) };
    if (text) // fields of other ids are ignored
        fields << VeskField::lineEdit(
            QString(), QStringLiteral("other"), QStringLiteral("Bobby"), 1, QString());
    filter->setConfiguration(fields);
    const QString state
        = passing(*filter, entries) + QLatin1Char('/') + describe(filter->getConfiguration());
    filter->setConfiguration({});
    QCOMPARE(
        passing(*filter, entries) + QLatin1Char('/') + describe(filter->getConfiguration()), state);
    QTEST(passing(*filter, entries), "expected");
}

void tst_LeafFilters::unknownTextConditionKeepsThePreviousTest_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("text"); // first configured with "contains"
    QTest::addColumn<QString>("unknown"); // then this condition, with the text "Bobby"
    QTest::addColumn<QString>("expected"); // passing / display / condition shown
    QTest::newRow("the display filter knows no \"is not empty\"")
        << QStringLiteral("display") << QStringLiteral("bob") << QStringLiteral("is not empty")
        << QStringLiteral("contact, temporary / display Bobby / is not empty");
    QTest::newRow("conditions are case-sensitive")
        << QStringLiteral("description") << QStringLiteral("way") << QStringLiteral("Contains")
        << QStringLiteral("contact / description Bobby / Contains");
}

// The previous test stays whole, text included, but the new text is shown.
void tst_LeafFilters::unknownTextConditionKeepsThePreviousTest()
{
    QFETCH(QString, kind);
    QFETCH(QString, text);
    QFETCH(QString, unknown);
    const auto filter = makeFilter(kind);
    configure(
        *filter, { { conditionId, QStringLiteral("contains") }, { valueFieldOf(kind), text } });
    configure(
        *filter, { { conditionId, unknown }, { valueFieldOf(kind), QStringLiteral("Bobby") } });
    QTEST(passing(*filter, entries) + QLatin1String(" / ") + filter->display()
            + QLatin1String(" / ") + filter->getConfiguration().at(0).getSelectedId(),
        "expected");
}

void tst_LeafFilters::presenceItemsAreUniqueByIdWithTheFirstProtocolsLabelAndPlace()
{
    using VeskStandIn::makePresence;
    VeskStandIn::resetRoster();
    VeskStandIn::addProtocol(QStringLiteral("first"),
        { makePresence(QStringLiteral("online"), QStringLiteral("Online")),
            makePresence(QStringLiteral("away"), QStringLiteral("Away")) });
    VeskStandIn::addProtocol(QStringLiteral("empty"), {});
    VeskStandIn::addProtocol(QStringLiteral("second"),
        { makePresence(QStringLiteral("dnd"), QStringLiteral("Busy")),
            makePresence(QStringLiteral("away"), QStringLiteral("Gone")),
            makePresence(QStringLiteral("Online"), QStringLiteral("ONLINE")),
            makePresence(QStringLiteral("dnd"), QStringLiteral("Busy again")) });
    VeskPresenceFilter filter;
    configure(filter,
        { { conditionId, QStringLiteral("is not") },
            { valueFieldOf(QStringLiteral("presence")), QStringLiteral("away") } });
    QCOMPARE(describe(filter.getConfiguration()) + QLatin1Char('/') + filter.display(),
        QStringLiteral(
            "is_or_not=[is,is not|is,is not] is not; presence_filter_presence="
            "[online,away,dnd,Online|Online,Away,Busy,ONLINE] away/presence is not Away"));
}

void tst_LeafFilters::itemsAreDistinct_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("accounts"); // uid@protocol ..., split at the first "@"
    QTest::addColumn<QString>("expected");
    QTest::newRow("two accounts of one identity give one account item")
        << QStringLiteral("account") << QStringLiteral("a@x a@x") << QStringLiteral("a@x");
    QTest::newRow("one uid on two protocols gives two account items")
        << QStringLiteral("account") << QStringLiteral("a@x a@y") << QStringLiteral("a@x,a@y");
    QTest::newRow("three accounts on two protocols give two protocol items")
        << QStringLiteral("protocol") << QStringLiteral("a@x b@x c@y") << QStringLiteral("x,y");
    QTest::newRow("groups are listed as the roster names them")
        << QStringLiteral("group") << QStringLiteral("") << QStringLiteral("Friends,Work,Friends");
}

void tst_LeafFilters::itemsAreDistinct()
{
    QFETCH(QString, kind);
    QFETCH(QString, accounts);
    VeskStandIn::resetRoster();
    for (const QString &account : accounts.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        VeskStandIn::addAccount(
            account.section(QLatin1Char('@'), 0, 0), account.section(QLatin1Char('@'), 1));
    for (const char *group : { "Friends", "Work", "Friends" })
        VeskStandIn::addGroup(QLatin1String(group), 0);
    const auto filter = makeFilter(kind);
    configure(*filter, { { valueFieldOf(kind), QStringLiteral("gone") } });
    const VeskField items = filter->getConfiguration().at(1);
    QCOMPARE(items.getComboBoxLabels(), items.getComboBoxIds());
    // A value no account offers any more stays chosen.
    QCOMPARE(items.getSelectedId(), QStringLiteral("gone"));
    QStringList ids = items.getComboBoxIds();
    if (kind != QLatin1String("group"))
        std::sort(ids.begin(), ids.end());
    QTEST(ids.join(QLatin1Char(',')), "expected");
}

QTEST_GUILESS_MAIN(tst_LeafFilters)
#include "tst_leaffilters.moc"
