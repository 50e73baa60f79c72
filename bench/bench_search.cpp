// The quick search typed into the real roster window at 100,000 contacts,
// with a stored filter of three conditions current: the CPU time of each
// keystroke of a six-letter search, and of clearing the field, from the key
// event until the view has laid out and painted again. A benchmark of its
// own, since it needs the window.

#include "threadcputime.h"

#include <librarysession.h>
#include <mainwindow.h>
#include <rosterfile.h>
#include <rosterlibrary.h>
#include <rostertreemodel.h>
#include <searchbar.h>
#include <veskfield.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrosterproxymodel.h>
#include <veskrosterquicksearch.h>

#include <QApplication>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace {

// 100,000 unless VESK_BENCH_CONTACTS says otherwise (a quicker look).
int contacts()
{
    const int asked = qEnvironmentVariableIntValue("VESK_BENCH_CONTACTS");
    return asked > 0 ? asked : 100000;
}

VeskRosterFilter *leaf(
    VeskLibrarySession &session, const QString &kind, const QList<QPair<QString, QString>> &values)
{
    VeskRosterFilter *filter
        = session.filters()->createFilter(kind, VeskRosterFilter::RosterFilterLeaf);
    QList<VeskField> fields = filter->getConfiguration();
    for (VeskField &field : fields) {
        for (const auto &value : values) {
            if (field.getId() != value.first)
                continue;
            if (field.getKind() == VeskField::ComboBox)
                field.setSelectedId(value.second);
            else
                field.setText(value.second);
        }
    }
    filter->setConfiguration(fields);
    return filter;
}

struct Window
{
    QTemporaryDir dir;
    std::unique_ptr<VeskRosterLibrary> library;
    std::unique_ptr<VeskRosterWindow> window;

    Window()
    {
        QString error;
        VeskRosterFile::load(VeskRosterFile::generate(contacts(), 20261123), &error);
        library = std::make_unique<VeskRosterLibrary>(dir.path() + QLatin1String("/settings"));
        library->open(&error);
        // Not offline, not in "Support", no "do not call" in the status.
        library->change(
            [](VeskLibrarySession &session, QString *error) {
                VeskRosterFiltersStack *stack = session.createStack(
                    QStringLiteral("reachable"), VeskRosterFilter::RosterFilterAnd, error);
                stack->appendFilter(leaf(session, QStringLiteral("presence"),
                    { { QStringLiteral("is_or_not"), QStringLiteral("is not") },
                        { QStringLiteral("presence_filter_presence"),
                            QStringLiteral("offline") } }));
                stack->appendFilter(leaf(session, QStringLiteral("group"),
                    { { QStringLiteral("is_or_not"), QStringLiteral("is not") },
                        { QStringLiteral("group_filter_presence"), QStringLiteral("Support") } }));
                stack->appendFilter(leaf(session, QStringLiteral("description"),
                    { { QStringLiteral("is_or_not"), QStringLiteral("does not contain") },
                        { QStringLiteral("description_filter_regexp"),
                            QStringLiteral("do not call") } }));
                return session.storeNewStack(stack, error)
                    && session.setCurrentFilter(QStringLiteral("reachable"), error);
            },
            &error);
        window = std::make_unique<VeskRosterWindow>(library.get());
        window->show();
        QCoreApplication::processEvents();
    }
};

