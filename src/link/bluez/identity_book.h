#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "base/uuid.h"

namespace orbinex {

/// Gives devices the identifiers by which the link knows them, the same in every run of the program.
///
/// An identifier is derived from the address at which the device was first met. A phone that is not bonded
/// changes its address every few minutes and is then met as another device. Bonding reveals its lasting
/// identity address; from then on the book remembers, across restarts, which identifier belongs to that, so
/// that the phone keeps the one under which it was met and trusted.
class IdentityBook {
  public:
    /// More bonded phones than anybody has; what goes beyond is not remembered.
    static constexpr std::size_t capacity = 64;

    IdentityBook() = default;
    /// From its stored form. Lines that make no sense are skipped.
    explicit IdentityBook(std::string_view stored);
    /// One line an identity: address, space, "public" or "random", space, identifier.
    [[nodiscard]] std::string stored() const;

    /// The address as "00:11:22:33:44:55".
    [[nodiscard]] UUID identifierFor(const std::string& address, bool isRandom) const;
    /// Of a bonded device; true when that was news.
    bool remember(const std::string& address, bool isRandom, const UUID& identifier);

  private:
    static std::string key(const std::string& address, bool isRandom);
    std::map<std::string, UUID> identifiers_;
};

}  // namespace orbinex
