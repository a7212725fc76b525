#include "ipc/ipc_data_io.h"

#include <gtest/gtest.h>

#include <string>

#include "nothrow_failure.h"
#include "vtable_slot.h"

namespace {

TagIPCMessageItem Received(std::string& payload) {
    TagIPCMessageItem item;
    item.dataLen = static_cast<std::int32_t>(payload.size());
    item.data = payload.data();
    return item;
}

// A message that came, and what reads it.
struct ReceivedPayload {
    explicit ReceivedPayload(std::string bytes) : payload(std::move(bytes)) {}

    std::string payload;
    TagIPCMessageItem item = Received(payload);
    IPCDataIO reader{&item, 64, true, false};
};

TEST(IPCDataIO, HasItsOperationsInTheOrderOfTheirSlots) {
    EXPECT_EQ(Slot(&IIPCDataIO::Reserve), 0u);
    EXPECT_EQ(Slot(&IIPCDataIO::WriteUInt32), 1u);
    EXPECT_EQ(Slot(&IIPCDataIO::WriteUInt8), 2u);
    EXPECT_EQ(Slot(&IIPCDataIO::Write), 3u);
    EXPECT_EQ(Slot(&IIPCDataIO::ReadUInt32), 4u);
    EXPECT_EQ(Slot(&IIPCDataIO::ReadUInt8), 5u);
    EXPECT_EQ(Slot(&IIPCDataIO::Read), 6u);
}

TEST(IPCDataIO, ReadOfNothingCopiesNothingAndReturnsZero) {
    ReceivedPayload received("abcd");
    IPCDataIO& reader = received.reader;
    char destination = 'x';
    EXPECT_EQ(reader.Read(&destination, 0), 0u);
    EXPECT_EQ(destination, 'x');
    EXPECT_EQ(reader.Position(), 0u);
}

TEST(IPCDataIO, ReadIntoANullDestinationReturnsZeroAndDoesNotMove) {
    ReceivedPayload received("abcd");
    IPCDataIO& reader = received.reader;
    EXPECT_EQ(reader.Read(nullptr, 2), 0u);
    EXPECT_EQ(reader.Position(), 0u);
}

TEST(IPCDataIO, AShortReadCopiesNothingAndALaterShorterOneSucceeds) {
    ReceivedPayload received("abc");
    IPCDataIO& reader = received.reader;
    std::uint32_t word = 7;
    std::uint8_t byte = 0;
    EXPECT_EQ(reader.ReadUInt32(&word), 0u);
    EXPECT_EQ(word, 7u);
    EXPECT_EQ(reader.ReadUInt8(&byte), 1u);
    EXPECT_EQ(byte, 'a');
    EXPECT_EQ(reader.Position(), 1u);
}

TEST(IPCDataIO, ASumPast31BitsIsLargerThanAnyPayload) {
    ReceivedPayload received("abcdefgh");
    IPCDataIO& reader = received.reader;
    char byte = 0;
    ASSERT_EQ(reader.Read(&byte, 1), 1u);
    for (const std::uint32_t n : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        EXPECT_EQ(reader.Read(&byte, n), 0u) << n;
        EXPECT_EQ(reader.Position(), 1u) << n;
    }
}

TEST(IPCDataIO, ANegativeLengthHoldsNothing) {
    ReceivedPayload received("abcd");
    received.item.dataLen = -1;
    IPCDataIO& reader = received.reader;
    char byte = 'x';
    EXPECT_EQ(reader.Read(&byte, 1), 0u);
    EXPECT_EQ(byte, 'x');
}

TEST(IPCDataIO, WithoutAnItemEveryOperationReturnsZero) {
    IPCDataIO io(nullptr, 64, false, true);
    std::uint32_t word = 0;
    std::uint8_t byte = 0;
    EXPECT_EQ(io.Reserve(4), 0u);
    EXPECT_EQ(io.WriteUInt32(1), 0u);
    EXPECT_EQ(io.WriteUInt8(1), 0u);
    EXPECT_EQ(io.Write("a", 1), 0u);
    EXPECT_EQ(io.ReadUInt32(&word), 0u);
    EXPECT_EQ(io.ReadUInt8(&byte), 0u);
    EXPECT_EQ(io.Read(&byte, 1), 0u);
}

TEST(IPCDataIO, ReserveGrowsInBlocksAndKeepsWhatWasWritten) {
    TagIPCMessageItem item;
    IPCDataIO writer(&item, 64, false, false);
    EXPECT_EQ(writer.Reserve(10), 10u);
    EXPECT_EQ(item.dataLen, 64);
    EXPECT_EQ(writer.Write("0123456789", 10), 10u);
    EXPECT_EQ(writer.Reserve(60), 60u);
    EXPECT_EQ(item.dataLen, 128);
    EXPECT_EQ(std::string(item.data, 10), "0123456789");
    EXPECT_EQ(writer.Position(), 10u);
}

TEST(IPCDataIO, ReserveAllocatesTheCapacityThatItAnnounces) {
    const struct {
        std::uint32_t blockSize, n;
        std::int32_t capacity;
    } cases[] = {{64, 1, 64}, {64, 64, 64}, {64, 65, 128}, {1, 5, 5}, {1000, 2001, 3000}};
    for (const auto& c : cases) {
        TagIPCMessageItem item;
        IPCDataIO writer(&item, c.blockSize, false, false);
        EXPECT_EQ(writer.Reserve(c.n), c.n);
        EXPECT_EQ(item.dataLen, c.capacity);
        EXPECT_EQ(NothrowFailure::LastArraySize(), static_cast<std::size_t>(c.capacity));
    }
}

TEST(IPCDataIO, ReserveOfNothingSucceedsWithoutABuffer) {
    TagIPCMessageItem item;
    IPCDataIO writer(&item, 64, false, false);
    EXPECT_EQ(writer.Reserve(0), 0u);
    EXPECT_EQ(item.data, nullptr);
}

TEST(IPCDataIO, ReserveRefusesWhatHasNo31BitCapacity) {
    struct Case {
        std::uint32_t blockSize;
        std::uint32_t n;
    };
    for (const Case& c : {Case{64, 0x7FFFFFC1}, Case{64, 0x80000000}, Case{64, 0xFFFFFFFF}, Case{0, 1},
                          Case{0x80000000, 1}, Case{0xFFFFFFFF, 1}}) {
        TagIPCMessageItem item;
        IPCDataIO writer(&item, c.blockSize, false, false);
        EXPECT_EQ(writer.Reserve(c.n), 0u) << c.blockSize << " " << c.n;
        EXPECT_EQ(item.data, nullptr);
        EXPECT_EQ(item.dataLen, 0);
    }
}

TEST(IPCDataIO, ReserveReturnsZeroWhenMemoryIsExhausted) {
    TagIPCMessageItem item;
    IPCDataIO writer(&item, 64, false, false);
    const NothrowFailure failure(1);
    EXPECT_EQ(writer.Reserve(10), 0u);
    EXPECT_TRUE(failure.Happened());
    EXPECT_EQ(item.data, nullptr);
}

TEST(IPCDataIO, ReserveReportsSuccessAndDoesNotGrowWhenTheOldContentCannotBeCopied) {
    for (const std::int32_t shortened : {9, 0, -1}) {
        TagIPCMessageItem item;
        IPCDataIO writer(&item, 64, false, false);
        ASSERT_EQ(writer.Write("0123456789", 10), 10u);
        const char* const buffer = item.data;
        item.dataLen = shortened;  // fewer bytes than were written
        EXPECT_EQ(writer.Reserve(60), 60u) << shortened;
        EXPECT_EQ(item.data, buffer);
        EXPECT_EQ(item.dataLen, shortened);
        EXPECT_EQ(writer.Write("abc", 3), 3u);
        EXPECT_EQ(writer.Position(), 10u) << "there was no room";
    }
}

TEST(IPCDataIO, WriteWithoutRoomReturnsItsLengthAndDoesNotMove) {
    TagIPCMessageItem item;
    IPCDataIO writer(&item, 64, false, false);
    const NothrowFailure failure(1);
    EXPECT_EQ(writer.Write("abc", 3), 3u);
    EXPECT_EQ(writer.Position(), 0u);
}

TEST(IPCDataIO, WriteFromANullSourceReturnsZero) {
    TagIPCMessageItem item;
    IPCDataIO writer(&item, 64, false, false);
    EXPECT_EQ(writer.Write(nullptr, 3), 0u);
    EXPECT_EQ(item.data, nullptr);
}

TEST(IPCDataIO, NumbersAreWrittenLittleEndian) {
    TagIPCMessageItem item;
    IPCDataIO writer(&item, 64, false, false);
    EXPECT_EQ(writer.WriteUInt32(0x04030201), 4u);
    EXPECT_EQ(writer.WriteUInt8(5), 1u);
    EXPECT_EQ(std::string(item.data, 5), "\x01\x02\x03\x04\x05");
}

TEST(IPCDataIO, TheReaderOfAReceivedMessageReleasesNothing) {
    std::string payload = "abcd";
    TagIPCMessageItem item = Received(payload);
    { const IPCDataIO reader(&item, 64, true, false); }
    EXPECT_EQ(item.data, payload.data());
    EXPECT_EQ(item.dataLen, 4);
}

TEST(IPCDataIO, TheWriterReleasesItsBufferAndLeavesTheItem) {
    TagIPCMessageItem item;
    { IPCDataIO(&item, 64, false, false).WriteUInt32(1); }
    EXPECT_EQ(item.data, nullptr);
    EXPECT_EQ(item.dataLen, 0);
}

TEST(IPCDataIO, AnOwnedItemGoesWithItsBuffer) {
    auto* const item = new TagIPCMessageItem;  // a leak checker tells when it stays
    IPCDataIO writer(item, 64, false, true);
    EXPECT_EQ(writer.WriteUInt32(1), 4u);
}

TEST(IPCDataIO, AnOwnedItemWithoutABufferIsNotDeleted) {
    auto* const item = new TagIPCMessageItem;
    { const IPCDataIO writer(item, 64, false, true); }
    item->msgId = 5;
    EXPECT_EQ(item->msgId, 5);
    delete item;
}

TEST(IPCDataIO, AnAttachedOwnedItemIsReleasedToo) {
    auto* const item = new TagIPCMessageItem;
    item->data = new char[4]();
    item->dataLen = 4;
    const IPCDataIO reader(item, 64, true, true);
    EXPECT_EQ(reader.Position(), 0u);
}

}  // namespace
