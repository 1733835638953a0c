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
    /// `onLine` gets any bytes but a line feed. A last line without a line feed is a line.
    StandardInput(MainQueue& queue, std::function<void(const std::string&)> onLine);

  private:
    void read();

    MainQueue& queue_;
    std::function<void(const std::string&)> onLine_;
    bool hasEnded_ = false;
    LineReader lines_;
    std::unique_ptr<FdWatch> watch_;
    Lifetime lifetime_;
};

}  // namespace orbinex
