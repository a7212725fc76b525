// The settings window's layout with the page in it: what it looks like in each of its views.
#include <utility>

#include "duilib/ui_culture.h"
#include "painted_page.h"
#include "picture_test.h"
#include "service_messages.h"

namespace {

using DuiLib::UICulture;

constexpr const wchar_t* kViews[] = {L"searchingView", L"accessoriesView", L"upToDateView", L"aboutView"};

class WindowPictures : public PictureTest {
protected:
    void ShowView(std::wstring_view view) {
        for (const wchar_t* const name : kViews) m_page.Control(name).SetVisible(name == view);
        const bool about = view == L"aboutView";
        m_page.Control(about ? L"navAbout" : L"navAccessories").SetAttribute(L"bkcolor", L"#140A59F7");
        SetText(L"pageName", Text(about ? L"IDS_HOST_PAGE_ABOUT" : L"IDS_HOST_PAGE_ACCESSORIES"));
    }

    // Five accessories, one of which is being updated.
    void ShowList() {
        const auto row = [](const char* key, const wchar_t* name, const wchar_t* picture, const wchar_t* version,
                            std::vector<std::wstring> lines) {
            return AccessoryVersionDataInfo{
                key, name, std::wstring(L"drawable/Brindle/") + picture, version, std::move(lines), 0, true};
        };
        DeliverList({row("pen", L"IDS_NAME_PEN", L"pen.svg", L"2.4.1", {L"The button wakes the pen faster."}),
                     row("mouse", L"IDS_NAME_MOUSE", L"mouse.svg", L"1.12.0", {L"Smoother scrolling."}),
                     row("dock", L"IDS_NAME_DOCK", L"dock.svg", L"7.0.3",
                         {L"Displays come back after sleep.", L"Charges at full power from the second port.",
                          L"Wired network starts faster."}),
                     row("headset", L"IDS_NAME_HEADSET", L"headset.svg", L"3.1", {L"Clearer voice in calls."}),
                     row("keyboard", L"IDS_NAME_KEYBOARD", L"keyboard.svg", L"0.9.8", {L"Keys repeat evenly."})});
        ShowView(L"accessoriesView");
        m_page.Click(L"mouseupdateBtn");
        DeliverProgress("mouse", 37);
        std::wstring running = Text(L"IDS_HOST_RUNNING");
        running.replace(running.find(L"{0}"), 3, UICulture::GetInstance()->GetNumberString(1).Str());
        SetText(L"runningCount", running);
        m_page.Control(L"runningCount").SetVisible(true);
    }

    PaintedPage m_page{PaintedPage::Around::kSettingsWindow};

private:
    static std::wstring Text(const wchar_t* id) { return UICulture::GetInstance()->GetString(id).Str(); }
    void SetText(const wchar_t* name, const std::wstring& text) { m_page.Control(name).SetText(text); }
};

TEST_P(WindowPictures, TheListWithOneRowOpened) {
    ShowList();
    m_page.Click(L"dockpulldown");
    ExpectPicture("window_list", m_page.Paint());
}

TEST_P(WindowPictures, TheListWhileTheServiceIsAway) {
    ShowList();
    m_page.Control(L"serviceBar").SetVisible(true);
    ExpectPicture("window_service_bar", m_page.Paint());
}

TEST_P(WindowPictures, AListThatIsHigherThanTheWindow) {
    ShowList();
    for (const wchar_t* const key : {L"pen", L"mouse", L"dock", L"headset", L"keyboard"}) {
        m_page.Click(std::wstring(key) + L"pulldown");
    }
    m_page.Control(L"serviceBar").SetVisible(true);
    ExpectPicture("window_scrolled", m_page.Paint());
}

TEST_P(WindowPictures, NothingToUpdate) {
    ShowView(L"upToDateView");
    ExpectPicture("window_up_to_date", m_page.Paint());
}

TEST_P(WindowPictures, TheSearch) {
    ShowView(L"searchingView");
    ExpectPicture("window_searching", m_page.Paint());
}

TEST_P(WindowPictures, About) {
    ShowView(L"aboutView");
    ExpectPicture("window_about", m_page.Paint());
}

TEST_P(WindowPictures, TheQuestionBeforeClosing) {
    ShowList();
    DuiLib::CControlUI& question = m_page.Control(L"closeQuestion");
    question.SetVisible(true);
    m_page.Manager().SetModal(&question);
    m_page.Focus(L"keepOpen");
    ExpectPicture("window_question", m_page.Paint());
}

INSTANTIATE_TEST_SUITE_P(Looks, WindowPictures, testing::Values(Look{"en-US", 100}, Look{"ar", 100}), TestNameOf);

}  // namespace
