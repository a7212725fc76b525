// Delivery threads: callbacks, the UI turn, registration and unregistration from everywhere.

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <future>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>

#include "ipc/pipe_test.h"
#if !defined(_WIN32)
#include "ipc/linux/no_more_threads.h"
#endif
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_message_client.h"
#include "kernel/sleep.h"
#include "kernel/ui_turn.h"

namespace ipc_test {
namespace {

using ::testing::ElementsAre;

constexpr int kPage = 0x270000;
constexpr int kFirst = 1, kSecond = 2;

class DeliveryTest : public PipeTest {
protected:
    DeliveryTest() : m_broker(kPipe), m_client(std::make_unique<IPCMessageClient>(kPage, true, false, kPipe)) {
        m_broker.Start();
    }

    void PostToSelf(int msgId, const std::string& data = "") { EXPECT_TRUE(Post(*m_client, kPage, msgId, data)); }

    // Returns while a callback sleeps, which then sets `finished`.
    void BeInACallbackThatSleeps(std::atomic<bool>& finished) {
        const auto entered = std::make_shared<std::promise<void>>();
        m_client->RegisterMessageCallback(kFirst, [&finished, entered](TagIPCMessageItem&) {
            entered->set_value();
            kernel::Sleep(20);  // gives the turn up, and needs it again to return
            finished = true;
        });
        PostToSelf(kFirst);
        entered->get_future().wait();
    }

