// The built module loaded and unloaded again and again in one process, while a service speaks to its pages.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "base/process.h"
#include "channel_client.h"
#include "duilib/render_engine.h"
#include "fixed_cell_measurer.h"
#include "host_page.h"
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_diagnostics.h"
#include "ipc_client/ipc_message_client.h"
#include "kernel/sleep.h"
#include "kernel/ui_turn.h"
#include "minimal_layouts.h"
#include "module_loader/page_module.h"
#include "process_usage.h"
#include "qx_logger/qx_logger.h"
#include "temporary_folder.h"
#include "wait_until.h"

namespace {

namespace from_page = channel::from_page;
namespace to_page = channel::to_page;
using test_support::WaitUntil;

constexpr int kWarmUp = 300;  // loads before anything is measured: caches fill, the allocation takes its memory

// The documented leaks (docs/deliberate-behaviour.md) and what may be measured wrongly [bytes].
constexpr std::uint64_t kLeakOfALoad = 64;   // the page's client handle, and what the system keeps of a library
constexpr std::uint64_t kLeakOfARow = 1450;  // the row, its client, registry, handle and texts
constexpr std::uint64_t kUncertain = 128 * 1024;

// When a page is left, seen from the messages that are on their way to it.
enum class Leave { kAtOnce, kWhileTheListIsBuilt, kWhilePercentagesCome, kAfterAnEnd };
constexpr Leave kLeaves[] = {Leave::kAtOnce, Leave::kWhileTheListIsBuilt, Leave::kWhilePercentagesCome,
                             Leave::kAfterAnEnd};

// A pipe folder that goes after everything that looks into it.
class PipeFolder {
public:
    PipeFolder() { base::SetVariable("BRINDLE_PIPE_DIR", base::Utf8FromPath(m_folder)); }

private:
    const test_support::TemporaryFolder m_folder;
};

// Answers each page that is ready with more than it hears before it is left.
class TalkativeService {
public:
    TalkativeService() {
        channel_client::Listen(m_client, from_page::IPC_MSG_ALL_UPDATE_DATA, [this](const auto&) { Answer(); });
    }
    ~TalkativeService() { m_client.UnRegisterMessageCallbackAll(); }

    template <class Payload>
    void Post(const channel::ToPage<Payload>& message, const std::type_identity_t<Payload>& payload) {
        EXPECT_EQ(channel_client::Post(m_client, IPC_ENDPOINT_UPDATE_SERVICE, message, payload),
                  channel_client::PostResult::kPosted);
    }

    int Answers() const { return m_answers; }

private:
    void Answer() {
        channel::AccessoryList list(2);
        list[0].deviceKey = "X1";
        list[1].deviceKey = "X2";
        Post(to_page::IPC_MSG_ALL_UPDATE_DATA, list);
        for (int percent = 0; percent < 50; ++percent) Post(to_page::IPC_MSG_DOWNLOAD_PROCESS, {"X1", percent});
        Post(to_page::IPC_MSG_PKG_FINISH, {"X2"});
        for (int percent = 50; percent <= 100; ++percent) Post(to_page::IPC_MSG_DOWNLOAD_PROCESS, {"X1", percent});
        Post(to_page::IPC_MSG_PKG_FAIL, {"X1"});
        Post(to_page::IPC_MSG_DOWNLOAD_PROCESS, {"X1", 50});  // the failed look has no text
        ++m_answers;
    }

    std::atomic<int> m_answers{0};
    IPCMessageClient m_client{IPC_ENDPOINT_UPDATE_SERVICE, true, false, IPC_PIPE_ASSISTANT};
};

// Hears what pages tell their host, so that nothing of it waits for somebody.
class Host {
public:
    Host() {
        namespace from_page = channel::from_page;
        channel_client::Listen(m_plugin, from_page::IPC_MSG_PLUGIN_UPDATE, [](const auto&) {});
        channel_client::Listen(m_plugin, from_page::IPC_MSG_PLUGIN_UPDATE_FINISH, [](const auto&) {});
        channel_client::Listen(m_layout, from_page::IPC_MSG_CONTENT_HEIGHT, [](const auto&) {});
        channel_client::Listen(m_status, from_page::IPC_MSG_NO_UPDATES_LEFT, [](const auto&) {});
    }

private:
    IPCMessageClient m_plugin{IPC_ENDPOINT_HOST_PLUGIN, true, false, IPC_PIPE_ASSISTANT};
    IPCMessageClient m_layout{IPC_ENDPOINT_HOST_LAYOUT, true, false, IPC_PIPE_ASSISTANT};
    IPCMessageClient m_status{IPC_ENDPOINT_HOST_STATUS, true, false, IPC_PIPE_ASSISTANT};
};

class ModuleReload : public testing::Test {
protected:
    ModuleReload() {
        SetIpcLogSink([](int, const std::string&) {});
        QxLogger::GetInstance()->Open({.file = {}, .console = false});
        kernel::SetSleeper([](std::uint32_t) {});
        m_broker.Start();
        const kernel::UiTurn turn;
        DuiLib::CRenderEngine::SetTextMeasurer(&m_measurer);
    }
    ~ModuleReload() override {
        const kernel::UiTurn turn;
        DuiLib::CRenderEngine::SetTextMeasurer(nullptr);
        kernel::SetSleeper({});
    }

