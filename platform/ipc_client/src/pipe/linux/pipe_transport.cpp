#include "pipe/pipe_transport.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <limits>
#include <system_error>
#include <utility>
#include <vector>

#include "base/handle.h"
#include "base/reason.h"
#include "pipe/pipe_path.h"
#include "pipe_folder.h"

namespace ipc_client {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void FailWithErrno(const fs::path& path) { FailAt(path, base::LastReason()); }

void CheckPathLength(const fs::path& path) {
    CheckLength(path, "a socket path", sizeof(sockaddr_un::sun_path) - 1, "bytes");
}

sockaddr_un Address(const fs::path& path) {
    CheckPathLength(path);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
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

struct stat StatusOf(int fd, const fs::path& path) {
    struct stat status {};
    if (fstat(fd, &status) != 0) FailWithErrno(path);
    return status;
}

// Whether the file of that name is the open one, and not another that took its place.
bool IsFileOf(const fs::path& path, const struct stat& open) {
    struct stat named {};
    return lstat(path.c_str(), &named) == 0 && named.st_dev == open.st_dev && named.st_ino == open.st_ino;
}

// Takes the lock that says that a live broker has this name. The file stays behind: removing it would let two brokers
// lock two files of one name. A killed broker's lock goes with its process.
base::OwnedHandle LockName(const fs::path& path) {
    const fs::path lockPath = path.native() + ".lock";
    for (;;) {
        base::OwnedHandle fd(open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
        if (!fd) FailWithErrno(lockPath);
        if (flock(fd.Descriptor(), LOCK_EX | LOCK_NB) != 0) {
            if (errno == EWOULDBLOCK) FailAsTaken(path, base::LastReason());
            FailWithErrno(path);
        }
        if (IsFileOf(lockPath, StatusOf(fd.Descriptor(), lockPath))) return fd;  // else somebody removed it meanwhile
    }
}

// In every folder in which a broker of this name may be.
std::vector<base::OwnedHandle> LockName(const std::vector<fs::path>& folders, const fs::path& name) {
    std::vector<base::OwnedHandle> locks;
    for (const fs::path& folder : folders) locks.push_back(LockName(folder / name));
    return locks;
}

bool IsAnswered(const fs::path& path, const sockaddr_un& address) {
    const base::OwnedHandle fd(NewSocket(path));
    if (connect(fd.Descriptor(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return true;
    if (errno == EAGAIN) return true;  // its backlog is full
    if (errno != ECONNREFUSED && errno != ENOENT) FailWithErrno(path);
    return false;
}

// Binds and listens. The name's lock is held, so a socket that is there is a dead broker's, unless somebody removed the
// lock of a live one: that one answers.
int Listen(const fs::path& path, const sockaddr_un& address) {
    base::OwnedHandle fd(NewSocket(path));
    if (IsAnswered(path, address)) FailAsTaken(path, "it answers");
    if (unlink(path.c_str()) != 0 && errno != ENOENT) FailWithErrno(path);
    if (bind(fd.Descriptor(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) FailWithErrno(path);
    if (chmod(path.c_str(), 0600) != 0 || listen(fd.Descriptor(), SOMAXCONN) != 0) FailWithErrno(path);
    return fd.ReleaseDescriptor();
}

// Where there are several folders, a broker is in any of them.
base::OwnedHandle ConnectedSocket(const fs::path& path) {
    CheckPathLength(path);
    const std::vector<fs::path> folders = PipeFolders(path.parent_path());
    for (std::size_t i = 0;; ++i) {
        const fs::path place = folders[i] / path.filename();
        const sockaddr_un address = Address(place);
        base::OwnedHandle fd(NewSocket(place));
        if (connect(fd.Descriptor(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
            CheckBrokersUser(place, IsOfThisUser(fd.Descriptor()));
            return fd;
        }
        if (i + 1 == folders.size()) FailWithErrno(place);
    }
}

std::error_code LastError() { return {errno, std::system_category()}; }

}  // namespace

PipeSocket ConnectPipe(asio::io_context& io, const fs::path& path) {
    base::OwnedHandle fd = ConnectedSocket(path);
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

// A reset: the other side closed it before it had read everything.
bool IsEndOfPipe(std::error_code error) { return error == asio::error::eof || error == asio::error::connection_reset; }

unsigned long PeerProcess(PipeSocket& socket) { return static_cast<unsigned long>(Peer(socket.native_handle()).pid); }

unsigned long OwnProcess() { return static_cast<unsigned long>(getpid()); }

bool ProcessExists(unsigned long process) { return kill(static_cast<pid_t>(process), 0) == 0 || errno != ESRCH; }

unsigned long OwnUser() { return geteuid(); }

std::size_t MostOpenFiles() {
    rlimit limit{};
    const bool isKnown = getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
    return isKnown ? limit.rlim_cur : std::numeric_limits<std::size_t>::max();
}

struct PipeListener::State {
    State(asio::io_context& context, const fs::path& where)
        : io(context),
          folders((CheckPathLength(where), PreparePipeFolders(where.parent_path()))),
          path(folders.front() / where.filename()),
          address(Address(path)),
          locks(LockName(folders, where.filename())),
          acceptor(io) {
        base::OwnedHandle listener(Listen(path, address));
        if (lstat(path.c_str(), &bound) != 0) FailWithErrno(path);
        acceptor.assign(asio::local::stream_protocol(), listener.Descriptor());
        listener.ReleaseDescriptor();
        acceptor.non_blocking(true);
    }

    // None, without an error, when nobody has come after all.
    base::OwnedHandle Accept(std::error_code& error) {
        base::OwnedHandle fd(accept4(acceptor.native_handle(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!fd) {
            if (errno != EAGAIN && errno != ECONNABORTED && errno != EINTR) error = LastError();
            return fd;
        }
        if (IsOfThisUser(fd.Descriptor())) return fd;
        error = std::make_error_code(std::errc::permission_denied);
        return base::OwnedHandle();
    }

    PipeSocket Socket(base::OwnedHandle fd) {
        PipeSocket socket(io, asio::local::stream_protocol(), fd.Descriptor());
        fd.ReleaseDescriptor();
        socket.non_blocking(true);
        return socket;
    }

    asio::io_context& io;
    std::vector<fs::path> folders;
    fs::path path;
    sockaddr_un address;
    std::vector<base::OwnedHandle> locks;
    asio::local::stream_protocol::acceptor acceptor;
    struct stat bound {};  // the socket's file
};

PipeListener::PipeListener(asio::io_context& io, const fs::path& path) : m_state(std::make_shared<State>(io, path)) {}

PipeListener::~PipeListener() {
    if (IsFileOf(m_state->path, m_state->bound)) unlink(m_state->path.c_str());
}

// Asio's own accept leaves the socket open in children that another thread starts at that moment.
void PipeListener::AsyncAccept(std::function<void(std::error_code, PipeSocket)> accepted) {
    m_state->acceptor.async_wait(asio::socket_base::wait_read,
                                 [this, accepted = std::move(accepted)](std::error_code error) mutable {
                                     base::OwnedHandle fd;
                                     if (!error) fd = m_state->Accept(error);
                                     if (error) return accepted(error, PipeSocket(m_state->io));
                                     if (!fd) return AsyncAccept(std::move(accepted));
                                     accepted(error, m_state->Socket(std::move(fd)));
                                 });
}

}  // namespace ipc_client
