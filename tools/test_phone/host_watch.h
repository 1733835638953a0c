#pragma once

#include <map>
#include <string>
#include <vector>

namespace orbinex::test_phone {

/// A computer, as the phone's controller knows it.
struct Host {
    std::string address;
    bool isConnected = false;
    /// Paired, with keys that are kept.
    bool isBonded = false;
};

/// Turns what is known of computers now into what has happened since it was last told.
class HostWatch {
  public:
    /// Lines such as "connected 00:AA:01:00:00:00": connected, disconnected, bonded, unbonded. A computer
    /// that is not in the list any more is neither connected nor bonded.
    std::vector<std::string> review(const std::vector<Host>& hosts);
    /// The controller is away: every link has ended, and what is bonded stays so.
    std::vector<std::string> loseLinks();

    [[nodiscard]] std::vector<std::string> connected() const { return addresses(&Host::isConnected); }
    [[nodiscard]] std::vector<std::string> bonded() const { return addresses(&Host::isBonded); }

  private:
    [[nodiscard]] std::vector<std::string> addresses(bool Host::*state) const;

    /// By address.
    std::map<std::string, Host> known_;
};

}  // namespace orbinex::test_phone
