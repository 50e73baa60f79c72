#pragma once

#include <veskrosterfilter.h>

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

class VeskFilterBuilder;
class VeskJsonWriter;
class VeskRosterFiltersStack;

// A filter's whole definition as JSON, the form `export` prints and `import`
// reads: {"name", "type", "sorter", "advanced", "children"}, where a leaf child
// is {"kind", "fields"} and a nested stack {"kind": "stack_filter", "type",
// "children"}.
class VeskFilterDefinition
{
public:
    static void write(VeskJsonWriter &json, const QString &name, VeskRosterFilter *filter,
        const QString &sorter, bool advanced);

    // Parses a definition and builds its children through the builder;
    // refuses a malformed document (naming line and column), an unknown kind
    // or field, and any stack without children.
    static VeskFilterDefinition read(const QByteArray &document, const VeskFilterBuilder &builder);

    QString name;
    bool hasName = false;
    VeskRosterFilter::RosterFilterType type = VeskRosterFilter::RosterFilterAnd;
    QString sorter;
    bool advanced = false;
    std::vector<std::unique_ptr<VeskRosterFilter>> children;
};
