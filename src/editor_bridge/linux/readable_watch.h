#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>
#include <utility>

namespace orbinex {

/// Calls back on the main thread while a descriptor has something to read, or its end to tell. It may be
/// destroyed in its own call, and must be before the descriptor is closed.
class ReadableWatch {
  public:
    ReadableWatch(int descriptor, std::function<void()> onReadable)
        : notifier_(new QSocketNotifier(descriptor, QSocketNotifier::Read)) {
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                         std::move(onReadable));
    }

  private:
    struct Retire {
        void operator()(QSocketNotifier* notifier) const {
            notifier->setEnabled(false);
            // It may be what is calling.
            notifier->deleteLater();
        }
    };
    std::unique_ptr<QSocketNotifier, Retire> notifier_;
};

}  // namespace orbinex
