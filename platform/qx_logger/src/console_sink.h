#pragma once

#include <spdlog/common.h>

// Standard error as a place for UTF-8 lines: a console shows them as such, a file or pipe gets the bytes. Unlocked: the
// logger's own mutex is held around every line.
spdlog::sink_ptr MakeConsoleSink();
