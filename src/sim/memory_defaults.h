#pragma once

#include <map>
#include <variant>

#include "base/user_defaults.h"

namespace orbinex {

/// Settings that live in memory only. Copies of `values` stand for a settings file across restarts.
class MemoryDefaults final : public UserDefaults {
  public:
    struct Data {
        std::string bytes;
        friend bool operator==(const Data&, const Data&) = default;
    };
    using Value = std::variant<Data, std::string, bool>;

    std::map<std::string, Value, std::less<>> values;

    [[nodiscard]] std::optional<std::string> data(std::string_view key) const override {
        const auto* value = find<Data>(key);
        return value ? std::optional(value->bytes) : std::nullopt;
    }
    void setData(std::string_view key, std::string_view bytes) override {
        values.insert_or_assign(std::string(key), Data{std::string(bytes)});
    }
    [[nodiscard]] std::optional<std::string> string(std::string_view key) const override {
        const auto* value = find<std::string>(key);
        return value ? std::optional(*value) : std::nullopt;
    }
    void setString(std::string_view key, std::string_view text) override {
        values.insert_or_assign(std::string(key), std::string(text));
    }
    [[nodiscard]] std::optional<bool> boolean(std::string_view key) const override {
        const auto* value = find<bool>(key);
        return value ? std::optional(*value) : std::nullopt;
    }
    void setBoolean(std::string_view key, bool value) override {
        values.insert_or_assign(std::string(key), value);
    }
    void remove(std::string_view key) override {
        if (const auto it = values.find(key); it != values.end()) values.erase(it);
    }

  private:
    template <class Type>
    [[nodiscard]] const Type* find(std::string_view key) const {
        const auto it = values.find(key);
        return it == values.end() ? nullptr : std::get_if<Type>(&it->second);
    }
};

}  // namespace orbinex