    IPCBroker m_broker;
    std::unique_ptr<IPCMessageClient> m_client;
};

TEST_F(DeliveryTest, ACallbackRunsOnOneThreadOfItsClientAndHoldsTheUiTurn) {
    std::atomic<bool> held{true};
    std::mutex mutex;
    std::set<std::thread::id> threads;
    Inbox inbox;
    for (const int msgId : {kFirst, kSecond}) {
        m_client->RegisterMessageCallback(msgId, [&, callback = inbox.Callback()](TagIPCMessageItem& item) {
            if (!kernel::UiTurn::IsHeld()) held = false;
            {
                const std::lock_guard lock(mutex);
                threads.insert(std::this_thread::get_id());
            }
            callback(item);
        });
    }
    for (const int msgId : {kFirst, kSecond, kFirst}) PostToSelf(msgId);
    EXPECT_EQ(inbox.WaitFor(3).size(), 3u);
    EXPECT_TRUE(held);
    EXPECT_EQ(threads.size(), 1u);
    EXPECT_FALSE(threads.contains(std::this_thread::get_id()));
}

TEST_F(DeliveryTest, MessagesOfSeveralIdsArriveInTheOrderInWhichTheyWerePosted) {
    Inbox inbox;
    m_client->RegisterMessageCallback(kFirst, inbox.Callback());
    m_client->RegisterMessageCallback(kSecond, inbox.Callback());
    std::vector<std::string> posted;
    for (int i = 0; i < 1000; ++i) {
        posted.push_back(std::to_string(i));
        PostToSelf(i % 3 == 0 ? kFirst : kSecond, posted.back());
    }
    EXPECT_EQ(inbox.WaitForData(1000), posted);
}

// The delivery thread stands in the queue for the turn.
bool SomebodyWaits() {
    return WaitUntil([] { return kernel::UiTurn::Waiting() == 1; });
}

TEST_F(DeliveryTest, NoCallbackRunsWhileTheUiTurnIsHeldElsewhere) {
    std::atomic<bool> turnIsElsewhere{false}, intruded{false};
    Inbox inbox;
    m_client->RegisterMessageCallback(kFirst, [&, callback = inbox.Callback()](TagIPCMessageItem& item) {
        if (turnIsElsewhere) intruded = true;
        callback(item);
    });
    for (std::size_t i = 0; i < 50; ++i) {
        {
            const kernel::UiTurn turn;
            turnIsElsewhere = true;
            PostToSelf(kFirst);
            ASSERT_TRUE(SomebodyWaits());
            EXPECT_EQ(inbox.Count(), i);
            turnIsElsewhere = false;
        }
        EXPECT_EQ(inbox.WaitFor(i + 1).size(), i + 1);
    }
    EXPECT_FALSE(intruded);
}

TEST_F(DeliveryTest, AMessageWhoseCallbackIsRemovedDuringTheWaitForTheUiTurnIsDropped) {
    Inbox inbox;
    m_client->RegisterMessageCallback(kFirst, inbox.Callback());
    m_client->RegisterMessageCallback(kSecond, inbox.Callback());
    {
        const kernel::UiTurn turn;
        PostToSelf(kFirst, "never");
        ASSERT_TRUE(SomebodyWaits());
        EXPECT_TRUE(m_client->UnRegisterMessageCallback(kFirst));
    }
    PostToSelf(kSecond, "delivered");
    EXPECT_THAT(inbox.WaitForData(1), ElementsAre("delivered"));
}

TEST_F(DeliveryTest, UnregistrationWaitsForTheRunningCallbackAndGivesUpTheUiTurn) {
    std::atomic<bool> finished{false};
    BeInACallbackThatSleeps(finished);
    const kernel::UiTurn turn;
    EXPECT_TRUE(m_client->UnRegisterMessageCallback(kFirst));
    EXPECT_TRUE(finished);
    EXPECT_TRUE(kernel::UiTurn::IsHeld());
}

TEST_F(DeliveryTest, UnregisteringAllWaitsToo) {
    std::promise<void> entered;
    std::atomic<bool> finished{false};
    m_client->RegisterMessageCallback(kFirst, [&](TagIPCMessageItem&) {
        m_client->UnRegisterMessageCallback(kFirst);  // so nothing is registered any more, but this still runs
        entered.set_value();
        kernel::Sleep(20);
        finished = true;
    });
    PostToSelf(kFirst);
    entered.get_future().wait();
    EXPECT_FALSE(m_client->UnRegisterMessageCallbackAll());
    EXPECT_TRUE(finished);
}

TEST_F(DeliveryTest, UnregistrationDoesNotWaitForACallbackOfAnotherId) {
    std::promise<void> entered, released;
    Inbox done;
    m_client->RegisterMessageCallback(kFirst, [&, callback = done.Callback()](TagIPCMessageItem& item) {
        entered.set_value();
        released.get_future().wait();
        callback(item);
    });
    m_client->RegisterMessageCallback(kSecond, [](TagIPCMessageItem&) {});
    PostToSelf(kFirst);
    entered.get_future().wait();
    EXPECT_TRUE(m_client->UnRegisterMessageCallback(kSecond));
    EXPECT_EQ(done.Count(), 0u);
    released.set_value();
    EXPECT_EQ(done.WaitFor(1).size(), 1u);
}

TEST_F(DeliveryTest, DestructionEndsADeliveryThreadThatWaitsForTheUiTurn) {
    Inbox inbox;
    m_client->RegisterMessageCallback(kFirst, inbox.Callback());
    const kernel::UiTurn turn;
    for (int i = 0; i < 10; ++i) PostToSelf(kFirst);
    ASSERT_TRUE(SomebodyWaits());
    m_client.reset();
    EXPECT_EQ(inbox.Count(), 0u);
    EXPECT_TRUE(kernel::UiTurn::IsHeld());
}

// What a late callback would touch lives until the test's end, when every message has come to a client that is left.
TEST_F(DeliveryTest, NoCallbackRunsAfterDestruction) {
    constexpr std::size_t kRounds = 50, kMessages = 20;
    std::array<std::atomic<bool>, kRounds> ended{};
    std::atomic<bool> late{false};
    Inbox left;
    m_client->RegisterMessageCallback(kFirst, left.Callback());
    for (std::atomic<bool>& hasEnded : ended) {
        auto client = std::make_unique<IPCMessageClient>(kPage, true, false, kPipe);
        client->RegisterMessageCallback(kFirst, [&](TagIPCMessageItem&) {
            kernel::Sleep(0);  // without the turn
            if (hasEnded) late = true;
        });
        for (std::size_t i = 0; i < kMessages; ++i) PostToSelf(kFirst);
        client.reset();
        hasEnded = true;
    }
    EXPECT_EQ(left.WaitFor(kRounds * kMessages).size(), kRounds * kMessages);
    EXPECT_FALSE(late);
}

TEST_F(DeliveryTest, DestructionWaitsForTheCallbackThatSleepsAndGivesUpTheUiTurn) {
    std::atomic<bool> finished{false};
    BeInACallbackThatSleeps(finished);
    const kernel::UiTurn turn;
    m_client.reset();
    EXPECT_TRUE(finished);
    EXPECT_TRUE(kernel::UiTurn::IsHeld());
}

TEST_F(DeliveryTest, ACallbackMayDestroyAnotherClientWhoseCallbackSleeps) {
    constexpr int kOther = 7;
    auto other = std::make_unique<IPCMessageClient>(kOther, true, false, kPipe);
    std::promise<void> entered, destroyed;
    std::atomic<bool> finished{false};
    bool finishedBefore = false;
    other->RegisterMessageCallback(kFirst, [&](TagIPCMessageItem&) {
        entered.set_value();
        kernel::Sleep(20);
        finished = true;
    });
    m_client->RegisterMessageCallback(kFirst, [&](TagIPCMessageItem&) {
        other.reset();
        finishedBefore = finished;
        destroyed.set_value();
    });
    EXPECT_TRUE(Post(*m_client, kOther, kFirst));
    entered.get_future().wait();
    PostToSelf(kFirst);
    destroyed.get_future().wait();
    EXPECT_TRUE(finishedBefore);
}

TEST_F(DeliveryTest, ACallbackMayRemoveAllOfItsClient) {
    Inbox inbox;
    std::promise<bool> removed;
    m_client->RegisterMessageCallback(kSecond, inbox.Callback());
    m_client->RegisterMessageCallback(kFirst, [&](TagIPCMessageItem&) {
        PostToSelf(kSecond, "never");
        removed.set_value(m_client->UnRegisterMessageCallbackAll());
    });
    PostToSelf(kFirst);
    EXPECT_TRUE(removed.get_future().get());
    EXPECT_FALSE(m_client->UnRegisterMessageCallbackAll());
    m_client->RegisterMessageCallback(kFirst, inbox.Callback());
    PostToSelf(kFirst, "registered anew");
    EXPECT_EQ(inbox.WaitForData(1).back(), "registered anew");
}

// Does something when it goes, as what a callback holds may.
std::shared_ptr<void> AtTheEnd(std::function<void()> action) {
    return {nullptr, [action = std::move(action)](void*) { action(); }};
}

TEST_F(DeliveryTest, WhatARemovedCallbackHoldsMayUseTheClientWhenItGoes) {
    int gone = 0;
    const auto callbackThatPostsAtItsEnd = [&] {
        auto held = AtTheEnd([&] {
            ++gone;
            m_client->RegisterMessageCallback(kSecond, [](TagIPCMessageItem&) {});
            m_client->UnRegisterMessageCallback(kSecond);
            PostToSelf(kSecond);
        });
        return [held = std::move(held)](TagIPCMessageItem&) {};
    };
    m_client->RegisterMessageCallback(kFirst, callbackThatPostsAtItsEnd());
    m_client->RegisterMessageCallback(kFirst, callbackThatPostsAtItsEnd());
    EXPECT_EQ(gone, 1) << "replaced";
    EXPECT_TRUE(m_client->UnRegisterMessageCallback(kFirst));
    EXPECT_EQ(gone, 2) << "removed";
    m_client->RegisterMessageCallback(kFirst, callbackThatPostsAtItsEnd());
    EXPECT_TRUE(m_client->UnRegisterMessageCallbackAll());
    EXPECT_EQ(gone, 3) << "removed with all";
}

#if !defined(_WIN32)  // no limit there lets threads run out in only one process
TEST_F(DeliveryTest, WithoutADeliveryThreadARegistrationIsALogLineAndPostsStillGoOut) {
    IPCMessageClient other(kPage, true, false, kPipe);
    Inbox inbox;
    m_client->RegisterMessageCallback(kFirst, inbox.Callback());
    {
        const NoMoreThreads scarcity;
        other.RegisterMessageCallback(kFirst, inbox.Callback());
    }
    EXPECT_TRUE(Logged("no delivery thread for a client: "));
    EXPECT_FALSE(other.UnRegisterMessageCallbackAll());
    EXPECT_TRUE(Post(other, kPage, kFirst, "posted"));
    EXPECT_THAT(inbox.WaitForData(1), ElementsAre("posted"));
    other.RegisterMessageCallback(kSecond, inbox.Callback());
    PostToSelf(kSecond, "received");
    EXPECT_THAT(inbox.WaitForData(2), ElementsAre("posted", "received"));
}
#endif

TEST_F(DeliveryTest, ACallbackMayRemoveItself) {
    Inbox inbox;
    std::promise<bool> removed;
    m_client->RegisterMessageCallback(kFirst, [&, callback = inbox.Callback()](TagIPCMessageItem& item) {
        callback(item);
        removed.set_value(m_client->UnRegisterMessageCallback(kFirst));
    });
    m_client->RegisterMessageCallback(kSecond, inbox.Callback());
    PostToSelf(kFirst, "first");
    EXPECT_TRUE(removed.get_future().get());
    PostToSelf(kFirst, "dropped");
    PostToSelf(kSecond, "second");
    EXPECT_THAT(inbox.WaitForData(2), ElementsAre("first", "second"));
}

TEST_F(DeliveryTest, ACallbackMayRegisterPostAndReplace) {
    Inbox inbox;
    m_client->RegisterMessageCallback(kFirst, [&](TagIPCMessageItem&) {
        m_client->RegisterMessageCallback(kSecond, inbox.Callback());
        m_client->RegisterMessageCallback(kFirst, inbox.Callback());
        PostToSelf(kSecond, "second");
        PostToSelf(kFirst, "first again");
    });
    PostToSelf(kFirst, "first");
    EXPECT_THAT(inbox.WaitForData(2), ElementsAre("second", "first again"));
}

TEST_F(DeliveryTest, WhatACallbackThrowsIsLoggedAndDeliveryGoesOn) {
    Inbox inbox;
    m_client->RegisterMessageCallback(kFirst, [&, callback = inbox.Callback()](TagIPCMessageItem& item) {
        callback(item);
        if (item.dataLen == 1) throw std::runtime_error("the callback's reason");
        if (item.dataLen == 2) throw 42;
    });
    m_client->RegisterMessageCallback(kSecond, nullptr);
    PostToSelf(kFirst, "1");
    PostToSelf(kFirst, "22");
    PostToSelf(kSecond);
    PostToSelf(kFirst, "333");
    EXPECT_THAT(inbox.WaitForData(3), ElementsAre("1", "22", "333"));
    EXPECT_TRUE(Logged("the callback for message 0x1 to endpoint 0x270000 threw: the callback's reason"));
    EXPECT_TRUE(Logged("threw something that is no exception"));
    EXPECT_TRUE(Logged("the callback for message 0x2 to endpoint 0x270000 threw: bad_function_call"));
}

TEST_F(DeliveryTest, UnregistrationTellsWhetherThereWasACallback) {
    EXPECT_FALSE(m_client->UnRegisterMessageCallback(kFirst));
    EXPECT_FALSE(m_client->UnRegisterMessageCallbackAll());
    m_client->RegisterMessageCallback(kFirst, [](TagIPCMessageItem&) {});
    m_client->RegisterMessageCallback(kSecond, [](TagIPCMessageItem&) {});
    EXPECT_TRUE(m_client->UnRegisterMessageCallback(kFirst));
    EXPECT_FALSE(m_client->UnRegisterMessageCallback(kFirst));
    EXPECT_TRUE(m_client->UnRegisterMessageCallbackAll());
    EXPECT_FALSE(m_client->UnRegisterMessageCallbackAll());
}

TEST_F(DeliveryTest, RegistrationAndUnregistrationFromSeveralThreadsLeaveTheLastWord) {
    Inbox inbox;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int i = 0; i < 200; ++i) {
                m_client->RegisterMessageCallback(kFirst, [](TagIPCMessageItem&) {});
                PostToSelf(kFirst);
                m_client->UnRegisterMessageCallback(kFirst);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    m_client->RegisterMessageCallback(kSecond, inbox.Callback());
    m_client->RegisterMessageCallback(kFirst, [](TagIPCMessageItem&) {});
    PostToSelf(kSecond, "still delivered");
    EXPECT_THAT(inbox.WaitForData(1), ElementsAre("still delivered"));
}

}  // namespace
}  // namespace ipc_test
