// A broker with four connections: the service's own and three of another process. The input is a script of what they
// do, from well-behaved to bytes of any kind. The broker's thread is this one, so that each input does the same every
// time.

#include <algorithm>
#include <array>
#include <asio/io_context.hpp>
#include <memory>
#include <optional>
#include <vector>

#include "base/file.h"
#include "broker/broker_loop.h"
#include "broker_peer.h"
#include "foreign_process.h"
#include "fuzz_target.h"
#include "ipc_client/ipc_diagnostics.h"

namespace {

using namespace ipc_client;
using fuzz::BrokerPeer;

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
    // One byte says who does something (2 bits) and what (3 bits), the last bit that it connects without a word.
    // Whoever is not connected does that first. What the act needs follows.
    void Step(std::string_view& script) {
        const std::uint8_t what = fuzz::TakeByte(script);
        const std::int32_t number = what % 4;
        std::optional<BrokerPeer>& peer = m_peers[static_cast<std::size_t>(number)];
        if (!peer) {
            Connect(peer, number, number == BrokerPeer::kService || (what & 0x80) == 0);
        } else if (what / 4 % 8 == 0) {
            peer.reset();
        } else {
            Act(what / 4 % 8, *peer, number, script);
        }
        Serve();
    }

    // The service is never cut off for what others do.
    void End() {
        Serve();
        std::optional<BrokerPeer>& service = m_peers[BrokerPeer::kService];
        if (!service || m_serviceIsWild) return;
        service->Receive(m_trusted);
        fuzz::Require(!service->IsClosed(), "the service stays connected");
    }

private:
    void Connect(std::optional<BrokerPeer>& peer, std::int32_t number, bool withHello) {
        if (number == BrokerPeer::kService) {
            peer.emplace(ConnectPipe(m_io, SocketPath()), number);
        } else {
            PipeSocket socket(m_io);
            socket.assign(asio::local::stream_protocol(), Foreigner().Connect().ReleaseDescriptor());
            peer.emplace(std::move(socket), number);
        }
        std::string hello;
        if (withHello) AppendHello(hello);
        peer->Send(hello);
    }

    void Act(int what, BrokerPeer& peer, std::int32_t number, std::string_view& script) {
        switch (what) {
            case 1:
                return SendRoutes(peer, number, FrameType::kAnnounce, fuzz::TakeByte(script));
            case 2:
                return SendRoutes(peer, number, FrameType::kWithdraw, fuzz::TakeByte(script));
            case 3:
                return peer.Receive(m_trusted);
            case 4:
                return SendAnything(peer, number, script);
            default: {
                const std::uint8_t route = fuzz::TakeByte(script);
                const std::size_t root = fuzz::TakeByte(script);
                return peer.Post(RouteOf(route % 8), ++m_serial, root * root);
            }
        }
    }

    static Route RouteOf(int bit) { return {bit / 4, bit % 4}; }

    // The service announces no more than it may: that would be its own fault.
    static void SendRoutes(BrokerPeer& peer, std::int32_t number, FrameType type, std::uint8_t bits) {
        const int most = number == BrokerPeer::kService ? 7 : 8;
        std::vector<Route> routes;
        for (int bit = 0; bit < most; ++bit) {
            if ((bits >> bit & 1) != 0) routes.push_back(RouteOf(bit));
        }
        if (routes.empty()) return;
        std::string frame;
        AppendRoutes(frame, type, routes);
        peer.Send(frame);
    }

    void SendAnything(BrokerPeer& peer, std::int32_t number, std::string_view& script) {
        const std::size_t length = std::min<std::size_t>(fuzz::TakeByte(script), script.size());
        peer.Send(script.substr(0, length));
        script.remove_prefix(length);
        m_trusted = false;
        if (number == BrokerPeer::kService) m_serviceIsWild = true;
    }

    void Serve() {
        m_loop.Recover();
        m_io.restart();
        m_io.poll();
    }

    asio::io_context m_io{1};
    BrokerLoop m_loop{m_io, SocketPath(), Limits()};
    std::array<std::optional<BrokerPeer>, 4> m_peers;
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
