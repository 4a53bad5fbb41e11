#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumiran {

// The per-user settings store: sections of string keys with string values.
// The GUI backs it with an INI file; tests use the in-memory one.
class KeyValueStore {
  public:
    virtual ~KeyValueStore() = default;
    [[nodiscard]] virtual std::optional<std::string> get(const std::string& section,
                                                         const std::string& key) const = 0;
    virtual void set(const std::string& section, const std::string& key,
                     const std::string& value) = 0;
};

class MemoryStore : public KeyValueStore {
  public:
    [[nodiscard]] std::optional<std::string> get(const std::string& section,
                                                 const std::string& key) const override {
        const auto it = values_.find({section, key});
        if (it == values_.end()) return std::nullopt;
        return it->second;
    }
    void set(const std::string& section, const std::string& key,
             const std::string& value) override {
        values_[{section, key}] = value;
        order_.push_back(key);
    }
    // Keys in the order they were written, for checking the write order.
    [[nodiscard]] const std::vector<std::string>& writeOrder() const { return order_; }

  private:
    std::map<std::pair<std::string, std::string>, std::string> values_;
    std::vector<std::string> order_;
};

} // namespace lumiran
