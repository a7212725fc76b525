#include "duilib/diagnostics.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "base/sink_slot.h"
#include "foundation/diagnostics.h"
#include "kernel/ui_turn.h"

namespace DuiLib {

namespace {

// Never destroyed: controls with static storage may report later.
auto& Sink() {
    static auto& sink = *new base::SinkSlot<const std::string&>;
    return sink;
}

}  // namespace

void SetDiagnosticSink(DiagnosticSink sink) { Sink().Set(std::move(sink)); }

void Report(const std::string& line) noexcept {
    if (!Sink().Tell(line)) std::fprintf(stderr, "%s\n", line.c_str());
}

#if !defined(NDEBUG)
void AssertUiTurn(std::source_location operation) {
    if (kernel::UiTurn::IsHeld()) return;
    std::fprintf(stderr, "called without the UI turn: %s\n", operation.function_name());
    std::abort();
}
#endif

}  // namespace DuiLib
