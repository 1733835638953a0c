#include "input/uinput/scroll_report.h"

#include <cstdint>

namespace orbinex {

ScrollReport::ScrollReport(WheelMotion up, WheelMotion left) {
    // The kernel makes neither form from the other for devices of programs: both must be told, the clicks for
    // programs that know of nothing finer. Its horizontal wheel turns to the right.
    if (up.steps != 0) add(EV_REL, REL_WHEEL_HI_RES, up.steps);
    if (up.clicks != 0) add(EV_REL, REL_WHEEL, up.clicks);
    if (left.steps != 0) add(EV_REL, REL_HWHEEL_HI_RES, -left.steps);
    if (left.clicks != 0) add(EV_REL, REL_HWHEEL, -left.clicks);
    if (count_ != 0) add(EV_SYN, SYN_REPORT, 0);
}

void ScrollReport::add(unsigned type, unsigned code, int value) {
    // The kernel sets the time.
    input_event& event = events_[count_++];
    event.type = static_cast<std::uint16_t>(type);
    event.code = static_cast<std::uint16_t>(code);
    event.value = value;
}

}  // namespace orbinex
