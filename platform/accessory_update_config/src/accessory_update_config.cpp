#include "accessory_update_config/accessory_update_config.h"

#include "base/mutex.h"
#include "companions.h"

namespace {

struct Configuration {
    base::Mutex mutex;
    Companions companions GUARDED_BY(mutex);
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
