#include "app/linux/settings_defaults.h"

#include <QByteArray>
#include <QString>
#include <utility>

namespace orbinex {

namespace {

QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

SettingsDefaults::SettingsDefaults(OnNotStored onNotStored)
    : settings_(QSettings::IniFormat, QSettings::UserScope, "Orbinex", "orbinex"),
      onNotStored_(std::move(onNotStored)) {
    settings_.setFallbacksEnabled(false);
}

SettingsDefaults::SettingsDefaults(const std::string& path, OnNotStored onNotStored)
    : settings_(QString::fromStdString(path), QSettings::IniFormat), onNotStored_(std::move(onNotStored)) {}

std::optional<std::string> SettingsDefaults::data(std::string_view key) const {
    const QVariant value = settings_.value(toQString(key));
    if (value.metaType() != QMetaType::fromType<QByteArray>()) return std::nullopt;
    return value.toByteArray().toStdString();
}

std::optional<std::string> SettingsDefaults::string(std::string_view key) const {
    const QVariant value = settings_.value(toQString(key));
    if (value.metaType() != QMetaType::fromType<QString>()) return std::nullopt;
    return value.toString().toStdString();
}

std::optional<bool> SettingsDefaults::boolean(std::string_view key) const {
    const QVariant value = settings_.value(toQString(key));
    if (value.metaType() == QMetaType::fromType<bool>()) return value.toBool();
    // The file holds words.
    if (value.metaType() != QMetaType::fromType<QString>()) return std::nullopt;
    const QString word = value.toString();
    if (word == QLatin1String("true")) return true;
    if (word == QLatin1String("false")) return false;
    return std::nullopt;
}

void SettingsDefaults::set(std::string_view key, const QVariant& value) {
    settings_.setValue(toQString(key), value);
    store();
}

void SettingsDefaults::store() {
    settings_.sync();
    // A file that was damaged is another matter: it is written anew.
    if (settings_.status() != QSettings::AccessError) return;
    if (const auto tell = std::exchange(onNotStored_, nullptr)) tell(settings_.fileName().toStdString());
}

void SettingsDefaults::setData(std::string_view key, std::string_view bytes) {
    set(key, QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size())));
}
void SettingsDefaults::setString(std::string_view key, std::string_view text) {
    set(key, toQString(text));
}
void SettingsDefaults::setBoolean(std::string_view key, bool value) {
    set(key, value);
}

void SettingsDefaults::remove(std::string_view key) {
    settings_.remove(toQString(key));
    store();
}

}  // namespace orbinex
