#include "pipe/pipe_transport.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "base/handle.h"
#include "base/reason.h"
#include "pipe/pipe_path.h"

namespace ipc_client {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void FailWithErrno(const fs::path& path) { FailAt(path, base::LastReason()); }

sockaddr_un Address(const fs::path& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    CheckLength(path, "a socket path", sizeof address.sun_path - 1, "bytes");
    const std::string& name = path.native();
    std::copy(name.begin(), name.end(), address.sun_path);
    return address;
}

int NewSocket(const fs::path& path) {
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0) FailWithErrno(path);
    return fd;
}

// Credentials of the process at the other end; pid 0 when the system does not tell.
ucred Peer(int fd) {
    ucred credentials{0, static_cast<uid_t>(-1), static_cast<gid_t>(-1)};
    socklen_t size = sizeof credentials;
    getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &credentials, &size);
    return credentials;
}

bool IsOfThisUser(int fd) { return Peer(fd).uid == geteuid(); }

// Takes the lock that says that a live broker has this name. The file stays behind: removing it would let two brokers
// lock two files of one name. A killed broker's lock goes with its process.
int LockName(const fs::path& path) {
    const fs::path lockPath = path.native() + ".lock";
    base::OwnedHandle fd(open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!fd) FailWithErrno(lockPath);
    if (flock(fd.Descriptor(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) FailAsTaken(path, base::LastReason());
        FailWithErrno(path);
    }
    return fd.ReleaseDescriptor();
}

// Binds and listens; the name's lock is held, so a socket that is there is a dead broker's.
int Listen(const fs::path& path, const sockaddr_un& address) {
    base::OwnedHandle fd(NewSocket(path));
    if (unlink(path.c_str()) != 0 && errno != ENOENT) FailWithErrno(path);
    if (bind(fd.Descriptor(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) FailWithErrno(path);
    if (chmod(path.c_str(), 0600) != 0 || listen(fd.Descriptor(), SOMAXCONN) != 0) FailWithErrno(path);
    return fd.ReleaseDescriptor();
}

}  // namespace

PipeSocket ConnectPipe(asio::io_context& io, const fs::path& path) {
    const sockaddr_un address = Address(path);
    base::OwnedHandle fd(NewSocket(path));
    if (connect(fd.Descriptor(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) FailWithErrno(path);
    CheckBrokersUser(path, IsOfThisUser(fd.Descriptor()));
    PipeSocket socket(io);
    socket.assign(asio::local::stream_protocol(), fd.Descriptor());
    fd.ReleaseDescriptor();
    socket.non_blocking(true);
    return socket;
}

std::size_t WriteNow(PipeSocket& socket, std::string_view bytes) {
    const ssize_t written = send(socket.native_handle(), bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    return written < 0 ? 0 : static_cast<std::size_t>(written);
}

bool WriteHello(PipeSocket& socket, std::string_view bytes) { return WriteNow(socket, bytes) == bytes.size(); }

bool IsEndOfPipe(std::error_code error) { return error == asio::error::eof; }

std::string PeerName(PipeSocket& socket) { return "process " + std::to_string(Peer(socket.native_handle()).pid); }

struct PipeListener::State {
    State(asio::io_context& io, const fs::path& where)
        : path(where),
          address(Address(where)),
          lock((PreparePipeFolder(where.parent_path()), LockName(where))),
          acceptor(io) {
        base::OwnedHandle listener(Listen(path, address));
        acceptor.assign(asio::local::stream_protocol(), listener.Descriptor());
        listener.ReleaseDescriptor();
    }

    fs::path path;
    sockaddr_un address;
    base::OwnedHandle lock;
    asio::local::stream_protocol::acceptor acceptor;
};

PipeListener::PipeListener(asio::io_context& io, const fs::path& path) : m_state(std::make_shared<State>(io, path)) {}

PipeListener::~PipeListener() { unlink(m_state->path.c_str()); }

void PipeListener::AsyncAccept(std::function<void(std::error_code, PipeSocket)> accepted) {
    m_state->acceptor.async_accept([accepted = std::move(accepted)](std::error_code error, PipeSocket socket) {
        if (!error && !IsOfThisUser(socket.native_handle())) error = std::make_error_code(std::errc::permission_denied);
        if (!error) socket.non_blocking(true, error);
        accepted(error, std::move(socket));
    });
}

}  // namespace ipc_client
