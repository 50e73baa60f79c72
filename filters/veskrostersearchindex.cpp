#include "veskrostersearchindex.h"

#include "veskleafrule_p.h"
#include "veskrosterquicksearch.h"
#include "vesksearchfold_p.h"

#include <QHash>
#include <QString>

#include <vector>

class VeskRosterSearchIndex::Private
{
public:
    // Where an entry's folded texts are: offsets into `texts`, and the
    // numbers of its account's uid and of its group's name (-1: none).
    struct Entry
    {
        int display = 0;
        int displayLength = 0;
        int description = 0;
        int descriptionLength = 0;
        int account = -1;
        int group = -1;
        bool member = false; // a contact or a temporary contact
    };

    std::vector<Entry> entries;
    QString texts;
    int unused = 0; // characters of `texts` that no entry points at any more

    // Folded uids and group names, each once, shared by the entries.
    QVector<QString> pieces;
    QHash<const VeskAccountConnection *, int> accountPieces;
    QHash<QString, int> groupPieces;

    void read(Entry &entry, const VeskBuddy &buddy);
    int foldedText(const QString &text, int *length);
    int piece(const QString &folded, QHash<QString, int> *byText);
    void compactIfWasteful();

    // What a search asks of the shared pieces, each looked at once per call.
    struct Asking
    {
        const char16_t *needle;
        int length;
        mutable std::vector<signed char> pieceHas; // -1: not looked at yet
    };
    bool matches(const Asking &asking, const Entry &entry) const;
};

int VeskRosterSearchIndex::Private::foldedText(const QString &text, int *length)
{
    const int at = int(texts.size());
    VeskSearchFold::appendFolded(text, &texts);
    *length = int(texts.size()) - at;
    return at;
}

int VeskRosterSearchIndex::Private::piece(const QString &folded, QHash<QString, int> *byText)
{
    const auto found = byText->constFind(folded);
    if (found != byText->constEnd())
        return *found;
    pieces.append(folded);
    byText->insert(folded, int(pieces.size()) - 1);
    return int(pieces.size()) - 1;
}

// The pieces exactly as the quick search's rule reads them (see
// vesksearchfold_p.h): only contacts and temporary contacts have an account
// and a group, only contacts a status text.
void VeskRosterSearchIndex::Private::read(Entry &entry, const VeskBuddy &buddy)
{
    VeskEntryReader reader(buddy, false, true);
    entry = Entry();
    entry.display = foldedText(reader.display(), &entry.displayLength);
    const int type = reader.type();
    entry.member = type == VeskEntryKind::Contact || type == VeskEntryKind::Temporary;
    if (!entry.member)
        return;
    if (const VeskAccountConnection *account = reader.account()) {
        const auto found = accountPieces.constFind(account);
        if (found != accountPieces.constEnd()) {
            entry.account = *found;
        } else {
            // Accounts are few; their uids are kept apart from the groups'
            // names so that a uid and a group of the same text stay two.
            pieces.append(VeskSearchFold::folded(reader.uid()));
            entry.account = int(pieces.size()) - 1;
            accountPieces.insert(account, entry.account);
        }
    }
    const QString &group = reader.group();
    if (!group.isEmpty())
        entry.group = piece(VeskSearchFold::folded(group), &groupPieces);
    if (type == VeskEntryKind::Contact)
        entry.description = foldedText(reader.description(), &entry.descriptionLength);
}

void VeskRosterSearchIndex::Private::compactIfWasteful()
{
    if (unused < 4096 || unused < texts.size() / 2)
        return;
    QString kept;
    kept.reserve(texts.size() - unused);
    for (Entry &entry : entries) {
        const int display = int(kept.size());
        kept.append(texts.constData() + entry.display, entry.displayLength);
        entry.display = display;
        const int description = int(kept.size());
        kept.append(texts.constData() + entry.description, entry.descriptionLength);
        entry.description = description;
    }
    texts = kept;
    unused = 0;
}

bool VeskRosterSearchIndex::Private::matches(const Asking &asking, const Entry &entry) const
{
    // The folded texts are slices of one buffer: the text conditions' scan
    // takes them where they are.
    using VeskTextCondition::contains;
    const char16_t *all = reinterpret_cast<const char16_t *>(texts.constData());
    if (contains(all + entry.display, entry.displayLength, asking.needle, asking.length))
        return true;
    if (!entry.member)
        return false;
    for (const int shared : { entry.account, entry.group }) {
        if (shared < 0)
            continue;
        signed char &has = asking.pieceHas[std::size_t(shared)];
        if (has < 0) {
            const QString &text = pieces.at(shared);
            has = contains(reinterpret_cast<const char16_t *>(text.constData()), int(text.size()),
                asking.needle, asking.length);
        }
        if (has)
            return true;
    }
    return contains(all + entry.description, entry.descriptionLength, asking.needle, asking.length);
}

VeskRosterSearchIndex::VeskRosterSearchIndex()
    : d(std::make_unique<Private>())
{ }

VeskRosterSearchIndex::VeskRosterSearchIndex(const QVector<VeskBuddy> &entries)
    : d(std::make_unique<Private>())
{
    d->entries.resize(std::size_t(entries.size()));
    // About 30 folded characters an entry.
    d->texts.reserve(int(entries.size()) * 32);
    for (int i = 0; i < int(entries.size()); ++i)
        d->read(d->entries[std::size_t(i)], entries.at(i));
}

VeskRosterSearchIndex::~VeskRosterSearchIndex() = default;
VeskRosterSearchIndex::VeskRosterSearchIndex(VeskRosterSearchIndex &&other) noexcept
    : d(std::make_unique<Private>())
{
    d.swap(other.d);
}

VeskRosterSearchIndex &VeskRosterSearchIndex::operator=(VeskRosterSearchIndex &&other) noexcept
{
    d.swap(other.d);
    return *this;
}

int VeskRosterSearchIndex::size() const
{
    return int(d->entries.size());
}

void VeskRosterSearchIndex::append(const VeskBuddy &entry)
{
    d->entries.emplace_back();
    d->read(d->entries.back(), entry);
}

void VeskRosterSearchIndex::update(int i, const VeskBuddy &entry)
{
    if (i < 0 || i >= size())
        return;
    Private::Entry &indexed = d->entries[std::size_t(i)];
    d->unused += indexed.displayLength + indexed.descriptionLength;
    d->read(indexed, entry);
    d->compactIfWasteful();
}

bool VeskRosterSearchIndex::matches(const VeskRosterQuickSearch &search, int i) const
{
    return matching(search, { i }).size() == 1;
}

QVector<int> VeskRosterSearchIndex::matching(
    const VeskRosterQuickSearch &search, const QVector<int> &candidates) const
{
    QVector<int> found;
    const int count = size();
    if (search.isEmpty()) {
        found.reserve(candidates.size());
        for (const int i : candidates) {
            if (i >= 0 && i < count)
                found.append(i);
        }
        return found;
    }
    const QString &needle = search.folded;
    const Private::Asking asking { reinterpret_cast<const char16_t *>(needle.constData()),
        int(needle.size()), std::vector<signed char>(std::size_t(d->pieces.size()), -1) };
    for (const int i : candidates) {
        if (i >= 0 && i < count && d->matches(asking, d->entries[std::size_t(i)]))
            found.append(i);
    }
    return found;
}
