#pragma once

namespace orbinex {

/// What the phone's Command key is on this desktop.
enum class CommandKey {
    control,  ///< so that the phone's shortcuts are the desktop's: ⌘C copies
    super,
};

}  // namespace orbinex
