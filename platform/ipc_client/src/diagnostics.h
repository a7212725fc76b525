#pragma once

#include <cstddef>
#include <new>
#include <string>

#include "ipc_client/ipc_diagnostics.h"

// What the library tells of itself.
namespace ipc_client {

// Writes one line to the log's sink. Any thread; never throws.
void Log(int level, const std::string& line) noexcept;

// As Log, for where memory may be out: the line is made in here, and dropped when there is none for it.
template <typename MakeLine>
void LogIfPossible(int level, const MakeLine& makeLine) noexcept {
    try {
        Log(level, makeLine());
    } catch (const std::bad_alloc&) {
    }
}

// For lines that would repeat without end: whether the count-th of them is to be written (1, 2, 4, 8, ...).
constexpr bool IsWorthALine(std::size_t count) { return (count & (count - 1)) == 0; }

// Shows one message to the trace, if there is one. Any thread; never throws.
void Trace(IpcTraceEvent event, const TagIPCMessageItem& item) noexcept;

}  // namespace ipc_client
