#include "veskrostersorterbyname.h"
#include <veskentrykind_p.h>

#include <veskbuddy.h>

#include <QString>

namespace {

// The lowered form of `text`, exactly as QString::toLower() gives it, written
// into `buffer`, which keeps its capacity from one comparison to the next:
// code point by code point, a surrogate pair as one code point. The one code
// point whose lower case is two code units (U+0130) goes through toLower().
const QString &lowered(const QString &text, QString &buffer, QString &other)
{
    const int size = text.size();
    const QChar *from = text.constData();
    buffer.resize(size);
    QChar *to = buffer.data();
    for (int i = 0; i < size; ++i) {
        const char16_t c = from[i].unicode();
        if (c < 0x80) {
            to[i] = QChar(c >= u'A' && c <= u'Z' ? c + (u'a' - u'A') : c);
        } else if (c == 0x130) {
            other = text.toLower();
            return other;
        } else if (QChar::isHighSurrogate(c) && i + 1 < size && from[i + 1].isLowSurrogate()) {
            const uint lower = QChar::toLower(QChar::surrogateToUcs4(from[i], from[i + 1]));
            to[i] = QChar(QChar::highSurrogate(lower));
            to[i + 1] = QChar(QChar::lowSurrogate(lower));
            ++i;
        } else {
            to[i] = from[i].toLower();
        }
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
