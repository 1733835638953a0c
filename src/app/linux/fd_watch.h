#pragma once

#include <QSocketNotifier>
#include <functional>
#include <utility>

namespace orbinex {

/// Calls back on the main thread while a file descriptor has something to read, for as long as it lives.
class FdWatch {
  public:
    FdWatch(int fd, std::function<void()> onReadable) : notifier_(fd, QSocketNotifier::Read) {
        QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, std::move(onReadable));
    }

  private:
    QSocketNotifier notifier_;
};

}  // namespace orbinex
