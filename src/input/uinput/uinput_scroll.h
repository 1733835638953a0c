#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <system_error>

#include "input/scroll_sink.h"
#include "input/uinput/fine_wheel.h"
#include "input/uinput/scroll_report.h"

namespace orbinex {

/// A mouse of our own in the kernel, of which only the two wheels are ever used. It goes with this object, or
/// with the process however that ends.
class UinputScroll final : public ScrollSink {
  public:
    /// Makes the device. Nothing when that cannot be done, and then `error` tells why: mostly that there is
    /// no /dev/uinput or that it may not be opened.
    static std::unique_ptr<UinputScroll> open(std::error_code& error,
                                              const std::string& path = "/dev/uinput");
    /// Takes over the descriptor of a device that has been made under this name. It must not block.
    UinputScroll(int fd, std::string name);
    ~UinputScroll() override;

    /// Holds the process id, so that neither another instance nor what is left of one is taken for it.
    [[nodiscard]] std::string_view deviceName() const override { return name_; }
    /// Keeps what is less than a step for the next event, and gives up on none: of a report that is taken in
    /// part the rest goes out first of all the next time.
    bool scroll(const ScrollEvent& event) override;
    void dropRemainder() override;

  private:
    bool send(std::span<const std::byte> bytes);
    bool sendRest();

    int fd_;
    std::string name_;
    FineWheel vertical_;
    FineWheel horizontal_;
    std::array<std::byte, sizeof(ScrollReport)> rest_{};
    std::size_t restSize_ = 0;
};

}  // namespace orbinex
