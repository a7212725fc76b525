#pragma once

#include <cstddef>
#include <new>
#include <string>

#include "base/line_budget.h"
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

// Lines about what other processes do at the broker: each process has a budget of its own, so that none can drown what
// is said of the others. Those about `trusted`, the broker's own process, are all written. Any thread.
class PeerLog {
public:
    explicit PeerLog(unsigned long trusted, const base::LineBudget::Limits& limits = {})
        : m_trusted(trusted), m_budget(limits, TellLeftOut) {}

    // As LogIfPossible. A line beyond the budget of that process is not made, but counted.
    template <typename MakeLine>
    void Write(int level, unsigned long process, const MakeLine& makeLine) noexcept {
        try {
            if (process == m_trusted || m_budget.Spend(std::to_string(process))) Log(level, makeLine());
        } catch (const std::bad_alloc&) {
        }
    }

private:
    static void TellLeftOut(const std::string& process, std::size_t count) noexcept;

    const unsigned long m_trusted;
    base::LineBudget m_budget;
};

// For lines that would repeat without end: whether the count-th of them is to be written (1, 2, 4, 8, ...).
constexpr bool IsWorthALine(std::size_t count) { return (count & (count - 1)) == 0; }

// Shows one message to the trace, if there is one. Any thread; never throws.
void Trace(IpcTraceEvent event, const TagIPCMessageItem& item) noexcept;

}  // namespace ipc_client
