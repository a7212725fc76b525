#include "painted_page.h"

#include <gtest/gtest.h>

#include "kernel/ui_turn.h"
#include "module_loader/page_module.h"
#include "seam.h"

namespace {

using namespace DuiLib;

constexpr int kMargin = 16;      // [design px] of ground around the page
constexpr int kPageWidth = 592;  // [design px]
constexpr int kRoom = 20000;     // [device px] higher than any page

const PageModule& Module() {
    static const PageModule module(PageModule::DefaultPath());
    return module;
}

CDuiSize Scaled(CDuiSize size) { return CResourceManager::GetInstance()->Scale(size); }

CControlUI* Ground() {
    auto* const ground = new CVerticalLayoutUI;
    ground->SetAttribute(L"bkcolor", L"#FFF2F3F6");
    const std::wstring margin = std::to_wstring(kMargin);
    ground->SetAttribute(L"inset", margin + L"," + margin + L"," + margin + L"," + margin);
    auto* const page = new CVerticalLayoutUI;
    page->SetName(L"page");
    page->SetFixedWidth(kPageWidth);
    ground->Add(page);
    return ground;
}

}  // namespace

PaintedPage::PaintedPage() {
    const kernel::UiTurn turn;
    m_manager.AttachRoot(Ground());
    m_manager.SetClientSize({Scaled({kPageWidth + 2 * kMargin, 0}).cx, kRoom});
    m_manager.AddNotifyPump(&m_pump);
    m_parent = dynamic_cast<CContainerUI*>(m_manager.FindControl(L"page"));
    Module().CreateSetting(&m_manager, &m_pump, m_parent);
}

PaintedPage::~PaintedPage() {
    const kernel::UiTurn turn;
    Module().CloseWnd();
    m_parent->RemoveAll();
}

void PaintedPage::FitWindow() {
    const int width = m_manager.GetClientSize().cx;
    m_manager.SetClientSize({width, kRoom});
    m_manager.SetClientSize({width, m_parent->GetPos().bottom + Scaled({0, kMargin}).cy});
}

CControlUI& PaintedPage::Control(std::wstring_view name) {
    if (CControlUI* const control = m_manager.FindControl(name)) return *control;
    ADD_FAILURE() << "no control is named " << testing::PrintToString(std::wstring(name));
    static CControlUI none;
    return none;
}

// ---- Pointer and keyboard

CDuiPoint PaintedPage::MiddleOf(std::wstring_view name) {
    const CDuiRect place = Control(name).GetPos();
    EXPECT_GT(place.Width(), 0) << testing::PrintToString(std::wstring(name)) << " is not shown";
    return {(place.left + place.right) / 2, (place.top + place.bottom) / 2};
}

void PaintedPage::PointAt(std::wstring_view name) {
    m_manager.MouseMove(MiddleOf(name));
    EXPECT_EQ(m_manager.GetHovered(), &Control(name)) << testing::PrintToString(std::wstring(name)) << " is covered";
}

void PaintedPage::PointAway() { m_manager.MouseLeave(); }

void PaintedPage::Click(std::wstring_view name) {
    const CDuiPoint middle = MiddleOf(name);
    m_manager.ButtonDown(middle);
    EXPECT_TRUE(m_manager.ButtonUp(middle)) << testing::PrintToString(std::wstring(name)) << " cannot be clicked";
    FocusNothing();
    PointAway();
}

void PaintedPage::Press(std::wstring_view name) { EXPECT_TRUE(m_manager.ButtonDown(MiddleOf(name))); }

void PaintedPage::Release() {
    EXPECT_FALSE(m_manager.ButtonUp({0, 0}));
    FocusNothing();
    PointAway();
}

void PaintedPage::Focus(std::wstring_view name) { m_manager.SetFocus(&Control(name)); }

void PaintedPage::FocusNothing() { m_manager.SetFocus(nullptr); }

void PaintedPage::Rest() {
    CPaintManagerUI::TimePoint time{std::chrono::hours(1)};
    m_manager.Tick(time);
    m_manager.Tick(time + std::chrono::seconds(1));
}

// ---- Pictures

const PaintSurface& PaintedPage::Paint() {
    m_manager.Paint(m_picture);
    return m_picture;
}

PaintSurface PaintedPage::PaintWhole() {
    PaintSurface picture;
    m_manager.Paint(picture);
    m_manager.InvalidateAll();
    return picture;
}

int LookDuringPause(std::uint32_t milliseconds, const std::function<void()>& action,
                    const std::function<void()>& look) {
    int looks = 0;
    seam::Get().onSleep = [&](std::uint32_t pause) {
        if (pause != milliseconds) return;
        ++looks;
        look();
    };
    action();
    seam::Get().onSleep = nullptr;
    return looks;
}
