#include "wire/kept_frames.h"

#include <algorithm>
#include <utility>

namespace ipc_client {

namespace {

constexpr std::size_t kSlackBytes = 64 * 1024;  // of done messages that may stay in memory

}  // namespace

void KeptFrames::Add(std::string_view stored, std::size_t bytes) {
    m_frames.append(stored);
    try {
        m_entries.push_back({static_cast<std::uint32_t>(bytes), static_cast<std::uint32_t>(stored.size())});
    } catch (...) {
        m_frames.resize(m_frames.size() - stored.size());
        throw;
    }
    m_keptBytes += bytes;
}

void KeptFrames::DropDone() {
    while (!m_entries.empty() && m_entries.front().isDone) {
        m_begin += m_entries.front().stored;
        m_entries.pop_front();
        ++m_first;
    }
    if (m_begin == m_frames.size()) {
        m_frames.clear();
        if (m_frames.capacity() > kSlackBytes) m_frames.shrink_to_fit();
        m_begin = 0;
    }
    if (m_frames.size() > 2 * m_keptBytes + 2 * kSlackBytes) Compact();
}

// Done messages between others leave their place.
void KeptFrames::Compact() {
    std::string frames;
    std::size_t begin = m_begin;
    for (Entry& entry : m_entries) {
        const std::string_view frame = std::string_view(m_frames).substr(begin, entry.stored);
        begin += entry.stored;
        if (entry.isDone) {
            entry.stored = 0;
        } else {
            frames.append(frame);
        }
    }
    m_frames = std::move(frames);
    m_begin = 0;
}

bool KeptFrames::Take(std::uint64_t number) {
    if (number < m_first || number >= Next()) return false;
    Entry& entry = m_entries[number - m_first];
    if (entry.isDone || entry.isTaken) return false;
    return entry.isTaken = true;
}

void KeptFrames::Wait(NumberRange range) {
    for (std::uint64_t number = std::max(range.first, m_first); number < std::min(range.behind, Next()); ++number) {
        m_entries[number - m_first].isWaiting = true;
    }
}

void KeptFrames::WaitAnew() {
    for (Entry& entry : m_entries) entry.isWaiting = false;
}

bool KeptFrames::IsSettled() const {
    return std::all_of(m_entries.begin(), m_entries.end(),
                       [](const Entry& entry) { return entry.isDone || entry.isWaiting; });
}

std::string KeptFrames::From(std::uint64_t number) const {
    std::string out;
    std::size_t begin = m_begin;
    std::uint64_t skipped = 0;
    std::uint64_t at = m_first;
    for (const Entry& entry : m_entries) {
        const std::string_view frame = std::string_view(m_frames).substr(begin, entry.stored);
        begin += entry.stored;
        if (at++ < number) continue;
        if (entry.isDone) {
            ++skipped;
            continue;
        }
        if (skipped != 0) AppendSkip(out, skipped);
        skipped = 0;
        out.append(frame);
    }
    if (skipped != 0) AppendSkip(out, skipped);
    return out;
}

}  // namespace ipc_client
