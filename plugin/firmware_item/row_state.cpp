// What the row does with clicks and with messages of the update service.
//
//   from                       event                     check              actions                          to
//   idle                       click update button       companion runs     tip on the update button         idle
//   idle                       click update button       -                  progress look, start, notice downloading
//   downloading, installing    click stop button         none               SetResume: pause, end notice     paused
//   paused                     click stop button         companion runs     tip on the stop button           paused
//   paused                     click stop button         -                  SetResumeClick: start, notice downloading
//   any running state          failure                   progress there     SetRetryBtn: end notice          failed
//   failed                     click stop button         companion runs     tip on the stop button           failed
//   failed                     click stop button         -                  SetRetryClick, ControlRetry downloading
//   downloading                progress                  not paused         records and bar; 100: 1001 downloading,
//                                                                                                            installing
//   any                        update ended              progress, hor      SetFinishProcess                 finished
//   finished                   click stop button         none               SetResume, on purpose as while   paused
//                                                                           downloading
//
// Idle: the update button is shown. Paused: m_isPaused. Failed: m_needRetry, which is asked first. Installing: the
// record is 1001. Finished: the record is 2001. The flags are never reset together: a row that was paused and then
// failed is still paused after the retry.
#include "accessory_update_config/accessory_update_config.h"
#include "duilib/ui_culture.h"
#include "firmware_item/accessories_firware_wnd.h"
#include "firmware_item/row_controls.h"
#include "kernel/sleep.h"
#include "support/log_line.h"
#include "support/text.h"
#include "update_list/row_list.h"

namespace DuiLib {

namespace {
constexpr std::uint32_t kFinishedLookTime = 2000;  // [ms] the finished text stays at full height
constexpr int kFinishPadding = 24;                 // [design px] given back beside the row's own height
}  // namespace

void AccessoriesFirwareWnd::OnClick(TNotifyUI& message) {
    if (message.sender == nullptr || m_progress == nullptr) return;
    const std::wstring name = message.sender->GetName().Str();
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

    if (name == m_devKey + L"pulldown") ModifiyPullDownStatus();
    if (name == m_devKey + L"updateBtn") {
        LogLine(kLogDetail) << " updateBtn:" << m_devKey;
        RlushAccessries();
        BigDataReportSettingCenterUpdatePlugin(*this);
    }
    if (name == m_devKey + L"stopBtn") {
        if (m_needRetry) {
            retry();
        } else if (m_isPaused) {
            SetResumeClick();
        } else {
            SetResume();
        }
    }
}

// The second question is asked only when the first says yes.
bool AccessoriesFirwareWnd::IsCompanionRunning() const {
    return AccessoryUpdateConfig::IsAccessoryAppRunning(m_devKey) && AccessoryUpdateConfig::IsAccessoryApp(m_devKey);
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
    Resolve(kBindResume);
    SetText(m_progress, m_bindValue);
    SetFont(m_progress, kButtonFont);
    SetToolTip(m_stopBtn, m_bindValue);
    ControlDownload(m_devKey);
    SendUIPluginUpdateFinish(NarrowKey());
    m_isPaused = true;
}

void AccessoriesFirwareWnd::ControlDownload(const std::wstring& deviceKey) {
    if (m_paintManager == nullptr) return;
    PostPauseDownload(WideToAnsi(deviceKey));
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
    if (m_progressRecord == UPDATE_STATUS_INSTALLING) {
        Resolve(kBindInstalling);
        SetText(m_progress, m_bindValue);
    } else if (m_progressRecord == UPDATE_STATUS_INSTALLEND) {
        SetFont(m_progress, kTextFont);
        Resolve(kBindInstallEnd);
        SetText(m_progress, m_bindValue);
    } else {
        SetText(m_progress, m_progressRecord);
    }
    SetLook(m_progressLayout, {{L"pos", m_posRecord}});
}

void AccessoriesFirwareWnd::ControlRetry(const std::wstring& deviceKey) {
    LogLine(kLogDetail) << "control retry";
    const std::string key = WideToAnsi(deviceKey);
    PostStartDownload(key);
    SendUIPluginUpdate(key);
}

// The records stay: the bar is drawn empty, and SetRetryClick puts the last fill back.
void AccessoriesFirwareWnd::SetRetryBtn() {
    LogLine(kLogDetail) << "set retry btn";
    if (m_progress == nullptr) return;
    SendUIPluginUpdateFinish(NarrowKey());
    LogLine(kLogDetail) << "retry progress record: " << m_progressRecord;
    LogLine(kLogDetail) << "retry pos record: " << m_posRecord;
    m_needRetry = true;

    m_progress->SetFont(kTextFont);
    SetLook(m_progressLayout, {{L"width", std::to_wstring(m_barWidth)}, {L"pos", L"0,0,0,0"}, {L"bkround", L"28,28"}});
    SetLook(m_progressLabel, {{L"bordersize", L"0"}});
    SetLook(m_progress, {{L"textcolor", L"#FF0A59F7"},
                         {L"bkcolor", L"0C000000"},
                         {L"textcolor", L"#FF0A59F7"},  // once more, harmless
                         {L"bordersize", L"0"},
                         {L"bkround", L"28,28"}});
    SetLook(m_progressLayout, {{L"bordersize", L"0"}});
    Resolve(kBindRetry);
    m_progress->SetText(m_bindValue);
    SetToolTip(m_stopBtn, m_bindValue);
}

void AccessoriesFirwareWnd::SetRetryClick() {
    LogLine(kLogDetail) << "retry click progress record: " << m_progressRecord;
    LogLine(kLogDetail) << "retry click pos record: " << m_posRecord;
    SetLook(m_progress, {{L"textcolor", L"#FF191919"}, {L"bordersize", L"1"}, {L"bkcolor", L"00FFFFFF"}});
    SetLook(m_progressLabel, {{L"bordersize", L"1"}});
    SetLook(m_progressLayout, {{L"bkround", L"0,0"}});
    SetToolTip(m_stopBtn, L"");
    SetFont(m_progress, kButtonFont);
    RestoreProgress();
}

void AccessoriesFirwareWnd::SetFinishProcess() {
    LogLine(kLogDetail) << "set update btn finish";
    if (m_progress == nullptr || m_hor == nullptr) return;
    m_progressRecord = UPDATE_STATUS_INSTALLEND;
    ShowEndedLook();
    kernel::Sleep(kFinishedLookTime);
    CollapseRow();
    LeaveRowList();
    m_finishCallBack();
    SendUIPluginUpdateFinish(NarrowKey());
}

void AccessoriesFirwareWnd::ShowEndedLook() {
    DuiLib::SetVisible(m_progressLabel, false);
    m_progress->SetFont(kTextFont);
    SetLook(m_progressLayout, {{L"width", std::to_wstring(m_barWidth)}, {L"bkround", L"28,28"}});
    SetLook(m_progress,
            {{L"bkround", L"28,28"}, {L"bkcolor", L"0C000000"}, {L"textcolor", L"#FF0A59F7"}, {L"bordersize", L"0"}});
    SetLook(m_progressLayout, {{L"bordersize", L"0"}});
    Resolve(kBindInstallEnd);
    m_progress->SetText(m_bindValue);
    SetToolTip(m_stopBtn, m_bindValue);
}

void AccessoriesFirwareWnd::CollapseRow() {
    const int delta = Truncate(static_cast<float>(m_hor->GetHeight()) / ScaleDivisor()) + kFinishPadding;
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
