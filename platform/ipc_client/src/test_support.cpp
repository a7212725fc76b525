#include "test_support.h"

#include <pthread.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "frame.h"
#include "ipc_client/ipc_log.h"

namespace ipc_test {

using std::chrono::steady_clock;

bool Eventually(const std::function<bool()>& condition) {
    const auto until = steady_clock::now() + kPatience;
    while (!condition()) {
        if (steady_clock::now() > until) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

PipeTest::PipeTest() {
    char name[] = "/tmp/ipc_test_XXXXXX";
    m_folder = mkdtemp(name);
    setenv("BRINDLE_PIPE_DIR", m_folder.c_str(), 1);
    SetIpcLogSink([this](int, const std::string& line) {
        const std::lock_guard lock(m_mutex);
        m_lines.push_back(line);
        m_lineCame.notify_all();
    });
}

PipeTest::~PipeTest() {
    SetIpcLogSink(nullptr);
    unsetenv("BRINDLE_PIPE_DIR");
    std::filesystem::remove_all(m_folder);
}

bool PipeTest::Logged(const std::string& text) {
    std::unique_lock lock(m_mutex);
    return m_lineCame.wait_for(lock, kPatience, [&] {
        return std::any_of(m_lines.begin(), m_lines.end(),
                           [&](const std::string& line) { return line.find(text) != std::string::npos; });
    });
}

int PipeTest::CountLogged(const std::string& text) {
    const std::lock_guard lock(m_mutex);
    return static_cast<int>(std::count_if(
        m_lines.begin(), m_lines.end(), [&](const std::string& line) { return line.find(text) != std::string::npos; }));
}

std::function<void(TagIPCMessageItem&)> Inbox::Callback() {
    return [this](TagIPCMessageItem& item) {
        Received received{item, {}, item.data != nullptr, false};
        if (item.data != nullptr) {
            received.data.assign(item.data, static_cast<std::size_t>(item.dataLen));
            received.zeroBehindData = item.data[item.dataLen] == '\0';
        }
        received.item.data = nullptr;
        const std::lock_guard lock(m_mutex);
        m_messages.push_back(std::move(received));
        m_came.notify_all();
    };
}

std::vector<Received> Inbox::WaitFor(std::size_t count) {
    std::unique_lock lock(m_mutex);
    m_came.wait_for(lock, kPatience, [&] { return m_messages.size() >= count; });
    return m_messages;
}

std::vector<std::string> Inbox::WaitForData(std::size_t count) {
    std::vector<std::string> data;
    for (const Received& received : WaitFor(count)) data.push_back(received.data);
    return data;
}

std::size_t Inbox::Count() {
    const std::lock_guard lock(m_mutex);
    return m_messages.size();
}

bool Post(IPCMessageClient& client, int destId, int msgId, std::string data) {
    TagIPCMessageItem item;
    item.destId = destId;
    item.sourceId = 1;
    item.msgId = msgId;
    item.dataLen = static_cast<std::int32_t>(data.size());
    item.data = data.empty() ? nullptr : data.data();
    return client.PostIPCMessage(item);
}

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
    setsockopt(m_fd, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    setsockopt(m_fd, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    EXPECT_EQ(connect(m_fd, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0) << std::strerror(errno);
}

RawPeer::~RawPeer() { close(m_fd); }

bool RawPeer::Write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = send(m_fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

std::string RawPeer::Read(std::size_t bytes) {
    std::string all(bytes, '\0');
    std::size_t have = 0;
    while (have < bytes) {
        const ssize_t got = recv(m_fd, all.data() + have, bytes - have, 0);
        if (got <= 0) break;
        have += static_cast<std::size_t>(got);
    }
    all.resize(have);
    return all;
}

bool RawPeer::IsClosedByPeer() {
    char buffer[4096];
    ssize_t got = 0;
    do got = recv(m_fd, buffer, sizeof buffer, 0);
    while (got > 0);
    return got == 0 || errno == ECONNRESET || errno == EPIPE;
}

RawBroker::RawBroker(const std::filesystem::path& socketPath, std::string answer)
    : m_listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const sockaddr_un address = Address(socketPath);
    EXPECT_EQ(bind(m_listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(listen(m_listener, 1), 0);
    m_thread = std::thread([this, answer = std::move(answer)] {
        const int connection = accept(m_listener, nullptr, nullptr);
        if (connection < 0) return;
        send(connection, answer.data(), answer.size(), MSG_NOSIGNAL);
        char buffer[4096];
        while (recv(connection, buffer, sizeof buffer, 0) > 0) {
        }
        close(connection);
    });
}

RawBroker::~RawBroker() {
    shutdown(m_listener, SHUT_RDWR);  // wakes an accept that still waits
    m_thread.join();
    close(m_listener);
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

std::string Hello() {
    std::string hello;
    ipc_client::AppendHello(hello);
    return hello;
}

}  // namespace ipc_test
