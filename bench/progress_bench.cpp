// A progress message from the service's post to the row's changed control, through a broker in another process,
// against a bare relay of two Unix socket hops in the same run. Ends with exit code 1 when the median is 2.5 times the
// relay's or more.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

#include "bare_relay.h"
#include "bench_page.h"
#include "channel/messages.h"
#include "ipc/ipc_server.h"
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_connection_state.h"
#include "ipc_client/ipc_log.h"

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
        const auto until = Clock::now() + kPatience;
        while (!IsPipeConnected(IPC_PIPE_ASSISTANT)) {
            if (Clock::now() > until) Die("no broker");
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
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

// Relay and page take turns, so that whatever else the machine does disturbs both alike.
void ProgressAgainstBareRelay(benchmark::State& state) {
    std::vector<double> relayTimes;
    std::vector<double> pageTimes;
    int percent = 0;
    for (auto _ : state) {
        percent = (percent + 1) % 100;
        relayTimes.push_back(relay->Time());
        pageTimes.push_back(way->Time(percent));
        state.SetIterationTime(pageTimes.back() / 1e6);
    }
    if (way->Shown() != std::to_wstring(percent) + L"%") Die("the control does not show the last percentage");
    const double ratio = Median(pageTimes) / Median(relayTimes);
    state.counters["relay_median_us"] = Median(relayTimes);
    state.counters["page_median_us"] = Median(pageTimes);
    state.counters["ratio"] = ratio;
    if (state.iterations() > 1000 && ratio >= kMostTimesTheRelay) {
        Die("a progress message takes " + std::to_string(ratio) + " times as long as a bare relay");
    }
}
BENCHMARK(ProgressAgainstBareRelay)->UseManualTime()->Iterations(20000)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    char folder[] = "/tmp/progress_bench_XXXXXX";
    if (mkdtemp(folder) == nullptr) Die("no folder");
    setenv("BRINDLE_PIPE_DIR", folder, 1);
    {
        const Child broker([] {
            SetIpcLogSink([](int, const std::string&) {});
            IPCBroker pipe(IPC_PIPE_ASSISTANT);
            pipe.Start();
            while (true) pause();
        });
        relay = std::make_unique<Relay>();
        SetUpBenchPlatform();
        way = std::make_unique<ProgressWay>();
        benchmark::RunSpecifiedBenchmarks();
        relay.reset();
        way.reset();
    }
    std::filesystem::remove_all(folder);
    return 0;
}
