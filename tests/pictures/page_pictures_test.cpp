// The page as it comes, with its rows closed and opened, and with a tool tip.
#include <cstdint>
#include <filesystem>

#include "painted_page.h"
#include "parts_sheet.h"
#include "picture_test.h"
#include "seam.h"
#include "service_messages.h"

namespace {

using DuiLib::CDuiRect;
using DuiLib::UICulture;

constexpr const wchar_t* kLongName = L"IDS_TEST_LONG_NAME";

class PagePictures : public PictureTest {
protected:
    void ShowThreeRows(const wchar_t* nameOfTheFirst = L"IDS_NAME_PEN") {
        DeliverList({{"pen",
                      nameOfTheFirst,
                      L"drawable/Brindle/pen.svg",
                      L"2.4.1",
                      {L"Fewer missed strokes near the edge of the screen.", L"The button wakes the pen faster."},
                      0,
                      true},
                     {"headset",
                      L"IDS_NAME_HEADSET",
                      L"drawable/Brindle/headset.svg",
                      L"3.1",
                      {L"Clearer voice in calls."},
                      0,
                      false},
                     {"keyboard", L"IDS_NAME_KEYBOARD", L"drawable/Brindle/keyboard.svg", L"0.9.8", {}, 0, true}});
    }

    // A device whose name makes a tip of more than one line.
    static void AddLongName() {
        UICulture& texts = *UICulture::GetInstance();
        std::wstring name;
        for (const wchar_t* const id : {L"IDS_NAME_PEN", L"IDS_NAME_DOCK", L"IDS_NAME_MOUSE"}) {
            name += texts.GetString(id).Str() + L" ";
        }
        name.pop_back();
        texts.SetString(kLongName, name);
    }

    PaintedPage m_page;
};

TEST_P(PagePictures, RowsComeClosed) {
    ShowThreeRows();
    m_page.FitWindow();
    ExpectPicture("page_closed", m_page.Paint());
}

TEST_P(PagePictures, RowsAreOpened) {
    ShowThreeRows();
    for (const wchar_t* const pulldown : {L"penpulldown", L"headsetpulldown", L"keyboardpulldown"}) {
        m_page.Click(pulldown);
    }
    m_page.FitWindow();
    ExpectPicture("page_opened", m_page.Paint());
}

TEST_P(PagePictures, TheTipOfARefusalIsWrappedBelowItsButton) {
    AddLongName();
    ShowThreeRows(kLongName);
    m_page.FitWindow();
    seam::Get().companions[L"pen"] = {true, true};
    m_page.Click(L"penupdateBtn");
    m_page.PointAt(L"penupdateBtn");
    m_page.Rest();
    ASSERT_EQ(m_page.Manager().GetToolTipOwner(), &m_page.Control(L"penupdateBtn"));
    const CDuiRect first = m_page.Control(L"penhor").GetPos();
    const CDuiRect below = m_page.Control(L"keyboardupdateBtn").GetPos();
    ExpectPicture("tip", CutOut(m_page.Paint(), {0, first.top, m_page.Manager().GetClientSize().cx, below.top}));
}

TEST(ReferencePictures, TakeAtMostThreeMegabytesTogether) {
    std::uintmax_t bytes = 0;
    for (const auto& file : std::filesystem::directory_iterator(PICTURES_REFERENCE_FOLDER)) bytes += file.file_size();
    EXPECT_LE(bytes, 3'000'000u);
    EXPECT_GT(bytes, 0u);
}

INSTANTIATE_TEST_SUITE_P(Looks, PagePictures, testing::ValuesIn(OuterLooks()), TestNameOf);

}  // namespace
