#include "input/clamp_to_displays.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orbinex {

namespace {

Point nearestInside(Point point, const Rect& display) {
    return {std::max(display.x, std::min(display.maxX() - 1, point.x)),
            std::max(display.y, std::min(display.maxY() - 1, point.y))};
}

}  // namespace

Point clampToDisplays(Point point, std::span<const Rect> displays, const Rect& mainDisplay) {
    if (displays.empty()) return nearestInside(point, mainDisplay);
    if (std::ranges::any_of(displays, [&](const Rect& display) { return display.contains(point); }))
        return point;

    Point best = point;
    double bestDistance = std::numeric_limits<double>::max();
    for (const Rect& display : displays) {
        const Point candidate = nearestInside(point, display);
        const double distance = std::hypot(candidate.x - point.x, candidate.y - point.y);
        if (distance < bestDistance) {
            best = candidate;
            bestDistance = distance;
        }
    }
    return best;
}

}  // namespace orbinex
