#pragma once

#include <asio/io_context.hpp>

namespace ipc_client {

// Runs the I/O thread's work until the context is stopped. An exception (no memory left, say) costs the one handler
// that threw it and is logged.
void RunIo(asio::io_context& io) noexcept;

}  // namespace ipc_client
