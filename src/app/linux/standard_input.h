#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/linux/fd_watch.h"
#include "base/lifetime.h"
#include "base/line_reader.h"
#include "base/main_queue.h"

namespace orbinex {

/// Reads standard input by lines, until it ends. A program in the background of a terminal, which may not
/// read there, has none. See prepareStandardStreams.
class StandardInput {
  public:
    /// `onLine` gets any bytes but a line feed. `onEnd` is called once, unless this object goes first. A last
    /// line without a line feed is a line.
    StandardInput(MainQueue& queue, std::function<void(const std::string&)> onLine,
                  std::function<void()> onEnd);

  private:
    void read();

    MainQueue& queue_;
    std::function<void(const std::string&)> onLine_;
    std::function<void()> onEnd_;
    LineReader lines_;
    std::unique_ptr<FdWatch> watch_;
    Lifetime lifetime_;
};

}  // namespace orbinex
