#include "librarysession.h"

#include "sessiontext_p.h"
#include "settingsjournal.h"

#include <veskaccountfilter.h>
#include <veskdescriptionfilter.h>
#include <veskdisplayfilter.h>
#include <veskfield.h>
#include <veskgroupfilter.h>
#include <veskpresencefilter.h>
#include <veskprotocolfilter.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrostersortersmanager.h>
#include <vesksettingslock.h>
#include <vesksettingsmanager.h>
#include <veskstackfile_p.h>
#include <veskstandin.h>
#include <veskxmlnode.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString defaultId = QStringLiteral("default");

QString systemError(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

// Creates the missing directories of path, recording each one this process
// made, so that a refusal can take them away again.
bool createDirectories(const QString &path, VeskSettingsJournal *journal, QString *reason)
{
    QStringList missing;
    for (QString dir = path; !QFileInfo::exists(dir) && !QFileInfo(dir).isSymLink();) {
        missing.prepend(dir);
        const QString parent = QFileInfo(dir).path();
        if (parent == dir)
            break;
        dir = parent;
    }
    for (const QString &dir : qAsConst(missing)) {
        if (::mkdir(QFile::encodeName(dir).constData(), 0777) == 0) {
            journal->recordCreatedDirectory(dir);
        } else if (errno != EEXIST) {
            *reason = systemError(errno);
            return false;
        }
    }
    return true;
}

// Why nothing can be written into dir, or an empty text when a file can.
QString writeProblem(const QString &dir)
{
    QString target = dir;
    while (!QFileInfo::exists(target) && QFileInfo(target).path() != target)
        target = QFileInfo(target).path();
    if (!QFileInfo(target).isDir())
        return systemError(ENOTDIR);
    QByteArray probe = QFile::encodeName(target) + "/.vesk-probe-XXXXXX";
    const int fd = ::mkstemp(probe.data());
    if (fd < 0)
        return systemError(errno);
    ::close(fd);
    ::unlink(probe.constData());
    return QString();
}

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

// Why the library reads the file at path as something else than what was
// stored, or an empty text when it reads it fully.
QString diagnose(const QString &path)
{
    const QFileInfo info(path);
    if (!info.isFile())
        return vtr("it is not a regular file");
    if (info.size() > VeskStackFile::MaxFileSize) {
        return vtr("it is too big: %1 bytes, and the bound is %2 bytes")
            .arg(info.size())
            .arg(VeskStackFile::MaxFileSize);
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return vtr("it cannot be read: %1").arg(file.errorString());
    QXmlStreamReader reader(file.read(VeskStackFile::MaxFileSize + 1));
    int depth = 0;
    bool rootSeen = false;
    QString type;
    int conditions = 0;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::DTD:
        case QXmlStreamReader::EntityReference:
            return vtr("it holds a document type declaration or an entity reference, which "
                       "are never read");
        case QXmlStreamReader::StartElement:
            if (!rootSeen) {
                if (reader.name() != QLatin1String("stack_filter")) {
                    return vtr("its root element is \"%1\", not \"stack_filter\"")
                        .arg(reader.name().toString());
                }
                rootSeen = true;
                type = reader.attributes().value(QLatin1String("type")).toString();
            } else if (depth == 1) {
                ++conditions;
            }
            if (++depth > VeskStackFile::MaxDepth) {
                return vtr("it nests deeper than the bound of %1 stack levels")
                    .arg(VeskLibrarySession::maximumNesting());
            }
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        default:
            break;
        }
    }
    if (reader.hasError()) {
        return vtr("it is not well-formed XML: %1 (line %2, column %3)")
            .arg(reader.errorString())
            .arg(reader.lineNumber())
            .arg(reader.columnNumber());
    }
    if (!rootSeen)
        return vtr("it is empty");
    if (type != QLatin1String("AND") && type != QLatin1String("OR"))
        return vtr("its type is \"%1\", neither AND nor OR").arg(type);
    if (conditions == 0)
        return vtr("it holds no conditions");
    return QString();
}

} // namespace

VeskLibrarySession::VeskLibrarySession() = default;

