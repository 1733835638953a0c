#pragma once

#include <string>

#include "base/signal.h"
#include "input/keyboard_layout_source.h"
#include "input/layout_table.h"

namespace orbinex {

/// Knows the key of every character on the layout that is selected, and follows the selection.
class KeyboardLayoutMapper {
  public:
    /// Builds the table at once. The source must outlive the mapper.
    explicit KeyboardLayoutMapper(KeyboardLayoutSource& source);

    /// Reads the current layout, or the ASCII-capable one when there is none; without either, the table and
    /// the name become empty.
    void rebuild();

    [[nodiscard]] const LayoutTable& table() const { return table_; }
    /// The name of the layout that the table describes; empty when there is none.
    [[nodiscard]] const std::string& layoutName() const { return layoutName_; }

  private:
    KeyboardLayoutSource& source_;
    LayoutTable table_;
    std::string layoutName_;
    Subscription layoutChange_;
};

}  // namespace orbinex
