#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "app/linux/fd_watch.h"
#include "base/bytes.h"
#include "base/line_reader.h"

namespace orbinex::demo {

/// What stands for the air between the phone's window, a process of its own, and the demo that has started
/// it: lines on the standard streams. In values are hex digits.
///
/// | to the phone | |
/// |---|---|
/// | `link off`, `link waiting`, `link connected` | how the link stands |
/// | `control VALUE` | what the computer has written |
/// | `sent VALUE` | an input packet that the phone has sent without its window, to be shown |
/// | `do ACT ITEM ...` | what a hand does in the window: see hand_orders.h |
///
/// | from the phone | |
/// |---|---|
/// | `mouse VALUE`, `keyboard VALUE`, `control VALUE` | a notification |
/// | `ready` | the window is on the screen |
/// | `done`, `missing`, `shows TEXT` | what came of an act |
class ComputerPipe {
  public:
    using Heard = std::function<void(std::string_view word, std::string_view rest)>;
    /// `gone` is called once the other end is closed.
    ComputerPipe(Heard heard, std::function<void()> gone);

    void tell(std::string_view word, std::string_view rest = {});
    void tell(std::string_view word, ByteView value);

  private:
    void read();

    Heard heard_;
    std::function<void()> gone_;
    LineReader lines_;
    FdWatch watch_;
};

}  // namespace orbinex::demo
