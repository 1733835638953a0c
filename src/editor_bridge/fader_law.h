#pragma once

namespace orbinex {

/// The range of a fader, in dB; its lower end means silence.
inline constexpr double faderFloorDB = -96;
inline constexpr double faderCeilingDB = 12;

/// Within the range of a fader; what is not finite is its lower end.
double clampedFaderDB(double dB);

/// -100 (left) to 100, and -12 to 12 dB: what a track's pan and its dialogue leveler take. No number at all
/// is 0.
double clampedPan(double pan);
double clampedLevelerDB(double dB);

/// Where a fader stands, 0 to 1, for a level in dB. Straight between these points:
///
///     dB        -96   -36   0     12
///     position  0     0.28  0.78  1
///
/// What is not finite stands at 0.
double faderDBToScalar(double dB);
/// The level that a fader's position means, rounded to tenths; less than 0.18 dB from 0 is 0. -96 for
/// positions below 0 and what is not finite, 12 above 1.
double faderScalarToDB(double position);

}  // namespace orbinex
