#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

// What the service keeps in its work folder, so that updates survive its end: the files of each device, and a state
// file that says where each update stands.
namespace update_service {

// The file name that stands for a device key: letters, digits and "-_" stay, a point too unless it is the first
// character, and every other byte becomes "%" and two hexadecimal digits; on Windows also capitals and the first letter
// of a device's name, such as "nul". Different keys have different names.
std::string SafeFileName(const std::string& deviceKey);

inline constexpr std::size_t kMaxSafeFileName = 200;  // [bytes] what file systems take, with room for a suffix

// The files of one device in the service's work folder.
struct WorkFiles {
    std::filesystem::path part;     // what has been fetched so far; its length is where the download continues
    std::filesystem::path package;  // complete and checked; stays after the installation
};

WorkFiles WorkFilesOf(const std::filesystem::path& workFolder, const std::string& deviceKey);

// Removes both, as far as they are there.
void RemoveWorkFiles(const WorkFiles& files);

// Where an accessory's update stands. NameOf has their names in this order.
enum class Phase { kIdle, kDownloading, kPaused, kInstalling, kInstalled, kFailed };

// The word that the state file has for it.
const char* NameOf(Phase phase);

// What the service remembers of one accessory.
struct DeviceState {
    Phase phase = Phase::kIdle;
    std::string sha256;       // of the package that the phase is about
    std::uint64_t event = 0;  // its end or failure, so that pages tell it from another one; 0: it has not ended

    bool operator==(const DeviceState&) const = default;
};

using ServiceState = std::map<std::string, DeviceState>;  // by device key [UTF-8]

// The state file, a JSON file:
//     { "devices": { "pen-01": { "phase": "downloading", "sha256": "<64 digits>" } } }
// and, where it has ended, "event", a number
// Empty when there is no file. Throws std::runtime_error, naming the file and the reason, when it cannot be understood.
ServiceState ReadState(const std::filesystem::path& file);

// Replaces the file: whenever the process is killed, it holds the old state or the new one. Throws std::system_error.
void WriteState(const std::filesystem::path& file, const ServiceState& state);

}  // namespace update_service
