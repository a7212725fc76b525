#pragma once

#include <string>

namespace soak {

inline constexpr int kDevices = 20;

// "device-07".
inline std::string KeyOf(int device) { return "device-" + std::to_string(100 + device).substr(1); }

}  // namespace soak
