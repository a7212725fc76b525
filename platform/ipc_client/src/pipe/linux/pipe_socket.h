#pragma once

#include <asio/local/stream_protocol.hpp>

namespace ipc_client {

// One end of an open pipe.
using PipeSocket = asio::local::stream_protocol::socket;

}  // namespace ipc_client
