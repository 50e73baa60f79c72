#pragma once

#include <veskbuddy.h>

#include <vector>

namespace benchmark {
class State;
}

// The synthetic rosters of `vesk-roster generate`, loaded into the stand-in
// host. One roster is loaded at a time; loading another size replaces it, and
// with it every account and protocol of the host.
namespace BenchRoster {

// The seed of every generated roster, so that runs compare like with like.
constexpr quint32 seed = 20261123;

// Loads the roster of `contacts` contacts unless it is the one loaded, and
// returns its entries (groups, contacts and temporary contacts) in roster
// order. Returns an empty list when the roster cannot be built.
const std::vector<VeskBuddy> &load(int contacts);

// The roster of state.range(0) contacts; null, with the benchmark marked as
// failed, when it cannot be built.
const std::vector<VeskBuddy> *load(benchmark::State &state);

} // namespace BenchRoster