// Until the view has laid out its rows again and painted.
void settle(VeskRosterWindow &window)
{
    QCoreApplication::processEvents();
    window.view()->viewport()->repaint();
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

void BM_Keystroke(benchmark::State &state)
{
    static Window w;
    QLineEdit *field = w.window->searchBar()->field();
    // The user's way into the field, Ctrl+F: the window reads the texts the
    // search looks at then, once, and that is timed on its own.
    QApplication::setActiveWindow(w.window.get());
    settle(*w.window);
    const double focusStart = threadCpuSeconds();
    QTest::keyClick(w.window.get(), Qt::Key_F, Qt::ControlModifier);
    settle(*w.window);
    state.counters["focus_ms"] = (threadCpuSeconds() - focusStart) * 1e3;
    if (!field->hasFocus())
        state.SkipWithError("Ctrl+F did not reach the search field");
    // Before the first letter, the window reads the texts in slices, one per
    // turn of the event loop: their sum, and the longest (a frame the user
    // might see late).
    double longestSlice = 0;
    const double preparingStart = threadCpuSeconds();
    while (w.window->searchBar()->isPreparing()) {
        const double sliceStart = threadCpuSeconds();
        QCoreApplication::processEvents();
        longestSlice = std::max(longestSlice, threadCpuSeconds() - sliceStart);
    }
    state.counters["prepare_ms"] = (threadCpuSeconds() - preparingStart) * 1e3;
    state.counters["prepare_longest_slice_ms"] = longestSlice * 1e3;
    const QString text = QStringLiteral("garcia");
    // The proxy's own share of a keystroke: from its layout change's start
    // to its end (the search, the new rows, the persistent indices).
    double proxyStart = 0;
    std::vector<double> proxy;
    QObject::connect(w.window->proxy(), &QAbstractItemModel::layoutAboutToBeChanged,
        [&] { proxyStart = threadCpuSeconds(); });
    QObject::connect(w.window->proxy(), &QAbstractItemModel::layoutChanged,
        [&] { proxy.push_back(threadCpuSeconds() - proxyStart); });
    std::vector<double> typing;
    std::vector<double> clearing;
    int shown = 0;
    for (auto _ : state) {
        for (const QChar c : text) {
            const double start = threadCpuSeconds();
            QTest::keyClick(field, c.toLatin1());
            settle(*w.window);
            typing.push_back(threadCpuSeconds() - start);
            if (qEnvironmentVariableIsSet("VESK_BENCH_VERBOSE"))
                qInfo("%c: %.1f ms (proxy %.1f ms)", c.toLatin1(), typing.back() * 1e3,
                    proxy.empty() ? 0.0 : proxy.back() * 1e3);
        }
        shown = w.window->proxy()->rowCount();
        const double start = threadCpuSeconds();
        QTest::keyClick(field, Qt::Key_Escape);
        settle(*w.window);
        clearing.push_back(threadCpuSeconds() - start);
        if (qEnvironmentVariableIsSet("VESK_BENCH_VERBOSE"))
            qInfo("Escape: %.1f ms (proxy %.1f ms)", clearing.back() * 1e3, proxy.back() * 1e3);
    }
    state.counters["type_median_ms"] = median(typing) * 1e3;
    state.counters["type_worst_ms"] = *std::max_element(typing.begin(), typing.end()) * 1e3;
    state.counters["proxy_median_ms"] = median(proxy) * 1e3;
    state.counters["proxy_worst_ms"] = *std::max_element(proxy.begin(), proxy.end()) * 1e3;
    state.counters["clear_median_ms"] = median(clearing) * 1e3;
    state.counters["clear_worst_ms"] = *std::max_element(clearing.begin(), clearing.end()) * 1e3;
    // The library's share of the widest keystroke, bounded from above: the
    // first letter searched over every member (not only those the filter
    // passes) in one call.
    const QVector<VeskBuddy> &members = w.window->model()->members();
    const VeskRosterQuickSearch first(text.left(1));
    const double start = threadCpuSeconds();
    benchmark::DoNotOptimize(first.matching(members).size());
    state.counters["library_first_key_ms"] = (threadCpuSeconds() - start) * 1e3;
    state.counters["groups_shown"] = shown;
    state.counters["members"] = double(w.window->model()->members().size());
}

} // namespace

BENCHMARK(BM_Keystroke)->Unit(benchmark::kMillisecond)->Iterations(3);

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    QApplication app(argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
