#include "channel/payload.h"

#include <gtest/gtest.h>

#if !defined(_MSC_VER)
#include "nothrow_failure.h"
#endif

namespace channel {
namespace {

using namespace std::string_literals;

TEST(Payload, ADeviceKeyTravelsWithItsTerminatingZero) {
    EXPECT_EQ(Encode(DeviceKey{"AB"})->View(), "AB\0"s);
    EXPECT_EQ(Encode(DeviceKey{})->View(), "\0"s);
    EXPECT_EQ(BytesOf(DeviceKey{"AB"}), "AB\0"s);
}

TEST(Payload, ADeviceKeyEndsAtItsFirstZeroOrWithThePayload) {
    const struct {
        std::string bytes, key;
    } cases[] = {{"AB\0"s, "AB"}, {"AB\0rest"s, "AB"}, {"AB", "AB"}, {"\0"s, ""}, {"", ""}};
    for (const auto& c : cases) EXPECT_EQ(Decode<DeviceKey>(c.bytes).key, c.key);
}

TEST(Payload, ANumberTravelsAsItsDigitsWithoutAZero) {
    EXPECT_EQ(Encode(Decimal(184))->View(), "184");
    EXPECT_EQ(Encode(Decimal(-12))->View(), "-12");
    EXPECT_EQ(Encode(Decimal(0))->View(), "0");
}

TEST(Payload, OnlyDigitsWithASignAreANumber) {
    const struct {
        std::string bytes;
        std::optional<int> number;
    } cases[] = {{"184", 184},       {"-12", -12},          {"2147483647", 2147483647}, {"2147483648", std::nullopt},
                 {"", std::nullopt}, {"12x", std::nullopt}, {" 12", std::nullopt},      {"12\0"s, std::nullopt}};
    for (const auto& c : cases) {
        EXPECT_EQ(Decode<Decimal>(c.bytes).digits, c.bytes);
        EXPECT_EQ(Decode<Decimal>(c.bytes).Number(), c.number) << c.bytes;
    }
}

TEST(Payload, NothingHasNoBytes) {
    const auto bytes = Encode(NoPayload{});
    ASSERT_TRUE(bytes);
    EXPECT_EQ(bytes->Data(), nullptr);
    EXPECT_EQ(bytes->Size(), 0);
}

TEST(Payload, RecordsTakeExactlyTheBytesThatTheyNeed) {
    const auto bytes = Encode(Progress{"AB", 37});
    ASSERT_TRUE(bytes);
    EXPECT_EQ(bytes->View(), "\1\0\0\0\2\0\0\0AB\x25\0\0\0"s);
    const auto progress = Decode<Progress>(bytes->View());
    EXPECT_EQ(progress.deviceKey, "AB");
    EXPECT_EQ(progress.progress, 37);
    AccessoryList list(2);
    list[1].version = L"1.2";
    const auto decoded = Decode<AccessoryList>(Encode(list)->View());
    ASSERT_EQ(decoded.size(), 2u);
    EXPECT_EQ(decoded[1].version, L"1.2");
}

#if !defined(_MSC_VER)
TEST(Payload, HasNoBytesWhenMemoryIsExhausted) {
    const NothrowFailure failure(1);
    EXPECT_FALSE(Encode(DeviceKey{"AB"}));
    EXPECT_TRUE(failure.Happened());
}
#endif

TEST(ByteReader, WritesNothing) {
    ByteReader reader("abcd");
    EXPECT_EQ(reader.Write("x", 1) + reader.WriteUInt32(1) + reader.WriteUInt8(1) + reader.Reserve(1), 0u);
    EXPECT_EQ(reader.Position(), 0u);
}

TEST(ByteWriter, ReadsNothingAndOnlyCountsWithoutMemory) {
    ByteWriter writer(nullptr);
    char byte = 'x';
    EXPECT_EQ(writer.WriteUInt32(1), 4u);
    EXPECT_EQ(writer.Read(&byte, 1), 0u);
    EXPECT_EQ(byte, 'x');
    EXPECT_EQ(writer.Position(), 4u);
}

}  // namespace
}  // namespace channel
