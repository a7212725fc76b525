#include "wire/kept_frames.h"

#include <algorithm>
#include <utility>

namespace ipc_client {

namespace {

constexpr std::size_t kSlackBytes = 64 * 1024;  // of done messages that may stay in memory,
constexpr std::size_t kSlackEntries = 1024;     // and how many of them

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
    while (!m_entries.empty() && (m_entries.front().isDone || IsMostlyDone())) DropFront();
    if (m_begin == m_frames.size()) {
        m_frames.clear();
        if (m_frames.capacity() > kSlackBytes) m_frames.shrink_to_fit();
        m_begin = 0;
    } else if (m_begin > kSlackBytes && m_begin > m_frames.size() / 2) {
        m_frames.erase(0, m_begin);
        m_begin = 0;
    }
}

bool KeptFrames::IsMostlyDone() const {
    return (m_doneEntries > kSlackEntries && m_doneEntries > m_entries.size() / 2) ||
           m_frames.size() - m_begin > 2 * m_keptBytes + kSlackBytes;
}

void KeptFrames::DropFront() {
    const Entry& front = m_entries.front();
    if (front.isDone) {
        --m_doneEntries;
    } else {
        m_old.emplace(m_first, Old{front, m_frames.substr(m_begin, front.stored)});
    }
    m_begin += front.stored;
    m_entries.pop_front();
    ++m_first;
}

KeptFrames::Entry* KeptFrames::Find(std::uint64_t number) {
    if (const auto old = m_old.find(number); old != m_old.end()) return &old->second.entry;
    if (number < m_first || number >= Next()) return nullptr;
    Entry& entry = m_entries[number - m_first];
    return entry.isDone ? nullptr : &entry;
}

bool KeptFrames::Take(std::uint64_t number) {
    Entry* const entry = Find(number);
    return entry != nullptr && !std::exchange(entry->isTaken, true);
}

void KeptFrames::Wait(NumberRange range) {
    for (std::uint64_t number = std::max(range.first, First()); number < std::min(range.behind, Next()); ++number) {
        if (Entry* const entry = Find(number)) entry->isWaiting = true;
    }
}

void KeptFrames::WaitAnew() {
    for (auto& [number, old] : m_old) old.entry.isWaiting = false;
    for (Entry& entry : m_entries) entry.isWaiting = false;
}

bool KeptFrames::IsSettled() const {
    return std::all_of(m_old.begin(), m_old.end(), [](const auto& old) { return old.second.entry.isWaiting; }) &&
           std::all_of(m_entries.begin(), m_entries.end(),
                       [](const Entry& entry) { return entry.isDone || entry.isWaiting; });
}

std::string KeptFrames::From(std::uint64_t number) const {
    std::string out;
    std::uint64_t next = number;  // that the other side expects
    const auto append = [&](std::uint64_t at, std::string_view frame) {
        if (at < number) return;
        if (at != next) AppendSkip(out, at - next);
        out.append(frame);
        next = at + 1;
    };
    for (const auto& [at, old] : m_old) append(at, old.frame);
    std::size_t begin = m_begin;
    std::uint64_t at = m_first;
    for (const Entry& entry : m_entries) {
        if (!entry.isDone) append(at, std::string_view(m_frames).substr(begin, entry.stored));
        begin += entry.stored;
        ++at;
    }
    if (next < Next()) AppendSkip(out, Next() - next);
    return out;
}

}  // namespace ipc_client
