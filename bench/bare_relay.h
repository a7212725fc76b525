#pragma once

#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

// What the message pipe is measured against: the same payload through a bare relay of two Unix socket hops, with the
// relay in a process of its own.
namespace bench {

using Clock = std::chrono::steady_clock;
using Microseconds = std::chrono::duration<double, std::micro>;

constexpr std::size_t kPayloadBytes = 4 + 4 + 15 + 4;  // a progress record with a key of 15 characters
constexpr double kMostTimesTheRelay = 2.5;
constexpr std::chrono::seconds kPatience{60};

[[noreturn]] inline void Die(const std::string& reason) {
    std::fprintf(stderr, "benchmark: %s\n", reason.c_str());
    std::_Exit(1);  // other threads still use what is there
}

// Runs `work` in another process until this one is destroyed.
class Child {
public:
    template <typename Work>
    explicit Child(Work work) : m_pid(fork()) {
        if (m_pid != 0) return;
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        work();
        _exit(0);
    }
    ~Child() {
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    pid_t Id() const { return m_pid; }

private:
    const pid_t m_pid;
};

// Hands the time at which a message arrived from the receiving thread to the posting one.
class Arrival {
public:
    void Came() {
        const Clock::time_point now = Clock::now();
        const std::lock_guard lock(m_mutex);
        m_when = now;
        m_came.notify_one();
    }
    Clock::time_point Wait() {
        std::unique_lock lock(m_mutex);
        if (!m_came.wait_for(lock, kPatience, [this] { return m_when.has_value(); })) Die("a message was lost");
        const Clock::time_point when = *m_when;
        m_when.reset();
        return when;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_came;
    std::optional<Clock::time_point> m_when;
};

inline std::array<int, 2> SocketPair() {
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0) Die("no sockets");
    return ends;
}

// The bare way: a socket to another process, which writes what it reads to a second socket, read here by a thread.
class Relay {
public:
    Relay() : m_toRelay(SocketPair()), m_fromRelay(SocketPair()), m_child([this] { Pass(); }) {
        m_receiver = std::thread([this] {
            std::array<char, kPayloadBytes> payload;
            while (recv(m_fromRelay[1], payload.data(), payload.size(), MSG_WAITALL) == std::ssize(payload)) {
                m_arrival.Came();
            }
        });
    }
    ~Relay() {
        shutdown(m_fromRelay[1], SHUT_RDWR);
        m_receiver.join();
        for (const int fd : {m_toRelay[0], m_toRelay[1], m_fromRelay[0], m_fromRelay[1]}) close(fd);
    }

    double Time() {
        const std::array<char, kPayloadBytes> payload{};
        const Clock::time_point begin = Clock::now();
        if (send(m_toRelay[0], payload.data(), payload.size(), 0) != std::ssize(payload)) Die("the relay is gone");
        return Microseconds(m_arrival.Wait() - begin).count();
    }

private:
    void Pass() const {
        std::array<char, kPayloadBytes> payload;
        while (recv(m_toRelay[1], payload.data(), payload.size(), MSG_WAITALL) == std::ssize(payload)) {
            if (send(m_fromRelay[0], payload.data(), payload.size(), MSG_NOSIGNAL) <= 0) return;
        }
    }

    const std::array<int, 2> m_toRelay, m_fromRelay;
    const Child m_child;
    Arrival m_arrival;
    std::thread m_receiver;
};

inline double Median(std::vector<double> values) {
    const auto middle = values.begin() + std::ssize(values) / 2;
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

}  // namespace bench
