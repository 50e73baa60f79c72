// Feeds arbitrary bytes to the roster file reader. A refused document must
// leave the roster empty and explain itself in a message free of control
// characters; an accepted one must hold exactly the contacts its "contacts"
// array lists, and no text with a lone surrogate.

#include <rosterfile.h>
#include <veskbuddy.h>
#include <veskstandin.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <cstdlib>

namespace {

[[noreturn]] void fail(const char *what, const QString &detail)
{
    std::fprintf(stderr, "fuzz_rosterfile: %s\n%s\n", what, qPrintable(detail));
    std::abort();
}

bool isText(const QString &text)
{
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
            ++i;
        else if (c.isSurrogate())
            return false;
    }
    return true;
}

bool isPrintable(const QString &text)
{
    for (const QChar c : text) {
        if (c.unicode() < 0x20 || (c.unicode() >= 0x7F && c.unicode() < 0xA0))
            return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray document
        = QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
    QString error;
    const bool loaded = VeskRosterFile::load(document, &error);
    const QList<VeskBuddy> entries = VeskStandIn::entries();
    if (!loaded) {
        if (!entries.isEmpty())
            fail("a refused roster left entries behind", error);
        if (error.isEmpty() || !isPrintable(error))
            fail("a refusal without a message, or with control characters in it", error);
        return 0;
    }
    int people = 0;
    for (const VeskBuddy &entry : entries) {
        people += entry.getType() == VeskBuddy::TypeContact
            || entry.getType() == VeskBuddy::TypeTemporary;
        if (!isText(entry.getDisplay()))
            fail("an accepted roster holds a lone surrogate", entry.getDisplay());
    }
    const QJsonArray contacts
        = QJsonDocument::fromJson(document).object().value(QLatin1String("contacts")).toArray();
    if (people != contacts.size())
        fail("the roster does not hold the contacts its file lists", QString::number(people));
    VeskStandIn::resetRoster();
    return 0;
}
