#pragma once

#include <source_location>
#include <string>

#include "base/mutex.h"

namespace DuiLib {

// What the toolkit says of those who use it: what is wrong with their files, and with their calls.

// Gives a line to the sink of duilib/diagnostics.h; what that throws is lost.
void Report(const std::string& line) noexcept;

// The UI turn as Clang's analysis names it: what is guarded by it is only used behind AssertUiTurn. Nothing at run
// time.
class BASE_CAPABILITY("UI turn") UiTurnCapability {};
inline constexpr UiTurnCapability kUiTurn;

// Stands first in an operation that its caller must hold the UI turn for. A build for debugging ends the program where
// the thread does not, and names the operation; others do nothing here. Clang takes the turn for held from here on.
#if defined(NDEBUG)
inline void AssertUiTurn() BASE_ASSERT_CAPABILITY(kUiTurn) {}
#else
void AssertUiTurn(std::source_location operation = std::source_location::current()) BASE_ASSERT_CAPABILITY(kUiTurn);
#endif

}  // namespace DuiLib
