#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "wire/frame.h"

namespace ipc_client {

// Messages that were sent and are kept until they are done, to be sent again when a connection breaks. Each has a
// number, in the order in which they were added. Not synchronised.
class KeptFrames {
public:
    std::uint64_t First() const { return m_old.empty() ? m_first : m_old.begin()->first; }  // not done, or Next()
    std::uint64_t Next() const { return m_first + m_entries.size(); }
    std::size_t Bytes() const { return m_keptBytes; }  // of those that are not done

    // Of the oldest; where it is the only one that is to be known, all are done in their order.
    std::size_t FrontBytes() const { return m_entries.front().bytes; }

    // The number of the first message to come. Nothing may be kept.
    void StartAt(std::uint64_t number) { m_first = number; }

    // Keeps one whole frame.
    void Add(std::string_view frame) {
        Add(frame.size(), [&](std::string& out) { out.append(frame); });
    }

    // Keeps one whole frame of so many bytes, which `append` appends to a string that has room for it.
    template <typename F>
    void Add(std::size_t bytes, const F& append) {
        std::string& block = BlockFor(bytes);
        AddEntry(bytes, bytes);
        append(block);
    }

    // Counts a frame that cannot be sent again.
    void Count(std::size_t bytes) { AddEntry(0, bytes); }

    // The next of the frames that were added and not yet sent; empty when there are none. Valid until something
    // changes. All of it is sent with SetSent, all that there is with SetAllSent.
    std::string_view Unsent() const;
    void SetSent();
    void SetAllSent();

    // Calls `done` with the number and the bytes of each message of the range that was not done, in their order.
    template <typename F>
    void Done(NumberRange range, const F& done) {
        for (auto old = m_old.lower_bound(range.first); old != m_old.end() && old->first < range.behind;) {
            m_keptBytes -= old->second.entry.bytes;
            done(old->first, old->second.entry.bytes);
            old = m_old.erase(old);
        }
        const std::uint64_t behind = range.behind < Next() ? range.behind : Next();
        for (std::uint64_t number = range.first < m_first ? m_first : range.first; number < behind; ++number) {
            Entry& entry = m_entries[number - m_first];
            if (std::exchange(entry.isDone, true)) continue;
            ++m_doneEntries;
            m_keptBytes -= entry.bytes;
            done(number, entry.bytes);
        }
        DropDone();
    }

    // Marks messages of which the broker says that they wait for somebody.
    void Wait(NumberRange range);
    void WaitAnew();  // none of them waits, as far as another broker has said

    // Whether all are done, or wait for somebody.
    bool IsSettled() const;

    // What is to be sent from that number on: the frames that are not done, with skips in the place of the others.
    std::string From(std::uint64_t number) const;

private:
    struct Entry {
        std::uint32_t bytes;   // of the frame
        std::uint32_t stored;  // of it in m_blocks
        bool isDone = false;
        bool isWaiting = false;
    };

    // What is kept while most that came after it is done: outside the row, so that the row stays short.
    struct Old {
        Entry entry;
        std::string frame;
    };

    std::string& BlockFor(std::size_t bytes);
    void AddEntry(std::size_t stored, std::size_t bytes);
    Entry* Find(std::uint64_t number);  // null when it is done
    void DropDone();
    bool IsMostlyDone() const;
    void DropFront();
    void DropFrontBytes(std::size_t bytes);

    std::uint64_t m_first = 0;
    std::deque<Entry> m_entries;
    std::size_t m_doneEntries = 0;
    std::deque<std::string> m_blocks;    // frames of the entries, whole ones in each
    std::size_t m_begin = 0;             // where the first entry's frame is in the first block
    std::size_t m_storedBytes = 0;       // of the entries
    std::size_t m_unsentBlock = 0;       // where the first frame that is not sent is: its block,
    std::size_t m_unsentBegin = 0;       // and where in that
    std::map<std::uint64_t, Old> m_old;  // by number; before m_first
    std::size_t m_keptBytes = 0;
};

}  // namespace ipc_client
