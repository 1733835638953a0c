#include "input/keyboard_layout_mapper.h"

namespace orbinex {

KeyboardLayoutMapper::KeyboardLayoutMapper(KeyboardLayoutSource& source) : source_(source) {
    rebuild();
    layoutChange_ = source_.onLayoutChange([this] { rebuild(); });
}

void KeyboardLayoutMapper::rebuild() {
    auto layout = source_.currentLayout();
    if (!layout) layout = source_.asciiCapableLayout();
    table_ = layout ? LayoutTable::build(*layout) : LayoutTable();
    layoutName_ = layout ? layout->name : std::string();
}

}  // namespace orbinex
