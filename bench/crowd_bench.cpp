// What others cost a client of the pipe: a thousand connections, one that posts as fast as it can, and one that sends
// itself messages and never reads. A message of the client to itself is timed with the broker alone and in that crowd.
// And what nobody does costs: the threads of an idle broker and an idle client must not wake up. Ends with exit code 1
// when the crowd costs too much time or memory, or somebody wakes up.

#include <ipc_client/ipc_broker.h>
#include <ipc_client/ipc_diagnostics.h>
#include <ipc_client/ipc_message_client.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "against_relay.h"
#include "raw_peer.h"

namespace {

using namespace bench;

constexpr wchar_t kPipe[] = L"\\\\.\\Pipe\\Crowd";
constexpr int kPage = 0x270000, kService = 0xB20001, kProgress = 0xB20023;
constexpr int kConnections = 1000, kPerProcess = 50;
constexpr int kMessages = 2000;
constexpr double kMostTimesAlone = 3, kMostMicroseconds = 20000;
constexpr long kMostKibibytes = 128 * 1024;

// The number that follows `name` in a file of the system's about a process or thread.
long Number(const std::filesystem::path& file, const std::string& name) {
    std::ifstream lines(file);
    for (std::string word; lines >> word;) {
        long number = 0;
        if (word == name && lines >> number) return number;
    }
    Die("the system does not say " + name);
}

// How often the threads of a process have begun to wait, its first one left out.
long Waits(pid_t process) {
    const std::filesystem::path folder = "/proc/" + std::to_string(process) + "/task";
    long waits = 0;
    for (const auto& thread : std::filesystem::directory_iterator(folder)) {
        if (thread.path().filename() == std::to_string(process)) continue;
        waits += Number(thread.path() / "status", "voluntary_ctxt_switches:");
    }
    return waits;
}

std::string Message(ipc_client::Route route, std::size_t bytes) {
    std::string data(bytes, 'd');
    TagIPCMessageItem item;
    item.destId = route.endpointId;
    item.msgId = route.msgId;
    item.data = data.data();
    item.dataLen = static_cast<std::int32_t>(data.size());
    std::string frame;
    ipc_client::AppendMessage(frame, item);
    return frame;
}

std::string Repeated(const std::string& frame, int times) {
    std::string frames;
    for (int i = 0; i < times; ++i) frames += frame;
    return frames;
}

// The service: a broker, and somebody who takes what the flooder posts.
[[noreturn]] void RunService() {
    SetIpcLogSink([](int, const std::string&) {});
    IPCBroker broker(kPipe);
    broker.Start();
    IPCMessageClient client(kService, true, false, kPipe);
    client.RegisterMessageCallback(kProgress, [](TagIPCMessageItem&) {});
    while (true) pause();
}

// Some of the connections: each listens to something, and says nothing more.
[[noreturn]] void RunSilent(int first, int ready) {
    std::vector<std::unique_ptr<RawPeer>> peers;
    for (int i = 0; i < kPerProcess; ++i) {
        peers.push_back(std::make_unique<RawPeer>(kPipe));
        peers.back()->Announce({first + i, kProgress});
    }
    if (send(ready, "", 1, 0) != 1) Die("nobody waits for the connections");
    while (true) pause();
}

[[noreturn]] void RunFlooder() {
    RawPeer peer(kPipe);
    const std::string batch = Repeated(Message({kService, kProgress}, 64), 500);
    while (true) {
        peer.Write(batch);
        while (peer.Read([](const auto&) {}, MSG_DONTWAIT)) {
        }
    }
}

// Sends itself messages until it is thrown out, and comes again.
[[noreturn]] void RunOneThatDoesNotRead() {
    const ipc_client::Route route{0x300000, kProgress};
    const std::string batch = Repeated(Message(route, 1000), 50);
    while (true) {
        RawPeer peer(kPipe);
        peer.Announce(route);
        while (peer.MayWrite(batch)) {
        }
    }
}

class Crowd {
public:
    Crowd() {
        const std::array<int, 2> ready = SocketPair();
        for (int i = 0; i < kConnections / kPerProcess; ++i) {
            m_members.push_back(std::make_unique<Child>([&] { RunSilent(0x400000 + i * kPerProcess, ready[1]); }));
        }
        for (int i = 0; i < kConnections / kPerProcess; ++i) {
            char here = 0;
            if (recv(ready[0], &here, 1, 0) != 1) Die("no crowd");
        }
        for (const int end : ready) close(end);
        m_members.push_back(std::make_unique<Child>(RunFlooder));
        m_members.push_back(std::make_unique<Child>(RunOneThatDoesNotRead));
    }

private:
    std::vector<std::unique_ptr<Child>> m_members;
};

// Somebody who wants only to hear of its own messages.
class Client {
public:
    Client() : m_service(RunService), m_client(kPage, true, false, kPipe) {
        m_client.RegisterMessageCallback(kProgress, [this](TagIPCMessageItem&) { m_arrival.Came(); });
        WaitForBroker(kPipe);
        Time();
    }

