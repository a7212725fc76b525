#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "wire/frame.h"

namespace ipc_client {

// Numbered messages and how many still hold each: one that nobody holds any more is done. Not synchronised.
class Outstanding {
public:
    std::uint64_t First() const { return m_first; }  // the oldest that is not done, or Next()
    std::uint64_t Next() const { return m_first + m_holders.size(); }
    bool Empty() const { return m_holders.empty(); }

    // Goes on with that number. Nothing may be outstanding.
    void StartAt(std::uint64_t number);

    std::uint64_t Begin();           // the next message, with one holder: whoever begins it
    void Skip(std::uint64_t count);  // the next ones are done
    void Hold(std::uint64_t number) { ++m_holders[number - m_first]; }
    void Release(std::uint64_t number) noexcept;

    // What became done since the last call; some of it perhaps again.
    std::vector<NumberRange> TakeDone();
    bool HasDone() const { return !m_done.empty() || m_untold != kNone; }

    // All that is done from that number on.
    std::vector<NumberRange> DoneFrom(std::uint64_t number) const;

private:
    static constexpr std::uint64_t kNone = ~std::uint64_t{0};

    void AddDone(std::uint64_t number);
    void DropDone();

    std::uint64_t m_first = 0;
    std::deque<std::uint32_t> m_holders;
    std::vector<NumberRange> m_done;
    std::uint64_t m_untold = kNone;  // the oldest that there was no memory for in m_done
};

}  // namespace ipc_client
