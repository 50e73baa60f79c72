#pragma once

// The roster file format of vesk-roster (JSON), loaded into the stand-in
// host; also the bundled sample roster and the synthetic roster generator
// that the benchmarks share with `vesk-roster generate`.

#include "vesk_standin_export.h"

#include <QByteArray>
#include <QString>

namespace VeskRosterFile {

// Resets the stand-in roster and fills it from a roster document. On failure
// returns false, leaves an empty roster and sets *error to a message that names
// the line and column of a JSON error.
VESK_STANDIN_EXPORT bool load(const QByteArray &json, QString *error);

// The sample roster compiled into the program.
VESK_STANDIN_EXPORT QByteArray sampleRoster();

// A synthetic roster document with `contacts` contacts, deterministic for a seed.
VESK_STANDIN_EXPORT QByteArray generate(int contacts, quint32 seed);

} // namespace VeskRosterFile
