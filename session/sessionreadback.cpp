// Storing with read-back: what the library would write for a stack, and
// whether what a fresh start reads from disk is what the session meant to
// store.
#include "librarysession.h"

#include "sessionfiles_p.h"
#include "sessiontext_p.h"
#include "storedmethod_p.h"

#include <veskaccountfilter.h>
#include <veskdescriptionfilter.h>
#include <veskdisplayfilter.h>
#include <veskfield.h>
#include <veskgroupfilter.h>
#include <veskpresencefilter.h>
#include <veskprotocolfilter.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskstackfile_p.h>
#include <veskstandin.h>
#include <veskxmlnode.h>

#include <QFileInfo>
#include <QXmlStreamReader>

#include <algorithm>

using VeskSessionFiles::writeProblem;

namespace {

int xmlDepth(const QByteArray &bytes)
{
    QXmlStreamReader reader(bytes);
    int depth = 0;
    int deepest = 0;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::StartElement)
            deepest = std::max(deepest, ++depth);
        else if (token == QXmlStreamReader::EndElement)
            --depth;
    }
    return deepest;
}

bool sameFilter(VeskRosterFilter *a, VeskRosterFilter *b)
{
    if (a->getType() != b->getType())
        return false;
    if (a->getType() == VeskRosterFilter::RosterFilterLeaf) {
        if (a->id() != b->id())
            return false;
        const QList<VeskField> left = a->getConfiguration();
        const QList<VeskField> right = b->getConfiguration();
        if (left.size() != right.size())
            return false;
        for (int i = 0; i < left.size(); ++i) {
            const VeskField &x = left.at(i);
            const VeskField &y = right.at(i);
            if (x.getId() != y.getId() || x.getSelectedId() != y.getSelectedId()
                || x.getText() != y.getText())
                return false;
        }
        return true;
    }
    auto *left = dynamic_cast<VeskRosterFiltersStack *>(a);
    auto *right = dynamic_cast<VeskRosterFiltersStack *>(b);
    if (!left || !right)
        return false;
    const QList<VeskRosterFilter *> x = left->getFilters();
    const QList<VeskRosterFilter *> y = right->getFilters();
    if (x.size() != y.size())
        return false;
    for (int i = 0; i < x.size(); ++i) {
        if (!sameFilter(x.at(i), y.at(i)))
            return false;
    }
    return true;
}

bool isHashed(const QString &id)
{
    return VeskStackFile::fileName(id) != VeskStackFile::escapeName(id, false);
}

// The bytes the library would write for stack under id, written nowhere: a
// stack without a name has no file.
QByteArray storedForm(VeskRosterFiltersStack *stack, const QString &id)
{
    const QString name = stack->id();
    stack->setName(QString());
    stack->writeFilterSettings();
    VeskXmlNode node = *stack->getNode();
    stack->setName(name);
    if (isHashed(id))
        node.setAttribute(QStringLiteral("name"), VeskStackFile::escapeName(id, true), QString());
    return node.toByteArray();
}

} // namespace

int VeskLibrarySession::maximumNesting()
{
    // How deep a condition reaches below its stack's element, measured on
    // the stored form of one condition of every kind.
    static const int bound = [] {
        VeskRosterFiltersStack stack(QString(), VeskRosterFilter::RosterFilterAnd);
        stack.appendFilter(new VeskPresenceFilter);
        stack.appendFilter(new VeskDisplayFilter);
        stack.appendFilter(new VeskProtocolFilter);
        stack.appendFilter(new VeskAccountFilter);
        stack.appendFilter(new VeskDescriptionFilter);
        stack.appendFilter(new VeskGroupFilter);
        stack.writeFilterSettings();
        const int below = xmlDepth(stack.getNode()->toByteArray()) - 1;
        return VeskStackFile::MaxDepth - below;
    }();
    return bound;
}

qint64 VeskLibrarySession::maximumFileSize()
{
    return VeskStackFile::MaxFileSize;
}

int VeskLibrarySession::nestingOf(VeskRosterFilter *filter)
{
    auto *stack = dynamic_cast<VeskRosterFiltersStack *>(filter);
    if (!stack || filter->getType() == VeskRosterFilter::RosterFilterLeaf)
        return 0;
    int deepest = 0;
    const QList<VeskRosterFilter *> children = stack->getFilters();
    for (VeskRosterFilter *child : children)
        deepest = std::max(deepest, nestingOf(child));
    return deepest + 1;
}

QString VeskLibrarySession::filePath(const QString &id) const
{
    return VeskStackFile::directory() + QLatin1Char('/') + VeskStackFile::fileName(id);
}

