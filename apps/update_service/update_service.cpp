#include "update_service.h"

#include <system_error>

#include "base/reason.h"

namespace update_service {
namespace {

// A key of a catalogue is short; one that somebody sent may be of any length.
std::string Shown(const std::string& deviceKey) {
    constexpr std::size_t kMostShown = 100;  // [bytes]
    if (deviceKey.size() <= kMostShown) return deviceKey;
    return deviceKey.substr(0, kMostShown) + "... (" + std::to_string(deviceKey.size()) + " bytes)";
}

// Subjects of lines.
constexpr char kRequests[] = "requests for ";
constexpr char kUnknown[] = "requests for accessories that the catalogue does not have";

}  // namespace

UpdateService::UpdateService(const Catalogue& catalogue, ServiceOptions options, PageLink& page, Log log)
    : m_catalogue(catalogue),
      m_options(std::move(options)),
      m_page(page),
      m_log(std::move(log)),
      m_lines({},
              [this](const std::string& subject, std::size_t leftOut) {
                  m_log(LOG_LEVEL_EVENT, std::to_string(leftOut) + " lines about " + subject + " were left out");
              }),
      m_failAt(m_options.failAt) {
    for (const Accessory& accessory : m_catalogue.accessories) m_devices[accessory.deviceKey].accessory = &accessory;
    ReadDevices();
}

UpdateService::~UpdateService() { Stop(); }

void UpdateService::ReadDevices() {
    ServiceState state;
    try {
        state = ReadState(StateFile());
    } catch (const std::exception& error) {
        std::filesystem::path aside = StateFile();
        aside += ".bad";
        std::error_code ignored;
        std::filesystem::rename(StateFile(), aside, ignored);
        m_log(LOG_LEVEL_EVENT, "the state file is put aside: " + base::Reason(error));
    }
    for (auto& [key, device] : m_devices) {
        const auto remembered = state.find(key);
        if (remembered == state.end()) continue;
        if (remembered->second.sha256 == device.accessory->sha256) {
            device.phase = remembered->second.phase;
        } else {
            RemoveWorkFiles(WorkFilesOf(m_options.workFolder, key));
            WriteLog(LOG_LEVEL_EVENT, device, "the catalogue has another package now");
        }
    }
}

void UpdateService::Resume() {
    for (auto& [key, device] : m_devices) {
        // Only a device's own worker changes its phase meanwhile, and this one has none yet.
        if (device.phase != Phase::kDownloading && device.phase != Phase::kInstalling) continue;
        WriteLog(LOG_LEVEL_EVENT, device, std::string("goes on: it was ") + NameOf(device.phase));
        Launch(device);
    }
}

void UpdateService::OnReady() {
    std::vector<Accessory> list;
    {
        const base::MutexLock lock(m_mutex);
        for (const Accessory& accessory : m_catalogue.accessories) {
            if (m_devices.at(accessory.deviceKey).phase != Phase::kInstalled) list.push_back(accessory);
        }
    }
    LogWithin("requests for the list", LOG_LEVEL_DETAIL,
              "a page is ready: " + std::to_string(list.size()) + " accessories");
    m_page.SendList(list);
}

void UpdateService::OnStart(const std::string& deviceKey) {
    Device* const device = FindDevice(deviceKey);
    if (!device) {
        LogWithin(kUnknown, LOG_LEVEL_EVENT, Shown(deviceKey) + ": start refused: the catalogue does not have it");
        m_page.Send(channel::to_page::IPC_MSG_PKG_FAIL, deviceKey);
        return;
    }
    if (!AnswerStart(*device)) Launch(*device);
}

bool UpdateService::AnswerStart(Device& device) {
    const base::MutexLock lock(m_mutex);
    switch (device.phase) {
        case Phase::kDownloading:
        case Phase::kInstalling:
            LogRequest(LOG_LEVEL_DETAIL, device, "runs already");
            m_page.SendProgress(device.accessory->deviceKey, device.percent);
            return true;
        case Phase::kInstalled:
            LogRequest(LOG_LEVEL_DETAIL, device, "is installed already");
            m_page.Send(channel::to_page::IPC_MSG_PKG_FINISH, device.accessory->deviceKey);
            return true;
        case Phase::kIdle:
        case Phase::kPaused:
        case Phase::kFailed:
            break;
    }
    return false;
}

void UpdateService::OnPause(const std::string& deviceKey) {
    Device* const device = FindDevice(deviceKey);
    if (!device) {
        LogWithin(kUnknown, LOG_LEVEL_EVENT, Shown(deviceKey) + ": pause ignored: the catalogue does not have it");
        return;
    }
    const base::MutexLock lock(m_mutex);
    if (device->phase != Phase::kDownloading) {
        LogRequest(LOG_LEVEL_EVENT, *device, std::string("pause ignored: it is ") + NameOf(device->phase));
        return;
    }
    SetPhase(*device, Phase::kPaused);
    device->worker.request_stop();
    LogRequest(LOG_LEVEL_DETAIL, *device, "paused at " + std::to_string(device->percent) + " percent");
}

void UpdateService::Stop() {
    for (auto& [key, device] : m_devices) device.worker.request_stop();
    m_stopInstallers.request_stop();
    for (auto& [key, device] : m_devices) {
        if (device.worker.joinable()) device.worker.join();
    }
}

UpdateService::Device* UpdateService::FindDevice(const std::string& deviceKey) {
    const auto found = m_devices.find(deviceKey);
    return found == m_devices.end() ? nullptr : &found->second;
}

// An earlier worker of the device has ended, or ends within one chunk.
void UpdateService::Launch(Device& device) {
    if (device.worker.joinable()) device.worker.join();
    {
        const base::MutexLock lock(m_mutex);
        SetPhase(device, Phase::kDownloading);
    }
    LogRequest(LOG_LEVEL_DETAIL, device, "started" + FromWhere(device));
    device.worker = std::jthread([this, &device](std::stop_token stop) { Update(device, stop); });
}

// What an earlier download has left, for the log.
std::string UpdateService::FromWhere(const Device& device) const {
    std::error_code missing;
    const auto size =
        std::filesystem::file_size(WorkFilesOf(m_options.workFolder, device.accessory->deviceKey).part, missing);
    return missing ? "" : ", goes on from byte " + std::to_string(size);
}

void UpdateService::SetPhase(Device& device, Phase phase) {
    device.phase = phase;
    ServiceState state;
    for (const auto& [key, each] : m_devices) {
        if (each.phase != Phase::kIdle) state[key] = {each.phase, each.accessory->sha256};
    }
    try {
        WriteState(StateFile(), state);
    } catch (const std::exception& error) {
        LogWithin("the state file", LOG_LEVEL_EVENT, "the state cannot be written: " + base::Reason(error));
    }
}

void UpdateService::WriteLog(LOG_MESSAGE_LEVEL level, const Device& device, const std::string& text) {
    const std::string& key = device.accessory->deviceKey;
    LogWithin(key, level, key + ": " + text);
}

// Apart from the device's other lines, which requests without end do not drown.
void UpdateService::LogRequest(LOG_MESSAGE_LEVEL level, const Device& device, const std::string& text) {
    const std::string& key = device.accessory->deviceKey;
    LogWithin(kRequests + key, level, key + ": " + text);
}

void UpdateService::LogWithin(const std::string& subject, LOG_MESSAGE_LEVEL level, const std::string& line) {
    if (m_lines.Spend(subject)) m_log(level, line);
}

std::filesystem::path UpdateService::StateFile() const { return m_options.workFolder / "state.json"; }

}  // namespace update_service
