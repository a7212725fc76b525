// A broker whose allocations fail, one after the other: each costs at most the connection that it was for.

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <set>
#include <string>

#include "ipc/message_frame.h"
#include "ipc/pipe_test.h"
#include "ipc_client/ipc_broker.h"

namespace {

std::atomic<pid_t> g_thread{0};  // whose allocations are counted
std::atomic<int> g_left{0};      // until one fails; 0: none does

bool Fails() {
    if (g_left.load(std::memory_order_relaxed) == 0) return false;
    static thread_local const pid_t thread = gettid();
    return thread == g_thread && --g_left == 0;
}

}  // namespace

void* operator new(std::size_t bytes) {
    void* const memory = Fails() ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace ipc_test {
namespace {

std::set<pid_t> Threads() {
    std::set<pid_t> ids;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) {
        ids.insert(static_cast<pid_t>(std::stol(entry.path().filename().string())));
    }
    return ids;
}

std::string Message(int destId, std::size_t bytes) { return MessageFrame(std::string(bytes, 'd'), {destId, 1}); }

class BrokerMemory : public PipeTest {
protected:
    BrokerMemory() : m_broker(kPipe) {
        const std::set<pid_t> before = Threads();
        m_broker.Start();
        for (const pid_t thread : Threads()) {
            if (before.count(thread) == 0) g_thread = thread;
        }
    }
    ~BrokerMemory() override { g_left = 0; }

    // What a connection may do: announce, post to nobody and to itself, small and large. Whether its own message came
    // back.
    bool Converse() {
        const std::string announcement = AnnouncementFrame({{1, 1}, {2, 1}});
        const std::string own = Message(1, 300 * 1024);
        RawPeer peer(SocketPath());
        peer.Write(Hello() + Message(3, 10) + announcement + Message(3, 10) + own);
        return peer.Read(8 + own.size()).size() == 8 + own.size();
    }

    IPCBroker m_broker;
};

TEST_F(BrokerMemory, WhateverAllocationFailsTheNextConnectionIsServed) {
    ASSERT_NE(g_thread, 0);
    ASSERT_TRUE(Converse());
    int spoiled = 0;
    constexpr int kMost = 500;
    for (int nth = 1; nth < kMost; ++nth) {
        g_left = nth;
        if (!Converse()) ++spoiled;
        const bool happened = g_left.exchange(0) == 0;
        ASSERT_TRUE(Converse()) << "after the allocation " << nth << " failed";
        if (!happened) break;
        ASSERT_LT(nth, kMost - 1) << "there is no end to its allocations";
    }
    EXPECT_GT(spoiled, 0);  // so the failures were noticed at all
}

}  // namespace
}  // namespace ipc_test
