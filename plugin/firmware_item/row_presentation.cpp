// How the row looks: button and bar width, download and installing looks, the pull-down.
//
//   state         update button   progress group                         text
//   offered       visible         hidden                                 -
//   downloading   hidden          bordered label, white layer over the   percentage
//                                 part not yet done
//   paused        hidden          unchanged                              resume text
//   installing    hidden          layer over the whole, round            installing text, white on blue
#include <algorithm>

#include "duilib/resource_manager.h"
#include "duilib/ui_culture.h"
#include "firmware_item/accessories_firware_wnd.h"
#include "firmware_item/row_controls.h"
#include "support/log_line.h"

namespace DuiLib {

namespace {

constexpr int kMinLabelWidth = 72;      // [design px]
constexpr int kLabelPadding = 16;       // [design px] both sides together
constexpr int kMaxButtonWidth = 172;    // [design px]
constexpr int kAvailable = 9999;        // [design px] more than any label needs
constexpr int kFoldedHeight = 52;       // [design px]
constexpr int kFoldPadding = 24;        // [design px] around the information text
constexpr double kUnfoldedBase = 76.0;  // [design px] kFoldedHeight + kFoldPadding

constexpr const wchar_t* kDownImage = L"file='drawable/Brindle/ic_down.png' reverse='true'";
constexpr const wchar_t* kUpImage = L"file='drawable/Brindle/ic_up.png' reverse='true'";
constexpr const wchar_t* kFillColor = L"#FFA8B9FC";

}  // namespace

void AccessoriesFirwareWnd::Resolve(std::wstring_view bindText) {
    m_bindText = bindText;
    m_bindValue = UICulture::GetInstance()->GetBindString(m_bindText);
}

bool AccessoriesFirwareWnd::HasName(CControlUI* control, const wchar_t* suffix) const {
    return control->GetName() == m_devKey + suffix;
}

void AccessoriesFirwareWnd::InitUpdateButton() {
    if (m_paintManager == nullptr) return;
    m_updateBtnText = m_paintManager->FindControl(L"updateBtnText");
    if (m_updateBtnText == nullptr) return;
    m_updateBtnText->SetFont(kButtonFont);
    m_barWidth = std::min(WidestLabel() + kLabelPadding, kMaxButtonWidth);
    LogLine(kLogDetail) << "setting upgrade update button width: " << m_barWidth;
    const std::wstring width = std::to_wstring(m_barWidth);
    for (CControlUI* const control :
         {m_updateBtn, m_progressLayout, m_progressBtn, m_progressLabel, m_progress, m_stopBtn}) {
        SetLook(control, {{L"width", width}});
    }
}

int AccessoriesFirwareWnd::WidestLabel() {
    CResourceManager* const resources = CResourceManager::GetInstance();
    const CDuiSize available = resources->Scale(CDuiSize{kAvailable, kAvailable}, m_paintManager);
    int widest = kMinLabelWidth;
    for (const wchar_t* const label : {kBindInstallEnd, kBindInstalling, kBindUpdate, kBindResume, kBindRetry}) {
        Resolve(label);
        m_updateBtnText->SetText(m_bindValue);
        const int width = m_updateBtnText->GetTextRect(available).Width();
        widest = std::max(widest, resources->RestoreScale(width, m_paintManager));
    }
    return widest;
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
    if (HasName(m_updateBtn, L"updateBtn")) {
        m_updateBtn->SetVisible(false);
        for (CControlUI* const control : {m_progressLayout, m_progressBtn, m_progressLabel, m_progress}) {
            DuiLib::SetVisible(control, true);
        }
    }
    if (HasName(m_progress, L"progress")) {
        m_progress->SetText(UICulture::GetInstance()->GetPercentString(0));
        m_progress->SetVisible(true);
    }
    if (HasName(m_stopBtn, L"stopBtn")) m_stopBtn->SetVisible(true);
    const std::string key = NarrowKey();
    PostStartDownload(key);
    SendUIPluginUpdate(key);
}

void AccessoriesFirwareWnd::ShowDownloadProgress(int percent) {
    SetLook(m_progressLabel, {{L"borderfillcolor", kFillColor}});
    if (m_paintManager == nullptr || m_progress == nullptr) return;
    m_percent = percent;
    if (m_isPaused) {
        Resolve(kBindResume);
        m_progress->SetText(m_bindValue);
        return;
    }
    const CDuiString text = UICulture::GetInstance()->GetPercentString(percent);
    m_progressRecord = text.Str();
    ShowDownloadLook(percent, text);
    if (percent >= 100) ShowInstallingLook();
}

void AccessoriesFirwareWnd::ShowDownloadLook(int percent, const CDuiString& text) {
    m_progress->SetFont(kButtonFont);
    SetLook(m_progress, {{L"textcolor", L"#FF191919"}, {L"bordersize", L"1"}, {L"bkcolor", L"00FFFFFF"}});
    SetLook(m_progressLabel, {{L"bordersize", L"1"}});
    const int fill = Truncate(percent / 100.0 * m_barWidth);
    m_posRecord = std::to_wstring(fill) + L",0," + std::to_wstring(m_barWidth) + L",0";
    SetLook(m_progressLayout, {{L"bkround", L"0,0"}, {L"pos", m_posRecord}, {L"bkcolor", L"#FFFFFFFF"}});
    m_progress->SetText(text);
}

void AccessoriesFirwareWnd::ShowInstallingLook() {
    m_progressRecord = UPDATE_STATUS_INSTALLING;
    DuiLib::SetVisible(m_progressLabel, false);
    SetLook(m_progressLayout, {{L"width", std::to_wstring(m_barWidth)}});
    SetLook(m_progress, {{L"bkround", L"28,28"}});
    SetLook(m_progressLayout, {{L"bkround", L"28,28"}});
    SetLook(m_progress, {{L"bkcolor", kFillColor}, {L"textcolor", L"#FFFFFFFF"}, {L"bordersize", L"0"}});
    SetLook(m_progressLayout, {{L"bordersize", L"0"}});
    Resolve(kBindInstalling);
    m_progress->SetText(m_bindValue);
    DuiLib::SetToolTip(m_stopBtn, m_bindValue);
    m_isInstalling = true;
}

void AccessoriesFirwareWnd::ShowDevInfo(bool visible) {
    m_devInfoText->SetVisible(visible);
    m_divider->SetVisible(visible);
}

void AccessoriesFirwareWnd::ModifiyPullDownStatus() {
    if (m_paintManager == nullptr || m_hor == nullptr || m_pulldown == nullptr || m_devInfoText == nullptr ||
        m_divider == nullptr) {
        return;
    }
    LogLine(kLogDetail) << " devHeight :" << m_devInfoHeight;
    const float scale = ScaleDivisor();
    const float information = static_cast<float>(m_devInfoHeight) / scale;  // [design px]
    const bool fold = m_devInfoText->IsVisible();
    ShowDevInfo(!fold);
    m_pulldown->SetAttribute(L"normalimage", fold ? kDownImage : kUpImage);
    if (fold) {
        m_rowHeight = Truncate(static_cast<float>(m_rowHeight - kFoldPadding) - information);
        m_hor->SetFixedHeight(kFoldedHeight);
        if (m_ver != nullptr) m_ver->SetFixedHeight(kFoldedHeight);
    } else {
        m_rowHeight = Truncate(static_cast<float>(m_rowHeight + kFoldPadding) + information);
        const int height = Truncate(scale * kUnfoldedBase + m_devInfoHeight);
        m_hor->SetFixedHeightInPixels(height);
        if (m_ver != nullptr) m_ver->SetFixedHeightInPixels(height);
    }
    m_heightCallBack(Truncate(information + static_cast<double>(kFoldPadding)), !fold, false);
}

void AccessoriesFirwareWnd::UpdateDownloadForm() {
    if (m_pulldown == nullptr || m_hor == nullptr || m_devInfoText == nullptr || m_divider == nullptr) return;
    ShowDevInfo(false);
    m_pulldown->SetAttribute(L"normalimage", kDownImage);
    // Without the 24 pixels that the pull-down takes off, on purpose.
    m_rowHeight = Truncate(static_cast<float>(m_rowHeight) - static_cast<float>(m_devInfoHeight) / ScaleDivisor());
    m_hor->SetFixedHeight(kFoldedHeight);
    if (m_ver != nullptr) m_ver->SetFixedHeight(kFoldedHeight);
    LogLine(kLogDetail) << " reduce hor :" << m_hor->GetHeight();
}

}  // namespace DuiLib
