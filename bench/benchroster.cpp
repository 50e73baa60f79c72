#include "benchroster.h"

#include <rosterfile.h>
#include <veskstandin.h>

#include <benchmark/benchmark.h>

namespace {

int loadedContacts = -1;
std::vector<VeskBuddy> loadedEntries;

} // namespace

const std::vector<VeskBuddy> &BenchRoster::load(int contacts)
{
    if (contacts == loadedContacts)
        return loadedEntries;
    loadedEntries.clear();
    if (!VeskRosterFile::load(VeskRosterFile::generate(contacts, seed), nullptr))
        return loadedEntries;
    const QList<VeskBuddy> entries = VeskStandIn::entries();
    loadedEntries.assign(entries.cbegin(), entries.cend());
    loadedContacts = contacts;
    return loadedEntries;
}

const std::vector<VeskBuddy> *BenchRoster::load(benchmark::State &state)
{
    const std::vector<VeskBuddy> &entries = load(int(state.range(0)));
    if (entries.empty()) {
        state.SkipWithError("the roster generator gave no roster");
        return nullptr;
    }
    return &entries;
}
