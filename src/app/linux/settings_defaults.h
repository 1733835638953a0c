#pragma once

#include <QSettings>
#include <functional>
#include <string>

#include "base/user_defaults.h"

namespace orbinex {

/// The user's settings file, by default $XDG_CONFIG_HOME/Orbinex/orbinex.ini. Every change is written at
/// once, atomically; a file that cannot be read or written leaves the settings in memory.
class SettingsDefaults final : public UserDefaults {
  public:
    /// Is told, once, that a change could not be written to the file.
    using OnNotStored = std::function<void(const std::string& path)>;

    explicit SettingsDefaults(OnNotStored onNotStored = {});
    explicit SettingsDefaults(const std::string& path, OnNotStored onNotStored = {});

    [[nodiscard]] std::optional<std::string> data(std::string_view key) const override;
    void setData(std::string_view key, std::string_view bytes) override;
    [[nodiscard]] std::optional<std::string> string(std::string_view key) const override;
    void setString(std::string_view key, std::string_view text) override;
    [[nodiscard]] std::optional<bool> boolean(std::string_view key) const override;
    void setBoolean(std::string_view key, bool value) override;
    void remove(std::string_view key) override;

  private:
    void set(std::string_view key, const QVariant& value);
    void store();

    QSettings settings_;
    OnNotStored onNotStored_;
};

}  // namespace orbinex
