#pragma once

#include <asio/io_context.hpp>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

#include "pipe_socket.h"

// What differs between the systems' pipes.
namespace ipc_client {

// Opens the pipe without waiting. Throws std::runtime_error naming the path and the system's reason, also when the
// other side belongs to another user.
PipeSocket ConnectPipe(asio::io_context& io, const std::filesystem::path& path);

// Writes the first bytes of a new connection, few enough for any pipe's buffer. False when they could not be written.
bool WriteHello(PipeSocket& socket, std::string_view bytes);

// Writes what the pipe takes at once and returns how much that was; 0 also on an error, which an asynchronous write
// will find again, and always where a pipe cannot tell what it takes. May be called while asynchronous operations of
// the same socket are under way.
std::size_t WriteNow(PipeSocket& socket, std::string_view bytes);

// Whether a read failed because the other side has closed the pipe, and everything it wrote has been read.
bool IsEndOfPipe(std::error_code error);

// The id of the process at the other end, as the system tells it; 0 when it does not.
unsigned long PeerProcess(PipeSocket& socket);
unsigned long OwnProcess();

// Whether there is a process of that id.
bool ProcessExists(unsigned long process);

// The number of this process's user; of the peers' too, as others are refused.
unsigned long OwnUser();

// How many files, pipes included, the system lets this process have open.
std::size_t MostOpenFiles();

// The broker's end: owns the pipe's name while it lives.
class PipeListener {
public:
    // Throws std::runtime_error naming the path and the reason when the name cannot be had. What a listener that was
    // killed left behind is replaced.
    PipeListener(asio::io_context& io, const std::filesystem::path& path);
    ~PipeListener();

    // Calls `accepted` once, with an open socket of this user, which no child process inherits, or with an error:
    // std::errc::permission_denied when a process of another user came, which has been closed.
    void AsyncAccept(std::function<void(std::error_code, PipeSocket)> accepted);

private:
    struct State;
    std::shared_ptr<State> m_state;
};

}  // namespace ipc_client
