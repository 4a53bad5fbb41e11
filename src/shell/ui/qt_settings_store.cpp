#include "shell/ui/qt_settings_store.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

namespace lumiran {
namespace {

QString keyPath(const std::string& section, const std::string& key) {
    return QString::fromStdString(section) + '/' + QString::fromStdString(key);
}

// The settings file's own problems, which the INI parser would pass over
// silently and then overwrite at exit.
bool cannotBeTaken(const QString& fileName) {
    const QFileInfo file(fileName);
    const QFileInfo folder(file.absolutePath());
    if (folder.exists() && !folder.isDir()) return true;
    if (!file.exists() && !file.isSymLink()) return false;
    if (!file.isFile()) return true;
    QFile in(fileName);
    if (!in.open(QIODevice::ReadOnly)) return true;
    const QByteArray bytes = in.readAll();
    if (in.error() != QFileDevice::NoError || bytes.contains('\0')) return true;
    QStringDecoder utf8(QStringDecoder::Utf8);
    [[maybe_unused]] const QString text = utf8(bytes);
    return utf8.hasError();
}

// Where the original is when no copy could be made: the file, or the thing
// standing where its folder should be.
QString originalPlace(const QString& fileName) {
    const QFileInfo file(fileName);
    const QFileInfo folder(file.absolutePath());
    return folder.exists() && !folder.isDir() ? folder.absoluteFilePath() : file.absoluteFilePath();
}

} // namespace

QtSettingsStore::QtSettingsStore()
    : settings_(QSettings::IniFormat, QSettings::UserScope, "Lumiran", "Lumiran"),
      unreadable_(cannotBeTaken(settings_.fileName()) || settings_.status() != QSettings::NoError) {
}

QtSettingsStore::QtSettingsStore(const QString& fileName)
    : settings_(fileName, QSettings::IniFormat),
      unreadable_(cannotBeTaken(fileName) || settings_.status() != QSettings::NoError) {}

std::optional<std::string> QtSettingsStore::get(const std::string& section,
                                                const std::string& key) const {
    const QVariant value = settings_.value(keyPath(section, key));
    if (!value.isValid()) return std::nullopt;
    return value.toString().toStdString();
}

void QtSettingsStore::set(const std::string& section, const std::string& key,
                          const std::string& value) {
    if (frozen_) return;
    settings_.setValue(keyPath(section, key), QString::fromStdString(value));
}

QString QtSettingsStore::keepOriginal() {
    const QString original = settings_.fileName();
    const QFileInfo file(original);
    if (!file.exists() && !unreadable_) return {};
    const QString copy = original + ".broken";
    if (file.isFile() && !QFileInfo(copy).isDir()) {
        QFile::remove(copy);
        if (QFile::copy(original, copy)) {
            // The garbage the parser took in must not be written back.
            if (unreadable_) settings_.clear();
            return copy;
        }
    }
    frozen_ = true;
    return originalPlace(original);
}

} // namespace lumiran