    double Time() {
        TagIPCMessageItem item;
        item.destId = kPage;
        item.msgId = kProgress;
        const Clock::time_point begin = Clock::now();
        if (!m_client.PostIPCMessage(item)) Die("a message was refused");
        return Microseconds(m_arrival.Wait() - begin).count();
    }
    std::vector<double> Times() {
        std::vector<double> times;
        for (int i = 0; i < kMessages; ++i) {
            times.push_back(Time());
            std::this_thread::sleep_for(std::chrono::microseconds(500));
        }
        std::sort(times.begin(), times.end());
        return times;
    }
    pid_t Service() const { return m_service.Id(); }

private:
    const Child m_service;
    Arrival m_arrival;  // before the client, whose callback uses it
    IPCMessageClient m_client;
};

void AnIdlePipe(benchmark::State& state) {
    const Client client;
    std::this_thread::sleep_for(std::chrono::milliseconds(200));  // what was posted is acknowledged meanwhile
    for (auto _ : state) {
        const long before = Waits(getpid()) + Waits(client.Service());
        std::this_thread::sleep_for(std::chrono::seconds(1));
        const long wakeUps = Waits(getpid()) + Waits(client.Service()) - before;
        state.counters["wake_ups"] = static_cast<double>(wakeUps);
        if (wakeUps != 0) Die("idle threads have woken up " + std::to_string(wakeUps) + " times in a second");
    }
}
BENCHMARK(AnIdlePipe)->UseRealTime()->Iterations(1)->Unit(benchmark::kMillisecond);

void MessageInACrowd(benchmark::State& state) {
    Client client;
    for (auto _ : state) {
        const std::vector<double> alone = client.Times();
        const Crowd crowd;
        const std::vector<double> times = client.Times();
        const long kibibytes = Number("/proc/" + std::to_string(client.Service()) + "/status", "VmHWM:");
        const double ratio = times[kMessages / 2] / alone[kMessages / 2], late = times[kMessages * 99 / 100];
        state.counters["alone_us"] = alone[kMessages / 2];
        state.counters["in_crowd_us"] = times[kMessages / 2];
        state.counters["ratio"] = ratio;
        state.counters["in_crowd_99th_us"] = late;
        state.counters["broker_MiB"] = static_cast<double>(kibibytes) / 1024;
        if (ratio > kMostTimesAlone) Die("in a crowd a message takes " + std::to_string(ratio) + " times as long");
        if (late > kMostMicroseconds) Die("one in a hundred messages takes " + std::to_string(late) + " us");
        if (kibibytes > kMostKibibytes) Die("the broker's process takes " + std::to_string(kibibytes) + " KiB");
    }
}
BENCHMARK(MessageInACrowd)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    const PipeFolder folder;
    SetIpcLogSink([](int, const std::string&) {});
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
