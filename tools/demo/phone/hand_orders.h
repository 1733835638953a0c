#pragma once

#include <QQuickWindow>
#include <string>
#include <string_view>

namespace orbinex::demo {

/// Does what an order says with a hand in the window, and tells what came of it: "done", "missing", or
/// "shows TEXT". ITEM is a path of object names.
///
///     click ITEM            taps
///     drag ITEM DX DY       presses in its middle, moves by so many pixels, lets go
///     wheel ITEM ANGLE      turns the wheel over it, 120 a click away from the person
///     type ITEM TEXT        types into it
///     look ITEM             reads its text
std::string carryOut(std::string_view order, QQuickWindow& window);

}  // namespace orbinex::demo
