// What the row does with clicks and with messages of the update service.
//
//   phase                      event                     check              actions                          to
//   offered                    click update button       companion runs     tip on the update button         offered
//   offered                    click update button       -                  progress look, start, notice downloading
//   downloading, installing    click stop button         none               SetResume: pause, end notice     paused
//   paused                     click stop button         companion runs     tip on the stop button           paused
//   paused                     click stop button         -                  SetResumeClick: start, notice downloading
//   any running state          failure                   progress there     SetRetryBtn: end notice          failed
//   failed                     click stop button         companion runs     tip on the stop button           failed
//   failed                     click stop button         -                  SetRetryClick, ControlRetry downloading
//   downloading                progress                  not paused         records and bar; 100: 1001 downloading,
//                                                                                                            installing
//   any                        update ended              progress, hor      SetFinishProcess                 ended
//   ended                      click stop button         none               SetResume, on purpose as while   paused
//                                                                           downloading
//
// AccessoriesFirwareWnd::Phase tells the phase, kClicks what a click asks for in it, row_looks.h how it looks. The
// flags are never reset together: a row that was paused and then failed is still paused after the retry.
#include <iterator>

#include "accessory_update_config/accessory_update_config.h"
#include "duilib/ui_culture.h"
#include "firmware_item/accessories_firware_wnd.h"
#include "firmware_item/row_looks.h"
#include "kernel/code_pages.h"
#include "kernel/sleep.h"
#include "support/log_line.h"
#include "update_list/row_list.h"

