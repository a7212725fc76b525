#pragma once

#include <string>

namespace soak {

inline constexpr int kDevices = 20;
inline constexpr int kDamaged = 10;  // devices before this one have a damaged package,
inline constexpr int kFailing = 15;  // those before this one an installer that fails

// "device-07".
inline std::string KeyOf(int device) { return "device-" + std::to_string(100 + device).substr(1); }

}  // namespace soak
