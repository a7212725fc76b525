#include "settings_window.h"

#include <algorithm>
#include <array>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "base/text.h"
#include "channel/messages.h"
#include "ipc_client/ipc_diagnostics.h"
#include "kernel/ui_turn.h"

namespace settings_host {

namespace {

using DuiLib::CContainerUI;
using DuiLib::CControlUI;
using DuiLib::CDuiString;
using DuiLib::ControlProgress;
using DuiLib::ControlRole;

constexpr const wchar_t* kLayout = L"../components/brindle/res/layout/SettingsWindow.xml";
constexpr const wchar_t* kChosenColor = L"#140A59F7";  // of the page that is shown, in the list of pages
constexpr const wchar_t* kOtherColor = L"#00FFFFFF";
constexpr std::chrono::milliseconds kPatience{1500};  // a service that starts just now is no news

CDuiString Text(std::wstring_view id) { return DuiLib::UICulture::GetInstance()->GetString(id); }

// The template with its "{0}" replaced.
std::wstring Filled(std::wstring_view id, std::wstring_view value) {
    constexpr std::wstring_view kPlaceholder = L"{0}";
    std::wstring text = Text(id).Str();
    const std::size_t at = text.find(kPlaceholder);
    if (at != std::wstring::npos) text.replace(at, kPlaceholder.size(), value);
    return text;
}

std::unique_ptr<CControlUI> Build() {
    DuiLib::CDialogBuilder builder;
    std::unique_ptr<CControlUI> root(builder.Create(kLayout));
    if (!root) throw std::runtime_error(base::Utf8FromWide(builder.GetError()));
    return root;
}

}  // namespace

SettingsWindow::SettingsWindow(const PageModule& module, HostChannel& channel, SleepInhibitor& inhibitor)
    : m_module(module), m_channel(channel), m_inhibitor(inhibitor) {
    const kernel::UiTurn turn;
    m_manager.AttachRoot(Build().release());
    m_page = dynamic_cast<CContainerUI*>(Find(L"page"));
    if (m_page == nullptr) throw std::runtime_error(base::Utf8FromWide(kLayout) + ": it has no container \"page\"");
    for (const wchar_t* const name :
         {L"navAccessories", L"navAbout", L"pageName", L"runningCount", L"serviceBar", L"accessoriesView",
          L"searchingView", L"upToDateView", L"aboutView", L"closeQuestion", L"closeAnyway", L"keepOpen"}) {
        if (Find(name) == nullptr)
            throw std::runtime_error(base::Utf8FromWide(kLayout) + ": it has no \"" + base::Utf8FromWide(name) + "\"");
    }
    m_manager.AddNotifyPump(this);
    m_manager.SetClientSize(DuiLib::CResourceManager::GetInstance()->Scale(kSize, &m_manager));
    m_inhibitor.SetReason(base::Utf8FromWide(Text(L"IDS_HOST_INHIBIT_REASON")));
    ShowView();
}

SettingsWindow::~SettingsWindow() { Close(); }

void SettingsWindow::Open() {
    const kernel::UiTurn turn;
    if (m_open) return;
    m_open = true;
    m_module.CreateSetting(&m_manager, this, m_page);
}

void SettingsWindow::Close() {
    const kernel::UiTurn turn;
    if (!m_open) return;
    m_open = false;
    m_module.CloseWnd();
    m_page->RemoveAll();
    m_channel.News() = PageNews{};
    m_inhibitor.Hold(false);
}

// ---- What is shown

std::optional<SettingsWindow::TimePoint> SettingsWindow::ApplyNews(TimePoint now) {
    bool awake = false;
    std::optional<TimePoint> next;
    {
        const kernel::UiTurn turn;
        ShowView();
        ApplyContentHeight();
        awake = ShowRunning();
        next = ShowReachability(now);
    }
    m_inhibitor.Hold(awake);  // may wait for the system; the page's code need not
    return next;
}

void SettingsWindow::ApplyContentHeight() {
    if (!IsShown(m_page)) return;  // what is hidden is not laid out: the heading would have no height
    const PageNews& news = m_channel.News();
    const int height = news.contentHeight <= 0 ? 0 : news.contentHeight + HeadingHeight();
    if (height == m_appliedHeight) return;
    m_appliedHeight = height;
    m_page->SetFixedHeight(height);
}

int SettingsWindow::HeadingHeight() {
    CControlUI* const list = Find(L"accessVer");
    if (list == nullptr) return 0;
    const int above = list->GetPos().top - m_page->GetPos().top;
    return DuiLib::CResourceManager::GetInstance()->RestoreScale(above, &m_manager);
}

// The page sends nothing for an empty list: it hides its heading.
bool SettingsWindow::ListIsEmpty() {
    CControlUI* const heading = Find(L"topName");
    return heading != nullptr && !heading->IsVisible() && !m_channel.News().heightReported;
}

SettingsWindow::View SettingsWindow::CurrentView() {
    if (m_aboutChosen) return View::kAbout;
    if (m_channel.News().nothingLeft || ListIsEmpty()) return View::kUpToDate;
    return m_channel.News().contentHeight > 0 ? View::kList : View::kSearching;
}

void SettingsWindow::ShowView() {
    const View view = CurrentView();
    Find(L"accessoriesView")->SetVisible(view == View::kList);
    Find(L"searchingView")->SetVisible(view == View::kSearching);
    Find(L"upToDateView")->SetVisible(view == View::kUpToDate);
    Find(L"aboutView")->SetVisible(view == View::kAbout);
    Find(L"navAccessories")->SetAttribute(L"bkcolor", m_aboutChosen ? kOtherColor : kChosenColor);
    Find(L"navAbout")->SetAttribute(L"bkcolor", m_aboutChosen ? kChosenColor : kOtherColor);
    Find(L"pageName")->SetText(Text(m_aboutChosen ? L"IDS_HOST_PAGE_ABOUT" : L"IDS_HOST_PAGE_ACCESSORIES"));
}

bool SettingsWindow::ShowRunning() {
    const auto running = static_cast<int>(m_channel.News().running.size());
    CControlUI* const count = Find(L"runningCount");
    count->SetVisible(running > 0);
    if (running > 0) {
        count->SetText(Filled(L"IDS_HOST_RUNNING", DuiLib::UICulture::GetInstance()->GetNumberString(running)));
    }
    if (running == 0) ShowQuestion(false);
    return running > 0;
}

std::optional<SettingsWindow::TimePoint> SettingsWindow::ShowReachability(TimePoint now) {
    if (IsPipeConnected(IPC_PIPE_ASSISTANT)) {
        m_unreachableSince.reset();
    } else if (!m_unreachableSince) {
        m_unreachableSince = now;
    }
    const bool missing = m_unreachableSince && now >= *m_unreachableSince + kPatience;
    Find(L"serviceBar")->SetVisible(missing);
    if (!m_unreachableSince || missing) return {};
    return *m_unreachableSince + kPatience;
}

// ---- What the user does

const DuiLib::DUI_MSGMAP* SettingsWindow::GetMessageMap() const {
    using Handler = void (DuiLib::CNotifyPump::*)(DuiLib::TNotifyUI&);
    static const std::array<DuiLib::DUI_MSGMAP_ENTRY, 3> entries{{
        {DuiLib::kNotifyClick, nullptr, &DuiLib::CNotifyPump::OnClick},
        {DuiLib::kNotifyCancel, L"closeQuestion", static_cast<Handler>(&SettingsWindow::OnCancel)},
        {nullptr, nullptr, nullptr},
    }};
    static const DuiLib::DUI_MSGMAP map{&s_messageMap, entries.data()};
    return &map;
}

void SettingsWindow::OnClick(DuiLib::TNotifyUI& message) {
    if (message.sender == nullptr) return;
    const CDuiString& name = message.sender->GetName();
    if (name == L"navAccessories") m_aboutChosen = false;
    if (name == L"navAbout") m_aboutChosen = true;
    if (name == L"closeAnyway") m_wantsToEnd = true;
    if (name == L"keepOpen") ShowQuestion(false);
    ShowView();
}

void SettingsWindow::OnCancel(DuiLib::TNotifyUI&) { ShowQuestion(false); }

void SettingsWindow::AskToClose() {
    const kernel::UiTurn turn;
    if (m_channel.News().running.empty()) {
        m_wantsToEnd = true;
    } else {
        ShowQuestion(true);
    }
}

void SettingsWindow::ShowQuestion(bool shown) {
    CControlUI* const question = Find(L"closeQuestion");
    if (question->IsVisible() == shown) return;
    question->SetVisible(shown);
    m_manager.SetModal(shown ? question : nullptr);
    if (shown) m_manager.SetFocus(Find(L"keepOpen"));
}

// ---- For scripts

CControlUI* SettingsWindow::Find(std::wstring_view name) { return m_manager.FindControl(name); }

std::string SettingsWindow::MiddleOf(std::wstring_view name, DuiLib::CDuiPoint& middle) {
    ShowView();
    ApplyContentHeight();
    CControlUI* const control = Find(name);
    if (control == nullptr) return "no control has that name";
    if (!IsShown(control)) return "it is not shown";
    m_manager.EnsureVisible(*control);
    const DuiLib::CDuiRect place = control->GetPos();
    middle = {(place.left + place.right) / 2, (place.top + place.bottom) / 2};
    CControlUI* const hit = m_manager.FindControl(middle);
    if (hit == nullptr) return "its middle lies outside the window";
    return hit == control ? "" : "it is covered by \"" + base::Utf8FromWide(hit->GetName()) + "\"";
}

std::string SettingsWindow::Click(std::wstring_view name) {
    const kernel::UiTurn turn;
    DuiLib::CDuiPoint middle;
    std::string fault = MiddleOf(name, middle);
    if (!fault.empty()) return fault;
    m_manager.MouseMove(middle);
    m_manager.ButtonDown(middle);
    return m_manager.ButtonUp(middle) ? std::string() : "it cannot be clicked";
}

std::string SettingsWindow::Hover(std::wstring_view name) {
    const kernel::UiTurn turn;
    DuiLib::CDuiPoint middle;
    std::string fault = MiddleOf(name, middle);
    if (fault.empty()) m_manager.MouseMove(middle);
    return fault;
}

void SettingsWindow::SavePicture(const std::filesystem::path& file) {
    const kernel::UiTurn turn;
    DuiLib::PaintSurface picture;
    m_manager.Paint(picture);
    m_manager.InvalidateAll();  // a native window has its own picture
    picture.SavePng(file);
}

// ---- The page as text

namespace {

constexpr int kBarCells = 20;

// The labels of a row in the order of its tree.
enum RowLabel : std::size_t { kPicture, kName, kVersion, kInformation };

// A page's texts come from peers.
std::string Line(const CDuiString& text) { return base::OneLine(base::Utf8FromWide(text)); }

// What is shown below a control, by roles, in the order of the tree.
struct ShownParts {
    std::vector<CControlUI*> labels;
    CControlUI* button = nullptr;           // the first
    CContainerUI* progressGroup = nullptr;  // what holds a control with the role of progress; its labels stay its own

