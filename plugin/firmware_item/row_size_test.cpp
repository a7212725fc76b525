// Widths and heights of a row, at scales and text heights whose quotients tell truncation from rounding and single from
// double precision.
#include <gmock/gmock.h>

#include <limits>

#include "firmware_item/row_controls.h"
#include "row_fixture.h"

namespace {

using DuiLib::RowInspector;
using testing::ElementsAre;
using testing::IsEmpty;

class RowSize : public RowFixture {};

struct LabelWidth {
    std::size_t letters;  // of 8 pixels
    const wchar_t* width;
};

TEST_F(RowSize, TheButtonIs16WiderThanItsWidestLabelFrom88To172) {
    for (const LabelWidth& c : {LabelWidth{2, L"88"}, LabelWidth{9, L"88"}, LabelWidth{10, L"96"},
                                LabelWidth{19, L"168"}, LabelWidth{20, L"172"}, LabelWidth{40, L"172"}}) {
        const std::wstring label(c.letters, L'm');
        for (const wchar_t* widest :
             {L"IDS_SETTING_ACCESSORIES_UPDATE", L"IDS_SETTING_ACCESSORIES_INSTALLING",
              L"IDS_SETTING_ACCESSORIES_INSTALL_END", L"IDS_ACCESSORIES_RESUME", L"IDS_ACCESSORIES_RETRY"}) {
            for (const wchar_t* id :
                 {L"IDS_SETTING_ACCESSORIES_UPDATE", L"IDS_SETTING_ACCESSORIES_INSTALLING",
                  L"IDS_SETTING_ACCESSORIES_INSTALL_END", L"IDS_ACCESSORIES_RESUME", L"IDS_ACCESSORIES_RETRY"}) {
                SetTextOf(id, id == widest ? label.c_str() : L"m");
            }
            MakeRow();
            EXPECT_EQ(Attribute(L"X1updateBtn", L"width"), c.width) << c.letters << " letters";
        }
    }
    EXPECT_EQ(Text(L"updateBtnText"), std::wstring(40, L'm')) << "the last label stays";
}

struct Fill {
    int percent;
    const wchar_t* pos;
};

TEST_F(RowSize, TheFillIsTruncated) {
    MakeRow();  // a bar of 120
    for (const Fill& c :
         {Fill{0, L"0,0,120,0"}, Fill{1, L"1,0,120,0"}, Fill{37, L"44,0,120,0"}, Fill{99, L"118,0,120,0"},
          Fill{-5, L"-6,0,120,0"}, Fill{-7, L"-8,0,120,0"}, Fill{100, L"120,0,120,0"}, Fill{250, L"300,0,120,0"}}) {
        row->ShowDownloadProgress(c.percent);
        EXPECT_EQ(Attribute(L"X1progressLayout", L"pos"), c.pos) << c.percent;
    }
    for (const int absurd : {std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        row->ShowDownloadProgress(absurd);
        EXPECT_EQ(Attribute(L"X1progressLayout", L"pos"), L"-2147483648,0,120,0") << "as the platform converts it";
    }
}

struct Heights {
    unsigned scale;       // [percent]
    int information;      // [device px] of the text
    const wchar_t* made;  // "height" of "hor", as made
    int folded;           // change that a fold and an unfold report
    int foldedHeight;     // the row's own height, folded
    int unfoldedPixels;   // [device px] of "hor" and "ver", unfolded again
    int form;             // the row's own height after UpdateDownloadForm
};

void PrintTo(const Heights& h, std::ostream* out) { *out << h.information << " pixels at " << h.scale; }

class RowHeights : public RowSize, public testing::WithParamInterface<Heights> {
protected:
    // Information of one line of that height.
    void MakeRowOf(const Heights& h) {
        UseScale(h.scale);
        UseCells({1, 1});
        const int lines = (h.information * 100 + static_cast<int>(h.scale) / 2) / static_cast<int>(h.scale);
        MakeRow(Pen(std::wstring(static_cast<std::size_t>(lines), L'\n')));
        ASSERT_EQ(Control(L"X1devInfo").GetFixedHeight(), h.information);
    }
};

TEST_P(RowHeights, AreTruncated) {
    const Heights& h = GetParam();
    MakeRowOf(h);
    EXPECT_THAT(heights, ElementsAre(HeightReport{77, true, true}));
    EXPECT_EQ(Attribute(L"X1hor", L"height"), h.made);
    Do("pulldown");
    EXPECT_EQ(RowInspector::RowHeight(*row), h.foldedHeight);
    Do("pulldown");
    EXPECT_EQ(Control(L"X1hor").GetFixedHeight(), h.unfoldedPixels);
    EXPECT_EQ(Control(L"X1ver").GetFixedHeight(), h.unfoldedPixels);
    EXPECT_THAT(heights, ElementsAre(HeightReport{77, true, true}, HeightReport{h.folded, false, false},
                                     HeightReport{h.folded, true, false}));
    MakeRowOf(h);
    row->UpdateDownloadForm();
    EXPECT_EQ(RowInspector::RowHeight(*row), h.form);
    EXPECT_EQ(heights.size(), 1u) << "nobody is told";
}

INSTANTIATE_TEST_SUITE_P(Row, RowHeights,
                         testing::Values(Heights{100, 40, L"92", 64, 13, 116, 37},
                                         Heights{110, 23, L"72", 44, 32, 106, 56},   // 20.91, 83.6 + 23
                                         Heights{110, 28, L"77", 49, 27, 111, 51},   // 25.45: what is left is .55
                                         Heights{110, 66, L"112", 84, -7, 149, 17},  // 59.9999985 in single precision
                                         Heights{120, 72, L"111", 83, -6, 163, 17},  // 59.9999976
                                         Heights{125, 49, L"91", 63, 13, 144, 37},   // 39.2
                                         Heights{150, 62, L"93", 65, 11, 176, 35},   // 41.33
                                         // Deliberate: below a hundred percent the divisor is 100.
                                         Heights{90, 270, L"54", 26, 50, 7870, 74},    // 2.7
                                         Heights{50, 399, L"55", 27, 49, 7999, 73}));  // 3.99

struct Measured {
    unsigned scale;
    std::size_t letters;
    int lines;
};

TEST_F(RowSize, TheInformationIsMeasuredAt272DesignPixelsTruncated) {
    for (const Measured& c : {Measured{100, 34, 1}, Measured{100, 35, 2}, Measured{125, 34, 1}, Measured{125, 35, 2},
                              Measured{115, 33, 1}, Measured{115, 34, 2},       // 312.8 pixels, cells of 9.2
                              Measured{90, 3777, 1}, Measured{90, 3778, 2}}) {  // 27200 pixels, cells of 7.2
        UseScale(c.scale);
        MakeRow(Pen(std::wstring(c.letters, L'x')));
        EXPECT_EQ(Control(L"X1devInfo").GetFixedHeight(), c.lines * 20 * static_cast<int>(c.scale) / 100)
            << c.letters << " letters at " << c.scale;
    }
}

TEST_F(RowSize, AFoldHidesInformationAndDividerAndAnUnfoldShowsThem) {
    MakeRow();
    for (const bool shown : {false, true}) {
        Do("pulldown");
        EXPECT_EQ(Shown(L"X1devInfo"), shown);
        EXPECT_EQ(RowInspector::Divider(*row)->IsVisible(), shown);
    }
    row->UpdateDownloadForm();
    EXPECT_FALSE(RowInspector::Divider(*row)->IsVisible());
}

TEST_F(RowSize, UpdateDownloadFormLeavesTheRow24HigherThanAPullDown) {
    MakeRow();
    Do("pulldown");
    const int folded = RowInspector::RowHeight(*row);
    Do("pulldown");
    EXPECT_EQ(RowInspector::RowHeight(*row), 77) << "two clicks bring it back";
    row->UpdateDownloadForm();
    EXPECT_EQ(RowInspector::RowHeight(*row), folded + 24);
}

TEST_F(RowSize, ASecondSetUpStartsAtNoHeight) {
    MakeRow();
    const std::unique_ptr<const IPCMessageClient> dropped(RowInspector::Client(*row));
    row->InitFirmwareLayout(m_page.Manager(), m_page.Pump(), m_page.Parent(), Pen());
    EXPECT_THAT(heights, ElementsAre(HeightReport{77, true, true}, HeightReport{77, true, true}));
}

TEST_F(RowSize, BelowAHundredPercentTheDivisorIsAHundred) {
    for (const auto& [scale, divisor] : {std::pair{100u, 1.0f}, {125u, 1.25f}, {99u, 100.0f}, {50u, 100.0f}}) {
        UseScale(scale);
        EXPECT_EQ(DuiLib::ScaleDivisor(), divisor) << scale;
    }
}

TEST_F(RowSize, TruncationGoesTowardZero) {
    EXPECT_EQ(DuiLib::Truncate(1.9), 1);
    EXPECT_EQ(DuiLib::Truncate(-1.9), -1);
    EXPECT_EQ(DuiLib::Truncate(2147483647.5), 2147483647);
    EXPECT_EQ(DuiLib::Truncate(2147483648.0), std::numeric_limits<int>::min());
    EXPECT_EQ(DuiLib::Truncate(-3e9), std::numeric_limits<int>::min());
}

}  // namespace
