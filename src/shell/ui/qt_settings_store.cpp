#include "shell/ui/qt_settings_store.h"

#include <QFile>

namespace lumiran {
namespace {

QString keyPath(const std::string& section, const std::string& key) {
    return QString::fromStdString(section) + '/' + QString::fromStdString(key);
}

} // namespace

QtSettingsStore::QtSettingsStore()
    : settings_(QSettings::IniFormat, QSettings::UserScope, "Lumiran", "Lumiran") {}

QtSettingsStore::QtSettingsStore(const QString& fileName)
    : settings_(fileName, QSettings::IniFormat) {}

std::optional<std::string> QtSettingsStore::get(const std::string& section,
                                                const std::string& key) const {
    const QVariant value = settings_.value(keyPath(section, key));
    if (!value.isValid()) return std::nullopt;
    return value.toString().toStdString();
}

void QtSettingsStore::set(const std::string& section, const std::string& key,
                          const std::string& value) {
    settings_.setValue(keyPath(section, key), QString::fromStdString(value));
}

QString QtSettingsStore::keepCopy() const {
    const QString original = settings_.fileName();
    if (!QFile::exists(original)) return {};
    const QString copy = original + ".broken";
    QFile::remove(copy);
    return QFile::copy(original, copy) ? copy : QString();
}

} // namespace lumiran
