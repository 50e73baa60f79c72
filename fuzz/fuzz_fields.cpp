// Feeds arbitrary field lists to every leaf kind: setConfiguration, filter,
// display, getConfiguration, and the configuration's round trip through
// VeskField::toXml / fromXml and the bytes of a file. Whatever the fields
// hold, the filter restored from its stored configuration must answer like
// the original; the remaining bytes are parsed as a stored fields node.

#include "reliabilitysupport.h"

#include <veskfield.h>
#include <veskrosterfilter.h>
#include <veskrosterfiltersmanager.h>
#include <veskstandin.h>
#include <veskxmlnode.h>

#include <QTemporaryDir>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

using namespace VeskReliability;

namespace {

const QStringList kinds { QStringLiteral("display"), QStringLiteral("description"),
    QStringLiteral("group"), QStringLiteral("account"), QStringLiteral("protocol"),
    QStringLiteral("presence") };

// Ids and values the filters and the roster know, so that the fuzzer reaches
// the interesting branches without having to guess them.
const QStringList knownIds { QStringLiteral("is_or_not"), QStringLiteral("display_filter_regexp"),
    QStringLiteral("description_filter_regexp"), QStringLiteral("group_filter_presence"),
    QStringLiteral("account_filter_presence"), QStringLiteral("protocol_filter_presence"),
    QStringLiteral("presence_filter_presence") };
const QStringList knownValues { QStringLiteral("is"), QStringLiteral("is not"),
    QStringLiteral("contains"), QStringLiteral("does not contain"), QStringLiteral("match exactly"),
    QStringLiteral("is not empty"), QStringLiteral("Friends"), QStringLiteral("Colleagues"),
    QStringLiteral("me@work"), QStringLiteral("me@home"), QStringLiteral("chat"),
    QStringLiteral("mail"), QStringLiteral("online"), QStringLiteral("away"), QStringLiteral("dnd"),
    QStringLiteral("Alice"), QString() };

// Owned here so that the directory goes when the fuzzer exits normally.
std::unique_ptr<QTemporaryDir> scratch;

[[noreturn]] void fail(const char *what, const QString &before, const QString &after)
{
    std::fprintf(stderr, "fuzz_fields: %s\n--- before\n%s\n--- after\n%s\n", what,
        qPrintable(before), qPrintable(after));
    std::abort();
}

QString takeText(FuzzedDataProvider &provider, const QStringList &known)
{
    if (provider.ConsumeBool())
        return known.at(provider.ConsumeIntegralInRange<int>(0, known.size() - 1));
    const std::string bytes = provider.ConsumeRandomLengthString(64);
    if (provider.ConsumeBool())
        return QString::fromUtf8(bytes.data(), int(bytes.size()));
    // Raw UTF-16 code units: lone surrogates, NUL and non-characters included.
    return QString(reinterpret_cast<const QChar *>(bytes.data()), int(bytes.size() / 2));
}

VeskField takeField(FuzzedDataProvider &provider)
{
    const QString id = takeText(provider, knownIds);
    if (provider.ConsumeBool())
        return VeskField::lineEdit(
            QString(), id, takeText(provider, knownValues), 32767, QString());
    QStringList ids;
    QStringList labels;
    const int items = provider.ConsumeIntegralInRange<int>(0, 4);
    for (int i = 0; i < items; ++i) {
        ids.append(takeText(provider, knownValues));
        labels.append(takeText(provider, knownValues));
    }
    const QString selected = provider.ConsumeBool() && !ids.isEmpty()
        ? ids.at(provider.ConsumeIntegralInRange<int>(0, ids.size() - 1))
        : takeText(provider, knownValues);
    return VeskField::comboBox(QString(), id, ids, labels, selected, QString());
}

using FilterPtr = std::unique_ptr<VeskRosterFilter>;

FilterPtr create(const QString &kind)
{
    return FilterPtr(VeskRosterFiltersManager::getInstance()->createFilter(
        kind, VeskRosterFilter::RosterFilterLeaf));
}

// A fresh filter of the same kind, configured from what `source` stores,
// through the bytes a stack file would hold.
FilterPtr restore(const QString &kind, const VeskRosterFilter &source)
{
    const QByteArray bytes = VeskField::toXml(source.getConfiguration()).toByteArray();
    VeskXmlNode parsed;
    parsed.setContent(bytes);
    FilterPtr restored = create(kind);
    restored->setConfiguration(VeskField::fromXml(restored->getConfiguration(), parsed));
    return restored;
}

QString values(const VeskRosterFilter &filter)
{
    QStringList parts;
    const QList<VeskField> fields = filter.getConfiguration();
    for (const VeskField &field : fields)
        parts.append(field.getId() + QLatin1Char('=') + field.getSelectedId() + field.getText());
    return parts.join(QLatin1Char(';'));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    scratch.reset(new QTemporaryDir);
    VeskStandIn::setSettingsDir(scratch->path());
    buildSmallRoster();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzedDataProvider provider(data, size);
    const QString kind = kinds.at(provider.ConsumeIntegralInRange<int>(0, kinds.size() - 1));
    QList<VeskField> fields;
    const int count = provider.ConsumeIntegralInRange<int>(0, 6);
    for (int i = 0; i < count; ++i)
        fields.append(takeField(provider));

    FilterPtr filter = create(kind);
    if (!filter)
        return 0; // this kind does not exist yet
    if (filter->getType() != VeskRosterFilter::RosterFilterLeaf || filter->id() != kind)
        fail("the factory made the wrong filter", kind, filter->id());
    filter->setConfiguration(fields);
    filter->name();
    filter->display();

    // Labels come back from the roster, not from the stored fields, so the
    // first restore may show other texts; from then on nothing may change.
    FilterPtr restored = restore(kind, *filter);
    if (values(*restored) != values(*filter) || answers(restored.get()) != answers(filter.get()))
        fail("a stored configuration does not restore the filter",
            values(*filter) + QLatin1Char(' ') + answers(filter.get()),
            values(*restored) + QLatin1Char(' ') + answers(restored.get()));
    FilterPtr again = restore(kind, *restored);
    if (describe(again.get(), false) != describe(restored.get(), false))
        fail("restoring twice changes the filter", describe(restored.get(), false),
            describe(again.get(), false));

    // Whatever a hostile file holds where the fields node belongs.
    const std::vector<char> rest = provider.ConsumeRemainingBytes<char>();
    VeskXmlNode stored;
    stored.setContent(QByteArray(rest.data(), int(rest.size())));
    FilterPtr hostile = create(kind);
    hostile->setConfiguration(VeskField::fromXml(hostile->getConfiguration(), stored));
    answers(hostile.get());
    hostile->display();
    return 0;
}
