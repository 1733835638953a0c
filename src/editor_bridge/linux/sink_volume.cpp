#include "editor_bridge/linux/sink_volume.h"

#include <algorithm>
#include <cmath>

namespace orbinex {

double positionOf(const pa_cvolume& channels) {
    if (channels.channels == 0) return 0;
    return std::min(1.0, static_cast<double>(pa_cvolume_max(&channels)) / PA_VOLUME_NORM);
}

void SinkBalance::learn(const SinkVolume& reported) {
    const bool isSame = balance_ && balance_->sink == reported.sink &&
                        balance_->channels.channels == reported.channels.channels;
    if (isSame && set_ && pa_cvolume_equal(&*set_, &reported.channels)) return;
    if (isSame && pa_cvolume_is_muted(&reported.channels)) return;
    balance_ = reported;
    set_.reset();
}

SinkVolume SinkBalance::set(double position) {
    SinkVolume next = balance_.value_or(SinkVolume{});
    const auto loudest = static_cast<pa_volume_t>(std::lround(position * PA_VOLUME_NORM));
    if (next.channels.channels > 0) pa_cvolume_scale(&next.channels, loudest);
    set_ = next.channels;
    return next;
}

}  // namespace orbinex
