#pragma once

#include <QString>

// Text from rosters and files, made harmless for a terminal: control
// characters (C0, DEL, C1), the bidirectional embeddings, overrides and
// isolates, and unpaired surrogates are shown as escapes (\e, \n, \x07,
// \u202e, \ud800) instead of being obeyed; everything else stays as it is.
namespace VeskInertText {

QString escaped(const QString &text);
// For names a person types back (filters, sorting methods): a backslash is
// doubled as well, so that every name has one escaped form and
// unescapeName() of it gives the name back.
QString escapedName(const QString &name);
// Reads \\, \e, \n, \r, \t, \xHH and \uHHHH; false for any other escape.
bool unescapeName(const QString &typed, QString *name);

// The columns a terminal gives the (escaped) text: East Asian wide and
// full-width characters take two, combining marks and zero-width
// characters none.
int cellWidth(const QString &text);

} // namespace VeskInertText
