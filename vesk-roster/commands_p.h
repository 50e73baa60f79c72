#pragma once

// The command handlers, one source per area: the roster and listings, filter
// editing, sorting methods.
struct VeskCommandContext;

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
