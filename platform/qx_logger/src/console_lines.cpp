#include "console_lines.h"

#include <thread>
#include <utility>

#include "base/process.h"

void ConsoleLines::Write(std::string_view line) {
    const base::MutexLock lock(m_mutex);
    const base::ErrorsTake take = m_isWriting ? base::ErrorsTake::kNotNow : base::HowErrorsTake(line.size());
    if (take == base::ErrorsTake::kAtOnce) return base::WriteToErrors(line);
    if (m_leftOut != 0 || m_kept.size() + line.size() > kMostKept) {
        ++m_leftOut;
        return;
    }
    m_kept += line;
    if (m_isWriting) return;
    StartWriting();
    if (take == base::ErrorsTake::kNobodyKnows) WaitWritten(std::chrono::steady_clock::now() + kPatience);
}

void ConsoleLines::StartWriting() {
    base::StayLoaded();
    std::thread([this] { WriteKept(); }).detach();
    m_isWriting = true;
}

void ConsoleLines::WriteKept() {
    for (std::string text = NextKept(); !text.empty(); text = NextKept()) base::WriteToErrors(text);
}

// Empty when there is nothing more, and the thread ends.
std::string ConsoleLines::NextKept() {
    const base::MutexLock lock(m_mutex);
    std::string text = std::exchange(m_kept, {});
    if (const std::size_t count = std::exchange(m_leftOut, 0); count != 0) {
        text += std::to_string(count) + " log lines were left out here: standard error was not read\n";
    }
    if (text.empty()) {
        m_isWriting = false;
        m_written.NotifyAll();
    }
    return text;
}

void ConsoleLines::Flush(std::chrono::steady_clock::time_point until) {
    const base::MutexLock lock(m_mutex);
    WaitWritten(until);
}

void ConsoleLines::WaitWritten(std::chrono::steady_clock::time_point until) {
    while (m_isWriting && m_written.WaitUntil(m_mutex, until)) {
    }
}
