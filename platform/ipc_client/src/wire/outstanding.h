#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <vector>

#include "wire/frame.h"

namespace ipc_client {

// Numbered messages and how many still hold each: one that nobody holds any more is done. Not synchronised.
class Outstanding {
public:
    std::uint64_t First() const { return m_old.empty() ? m_first : m_old.begin()->first; }  // not done, or Next()
    std::uint64_t Next() const { return m_first + m_holders.size(); }
    bool Empty() const { return m_old.empty() && m_holders.empty(); }

    // Goes on with that number. Nothing may be outstanding.
    void StartAt(std::uint64_t number);

    std::uint64_t Begin();                              // the next message, with one holder: whoever begins it
    void TakeBack() noexcept { m_holders.pop_back(); }  // the last one, which only its beginner holds
    void Skip(std::uint64_t count);                     // the next ones are done
    void Hold(std::uint64_t number) { ++HoldersOf(number); }
    void Release(std::uint64_t number) noexcept;

    // What became done since the last call; some of it perhaps again.
    std::vector<NumberRange> TakeDone();
    bool HasDone() const { return !m_done.empty() || m_untold != kNone; }

    // All that is done from that number on.
    std::vector<NumberRange> DoneFrom(std::uint64_t number) const;

private:
    static constexpr std::uint64_t kNone = ~std::uint64_t{0};

    std::uint32_t& HoldersOf(std::uint64_t number);
    void AddDone(std::uint64_t number);
    void DropDone();
    bool IsMostlyDone() const;

    std::uint64_t m_first = 0;
    std::deque<std::uint32_t> m_holders;           // of the last messages; 0: done
    std::size_t m_doneHere = 0;                    // of these
    std::map<std::uint64_t, std::uint32_t> m_old;  // holders of those before that are not done, by number
    std::vector<NumberRange> m_done;
    std::uint64_t m_untold = kNone;  // the oldest that there was no memory for in m_done
};

}  // namespace ipc_client
