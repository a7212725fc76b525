#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace update_service {

// Where an accessory's update stands.
enum class Phase { kIdle, kDownloading, kPaused, kInstalling, kInstalled, kFailed };

// The word that the state file has for it.
const char* NameOf(Phase phase);

// What the service remembers of one accessory.
struct DeviceState {
    Phase phase = Phase::kIdle;
    std::string sha256;  // of the package that the phase is about

    bool operator==(const DeviceState&) const = default;
};

using ServiceState = std::map<std::string, DeviceState>;  // by device key [UTF-8]

// The state file, a JSON file:
//     { "devices": { "pen-01": { "phase": "downloading", "sha256": "<64 digits>" } } }
// Empty when there is no file. Throws std::runtime_error, naming the file and the reason, when it cannot be understood.
ServiceState ReadState(const std::filesystem::path& file);

// Replaces the file: whenever the process is killed, it holds the old state or the new one. Throws std::system_error.
void WriteState(const std::filesystem::path& file, const ServiceState& state);

}  // namespace update_service
