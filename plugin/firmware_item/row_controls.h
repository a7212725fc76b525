#pragma once

#include <string_view>

#include "duilib/control.h"

// Operations on a row's controls, any of which the layout may lack.
namespace DuiLib {

inline constexpr int kTextFont = 9;      // information, and texts of ended or failed updates
inline constexpr int kButtonFont = 102;  // button labels and percentages

inline constexpr int kFoldedHeight = 52;  // [design px] of a row without its information
inline constexpr int kFoldPadding = 24;   // [design px] around the information text

inline constexpr const wchar_t* kBindUpdate = L"bind='IDS_SETTING_ACCESSORIES_UPDATE'";
inline constexpr const wchar_t* kBindInstalling = L"bind='IDS_SETTING_ACCESSORIES_INSTALLING'";
inline constexpr const wchar_t* kBindInstallEnd = L"bind='IDS_SETTING_ACCESSORIES_INSTALL_END'";
inline constexpr const wchar_t* kBindResume = L"bind='IDS_ACCESSORIES_RESUME'";
inline constexpr const wchar_t* kBindRetry = L"bind='IDS_ACCESSORIES_RETRY'";

inline void SetAttribute(CControlUI* control, const wchar_t* name, std::wstring_view value) {
    if (control != nullptr) control->SetAttribute(name, value);
}

inline void SetVisible(CControlUI* control, bool visible) {
    if (control != nullptr) control->SetVisible(visible);
}

inline void SetText(CControlUI* control, std::wstring_view text) {
    if (control != nullptr) control->SetText(text);
}

inline void SetToolTip(CControlUI* control, std::wstring_view text) {
    if (control != nullptr) control->SetToolTip(text);
}

inline void SetFont(CControlUI* control, int font) {
    if (control != nullptr) control->SetFont(font);
}

// ---- Lengths (row_size.cpp)

// The toolkit's display scale as a divisor: 1.25 at 125 percent. Below 1.0 it becomes 100.0, not 1.0, on purpose.
float ScaleDivisor();

// Toward zero. A value that an int cannot hold becomes the smallest int, as the platform's conversion has it.
int Truncate(double value);

}  // namespace DuiLib