    std::string Text(std::size_t label) const {
        return label < labels.size() ? Line(labels[label]->GetText()) : std::string();
    }
};

CControlUI* FindProgress(CContainerUI& container) {
    for (int i = 0; i < container.GetCount(); ++i) {
        if (container.GetItemAt(i)->GetRole() == ControlRole::kProgress) return container.GetItemAt(i);
    }
    return nullptr;
}

// Adds the control and what is shown below it, but nothing of `except`.
void AddShown(ShownParts& parts, CControlUI* control, const CControlUI* except = nullptr) {
    if (control == except || !control->IsVisible()) return;
    if (control->GetRole() == ControlRole::kLabel) parts.labels.push_back(control);
    if (control->GetRole() == ControlRole::kButton && parts.button == nullptr) parts.button = control;
    auto* const container = dynamic_cast<CContainerUI*>(control);
    if (container == nullptr) return;
    if (FindProgress(*container) != nullptr) {
        parts.progressGroup = container;
        return;
    }
    for (int i = 0; i < container->GetCount(); ++i) AddShown(parts, container->GetItemAt(i), except);
}

std::string ToolTipOf(CControlUI* control) {
    if (control == nullptr || control->GetToolTip().IsEmpty()) return {};
    return "  (tip: " + Line(control->GetToolTip()) + ")";
}

std::string Bar(const ControlProgress& progress) {
    const int done = progress.whole == 0 ? 0 : kBarCells * progress.done / progress.whole;
    return "[" + std::string(static_cast<std::size_t>(done), '#') +
           std::string(static_cast<std::size_t>(kBarCells - done), '.') + "]";
}

// Two labels: the first is the frame of a bar that says something.
std::string ProgressText(CContainerUI& group) {
    ShownParts parts;
    for (int i = 0; i < group.GetCount(); ++i) AddShown(parts, group.GetItemAt(i));
    if (parts.labels.empty()) return {};
    const std::string bar = parts.labels.size() > 1 ? Bar(FindProgress(group)->GetProgress()) + " " : std::string();
    return bar + parts.Text(parts.labels.size() - 1) + ToolTipOf(parts.button);
}

std::string UpdateText(const ShownParts& row) {
    if (row.progressGroup != nullptr) return ProgressText(*row.progressGroup);
    if (row.button == nullptr) return {};
    return "<" + Line(row.button->GetText()) + ">" + ToolTipOf(row.button);
}

// The one text that has lines of its own.
std::string Indented(const CDuiString& text) {
    std::istringstream input(base::Utf8FromWide(text));
    std::string lines;
    for (std::string line; std::getline(input, line);) lines += "        " + base::OneLine(line) + "\n";
    return lines;
}

// Nothing of what lies between rows, nor of a row that has gone.
std::string RowText(CControlUI* item) {
    ShownParts row;
    if (item->GetRole() == ControlRole::kContainer) AddShown(row, item);
    if (row.labels.empty()) return {};
    std::string text = "    " + row.Text(kName) + " | " + row.Text(kVersion) + " | " + UpdateText(row) + "\n";
    for (std::size_t i = kInformation; i < row.labels.size(); ++i) text += Indented(row.labels[i]->GetText());
    return text;
}

}  // namespace

// What the module itself looks for by name is the list.
std::string SettingsWindow::PageText() {
    if (!IsShown(m_page)) return {};
    auto* const list = dynamic_cast<CContainerUI*>(Find(L"accessVer"));
    ShownParts headings;
    AddShown(headings, m_page, list);
    std::string text;
    for (std::size_t i = 0; i < headings.labels.size(); ++i) text += "  " + headings.Text(i) + "\n";
    if (list == nullptr || !IsShown(list)) return text;
    for (int i = 0; i < list->GetCount(); ++i) text += RowText(list->GetItemAt(i));
    return text;
}

bool IsShown(CControlUI* control) {
    for (; control != nullptr; control = control->GetParent()) {
        if (!control->IsVisible()) return false;
    }
    return true;
}

}  // namespace settings_host
