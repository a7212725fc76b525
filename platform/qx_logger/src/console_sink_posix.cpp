#include <spdlog/sinks/stdout_sinks.h>

#include <memory>

#include "console_sink.h"

spdlog::sink_ptr MakeConsoleSink() { return std::make_shared<spdlog::sinks::stderr_sink_st>(); }
