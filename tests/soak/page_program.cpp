// A host of the soak: opens the page, clicks here and there, leaves it and opens it again, until its input ends.
//
//     soak_page ROWS_FILE SEED
//
// ROWS_FILE tells how many rows there have been: each leaves something behind on purpose.
#include <chrono>
#include <condition_variable>
#include <iostream>
#include <mutex>
#include <random>
#include <string>
#include <thread>

#include "base/file.h"
#include "base/reason.h"
#include "channel_client.h"
#include "devices.h"
#include "duilib/duilib.h"
#include "host_page.h"
#include "kernel/sleep.h"
#include "kernel/ui_turn.h"
#include "module_loader/page_module.h"
#include "qx_logger/qx_logger.h"

namespace soak {
namespace {

using namespace std::chrono_literals;

// The end of this program's input, which another thread waits for.
class InputEnd {
public:
    InputEnd() {
        std::thread([this] {
            while (std::cin.get() != std::char_traits<char>::eof()) {
            }
            const std::lock_guard lock(m_mutex);
            m_ended = true;
            m_changed.notify_all();
        }).detach();
    }

    // Whether it has come, or comes within the time.
    bool IsThere(std::chrono::milliseconds limit) {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, limit, [this] { return m_ended; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_ended = false;
};

class SoakHost {
public:
    explicit SoakHost(unsigned seed) : m_random(seed) {
        namespace from_page = channel::from_page;
        channel_client::Listen(m_layout, from_page::IPC_MSG_CONTENT_HEIGHT, [](const auto&) {});
        channel_client::Listen(m_plugin, from_page::IPC_MSG_PLUGIN_UPDATE, [](const auto&) {});
        channel_client::Listen(m_plugin, from_page::IPC_MSG_PLUGIN_UPDATE_FINISH, [](const auto&) {});
        channel_client::Listen(m_nothingLeft, from_page::IPC_MSG_NO_UPDATES_LEFT, [](const auto&) {});
        kernel::SetSleeper([](std::uint32_t milliseconds) {
            std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds / 100));  // as --wait-percent 1 does
        });
        const kernel::UiTurn turn;
        auto* const resources = DuiLib::CResourceManager::GetInstance();
        resources->SetResourceBase(base::ProgramFolder());
        resources->SetSkinFolder(resources->Resolve(L"../components/brindle/res"));
        DuiLib::UICulture::GetInstance()->Load(resources->ResolveSkinFile(L"language/en-US.xml"));
    }

    // One life of the page; false once the input has ended.
    bool Visit(InputEnd& end) {
        {
            const kernel::UiTurn turn;
            m_module.CreateSetting(m_page.Manager(), m_page.Pump(), m_page.Parent());
        }
        for (int i = 0; i < 100 && Rows() == 0 && !end.IsThere(10ms); ++i) {
        }
        for (int act = Random(10, 60); act > 0 && !end.IsThere(50ms); --act) ActSomehow();
        {
            const kernel::UiTurn turn;
            m_module.CloseWnd();
            m_rows += static_cast<std::uint64_t>(Rows());
            m_page.Discard();
        }
        return !end.IsThere(0ms);
    }

    std::uint64_t RowsSoFar() const { return m_rows; }

private:
    int Random(int least, int most) { return std::uniform_int_distribution(least, most)(m_random); }

    // What is updated is begun again and again; only what ends badly anyhow is paused.
    void ActSomehow() {
        switch (Random(0, 5)) {
            case 0:
                return Click(Random(0, kFailing - 1), L"stopBtn");
            case 1:
            case 2:
                return Click(Random(0, kDevices - 1), L"updateBtn");
            default:
                return Click(Random(0, kDevices - 1), L"pulldown");
        }
    }

    int Rows() {
        const kernel::UiTurn turn;
        const auto* const list = dynamic_cast<DuiLib::CContainerUI*>(m_page.Find(L"accessVer"));
        return list == nullptr ? 0 : (list->GetCount() + 1) / 2;  // separators stand between them
    }

    void Click(int device, const std::wstring& button) {
        const kernel::UiTurn turn;
        const std::string key = KeyOf(device);
        m_page.Notify(std::wstring(key.begin(), key.end()) + button);
        m_page.Manager()->Layout();
    }

    IPCMessageClient m_layout{IPC_ENDPOINT_HOST_LAYOUT, true, false, IPC_PIPE_ASSISTANT};
    IPCMessageClient m_plugin{IPC_ENDPOINT_HOST_PLUGIN, true, false, IPC_PIPE_ASSISTANT};
    IPCMessageClient m_nothingLeft{IPC_ENDPOINT_HOST_STATUS, true, false, IPC_PIPE_ASSISTANT};
    HostPage m_page;
    const PageModule m_module{PageModule::DefaultPath()};
    std::mt19937 m_random;
    std::uint64_t m_rows = 0;
};

int Main(int argc, char** argv) {
    if (argc != 3) return 1;
    try {
        QxLogger::GetInstance()->Open({.file = {}, .console = false});
        InputEnd end;
        SoakHost host(static_cast<unsigned>(std::stoul(argv[2])));
        bool goesOn = true;
        while (goesOn) {
            goesOn = host.Visit(end);
            base::ReplaceContent(argv[1], std::to_string(host.RowsSoFar()));
        }
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "soak_page: " << base::Reason(error) << "\n";
        return 1;
    }
}

}  // namespace
}  // namespace soak

int main(int argc, char** argv) { return soak::Main(argc, argv); }
