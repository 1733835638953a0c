#pragma once

namespace orbinex {

/// A place on the desktop in points; the origin is the top left corner and y grows downwards.
struct Point {
    double x = 0;
    double y = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

/// A rectangle in the same coordinates. It holds its left and top edges but not its right and bottom ones.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    [[nodiscard]] constexpr double maxX() const { return x + width; }
    [[nodiscard]] constexpr double maxY() const { return y + height; }
    [[nodiscard]] constexpr bool contains(Point point) const {
        return point.x >= x && point.x < maxX() && point.y >= y && point.y < maxY();
    }
    friend bool operator==(const Rect&, const Rect&) = default;
};

}  // namespace orbinex
