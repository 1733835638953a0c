#pragma once

#include <span>

#include "input/geometry.h"

namespace orbinex {

/// The point itself when a display holds it, else the nearest point that is at least one inside a display's
/// right and bottom edges; of displays equally near, the first. Without displays, the main display counts
/// alone, and holds even the points on it.
Point clampToDisplays(Point point, std::span<const Rect> displays, const Rect& mainDisplay);

}  // namespace orbinex
