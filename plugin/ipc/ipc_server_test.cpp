#include "ipc/ipc_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include "channel/messages.h"
#include "ipc/ipc_post.h"
#include "nothrow_failure.h"
#include "seam.h"
#include "vtable_slot.h"

namespace {

namespace to_page = channel::to_page;
using testing::ElementsAre;

struct Page {
    std::vector<PkgDownloadProcess> progress;
    std::vector<std::size_t> listSizes;

    void OnProgress(PkgDownloadProcess& record) { progress.push_back(record); }
    void OnList(std::vector<AccessoryVersionDataInfo>& list) { listSizes.push_back(list.size()); }
};

class IpcServer : public testing::Test {
protected:
    IpcServer() {
        seam::Get() = seam::Seam{};
        client.emplace(IPC_ENDPOINT_PLUGIN, true, false, IPC_PIPE_ASSISTANT);
    }
    ~IpcServer() override { client.reset(); }

    IPCServerProcBase* ProgressReceiver() {
        return new IPCServerProc<Page, PkgDownloadProcess&>(to_page::IPC_MSG_DOWNLOAD_PROCESS.id, &page,
                                                            &Page::OnProgress);
    }
    IPCServerProcBase* ListReceiver() {
        return new IPCServerProc<Page, std::vector<AccessoryVersionDataInfo>&>(to_page::IPC_MSG_ALL_UPDATE_DATA.id,
                                                                               &page, &Page::OnList);
    }
    static std::vector<int> Numbers(seam::Kind kind) {
        std::vector<int> numbers;
        for (const seam::Event& event : seam::Get().events) {
            if (event.kind == kind) numbers.push_back(event.number);
        }
        return numbers;
    }

    Page page;
    std::optional<IPCMessageClient> client;
};

TEST_F(IpcServer, ASecondReceiverForAnIdIsRefusedAndTheFirstStays) {
    IPCServer registry(&*client);
    EXPECT_EQ(registry.Register(ListReceiver()), 1);
    IPCServerProcBase* const second = ListReceiver();
    EXPECT_EQ(registry.Register(second), -1);
    delete second;
    EXPECT_TRUE(seam::Get().Deliver(to_page::IPC_MSG_ALL_UPDATE_DATA.id, ""));
    EXPECT_THAT(page.listSizes, ElementsAre(0u));
    EXPECT_THAT(Numbers(seam::Kind::kRegister), ElementsAre(to_page::IPC_MSG_ALL_UPDATE_DATA.id));
}

// A receiver that counts what happens to it.
class CountedReceiver final : public IPCServerProcBase {
public:
    struct Counts {
        int messages = 0;
        int deletions = 0;
    };

