#include <pthread.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "ipc/linux/no_more_threads.h"
#include "ipc/pipe_test.h"

namespace ipc_test {

namespace {

sockaddr_un Address(const std::filesystem::path& socketPath) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, socketPath.c_str(), sizeof address.sun_path - 1);
    return address;
}

}  // namespace

RawPeer::RawPeer(const std::filesystem::path& socketPath) : m_fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const sockaddr_un address = Address(socketPath);
    const timeval patience{kPatience.count(), 0};
    setsockopt(static_cast<int>(m_fd), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    setsockopt(static_cast<int>(m_fd), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    EXPECT_EQ(connect(static_cast<int>(m_fd), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0)
        << std::strerror(errno);
}

RawPeer::~RawPeer() { close(static_cast<int>(m_fd)); }

bool RawPeer::Write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = send(static_cast<int>(m_fd), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

std::string RawPeer::Read(std::size_t bytes) {
    std::string all(bytes, '\0');
    std::size_t have = 0;
    while (have < bytes) {
        const ssize_t got = recv(static_cast<int>(m_fd), all.data() + have, bytes - have, 0);
        if (got <= 0) break;
        have += static_cast<std::size_t>(got);
    }
    all.resize(have);
    return all;
}

bool RawPeer::IsClosedByPeer() {
    char buffer[4096];
    ssize_t got = 0;
    do got = recv(static_cast<int>(m_fd), buffer, sizeof buffer, 0);
    while (got > 0);
    return got == 0 || errno == ECONNRESET || errno == EPIPE;
}

RawBroker::RawBroker(const std::filesystem::path& socketPath, std::string answer)
    : m_listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const sockaddr_un address = Address(socketPath);
    EXPECT_EQ(bind(static_cast<int>(m_listener), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(listen(static_cast<int>(m_listener), 1), 0);
    m_thread = std::thread([this, answer = std::move(answer)] {
        const int connection = accept(static_cast<int>(m_listener), nullptr, nullptr);
        if (connection < 0) return;
        send(connection, answer.data(), answer.size(), MSG_NOSIGNAL);
        char buffer[4096];
        while (recv(connection, buffer, sizeof buffer, 0) > 0) {
        }
        close(connection);
    });
}

RawBroker::~RawBroker() {
    shutdown(static_cast<int>(m_listener), SHUT_RDWR);  // wakes an accept that still waits
    m_thread.join();
    close(static_cast<int>(m_listener));
}

namespace {

// Sets the stack size of threads to come, and returns the one before. [bytes]
std::size_t ExchangeStackSize(std::size_t size) {
    pthread_attr_t attributes;
    std::size_t earlier = 0;
    EXPECT_EQ(pthread_getattr_default_np(&attributes), 0);
    EXPECT_EQ(pthread_attr_getstacksize(&attributes, &earlier), 0);
    EXPECT_EQ(pthread_attr_setstacksize(&attributes, size), 0);
    EXPECT_EQ(pthread_setattr_default_np(&attributes), 0);
    pthread_attr_destroy(&attributes);
    return earlier;
}

constexpr std::size_t kMoreThanThereIs = std::size_t{1} << 47;  // [bytes] of address space

}  // namespace

NoMoreThreads::NoMoreThreads() : m_stackSize(ExchangeStackSize(kMoreThanThereIs)) {}

NoMoreThreads::~NoMoreThreads() { ExchangeStackSize(m_stackSize); }

}  // namespace ipc_test
