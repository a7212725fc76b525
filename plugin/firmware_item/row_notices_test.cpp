// The tip while the companion runs, and the usage report: what the replayed scenarios do not see of them.
#include <gmock/gmock.h>

#include "ansi_page.h"
#include "row_fixture.h"

namespace {

using testing::ElementsAre;
using testing::Pair;

class RowNotices : public RowFixture {
protected:
    static std::vector<seam::Event> Reports() {
        std::vector<seam::Event> reports;
        for (const seam::Event& event : seam::Get().events) {
            if (event.kind == seam::Kind::kReport) reports.push_back(event);
        }
        return reports;
    }
};

TEST_F(RowNotices, ATemplateWithoutPlaceholderTakesTheEarlierTipAway) {
    MakeRow();
    Do("companion update");
    ASSERT_EQ(ToolTip(L"X1updateBtn"), L"Close Drawing pen first.");
    SetTextOf(L"IDS_ACCESSORIES_APP_STARTING", L"Close the program first.");
    Do("update");
    EXPECT_EQ(ToolTip(L"X1updateBtn"), L"");
}

TEST_F(RowNotices, TheTipOfTheStopButtonColoursTheProgressText) {
    MakeRow();
    Do("update 37% stop companion stop");
    EXPECT_EQ(Attribute(L"X1progress", L"hottextcolor"), L"#660A59F7");
    EXPECT_FALSE(Control(L"X1stopBtn").HasAttribute(L"hottextcolor"));
    EXPECT_FALSE(Control(L"X1updateBtn").HasAttribute(L"hottextcolor"));
}

TEST_F(RowNotices, EachClickOnUpdateSendsOneReportForPlatformZero) {
    MakeRow();
    Do("update companion update");
    ASSERT_EQ(Reports().size(), 2u);
    for (const seam::Event& report : Reports()) EXPECT_EQ(report.number, 0);
}

TEST_F(RowNotices, AModelIdOutsideTheAnsiPageReachesTheReportInItsReplacementForm) {
    const AnsiPage page(1252);
    DuiLib::FirmwareItemDesc desc = Pen();
    desc.nameId = L"pen\u7b14";
    desc.version = L"";
    MakeRow(desc);
    Do("update");
    ASSERT_EQ(Reports().size(), 1u);
    EXPECT_THAT(Reports().front().fields, ElementsAre(Pair("modelID", "pen?"), Pair("versionInfo", "")));
}

}  // namespace
