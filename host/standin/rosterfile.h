#pragma once

// The roster file format of vesk-roster (JSON), loaded into the stand-in
// host; also the bundled sample roster and the synthetic roster generator
// that the benchmarks share with `vesk-roster generate`.

#include "vesk_standin_export.h"

#include <QByteArray>
#include <QString>

struct QJsonParseError;

namespace VeskRosterFile {

// Resets the stand-in roster and fills it from a roster document. On failure
// returns false, leaves an empty roster and sets *error to a message that names
// the line and column of a syntax error, or the JSON path of a value that is
// not what the format allows ("contacts[17].group: no group ...").
VESK_STANDIN_EXPORT bool load(const QByteArray &json, QString *error);

// "line L, column C: " and Qt's description of a parse error in a JSON
// document; columns count characters. Shared by every JSON file the programs read.
VESK_STANDIN_EXPORT QString syntaxError(const QByteArray &json, const QJsonParseError &error);

// The sample roster compiled into the program.
VESK_STANDIN_EXPORT QByteArray sampleRoster();

// A synthetic roster document with `contacts` contacts, deterministic for a seed.
VESK_STANDIN_EXPORT QByteArray generate(int contacts, quint32 seed);

} // namespace VeskRosterFile
