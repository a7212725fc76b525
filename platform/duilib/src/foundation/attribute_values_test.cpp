#include "foundation/attribute_values.h"

#include "foundation/geometry_math.h"
#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

TEST(AttributeValues, WholeNumbersAreReadWithBlanksAroundAndNothingElse) {
    const std::pair<const wchar_t*, std::optional<int>> table[] = {
        {L"0", 0},
        {L"12", 12},
        {L" -12 ", -12},
        {L"007", 7},
        {L"99999999999999999999", kMaxExtent},
        {L"-99999999999999999999", -kMaxExtent},
    };
    for (const auto& [text, expected] : table) EXPECT_EQ(ParseInt(text), expected) << ::testing::PrintToString(text);
    for (const wchar_t* text : {L"", L"-", L"+1", L"1.5", L"12px", L"1 2", L"0x10"}) {
        EXPECT_FALSE(ParseInt(text)) << ::testing::PrintToString(text);
    }
}

TEST(AttributeValues, RectanglesHaveExactlyFourNumbers) {
    EXPECT_EQ(ParseRect(L"16,0,-16, 8"), (CDuiRect{16, 0, -16, 8}));
    for (const wchar_t* text : {L"", L"1", L"1,2,3", L"1,2,3,", L"1,2,3,4,5", L"1,,3,4", L"a,2,3,4", L"1,2,3,4,"}) {
        EXPECT_FALSE(ParseRect(text)) << ::testing::PrintToString(text);
    }
}

TEST(AttributeValues, SizesHaveExactlyTwoNumbers) {
    EXPECT_EQ(ParseSize(L"28,30"), (CDuiSize{28, 30}));
    for (const wchar_t* text : {L"", L"28", L"28,", L"1,2,3"}) EXPECT_FALSE(ParseSize(text));
}

TEST(AttributeValues, ColorsHaveEightHexDigitsWithOrWithoutTheSign) {
    const std::pair<const wchar_t*, std::optional<CDuiColor>> table[] = {
        {L"#FF0A59F7", 0xFF0A59F7},
        {L"0c000000", 0x0C000000},
        {L"00FFFFFF", 0x00FFFFFF},
    };
    for (const auto& [text, expected] : table) EXPECT_EQ(ParseColor(text), expected) << ::testing::PrintToString(text);
    for (const wchar_t* text : {L"#0F00000", L"#0F0000000", L"", L"#", L"GG000000", L"##F000000"}) {
        EXPECT_FALSE(ParseColor(text)) << ::testing::PrintToString(text);
    }
}

TEST(AttributeValues, OnlyTheTwoWordsAreTruthValues) {
    EXPECT_EQ(ParseBool(L"true"), true);
    EXPECT_EQ(ParseBool(L"false"), false);
    for (const wchar_t* text : {L"", L"1", L"True", L" true"}) EXPECT_FALSE(ParseBool(text));
}

}  // namespace DuiLib
