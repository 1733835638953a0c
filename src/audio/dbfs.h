#pragma once

namespace orbinex {

/// The level that stands for the absence of signal.
inline constexpr double silenceDBFS = -288;
/// The magnitude of that level: 10^(-288/20).
inline constexpr double silenceLinear = 3.981071705534969e-15;

/// A magnitude (1 is full scale) as a level from -288 to 0 dBFS. What is not above the silent magnitude, or
/// not finite, is -288.
double linearToDBFS(double magnitude);

/// The factor that a gain in dB multiplies samples by.
double gainFromDB(double dB);

}  // namespace orbinex
