#include "editor_bridge/linux/pulse_volume.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orbinex {

PulseVolume::PulseVolume(MainQueue& queue, std::string address)
    : queue_(queue),
      server_(std::move(address), queue,
              {.reported = lifetime_.guard([this](const auto& volume) { noteReport(volume); }),
               .settled = lifetime_.guard([this] { noteSettled(); }),
               .lost = lifetime_.guard([this] { noteLoss(); })}) {
    server_.connect();
}

void PulseVolume::write(double position) {
    if (!position_ || std::isnan(position)) return;
    position_ = std::clamp(position, 0.0, 1.0);
    settling_.cancel();
    if (isWriting_) {
        next_ = position_;
        return;
    }
    isWriting_ = true;
    server_.set(balance_.set(*position_));
}

void PulseVolume::noteSettled() {
    if (!isWriting_) return;
    if (const auto next = std::exchange(next_, std::nullopt)) return server_.set(balance_.set(*next));
    isWriting_ = false;
    settling_ = queue_.after(settlingTime, [this] { server_.query(); });
}

void PulseVolume::noteReport(const std::optional<SinkVolume>& volume) {
    if (isWriting_ || settling_.isActive()) return;
    position_.reset();
    if (!volume) return;
    balance_.learn(*volume);
    position_ = positionOf(volume->channels);
}

void PulseVolume::noteLoss() {
    position_.reset();
    isWriting_ = false;
    next_.reset();
    settling_.cancel();
    retry_ = queue_.after(retryDelay, [this] { server_.connect(); });
}

}  // namespace orbinex
