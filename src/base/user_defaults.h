#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orbinex {

/// The user's stored settings, by key. Reading a key that is absent or holds another type gives nothing.
class UserDefaults {
  public:
    UserDefaults() = default;
    UserDefaults(const UserDefaults&) = delete;
    UserDefaults& operator=(const UserDefaults&) = delete;
    virtual ~UserDefaults() = default;

    /// Any bytes.
    [[nodiscard]] virtual std::optional<std::string> data(std::string_view key) const = 0;
    virtual void setData(std::string_view key, std::string_view bytes) = 0;

    /// UTF-8 text.
    [[nodiscard]] virtual std::optional<std::string> string(std::string_view key) const = 0;
    virtual void setString(std::string_view key, std::string_view text) = 0;

    [[nodiscard]] virtual std::optional<bool> boolean(std::string_view key) const = 0;
    virtual void setBoolean(std::string_view key, bool value) = 0;

    virtual void remove(std::string_view key) = 0;
};

}  // namespace orbinex
