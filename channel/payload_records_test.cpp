#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "channel/payload.h"

namespace {

using namespace std::literals;

template <class Record>
struct Decoded {
    Record record{};
    std::uint32_t cursor = 0;
};

template <class Record>
Decoded<Record> Decode(const std::string& payload) {
    channel::ByteReader reader(payload);
    Decoded<Record> decoded;
    ReadRecord(reader, decoded.record);
    decoded.cursor = reader.Position();
    return decoded;
}

template <class Record>
std::string Encode(const Record& record) {
    return std::string(channel::Encode(record)->View());
}

const std::string kProgressExample = "\x01\0\0\0\x02\0\0\0AB\x25\0\0\0"s;

using List = std::vector<AccessoryVersionDataInfo>;

List TwoRecords() {
    AccessoryVersionDataInfo dock;
    dock.deviceKey = "K1";
    dock.modelId = L"M\u00e9";
    dock.imagePath = L"p.svg";
    dock.version = L"2.0";
    dock.descLines = {L"one", L""};
    dock.reserved = 0x1122334455667788u;
    dock.isDriver = true;
    AccessoryVersionDataInfo pen;
    pen.deviceKey = "k";
    return {dock, pen};
}

const std::string kTwoRecords =
    "\x01\0\0\0\x02\0\0\0"
    "\x02\0\0\0K1"
    "\x02\0\0\0M\0\xE9\0"
    "\x05\0\0\0p\0.\0s\0v\0g\0"
    "\x03\0\0\0"
    "2\0.\0"
    "0\0"
    "\x02\0\0\0\x03\0\0\0o\0n\0e\0\0\0\0\0"
    "\x88\x77\x66\x55\x44\x33\x22\x11"
    "\x01"
    "\x01\0\0\0k\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"s;

bool Same(const AccessoryVersionDataInfo& a, const AccessoryVersionDataInfo& b) {
    return a.deviceKey == b.deviceKey && a.modelId == b.modelId && a.imagePath == b.imagePath &&
           a.version == b.version && a.descLines == b.descLines && a.reserved == b.reserved && a.isDriver == b.isDriver;
}

TEST(RecordCodec, TheProgressExampleOf14BytesIsTwoLettersAt37Percent) {
    ASSERT_EQ(kProgressExample.size(), 4u + 4 + 2 + 4);
    const auto decoded = Decode<PkgDownloadProcess>(kProgressExample);
    EXPECT_EQ(decoded.record.deviceKey, "AB");
    EXPECT_EQ(decoded.record.progress, 37);
    EXPECT_EQ(decoded.cursor, 14u);
}

TEST(RecordCodec, TheProgressExampleWithMarkerTwoIsADefaultRecord) {
    std::string payload = kProgressExample;
    payload[0] = 2;
    const auto decoded = Decode<PkgDownloadProcess>(payload);
    EXPECT_EQ(decoded.record.deviceKey, "");
    EXPECT_EQ(decoded.record.progress, 0);
    EXPECT_EQ(decoded.cursor, 4u);
}

TEST(RecordCodec, AListOfNoneAndAMarkerAloneAreEmptyLists) {
    EXPECT_TRUE(Decode<List>("\x01\0\0\0\0\0\0\0"s).record.empty());
    EXPECT_TRUE(Decode<List>("\x01\0\0\0"s).record.empty());
}

TEST(RecordCodec, AnEmptyPayloadIsAnEmptyKeyOrAnEmptyList) {
    EXPECT_EQ(Decode<PkgDownloadProcess>("").record.deviceKey, "");
    EXPECT_EQ(Decode<PkgDownloadProcess>("").record.progress, 0);
    EXPECT_TRUE(Decode<List>("").record.empty());
}

TEST(RecordCodec, AWrongMarkerLeavesTheDestinationUntouched) {
    const std::string payload = "\x07\0\0\0\x01\0\0\0"s;
    channel::ByteReader reader(payload);
    List list = TwoRecords();
    ReadRecord(reader, list);
    EXPECT_EQ(list.size(), 2u);
}

// What is read replaces what was there; what cannot be read leaves it, but for texts and counts, which become empty.
TEST(RecordCodec, RecordsThatAreNotEmptyAreOverwritten) {
    List list = TwoRecords();
    channel::ByteReader two(kTwoRecords);
    ReadRecord(two, list);
    ASSERT_EQ(list.size(), 2u) << "replaced, not added";
    EXPECT_TRUE(Same(list[0], TwoRecords()[0]));
    EXPECT_TRUE(Same(list[1], TwoRecords()[1]));

    AccessoryVersionDataInfo record = TwoRecords()[0];
    channel::ByteReader second(std::string_view(kTwoRecords).substr(kTwoRecords.size() - 30));
    ReadRecord(second, record);
    EXPECT_TRUE(Same(record, TwoRecords()[1]));

    PkgDownloadProcess progress{"a longer key", 99};
    channel::ByteReader example(kProgressExample);
    ReadRecord(example, progress);
    EXPECT_EQ(progress.deviceKey, "AB");
    EXPECT_EQ(progress.progress, 37);
}

TEST(RecordCodec, NothingReadIntoRecordsThatAreNotEmptyEmptiesTextsAndKeepsNumbers) {
    AccessoryVersionDataInfo record = TwoRecords()[0];
    channel::ByteReader nothing("");
    ReadRecord(nothing, record);
    AccessoryVersionDataInfo expected;
    expected.reserved = TwoRecords()[0].reserved;
    expected.isDriver = true;
    EXPECT_TRUE(Same(record, expected));

    List list = TwoRecords();
    ReadRecord(nothing, list);
    EXPECT_TRUE(list.empty());
    list = TwoRecords();
    channel::ByteReader countOfOne("\x01\0\0\0\x01\0\0\0"sv);
    ReadRecord(countOfOne, list);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_TRUE(Same(list[0], AccessoryVersionDataInfo{})) << "a list's records are new ones";

    PkgDownloadProcess progress{"AB", 37};
    ReadRecord(nothing, progress);
    EXPECT_EQ(progress.deviceKey, "");
    EXPECT_EQ(progress.progress, 37);
}

TEST(RecordCodec, ATextOfFiveWithThreeBytesLeftIsFiveZerosAndTheCursorStaysBehindTheLength) {
    const std::string payload = "\x05\0\0\0xyz"s;
    channel::ByteReader reader(payload);
    std::string text;
    ReadString(reader, text);
    EXPECT_EQ(text, std::string(5, '\0'));
    EXPECT_EQ(reader.Position(), 4u);
    std::uint32_t word = 9;
    EXPECT_EQ(reader.ReadUInt32(&word), 0u);
    std::uint8_t byte = 0;
    EXPECT_EQ(reader.ReadUInt8(&byte), 1u);
    EXPECT_EQ(byte, 'x');
}

std::wstring DecodeWide(const std::string& payload) {
    channel::ByteReader reader(payload);
    std::wstring text;
    ReadWString(reader, text);
    return text;
}

TEST(RecordCodec, AWideTextOfTwoUnitsIsReadFromEightBytes) {
    EXPECT_EQ(DecodeWide("\x02\0\0\0\xE9\0A\0"s), L"\u00e9A");
}

TEST(RecordCodec, AWideTextThatIsNotThereIsZerosOfTheAnnouncedLength) {
    EXPECT_EQ(DecodeWide("\x03\0\0\0A\0"s), std::wstring(3, L'\0'));
}

TEST(RecordCodec, SurrogatePairsAreJoinedWhereWideCharactersAreWideEnough) {
    if constexpr (sizeof(wchar_t) == 4) {
        EXPECT_EQ(DecodeWide("\x04\0\0\0a\0\x3D\xD8\x00\xDE"
                             "b\0"s),
                  L"a\U0001F600b");
        EXPECT_EQ(DecodeWide("\x03\0\0\0\x00\xDE\x3D\xD8z\0"s), (std::wstring{0xDE00, 0xD83D, L'z'}))
            << "unpaired ones stay as they are";
    }
}

// The first and the last surrogate of either half, and their neighbours.
TEST(RecordCodec, OnlyAHighSurrogateBeforeALowOneIsAPair) {
    const struct {
        std::u16string units;
        std::wstring text;
    } cases[] = {
        {{0xD800, 0xDC00}, L"\U00010000"},
        {{0xD800, 0xDFFF}, L"\U000103FF"},
        {{0xDBFF, 0xDC00}, L"\U0010FC00"},
        {{0xDBFF, 0xDFFF}, L"\U0010FFFF"},
        {{0xD7FF, 0xDC00}, {0xD7FF, 0xDC00}},
        {{0xDC00, 0xDC00}, {0xDC00, 0xDC00}},
        {{0xD800, 0xDBFF}, {0xD800, 0xDBFF}},
        {{0xD800, 0xE000}, {0xD800, 0xE000}},
        {{0xD800, 0xD800, 0xDC00}, std::wstring(1, 0xD800) + L"\U00010000"},
        {{u'a', 0xD800}, {L'a', 0xD800}},
    };
    for (const auto& c : cases) {
        const auto length = static_cast<std::uint32_t>(c.units.size());
        std::string payload(reinterpret_cast<const char*>(&length), 4);
        payload.append(reinterpret_cast<const char*>(c.units.data()), 2 * c.units.size());
        EXPECT_EQ(DecodeWide(payload), c.text) << testing::PrintToString(c.text);
        std::string written(payload.size(), '\0');
        channel::ByteWriter writer(written.data());
        WriteWString(writer, c.text);
        EXPECT_EQ(written, payload) << testing::PrintToString(c.text);
    }
}

TEST(RecordCodec, TextsLongerThanABlockKeepEveryUnit) {
    for (const std::size_t length : {63u, 64u, 65u, 127u, 1000u}) {
        std::wstring text;
        for (std::size_t i = 0; i < length; ++i) text += static_cast<wchar_t>(0x100 + i % 0x5000);
        std::string bytes(4 + 2 * length, '\0');
        channel::ByteWriter writer(bytes.data());
        WriteWString(writer, text);
        EXPECT_EQ(DecodeWide(bytes), text) << length;
    }
}

TEST(RecordCodec, EncodesTheGoldenBytes) {
    EXPECT_EQ(Encode(PkgDownloadProcess{"AB", 37}), kProgressExample);
    EXPECT_EQ(Encode(TwoRecords()), kTwoRecords);
}

TEST(RecordCodec, DecodesTheGoldenBytes) {
    const auto decoded = Decode<List>(kTwoRecords);
    const List expected = TwoRecords();
    ASSERT_EQ(decoded.record.size(), 2u);
    EXPECT_TRUE(Same(decoded.record[0], expected[0]));
    EXPECT_TRUE(Same(decoded.record[1], expected[1]));
    EXPECT_EQ(decoded.cursor, kTwoRecords.size());
}

// What is behind a cut is read as the next field: texts whose second characters are zeros, and the number, read as
// counts that are small.
List RecordsThatReadAsSmallCounts() {
    List list = TwoRecords();
    list[0].imagePath = L"p\0.\0s"s;
    list[0].version = L"2\0."s;
    list[0].descLines = {L"o\0n"s, L""s};
    list[0].reserved = 0x1100000000000322u;
    return list;
}

TEST(RecordCodec, EveryMessageCutAtEveryLengthDecodesWithoutFailing) {
    const std::string payload = Encode(RecordsThatReadAsSmallCounts());
    std::size_t mostLines = 0;
    for (std::size_t length = 0; length <= payload.size(); ++length) {
        const auto decoded = Decode<List>(payload.substr(0, length));
        EXPECT_LE(decoded.cursor, length);
        for (const auto& record : decoded.record) mostLines = std::max(mostLines, record.descLines.size());
        EXPECT_LE(Decode<PkgDownloadProcess>(payload.substr(0, length)).cursor, length);
    }
    EXPECT_EQ(mostLines, std::size_t{'2'}) << "the version, cut short, is read as a count";
    for (std::size_t length = 0; length <= kProgressExample.size(); ++length) {
        const auto decoded = Decode<PkgDownloadProcess>(kProgressExample.substr(0, length));
        EXPECT_EQ(decoded.record.progress, length == 14 ? 37 : 0) << length;
    }
}

TEST(RecordCodec, AnAbsurdCountThrowsAndIsNotCaughtHere) {
    EXPECT_ANY_THROW(Decode<List>("\x01\0\0\0\xFF\xFF\xFF\xFF"s));
}

TEST(RecordCodec, DefaultRecordsAreEmpty) {
    const AccessoryVersionDataInfo record;
    EXPECT_TRUE(record.deviceKey.empty() && record.descLines.empty());
    EXPECT_EQ(record.reserved, 0u);
    EXPECT_FALSE(record.isDriver);
    EXPECT_EQ(PkgDownloadProcess{}.progress, 0);
}

TEST(RecordCodec, NegativeAndLargePercentagesGoThrough) {
    for (const int percent : {-5, 0, 250, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        EXPECT_EQ(Decode<PkgDownloadProcess>(Encode(PkgDownloadProcess{"k", percent})).record.progress, percent);
    }
}

}  // namespace
