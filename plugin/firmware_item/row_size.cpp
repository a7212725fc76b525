// How wide the row's button and bar are, and how high the row is, folded and unfolded.
#include <algorithm>
#include <limits>

#include "duilib/resource_manager.h"
#include "firmware_item/accessories_firware_wnd.h"
#include "firmware_item/row_controls.h"
#include "support/log_line.h"

namespace DuiLib {

namespace {

constexpr int kMinLabelWidth = 72;    // [design px]
constexpr int kLabelPadding = 16;     // [design px] both sides together
constexpr int kMaxButtonWidth = 172;  // [design px]
constexpr int kAvailable = 9999;      // [design px] more than any label needs

constexpr double kUnfoldedBase = kFoldedHeight + kFoldPadding;  // [design px]

constexpr const wchar_t* kDownImage = L"file='drawable/Brindle/ic_down.png' reverse='true'";
constexpr const wchar_t* kUpImage = L"file='drawable/Brindle/ic_up.png' reverse='true'";

}  // namespace

float ScaleDivisor() {
    const float scale = static_cast<float>(CResourceManager::GetInstance()->GetScale()) / 100.0f;
    return scale < 1.0f ? 100.0f : scale;
}

int Truncate(double value) {
    using Limits = std::numeric_limits<int>;
    const bool fits = value > Limits::min() - 1.0 && value < Limits::max() + 1.0;
    return fits ? static_cast<int>(value) : Limits::min();
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
        SetAttribute(control, L"width", width);
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

void AccessoriesFirwareWnd::ShowDevInfo(bool visible) {
    m_devInfoText->SetVisible(visible);
    m_divider->SetVisible(visible);
}

void AccessoriesFirwareWnd::SetFolded(bool folded) {
    ShowDevInfo(!folded);
    m_pulldown->SetAttribute(L"normalimage", folded ? kDownImage : kUpImage);
}

void AccessoriesFirwareWnd::SetFoldedHeight() {
    m_hor->SetFixedHeight(kFoldedHeight);
    if (m_ver != nullptr) m_ver->SetFixedHeight(kFoldedHeight);
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
    SetFolded(fold);
    if (fold) {
        m_rowHeight = Truncate(static_cast<float>(m_rowHeight - kFoldPadding) - information);
        SetFoldedHeight();
    } else {
        m_rowHeight = Truncate(static_cast<float>(m_rowHeight + kFoldPadding) + information);
        const int height = Truncate(scale * kUnfoldedBase + m_devInfoHeight);  // [device px]
        m_hor->SetFixedHeightInPixels(height);
        if (m_ver != nullptr) m_ver->SetFixedHeightInPixels(height);
    }
    m_heightCallBack(Truncate(information + static_cast<double>(kFoldPadding)), !fold, false);
}

void AccessoriesFirwareWnd::UpdateDownloadForm() {
    if (m_pulldown == nullptr || m_hor == nullptr || m_devInfoText == nullptr || m_divider == nullptr) return;
    SetFolded(true);
    // Without the 24 pixels that the pull-down takes off, on purpose.
    m_rowHeight = Truncate(static_cast<float>(m_rowHeight) - static_cast<float>(m_devInfoHeight) / ScaleDivisor());
    SetFoldedHeight();
    LogLine(kLogDetail) << " reduce hor :" << m_hor->GetHeight();
}

}  // namespace DuiLib