namespace DuiLib {

enum class RowAction { kNone, kFold, kStart, kPause, kResume, kRetry };

namespace {

constexpr std::uint32_t kEndedLookTime = 2000;  // [ms] the end text stays at full height

// What a click on a control asks for.
struct Click {
    const wchar_t* control;  // its name behind the device key
    RowAction byPhase[6];    // in the order of RowPhase
};

using enum RowAction;

constexpr Click kClicks[] = {
    // control     offered downloading paused installing ended  failed
    {L"pulldown", {kFold, kFold, kFold, kFold, kFold, kFold}},
    {L"updateBtn", {kStart, kStart, kStart, kStart, kStart, kStart}},
    {L"stopBtn", {kPause, kPause, kResume, kPause, kPause, kRetry}},
};

static_assert(std::size(kClicks[0].byPhase) == static_cast<std::size_t>(RowPhase::kFailed) + 1);

}  // namespace

// A failure is asked for first: a row may be paused besides.
RowPhase AccessoriesFirwareWnd::Phase() const {
    if (m_needRetry) return RowPhase::kFailed;
    return m_isPaused ? RowPhase::kPaused : RecordedPhase();
}

// The phase without regard to pause and failure.
RowPhase AccessoriesFirwareWnd::RecordedPhase() const {
    if (m_progressRecord == UPDATE_STATUS_INSTALLING) return RowPhase::kInstalling;
    if (m_progressRecord == UPDATE_STATUS_INSTALLEND) return RowPhase::kEnded;
    const bool offered = m_updateBtn != nullptr && m_updateBtn->IsVisible();
    return offered ? RowPhase::kOffered : RowPhase::kDownloading;
}

RowAction AccessoriesFirwareWnd::ActionOfClick(const std::wstring& control) const {
    for (const Click& click : kClicks) {
        if (control == m_devKey + click.control) return click.byPhase[static_cast<std::size_t>(Phase())];
    }
    return kNone;
}

void AccessoriesFirwareWnd::OnClick(TNotifyUI& message) {
    if (message.sender == nullptr || m_progress == nullptr) return;
    if (!(message.type == kNotifyClick)) return;

    const auto retry = [this] {
        LogLine(kLogDetail) << "update retry";
        if (IsCompanionRunning()) {
            LogLine(kLogDetail) << "app running update: " << m_devKey;
            AppRunningTipStopBtn();
            return;
        }
        SetRetryClick();
        ControlRetry(m_devKey);
        m_needRetry = false;
    };

    switch (ActionOfClick(message.sender->GetName().Str())) {
        case kFold:
            return ModifiyPullDownStatus();
        case kStart:
            LogLine(kLogDetail) << " updateBtn:" << m_devKey;
            RlushAccessries();
            return BigDataReportSettingCenterUpdatePlugin(*this);
        case kPause:
            return SetResume();
        case kResume:
            return SetResumeClick();
        case kRetry:
            return retry();
        case kNone:
            return;
    }
}

// The second question is asked only when the first says yes.
bool AccessoriesFirwareWnd::IsCompanionRunning() const {
    return AccessoryUpdateConfig::IsAccessoryAppRunning(m_devKey) && AccessoryUpdateConfig::IsAccessoryApp(m_devKey);
}

std::string AccessoriesFirwareWnd::NarrowKey() const { return kernel::AnsiFromWide(m_devKey); }

bool AccessoriesFirwareWnd::HasName(CControlUI* control, const wchar_t* suffix) const {
    return control->GetName() == m_devKey + suffix;
}

void AccessoriesFirwareWnd::RlushAccessries() {
    if (m_paintManager == nullptr || m_updateBtn == nullptr || m_progress == nullptr || m_stopBtn == nullptr) {
        LogLine(kLogDetail) << " paintManager wrong nullptr";  // no kLogEvent, on purpose
        return;
    }
    if (IsCompanionRunning()) {
        LogLine(kLogDetail) << "app running update: " << m_devKey;
        AppRunningTipUpdateBtn();
        return;
    }
    if (HasName(m_updateBtn, L"updateBtn")) Show(RowLook::kStarted);
    if (HasName(m_progress, L"progress")) {
        m_progress->SetText(UICulture::GetInstance()->GetPercentString(0));
        m_progress->SetVisible(true);
    }
    if (HasName(m_stopBtn, L"stopBtn")) m_stopBtn->SetVisible(true);
    const std::string key = NarrowKey();
    PostStartDownload(key);
    SendUIPluginUpdate(key);
}

void AccessoriesFirwareWnd::PostPauseDownload(const std::string& deviceKey) {
    Post(m_ipcClient, channel::from_page::IPC_MSG_DOWNLOAD_PAUSE, {deviceKey});
}

void AccessoriesFirwareWnd::PostStartDownload(const std::string& deviceKey) {
    Post(m_ipcClient, channel::from_page::IPC_MSG_DOWNLOAD_START, {deviceKey});
}

void AccessoriesFirwareWnd::SetResume() {
    LogLine(kLogDetail) << "resume progress record: " << m_progressRecord;
    LogLine(kLogDetail) << "resume pos record: " << m_posRecord;
    Show(RowLook::kPaused);
    ControlDownload(m_devKey);
    SendUIPluginUpdateFinish(NarrowKey());
    m_isPaused = true;
}

void AccessoriesFirwareWnd::ControlDownload(const std::wstring& deviceKey) {
    if (m_paintManager == nullptr) return;
    PostPauseDownload(kernel::AnsiFromWide(deviceKey));
    if (m_downloadControlled) return;
    CControlUI* const control = m_paintManager->FindControl(deviceKey);
    if (control == nullptr) {
        LogLine(kLogDetail) << "ControlDownload : progress wrong nullpter";  // misspelt on purpose
        return;
    }
    Resolve(kBindResume);
    control->SetText(m_bindValue);
}

void AccessoriesFirwareWnd::SetResumeClick() {
    if (IsCompanionRunning()) {
        LogLine(kLogDetail) << "app running update: " << m_devKey;
        AppRunningTipStopBtn();
        return;
    }
    LogLine(kLogDetail) << "resume click progress record: " << m_progressRecord;
    LogLine(kLogDetail) << "resume click pos record: " << m_posRecord;
    SetFont(m_progress, kButtonFont);
    if (m_progressRecord == UPDATE_STATUS_INSTALLEND) {
        LogLine(kLogDetail) << "SetResumeClick:progressRecordStr is UPDATE_STATUS_INSTALLEND";
    }
    RestoreProgress();
    const std::string key = NarrowKey();
    PostStartDownload(key);
    SendUIPluginUpdate(key);
    SetToolTip(m_stopBtn, L"");
    m_isPaused = false;
}

// Text and bar from the records.
void AccessoriesFirwareWnd::RestoreProgress() {
    const RowPhase recorded = RecordedPhase();
    if (recorded == RowPhase::kInstalling) {
        Show(RowLook::kInstallingAgain);
    } else if (recorded == RowPhase::kEnded) {
        Show(RowLook::kEndedAgain);
    } else {
        SetText(m_progress, m_progressRecord);
    }
    SetAttribute(m_progressLayout, L"pos", m_posRecord);
}

void AccessoriesFirwareWnd::ControlRetry(const std::wstring& deviceKey) {
    LogLine(kLogDetail) << "control retry";
    const std::string key = kernel::AnsiFromWide(deviceKey);
    PostStartDownload(key);
    SendUIPluginUpdate(key);
}

void AccessoriesFirwareWnd::ShowDownloadProgress(int percent) {
    Show(RowLook::kAnyPercentage);
    if (m_paintManager == nullptr || m_progress == nullptr) return;
    m_percent = percent;
    if (m_isPaused) return Show(RowLook::kStillPaused);  // whether it has failed since or not
    const CDuiString text = UICulture::GetInstance()->GetPercentString(percent);
    m_progressRecord = text.Str();
    const int fill = Truncate(percent / 100.0 * m_barWidth);
    m_posRecord = std::to_wstring(fill) + L",0," + std::to_wstring(m_barWidth) + L",0";
    Show(RowLook::kDownloading);
    m_progress->SetText(text);
    if (percent < 100) return;
    m_progressRecord = UPDATE_STATUS_INSTALLING;
    Show(RowLook::kInstalling);
    m_isInstalling = true;
}

// The records stay: the bar is drawn empty, and SetRetryClick puts the last fill back.
void AccessoriesFirwareWnd::SetRetryBtn() {
    LogLine(kLogDetail) << "set retry btn";
    if (m_progress == nullptr) return;
    SendUIPluginUpdateFinish(NarrowKey());
    LogLine(kLogDetail) << "retry progress record: " << m_progressRecord;
    LogLine(kLogDetail) << "retry pos record: " << m_posRecord;
    m_needRetry = true;
    Show(RowLook::kFailed);
}

void AccessoriesFirwareWnd::SetRetryClick() {
    LogLine(kLogDetail) << "retry click progress record: " << m_progressRecord;
    LogLine(kLogDetail) << "retry click pos record: " << m_posRecord;
    Show(RowLook::kRetried);
    RestoreProgress();
}

void AccessoriesFirwareWnd::SetFinishProcess() {
    LogLine(kLogDetail) << "set update btn finish";
    if (m_progress == nullptr || m_hor == nullptr) return;
    m_progressRecord = UPDATE_STATUS_INSTALLEND;
    Show(RowLook::kEnded);
    kernel::Sleep(kEndedLookTime);
    CollapseRow();
    LeaveRowList();
    m_finishCallBack();
    SendUIPluginUpdateFinish(NarrowKey());
}

void AccessoriesFirwareWnd::CollapseRow() {
    const int delta = Truncate(static_cast<float>(m_hor->GetHeight()) / ScaleDivisor()) + kFoldPadding;
    m_heightCallBack(delta, false, false);
    m_hor->SetVisible(false);
}

// Takes this row and its neighbour, normally a separator, out of the page's list; the last row takes the title along.
void AccessoriesFirwareWnd::LeaveRowList() {
    const std::size_t own = FindRowEntry(m_rowName);
    const std::size_t count = g_updateItemList.size();
    if (own == count) return;
    if (count == 1) {
        RemoveRowEntries(m_rowName);
        CControlUI* const title =
            m_paintManager == nullptr ? nullptr : m_paintManager->FindControl(L"DeviceUpdateTitle");
        DuiLib::SetVisible(title, false);
        return;
    }
    const std::wstring neighbour = g_updateItemList[own + 1 == count ? own - 1 : own + 1].first;
    CControlUI* const control = m_paintManager == nullptr ? nullptr : m_paintManager->FindControl(neighbour);
    if (control == nullptr) return;
    control->SetVisible(false);
    RemoveRowEntries(neighbour);
    RemoveRowEntries(m_rowName);
}

}  // namespace DuiLib
