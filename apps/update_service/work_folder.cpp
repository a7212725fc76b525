#include "work_folder.h"

#include <array>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <system_error>

#include "base/file.h"
#include "base/reason.h"

namespace update_service {
namespace {

using Json = nlohmann::ordered_json;

bool IsPlain(char c) {
    return (c >= 'a' && c <= 'z') || (base::CapitalsCount() && c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           c == '-' || c == '_';
}

constexpr Phase kPhases[] = {Phase::kIdle,       Phase::kDownloading, Phase::kPaused,
                             Phase::kInstalling, Phase::kInstalled,   Phase::kFailed};

Phase PhaseOf(const std::string& name) {
    for (const Phase phase : kPhases) {
        if (name == NameOf(phase)) return phase;
    }
    throw std::runtime_error("\"" + name + "\" is no phase");
}

}  // namespace

std::string SafeFileName(const std::string& deviceKey) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    const bool isDevice = base::IsDeviceName(deviceKey);
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

const char* NameOf(Phase phase) {
    constexpr std::array kNames = {"idle", "downloading", "paused", "installing", "installed", "failed"};
    return kNames.at(static_cast<std::size_t>(phase));
}

ServiceState ReadState(const std::filesystem::path& file) {
    if (!std::filesystem::exists(file)) return {};
    try {
        std::ifstream stream(file, std::ios::binary);
        const Json json = Json::parse(stream);
        ServiceState state;
        for (const auto& device : json.at("devices").items()) {
            state[device.key()] = {PhaseOf(device.value().at("phase").get<std::string>()),
                                   device.value().at("sha256").get<std::string>(),
                                   device.value().value("event", std::uint64_t{0})};
        }
        return state;
    } catch (const std::exception& error) {
        throw std::runtime_error(base::Utf8FromPath(file) + ": " + base::Reason(error));
    }
}

void WriteState(const std::filesystem::path& file, const ServiceState& state) {
    Json devices = Json::object();
    for (const auto& [key, device] : state) {
        devices[key] = {{"phase", NameOf(device.phase)}, {"sha256", device.sha256}};
        if (device.event != 0) devices[key]["event"] = device.event;
    }
    base::ReplaceContent(file, Json{{"devices", std::move(devices)}}.dump(2) + "\n");
}

}  // namespace update_service
