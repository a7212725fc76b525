#pragma once

namespace DuiLib {

// The nearest step of 25 between 100 and 300 [percent] for a number of device pixels an inch.
unsigned ScaleForDensity(double dotsPerInch);

inline constexpr double kPlainDensity = 96;  // [dots an inch] at 100 percent

}  // namespace DuiLib
