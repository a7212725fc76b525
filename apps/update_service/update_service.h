#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "base/line_budget.h"
#include "base/mutex.h"
#include "catalogue.h"
#include "channel/messages.h"
#include "installer.h"
#include "ipc_client/ipc_sender.h"
#include "package_transfer.h"
#include "qx_logger/qx_logger.h"
#include "work_folder.h"

namespace update_service {

// Where the service's log lines go [UTF-8, no line end]. Called on any thread, on several at once.
class Log {
public:
    using Write = std::function<void(LOG_MESSAGE_LEVEL level, const std::string& line)>;
    explicit Log(Write write) : m_write(std::move(write)) {}

    // A line that cannot be written is dropped, whatever the function throws.
    void operator()(LOG_MESSAGE_LEVEL level, const std::string& line) const noexcept {
        try {
            m_write(level, line);
        } catch (...) {
        }
    }

private:
    Write m_write;
};

using Pages = std::vector<IpcLife>;  // processes with an accessory page

// The service's way to the accessory pages: what it sends to those that are there. Called on any thread, on several at
// once; never waits for a page.
class PageLink {
public:
    virtual ~PageLink() = default;

    virtual void SendList(const IpcLife& page, const std::vector<Accessory>& accessories) = 0;
    virtual void SendProgress(const Pages& pages, const std::string& deviceKey, int percent) = 0;  // 100: installs
    // Any message that says only which device it is about. A page that has got one of that event does not get another.
    virtual void Send(const Pages& pages, const channel::ToPage<channel::DeviceKey>& message,
                      const std::string& deviceKey, std::uint64_t event) = 0;
};

// The pages' way to the service: what they ask for, and who comes and goes. Called on one thread at a time.
class PageRequests {
public:
    virtual ~PageRequests() = default;

    virtual void OnReady(const IpcLife& page) = 0;
    virtual void OnStart(const IpcLife& page, const std::string& deviceKey) = 0;  // a start, a resume or a retry
    virtual void OnPause(const IpcLife& page, const std::string& deviceKey) = 0;
    virtual void OnReturned(const IpcLife& page) = 0;  // one that an earlier service has known
    virtual void OnLeft(const IpcLife& page) = 0;
};

struct ServiceOptions {
    std::filesystem::path workFolder;            // part files, packages and the state file; must exist
    std::uint64_t bytesPerSecond = 0;            // of each transfer; 0: no limit
    std::map<std::string, int> failAt;           // [percent] by device key: the first transfer to get there fails
    std::chrono::milliseconds stopGrace{10000};  // for installers that run while the service stops
};

// The updates of all accessories of a catalogue. Each one that runs has a thread of its own:
//
//                  start                     hash is right               exit status 0
//     idle, paused, failed --> downloading ----------------> installing ---------------> installed
//                                  | | pause                      |
//              any failure: failed +-+----> paused                +--> failed
//
// The installed ones are not listed any more, until the catalogue brings another package. A pause while the installer
// runs changes nothing: it cannot be stopped half-way, and its end is reported as ever. Whatever is asked twice is
// answered with where the update stands.
//
// Each change of a phase is written to the state file before it is sent, so that a service that was killed can
// continue, and tell the pages that live on where their devices stand. An answer goes to the page that asked, what
// becomes of a device to all that list it.
class UpdateService final : public PageRequests {
public:
    // Reads the state file. One that cannot be understood is put aside, with a log line. `catalogue`, `page` and `log`
    // must outlive the service.
    UpdateService(const Catalogue& catalogue, ServiceOptions options, PageLink& page, Log log);
    ~UpdateService() override;  // stops

    // Starts again what ran when the last service ended. Call once, before requests come in.
    void Resume();

    void OnReady(const IpcLife& page) override;
    void OnStart(const IpcLife& page, const std::string& deviceKey) override;
    void OnPause(const IpcLife& page, const std::string& deviceKey) override;
    void OnReturned(const IpcLife& page) override;
    void OnLeft(const IpcLife& page) override;

    // Ends the transfers, which go on when the next service starts, and waits for installers as long as the options
    // say. What is asked from then on is answered, and written into the state file for the next service to carry out.
    void Stop();

private:
    struct Device {
        const Accessory* accessory = nullptr;
        Phase phase = Phase::kIdle;
        std::optional<int> percent;  // sent last
        std::uint64_t event = 0;     // its end or failure
        std::jthread worker;         // touched by requests only
    };

    void ReadDevices();
    Device* FindDevice(const std::string& deviceKey);
    void Launch(Device& device);

    // On the worker's thread.
    void Update(Device& device, const std::stop_token& stop);
    bool Fetch(Device& device, const WorkFiles& files, const std::stop_token& stop);
    void Install(Device& device, const WorkFiles& files);
    InstallerCall CallOf(const Accessory& accessory, const WorkFiles& files) const;
    void SendProgress(Device& device, int percent, const std::stop_token& stop);

    bool AnswerStart(const IpcLife& page, Device& device);  // where it stands; false for one that is to be started
    void SendState(const IpcLife& page, const Device& device) BASE_REQUIRES(m_mutex);
    void SendEnd(const Pages& pages, const Device& device) BASE_REQUIRES(m_mutex);
    Pages PagesThatList(const std::string& deviceKey) const BASE_REQUIRES(m_mutex);
    void SetPhase(Device& device, Phase phase) BASE_REQUIRES(m_mutex);
    void Fail(Device& device, const std::string& reason) BASE_REQUIRES(m_mutex);

    std::string FromWhere(const Device& device) const;
    void WriteLog(LOG_MESSAGE_LEVEL level, const Device& device, const std::string& text);
    void LogRequest(LOG_MESSAGE_LEVEL level, const Device& device, const std::string& text);
    void LogWithin(const std::string& subject, LOG_MESSAGE_LEVEL level, const std::string& line);
    Transfer TransferOf(const Device& device, const WorkFiles& files);
    std::filesystem::path StateFile() const;

    const Catalogue& m_catalogue;
    ServiceOptions m_options;
    PageLink& m_page;
    const Log m_log;
    base::LineBudget m_lines;
    std::stop_source m_stopInstallers;

    base::Mutex m_launchMutex;  // taken before m_mutex; while it is held a worker may be made
    bool m_isStopping BASE_GUARDED_BY(m_launchMutex) = false;

    base::Mutex m_mutex;  // also guards the devices' phases and percentages, and the state file
    std::map<std::string, int> m_failAt BASE_GUARDED_BY(m_mutex);  // as in the options, less those that have failed
    std::map<IpcLife, std::set<std::string>> m_lists BASE_GUARDED_BY(m_mutex);  // the device keys that each page has
    std::map<std::string, Device> m_devices;  // by device key; the map itself never changes
};

}  // namespace update_service
