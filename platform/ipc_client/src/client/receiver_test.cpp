#include "client/receiver.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "kernel/ui_turn.h"
#include "wait_until.h"

namespace ipc_client {
namespace {

TEST(Receiver, IsFullBeyondSixtyFourMebibytesUntilHalfAreDelivered) {
    constexpr std::size_t kMebibyte = 1024 * 1024;
    std::atomic<int> delivered{0}, deliveredAtRoom{0};
    Receiver receiver(1, [&](Receiver&) { deliveredAtRoom = delivered.load(); });
    receiver.Set(2, [&](TagIPCMessageItem&) { ++delivered; });
    const std::string data(15 * kMebibyte, 'x');
    MessageView message;
    message.destId = 1;
    message.msgId = 2;
    message.data = data;
    {
        const kernel::UiTurn turn;  // no callback is called meanwhile
        for (int i = 0; i < 4; ++i) EXPECT_TRUE(receiver.Deliver(message)) << i;
        EXPECT_FALSE(receiver.Deliver(message));
    }
    EXPECT_TRUE(test_support::WaitUntil([&] { return delivered == 5 && deliveredAtRoom != 0; }));
    EXPECT_EQ(deliveredAtRoom, 3) << "30 of 75 mebibytes are left";
}

}  // namespace
}  // namespace ipc_client