QString VeskLibrarySession::notStored(const QString &id) const
{
    QString reason = writeProblem(VeskStackFile::directory());
    if (reason.isEmpty() && !QFileInfo::exists(filePath(id)))
        reason = vtr("it was not written (a full disk, or a limit on file sizes?)");
    if (reason.isEmpty())
        reason = vtr("it reads back as something else");
    return vtr("could not store the filter \"%1\" in %2: %3").arg(id, filePath(id), reason);
}

bool VeskLibrarySession::verifySettings(QString *error) const
{
    QString reason;
    if (VeskStandIn::settingsStored(&reason))
        return true;
    *error = vtr("could not store the settings in %1").arg(reason);
    return false;
}

bool VeskLibrarySession::verifyStored(
    VeskRosterFiltersStack *stack, const QString &id, QString *error)
{
    // The next start finds the file only under the one name the library
    // gives it, and then reads it into a new stack: so does this check. It
    // expects the method the filter must keep, not one it was lent.
    const VeskStoredMethod stored(stack, storedMethod(stack));
    QString found;
    bool same = VeskStackFile::idForFile(VeskStackFile::fileName(id), &found) && found == id;
    if (same) {
        VeskRosterFiltersStack fresh(id, VeskRosterFilter::RosterFilterDefault);
        same = sameFilter(stack, &fresh) && fresh.getSorter() == stack->getSorter()
            && fresh.isAdvancedMode() == stack->isAdvancedMode();
    }
    if (!same)
        *error = notStored(id);
    return same;
}

bool VeskLibrarySession::verifyRemoved(const QString &id, QString *error) const
{
    const QFileInfo file(filePath(id));
    if (!file.exists() && !file.isSymLink())
        return true;
    QString reason = writeProblem(VeskStackFile::directory());
    if (reason.isEmpty())
        reason = vtr("it is still there");
    *error = vtr("could not remove the file %1 of the filter \"%2\": %3")
                 .arg(file.filePath(), id, reason);
    return false;
}

bool VeskLibrarySession::checkStorable(
    VeskRosterFiltersStack *stack, const QString &id, QString *error)
{
    const VeskStoredMethod stored(stack, storedMethod(stack));
    const int nesting = nestingOf(stack);
    if (nesting > maximumNesting()) {
        *error = vtr("the filter \"%1\" would nest stacks %2 levels deep, and the bound is %3 "
                     "levels")
                     .arg(id)
                     .arg(nesting)
                     .arg(maximumNesting());
        return false;
    }
    const QByteArray bytes = storedForm(stack, id);
    if (bytes.size() > VeskStackFile::MaxFileSize) {
        *error = vtr("the filter \"%1\" would take %2 bytes in its file, and the bound is %3 "
                     "bytes")
                     .arg(id)
                     .arg(bytes.size())
                     .arg(VeskStackFile::MaxFileSize);
        return false;
    }
    // Read back before anything is written: text that the file cannot keep
    // (an unpaired surrogate, a control character) is refused here.
    bool same = VeskStackFile::isAcceptable(bytes);
    if (same) {
        VeskXmlNode parsed(QString(), QString(), nullptr);
        parsed.setContent(bytes);
        VeskRosterFiltersStack probe(QString(), VeskRosterFilter::RosterFilterDefault);
        *probe.getNode() = parsed;
        probe.readFilterSettings();
        same = sameFilter(stack, &probe)
            && parsed.getAttribute(QStringLiteral("sort"), QString()) == stack->getSorter()
            && (parsed.getAttribute(QStringLiteral("advanced"), QString()) == QLatin1String("t"))
                == stack->isAdvancedMode();
    }
    if (!same) {
        *error = vtr("the filter \"%1\" holds text that its file cannot keep as it is (a control "
                     "character or an unpaired surrogate); nothing was stored")
                     .arg(id);
    }
    return same;
}

QString VeskLibrarySession::storedMethod(VeskRosterFiltersStack *stack) const
{
    return followingDefault.contains(stack) ? QString() : stack->getSorter();
}

void VeskLibrarySession::noteStoredMethod(VeskRosterFiltersStack *stack, const QString &method)
{
    if (method.isEmpty())
        followingDefault.insert(stack);
    else
        followingDefault.remove(stack);
}

void VeskLibrarySession::findFiltersWithoutMethod()
{
    followingDefault.clear();
    VeskRosterFiltersStack *current = stack(filtersManager->getCurrentFilterName());
    for (VeskRosterFiltersStack *stack : qAsConst(stacks)) {
        // Start-up has lent the current filter the default method when its
        // file names none: only the file tells.
        QString method = stack->getSorter();
        if (stack == current) {
            const VeskRosterFiltersStack fresh(stack->id(), VeskRosterFilter::RosterFilterDefault);
            method = fresh.getSorter();
        }
        if (method.isEmpty())
            followingDefault.insert(stack);
    }
}
