#pragma once

#include <chrono>
#include <thread>

namespace orbinex::test {

/// Lets threads work, for longer than they ever need. The limit is for a test that fails.
class Patience {
  public:
    /// False when the time is over.
    [[nodiscard]] bool isLeft() const {
        std::this_thread::yield();
        return std::chrono::steady_clock::now() < end_;
    }

  private:
    std::chrono::steady_clock::time_point end_ = std::chrono::steady_clock::now() + std::chrono::seconds(30);
};

}  // namespace orbinex::test
