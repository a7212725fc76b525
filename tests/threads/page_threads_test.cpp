// CloseWnd, clicks and deliveries on their own threads: the built module with the real toolkit, client and broker.
#include <gmock/gmock.h>
#include <stdlib.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <thread>

#include "base/process.h"
#include "channel_client.h"
#include "duilib/render_engine.h"
#include "fixed_cell_measurer.h"
#include "held_sleep.h"
#include "host_page.h"
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_diagnostics.h"
#include "ipc_client/ipc_message_client.h"
#include "kernel/ui_turn.h"
#include "minimal_layouts.h"
#include "module_loader/page_module.h"
#include "qx_logger/qx_logger.h"
#include "temporary_folder.h"

namespace {

namespace from_page = channel::from_page;
namespace to_page = channel::to_page;
using testing::Contains;
using testing::ElementsAre;

constexpr std::uint32_t kHeightPause = 100, kEndPause = 2000;  // [ms] what the page asks for

// A pipe folder of one test. Clients of an earlier test's rows, which live on, go on looking at theirs.
class PipeFolder {
public:
    PipeFolder() { base::SetVariable("BRINDLE_PIPE_DIR", base::Utf8FromPath(m_folder)); }

private:
    const test_support::TemporaryFolder m_folder;
};

// An endpoint that keeps what it is sent: "MSG payload", ids in hex, zero bytes left out.
class Listener {
public:
    Listener(std::int32_t endpoint, std::initializer_list<std::int32_t> messages)
        : client(endpoint, true, false, IPC_PIPE_ASSISTANT) {
        for (const std::int32_t msgId : messages) {
            client.RegisterMessageCallback(msgId, [this](TagIPCMessageItem& item) { Add(item); });
        }
    }
    ~Listener() { client.UnRegisterMessageCallbackAll(); }

    // What has come once `line` has; the test has failed when it does not come.
    std::vector<std::string> WaitFor(const std::string& line) {
        std::unique_lock lock(m_mutex);
        EXPECT_TRUE(m_came.wait_for(lock, std::chrono::seconds(30), [&] {
            return std::find(m_lines.begin(), m_lines.end(), line) != m_lines.end();
        })) << line;
        return m_lines;
    }

    IPCMessageClient client;

private:
    void Add(const TagIPCMessageItem& item) {
        char id[16];
        std::snprintf(id, sizeof id, "%X", static_cast<unsigned>(item.msgId));
        const std::lock_guard lock(m_mutex);
        m_lines.push_back(std::string(id) + (item.data == nullptr ? "" : " " + std::string(item.data)));
        m_came.notify_all();
    }

    std::mutex m_mutex;
    std::condition_variable m_came;
    std::vector<std::string> m_lines;
};

// This thread is the UI thread; the service and the host's endpoints listen on theirs.
class PageThreads : public testing::Test {
protected:
    PageThreads() {
        SetIpcLogSink([](int, const std::string&) {});
        QxLogger::GetInstance()->Open({.file = {}, .console = false});
        m_broker.Start();
        const kernel::UiTurn turn;
        DuiLib::CRenderEngine::SetTextMeasurer(&m_measurer);
        m_module.CreateSetting(m_page.Manager(), m_page.Pump(), m_page.Parent());
    }
    ~PageThreads() override {
        m_sleep.LetGo();
        {
            const kernel::UiTurn turn;
            m_module.CloseWnd();
            m_page.Discard();
            DuiLib::CRenderEngine::SetTextMeasurer(nullptr);
        }
        SetIpcTrace(nullptr);
    }

    template <class Payload>
    void Post(const channel::ToPage<Payload>& message, const std::type_identity_t<Payload>& payload) {
        EXPECT_EQ(channel_client::Post(m_service.client, IPC_ENDPOINT_UPDATE_SERVICE, message, payload),
                  channel_client::PostResult::kPosted);
    }
    void PostList(std::initializer_list<const char*> keys) {
        m_service.WaitFor("B20027");
        channel::AccessoryList list(keys.size());
        std::size_t row = 0;
        for (const char* const key : keys) list[row++].deviceKey = key;
        Post(to_page::IPC_MSG_ALL_UPDATE_DATA, list);
    }
    void PostProgress(const std::string& key, int percent) { Post(to_page::IPC_MSG_DOWNLOAD_PROCESS, {key, percent}); }
    void PostFinish(const std::string& key) { Post(to_page::IPC_MSG_PKG_FINISH, {key}); }

    void Click(std::wstring_view control) {
        const kernel::UiTurn turn;
        EXPECT_TRUE(m_page.Notify(control));
    }

    // Leaves the page while a handler sleeps. The sleeper goes on only once CloseWnd has given up the turn.
    void CloseOverTheSleeper() {
        std::atomic<bool> woken{false};
        std::thread other;
        {
            const kernel::UiTurn turn;
            other = std::thread([&] {
                const kernel::UiTurn mine;
                woken = true;
                m_sleep.LetGo();
            });
            m_module.CloseWnd();
            EXPECT_TRUE(woken) << "CloseWnd waits for the handler";
            EXPECT_TRUE(kernel::UiTurn::IsHeld());
            m_page.Discard();
        }
        other.join();
    }