VeskLibrarySession::~VeskLibrarySession()
{
    close();
}

QString VeskLibrarySession::defaultSettingsDir(QString *error)
{
    const QString config = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (!config.isEmpty() && QDir::isAbsolutePath(config))
        return config + QLatin1String("/vesk-roster");
    const QString home = qEnvironmentVariable("HOME");
    if (!home.isEmpty() && QDir::isAbsolutePath(home))
        return home + QLatin1String("/.config/vesk-roster");
    *error = vtr("there is no settings directory: neither XDG_CONFIG_HOME nor HOME is set to an "
                 "absolute path; give one with --settings DIR");
    return QString();
}

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

bool VeskLibrarySession::open(
    const QString &settingsDir, Access mode, QString *error, int lockTimeoutMs)
{
    close();
    directory = QDir::cleanPath(QDir(settingsDir).absolutePath());
    access = mode;
    journal = std::make_unique<VeskSettingsJournal>();
    lock = std::make_unique<VeskSettingsLock>();

    const QFileInfo place(directory);
    if ((place.exists() || place.isSymLink()) && !place.isDir()) {
        *error = vtr("the settings directory %1 is not a directory").arg(directory);
        return false;
    }
    if (mode == ReadOnly) {
        // Nothing to read and nothing to lock in a directory that is not
        // there; the session reads empty settings.
        if (place.exists()
            && !lock->lock(directory, VeskSettingsLock::Shared, lockTimeoutMs, error))
            return false;
        return startLibrary(error);
    }

    QString reason;
    if (!createDirectories(directory, journal.get(), &reason)) {
        journal->restore(nullptr);
        *error = vtr("cannot create the settings directory %1: %2").arg(directory, reason);
        return false;
    }
    if (!lock->lock(directory, VeskSettingsLock::Exclusive, lockTimeoutMs, error)) {
        // A directory made here may be another run's by now: it stays.
        journal->clear();
        return false;
    }
    const QString settingsFile = directory + QLatin1String("/settings.dat");
    const QString filterDir = directory + QLatin1String("/roster_filters");
    if (QFileInfo::exists(settingsFile) && !QFileInfo(settingsFile).isFile()) {
        *error = vtr("the settings file %1 is not a regular file").arg(settingsFile);
    } else if (!(reason = writeProblem(directory)).isEmpty()) {
        *error = vtr("cannot write to the settings directory %1: %2").arg(directory, reason);
    } else if (QFileInfo::exists(filterDir) && !(reason = writeProblem(filterDir)).isEmpty()) {
        *error = vtr("cannot write to the filter directory %1: %2").arg(filterDir, reason);
    } else {
        journal->recordFile(settingsFile);
        if (startLibrary(error))
            return true;
    }
    rollback();
    close();
    return false;
}

bool VeskLibrarySession::startLibrary(QString *error)
{
    VeskStandIn::setSettingsPersistent(access == ReadWrite);
    VeskStandIn::setSettingsDir(directory);
    filtersManager = VeskRosterFiltersManager::getInstance();
    sortersManager = VeskRosterSortersManager::getInstance();
    const QStringList ids = filtersManager->getFilterNames();
    for (const QString &id : ids) {
        VeskRosterFiltersStack *stack = filtersManager->getStackFilter(id);
        if (stack && !stacks.contains(stack))
            stacks.append(stack);
    }

    // The manager hands out the default filter only while it is current, and
    // making it current stores settings: switch there and back in memory,
    // then take the settings from the file again.
    const QString current = filtersManager->getCurrentFilterName();
    if (current == defaultId) {
        defaultFilter = filtersManager->getCurrentFilter();
    } else {
        VeskStandIn::setSettingsPersistent(false);
        filtersManager->setCurrentFilter(defaultId);
        defaultFilter = filtersManager->getCurrentFilter();
        filtersManager->setCurrentFilter(current);
        VeskStandIn::setSettingsPersistent(access == ReadWrite);
        VeskStandIn::setSettingsDir(directory);
    }
    findUnreadable();
    // Start-up stores the current filter when the stored one is gone.
    return access == ReadOnly || verifySettings(error);
}

