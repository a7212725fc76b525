#pragma once

#include <filesystem>
#include <string>

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

}  // namespace update_service
