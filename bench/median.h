#pragma once

#include <algorithm>
#include <vector>

namespace orbinex {

/// Of at least one value.
inline double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

}  // namespace orbinex
