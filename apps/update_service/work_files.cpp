#include "work_files.h"

#include <system_error>

#include "system_rules.h"

namespace update_service {

namespace {

bool IsPlain(char c) {
    return (c >= 'a' && c <= 'z') || (CapitalsCount() && c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_';
}

}  // namespace

std::string SafeFileName(const std::string& deviceKey) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    const bool isDevice = IsDeviceName(deviceKey);
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
