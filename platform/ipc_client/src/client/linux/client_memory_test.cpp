// A client whose allocations fail, one after the other: each costs at most what it was for, and the client goes on.

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "ipc/pipe_test.h"
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_message_client.h"

namespace {

enum class Whose { kNobodys, kTheCallers, kTheClientsThreads };

std::atomic<Whose> g_whose{Whose::kNobodys};  // allocations are counted
std::atomic<int> g_left{0};                   // until one fails; 0: none does
std::array<std::atomic<pid_t>, 64> g_others;  // threads that are not the client's
std::atomic<pid_t> g_caller{0};

Whose OfThisThread() {
    const pid_t thread = gettid();
    if (thread == g_caller) return Whose::kTheCallers;
    for (const auto& other : g_others) {
        if (other == thread) return Whose::kNobodys;
    }
    return Whose::kTheClientsThreads;
}

thread_local bool t_isInATest = false;  // in a callback, which is not the client's

bool Fails() {
    if (g_left.load(std::memory_order_relaxed) == 0 || t_isInATest) return false;
    static thread_local const Whose whose = OfThisThread();
    if (whose != g_whose) return false;
    int left = g_left;
    while (left > 0 && !g_left.compare_exchange_weak(left, left - 1)) {
    }
    return left == 1;
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

const std::string kLarge(300 * 1024, 'd');

class ClientMemory : public PipeTest {
protected:
    ClientMemory() : m_broker(kPipe) {
        m_broker.Start();
        g_caller = gettid();
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) {
            g_others.at(count++) = static_cast<pid_t>(std::stol(entry.path().filename().string()));
        }
    }
    ~ClientMemory() override { g_left = 0; }

    // An inbox that has all the memory that it needs.
    static std::function<void(TagIPCMessageItem&)> CallbackOf(Inbox& inbox) {
        return [callback = inbox.Callback()](TagIPCMessageItem& item) {
            t_isInATest = true;
            callback(item);
            t_isInATest = false;
        };
    }

    // What a client may do: register, post to itself, small and large, and to nobody, unregister. Afterwards the client
    // that it made, if it came so far.
    static std::unique_ptr<IPCMessageClient> Use(Inbox& inbox) {
        auto client = std::make_unique<IPCMessageClient>(1, true, false, kPipe);
        client->RegisterMessageCallback(1, CallbackOf(inbox));
        client->RegisterMessageCallback(2, [](TagIPCMessageItem&) {});
        for (const std::string& data : {std::string("small"), kLarge}) Post(*client, 1, 1, data);
        Post(*client, 3, 1, "to nobody");
        client->UnRegisterMessageCallback(2);
        return client;
    }

    static bool Arrives(IPCMessageClient& client, Inbox& inbox) {
        client.RegisterMessageCallback(1, CallbackOf(inbox));
        if (!Post(client, 1, 1, "last")) return false;
        return WaitUntil([&] {
            const std::vector<std::string> data = inbox.WaitForData(0);
            return !data.empty() && data.back() == "last";
        });
    }

    // Fails one allocation after the other; how many did.
    int FailEach(Whose whose) {
        constexpr int kMost = 2000;
        for (int nth = 1; nth < kMost; ++nth) {
            SCOPED_TRACE("allocation " + std::to_string(nth));
            Inbox inbox;
            std::unique_ptr<IPCMessageClient> client;
            g_whose = whose;
            g_left = nth;
            try {
                client = Use(inbox);
            } catch (const std::bad_alloc&) {
                EXPECT_EQ(whose, Whose::kTheCallers);
            }
            if (whose == Whose::kTheClientsThreads) {
                (void)WaitUntil([&] { return g_left == 0 || inbox.Count() >= 2; });
            }
            const bool happened = g_left.exchange(0) == 0;
            if (!client) client = Use(inbox);
            EXPECT_TRUE(Arrives(*client, inbox));
            if (whose == Whose::kTheClientsThreads) {
                EXPECT_TRUE(inbox.WaitForData(3) == (std::vector<std::string>{"small", kLarge, "last"}))
                    << "lost, or twice";
            }
            if (!happened || HasFailure()) return nth - 1;
        }
        ADD_FAILURE() << "there is no end to its allocations";
        return 0;
    }

    IPCBroker m_broker;
};

TEST_F(ClientMemory, WhateverAllocationOfACallFailsTheClientGoesOn) { EXPECT_GT(FailEach(Whose::kTheCallers), 20); }

TEST_F(ClientMemory, WhateverAllocationOfItsThreadsFailsTheClientGoesOn) {
    EXPECT_GT(FailEach(Whose::kTheClientsThreads), 20);
}

}  // namespace
}  // namespace ipc_test
