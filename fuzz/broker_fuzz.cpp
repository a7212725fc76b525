// A broker with four peers: the service and three of another process, whose connections come and go. The input is a
// script of what they do, from well-behaved to bytes of any kind. The broker's thread is this one, so that each input
// does the same every time.

#include <algorithm>
#include <array>
#include <asio/io_context.hpp>
#include <memory>
#include <vector>

#include "base/file.h"
#include "broker/broker_loop.h"
#include "foreign_process.h"
#include "fuzz_target.h"
#include "ipc_client/ipc_diagnostics.h"
#include "pipe_peer.h"

namespace {

using namespace ipc_client;
using fuzz::PipePeer;

// Small enough to be reached by a short script.
IPCBrokerLimits Limits() {
    IPCBrokerLimits limits;
    limits.pendingMessagesPerSender = 4;
    limits.pendingBytesPerSender = 8 * 1024;
    limits.pendingBytes = 12 * 1024;
    limits.senderBytes = 64 * 1024;
    limits.outgoingBytes = 300 * 1024;
    limits.unfinishedBytes = 200 * 1024;
    limits.routesPerConnection = 7;
    limits.connectionsPerProcess = 2;
    return limits;
}

const std::filesystem::path& SocketPath() {
    static const auto& path = *new std::filesystem::path(base::MakeTemporaryFolder("fuzz") / "broker.sock");
    return path;
}

const fuzz::ForeignProcess& Foreigner() {
    static const auto& process = *new fuzz::ForeignProcess(SocketPath());
    return process;
}

class Play {
public:
    // One byte says who does something (2 bits), what (4 bits), and how it connects, where it is not connected or does
    // that once more. What the act needs follows.
    void Step(std::string_view& script) {
        const std::uint8_t what = fuzz::TakeByte(script);
        PipePeer& peer = m_peers[what % 4];
        const int act = what / 4 % 16;
        if (!peer.IsConnected() || act == 0) {
            Connect(peer, what % 4 == PipePeer::kService, what / 64);
        } else {
            Act(act, peer, script);
        }
        Serve();
    }

    // The service is never cut off for what others do. Where everybody is there and handles what it gets, all that was
    // posted is done, or waits for somebody to announce it.
    void End() {
        PipePeer& service = m_peers[PipePeer::kService];
        const bool wasConnected = service.IsConnected() && !m_serviceIsWild;
        for (bool goesOn = true; goesOn;) {
            Serve();
            goesOn = false;
            for (PipePeer& peer : m_peers) {
                goesOn = Receive(peer) || goesOn;
                goesOn = peer.Handle(1000, false) || goesOn;
            }
        }
        fuzz::Require(!wasConnected || service.IsConnected(), "the service stays connected");
        if (!m_trusted || std::ranges::any_of(m_peers, &PipePeer::IsAwaited)) return;
        fuzz::Require(std::ranges::all_of(m_peers, &PipePeer::IsSettled), "what was handled is done");
    }

private:
    void Connect(PipePeer& peer, bool isService, int manner) {
        constexpr PipePeer::Manner kManners[] = {PipePeer::Manner::kNamed, PipePeer::Manner::kNamed,
                                                 PipePeer::Manner::kAnonymous, PipePeer::Manner::kSilent};
        if (isService) {
            if (manner == 3) manner = 0;
            return peer.Connect(ConnectPipe(m_io, SocketPath()), kManners[manner]);
        }
        PipeSocket socket(m_io);
        socket.assign(asio::local::stream_protocol(), Foreigner().Connect().ReleaseDescriptor());
        peer.Connect(std::move(socket), kManners[manner]);
    }

    void Act(int act, PipePeer& peer, std::string_view& script) {
        const bool isService = &peer == &m_peers[PipePeer::kService];
        switch (act) {
            case 1:
                return peer.Announce(Bits(script, isService));
            case 2:
                return peer.Withdraw(Bits(script, isService));
            case 3:
            case 4:
                return void(Receive(peer));
            case 5:
                return SendAnything(peer, isService, script);
            case 6:
                return peer.Cut();
            case 7:
                return peer.Leave();
            case 8:
            case 9:
                return void(peer.Handle(fuzz::TakeByte(script) % 8, act == 9));
            case 10:
                return peer.Ask();
            case 11:
                return PostTo(peer, isService, script);
            default:
                return Post(peer, nullptr, script);
        }
    }

    // The service announces no more than it may: that would be its own fault.
    static std::uint8_t Bits(std::string_view& script, bool isService) {
        return static_cast<std::uint8_t>(fuzz::TakeByte(script) & (isService ? 0x1F : 0xFF));
    }

    void Post(PipePeer& peer, const PipePeer* to, std::string_view& script) {
        const std::uint8_t route = fuzz::TakeByte(script);
        const std::size_t root = fuzz::TakeByte(script);
        peer.Post(PipePeer::RouteOf(route % 8), ++m_serial, root * root, to);
    }

    // Only the service may.
    void PostTo(PipePeer& peer, bool isService, std::string_view& script) {
        const PipePeer& to = m_peers[fuzz::TakeByte(script) % 4];
        if (isService && to.IsNamed()) Post(peer, &to, script);
    }

    void SendAnything(PipePeer& peer, bool isService, std::string_view& script) {
        const std::size_t length = std::min<std::size_t>(fuzz::TakeByte(script), script.size());
        peer.Send(script.substr(0, length));
        script.remove_prefix(length);
        m_trusted = false;
        m_serviceIsWild = m_serviceIsWild || isService;
    }

    bool Receive(PipePeer& peer) {
        const bool hasCome = peer.Receive(m_trusted);
        for (const PipePeer::MessageId& done : peer.TakeDone()) {
            for (PipePeer& other : m_peers) CheckDone(done, other);
        }
        return hasCome;
    }

    // One that holds a message may have been forgotten: then it has lost its connection.
    void CheckDone(const PipePeer::MessageId& done, PipePeer& holder) {
        if (!m_trusted || !holder.IsOpen() || !holder.Holds(done)) return;
        holder.Receive(m_trusted);
        fuzz::Require(!holder.IsOpen(), "a message is done when it was handled");
    }

    void Serve() {
        m_loop.Recover();
        m_io.restart();
        m_io.poll();
    }

    asio::io_context m_io{1};
    BrokerLoop m_loop{m_io, SocketPath(), Limits()};
    std::array<PipePeer, 4> m_peers{PipePeer{0}, PipePeer{1}, PipePeer{2}, PipePeer{3}};
    std::int32_t m_serial = 0;
    bool m_trusted = true;
    bool m_serviceIsWild = false;
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    SetIpcLogSink([](int, const std::string&) {});
    static_cast<void>(Foreigner());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view script = fuzz::TextOf(data, size);
    Play play;
    while (!script.empty()) play.Step(script);
    play.End();
    return 0;
}
