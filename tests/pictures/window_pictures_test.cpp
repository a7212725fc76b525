// The settings window with the page in it: what it looks like in each of its views.
#include <algorithm>
#include <chrono>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "painted_window.h"
#include "parts_sheet.h"
#include "picture_test.h"
#include "seam.h"
#include "service_messages.h"

namespace {

using DuiLib::CControlUI;
using DuiLib::CDuiRect;

constexpr const char* kKeys[] = {"pen", "mouse", "dock", "headset", "keyboard"};

class WindowPictures : public PictureTest {
protected:
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
        m_window.ShowNews();
        m_window.Click("mouseupdateBtn");
        DeliverProgress("mouse", 37);
    }

    void LoseTheService() {
        seam::Get().connected = false;
        m_window.ShowNews();
        m_window.LetTimePass(std::chrono::seconds(2));
    }

    void OpenRows() {
        for (const char* const key : kKeys) m_window.Click(std::string(key) + "pulldown");
    }

    PaintedWindow m_window;
};

TEST_P(WindowPictures, TheListWithOneRowOpened) {
    ShowList();
    m_window.Click("dockpulldown");
    ExpectPicture("window_list", m_window.Paint());
}

TEST_P(WindowPictures, TheListWhileTheServiceIsAway) {
    ShowList();
    LoseTheService();
    ExpectPicture("window_service_bar", m_window.Paint());
}

TEST_P(WindowPictures, AListThatIsHigherThanTheWindow) {
    ShowList();
    OpenRows();
    m_window.Scroll(DuiLib::DuiKey::kHome);
    LoseTheService();
    ExpectPicture("window_scrolled", m_window.Paint());
}

TEST_P(WindowPictures, NothingToUpdate) {
    DeliverList({});
    m_window.ShowNews();
    ExpectPicture("window_up_to_date", m_window.Paint());
}

TEST_P(WindowPictures, TheSearch) { ExpectPicture("window_searching", m_window.Paint()); }

TEST_P(WindowPictures, About) {
    m_window.Click("navAbout");
    ExpectPicture("window_about", m_window.Paint());
}

TEST_P(WindowPictures, TheQuestionBeforeClosing) {
    ShowList();
    m_window.AskToClose();
    ExpectPicture("window_question", m_window.Paint());
}

INSTANTIATE_TEST_SUITE_P(Looks, WindowPictures, testing::Values(Look{"en-US", 100}, Look{"ar", 100}), TestNameOf);

// At the largest scale only what belongs to the window, cut out of it and put one below the other: the page has
// pictures of its own, and whole windows would take more than half of what all pictures may.
class WindowParts : public WindowPictures {
protected:
    void Take(const CDuiRect& place) { m_sheet.Add(CutOut(m_window.Paint(), place)); }
    void TakeAll(std::initializer_list<const wchar_t*> names) {
        CDuiRect place;
        for (const wchar_t* const name : names) place = Around(place, PlaceOf(name));
        Take(place);
    }

    // Of a view that is otherwise empty.
    void TakeLabels(std::wstring_view view) {
        CDuiRect place;
        for (CControlUI* const child : ChildrenOf(view)) {
            if (child->GetRole() == DuiLib::ControlRole::kLabel) place = Around(place, child->GetPos());
        }
        Take(place);
    }
    void TakeCard(std::wstring_view name) { Take(ChildrenOf(name).at(0)->GetPos()); }

    // Its last row, what lies below it, and the end of the scroll bar.
    void TakeEndOfPage() {
        CDuiRect place = PlaceOf(L"accessoriesView");
        place.top = PlaceOf(L"keyboardhor").top;
        Take(place);
    }

    PartsSheet m_sheet;

private:
    static CDuiRect Around(const CDuiRect& one, const CDuiRect& other) {
        if (one.Width() == 0) return other;
        return {std::min(one.left, other.left), std::min(one.top, other.top), std::max(one.right, other.right),
                std::max(one.bottom, other.bottom)};
    }
    CDuiRect PlaceOf(std::wstring_view name) { return m_window.Control(name).GetPos(); }
    std::vector<CControlUI*> ChildrenOf(std::wstring_view name) {
        std::vector<CControlUI*> children;
        auto& container = dynamic_cast<DuiLib::CContainerUI&>(m_window.Control(name));
        for (int i = 0; i < container.GetCount(); ++i) children.push_back(container.GetItemAt(i));
        return children;
    }
};

TEST_P(WindowParts, AreAsDrawn) {
    TakeLabels(L"searchingView");
    m_window.Click("navAbout");
    TakeAll({L"navAccessories", L"navAbout"});
    TakeCard(L"aboutView");
    m_window.Click("navAccessories");
    ShowList();
    TakeAll({L"navAccessories", L"navAbout"});
    TakeAll({L"pageName", L"runningCount"});
    m_window.AskToClose();
    TakeCard(L"closeQuestion");
    m_window.Click("keepOpen");
    OpenRows();
    LoseTheService();
    TakeAll({L"serviceBar"});
    m_window.Scroll(DuiLib::DuiKey::kEnd);
    TakeEndOfPage();
    for (const char* const key : kKeys) DeliverFinish(key);
    m_window.ShowNews();
    TakeLabels(L"upToDateView");
    ExpectPicture("window_parts", m_sheet.Compose());
}

INSTANTIATE_TEST_SUITE_P(Looks, WindowParts, testing::Values(Look{"en-US", 300}, Look{"ar", 300}), TestNameOf);

}  // namespace
