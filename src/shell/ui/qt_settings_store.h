#pragma once

#include "shell/key_value_store.h"

#include <QSettings>

namespace lumiran {

// The per-user settings file (INI) with the sections "Settings", "History"
// and "Effect Browser".
class QtSettingsStore : public KeyValueStore {
  public:
    QtSettingsStore();
    // For tests: a store in a file of one's own.
    explicit QtSettingsStore(const QString& fileName);

    [[nodiscard]] std::optional<std::string> get(const std::string& section,
                                                 const std::string& key) const override;
    void set(const std::string& section, const std::string& key, const std::string& value) override;

    // The file could not be parsed at all.
    [[nodiscard]] bool unreadable() const { return settings_.status() != QSettings::NoError; }
    [[nodiscard]] QString fileName() const { return settings_.fileName(); }
    // Keeps a copy of the file as it is beside it; returns the copy's name,
    // or an empty string when there was nothing to keep or the copy failed.
    QString keepCopy() const;
    void sync() { settings_.sync(); }

  private:
    QSettings settings_;
};

} // namespace lumiran