void VeskLibrarySession::findUnreadable()
{
    unreadable.clear();
    for (VeskRosterFiltersStack *stack : qAsConst(stacks)) {
        const QString id = stack->id();
        const VeskRosterFilter::RosterFilterType type = stack->getType();
        if (!stack->getFilters().isEmpty()
            && (type == VeskRosterFilter::RosterFilterAnd
                || type == VeskRosterFilter::RosterFilterOr))
            continue;
        const QString path = filePath(id);
        QString reason = diagnose(path);
        if (reason.isEmpty())
            reason = vtr("it reads as a filter without conditions");
        unreadable.append({ id, path, reason });
    }
    // Files that the library passes over without a word: not regular files,
    // and names it never writes.
    const QDir dir(VeskStackFile::directory());
    const QStringList names = dir.entryList(QDir::Files | QDir::System, QDir::Name);
    for (const QString &name : names) {
        QString id;
        const QString path = dir.filePath(name);
        if (VeskStackFile::idForFile(name, &id)) {
            if (id != defaultId && !QFileInfo(path).isFile())
                unreadable.append({ id, path, vtr("it is not a regular file") });
            continue;
        }
        QString reason = diagnose(path);
        if (reason.isEmpty())
            reason = vtr("its name is not one under which a filter is stored");
        unreadable.append({ QString(), path, reason });
    }
}

void VeskLibrarySession::close()
{
    for (VeskRosterFiltersStack *stack : qAsConst(stacks)) {
        if (stack != defaultFilter)
            delete stack;
    }
    stacks.clear();
    delete defaultFilter;
    defaultFilter = nullptr;
    delete filtersManager;
    filtersManager = nullptr;
    delete sortersManager;
    sortersManager = nullptr;
    unreadable.clear();
    if (lock)
        lock->unlock();
    journal.reset();
    VeskStandIn::setSettingsPersistent(true);
}

bool VeskLibrarySession::rollback(QString *error)
{
    if (!journal)
        return true;
    QString failed;
    const bool restored = journal->restore(&failed);
    journal->clear();
    if (!restored && error)
        *error = vtr("could not put back %1").arg(failed);
    return restored;
}

bool VeskLibrarySession::commit(QString *error)
{
    if (access == ReadWrite && isOpen() && !verifySettings(error))
        return false;
    if (journal)
        journal->clear();
    return true;
}

VeskRosterFilter *VeskLibrarySession::filter(const QString &id) const
{
    if (id == defaultId)
        return defaultFilter;
    return filtersManager->getStackFilter(id);
}

bool VeskLibrarySession::isRegistered(const QString &id) const
{
    return id == defaultId || filtersManager->getStackFilter(id);
}

VeskRosterFiltersStack *VeskLibrarySession::stack(const QString &id) const
{
    return filtersManager->getStackFilter(id);
}

bool VeskLibrarySession::isEditable(const QString &id, QString *error) const
{
    if (id == defaultId) {
        *error = vtr("the default filter cannot be edited");
        return false;
    }
    if (!stack(id)) {
        QStringList names = filtersManager->getFilterNames();
        names.removeAll(defaultId);
        *error = vtr("unknown filter \"%1\"; filters you can edit: %2").arg(id, quotedList(names));
        return false;
    }
    for (const Unreadable &file : unreadable) {
        if (file.id == id) {
            *error = vtr("the filter \"%1\" could not be read from %2 (%3); an edit would store "
                         "what little was read in its place, so it can only be removed or "
                         "replaced")
                         .arg(id, file.path, file.reason);
            return false;
        }
    }
    return true;
}

void VeskLibrarySession::releaseLock()
{
    if (lock)
        lock->unlock();
}

