#pragma once

#include <cstdint>
#include <string>

namespace DuiLib {

// What the list window hands a panel: one accessory, ready to show. A value.
struct FirmwareItemDesc {
    std::wstring deviceKey;
    std::wstring imagePath;  // relative to the skin folder
    bool isDriver = false;   // driver wording of the version line; else application wording
    std::wstring nameId;     // resource id of the display name, also reported as the model id
    std::wstring version;
    std::wstring devInfo;            // text below the pull-down
    std::uint64_t devInfoLines = 0;  // lines that devInfo was joined from
};

}  // namespace DuiLib
