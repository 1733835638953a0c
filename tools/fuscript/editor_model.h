#pragma once

#include <string_view>

namespace orbinex {

/// The text of editor_model.lua.
std::string_view editorModel();

}  // namespace orbinex
