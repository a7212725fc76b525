#include "foreign_process.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "fuzz_target.h"

namespace fuzz {
namespace {

int ConnectTo(const std::filesystem::path& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string& name = path.native();
    Require(name.size() < sizeof address.sun_path, "the socket's path is short enough");
    std::copy(name.begin(), name.end(), address.sun_path);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    Require(connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0, "a broker listens");
    return descriptor;
}

// One byte, and room for a descriptor beside it.
struct Envelope {
    Envelope() {
        message.msg_iov = &bytes;
        message.msg_iovlen = 1;
        message.msg_control = control;
        message.msg_controllen = sizeof control;
    }
    Envelope(const Envelope&) = delete;
    Envelope& operator=(const Envelope&) = delete;

    char byte = 0;
    iovec bytes{&byte, 1};
    msghdr message{};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
};

void Give(int line, int descriptor) {
    Envelope envelope;
    cmsghdr* const header = CMSG_FIRSTHDR(&envelope.message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(sizeof descriptor);
    std::memcpy(CMSG_DATA(header), &descriptor, sizeof descriptor);
    sendmsg(line, &envelope.message, MSG_NOSIGNAL);
}

int Take(int line) {
    Envelope envelope;
    ssize_t received = -1;
    do received = recvmsg(line, &envelope.message, MSG_CMSG_CLOEXEC);
    while (received < 0 && errno == EINTR);  // by libFuzzer's clock
    const cmsghdr* const header = received == 1 ? CMSG_FIRSTHDR(&envelope.message) : nullptr;
    Require(header != nullptr, "the other process is there");
    int descriptor = -1;
    std::memcpy(&descriptor, CMSG_DATA(header), sizeof descriptor);
    return descriptor;
}

[[noreturn]] void Serve(int line, const std::filesystem::path& socket) {
    for (char byte = 0; recv(line, &byte, 1, 0) == 1;) {
        const int connection = ConnectTo(socket);
        Give(line, connection);
        close(connection);
    }
    _exit(0);
}

}  // namespace

ForeignProcess::ForeignProcess(const std::filesystem::path& socket) {
    int line[2] = {-1, -1};
    Require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, line) == 0, "there are sockets");
    const pid_t process = fork();
    Require(process >= 0, "there can be another process");
    close(line[process == 0 ? 0 : 1]);
    if (process == 0) Serve(line[1], socket);
    m_line = base::OwnedHandle(line[0]);
}

base::OwnedHandle ForeignProcess::Connect() const {
    const char byte = 0;
    Require(send(m_line.Descriptor(), &byte, 1, MSG_NOSIGNAL) == 1, "the other process is there");
    return base::OwnedHandle(Take(m_line.Descriptor()));
}

}  // namespace fuzz
