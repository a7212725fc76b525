#pragma once

#include "firmware_item/row_controls.h"

// What a row's controls show in each phase, as data: a look is a table of calls in the order in which they are made.
// AccessoriesFirwareWnd::Show makes them (row_looks.cpp).
//
//   phase         update button   progress group                         text
//   offered       visible         hidden, as the layout has it           -
//   downloading   hidden          bordered label, white layer over the   percentage
//                                 part not yet done
//   paused        hidden          unchanged                              resume text
//   installing    hidden          layer over the whole, round            installing text, white on blue
//   ended         hidden          layer over the whole, round            end text
//   failed        hidden          empty, round                           retry text
namespace DuiLib {

// What a row is doing. AccessoriesFirwareWnd::Phase tells it from the flags.
enum class RowPhase { kOffered, kDownloading, kPaused, kInstalling, kEnded, kFailed };

// The controls that looks change.
enum class RowControl { kUpdateBtn, kStopBtn, kProgress, kProgressLayout, kProgressBtn, kProgressLabel };

// One call on one control. A control that the layout lacks is passed over.
struct LookStep {
    enum class Call {
        kSetAttribute,  // `attribute` := `value`
        kSetWidth,      // "width" := the bar's width
        kSetPos,        // "pos" := the record of the fill
        kSetFont,
        kShow,
        kHide,
        kSetText,     // the text of the reference `value` becomes the control's
        kTipTheSame,  // the tool tip says what kSetText set last
        kTipNothing
    };

    RowControl control;
    Call call;
    const wchar_t* attribute = nullptr;
    const wchar_t* value = nullptr;
    int font = 0;
};

namespace RowLook {

inline constexpr RowControl kProgress = RowControl::kProgress;
inline constexpr RowControl kLayout = RowControl::kProgressLayout;
inline constexpr RowControl kLabel = RowControl::kProgressLabel;
inline constexpr RowControl kStop = RowControl::kStopBtn;

inline constexpr const wchar_t* kBlue = L"#FFA8B9FC";

constexpr LookStep Set(RowControl control, const wchar_t* attribute, const wchar_t* value) {
    return {control, LookStep::Call::kSetAttribute, attribute, value};
}
constexpr LookStep Width(RowControl control) { return {control, LookStep::Call::kSetWidth}; }
constexpr LookStep Pos(RowControl control) { return {control, LookStep::Call::kSetPos}; }
constexpr LookStep Font(RowControl control, int font) {
    return {control, LookStep::Call::kSetFont, nullptr, nullptr, font};
}
constexpr LookStep Show(RowControl control) { return {control, LookStep::Call::kShow}; }
constexpr LookStep Hide(RowControl control) { return {control, LookStep::Call::kHide}; }
constexpr LookStep Text(const wchar_t* bindText) { return {kProgress, LookStep::Call::kSetText, nullptr, bindText}; }
constexpr LookStep TipTheSame() { return {kStop, LookStep::Call::kTipTheSame}; }
constexpr LookStep TipNothing() { return {kStop, LookStep::Call::kTipNothing}; }

// An update begins: the progress group takes the update button's place.
inline constexpr LookStep kStarted[] = {
    Hide(RowControl::kUpdateBtn), Show(kLayout), Show(RowControl::kProgressBtn), Show(kLabel), Show(kProgress),
};

// At every percentage, also at one that a paused row does not show.
inline constexpr LookStep kAnyPercentage[] = {Set(kLabel, L"borderfillcolor", kBlue)};

inline constexpr LookStep kDownloading[] = {
    Font(kProgress, kButtonFont),
    Set(kProgress, L"textcolor", L"#FF191919"),
    Set(kProgress, L"bordersize", L"1"),
    Set(kProgress, L"bkcolor", L"00FFFFFF"),
    Set(kLabel, L"bordersize", L"1"),
    Set(kLayout, L"bkround", L"0,0"),
    Pos(kLayout),
    Set(kLayout, L"bkcolor", L"#FFFFFFFF"),
};

inline constexpr LookStep kPaused[] = {Text(kBindResume), Font(kProgress, kButtonFont), TipTheSame()};

// A percentage that comes while the row is paused.
inline constexpr LookStep kStillPaused[] = {Text(kBindResume)};

// On top of the downloading look.
inline constexpr LookStep kInstalling[] = {
    Hide(kLabel),
    Width(kLayout),
    Set(kProgress, L"bkround", L"28,28"),
    Set(kLayout, L"bkround", L"28,28"),
    Set(kProgress, L"bkcolor", kBlue),
    Set(kProgress, L"textcolor", L"#FFFFFFFF"),
    Set(kProgress, L"bordersize", L"0"),
    Set(kLayout, L"bordersize", L"0"),
    Text(kBindInstalling),
    TipTheSame(),
};

inline constexpr LookStep kEnded[] = {
    Hide(kLabel),
    Font(kProgress, kTextFont),
    Width(kLayout),
    Set(kLayout, L"bkround", L"28,28"),
    Set(kProgress, L"bkround", L"28,28"),
    Set(kProgress, L"bkcolor", L"0C000000"),
    Set(kProgress, L"textcolor", L"#FF0A59F7"),
    Set(kProgress, L"bordersize", L"0"),
    Set(kLayout, L"bordersize", L"0"),
    Text(kBindInstallEnd),
    TipTheSame(),
};

inline constexpr LookStep kFailed[] = {
    Font(kProgress, kTextFont),
    Width(kLayout),
    Set(kLayout, L"pos", L"0,0,0,0"),
    Set(kLayout, L"bkround", L"28,28"),
    Set(kLabel, L"bordersize", L"0"),
    Set(kProgress, L"textcolor", L"#FF0A59F7"),
    Set(kProgress, L"bkcolor", L"0C000000"),
    Set(kProgress, L"textcolor", L"#FF0A59F7"),  // once more, on purpose
    Set(kProgress, L"bordersize", L"0"),
    Set(kProgress, L"bkround", L"28,28"),
    Set(kLayout, L"bordersize", L"0"),
    Text(kBindRetry),
    TipTheSame(),
};

// A retry takes the failed look away; text and fill come back from the records.
inline constexpr LookStep kRetried[] = {
    Set(kProgress, L"textcolor", L"#FF191919"),
    Set(kProgress, L"bordersize", L"1"),
    Set(kProgress, L"bkcolor", L"00FFFFFF"),
    Set(kLabel, L"bordersize", L"1"),
    Set(kLayout, L"bkround", L"0,0"),
    TipNothing(),
    Font(kProgress, kButtonFont),
};

// What a resume or a retry puts back where the record is a state and no percentage.
inline constexpr LookStep kInstallingAgain[] = {Text(kBindInstalling)};
inline constexpr LookStep kEndedAgain[] = {Font(kProgress, kTextFont), Text(kBindInstallEnd)};

}  // namespace RowLook

}  // namespace DuiLib
