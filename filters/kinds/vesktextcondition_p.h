#pragma once

// Not part of the library's API: the code the display and the description
// filters share.

#include <veskfield.h>

#include <QList>
#include <QString>
#include <QStringView>
#include <QtAlgorithms>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// The user's condition on a text stands for a regular expression matched
// against the whole subject, case-sensitively: ".*" + escaped text + ".*" for
// "contains", the escaped text for "match exactly", ".+" for "is not empty",
// and the empty pattern before anything is configured. Since escaping makes
// every character of the text literal, each of these is a plain string
// operation; the roster view asks for every entry on every presence change, so
// the test runs without a regular expression and without allocating.
// "does not contain" passes exactly what "contains" does not.
namespace VeskTextCondition {

enum Mode : int {
    Equals, // the escaped text alone, and the empty pattern of a new filter
    Contains,
    DoesNotContain,
    NotEmpty,
};

// Exactly QString::contains(needle, Qt::CaseSensitive): code unit by code
// unit, and every text contains the empty one. A roster's names are short and
// the needles a person types shorter still; for them, comparing the needle's
// first and last code units at every place of the name, eight places at a
// time, beats Qt's general search, whose calls and set-up cost more than the
// whole scan. Long texts and long needles go to Qt's search, which bounds the
// work where this scan would not.
inline bool contains(const char16_t *subjectUnits, qsizetype subjectSize,
    const char16_t *needleUnits, qsizetype size)
{
    const qsizetype room = subjectSize - size;
    if (room < 0)
        return false;
    if (size < 1 || size > 32 || room > 256)
        return QStringView(subjectUnits, subjectSize)
            .contains(QStringView(needleUnits, size), Qt::CaseSensitive);
    const ushort *text = reinterpret_cast<const ushort *>(subjectUnits);
    const ushort *wanted = reinterpret_cast<const ushort *>(needleUnits);
    const ushort first = wanted[0];
    const ushort last = wanted[size - 1];
    const ushort *ends = text + (size - 1);
    // The code units between the first and the last, at a place where those
    // two match.
    const auto middleMatches = [&](qsizetype at) {
        for (qsizetype k = 1; k < size - 1; ++k) {
            if (text[at + k] != wanted[k])
                return false;
        }
        return true;
    };
    qsizetype at = 0;
#if defined(__SSE2__)
    // Eight places at once, reading only code units of the subject: the
    // places at..at + 7 all lie within room.
    const __m128i firsts = _mm_set1_epi16(short(first));
    const __m128i lasts = _mm_set1_epi16(short(last));
    for (; at + 7 <= room; at += 8) {
        const __m128i starts = _mm_loadu_si128(reinterpret_cast<const __m128i *>(text + at));
        const __m128i stops = _mm_loadu_si128(reinterpret_cast<const __m128i *>(ends + at));
        const __m128i both
            = _mm_and_si128(_mm_cmpeq_epi16(starts, firsts), _mm_cmpeq_epi16(stops, lasts));
        // Two equal mask bits a code unit: the lower one stands for its place.
        unsigned hits = unsigned(_mm_movemask_epi8(both)) & 0x5555u;
        for (; hits; hits &= hits - 1) {
            if (middleMatches(at + qCountTrailingZeroBits(hits) / 2))
                return true;
        }
    }
#endif
    for (; at <= room; ++at) {
        if (text[at] == first && ends[at] == last && middleMatches(at))
            return true;
    }
    return false;
}

inline bool contains(const QString &subject, const QString &needle)
{
    return contains(reinterpret_cast<const char16_t *>(subject.constData()), subject.size(),
        reinterpret_cast<const char16_t *>(needle.constData()), needle.size());
}

inline bool matches(int mode, const QString &needle, const QString &subject)
{
    switch (mode) {
    case Contains:
        return contains(subject, needle);
    case DoesNotContain:
        // Every text contains the empty text, so an empty needle passes nothing.
        return !contains(subject, needle);
    case NotEmpty:
        return !subject.isEmpty();
    default:
        return subject == needle;
    }
}

// Walks the fields in order, the last field of an id winning; fields of other
// ids are ignored.
void read(const QList<VeskField> &fields, const QString &textFieldId, QString *conditionId,
    QString *text);

// Compiles a condition into *mode and *needle. An unknown condition id, the
// empty one included, changes nothing: the previous test stays in force.
// "is not empty" is known only when withNotEmpty is set.
void compile(
    const QString &conditionId, const QString &text, bool withNotEmpty, int *mode, QString *needle);

// The condition combo box, then the line edit.
QList<VeskField> configuration(
    bool withNotEmpty, const QString &conditionId, const QString &textFieldId, const QString &text);

} // namespace VeskTextCondition
