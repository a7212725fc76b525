#include "relay.h"

#include <algorithm>
#include <array>
#include <asio/buffer.hpp>
#include <asio/steady_timer.hpp>
#include <asio/write.hpp>
#include <chrono>
#include <memory>
#include <string>
#include <utility>

namespace campaign {

using Socket = asio::local::stream_protocol::socket;
using Endpoint = asio::local::stream_protocol::endpoint;
using std::chrono::milliseconds;

namespace {

constexpr std::size_t kRemembered = 256;  // [bytes] of a connection's first, for duplicates

// Another connection to the broker: says what it was given and listens for a while.
class Duplicate : public std::enable_shared_from_this<Duplicate> {
public:
    Duplicate(asio::io_context& io, std::string words) : m_socket(io), m_timer(io), m_words(std::move(words)) {}

    void Start(const Endpoint& broker, milliseconds life) {
        std::error_code error;
        m_socket.connect(broker, error);
        if (error) return;
        const auto self = shared_from_this();
        asio::async_write(m_socket, asio::buffer(m_words), [self](std::error_code, std::size_t) {});
        m_timer.expires_after(life);
        m_timer.async_wait([self](std::error_code) { self->m_socket.close(); });
        Read();
    }

private:
    void Read() {
        m_socket.async_read_some(asio::buffer(m_heard),
                                 [self = shared_from_this()](std::error_code error, std::size_t) {
                                     if (!error) self->Read();
                                 });
    }

    Socket m_socket;
    asio::steady_timer m_timer;
    const std::string m_words;
    std::array<char, 4096> m_heard{};
};

}  // namespace

// A client's connection and the one to the broker that goes with it.
class Relay::Pair : public std::enable_shared_from_this<Relay::Pair> {
public:
    Pair(Relay& relay, Socket client, Socket broker, ConnectionPlan plan)
        : m_relay(relay),
          m_client(std::move(client)),
          m_broker(std::move(broker)),
          m_toBroker{m_client, m_broker, std::move(plan.toBroker), asio::steady_timer(relay.m_io)},
          m_toClient{m_broker, m_client, std::move(plan.toClient), asio::steady_timer(relay.m_io)} {}

    void Start() {
        PassOn(m_toBroker);
        PassOn(m_toClient);
    }

private:
    // One direction.
    struct Stream {
        Socket& from;
        Socket& to;
        std::vector<StreamFault> faults;
        asio::steady_timer timer;
        std::size_t next = 0;  // of the faults
        std::uint64_t passed = 0;
        int single = 0;                  // bytes still to come one by one
        std::size_t begin = 0, end = 0;  // of the bytes not yet passed on
        bool ended = false;
        std::array<char, 16 * 1024> bytes{};
    };

    // Does what the place asks for, writes what there is until the next one, reads when there is nothing.
    void PassOn(Stream& stream) {
        while (stream.next < stream.faults.size() && stream.faults[stream.next].at <= stream.passed) {
            if (!Happen(stream, stream.faults[stream.next++])) return;
        }
        if (stream.begin == stream.end) {
            Read(stream);
        } else {
            Write(stream);
        }
    }

    void Read(Stream& stream) {
        stream.from.async_read_some(asio::buffer(stream.bytes),
                                    [self = shared_from_this(), &stream](std::error_code error, std::size_t bytes) {
                                        if (error) return self->End(stream);
                                        stream.begin = 0;
                                        stream.end = bytes;
                                        self->PassOn(stream);
                                    });
    }

    void Write(Stream& stream) {
        std::uint64_t size = stream.end - stream.begin;
        if (stream.next < stream.faults.size()) size = std::min(size, stream.faults[stream.next].at - stream.passed);
        if (stream.single > 0) size = 1;
        asio::async_write(stream.to, asio::buffer(stream.bytes.data() + stream.begin, size),
                          [self = shared_from_this(), &stream](std::error_code error, std::size_t bytes) {
                              if (error) return self->End(stream);
                              self->Passed(stream, bytes);
                              self->PassOn(stream);
                          });
    }

    void Passed(Stream& stream, std::size_t bytes) {
        if (&stream == &m_toBroker && m_first.size() < kRemembered) {
            m_first.append(stream.bytes.data() + stream.begin, bytes);
        }
        stream.begin += bytes;
        stream.passed += bytes;
        if (stream.single > 0) stream.single -= static_cast<int>(bytes);
    }

    // False when the stream does not go on by itself.
    bool Happen(Stream& stream, const StreamFault& fault) {
        m_relay.m_told(fault.fault);
        switch (fault.fault) {
            case Fault::kDelay:
            case Fault::kStall:
                stream.timer.expires_after(milliseconds(fault.amount));
                stream.timer.async_wait([self = shared_from_this(), &stream](std::error_code error) {
                    if (!error) self->PassOn(stream);
                });
                return false;
            case Fault::kSingleBytes:
                stream.single = fault.amount;
                return true;
            case Fault::kDuplicate:
                std::make_shared<Duplicate>(m_relay.m_io, m_first.substr(0, static_cast<std::size_t>(fault.replayed)))
                    ->Start(Endpoint(m_relay.m_broker.string()), milliseconds(fault.amount));
                return true;
            case Fault::kCutToBroker:
            case Fault::kCutToClient:
                Close();
                return false;
            case Fault::kServiceKilled:
            case Fault::kServiceStopped:
            case Fault::kPageKilled:
                break;  // happen to processes
        }
        return true;
    }

    // The one side has ended, or hears no more: what the other says is still passed on.
    void End(Stream& stream) {
        stream.ended = true;
        std::error_code ignored;
        stream.to.shutdown(Socket::shutdown_send, ignored);
        if (m_toBroker.ended && m_toClient.ended) Close();
    }

    void Close() {
        std::error_code ignored;
        m_client.close(ignored);
        m_broker.close(ignored);
        m_toBroker.timer.cancel();
        m_toClient.timer.cancel();
    }

    Relay& m_relay;
    Socket m_client;
    Socket m_broker;
    Stream m_toBroker;
    Stream m_toClient;
    std::string m_first;  // to the broker
};

Relay::Relay(const std::filesystem::path& here, const std::filesystem::path& broker, std::optional<std::uint64_t> seed,
             std::function<void(Fault)> told)
    : m_broker(broker), m_seed(seed), m_told(std::move(told)), m_acceptor(m_io, Endpoint(here.string())) {
    Accept();
    m_thread = std::thread([this] { m_io.run(); });
}

Relay::~Relay() {
    m_io.stop();
    m_thread.join();
}

void Relay::Accept() {
    m_acceptor.async_accept([this](std::error_code error, Socket client) {
        if (!error) Open(std::move(client));
        Accept();
    });
}

// What a connection that found no broker has had of the plan is the next one's.
void Relay::Open(Socket client) {
    Socket broker(m_io);
    std::error_code error;
    broker.connect(Endpoint(m_broker.string()), error);
    if (error) return;
    ConnectionPlan plan = m_seed ? PlanOf(*m_seed, m_connections++) : ConnectionPlan();
    std::make_shared<Pair>(*this, std::move(client), std::move(broker), std::move(plan))->Start();
}

}  // namespace campaign
