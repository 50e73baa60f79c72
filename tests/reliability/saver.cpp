// The child process of the crash-during-save test: it saves large stacks in
// a loop until it is killed, and reports each finished save on stdout.
//
//   reliability_saver save SETTINGS_DIR STACKS LEAVES PERIOD FIRST
//       after start-up prints "ready", then for g = FIRST, FIRST + 1, ...
//       and every stack s: fills stack s with generation g % PERIOD, writes
//       it, and prints "s g"; never ends by itself

#include "reliabilitysupport.h"

#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskstandin.h>

#include <QByteArray>
#include <QDir>
#include <QList>

#include <unistd.h>

using namespace VeskReliability;

namespace {

QString stackName(int index)
{
    return QStringLiteral("stack-%1").arg(index);
}

// Unbuffered, so that every line written before the kill reaches the parent.
void report(const QByteArray &line)
{
    const QByteArray bytes = line + '\n';
    ssize_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(STDOUT_FILENO, bytes.constData() + done, bytes.size() - done);
        if (n <= 0)
            return;
        done += n;
    }
}

QList<VeskRosterFiltersStack *> openStacks(int count)
{
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    QList<VeskRosterFiltersStack *> stacks;
    for (int s = 0; s < count; ++s) {
        VeskRosterFiltersStack *stack = manager->getStackFilter(stackName(s));
        if (!stack)
            stack = manager->addStackFilter(stackName(s),
                s % 2 ? VeskRosterFilter::RosterFilterOr : VeskRosterFilter::RosterFilterAnd);
        stacks.append(stack);
    }
    return stacks;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 7)
        return 2;
    if (QByteArray(argv[1]) != "save")
        return 2;
    const QString dir = QString::fromLocal8Bit(argv[2]);
    const int count = QByteArray(argv[3]).toInt();
    const int leaves = QByteArray(argv[4]).toInt();
    const int period = qMax(1, QByteArray(argv[5]).toInt());

    buildSmallRoster();
    VeskStandIn::setSettingsDir(dir);
    const QList<VeskRosterFiltersStack *> stacks = openStacks(count);

    report("ready");
    for (int g = QByteArray(argv[6]).toInt();; ++g) {
        for (int s = 0; s < count; ++s) {
            fillLargeStack(stacks.at(s), leaves, g % period);
            stacks.at(s)->writeFilterSettings();
            report(QByteArray::number(s) + ' ' + QByteArray::number(g));
        }
    }
}
