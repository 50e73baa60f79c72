#include "filterdefinition.h"

#include "filterbuilder.h"
#include "jsonwriter.h"
#include "librarysession.h"
#include "refusal.h"
#include "rosterfile.h"
#include "sessiontext_p.h"

#include <veskfield.h>
#include <veskrosterfiltersstack.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

namespace {

void writeChildren(VeskJsonWriter &json, VeskRosterFiltersStack *stack)
{
    json.key("children");
    json.beginArray();
    const QList<VeskRosterFilter *> children
        = stack ? stack->getFilters() : QList<VeskRosterFilter *>();
    for (VeskRosterFilter *child : children) {
        json.beginObject();
        if (child->getType() == VeskRosterFilter::RosterFilterLeaf) {
            json.key("kind");
            json.value(child->id());
            json.key("fields");
            json.beginObject();
            const QList<VeskField> configuration = child->getConfiguration();
            for (const VeskField &field : configuration) {
                json.key(field.getId().toUtf8().constData());
                json.value(field.getKind() == VeskField::ComboBox ? field.getSelectedId()
                                                                  : field.getText());
            }
            json.endObject();
        } else {
            json.key("kind");
            json.value("stack_filter");
            json.key("type");
            json.value(VeskFilterBuilder::typeName(child->getType()));
            writeChildren(json, dynamic_cast<VeskRosterFiltersStack *>(child));
        }
        json.endObject();
    }
    json.endArray();
}

class Reader
{
public:
    explicit Reader(const VeskFilterBuilder &builder)
        : builder(builder)
    { }

    void checkKeys(const QJsonObject &object, const QStringList &valid, const QString &where) const
    {
        for (auto it = object.begin(); it != object.end(); ++it) {
            if (!valid.contains(it.key())) {
                refuse(vtr("unknown key \"%1\" in %2 of the definition; valid keys: %3")
                           .arg(it.key(), where, quotedList(valid)));
            }
        }
    }

    VeskRosterFilter::RosterFilterType type(const QJsonObject &object, const QString &where) const
    {
        const QJsonValue value = object.value(QLatin1String("type"));
        if (!value.isString()) {
            refuse(vtr("%1 of the definition needs a \"type\": \"and\" or \"or\"").arg(where));
        }
        return VeskFilterBuilder::parseType(value.toString());
    }

    std::vector<std::unique_ptr<VeskRosterFilter>> children(
        const QJsonObject &object, const QString &where, int depth) const
    {
        const QJsonValue value = object.value(QLatin1String("children"));
        if (!value.isArray())
            refuse(vtr("%1 of the definition needs \"children\", an array").arg(where));
        const QJsonArray array = value.toArray();
        if (array.isEmpty()) {
            refuse(vtr("%1 of the definition has no children; a stack stored without children "
                       "does not read back as it was (it rejects every contact after a restart, "
                       "or is skipped when nested), so it is never stored")
                       .arg(where));
        }
        std::vector<std::unique_ptr<VeskRosterFilter>> result;
        for (int i = 0; i < array.size(); ++i) {
            const QString childWhere = vtr("child %1 of %2").arg(i).arg(where);
            if (!array.at(i).isObject())
                refuse(vtr("%1 of the definition must be an object").arg(childWhere));
            result.push_back(child(array.at(i).toObject(), childWhere, depth));
        }
        return result;
    }

    std::unique_ptr<VeskRosterFilter> child(
        const QJsonObject &object, const QString &where, int depth) const
    {
        const QJsonValue kind = object.value(QLatin1String("kind"));
        if (!kind.isString())
            refuse(vtr("%1 of the definition needs a \"kind\"").arg(where));
        if (kind.toString() == QLatin1String("stack_filter")) {
            // The bound of every stored filter, checked before recursing
            // further: a definition that could not be stored is not followed.
            if (depth + 1 > VeskLibrarySession::maximumNesting()) {
                refuse(vtr("the definition nests stacks deeper than %1 levels, the bound for a "
                           "stored filter")
                           .arg(VeskLibrarySession::maximumNesting()));
            }
            checkKeys(object,
                { QStringLiteral("kind"), QStringLiteral("type"), QStringLiteral("children") },
                where);
            const VeskRosterFilter::RosterFilterType stackType = type(object, where);
            return builder.nestedStack(stackType, children(object, where, depth + 1));
        }
        checkKeys(object, { QStringLiteral("kind"), QStringLiteral("fields") }, where);
        VeskFilterBuilder::Fields fields;
        const QJsonValue fieldsValue = object.value(QLatin1String("fields"));
        if (!fieldsValue.isUndefined() && !fieldsValue.isObject())
            refuse(vtr("\"fields\" of %1 must be an object of FIELD: VALUE").arg(where));
        const QJsonObject fieldsObject = fieldsValue.toObject();
        for (auto it = fieldsObject.begin(); it != fieldsObject.end(); ++it) {
            if (!it.value().isString()) {
                refuse(vtr("field \"%1\" of %2 must be a string (a combo box's item id or a "
                           "line edit's text)")
                           .arg(it.key(), where));
            }
            fields.append(qMakePair(it.key(), it.value().toString()));
        }
        return builder.leaf(kind.toString(), fields);
    }

private:
    const VeskFilterBuilder &builder;
};

} // namespace

void VeskFilterDefinition::write(VeskJsonWriter &json, const QString &name,
    VeskRosterFilter *filter, const QString &sorter, bool advanced)
{
    json.beginObject();
    json.key("name");
    json.value(name);
    json.key("type");
    json.value(VeskFilterBuilder::typeName(filter->getType()));
    json.key("sorter");
    json.value(sorter);
    json.key("advanced");
    json.value(advanced);
    writeChildren(json, dynamic_cast<VeskRosterFiltersStack *>(filter));
    json.endObject();
}

VeskFilterDefinition VeskFilterDefinition::read(
    const QByteArray &document, const VeskFilterBuilder &builder)
{
    QJsonParseError error;
    const QJsonDocument parsed = QJsonDocument::fromJson(document, &error);
    if (error.error != QJsonParseError::NoError) {
        refuse(vtr("the definition is not valid JSON: %1")
                   .arg(VeskRosterFile::syntaxError(document, error)));
    }
    if (!parsed.isObject())
        refuse(vtr("the definition must be a JSON object, as \"export\" prints it"));
    const QJsonObject object = parsed.object();
    const QString where = vtr("the filter");
    Reader reader(builder);
    reader.checkKeys(object,
        { QStringLiteral("name"), QStringLiteral("type"), QStringLiteral("sorter"),
            QStringLiteral("advanced"), QStringLiteral("children") },
        where);

    VeskFilterDefinition definition;
    const QJsonValue name = object.value(QLatin1String("name"));
    if (!name.isUndefined()) {
        if (!name.isString())
            refuse(vtr("\"name\" of the definition must be a string"));
        definition.name = name.toString();
        definition.hasName = true;
    }
    definition.type = reader.type(object, where);
    const QJsonValue sorter = object.value(QLatin1String("sorter"));
    if (!sorter.isUndefined() && !sorter.isString())
        refuse(vtr("\"sorter\" of the definition must be a string (a method name, or \"\")"));
    definition.sorter = sorter.toString();
    const QJsonValue advanced = object.value(QLatin1String("advanced"));
    if (!advanced.isUndefined() && !advanced.isBool())
        refuse(vtr("\"advanced\" of the definition must be true or false"));
    definition.advanced = advanced.toBool();
    definition.children = reader.children(object, where, 1);
    return definition;
}
