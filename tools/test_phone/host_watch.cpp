#include "test_phone/host_watch.h"

#include <utility>

namespace orbinex::test_phone {

std::vector<std::string> HostWatch::review(const std::vector<Host>& hosts) {
    std::map<std::string, Host> now;
    for (const auto& [address, former] : known_) now[address] = {address};
    for (const auto& host : hosts) now[host.address] = host;

    std::vector<std::string> events;
    const auto tell = [&](bool before, bool after, const char* begun, const char* ended,
                          const auto& address) {
        if (before != after) events.push_back((after ? begun : ended) + (" " + address));
    };
    for (const auto& [address, host] : now) {
        const auto& former = known_[address];
        tell(former.isConnected, host.isConnected, "connected", "disconnected", address);
        tell(former.isBonded, host.isBonded, "bonded", "unbonded", address);
    }
    std::erase_if(now, [](const auto& entry) { return !entry.second.isConnected && !entry.second.isBonded; });
    known_ = std::move(now);
    return events;
}

std::vector<std::string> HostWatch::loseLinks() {
    std::vector<Host> hosts;
    for (const auto& [address, host] : known_) hosts.push_back({address, false, host.isBonded});
    return review(hosts);
}

std::vector<std::string> HostWatch::addresses(bool Host::*state) const {
    std::vector<std::string> result;
    for (const auto& [address, host] : known_) {
        if (host.*state) result.push_back(address);
    }
    return result;
}

}  // namespace orbinex::test_phone
