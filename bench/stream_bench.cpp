// How much goes one way through the broker: small messages from one process to the service, many to a write. Between
// two peers that speak the wire themselves, against a relay that writes each message by itself, in turns; and between
// two processes that use the library. Ends with exit code 1 when a message is lost or out of order, or the broker is
// too slow.

#include <ipc_client/ipc_diagnostics.h>
#include <ipc_client/ipc_message_client.h>

#include <array>
#include <cstring>
#include <memory>
#include <string>

#include "against_relay.h"
#include "raw_peer.h"

namespace {

using namespace bench;
using ipc_client::FrameType;
using ipc_client::FrameView;
using ipc_client::NumberRange;
using ipc_client::Route;

constexpr wchar_t kPipe[] = L"\\\\.\\Pipe\\Stream";
constexpr wchar_t kLibraryPipe[] = L"\\\\.\\Pipe\\StreamOfLibrary";
constexpr Route kToService{0x270000, 0xB20023};
constexpr int kBack = 0x280000;
constexpr std::size_t kDataBytes = 64;
constexpr std::uint64_t kMessages = 1'000'000, kPosts = 200'000;
constexpr std::size_t kPerWrite = 500;
constexpr double kLeastTimesTheRelay = 3;

TagIPCMessageItem Item(int number, std::array<char, kDataBytes>& data) {
    TagIPCMessageItem item;
    item.destId = kToService.endpointId;
    item.msgId = kToService.msgId;
    item.headerWord1 = number;
    item.data = data.data();
    item.dataLen = static_cast<std::int32_t>(data.size());
    return item;
}

// The frames that one write brings.
const std::string& Batch() {
    static const std::string batch = [] {
        std::array<char, kDataBytes> data{};
        std::string frames;
        for (std::size_t i = 0; i < kPerWrite; ++i) ipc_client::AppendMessage(frames, Item(static_cast<int>(i), data));
        return frames;
    }();
    return batch;
}

std::size_t FrameBytes() { return Batch().size() / kPerWrite; }

// Waits until the broker has taken the announcement: until a message to itself comes.
void AnnounceAndWait(RawPeer& peer) {
    peer.Announce(kToService);
    peer.Write(std::string_view(Batch()).substr(0, FrameBytes()));
    bool isTaken = false;
    while (!isTaken) peer.Read([&](const FrameView& frame) { isTaken |= frame.type == FrameType::kDelivery; });
}

// A process with a broker, and a peer that takes what comes and acknowledges it. Says at `ready` when it is there.
[[noreturn]] void RunService(int ready) {
    IPCBroker broker(kPipe);
    broker.Start();
    RawPeer peer(kPipe);
    AnnounceAndWait(peer);
    if (send(ready, "", 1, 0) != 1) Die("nobody waits for the service");
    std::uint64_t next = 0;
    while (true) {
        const std::uint64_t first = next;
        peer.Read([&](const FrameView& frame) {
            if (frame.type != FrameType::kDelivery) return;
            const ipc_client::DeliveryView delivery = ipc_client::DecodeDelivery(frame.body);
            const auto place = static_cast<int>(next % kPerWrite);
            const bool isRight =
                delivery.stamp.number == next && ipc_client::DecodeMessage(delivery.messageBody).headerWord1 == place;
            if (!isRight) Die("message " + std::to_string(next) + " was lost or out of order");
            ++next;
        });
        if (next == first) continue;
        const NumberRange handled{first + 1, next + 1};  // behind the one to itself
        std::string frame;
        ipc_client::AppendNumbers(frame, FrameType::kAcknowledge, {&handled, 1});
        peer.Write(frame);
    }
}

double PerSecond(std::uint64_t count, Clock::time_point begin) {
    return static_cast<double>(count) / std::chrono::duration<double>(Clock::now() - begin).count();
}

// Sends to that service, and waits until everything is acknowledged.
class Stream {
public:
    Stream() : m_service([this] { RunService(m_ready[1]); }) {
        char ready = 0;
        if (recv(m_ready[0], &ready, 1, 0) != 1) Die("no service");
        m_peer = std::make_unique<RawPeer>(kPipe);
    }

