#pragma once

#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <filesystem>
#include <functional>
#include <optional>
#include <thread>

#include "fault_plan.h"

namespace campaign {

// Stands between clients of the message pipe and their broker, and lets go wrong what its plan says. It passes bytes on
// and knows nothing of what they mean.
//
// To the broker, whoever runs the relay is the client: it is one process's, or it runs in that process.
class Relay {
public:
    // Listens at `here` and connects to `broker` for each connection that comes; a client whose broker is not there is
    // closed. Without a seed nothing goes wrong. `told` is called on the relay's thread, with each fault when it
    // happens. Throws std::system_error when `here` cannot be listened at.
    Relay(const std::filesystem::path& here, const std::filesystem::path& broker, std::optional<std::uint64_t> seed,
          std::function<void(Fault)> told);
    ~Relay();  // closes all connections
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

private:
    class Pair;
    void Accept();
    void Open(asio::local::stream_protocol::socket client);

    const std::filesystem::path m_broker;
    const std::optional<std::uint64_t> m_seed;
    const std::function<void(Fault)> m_told;
    asio::io_context m_io{1};
    asio::local::stream_protocol::acceptor m_acceptor;
    unsigned m_connections = 0;
    std::thread m_thread;  // last: it uses the rest
};

}  // namespace campaign
