#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "duilib/duilib.h"
#include "host_channel.h"
#include "module_loader/page_module.h"
#include "sleep_inhibitor.h"

namespace settings_host {

// The host's window as a model: the list of pages, the header, and the accessory page in a scroll area that is as high
// as the height messages say. A native window may show it. All operations take the UI turn themselves unless they say
// that the caller holds it.
class SettingsWindow : private DuiLib::CNotifyPump {
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    static constexpr DuiLib::CDuiSize kSize{880, 600};      // [design px] at first
    static constexpr DuiLib::CDuiSize kSmallest{840, 400};  // [design px]

    // Throws std::runtime_error when the window's layout file cannot be built.
    SettingsWindow(const PageModule& module, HostChannel& channel, SleepInhibitor& inhibitor);
    ~SettingsWindow();  // closes the page

    void Open();   // CreateSetting
    void Close();  // CloseWnd, then the page's controls go
    bool IsOpen() const { return m_open; }

    // Shows what the page, its messages and the pipe say now; must not be called under the UI turn. Returns when to
    // look again although nothing happened.
    std::optional<TimePoint> ApplyNews(TimePoint now);

    // The user wants to close the window: asks first while an update runs.
    void AskToClose();
    bool WantsToEnd() const { return m_wantsToEnd; }

    // Presses the control as a pointer would: its middle, what lies there, press and release; or only moves there.
    // Returns what went wrong as text, empty when nothing did.
    std::string Click(std::wstring_view name);
    std::string Hover(std::wstring_view name);

    // Paints the window into a PNG file. Throws std::runtime_error, naming the file.
    void SavePicture(const std::filesystem::path& file);

    // The page as a person would read it: title, then a line a row with its name, version, button or bar, and tool tip;
    // the information text below, when it is opened. UTF-8, lines end with a line feed; empty when nothing is shown.
    // Under the UI turn.
    std::string PageText();

    // Under the UI turn. Null when no control has the name.
    DuiLib::CControlUI* Find(std::wstring_view name);
    DuiLib::CContainerUI& Page() { return *m_page; }
    DuiLib::CPaintManagerUI& Manager() { return m_manager; }

private:
    enum class View { kSearching, kList, kUpToDate, kAbout };

    const DuiLib::DUI_MSGMAP* GetMessageMap() const override;
    void OnClick(DuiLib::TNotifyUI& message) override;
    void OnCancel(DuiLib::TNotifyUI& message);

    View CurrentView();
    void ShowView();
    bool ShowRunning();  // whether an update runs
    std::optional<TimePoint> ShowReachability(TimePoint now);
    void ApplyContentHeight();
    int HeadingHeight();  // [design px] as laid out; 0 without a list
    bool ListIsEmpty();
    void ShowQuestion(bool shown);
    std::string MiddleOf(std::wstring_view name, DuiLib::CDuiPoint& middle);

    const PageModule& m_module;
    HostChannel& m_channel;
    SleepInhibitor& m_inhibitor;
    bool m_open = false;
    bool m_aboutChosen = false;
    bool m_wantsToEnd = false;
    int m_appliedHeight = 0;  // [design px]
    std::optional<TimePoint> m_unreachableSince;
    DuiLib::CPaintManagerUI m_manager;
    DuiLib::CContainerUI* m_page = nullptr;  // owned by the manager's tree
};

// Whether a control and everything around it is visible. Under the UI turn.
bool IsShown(DuiLib::CControlUI* control);

}  // namespace settings_host