    // One life of the module. Nothing that it was given outlives it.
    void LoadAndUnload(Leave leave) {
        PageModule module{PageModule::DefaultPath()};
        auto page = std::make_unique<HostPage>();
        {
            const kernel::UiTurn turn;
            module.CreateSetting(page->Manager(), page->Pump(), page->Parent());
        }
        ++m_loads;
        EXPECT_TRUE(WaitUntil([&] { return MayLeave(*page, leave); })) << "load " << m_loads;
        {
            const kernel::UiTurn turn;
            module.CloseWnd();
            m_rows += Rows(*page);
            page.reset();
        }
        ASSERT_TRUE(module.Unload());
    }

    static int Rows(HostPage& page) {
        const auto* const list = dynamic_cast<DuiLib::CContainerUI*>(page.Find(L"accessVer"));
        return list == nullptr ? 0 : (list->GetCount() + 1) / 2;  // separators stand between them
    }

    static bool MayLeave(HostPage& page, Leave leave) {
        const kernel::UiTurn turn;
        if (leave == Leave::kAtOnce) return true;
        if (leave == Leave::kWhileTheListIsBuilt) return Rows(page) >= 1;
        if (Rows(page) < 2) return false;
        if (leave == Leave::kWhilePercentagesCome) return !page.Find(L"X1progress")->GetText().IsEmpty();
        return !page.Find(L"X2hor")->IsVisible();
    }

    // Takes what is still on its way to a page, so that nothing of it is measured.
    void TakeWhatIsLeft() {
        ASSERT_TRUE(WaitUntil([&] { return m_service.Answers() >= m_loads; }));
        std::atomic<bool> all{false};
        IPCMessageClient bystander(IPC_ENDPOINT_PLUGIN, true, false, IPC_PIPE_ASSISTANT);
        channel_client::Listen(bystander, to_page::IPC_MSG_ALL_UPDATE_DATA, [](const auto&) {});
        channel_client::Listen(bystander, to_page::IPC_MSG_DOWNLOAD_PROCESS, [](const auto&) {});
        channel_client::Listen(bystander, to_page::IPC_MSG_PKG_FINISH, [](const auto&) {});
        channel_client::Listen(bystander, to_page::IPC_MSG_PKG_FAIL,
                               [&](const channel::DeviceKey& device) { all = all || device.key == "the last"; });
        m_service.Post(to_page::IPC_MSG_PKG_FAIL, {"the last"});
        EXPECT_TRUE(WaitUntil([&] { return all.load(); }));
        bystander.UnRegisterMessageCallbackAll();
    }

    PipeFolder m_folder;
    MinimalLayouts m_layouts{{}};
    FixedCellMeasurer m_measurer{{8, 20}};
    IPCBroker m_broker{IPC_PIPE_ASSISTANT};
    Host m_host;  // keeps the connection
    TalkativeService m_service;
    int m_loads = 0;
    std::uint64_t m_rows = 0;  // that the loads have left behind
};

TEST_F(ModuleReload, LeavesNothingBehindButTheDocumentedLeaks) {
    for (int i = 0; i < kWarmUp; ++i) ASSERT_NO_FATAL_FAILURE(LoadAndUnload(kLeaves[i % std::size(kLeaves)]));
    TakeWhatIsLeft();
    const test_support::ProcessUsage before = test_support::OwnUsage();
    const std::uint64_t heap = test_support::HeapInUse();
    const std::uint64_t rows = m_rows;

    for (int i = 0; i < MODULE_LOADS; ++i) ASSERT_NO_FATAL_FAILURE(LoadAndUnload(kLeaves[i % std::size(kLeaves)]));
    TakeWhatIsLeft();
    EXPECT_TRUE(WaitUntil([&] { return test_support::OwnUsage().threads <= before.threads; }));
    EXPECT_LE(test_support::OwnUsage().handles, before.handles);
    const std::uint64_t made = m_rows - rows;
    EXPECT_GE(made, MODULE_LOADS);
    const std::uint64_t documented = MODULE_LOADS * kLeakOfALoad + made * kLeakOfARow;
    const std::uint64_t now = test_support::HeapInUse();
    RecordProperty("rows", static_cast<int>(made));
    RecordProperty("bytes", static_cast<int>(now - heap));
    EXPECT_LE(now, heap + documented + kUncertain) << made << " rows";
}

}  // namespace
