// What an UpdateService does on the thread of one device.

#include "base/file.h"
#include "update_service.h"

namespace update_service {

void UpdateService::Update(Device& device, const std::stop_token& stop) {
    const WorkFiles files = WorkFilesOf(m_options.workFolder, device.accessory->deviceKey);
    if (Fetch(device, files, stop)) Install(device, files);
}

// True once the package is there and the installation may begin.
bool UpdateService::Fetch(Device& device, const WorkFiles& files, const std::stop_token& stop) {
    const TransferResult result =
        RunTransfer(TransferOf(device, files), stop, [&](int percent) { SendProgress(device, percent, stop); });
    const base::MutexLock lock(m_mutex);
    if (stop.stop_requested()) return false;  // paused, or stopped: even when that was at the last moment
    if (result.end == TransferEnd::kFailed) {
        if (result.wasAskedFor) m_failAt.erase(device.accessory->deviceKey);
        Fail(device, result.reason);
        return false;
    }
    SetPhase(device, Phase::kInstalling);
    return true;
}

Transfer UpdateService::TransferOf(const Device& device, const WorkFiles& files) {
    Transfer transfer{device.accessory->package, files, device.accessory->sha256, m_options.bytesPerSecond, {}};
    const base::MutexLock lock(m_mutex);
    const auto failAt = m_failAt.find(device.accessory->deviceKey);
    if (failAt != m_failAt.end()) transfer.failAt = failAt->second;
    return transfer;
}

void UpdateService::Install(Device& device, const WorkFiles& files) {
    WriteLog(LOG_LEVEL_DETAIL, device, "the installer starts");
    const InstallerResult result =
        RunInstaller(CallOf(*device.accessory, files), m_stopInstallers.get_token(), m_options.stopGrace);
    const base::MutexLock lock(m_mutex);
    switch (result.end) {
        case InstallerEnd::kAbandoned:
            // Still "installing" in the state file: the next service calls it again.
            WriteLog(LOG_LEVEL_EVENT, device, "the installer still runs while the service stops");
            return;
        case InstallerEnd::kFailed:
            Fail(device, "installer: " + result.reason);
            return;
        case InstallerEnd::kSucceeded:
            SetPhase(device, Phase::kInstalled);
            WriteLog(LOG_LEVEL_EVENT, device, "installed version " + device.accessory->version);
            SendEnd(PagesThatList(device.accessory->deviceKey), device);
            return;
    }
}

InstallerCall UpdateService::CallOf(const Accessory& accessory, const WorkFiles& files) const {
    const std::string package = base::Utf8FromPath(std::filesystem::absolute(files.package));
    InstallerCall call{accessory.installer, m_catalogue.folder, {}};
    call.command.push_back(package);
    call.environment = {{"ACCESSORY_KEY", accessory.deviceKey},
                        {"ACCESSORY_PACKAGE", package},
                        {"ACCESSORY_VERSION", accessory.version}};
    return call;
}

// Messages leave under the lock, so that none overtakes the answer to a pause or a second start.
void UpdateService::SendProgress(Device& device, int percent, const std::stop_token& stop) {
    const base::MutexLock lock(m_mutex);
    if (stop.stop_requested()) return;
    device.percent = percent;
    const std::string& key = device.accessory->deviceKey;
    m_page.SendProgress(PagesThatList(key), key, percent);
}

void UpdateService::Fail(Device& device, const std::string& reason) {
    SetPhase(device, Phase::kFailed);
    WriteLog(LOG_LEVEL_EVENT, device, "failed: " + reason);
    SendEnd(PagesThatList(device.accessory->deviceKey), device);
}

}  // namespace update_service
