#include "accessory_update_config/accessory_update_config.h"

#include <cerrno>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <system_error>

#include "base/file.h"
#include "base/mutex.h"
#include "base/reason.h"
#include "base/text.h"
#include "running_programs.h"

namespace {

// Device key to the file name of its companion program [UTF-8].
using Companions = std::map<std::wstring, std::string>;

using Json = nlohmann::json;

[[noreturn]] void Fail(const std::filesystem::path& file, const std::string& where, const std::string& reason) {
    throw std::runtime_error(base::Utf8FromPath(file) + ": " + (where.empty() ? "" : where + ": ") + reason);
}

Json Parse(const std::filesystem::path& file) {
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) Fail(file, "", "cannot be opened: " + base::Reason(std::error_code(errno, std::generic_category())));
    try {
        return Json::parse(stream);
    } catch (const Json::exception& error) {  // also for a number that is too large
        // "[json.exception.parse_error.101] parse error at line 1, column 2: ..."
        const std::string text = error.what();
        Fail(file, "", text.substr(text.find("] ") + 2));
    }
}

// The only member that the object may have; fails for a missing or another one.
const Json& OnlyMember(const std::filesystem::path& file, const std::string& where, const Json& object,
                       const std::string& name) {
    if (!object.is_object()) Fail(file, where, "must be an object");
    const std::string prefix = where.empty() ? "" : where + ".";
    for (const auto& member : object.items()) {
        if (member.key() != name) Fail(file, prefix + member.key(), "is not known here");
    }
    if (!object.contains(name)) Fail(file, prefix + name, "is missing");
    return object[name];
}

// Throws std::runtime_error that names the file, the line or field, and the reason.
Companions ReadCompanions(const std::filesystem::path& file) {
    const Json root = Parse(file);
    const Json& list = OnlyMember(file, "", root, "companions");
    if (!list.is_object()) Fail(file, "companions", "must be an object");
    Companions companions;
    for (const auto& entry : list.items()) {
        const std::string where = "companions." + entry.key();
        const Json& program = OnlyMember(file, where, entry.value(), "program");
        if (!program.is_string()) Fail(file, where + ".program", "must be a text");
        const auto& name = program.get_ref<const std::string&>();
        if (name.empty()) Fail(file, where + ".program", "must not be empty");
        if (name.find_first_of("/\\") != std::string::npos) {
            Fail(file, where + ".program", "must be a file name without a folder");
        }
        companions[base::WideFromUtf8(entry.key())] = name;
    }
    return companions;
}

struct Configuration {
    base::Mutex mutex;
    Companions companions BASE_GUARDED_BY(mutex);
};

// Never destroyed: a click may still ask while the process exits.
Configuration& Current() {
    static Configuration& configuration = *new Configuration;
    return configuration;
}

// Empty for a key without a companion program.
std::string ProgramOf(const std::wstring& deviceKey) {
    Configuration& current = Current();
    const base::MutexLock lock(current.mutex);
    const auto found = current.companions.find(deviceKey);
    return found == current.companions.end() ? std::string() : found->second;
}

}  // namespace

bool AccessoryUpdateConfig::IsAccessoryApp(const std::wstring& deviceKey) { return !ProgramOf(deviceKey).empty(); }

bool AccessoryUpdateConfig::IsAccessoryAppRunning(const std::wstring& deviceKey) {
    const std::string program = ProgramOf(deviceKey);
    return !program.empty() && IsProgramRunning(program);
}

void AccessoryUpdateConfig::Load(const std::filesystem::path& file) {
    Companions companions = ReadCompanions(file);
    Configuration& current = Current();
    const base::MutexLock lock(current.mutex);
    current.companions = std::move(companions);
}
