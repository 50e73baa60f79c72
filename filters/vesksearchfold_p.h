#pragma once

// Not part of the library's API: the folding that makes the quick search
// blind to letter case and accents, and the search's own rule.

#include <veskentrykind_p.h>
#include <vesktextcondition_p.h>

#include <QString>

namespace VeskSearchFold {

// Appends the folded form of `text` to *into: every character compatibility-
// decomposed, its combining marks dropped, then case-folded, so that "É",
// "é", "e" and "E" all give "e" and the ligature "ﬁ" gives "fi". A few
// letters whose accent or stroke Unicode does not write as a combining mark
// are folded by hand: ı (dotless i) and İ give "i", ø "o", đ "d", ł "l",
// ħ "h", ß "ss", æ "ae", œ "oe". The rule does not depend on the locale:
// the same text finds the same entries for every user. Characters outside the
// Basic Multilingual Plane are only case-folded.
void appendFolded(const QString &text, QString *into);

inline QString folded(const QString &text)
{
    QString result;
    appendFolded(text, &result);
    return result;
}

// A folded search text and the buffer that each text it is looked for in is
// folded into; the buffer keeps its capacity, so that once it has grown,
// looking allocates nothing.
class Needle
{
public:
    explicit Needle(const QString &foldedText)
        : needle(foldedText)
    { }

    bool isEmpty() const { return needle.isEmpty(); }
    bool foundIn(const QString &text)
    {
        // Folding never turns a text with no character into one with some.
        if (text.isEmpty())
            return false;
        buffer.resize(0);
        appendFolded(text, &buffer);
        return VeskTextCondition::contains(buffer, needle);
    }

private:
    const QString needle;
    QString buffer;
};

// The quick search's rule, for any reader of the entry (see
// kinds/veskleafrule_p.h), which also answers uidHas() and groupHas(): an
// entry matches when its display name, the uid of its account, the name of
// its group or its status text holds the needle. An entry without one of
// these pieces is read as the leaf filters read it: only contacts and
// temporary contacts have an account and a group, only contacts a status text.
template <class Entry> inline bool matches(Entry &entry, Needle &needle)
{
    if (needle.foundIn(entry.display()))
        return true;
    const int type = entry.type();
    if (type != VeskEntryKind::Contact && type != VeskEntryKind::Temporary)
        return false;
    if (entry.account() && entry.uidHas(needle))
        return true;
    if (entry.groupHas(needle))
        return true;
    return type == VeskEntryKind::Contact && needle.foundIn(entry.description());
}

} // namespace VeskSearchFold
