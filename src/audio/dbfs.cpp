#include "audio/dbfs.h"

#include <algorithm>
#include <cmath>

namespace orbinex {

double linearToDBFS(double magnitude) {
    if (!std::isfinite(magnitude) || magnitude <= silenceLinear) return silenceDBFS;
    return std::clamp(20 * std::log10(magnitude), silenceDBFS, 0.0);
}

double gainFromDB(double dB) {
    return std::pow(10.0, dB / 20);
}

}  // namespace orbinex
