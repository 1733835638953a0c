#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace orbinex::test {

/// Hears what programs send to the root window, as window managers and launchers do.
class RootListener {
  public:
    struct Message {
        std::string type;
        std::uint64_t window = 0;
        /// Of a message of 32-bit values.
        std::vector<long> values;
        /// Of a message of bytes.
        std::string bytes;
    };
    /// Throws std::runtime_error where the display cannot be used.
    explicit RootListener(const std::string& display);
    RootListener(const RootListener&) = delete;
    RootListener& operator=(const RootListener&) = delete;
    ~RootListener();

    /// What has come since the last call.
    std::vector<Message> take();

  private:
    struct Connection;
    std::unique_ptr<Connection> connection_;
};

}  // namespace orbinex::test
