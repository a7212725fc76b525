#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

#include "base/mutex.h"

// Lines on their way to standard error, which do not make their writer wait for its reader: a pipe that nobody reads,
// or a terminal that somebody stopped, would stop the whole program otherwise. Never destroyed: a thread may still wait
// in it at the process's end.
class ConsoleLines {
public:
    ConsoleLines() = default;
    ConsoleLines(const ConsoleLines&) = delete;
    ConsoleLines& operator=(const ConsoleLines&) = delete;

    // Writes the line at once where standard error takes it; else keeps it for a thread that waits in this one's place.
    // When a mebibyte is kept, further lines are left out; their number is written where they are missing. Where the
    // system does not tell whether it takes a line, the thread gets each, and is given a moment for it while the one
    // before is out: so a process that ends right after a line has written it. Any thread.
    void Write(std::string_view line);

    // Waits until nothing is kept, or the time has come.
    void Flush(std::chrono::steady_clock::time_point until);

private:
    static constexpr std::size_t kMostKept = 1024 * 1024;  // [bytes]
    static constexpr std::chrono::milliseconds kPatience{20};

    void StartWriting() BASE_REQUIRES(m_mutex);
    void WaitWritten(std::chrono::steady_clock::time_point until) BASE_REQUIRES(m_mutex);
    void WriteKept();
    std::string NextKept();

    base::Mutex m_mutex;
    base::Condition m_written;
    std::string m_kept BASE_GUARDED_BY(m_mutex);
    std::size_t m_leftOut BASE_GUARDED_BY(m_mutex) = 0;  // lines, behind what is kept
    bool m_isWriting BASE_GUARDED_BY(m_mutex) = false;   // the thread runs
};
