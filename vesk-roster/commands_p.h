#pragma once

// The command handlers, one source per area: the roster and listings, filter
// editing, sorting methods.
#include <QString>

class VeskLibrarySession;
class VeskRosterSortersManager;
struct VeskCommandContext;

// The filter or method a typed name means: the name as typed when there is
// one, otherwise the name its escapes spell, since listings show names that
// cannot be typed in escaped form (lone\ud800x).
QString typedFilterName(const VeskLibrarySession &session, const QString &typed);
QString typedMethodName(const VeskRosterSortersManager *sorters, const QString &typed);
// A name as a person reads and types it back.
QString shownName(const QString &name);
// "name ↑, chats_count ↓", or the built-in order when the method has no
// comparators.
QString describeMethod(const VeskRosterSortersManager *sorters, const QString &name);
// Refuses unless the command's change was stored, with what could not be.
void require(bool stored, const QString &error);

namespace VeskCommands {
void show(VeskCommandContext &context);
void filters(VeskCommandContext &context);
void kinds(VeskCommandContext &context);
void sorters(VeskCommandContext &context);
void exportFilter(VeskCommandContext &context);
void generate(VeskCommandContext &context);

void use(VeskCommandContext &context);
void newFilter(VeskCommandContext &context);
void add(VeskCommandContext &context);
void drop(VeskCommandContext &context);
void remove(VeskCommandContext &context);
void rename(VeskCommandContext &context);
void up(VeskCommandContext &context);
void down(VeskCommandContext &context);
void advanced(VeskCommandContext &context);
void importFilter(VeskCommandContext &context);

void sorter(VeskCommandContext &context);
void sorterRemove(VeskCommandContext &context);
void sorterDefault(VeskCommandContext &context);
void sort(VeskCommandContext &context);

void help(VeskCommandContext &context);
} // namespace VeskCommands
