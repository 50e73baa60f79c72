#pragma once

// Not part of the library's API: the code the display and the description
// filters share.

#include <veskfield.h>

#include <QList>
#include <QString>

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

inline bool matches(int mode, const QString &needle, const QString &subject)
{
    switch (mode) {
    case Contains:
        return subject.contains(needle, Qt::CaseSensitive);
    case DoesNotContain:
        // Every text contains the empty text, so an empty needle passes nothing.
        return !subject.contains(needle, Qt::CaseSensitive);
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
