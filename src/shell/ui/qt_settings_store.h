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

    // The file is there but could not be taken as settings: it cannot be
    // opened or read, is not text, or its folder is not a folder.
    [[nodiscard]] bool unreadable() const { return unreadable_; }
    [[nodiscard]] QString fileName() const { return settings_.fileName(); }
    // Keeps the file as it is and returns where it now is: a ".broken" copy
    // beside it (the store then starts afresh), or, where no copy can be
    // made, the original itself, which is then never written. Empty when
    // there was nothing to keep.
    QString keepOriginal();
    void sync() {
        if (!frozen_) settings_.sync();
    }

  private:
    QSettings settings_;
    bool unreadable_ = false;
    bool frozen_ = false;
};

} // namespace lumiran
