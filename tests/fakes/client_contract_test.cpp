// What page code relies on in a client of the message pipe. Built twice: for the real client and for the fake one.
#include <gmock/gmock.h>

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "client_stage.h"

namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

constexpr int kPage = 0x270000, kOther = 0x270001;
constexpr int kFirst = 1, kSecond = 2;

class ClientContract : public testing::Test {
protected:
    // A callback that writes its name down; read only between two calls of Send.
    std::function<void(TagIPCMessageItem&)> Note(const std::string& name) {
        return [this, name](TagIPCMessageItem&) {
            const std::lock_guard lock(m_mutex);
            m_noted.push_back(name);
        };
    }

    std::vector<std::string> Sent(int endpointId, int msgId) {
        m_noted.clear();
        stage.Send(endpointId, msgId);
        return m_noted;
    }

    std::mutex m_mutex;
    std::vector<std::string> m_noted;
    ClientStage stage;  // last: its callbacks use what stands above
};

TEST_F(ClientContract, EveryClientOfTheEndpointGetsAMessage) {
    stage.Add(kPage).RegisterMessageCallback(kFirst, Note("one"));
    stage.Add(kPage).RegisterMessageCallback(kFirst, Note("two"));
    stage.Add(kPage).RegisterMessageCallback(kSecond, Note("another id"));
    stage.Add(kOther).RegisterMessageCallback(kFirst, Note("another endpoint"));
    EXPECT_THAT(Sent(kPage, kFirst), UnorderedElementsAre("one", "two"));
    EXPECT_THAT(Sent(kOther, kFirst), ElementsAre("another endpoint"));
}

TEST_F(ClientContract, ASecondCallbackOfAnIdOnOneClientReplacesTheFirst) {
    IPCMessageClient& client = stage.Add(kPage);
    client.RegisterMessageCallback(kFirst, Note("replaced"));
    client.RegisterMessageCallback(kFirst, Note("later"));
    EXPECT_THAT(Sent(kPage, kFirst), ElementsAre("later"));
    EXPECT_TRUE(client.UnRegisterMessageCallback(kFirst));
    EXPECT_FALSE(client.UnRegisterMessageCallback(kFirst)) << "the first one does not come back";
}

TEST_F(ClientContract, AClientThatDoesNotReceiveGetsNothing) {
    IPCMessageClient& silent = stage.Add(kPage, false);
    silent.RegisterMessageCallback(kFirst, Note("silent"));
    stage.Add(kPage).RegisterMessageCallback(kFirst, Note("page"));
    EXPECT_THAT(Sent(kPage, kFirst), ElementsAre("page"));
    EXPECT_FALSE(silent.UnRegisterMessageCallback(kFirst));
}

TEST_F(ClientContract, AnUnregisteredCallbackIsNotCalledAndTheOthersAre) {
    IPCMessageClient& client = stage.Add(kPage);
    client.RegisterMessageCallback(kFirst, Note("first"));
    client.RegisterMessageCallback(kSecond, Note("second"));
    stage.Add(kPage).RegisterMessageCallback(kFirst, Note("other"));
    EXPECT_TRUE(client.UnRegisterMessageCallback(kFirst));
    EXPECT_THAT(Sent(kPage, kFirst), ElementsAre("other"));
    EXPECT_THAT(Sent(kPage, kSecond), ElementsAre("second"));
    EXPECT_TRUE(client.UnRegisterMessageCallbackAll());
    EXPECT_FALSE(client.UnRegisterMessageCallbackAll());
    EXPECT_THAT(Sent(kPage, kFirst), ElementsAre("other"));
}

TEST_F(ClientContract, ADestroyedClientGetsNothing) {
    IPCMessageClient& client = stage.Add(kPage);
    client.RegisterMessageCallback(kFirst, Note("destroyed"));
    stage.Add(kPage).RegisterMessageCallback(kFirst, Note("other"));
    stage.Remove(client);
    EXPECT_THAT(Sent(kPage, kFirst), ElementsAre("other"));
}

TEST_F(ClientContract, ACallbackMayUnregisterItself) {
    IPCMessageClient& client = stage.Add(kPage);
    stage.Add(kPage).RegisterMessageCallback(kFirst, Note("other"));
    client.RegisterMessageCallback(kFirst, [&](TagIPCMessageItem& item) {
        EXPECT_TRUE(client.UnRegisterMessageCallback(item.msgId));
        Note("once")(item);
    });
    EXPECT_THAT(Sent(kPage, kFirst), UnorderedElementsAre("once", "other"));
    EXPECT_THAT(Sent(kPage, kFirst), ElementsAre("other"));
}

TEST_F(ClientContract, APayloadHasAZeroBehindItAndAnEmptyOneIsNull) {
    std::vector<std::string> payloads;
    bool wasNull = false;
    stage.Add(kPage).RegisterMessageCallback(kFirst, [&](TagIPCMessageItem& item) {
        wasNull = item.data == nullptr;
        EXPECT_EQ(item.destId, kPage);
        EXPECT_EQ(item.msgId, kFirst);
        if (wasNull) return;
        payloads.emplace_back(item.data, static_cast<std::size_t>(item.dataLen));
        EXPECT_EQ(item.data[item.dataLen], '\0');
    });
    stage.Send(kPage, kFirst, "abc");
    EXPECT_FALSE(wasNull);
    stage.Send(kPage, kFirst, "");
    EXPECT_TRUE(wasNull);
    EXPECT_THAT(payloads, ElementsAre("abc"));
}

TEST_F(ClientContract, ReceiversMayChangeTheirPayloadWithoutTheOthersSeeingIt) {
    std::vector<std::string> payloads;
    for (int i = 0; i < 2; ++i) {
        stage.Add(kPage).RegisterMessageCallback(kFirst, [&](TagIPCMessageItem& item) {
            const std::lock_guard lock(m_mutex);
            payloads.emplace_back(item.data);
            item.data[0] = 'X';
        });
    }
    stage.Send(kPage, kFirst, "abc");
    EXPECT_THAT(payloads, ElementsAre("abc", "abc"));
}

}  // namespace
