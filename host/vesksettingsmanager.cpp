#include "vesksettingsmanager.h"

#include "veskhost_p.h"

#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QStandardPaths>

#include <cerrno>

VeskSettingsManagerPrivate *VeskSettingsManagerPrivate::settingsMgrPrivInstance = nullptr;

namespace {

VeskField readFrom(const VeskSettingsStore &store, const VeskField &field)
{
    VeskField result = field;
    const QString key = field.getId();
    if (!store.contains(key))
        return result;
    if (field.getKind() == VeskField::ComboBox) {
        if (store.isList(key))
            result.setComboBoxItems(store.list(key), field.getComboBoxLabels());
    } else if (!store.isList(key)) {
        result.setText(store.text(key));
    }
    return result;
}

void writeTo(VeskSettingsStore &store, const VeskField &field)
{
    if (field.getKind() == VeskField::ComboBox)
        store.setList(field.getId(), field.getComboBoxIds());
    else
        store.setText(field.getId(), field.getText());
}

} // namespace

VeskSettingsStore &VeskSettingsStore::self()
{
    static VeskSettingsStore store;
    return store;
}

void VeskSettingsStore::open(const QString &dir)
{
    settingsDir = QDir::cleanPath(QDir(dir).absolutePath());
    if (!settingsDir.endsWith(QLatin1Char('/')))
        settingsDir += QLatin1Char('/');
    if (persistent)
        QDir().mkpath(settingsDir);
    saveError.clear();
    load();
}

void VeskSettingsStore::ensureOpen() const
{
    if (!settingsDir.isEmpty())
        return;
    QString base = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    if (base.isEmpty())
        base = QDir::homePath() + QLatin1String("/.config");
    const_cast<VeskSettingsStore *>(this)->open(base + QLatin1String("/vesk-host"));
}

QString VeskSettingsStore::dir() const
{
    ensureOpen();
    return settingsDir;
}

QString VeskSettingsStore::filePath() const
{
    return dir() + QLatin1String("settings.dat");
}

// The file is a QDataStream of a magic number, a version and the values:
// unlike a text format it keeps any string exactly, lone surrogates and a
// leading U+FEFF included.
namespace {
const quint32 storeMagic = 0x56534b53; // "VSKS"
const quint32 storeVersion = 1;
} // namespace

bool VeskSettingsStore::readFile(QHash<QString, Value> *read, QString *error) const
{
    read->clear();
    QFile file(filePath());
    if (!file.exists())
        return true;
    if (!file.open(QIODevice::ReadOnly)) {
        *error = file.errorString();
        return false;
    }
    QDataStream in(&file);
    in.setVersion(QDataStream::Qt_5_15);
    quint32 magic = 0;
    quint32 version = 0;
    in >> magic >> version;
    if (magic != storeMagic || version != storeVersion) {
        *error = QStringLiteral("not a settings file of this format");
        return false;
    }
    QHash<QString, Value> loaded;
    while (!in.atEnd() && in.status() == QDataStream::Ok) {
        QString key;
        Value value;
        in >> key >> value.isList >> value.text >> value.list;
        if (in.status() == QDataStream::Ok)
            loaded.insert(key, value);
    }
    if (in.status() != QDataStream::Ok) {
        *error = QStringLiteral("the file is cut short");
        return false;
    }
    *read = loaded;
    return true;
}

void VeskSettingsStore::load()
{
    QString error;
    if (!readFile(&values, &error))
        values.clear();
}

