#pragma once

#include <string>

#include "ipc_client/ipc_log.h"

namespace ipc_client {

// Writes one line to the sink. Any thread; never throws.
void Log(int level, const std::string& line) noexcept;

// For lines that would repeat without end: whether the count-th of them is to be written (1, 2, 4, 8, ...).
constexpr bool IsWorthALine(std::size_t count) { return (count & (count - 1)) == 0; }

}  // namespace ipc_client