    CountedReceiver(std::int32_t messageId, Counts& counts) : IPCServerProcBase(messageId), m_counts(counts) {}
    ~CountedReceiver() override { ++m_counts.deletions; }
    void Process(IIPCDataIO&) override { ++m_counts.messages; }

private:
    Counts& m_counts;
};

TEST_F(IpcServer, ARefusedReceiverStaysItsCallersAndTheFirstGoesOnGettingTheMessages) {
    CountedReceiver::Counts first, second;
    auto* const refused = new CountedReceiver(7, second);
    {
        IPCServer registry(&*client);
        ASSERT_EQ(registry.Register(new CountedReceiver(7, first)), 1);
        ASSERT_EQ(registry.Register(refused), -1);
        EXPECT_TRUE(seam::Get().Deliver(7, "x"));
        EXPECT_EQ(first.messages, 1);
        EXPECT_EQ(second.messages, 0);
        EXPECT_EQ(second.deletions, 0);
        registry.UnregisterAll();
        EXPECT_EQ(first.deletions, 1);
    }
    EXPECT_EQ(first.deletions, 1);
    EXPECT_EQ(second.deletions, 0) << "the caller's to delete";
    delete refused;
}

TEST_F(IpcServer, ANullReceiverIsRefused) {
    IPCServer registry(&*client);
    EXPECT_EQ(registry.Register(nullptr), -1);
}

TEST_F(IpcServer, WithoutAClientEveryReceiverIsRefused) {
    IPCServer registry(nullptr);
    IPCServerProcBase* const proc = ListReceiver();
    EXPECT_EQ(registry.Register(proc), -1);
    delete proc;
    registry.UnregisterAll();
    EXPECT_THAT(Numbers(seam::Kind::kUnregister), ElementsAre());
}

TEST_F(IpcServer, UnregisterAllOfAnEmptyRegistryMakesNoCallToTheClient) {
    IPCServer registry(&*client);
    seam::Get().events.clear();
    registry.UnregisterAll();
    EXPECT_TRUE(seam::Get().events.empty());
}

TEST_F(IpcServer, UnregisterAllGoesThroughTheIdsInAscendingOrder) {
    IPCServer registry(&*client);
    registry.Register(ListReceiver());
    registry.Register(ProgressReceiver());
    registry.UnregisterAll();
    EXPECT_THAT(Numbers(seam::Kind::kUnregister),
                ElementsAre(to_page::IPC_MSG_DOWNLOAD_PROCESS.id, to_page::IPC_MSG_ALL_UPDATE_DATA.id));
    EXPECT_FALSE(seam::Get().Deliver(to_page::IPC_MSG_ALL_UPDATE_DATA.id, ""));
    EXPECT_EQ(registry.Register(ListReceiver()), 1) << "the id is free again";
}

TEST_F(IpcServer, AProgressMessageWithoutPayloadArrivesAsAnEmptyKeyAtZero) {
    IPCServer registry(&*client);
    registry.Register(ProgressReceiver());
    EXPECT_TRUE(seam::Get().Deliver(to_page::IPC_MSG_DOWNLOAD_PROCESS.id, ""));
    ASSERT_EQ(page.progress.size(), 1u);
    EXPECT_EQ(page.progress[0].deviceKey, "");
    EXPECT_EQ(page.progress[0].progress, 0);
}

TEST_F(IpcServer, TheHandlerIsCalledForAWrongMarkerAndForAShortPayloadToo) {
    using namespace std::string_literals;
    IPCServer registry(&*client);
    registry.Register(ProgressReceiver());
    seam::Get().Deliver(to_page::IPC_MSG_DOWNLOAD_PROCESS.id, "\x02\0\0\0\x02\0\0\0AB\x25\0\0\0"s);
    seam::Get().Deliver(to_page::IPC_MSG_DOWNLOAD_PROCESS.id, "\x01\0\0\0\x02\0\0\0AB\x25"s);
    ASSERT_EQ(page.progress.size(), 2u);
    EXPECT_EQ(page.progress[0].deviceKey, "");
    EXPECT_EQ(page.progress[1].deviceKey, "AB");
    EXPECT_EQ(page.progress[1].progress, 0);
}

TEST_F(IpcServer, ARegistryWithAClientOfItsOwnMakesOneAndReleasesIt) {
    seam::Get().events.clear();
    {
        IPCServer registry(IPC_ENDPOINT_PLUGIN, true);
        EXPECT_EQ(registry.Register(ListReceiver()), 1);
    }
    const seam::ClientArguments& made = seam::Get().clients.back();
    EXPECT_EQ(made.endpointId, IPC_ENDPOINT_PLUGIN);
    EXPECT_TRUE(made.receives);
    EXPECT_FALSE(made.exclusive);
    EXPECT_EQ(made.pipeName, L"\\\\.\\Pipe\\iKorvelAssistant");
    EXPECT_EQ(Numbers(seam::Kind::kClientDestroyed).size(), 1u);
}

TEST_F(IpcServer, ARegistryWithAClientOfItsOwnMakesANewOneAtEachRegistrationAndDropsTheEarlier) {
    const IPCMessageClient* dropped = nullptr;
    {
        IPCServer registry(IPC_ENDPOINT_PLUGIN, true);
        EXPECT_EQ(registry.Register(ListReceiver()), 1);
        dropped = static_cast<const IPCMessageClient*>(
            seam::Get().callbacks[to_page::IPC_MSG_ALL_UPDATE_DATA.id].back().client);
        seam::Get().events.clear();
        EXPECT_EQ(registry.Register(ProgressReceiver()), 1);
        EXPECT_EQ(Numbers(seam::Kind::kClientCreated).size(), 1u);
    }
    EXPECT_EQ(Numbers(seam::Kind::kClientDestroyed).size(), 1u) << "only the later one";
    EXPECT_TRUE(seam::Get().callbacks[to_page::IPC_MSG_DOWNLOAD_PROCESS.id].empty());
    EXPECT_EQ(seam::Get().callbacks[to_page::IPC_MSG_ALL_UPDATE_DATA.id].size(), 1u)
        << "nobody unregisters with the earlier one";
    delete dropped;
}

TEST_F(IpcServer, UnregisterAllMakesAClientOfItsOwnWhenThereIsNone) {
    seam::Get().events.clear();
    {
        IPCServer registry(IPC_ENDPOINT_PLUGIN, true);
        registry.UnregisterAll();
        EXPECT_EQ(Numbers(seam::Kind::kClientCreated).size(), 1u);
        registry.UnregisterAll();
        EXPECT_EQ(Numbers(seam::Kind::kClientCreated).size(), 1u) << "there is one";
    }
    EXPECT_EQ(Numbers(seam::Kind::kClientDestroyed).size(), 1u);
    EXPECT_THAT(Numbers(seam::Kind::kUnregister), ElementsAre());
}

TEST_F(IpcServer, ReceiversHaveTheirOperationsInTheOrderOfTheirSlots) {
    EXPECT_EQ(Slot(&IPCServerProcBase::Process), 2u) << "behind the destructor's two places";
}

TEST_F(IpcServer, ThePagesClientHasItsArguments) {
    const std::unique_ptr<IPCMessageClient> made(NewPageClient());
    ASSERT_NE(made, nullptr);
    const seam::ClientArguments& arguments = seam::Get().clients.back();
    EXPECT_EQ(arguments.endpointId, 0x270000);
    EXPECT_TRUE(arguments.receives);
    EXPECT_FALSE(arguments.exclusive);
    EXPECT_EQ(arguments.pipeName, L"\\\\.\\Pipe\\iKorvelAssistant");
}

TEST_F(IpcServer, AClientThatThrowsOrFindsNoMemoryIsNull) {
    {
        const NothrowFailure failure(1);
        EXPECT_EQ(NewPageClient(), nullptr);
        EXPECT_TRUE(failure.Happened());
    }
    seam::Get().clientThrows = true;
    EXPECT_EQ(NewPageClient(), nullptr);
    IPCServer registry(IPC_ENDPOINT_PLUGIN, true);
    registry.UnregisterAll();
    EXPECT_EQ(seam::Get().clients.size(), 1u) << "only the fixture's";
}

TEST_F(IpcServer, ARegistryWhoseOwnClientCannotBeMadeRefuses) {
    IPCServer registry(IPC_ENDPOINT_PLUGIN, true);
    IPCServerProcBase* const proc = ListReceiver();
    {
        const NothrowFailure failure(1);
        EXPECT_EQ(registry.Register(proc), -1);
        EXPECT_TRUE(failure.Happened());
    }
    EXPECT_EQ(seam::Get().clients.size(), 1u) << "only the fixture's";
    // The registry still names the refused receiver, which is this test's: it deletes it when it unregisters.
}

TEST_F(IpcServer, EveryPostHasTheFixedHeader) {
    Post(&*client, channel::from_page::IPC_MSG_DOWNLOAD_START, {"0123456789"});
    const seam::Event& post = seam::Get().events.back();
    EXPECT_EQ(post.item.text, "");
    EXPECT_EQ(post.item.destId, 0xB20001);
    EXPECT_EQ(post.item.sourceId, 0x270000);
    EXPECT_EQ(post.item.msgId, 0xB20022);
    EXPECT_EQ(post.item.headerWord1, 0);
    EXPECT_EQ(post.item.headerWord2, -1);
    EXPECT_EQ(post.item.headerWord3, 0);
    EXPECT_EQ(post.item.flag, 0);
    EXPECT_EQ(post.item.headerWord4, 0);
    EXPECT_EQ(post.item.dataLen, 11) << "the zero byte travels with a key of 10 characters";
}

TEST_F(IpcServer, AHeightOfMinusTwelveIsThreeCharactersWithoutAZero) {
    Post(&*client, channel::from_page::IPC_MSG_CONTENT_HEIGHT, channel::Decimal(-12));
    EXPECT_EQ(seam::Get().events.back().payload, "-12");
    EXPECT_EQ(seam::Get().events.back().item.dataLen, 3);
}

TEST_F(IpcServer, WithoutAClientNothingIsPosted) {
    seam::Get().events.clear();
    EXPECT_FALSE(Post(nullptr, channel::from_page::IPC_MSG_ALL_UPDATE_DATA, {}));
    EXPECT_FALSE(Post(nullptr, channel::from_page::IPC_MSG_DOWNLOAD_START, {"k"}));
    EXPECT_FALSE(Post(nullptr, channel::from_page::IPC_MSG_CONTENT_HEIGHT, channel::Decimal(3)));
    EXPECT_TRUE(seam::Get().events.empty());
}

}  // namespace
