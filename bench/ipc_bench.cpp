// The message pipe against what it is made of: a message from post to callback through a broker in another process, and
// the same payload through a bare relay of two Unix socket hops; and a burst, which must arrive whole and in order.
// Ends with exit code 1 when a message is lost or out of order, or the median is 2.5 times the relay's or more.

#include <ipc_client/ipc_diagnostics.h>
#include <ipc_client/ipc_message_client.h>

#include <array>
#include <memory>
#include <string>

#include "against_relay.h"

namespace {

using namespace bench;

constexpr wchar_t kPipe[] = L"\\\\.\\Pipe\\Bench";
constexpr int kPage = 0x270000, kProgress = 0xB20023;
constexpr int kBurst = 100000;

// The pipe: a client here posts, the broker is in another process, and a client here has the callback.
class Pipe {
public:
    Pipe() : m_child([] { RunBroker(kPipe); }), m_client(kPage, true, false, kPipe) { WaitForBroker(kPipe); }

    IPCMessageClient& Client() { return m_client; }

    double Time() {
        const Clock::time_point begin = Clock::now();
        Post(0);
        return Microseconds(m_arrival.Wait() - begin).count();
    }
    void TakeSingly() {
        m_client.RegisterMessageCallback(kProgress, [this](TagIPCMessageItem&) { m_arrival.Came(); });
    }

    void Post(int number) {
        std::array<char, kPayloadBytes> payload{};
        TagIPCMessageItem item;
        item.destId = kPage;
        item.msgId = kProgress;
        item.headerWord1 = number;
        item.data = payload.data();
        item.dataLen = static_cast<std::int32_t>(payload.size());
        if (!m_client.PostIPCMessage(item)) Die("a message was refused");
    }

private:
    const Child m_child;
    Arrival m_arrival;  // before the client, whose callback uses it
    IPCMessageClient m_client;
};

std::unique_ptr<Relay> relay;
std::unique_ptr<Pipe> pipeWithBroker;

void MessageAgainstBareRelay(benchmark::State& state) {
    pipeWithBroker->TakeSingly();
    CompareWithRelay(state, *relay, "pipe", [] { return pipeWithBroker->Time(); });
}
BENCHMARK(MessageAgainstBareRelay)->UseManualTime()->Iterations(20000)->Unit(benchmark::kMicrosecond);

void BurstOfAHundredThousandMessages(benchmark::State& state) {
    for (auto _ : state) {
        Arrival last;
        int next = 0;  // delivery thread, until the last has come
        pipeWithBroker->Client().RegisterMessageCallback(kProgress, [&](TagIPCMessageItem& item) {
            if (item.headerWord1 != next) Die("message " + std::to_string(next) + " was lost or out of order");
            if (++next == kBurst) last.Came();
        });
        for (int i = 0; i < kBurst; ++i) pipeWithBroker->Post(i);
        last.Wait();
        pipeWithBroker->Client().UnRegisterMessageCallback(kProgress);
    }
    state.SetItemsProcessed(state.iterations() * kBurst);
}
BENCHMARK(BurstOfAHundredThousandMessages)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    const PipeFolder folder;
    SetIpcLogSink([](int level, const std::string& line) {
        if (level >= kIpcLogEvent && line.find("cannot be reached") == std::string::npos) Die(line);
    });
    pipeWithBroker = std::make_unique<Pipe>();
    relay = std::make_unique<Relay>();
    benchmark::RunSpecifiedBenchmarks();
    relay.reset();
    SetIpcLogSink([](int, const std::string&) {});
    pipeWithBroker.reset();
    return 0;
}
