// A client of a broker that dies, loses connections, answers as it likes, or sends bytes of any kind. The client has
// threads of its own, so an input does not do exactly the same each time.

#include <algorithm>
#include <asio/io_context.hpp>
#include <chrono>
#include <mutex>
#include <set>
#include <thread>

#include "base/file.h"
#include "client/connection.h"
#include "client/receiver.h"
#include "fuzz_target.h"
#include "ipc_client/ipc_diagnostics.h"
#include "scripted_broker.h"

namespace {

using namespace ipc_client;
using namespace std::chrono_literals;

const std::filesystem::path& SocketPath() {
    static const auto& path = *new std::filesystem::path(base::MakeTemporaryFolder("fuzz") / "client.sock");
    return path;
}

// The serials of the messages whose callbacks have returned.
class Handled {
public:
    void Add(const TagIPCMessageItem& item) {
        const std::lock_guard lock(m_mutex);
        if (m_isTrusted) {
            fuzz::Require(m_serials.empty() || item.headerWord1 > *m_serials.rbegin(),
                          "messages come once and in order");
        }
        m_serials.insert(item.headerWord1);
    }
    bool Has(std::int32_t serial) {
        const std::lock_guard lock(m_mutex);
        return m_serials.count(serial) != 0;
    }
    void Distrust() {
        const std::lock_guard lock(m_mutex);
        m_isTrusted = false;
    }

private:
    std::mutex m_mutex;
    std::set<std::int32_t> m_serials;
    bool m_isTrusted = true;
};

class Play {
public:
    Play() : m_connection(SocketPath(), {1ms, 2ms, 1h, 0ms, 1h}), m_receiver(1, m_connection) {
        m_receiver.Set(1, [this](TagIPCMessageItem& item) { m_handled.Add(item); });
        m_connection.AddReceiver(m_receiver, {1});
    }
    ~Play() { m_connection.RemoveReceiver(m_receiver, {1, 2}); }

    // One byte says what is done; what it needs follows.
    void Step(std::string_view& script) {
        const std::uint8_t what = fuzz::TakeByte(script);
        switch (what % 16) {
            case 0:
                return m_broker.Cut();
            case 1:
            case 2:
                return m_broker.Accept(what % 16 == 2);
            case 3:
            case 4:
                return m_broker.Deliver(++m_serial, fuzz::TakeByte(script));
            case 5:
                return m_broker.TellDone(fuzz::TakeByte(script));
            case 6:
                return m_broker.TellWaiting();
            case 7:
                return what / 16 % 4 == 0 ? m_broker.Refuse() : m_broker.Answer(what / 16 % 4 == 1);
            case 8:
                return SendAnything(script);
            case 9:
            case 10:
            case 11:
                return Post(fuzz::TakeByte(script));
            case 12:
                return what / 16 % 2 == 0 ? m_connection.RemoveReceiver(m_receiver, {2})
                                          : m_connection.AddReceiver(m_receiver, {2});
            case 13:
                return std::this_thread::sleep_for(100us);  // for the client's threads
            default:
                return m_broker.Receive();
        }
    }

    // Whatever happened: a broker that takes the client gets what it posted, and all of its own is handled.
    void End() {
        const auto until = std::chrono::steady_clock::now() + 10s;
        while (m_broker.IsTrusted() && !m_broker.HasAll(m_posted)) {
            m_broker.Accept(false);
            m_broker.Receive();
            fuzz::Require(std::chrono::steady_clock::now() < until, "what is posted comes, what comes is handled");
            std::this_thread::sleep_for(20us);
        }
    }

private:
    void Post(std::size_t bytes) {
        std::string data(bytes, 'p');
        TagIPCMessageItem item;
        item.destId = 2;
        item.headerWord1 = static_cast<std::int32_t>(m_posted);
        item.data = data.data();
        item.dataLen = static_cast<std::int32_t>(bytes);
        fuzz::Require(m_connection.Post(item), "a client takes what is posted");
        ++m_posted;
    }

    void SendAnything(std::string_view& script) {
        const std::size_t length = std::min<std::size_t>(fuzz::TakeByte(script), script.size());
        m_handled.Distrust();
        m_broker.SendAnything(script.substr(0, length));
        script.remove_prefix(length);
    }

    asio::io_context m_io{1};
    PipeListener m_listener{m_io, SocketPath()};
    Handled m_handled;
    fuzz::ScriptedBroker m_broker{m_io, m_listener, [this](std::int32_t serial) { return m_handled.Has(serial); }};
    Connection m_connection;
    Receiver m_receiver;
    std::uint64_t m_posted = 0;
    std::int32_t m_serial = 0;
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    SetIpcLogSink([](int, const std::string&) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view script = fuzz::TextOf(data, size);
    Play play;
    while (!script.empty()) play.Step(script);
    play.End();
    return 0;
}
