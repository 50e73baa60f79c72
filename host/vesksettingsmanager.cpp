#include "vesksettingsmanager.h"

#include "veskhost_p.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QStandardPaths>

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
    QDir().mkpath(settingsDir);
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
    return dir() + QLatin1String("settings.json");
}

void VeskSettingsStore::load()
{
    values.clear();
    QFile file(filePath());
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
    for (auto it = object.begin(); it != object.end(); ++it) {
        Value value;
        value.isList = it.value().isArray();
        if (value.isList) {
            const QJsonArray array = it.value().toArray();
            for (const QJsonValue &item : array)
                value.list.append(item.toString());
        } else {
            value.text = it.value().toString();
        }
        values.insert(it.key(), value);
    }
}

void VeskSettingsStore::save() const
{
    QJsonObject object;
    for (auto it = values.begin(); it != values.end(); ++it) {
        if (it->isList)
            object.insert(it.key(), QJsonArray::fromStringList(it->list));
        else
            object.insert(it.key(), it->text);
    }
    QSaveFile file(filePath());
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write(QJsonDocument(object).toJson(QJsonDocument::Indented));
    file.commit();
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

void VeskSettingsStore::setText(const QString &key, const QString &text)
{
    ensureOpen();
    Value value;
    value.text = text;
    values.insert(key, value);
    save();
}

void VeskSettingsStore::setList(const QString &key, const QStringList &list)
{
    ensureOpen();
    Value value;
    value.isList = true;
    value.list = list;
    values.insert(key, value);
    save();
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
