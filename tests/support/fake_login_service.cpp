#include "fake_login_service.h"

#include <fcntl.h>
#include <poll.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <stdexcept>

#include "test_process.h"

namespace settings_host {

namespace {

constexpr std::uint64_t kLookForTheEnd = 5'000;  // microseconds

}  // namespace

struct FakeLoginService::Connection {
    ~Connection() { sd_bus_flush_close_unref(bus); }

    static int Take(sd_bus_message* message, void* service, sd_bus_error*) {
        if (!sd_bus_message_is_method_call(message, "org.freedesktop.login1.Manager", "Inhibit")) return 0;
        return static_cast<FakeLoginService*>(service)->OnInhibit(message);
    }

    sd_bus* bus = nullptr;
};

// Without a table of calls, which would keep it from answering wrongly.
FakeLoginService::FakeLoginService() : m_connection(std::make_unique<Connection>()) {
    if (sd_bus_open_system(&m_connection->bus) < 0 ||
        sd_bus_add_object(m_connection->bus, nullptr, "/org/freedesktop/login1", &Connection::Take, this) < 0 ||
        sd_bus_request_name(m_connection->bus, "org.freedesktop.login1", 0) < 0) {
        throw std::runtime_error("the fake login service cannot take its place on the bus");
    }
    m_thread = std::thread([this] { Serve(); });
}

FakeLoginService::~FakeLoginService() {
    m_stop = true;
    m_thread.join();
    m_connection.reset();
    for (const int end : m_readEnds) {
        if (end >= 0) close(end);
    }
}

void FakeLoginService::Serve() {
    while (!m_stop) {
        const int result = sd_bus_process(m_connection->bus, nullptr);
        if (result < 0) return;
        if (result == 0) sd_bus_wait(m_connection->bus, kLookForTheEnd);
    }
}

int FakeLoginService::OnInhibit(sd_bus_message* message) {
    const char* words[4] = {};
    const int result = sd_bus_message_read(message, "ssss", &words[0], &words[1], &words[2], &words[3]);
    if (result < 0) return result;
    const std::lock_guard guard(m_mutex);
    m_calls.push_back({sd_bus_message_get_sender(message), {words[0], words[1], words[2], words[3]}});
    m_readEnds.push_back(-1);
    switch (m_answer.load()) {
        case Answer::File:
            return ReplyWithFile(message);
        case Answer::Refusal:
            return sd_bus_reply_method_errorf(message, SD_BUS_ERROR_ACCESS_DENIED, "Not for you.");
        case Answer::Nothing:
            return sd_bus_reply_method_return(message, "");
        case Answer::Silence:
            break;
    }
    return 1;
}

// The answer has a copy of the pipe's write end, so that the client's is the only one left.
int FakeLoginService::ReplyWithFile(sd_bus_message* message) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return -errno;
    m_readEnds.back() = ends[0];
    const int result = sd_bus_reply_method_return(message, "h", ends[1]);
    close(ends[1]);
    return result;
}

std::vector<FakeLoginService::Call> FakeLoginService::Calls() const {
    const std::lock_guard guard(m_mutex);
    return m_calls;
}

int FakeLoginService::ReadEnd(std::size_t call) const {
    const std::lock_guard guard(m_mutex);
    const int end = m_readEnds.at(call);
    if (end < 0) throw std::logic_error("that call got no file");
    return end;
}

bool FakeLoginService::IsLetGo(std::size_t call) const {
    pollfd look{ReadEnd(call), POLLIN, 0};
    return poll(&look, 1, 0) > 0;
}

bool FakeLoginService::WaitUntilLetGo(std::size_t call) const {
    constexpr auto kPatience = std::chrono::milliseconds(test_process::kPatience);
    pollfd look{ReadEnd(call), POLLIN, 0};
    return poll(&look, 1, static_cast<int>(kPatience.count())) > 0;
}

}  // namespace settings_host
