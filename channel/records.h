#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The records that travel serialized inside a payload, in declaration and wire order (channel/record_codec.h). Values.

// Progress of one package's download or installation.
struct PkgDownloadProcess {
    std::string deviceKey;      // ANSI code page, exactly as the list gave it
    std::int32_t progress = 0;  // [percent] 100 and more means installing
};

// One accessory that has an update.
struct AccessoryVersionDataInfo {
    std::string deviceKey;   // ANSI code page
    std::wstring modelId;    // also the resource id of the display name
    std::wstring imagePath;  // relative to the skin folder
    std::wstring version;
    std::vector<std::wstring> descLines;  // device information
    std::uint64_t reserved = 0;           // carried along, not used
    bool isDriver = false;                // driver or firmware; otherwise a companion app
};
