#include "duilib/window.h"

#include <algorithm>
#include <cmath>

#include "duilib/resource_manager.h"
#include "kernel/ui_turn.h"
#include "window/native_window.h"

namespace DuiLib {

using std::chrono::milliseconds;

// ---- CWindowWnd

bool CWindowWnd::HasDisplay(std::string& reason) { return NativeWindow::HasDisplay(reason); }

CWindowWnd::CWindowWnd(CPaintManagerUI& manager, const WindowOptions& options)
    : m_native(NativeWindow::Open(manager, options)) {
    kernel::UiTurn turn;
    manager.SetWakeUp([this] { WakeUp(); });
}

CWindowWnd::~CWindowWnd() {
    kernel::UiTurn turn;
    m_native->manager.SetWakeUp({});
}

void CWindowWnd::RunOnce(std::optional<milliseconds> limit) {
    {
        kernel::UiTurn turn;
        m_native->Paint();
    }
    m_native->WaitAndHandle(limit);
}

void CWindowWnd::WakeUp() { m_native->WakeUp(); }
void CWindowWnd::SetCloseHandler(std::function<void()> handler) { m_native->closeHandler = std::move(handler); }
void CWindowWnd::SetTitle(const std::string& title) { m_native->SetTitle(title); }
CDuiPoint CWindowWnd::GetOrigin() const { return m_native->Origin(); }

// ---- NativeWindow

void NativeWindow::Paint() {
    const auto now = std::chrono::steady_clock::now();
    manager.Tick(now);
    const std::vector<CDuiRect> areas = manager.Paint(surface);
    m_nextTick = manager.NextTick(now);
    if (!areas.empty() && !Show(areas)) surface = {};  // the next painting is whole
}

void NativeWindow::AskToClose() {
    if (closeHandler) closeHandler();
}

void NativeWindow::FollowScale(unsigned displayScale) {
    CResourceManager::GetInstance()->SetScale(options.scale.value_or(displayScale));
}

std::optional<milliseconds> NativeWindow::WaitTime(std::optional<milliseconds> limit) const {
    return TimeToWait(limit, m_nextTick, std::chrono::steady_clock::now());
}

std::optional<milliseconds> TimeToWait(std::optional<milliseconds> limit,
                                       std::optional<CPaintManagerUI::TimePoint> nextTick,
                                       CPaintManagerUI::TimePoint now) {
    std::optional<milliseconds> time = limit;
    if (nextTick) {
        const auto left = std::chrono::ceil<milliseconds>(*nextTick - now);
        time = std::min(left, time.value_or(left));
    }
    if (time) time = std::max(*time, milliseconds(0));
    return time;
}

// A key that is held down moves and scrolls again and again, but presses once; with Ctrl, Alt or the like it means
// something else.
std::optional<DuiKey> MeaningOf(std::optional<DuiKey> key, const KeyStroke& how) {
    if (how.command) return {};
    if (how.repeated && (key == DuiKey::kEnter || key == DuiKey::kSpace)) return {};
    return key == DuiKey::kTab && how.shift ? DuiKey::kShiftTab : key;
}

unsigned ScaleForDensity(double dotsPerInch) {
    const long steps = std::lround(dotsPerInch / kPlainDensity * 4);
    return static_cast<unsigned>(std::clamp(steps, 4l, 12l)) * 25;
}

}  // namespace DuiLib
