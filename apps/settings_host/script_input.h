#pragma once

#include <array>
#include <functional>
#include <istream>
#include <optional>
#include <streambuf>

namespace settings_host {

// A script that somebody may still be writing, read on the thread of the window: while nothing has come, the window
// goes on.
//
//     ScriptInput input(0, [&window] { window.HandleEvents(10ms); });
//     script::Reader reader(input.Stream(), "standard input");
//
// One thread: whoever reads the stream calls `idle`.
class ScriptInput : private std::streambuf {
public:
    // Reads `file`, a file descriptor that stays the caller's. Calls `idle` again and again while there is nothing to
    // read; it should wait a few milliseconds, or the processor is kept busy.
    ScriptInput(int file, std::function<void()> idle);

    // What `idle` throws goes through the read to whoever reads, and so does std::system_error when the file cannot be
    // read; a usual std::istream would take both for its end. The stream is of no use after either: reading on throws
    // std::ios_base::failure.
    std::istream& Stream() { return m_stream; }

private:
    int_type underflow() override;

    // Reads what is there: the number of bytes, 0 at the end, nothing when the read would wait. Throws
    // std::system_error.
    static std::optional<std::size_t> ReadIfReady(int file, char* buffer, std::size_t size);

    const int m_file;
    const std::function<void()> m_idle;
    std::array<char, 4096> m_buffer;
    std::istream m_stream;
};

}  // namespace settings_host
