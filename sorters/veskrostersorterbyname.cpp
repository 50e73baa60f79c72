#include "veskrostersorterbyname.h"
#include "../filters/veskentrykind_p.h"

#include <veskbuddy.h>

#include <QString>

namespace {

// The lowered form of `text`, exactly as QString::toLower() gives it.
// toLower() allocates a new string for nearly every display name, since
// names start with a capital, and the roster view compares every pair on
// each presence change. For ASCII, lowering is only 'A'-'Z' to 'a'-'z', so
// such text is lowered into `buffer`, which keeps its capacity from one
// comparison to the next; any other text goes through toLower().
const QString &lowered(const QString &text, QString &buffer, QString &other)
{
    const int size = text.size();
    const QChar *from = text.constData();
    buffer.resize(size);
    QChar *to = buffer.data();
    for (int i = 0; i < size; ++i) {
        const char16_t c = from[i].unicode();
        if (c >= 0x80) {
            other = text.toLower();
            return other;
        }
        to[i] = QChar(c >= u'A' && c <= u'Z' ? c + (u'a' - u'A') : c);
    }
    return buffer;
}

} // namespace

VeskRosterSorterByName::VeskRosterSorterByName() = default;

VeskRosterSorterByName::~VeskRosterSorterByName() = default;

int VeskRosterSorterByName::lessThan(const VeskBuddy &a, const VeskBuddy &b) const
{
    if (a.getType() == VeskEntryKind::Group && b.getType() == VeskEntryKind::Group) {
        const int posA = VeskBuddyGroup(a).getPos();
        const int posB = VeskBuddyGroup(b).getPos();
        if (posA != 0 || posB != 0)
            return posA > posB ? 1 : 0;
    }

    // Scratch space only: nothing of one comparison is kept for the next.
    thread_local QString bufferA;
    thread_local QString bufferB;
    QString otherA;
    QString otherB;
    const QString &lowerA = lowered(a.getDisplay(), bufferA, otherA);
    const QString &lowerB = lowered(b.getDisplay(), bufferB, otherB);
    // The collator calls identical texts equal; this spares it the frequent
    // case of texts differing only in letter case.
    if (lowerA == lowerB)
        return 0;
    return QString::localeAwareCompare(lowerA, lowerB);
}
