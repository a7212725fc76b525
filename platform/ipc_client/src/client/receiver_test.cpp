#include "client/receiver.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "kernel/ui_turn.h"
#include "wait_until.h"

namespace ipc_client {
namespace {

class Listener final : public Receiver::Listener {
public:
    explicit Listener(const std::atomic<int>& delivered) : m_delivered(delivered) {}

    void HasRoom(Receiver&) override { deliveredAtRoom = m_delivered.load(); }
    void Handled(std::uint64_t) noexcept override { ++handled; }

    std::atomic<int> deliveredAtRoom{0};
    std::atomic<int> handled{0};

private:
    const std::atomic<int>& m_delivered;
};

TEST(Receiver, IsFullBeyondSixtyFourMebibytesUntilHalfAreDelivered) {
    constexpr std::size_t kMebibyte = 1024 * 1024;
    std::atomic<int> delivered{0};
    Listener listener(delivered);
    Receiver receiver(1, listener);
    receiver.Set(2, [&](TagIPCMessageItem&) { ++delivered; });
    const std::string data(15 * kMebibyte, 'x');
    MessageView message;
    message.destId = 1;
    message.msgId = 2;
    message.data = data;
    {
        const kernel::UiTurn turn;  // no callback is called meanwhile
        for (int i = 0; i < 4; ++i) EXPECT_TRUE(receiver.Deliver(Receiver::Copy(message, {}, 0))) << i;
        EXPECT_FALSE(receiver.Deliver(Receiver::Copy(message, {}, 0)));
    }
    EXPECT_TRUE(test_support::WaitUntil([&] { return delivered == 5 && listener.deliveredAtRoom != 0; }));
    EXPECT_EQ(listener.deliveredAtRoom, 3) << "30 of 75 mebibytes are left";
}

TEST(Receiver, EveryMessageIsHandledOnceItsCallbackReturnedOrThereIsNone) {
    std::atomic<int> delivered{0};
    Listener listener(delivered);
    MessageView message;
    message.destId = 1;
    message.msgId = 2;
    {
        Receiver receiver(1, listener);
        receiver.Set(2, [&](TagIPCMessageItem&) {
            EXPECT_EQ(listener.handled, delivered);
            EXPECT_EQ(CurrentIpcSender().process, 7u);
            ++delivered;
        });
        for (int i = 0; i < 3; ++i) receiver.Deliver(Receiver::Copy(message, {{}, 7, 8}, 0));
        message.msgId = 3;
        receiver.Deliver(Receiver::Copy(message, {}, 0));
        EXPECT_TRUE(test_support::WaitUntil([&] { return listener.handled == 4; }));
        EXPECT_EQ(CurrentIpcSender().process, 0u);
        const kernel::UiTurn turn;
        receiver.Deliver(Receiver::Copy(message, {}, 0));
        receiver.Deliver(Receiver::Copy(message, {}, 0));
    }
    EXPECT_EQ(delivered, 3);
    EXPECT_EQ(listener.handled, 6) << "what waits when a receiver goes counts as handled";
}

}  // namespace
}  // namespace ipc_client
