#pragma once

// The mark of the few private functions that the programs' session, built
// on the library, reaches in the shared library: exported so that nothing
// of the library has to be compiled a second time, yet declared only in _p.h
// headers, which are never installed. They are no API: they change with the
// library, and a client must not use them.

#include "vesk_roster_filter_export.h"

#define VESK_ROSTER_FILTER_PRIVATE_EXPORT VESK_ROSTER_FILTER_EXPORT
