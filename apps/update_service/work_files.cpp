#include "work_files.h"

#include <system_error>

namespace update_service {

namespace {

#if defined(_WIN32)
constexpr bool kCapitalsCount = false;  // files named alike but for capitals are one file
#else
constexpr bool kCapitalsCount = true;
#endif

bool IsPlain(char c) {
    return (c >= 'a' && c <= 'z') || (kCapitalsCount && c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_';
}

// Names that are devices in every folder on Windows, whatever follows a dot.
bool IsDevice(const std::string& key) {
    const std::string stem = key.substr(0, key.find('.'));
    if (stem == "con" || stem == "prn" || stem == "aux" || stem == "nul") return true;
    return stem.size() == 4 && (stem.starts_with("com") || stem.starts_with("lpt")) && stem[3] >= '0' && stem[3] <= '9';
}

}  // namespace

std::string SafeFileName(const std::string& deviceKey) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    const bool isDevice = !kCapitalsCount && IsDevice(deviceKey);
    std::string name;
    for (const char c : deviceKey) {
        const bool opensDevice = isDevice && name.empty();
        if ((IsPlain(c) && !opensDevice) || (c == '.' && !name.empty())) {
            name += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        name += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
    return name;
}

WorkFiles WorkFilesOf(const std::filesystem::path& workFolder, const std::string& deviceKey) {
    const std::string name = SafeFileName(deviceKey);
    return {workFolder / (name + ".part"), workFolder / (name + ".pkg")};
}

void RemoveWorkFiles(const WorkFiles& files) {
    std::error_code ignored;
    std::filesystem::remove(files.part, ignored);
    std::filesystem::remove(files.package, ignored);
}

}  // namespace update_service