void VeskSettingsStore::save()
{
    if (!persistent)
        return;
    QByteArray bytes;
    {
        QDataStream out(&bytes, QIODevice::WriteOnly);
        out.setVersion(QDataStream::Qt_5_15);
        out << storeMagic << storeVersion;
        // Sorted keys: the same settings always give the same bytes.
        QStringList keys = values.keys();
        keys.sort();
        for (const QString &key : qAsConst(keys)) {
            const Value &value = values[key];
            out << key << value.isList << value.text << value.list;
        }
    }
    // Unbuffered, so that a short write (a full disk, a file size limit) is
    // seen here and the old file stays, rather than being replaced by the
    // part that was written.
    QSaveFile file(filePath());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        saveError = file.errorString();
        return;
    }
    if (file.write(bytes) != bytes.size()) {
        // A short write sets no error of the device's own; errno tells why.
        saveError
            = file.error() != QFileDevice::NoError ? file.errorString() : qt_error_string(errno);
        file.cancelWriting();
        return;
    }
    if (file.commit())
        saveError.clear();
    else
        saveError = file.errorString();
}

void VeskSettingsStore::setPersistent(bool on)
{
    persistent = on;
}

bool VeskSettingsStore::isStored(QString *error) const
{
    ensureOpen();
    QHash<QString, Value> onDisk;
    QString readError;
    if (readFile(&onDisk, &readError) && onDisk == values)
        return true;
    const QString reason = !saveError.isEmpty() ? saveError
        : !readError.isEmpty()                  ? readError
                                                : QStringLiteral("it holds other values");
    *error = QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(filePath()), reason);
    return false;
}

bool VeskSettingsStore::contains(const QString &key) const
{
    ensureOpen();
    return values.contains(key);
}

bool VeskSettingsStore::isList(const QString &key) const
{
    return values.value(key).isList;
}

QString VeskSettingsStore::text(const QString &key) const
{
    return values.value(key).text;
}

QStringList VeskSettingsStore::list(const QString &key) const
{
    return values.value(key).list;
}

void VeskSettingsStore::store(const QString &key, const Value &value)
{
    ensureOpen();
    // Writing what is already there changes nothing, and does not touch the
    // file: a program that only reads leaves the directory as it found it.
    const auto it = values.constFind(key);
    if (it != values.cend() && *it == value)
        return;
    values.insert(key, value);
    save();
}

void VeskSettingsStore::setText(const QString &key, const QString &text)
{
    Value value;
    value.text = text;
    store(key, value);
}

void VeskSettingsStore::setList(const QString &key, const QStringList &list)
{
    Value value;
    value.isList = true;
    value.list = list;
    store(key, value);
}

void VeskSettingsStore::remove(const QString &key)
{
    ensureOpen();
    if (values.remove(key))
        save();
}

VeskSettingsManager::VeskSettingsManager() = default;
VeskSettingsManager::~VeskSettingsManager() = default;

VeskSettingsManager *VeskSettingsManager::getInstance()
{
    static VeskSettingsManager manager;
    static VeskSettingsManagerPrivate privateFrontEnd;
    if (!VeskSettingsManagerPrivate::settingsMgrPrivInstance)
        VeskSettingsManagerPrivate::settingsMgrPrivInstance = &privateFrontEnd;
    return &manager;
}

QString VeskSettingsManager::getSettingsDir() const
{
    return VeskSettingsStore::self().dir();
}

VeskField VeskSettingsManager::readGlobalSetting(const VeskField &field) const
{
    return readFrom(VeskSettingsStore::self(), field);
}

void VeskSettingsManager::writeGlobalSetting(const VeskField &field)
{
    writeTo(VeskSettingsStore::self(), field);
}

VeskSettingsManagerPrivate::VeskSettingsManagerPrivate() = default;
VeskSettingsManagerPrivate::~VeskSettingsManagerPrivate() = default;

VeskField VeskSettingsManagerPrivate::readGlobalSetting(const VeskField &field)
{
    return readFrom(VeskSettingsStore::self(), field);
}

void VeskSettingsManagerPrivate::writeGlobalSetting(const VeskField &field)
{
    writeTo(VeskSettingsStore::self(), field);
}

void VeskSettingsManagerPrivate::removeKey(const QString &key)
{
    VeskSettingsStore::self().remove(key);
}
