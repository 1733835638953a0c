#include "link/bluez/identity_book.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <span>

#include "base/text.h"

namespace orbinex {

namespace {

/// Keeps our identifiers apart from all others that are derived from the same text (RFC 4122, 4.3).
constexpr UUID nameSpace = UUID::literal("6B0F5B0E-3D0C-4C7B-9A58-0E6F8D2C41A7");

UUID derived(const std::string& name) {
    QCryptographicHash hash(QCryptographicHash::Sha1);
    hash.addData(QByteArray(reinterpret_cast<const char*>(nameSpace.bytes.data()), 16));
    hash.addData(QByteArray::fromStdString(name));
    const QByteArray digest = hash.result();
    UUID result;
    for (std::size_t i = 0; i < result.bytes.size(); ++i) {
        result.bytes[i] = static_cast<std::uint8_t>(digest[static_cast<qsizetype>(i)]);
    }
    result.bytes[6] = static_cast<std::uint8_t>((result.bytes[6] & 0x0fU) | 0x50U);  // version 5
    result.bytes[8] = static_cast<std::uint8_t>((result.bytes[8] & 0x3fU) | 0x80U);
    return result;
}

}  // namespace

std::string IdentityBook::key(const std::string& address, bool isRandom) {
    return QByteArray::fromStdString(address).toUpper().toStdString() + (isRandom ? " random" : " public");
}

IdentityBook::IdentityBook(std::string_view stored) {
    for (const auto line : split(stored, '\n')) {
        const auto fields = split(line, ' ');
        if (fields.size() != 3 || fields[0].size() != 17) continue;
        const bool isRandom = fields[1] == "random";
        if (!isRandom && fields[1] != "public") continue;
        if (const auto id = UUID::parse(fields[2])) remember(std::string(fields[0]), isRandom, *id);
    }
}

std::string IdentityBook::stored() const {
    std::string result;
    for (const auto& [key, identifier] : identifiers_) result += key + " " + identifier.text() + "\n";
    return result;
}

UUID IdentityBook::identifierFor(const std::string& address, bool isRandom) const {
    const auto name = key(address, isRandom);
    const auto found = identifiers_.find(name);
    return found != identifiers_.end() ? found->second : derived(name);
}

bool IdentityBook::remember(const std::string& address, bool isRandom, const UUID& identifier) {
    if (identifierFor(address, isRandom) == identifier) return false;
    const auto name = key(address, isRandom);
    if (identifiers_.size() >= capacity && !identifiers_.contains(name)) return false;
    identifiers_.insert_or_assign(name, identifier);
    return true;
}

}  // namespace orbinex
