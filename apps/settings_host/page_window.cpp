#include "page_window.h"

#include <algorithm>

#include "kernel/ui_turn.h"
#include "utf8.h"

namespace settings_host {

namespace {
constexpr int kPageWidth = 592;  // [design px]
}

PageWindow::PageWindow(const PageModule& module, HostChannel& channel)
    : m_module(module), m_channel(channel), m_page(new DuiLib::CVerticalLayoutUI) {
    const kernel::UiTurn turn;
    auto* const root = new DuiLib::CVerticalLayoutUI;
    root->Add(m_page);
    m_manager.AttachRoot(root);
    m_manager.AddNotifyPump(&m_pump);
    m_page->SetFixedWidth(kPageWidth);
}

PageWindow::~PageWindow() { Close(); }

void PageWindow::Open() {
    const kernel::UiTurn turn;
    if (m_open) return;
    m_open = true;
    m_module.CreateSetting(&m_manager, &m_pump, m_page);
}

void PageWindow::Close() {
    const kernel::UiTurn turn;
    if (!m_open) return;
    m_open = false;
    m_module.CloseWnd();
    m_page->RemoveAll();
    m_channel.News() = PageNews{};
}

bool PageWindow::ApplyContentHeight() {
    const PageNews& news = m_channel.News();
    const int height = news.contentHeight <= 0 ? 0 : news.contentHeight + HeadingHeight();
    if (height == m_appliedHeight) return false;
    m_appliedHeight = height;
    m_page->SetVisible(!news.nothingLeft);
    m_page->SetFixedHeight(height);
    auto* const resources = DuiLib::CResourceManager::GetInstance();
    m_manager.SetClientSize({resources->Scale(kPageWidth, &m_manager), resources->Scale(height, &m_manager)});
    return true;
}

int PageWindow::HeadingHeight() {
    DuiLib::CControlUI* const list = Find(L"accessVer");
    if (list == nullptr) return 0;
    return DuiLib::CResourceManager::GetInstance()->RestoreScale(list->GetPos().top, &m_manager);
}

DuiLib::CControlUI* PageWindow::Find(std::wstring_view name) { return m_manager.FindControl(name); }

std::string PageWindow::Click(std::wstring_view name) {
    const kernel::UiTurn turn;
    ApplyContentHeight();
    DuiLib::CControlUI* const control = Find(name);
    if (control == nullptr) return "no control has that name";
    if (!IsShown(control)) return "it is not shown";
    const DuiLib::CDuiRect place = control->GetPos();
    const DuiLib::CDuiPoint middle{(place.left + place.right) / 2, (place.top + place.bottom) / 2};
    DuiLib::CControlUI* const hit = m_manager.FindControl(middle);
    if (hit == nullptr) return "its middle lies outside the window";
    if (hit != control) return "it is covered by \"" + ToUtf8(hit->GetName()) + "\"";
    m_manager.MouseMove(middle);
    m_manager.ButtonDown(middle);
    return m_manager.ButtonUp(middle) ? std::string() : "it cannot be clicked";
}

bool IsShown(DuiLib::CControlUI* control) {
    for (; control != nullptr; control = control->GetParent()) {
        if (!control->IsVisible()) return false;
    }
    return true;
}

}  // namespace settings_host
