#pragma once

#include <string>
#include <utility>
#include <variant>

namespace orbinex::test_phone {

/// Why something that a person has written cannot be understood, or done; a clause to put behind its name.
struct Mistake {
    std::string text;
};

/// A value, or why there is none.
template <class Value>
using OrMistake = std::variant<Value, Mistake>;

}  // namespace orbinex::test_phone
