#pragma once

#include <veskrosterquicksearch.h>

#include <QStringList>

// show's quick search: "--search TEXT" (or "--search=TEXT") and
// "--every-entry", taken out of the command's arguments wherever they stand.
// Without them, an empty search: the current filter alone.
VeskRosterQuickSearch takeSearchOptions(QStringList *args);
