// A progress message from the service's post to the row's changed control, through a broker in another process,
// against a bare relay of two Unix socket hops in the same run. Ends with exit code 1 when the median is 2.5 times the
// relay's or more.
#include <memory>

#include "against_relay.h"
#include "bench_page.h"
#include "channel/messages.h"
#include "ipc/ipc_server.h"
#include "ipc_client/ipc_diagnostics.h"

namespace {

using namespace bench;

constexpr auto kProgress = channel::to_page::IPC_MSG_DOWNLOAD_PROCESS;
constexpr int kReceiver = 0x270001;                    // beside the window's own endpoint, whose way this goes
constexpr const char* kDeviceKey = "device-0-of-one";  // 15 characters

// The page's way of a progress message: typed receiver, list window, row, controls.
class ProgressWay {
public:
    ProgressWay() : m_client(kReceiver, true, false, IPC_PIPE_ASSISTANT), m_registry(&m_client) {
        auto list = BenchList(1);
        list[0].deviceKey = kDeviceKey;
        m_page.Build(list);
        m_registry.Register(
            new IPCServerProc<ProgressWay, PkgDownloadProcess&>(kProgress.id, this, &ProgressWay::OnProgress));
        WaitForBroker(IPC_PIPE_ASSISTANT);
    }

    double Time(int percent) {
        TagIPCMessageItem item;
        item.destId = kReceiver;
        item.msgId = kProgress.id;
        const auto payload = channel::Encode(PkgDownloadProcess{kDeviceKey, percent});
        item.data = payload->Data();
        item.dataLen = payload->Size();
        const Clock::time_point begin = Clock::now();
        if (!m_client.PostIPCMessage(item)) Die("a message was refused");
        return Microseconds(m_arrival.Wait() - begin).count();
    }

    std::wstring Shown() { return m_page.Manager().FindControl(L"device-0-of-oneprogress")->GetText().Str(); }

private:
    void OnProgress(PkgDownloadProcess& record) {
        m_page.Window().RecPkgDownloadProcess(record);
        m_arrival.Came();
    }

    BenchPage m_page;
    Arrival m_arrival;
    IPCMessageClient m_client;
    IPCServer m_registry;
};

std::unique_ptr<Relay> relay;
std::unique_ptr<ProgressWay> way;

void ProgressAgainstBareRelay(benchmark::State& state) {
    int percent = 0;
    CompareWithRelay(state, *relay, "page", [&percent] {
        percent = (percent + 1) % 100;
        return way->Time(percent);
    });
    if (way->Shown() != std::to_wstring(percent) + L"%") Die("the control does not show the last percentage");
}
BENCHMARK(ProgressAgainstBareRelay)->UseManualTime()->Iterations(20000)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    const PipeFolder folder;
    {
        const Child broker([] {
            SetIpcLogSink([](int, const std::string&) {});
            RunBroker(IPC_PIPE_ASSISTANT);
        });
        relay = std::make_unique<Relay>();
        SetUpBenchPlatform();
        way = std::make_unique<ProgressWay>();
        benchmark::RunSpecifiedBenchmarks();
        relay.reset();
        way.reset();
    }
    return 0;
}
