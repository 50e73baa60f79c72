// Per-entry cost of the leaf filters the roster view asks on every presence
// change, against a hand-written predicate for the same test and, for the
// display filter, the regular expression its condition stands for.
// "allocs/call" counts heap allocations per call: this executable interposes
// glibc's malloc family, so build it without sanitizers.

#include <standin/veskstandin.h>
#include <veskaccount.h>
#include <veskaccountfilter.h>
#include <veskdescriptionfilter.h>
#include <veskdisplayfilter.h>
#include <veskgroupfilter.h>
#include <veskprotocolfilter.h>

#include <QRegExp>

#include <benchmark/benchmark.h>

#include <atomic>

extern "C" void *__libc_malloc(size_t);
extern "C" void *__libc_calloc(size_t, size_t);
extern "C" void *__libc_realloc(void *, size_t);
extern "C" void __libc_free(void *);

static std::atomic<long> allocations { 0 };
extern "C" void *malloc(size_t n)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_malloc(n);
}
extern "C" void *calloc(size_t a, size_t b)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_calloc(a, b);
}
extern "C" void *realloc(void *p, size_t n)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_realloc(p, n);
}
extern "C" void free(void *p)
{
    __libc_free(p);
}

namespace {

struct Roster
{
    QList<VeskBuddy> entries;
    Roster()
    {
        VeskStandIn::resetRoster();
        const VeskBuddy group = VeskStandIn::addGroup(QStringLiteral("Friends"), 1);
        VeskAccountConnection *account
            = VeskStandIn::addAccount(QStringLiteral("alice"), QStringLiteral("jabber"));
        const QStringList names { QStringLiteral("Joanna Smith"), QStringLiteral("Brian O'Neil"),
            QStringLiteral("Anders Berg"), QStringLiteral("Li Wei"), QStringLiteral("Daniel"),
            QStringLiteral("Mohammed Ali"), QStringLiteral("Chiara Ferrante"),
            QStringLiteral("Ute") };
        for (const QString &name : names) {
            VeskStandIn::ContactInfo info;
            info.display = name;
            info.group = group;
            info.account = account;
            info.presence = VeskStandIn::makePresence(
                QStringLiteral("online"), QString(), QStringLiteral("at the office, back at 5"));
            entries << VeskStandIn::addContact(info);
        }
    }
};

Roster &roster()
{
    static Roster r;
    return r;
}

template <typename Predicate> void run(benchmark::State &state, Predicate &&predicate)
{
    const QList<VeskBuddy> &entries = roster().entries;
    long passed = 0;
    int i = 0;
    const long before = allocations.load();
    for (auto _ : state) {
        passed += predicate(entries.at(i));
        i = (i + 1) % entries.size();
    }
    benchmark::DoNotOptimize(passed);
    state.counters["allocs/call"]
        = benchmark::Counter(double(allocations.load() - before) / state.iterations());
}

QList<VeskField> textFields(const QString &kind, const QString &condition, const QString &text)
{
    return { VeskField::comboBox(QString(), QStringLiteral("is_or_not"), { condition },
                 { condition }, condition, QString()),
        VeskField::lineEdit(
            QString(), kind + QLatin1String("_filter_regexp"), text, 32767, QString()) };
}

QList<VeskField> choiceFields(const QString &kind, const QString &value)
{
    return { VeskField::comboBox(QString(), QStringLiteral("is_or_not"), { QStringLiteral("is") },
                 { QStringLiteral("is") }, QStringLiteral("is"), QString()),
        VeskField::comboBox(QString(), kind + QLatin1String("_filter_presence"), { value },
            { value }, value, QString()) };
}

void DisplayContains_HandWritten(benchmark::State &state)
{
    const QString needle = QStringLiteral("an");
    run(state, [&](const VeskBuddy &b) { return b.getDisplay().contains(needle); });
}
void DisplayContains_Filter(benchmark::State &state)
{
    VeskDisplayFilter filter;
    filter.setConfiguration(
        textFields(QStringLiteral("display"), QStringLiteral("contains"), QStringLiteral("an")));
    run(state, [&](const VeskBuddy &b) { return filter.filter(b); });
}
void DisplayContains_QRegExp(benchmark::State &state)
{
    QRegExp expression(QStringLiteral(".*an.*"), Qt::CaseSensitive, QRegExp::RegExp);
    run(state, [&](const VeskBuddy &b) { return expression.exactMatch(b.getDisplay()); });
}
void DisplayExactly_HandWritten(benchmark::State &state)
{
    const QString needle = QStringLiteral("Daniel");
    run(state, [&](const VeskBuddy &b) { return b.getDisplay() == needle; });
}
void DisplayExactly_Filter(benchmark::State &state)
{
    VeskDisplayFilter filter;
    filter.setConfiguration(textFields(
        QStringLiteral("display"), QStringLiteral("match exactly"), QStringLiteral("Daniel")));
    run(state, [&](const VeskBuddy &b) { return filter.filter(b); });
}
void DescriptionContains_HandWritten(benchmark::State &state)
{
    const QString needle = QStringLiteral("back");
    run(state, [&](const VeskBuddy &b) {
        return b.getType() == 3
            && VeskBuddyContact(b).getPresence().getDescription().contains(needle);
    });
}
void DescriptionContains_Filter(benchmark::State &state)
{
    VeskDescriptionFilter filter;
    filter.setConfiguration(textFields(
        QStringLiteral("description"), QStringLiteral("contains"), QStringLiteral("back")));
    run(state, [&](const VeskBuddy &b) { return filter.filter(b); });
}
void Group_HandWritten(benchmark::State &state)
{
    const QString group = QStringLiteral("Friends");
    run(state, [&](const VeskBuddy &b) {
        return b.getType() == 3 && VeskBuddyContact(b).getParent().getDisplay() == group;
    });
}
void Group_Filter(benchmark::State &state)
{
    VeskGroupFilter filter;
    filter.setConfiguration(choiceFields(QStringLiteral("group"), QStringLiteral("Friends")));
    run(state, [&](const VeskBuddy &b) { return filter.filter(b); });
}
void Account_HandWritten(benchmark::State &state)
{
    const QString uid = QStringLiteral("alice"), protocol = QStringLiteral("jabber");
    run(state, [&](const VeskBuddy &b) {
        const VeskAccountConnection *a
            = b.getType() == 3 ? VeskBuddyContact(b).getAccount() : nullptr;
        return a && a->getUid() == uid && a->getProtocolName() == protocol;
    });
}
void Account_Filter(benchmark::State &state)
{
    VeskAccountFilter filter;
    filter.setConfiguration(
        choiceFields(QStringLiteral("account"), QStringLiteral("alice@jabber")));
    run(state, [&](const VeskBuddy &b) { return filter.filter(b); });
}
void Protocol_HandWritten(benchmark::State &state)
{
    const QString protocol = QStringLiteral("jabber");
    run(state, [&](const VeskBuddy &b) {
        const VeskAccountConnection *a
            = b.getType() == 3 ? VeskBuddyContact(b).getAccount() : nullptr;
        return a && a->getProtocolName() == protocol;
    });
}
void Protocol_Filter(benchmark::State &state)
{
    VeskProtocolFilter filter;
    filter.setConfiguration(choiceFields(QStringLiteral("protocol"), QStringLiteral("jabber")));
    run(state, [&](const VeskBuddy &b) { return filter.filter(b); });
}

} // namespace

BENCHMARK(DisplayContains_HandWritten);
BENCHMARK(DisplayContains_Filter);
BENCHMARK(DisplayContains_QRegExp);
BENCHMARK(DisplayExactly_HandWritten);
BENCHMARK(DisplayExactly_Filter);
BENCHMARK(DescriptionContains_HandWritten);
BENCHMARK(DescriptionContains_Filter);
BENCHMARK(Group_HandWritten);
BENCHMARK(Group_Filter);
BENCHMARK(Account_HandWritten);
BENCHMARK(Account_Filter);
BENCHMARK(Protocol_HandWritten);
BENCHMARK(Protocol_Filter);

BENCHMARK_MAIN();