    double MessagesPerSecond() {
        const auto begin = Clock::now();
        const std::uint64_t behind = m_done + kMessages;
        for (std::uint64_t i = 0; i < kMessages; i += kPerWrite) {
            m_peer->Write(Batch());
            while (m_peer->Read([this](const FrameView& frame) { Take(frame); }, MSG_DONTWAIT)) {
            }
        }
        while (m_done != behind) m_peer->Read([this](const FrameView& frame) { Take(frame); });
        return PerSecond(kMessages, begin);
    }

private:
    void Take(const FrameView& frame) {
        if (frame.type != FrameType::kAcknowledge) return;
        for (const NumberRange& range : ipc_client::DecodeNumbers(frame.body)) m_done += range.behind - range.first;
    }

    const std::array<int, 2> m_ready = SocketPair();
    const Child m_service;
    std::unique_ptr<RawPeer> m_peer;
    std::uint64_t m_done = 0;
};

// The same bytes through a process that writes each message by itself.
class SingleWrites {
public:
    SingleWrites() : m_relay([this] { Pass(); }) {}

    double MessagesPerSecond() {
        const auto begin = Clock::now();
        std::thread reader([this] {
            std::vector<char> buffer(64 * 1024);
            for (std::size_t left = kMessages * FrameBytes(); left != 0;) {
                const ssize_t got = recv(m_from[1], buffer.data(), std::min(left, buffer.size()), 0);
                if (got <= 0) Die("the relay is gone");
                left -= static_cast<std::size_t>(got);
            }
        });
        for (std::uint64_t i = 0; i < kMessages; i += kPerWrite) {
            if (!SendAll(m_to[0], Batch())) Die("the relay is gone");
        }
        reader.join();
        return PerSecond(kMessages, begin);
    }

private:
    static bool SendAll(int fd, std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t sent = send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (sent <= 0) return false;
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        }
        return true;
    }
    void Pass() const {
        std::vector<char> buffer(kPerWrite * FrameBytes());
        while (recv(m_to[1], buffer.data(), buffer.size(), MSG_WAITALL) == std::ssize(buffer)) {
            for (std::size_t at = 0; at < buffer.size(); at += FrameBytes()) {
                if (!SendAll(m_from[0], std::string_view(buffer.data() + at, FrameBytes()))) return;
            }
        }
    }

    const std::array<int, 2> m_to = SocketPair(), m_from = SocketPair();
    const Child m_relay;
};

void OneWayThroughTheBroker(benchmark::State& state) {
    Stream stream;
    SingleWrites singleWrites;
    std::vector<double> through, singly;
    for (auto _ : state) {
        singly.push_back(singleWrites.MessagesPerSecond());
        through.push_back(stream.MessagesPerSecond());
        state.SetIterationTime(static_cast<double>(kMessages) / through.back());
    }
    const double ratio = Median(through) / Median(singly);
    state.counters["messages_per_second"] = Median(through);
    state.counters["written_singly_per_second"] = Median(singly);
    state.counters["ratio"] = ratio;
    if (ratio < kLeastTimesTheRelay)
        Die("the broker passes on only " + std::to_string(ratio) + " times what a relay does");
}
BENCHMARK(OneWayThroughTheBroker)->UseManualTime()->Iterations(7)->Unit(benchmark::kMillisecond);

// A service that uses the library: it says when the last of kPosts has come.
[[noreturn]] void RunLibraryService() {
    IPCBroker broker(kLibraryPipe);
    broker.Start();
    IPCMessageClient client(kToService.endpointId, true, false, kLibraryPipe);
    std::uint64_t next = 0;
    client.RegisterMessageCallback(kToService.msgId, [&](TagIPCMessageItem& item) {
        if (item.headerWord1 != static_cast<int>(next % kPosts)) Die("a message was lost or out of order");
        if (++next % kPosts != 0) return;
        TagIPCMessageItem back;
        back.destId = kBack;
        client.PostIPCMessage(back);
    });
    while (true) pause();
}

void OneWayWithTheLibrary(benchmark::State& state) {
    const Child service(RunLibraryService);
    Arrival last;
    IPCMessageClient client(kBack, true, false, kLibraryPipe);
    client.RegisterMessageCallback(0, [&](TagIPCMessageItem&) { last.Came(); });
    bench::WaitForBroker(kLibraryPipe);
    std::array<char, kDataBytes> data{};
    for (auto _ : state) {
        for (std::uint64_t i = 0; i < kPosts; ++i) {
            if (!client.PostIPCMessage(Item(static_cast<int>(i), data))) Die("a message was refused");
        }
        last.Wait();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kPosts));
}
BENCHMARK(OneWayWithTheLibrary)->UseRealTime()->Iterations(5)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    const PipeFolder folder;
    SetIpcLogSink([](int, const std::string&) {});
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
