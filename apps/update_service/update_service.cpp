#include "update_service.h"

#include <random>
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

namespace {

// What no other end or failure has been called.
std::uint64_t NewEvent() {
    std::random_device random;
    return (static_cast<std::uint64_t>(random()) << 32 | random()) | 1;
}

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
            device.event = remembered->second.event;
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

void UpdateService::OnReady(const IpcLife& page) {
    std::vector<Accessory> list;
    {
        const base::MutexLock lock(m_mutex);
        std::set<std::string>& keys = m_lists[page];
        for (const Accessory& accessory : m_catalogue.accessories) {
            if (m_devices.at(accessory.deviceKey).phase == Phase::kInstalled) continue;
            list.push_back(accessory);
            keys.insert(accessory.deviceKey);
        }
    }
    LogWithin("requests for the list", LOG_LEVEL_DETAIL,
              "a page is ready: " + std::to_string(list.size()) + " accessories");
    m_page.SendList(page, list);
}

// Nobody knows what its list has, and how much of what became of it has reached it: it is told of everything.
void UpdateService::OnReturned(const IpcLife& page) {
    const base::MutexLock lock(m_mutex);
    std::set<std::string>& keys = m_lists[page];
    for (const auto& [key, device] : m_devices) {
        keys.insert(key);
        SendState(page, device);
    }
    LogWithin("pages that come back", LOG_LEVEL_DETAIL, "a page has come back, and is told how its devices are");
}

void UpdateService::OnLeft(const IpcLife& page) {
    const base::MutexLock lock(m_mutex);
    m_lists.erase(page);
}

void UpdateService::SendState(const IpcLife& page, const Device& device) {
    switch (device.phase) {
        case Phase::kDownloading:
        case Phase::kInstalling:
            if (device.percent) m_page.SendProgress({page}, device.accessory->deviceKey, *device.percent);
            return;
        case Phase::kInstalled:
        case Phase::kFailed:
            return SendEnd({page}, device);
        case Phase::kIdle:
        case Phase::kPaused:
            return;  // as the page has it
    }
}

void UpdateService::SendEnd(const Pages& pages, const Device& device) {
    const bool isGood = device.phase == Phase::kInstalled;
    m_page.Send(pages, isGood ? channel::to_page::IPC_MSG_PKG_FINISH : channel::to_page::IPC_MSG_PKG_FAIL,
                device.accessory->deviceKey, device.event);
}

Pages UpdateService::PagesThatList(const std::string& deviceKey) const {
    Pages pages;
    for (const auto& [page, keys] : m_lists) {
        if (keys.contains(deviceKey)) pages.push_back(page);
    }
    return pages;
}

void UpdateService::OnStart(const IpcLife& page, const std::string& deviceKey) {
    Device* const device = FindDevice(deviceKey);
    if (!device) {
        LogWithin(kUnknown, LOG_LEVEL_EVENT, Shown(deviceKey) + ": start refused: the catalogue does not have it");
        m_page.Send({page}, channel::to_page::IPC_MSG_PKG_FAIL, deviceKey, 0);
        return;
    }
    if (!AnswerStart(page, *device)) Launch(*device);
}

bool UpdateService::AnswerStart(const IpcLife& page, Device& device) {
    const base::MutexLock lock(m_mutex);
    m_lists[page].insert(device.accessory->deviceKey);
    switch (device.phase) {
        case Phase::kDownloading:
        case Phase::kInstalling:
            LogRequest(LOG_LEVEL_DETAIL, device, "runs already");
            SendState(page, device);
            return true;
        case Phase::kInstalled:
            LogRequest(LOG_LEVEL_DETAIL, device, "is installed already");
            SendState(page, device);
            return true;
        case Phase::kIdle:
        case Phase::kPaused:
        case Phase::kFailed:
            break;
    }
    return false;
}

void UpdateService::OnPause(const IpcLife& page, const std::string& deviceKey) {
    Device* const device = FindDevice(deviceKey);
    if (!device) {
        LogWithin(kUnknown, LOG_LEVEL_EVENT, Shown(deviceKey) + ": pause ignored: the catalogue does not have it");
        return;
    }
    const base::MutexLock lock(m_mutex);
    m_lists[page].insert(deviceKey);
    if (device->phase != Phase::kDownloading) {
        LogRequest(LOG_LEVEL_EVENT, *device, std::string("pause ignored: it is ") + NameOf(device->phase));
        return;
    }
    SetPhase(*device, Phase::kPaused);
    device->worker.request_stop();
    LogRequest(LOG_LEVEL_DETAIL, *device, "paused at " + std::to_string(device->percent.value_or(0)) + " percent");
}

void UpdateService::Stop() {
    {
        const base::MutexLock lock(m_launchMutex);
        m_isStopping = true;
    }
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

// An earlier worker of the device has ended, or ends within one chunk. While the service stops, none is made.
void UpdateService::Launch(Device& device) {
    const base::MutexLock launchLock(m_launchMutex);
    if (!m_isStopping && device.worker.joinable()) device.worker.join();
    {
        const base::MutexLock lock(m_mutex);
        SetPhase(device, Phase::kDownloading);
    }
    if (m_isStopping) return LogRequest(LOG_LEVEL_DETAIL, device, "started, for the next service to carry out");
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
    device.event = phase == Phase::kInstalled || phase == Phase::kFailed ? NewEvent() : 0;
    ServiceState state;
    for (const auto& [key, each] : m_devices) {
        if (each.phase != Phase::kIdle) state[key] = {each.phase, each.accessory->sha256, each.event};
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
