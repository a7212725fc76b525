#include <spdlog/details/null_mutex.h>
#include <spdlog/sinks/base_sink.h>
#include <windows.h>

#include <cstdio>
#include <memory>
#include <string>

#include "console_sink.h"
#include "kernel/code_pages.h"

namespace {

// The system's consoles have a code page of their own, which is the program's business: text goes there as wide
// characters.
class ConsoleSink final : public spdlog::sinks::base_sink<spdlog::details::null_mutex> {
protected:
    void sink_it_(const spdlog::details::log_msg& message) override {
        spdlog::memory_buf_t line;
        formatter_->format(message, line);
        const HANDLE console = GetStdHandle(STD_ERROR_HANDLE);
        DWORD mode = 0;
        if (GetConsoleMode(console, &mode)) {
            WriteWide(console, line.data(), static_cast<int>(line.size()));
        } else {
            std::fwrite(line.data(), 1, line.size(), stderr);
        }
    }

    void flush_() override { std::fflush(stderr); }

private:
    static void WriteWide(HANDLE console, const char* bytes, int size) {
        std::wstring text(static_cast<std::size_t>(size), L'\0');  // never more characters than bytes
        const int length = kernel::MultiByteToWideChar(kernel::kCodePageUtf8, 0, bytes, size, text.data(), size);
        DWORD written = 0;
        WriteConsoleW(console, text.data(), static_cast<DWORD>(length), &written, nullptr);
    }
};

}  // namespace

spdlog::sink_ptr MakeConsoleSink() { return std::make_shared<ConsoleSink>(); }
