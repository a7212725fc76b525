#pragma once

#include <asio/windows/stream_handle.hpp>

namespace ipc_client {

// One end of an open pipe.
using PipeSocket = asio::windows::stream_handle;

}  // namespace ipc_client