bool VeskLibrarySession::isWritable(QString *error) const
{
    if (access == ReadWrite && isOpen() && lock && lock->isLocked())
        return true;
    *error = vtr("the settings directory %1 is open for reading only").arg(directory);
    return false;
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
    // gives it, and then reads it into a new stack: so does this check.
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

VeskRosterFiltersStack *VeskLibrarySession::createStack(
    const QString &name, VeskRosterFilter::RosterFilterType type, QString *error)
{
    if (name.isEmpty()) {
        *error = vtr("a filter name cannot be empty");
        return nullptr;
    }
    if (isRegistered(name)) {
        *error = vtr("a filter named \"%1\" already exists").arg(name);
        return nullptr;
    }
    VeskRosterFiltersStack *stack = filtersManager->addStackFilter(name, type);
    if (!stack) {
        *error = vtr("the library did not create the filter \"%1\"").arg(name);
        return nullptr;
    }
    stacks.append(stack);
    return stack;
}

bool VeskLibrarySession::storeStack(VeskRosterFiltersStack *stack, QString *error)
{
    if (!isWritable(error))
        return false;
    const QString id = stack->id();
    if (!checkStorable(stack, id, error))
        return false;
    journal->recordMissingDirectories(VeskStackFile::directory());
    journal->recordFile(filePath(id));
    stack->writeFilterSettings();
    return verifyStored(stack, id, error);
}

bool VeskLibrarySession::storeDisplayOrder(QString *error)
{
    // The manager stores the order only when a filter moves up or down; a
    // new or removed filter would otherwise be listed by the file system's
    // order after the next start.
    VeskSettingsManager::getInstance()->writeGlobalSetting(
        VeskField::comboBox(QString(), QStringLiteral("filters"), filtersManager->getFilterNames(),
            QStringList(), QString(), QString()));
    return verifySettings(error);
}

bool VeskLibrarySession::storeNewStack(VeskRosterFiltersStack *stack, QString *error)
{
    return storeStack(stack, error) && storeDisplayOrder(error);
}

bool VeskLibrarySession::replaceStack(
    const QString &id, VeskRosterFiltersStack *replacement, QString *error)
{
    VeskRosterFiltersStack *old = stack(id);
    if (!old) {
        *error = vtr("unknown filter \"%1\"").arg(id);
        return false;
    }
    if (!isWritable(error))
        return false;
    if (!checkStorable(replacement, id, error))
        return false;
    // One rename replaces the old file by the new one; only then does the
    // registered filter take the new content, read from that file.
    journal->recordFile(filePath(id));
    replacement->setName(id);
    replacement->writeFilterSettings();
    const bool stored = verifyStored(replacement, id, error);
    replacement->setName(QString());
    if (!stored)
        return false;
    old->readFilterSettings();
    unreadable.erase(std::remove_if(unreadable.begin(), unreadable.end(),
                         [&](const Unreadable &file) { return file.id == id; }),
        unreadable.end());
    return true;
}

bool VeskLibrarySession::removeStack(const QString &id, QString *error)
{
    VeskRosterFiltersStack *removed = stack(id);
    if (!removed) {
        *error = vtr("unknown filter \"%1\"").arg(id);
        return false;
    }
    if (!isWritable(error))
        return false;
    journal->recordFile(filePath(id));
    const bool wasCurrent = filtersManager->getCurrentFilter() == removed;
    filtersManager->removeStackFilter(id);
    stacks.removeAll(removed);
    delete removed;
    // Stored as well, so that a later filter of the same name does not
    // become current by surprise.
    if (wasCurrent)
        filtersManager->setCurrentFilter(defaultId);
    return verifyRemoved(id, error) && storeDisplayOrder(error);
}

bool VeskLibrarySession::renameStack(const QString &oldId, const QString &newId, QString *error)
{
    VeskRosterFiltersStack *renamed = stack(oldId);
    if (!renamed) {
        *error = vtr("unknown filter \"%1\"").arg(oldId);
        return false;
    }
    if (newId.isEmpty()) {
        *error = vtr("a filter name cannot be empty");
        return false;
    }
    if (isRegistered(newId)) {
        *error = vtr("a filter named \"%1\" already exists").arg(newId);
        return false;
    }
    if (!isWritable(error))
        return false;
    if (!checkStorable(renamed, newId, error))
        return false;
    journal->recordFile(filePath(oldId));
    journal->recordFile(filePath(newId));
    // The library moves the file and stores the display order, and the
    // current filter's new name when it is current.
    filtersManager->rename(oldId, newId);
    if (filtersManager->getStackFilter(newId) != renamed) {
        *error = vtr("the library did not rename \"%1\" to \"%2\"").arg(oldId, newId);
        return false;
    }
    return verifyStored(renamed, newId, error) && verifyRemoved(oldId, error)
        && verifySettings(error);
}

bool VeskLibrarySession::moveUp(const QString &id, QString *error)
{
    if (!isWritable(error))
        return false;
    if (id == defaultId) {
        *error = vtr("the default filter always stays first");
        return false;
    }
    const int at = filtersManager->getFilterNames().indexOf(id);
    if (at < 0) {
        *error = vtr("unknown filter \"%1\"").arg(id);
        return false;
    }
    if (at <= 1) {
        *error = vtr("\"%1\" is already the first filter after the default filter, which always "
                     "stays first")
                     .arg(id);
        return false;
    }
    filtersManager->upFilter(id);
    return verifySettings(error);
}

bool VeskLibrarySession::moveDown(const QString &id, QString *error)
{
    if (!isWritable(error))
        return false;
    if (id == defaultId) {
        *error = vtr("the default filter always stays first");
        return false;
    }
    const QStringList order = filtersManager->getFilterNames();
    const int at = order.indexOf(id);
    if (at < 0) {
        *error = vtr("unknown filter \"%1\"").arg(id);
        return false;
    }
    if (at + 1 >= order.size()) {
        *error = vtr("\"%1\" is already the last filter").arg(id);
        return false;
    }
    filtersManager->downFilter(id);
    return verifySettings(error);
}

bool VeskLibrarySession::setCurrentFilter(const QString &id, QString *error)
{
    if (!isWritable(error))
        return false;
    if (!isRegistered(id)) {
        *error = vtr("unknown filter \"%1\"").arg(id);
        return false;
    }
    filtersManager->setCurrentFilter(id);
    return verifySettings(error);
}

bool VeskLibrarySession::storeSorter(
    const QString &name, const QStringList &ids, const QStringList &ascending, QString *error)
{
    if (!isWritable(error))
        return false;
    if (name.isEmpty()) {
        *error = vtr("a sorting method's name cannot be empty");
        return false;
    }
    // A method is read with one direction per comparator; both are stored
    // before anything makes it current.
    sortersManager->addSorter(name, ids);
    sortersManager->setSorterAscending(name, ascending);
    return verifySettings(error);
}

bool VeskLibrarySession::removeSorter(const QString &name, QString *error)
{
    if (!isWritable(error))
        return false;
    if (!sortersManager->getSorters().contains(name)) {
        *error = vtr("unknown sorting method \"%1\"").arg(name);
        return false;
    }
    sortersManager->removeSorter(name);
    // The library would go on announcing a method that is gone as the
    // default, and no name could bring back the built-in order.
    if (sortersManager->getDefault() == name)
        sortersManager->setDefault(QString());
    return verifySettings(error);
}

bool VeskLibrarySession::setDefaultSorter(const QString &name, QString *error)
{
    if (!isWritable(error))
        return false;
    if (!name.isEmpty() && !sortersManager->getSorters().contains(name)) {
        *error = vtr("unknown sorting method \"%1\"").arg(name);
        return false;
    }
    sortersManager->setDefault(name);
    return verifySettings(error);
}

bool VeskLibrarySession::sortCurrentFilter(const QString &method, QString *error)
{
    if (!isWritable(error))
        return false;
    if (!sortersManager->getSorters().contains(method)) {
        *error = vtr("unknown sorting method \"%1\"").arg(method);
        return false;
    }
    const QString current = filtersManager->getCurrentFilterName();
    VeskRosterFiltersStack *currentStack = stack(current);
    if (currentStack && !isEditable(current, error))
        return false;
    // The method is kept by the current filter: a stack keeps it in its
    // file, the default filter as the default method.
    sortersManager->setCurrentSorter(method);
    if (currentStack && !storeStack(currentStack, error))
        return false;
    return verifySettings(error);
}
