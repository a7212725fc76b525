#include "foundation/ui_turn_assertion.h"

#include <cstdio>
#include <cstdlib>

#if !defined(NDEBUG)
namespace DuiLib {

void AssertUiTurn(std::source_location operation) {
    if (kernel::UiTurn::IsHeld()) return;
    std::fprintf(stderr, "called without the UI turn: %s\n", operation.function_name());
    std::abort();
}

}  // namespace DuiLib
#endif
