#pragma once

#include <filesystem>
#include <string>

#include "accessory_update_config/export.h"

// Tells which accessories come with a companion program, and whether that program runs right now. An accessory must not
// be updated while its companion program holds the device. Any thread.
//
// The configuration is a JSON file, for example
//     { "companions": { "pen-01": { "program": "pen_studio" } } }
// where "program" is the executable's file name, without a folder. Without a file no accessory has a companion.
class ACCESSORY_UPDATE_CONFIG_API AccessoryUpdateConfig {
public:
    // Whether a companion program is configured for the device key.
    static bool IsAccessoryApp(const std::wstring& deviceKey);

    // Whether the companion program of the device key runs, looked up among the system's processes at each call. False
    // for a key without one.
    static bool IsAccessoryAppRunning(const std::wstring& deviceKey);

    // Reads the file and replaces the configuration. Throws std::runtime_error, naming the file, the line or field and
    // the reason; the old configuration then stays.
    static void Load(const std::filesystem::path& file);
};