    // Everything that the service may send goes to a bystander of the page's endpoint and to nobody else.
    void ExpectThatNothingIsDelivered() {
        std::atomic<int> delivered{0};
        SetIpcTrace([&](IpcTraceEvent event, const TagIPCMessageItem& item) {
            if (event == IpcTraceEvent::kDelivered && item.destId == IPC_ENDPOINT_PLUGIN) ++delivered;
        });
        Listener bystander(IPC_ENDPOINT_PLUGIN,
                           {to_page::IPC_MSG_ALL_UPDATE_DATA.id, to_page::IPC_MSG_DOWNLOAD_PROCESS.id,
                            to_page::IPC_MSG_PKG_FINISH.id, to_page::IPC_MSG_PKG_FAIL.id});
        // Whoever still gets messages of the first round gets them before the bystander has those of the last: the UI
        // turn goes to who asked first.
        for (const char* const key : {"X1", "X2", "the last"}) {
            Post(to_page::IPC_MSG_ALL_UPDATE_DATA, {});
            PostProgress(key, 50);
            PostFinish(key);
            Post(to_page::IPC_MSG_PKG_FAIL, {key});
            bystander.WaitFor(std::string("B20026 ") + key);
        }
        // The bystander also gets what was under way when the page was left, and nobody gets anything else.
        EXPECT_EQ(delivered, static_cast<int>(bystander.WaitFor("B20026 the last").size()));
        SetIpcTrace(nullptr);
    }

    HeldSleep m_sleep;
    PipeFolder m_folder;
    MinimalLayouts m_layouts{{}};
    FixedCellMeasurer m_measurer{{8, 20}};
    IPCBroker m_broker{IPC_PIPE_ASSISTANT};
    Listener m_service{IPC_ENDPOINT_UPDATE_SERVICE,
                       {from_page::IPC_MSG_ALL_UPDATE_DATA.id, from_page::IPC_MSG_DOWNLOAD_START.id,
                        from_page::IPC_MSG_DOWNLOAD_PAUSE.id}};
    Listener m_hostLayout{IPC_ENDPOINT_HOST_LAYOUT, {from_page::IPC_MSG_CONTENT_HEIGHT.id}};
    Listener m_hostPlugin{IPC_ENDPOINT_HOST_PLUGIN,
                          {from_page::IPC_MSG_PLUGIN_UPDATE.id, from_page::IPC_MSG_PLUGIN_UPDATE_FINISH.id}};
    HostPage m_page;
    PageModule m_module{PageModule::DefaultPath()};
};

TEST_F(PageThreads, CloseWndLetsTheListThatIsBeingBuiltEndAndNothingIsDeliveredAfterwards) {
    m_sleep.Hold(kHeightPause);
    PostList({"X1", "X2", "X3"});
    ASSERT_TRUE(m_sleep.WaitForSleeper());
    Click(L"X1updateBtn");
    Click(L"X1stopBtn");
    m_service.WaitFor("B20025 X1");
    PostProgress("X1", 10);  // waits behind the list, and for good
    CloseOverTheSleeper();
    EXPECT_THAT(m_hostLayout.WaitFor("3A0066 231"), ElementsAre("3A0066 77", "3A0066 154", "3A0066 231"));
    ExpectThatNothingIsDelivered();
}

TEST_F(PageThreads, CloseWndLetsTheEndOfAnUpdateGoThroughAndNothingIsDeliveredAfterwards) {
    PostList({"X1", "X2"});
    m_hostLayout.WaitFor("3A0066 154");
    m_sleep.Hold(kEndPause);
    PostFinish("X1");
    ASSERT_TRUE(m_sleep.WaitForSleeper());
    Click(L"X2updateBtn");
    m_service.WaitFor("B20022 X2");
    CloseOverTheSleeper();
    EXPECT_THAT(m_hostPlugin.WaitFor("B20034 X1"), ElementsAre("B20033 X2", "B20034 X1"));
    m_hostLayout.WaitFor("3A0066 78");
    ExpectThatNothingIsDelivered();
}

TEST_F(PageThreads, ClicksAndDeliveriesTakeTurns) {
    PostList({"X1", "X2"});
    m_hostLayout.WaitFor("3A0066 154");
    Click(L"X1updateBtn");
    for (int i = 1; i <= 100; ++i) {
        PostProgress("X1", i % 99);
        Click(L"X1stopBtn");
        Click(L"X2pulldown");
        const kernel::UiTurn turn;
        m_page.Manager()->Layout();
    }
    PostFinish("X1");
    m_hostPlugin.WaitFor("B20034 X1");
    {
        const kernel::UiTurn turn;
        m_module.CloseWnd();
        m_page.Discard();
    }
    ExpectThatNothingIsDelivered();
}

}  // namespace
