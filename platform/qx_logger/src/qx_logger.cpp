#include "qx_logger/qx_logger.h"

#include <spdlog/details/null_mutex.h>
#include <spdlog/logger.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/sinks/rotating_file_sink.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/file.h"
#include "base/mutex.h"
#include "base/process.h"
#include "base/text.h"
#include "console_lines.h"

namespace {

using Sinks = std::vector<spdlog::sink_ptr>;

ConsoleLines& Console() {
    static ConsoleLines& lines = *new ConsoleLines;
    return lines;
}

class ConsoleSink final : public spdlog::sinks::base_sink<spdlog::details::null_mutex> {
    void sink_it_(const spdlog::details::log_msg& message) override {
        spdlog::memory_buf_t line;
        formatter_->format(message, line);
        Console().Write({line.data(), line.size()});
    }
    void flush_() override {}  // every line is out, or waits for whoever reads
};

// The sinks are the unlocked kind: the logger's own mutex is held around every line.
std::unique_ptr<spdlog::logger> MakeBackEnd(const Sinks& sinks) {
    auto backEnd = std::make_unique<spdlog::logger>("qx", sinks.begin(), sinks.end());
    backEnd->set_pattern("%Y-%m-%d %H:%M:%S.%e %v");
    backEnd->set_level(spdlog::level::trace);
    backEnd->flush_on(spdlog::level::warn);
    backEnd->set_error_handler([](const std::string&) {});
    return backEnd;
}

spdlog::level::level_enum BackEndLevel(LOG_MESSAGE_LEVEL level) {
    return level >= LOG_LEVEL_EVENT ? spdlog::level::warn : spdlog::level::info;
}

std::string Line(LOG_MESSAGE_LEVEL level, const std::wstring& text) {
    return "[" + std::to_string(level) + "] " + base::OneLine(base::Utf8FromWide(text));
}

}  // namespace

struct QxLogger::State {
    base::Mutex mutex;  // keeps lines apart
    std::unique_ptr<spdlog::logger> backEnd BASE_GUARDED_BY(mutex) = MakeBackEnd({std::make_shared<ConsoleSink>()});
};

QxLogger::QxLogger() : m_state(new State) {}
QxLogger::~QxLogger() { delete m_state; }

// Never destroyed: delivery threads may still log while the process exits. The C library writes out what is buffered.
QxLogger* QxLogger::GetInstance() {
    static QxLogger* const instance = new QxLogger;
    return instance;
}

void QxLogger::Log(LOG_MESSAGE_LEVEL level, std::wstringstream& line) {
    try {
        const std::string text = Line(level, line.str());
        const base::MutexLock lock(m_state->mutex);
        m_state->backEnd->log(BackEndLevel(level), text);
    } catch (...) {
        // Out of memory, mostly: the line is dropped. Lines are written in destructors, where nothing may be thrown.
    }
}

void QxLogger::Open(const Options& options) {
    Sinks sinks;
    if (options.console) sinks.push_back(std::make_shared<ConsoleSink>());
    if (!options.file.empty()) {
        try {
            sinks.push_back(std::make_shared<spdlog::sinks::rotating_file_sink_st>(
                options.file.native(), options.maxFileBytes, options.maxFiles));
        } catch (const spdlog::spdlog_ex& error) {
            throw std::runtime_error("cannot open the log file \"" + base::Utf8FromPath(options.file) +
                                     "\": " + error.what());
        }
    }
    auto backEnd = MakeBackEnd(sinks);
    const base::MutexLock lock(m_state->mutex);
    m_state->backEnd->flush();
    m_state->backEnd = std::move(backEnd);
}

void QxLogger::Flush() {
    constexpr std::chrono::milliseconds kPatience{500};  // with whoever reads standard error
    {
        const base::MutexLock lock(m_state->mutex);
        m_state->backEnd->flush();
    }
    Console().Flush(std::chrono::steady_clock::now() + kPatience);
}
