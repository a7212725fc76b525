#include "wire/kept_frames.h"

#include <algorithm>
#include <utility>

namespace ipc_client {

namespace {

constexpr std::size_t kBlockBytes = 64 * 1024;  // a longer frame has a block of its own
constexpr std::size_t kSlackBytes = 64 * 1024;  // of done messages that may stay in memory,
constexpr std::size_t kSlackEntries = 1024;     // and how many of them

}  // namespace

// A block that has room for so many bytes more. The first one grows as it is needed.
std::string& KeptFrames::BlockFor(std::size_t bytes) {
    if (m_blocks.empty() || (!m_blocks.back().empty() && m_blocks.back().size() + bytes > kBlockBytes)) {
        const bool isFirst = m_blocks.empty();
        m_blocks.emplace_back();
        if (!isFirst && m_unsentBegin == m_blocks[m_unsentBlock].size()) SetSent();
        if (!isFirst) m_blocks.back().reserve(std::max(bytes, kBlockBytes));
    }
    m_blocks.back().reserve(m_blocks.back().size() + bytes);
    return m_blocks.back();
}

void KeptFrames::AddEntry(std::size_t stored, std::size_t bytes) {
    m_entries.push_back({static_cast<std::uint32_t>(bytes), static_cast<std::uint32_t>(stored)});
    m_storedBytes += stored;
    m_keptBytes += bytes;
}

std::string_view KeptFrames::Unsent() const {
    return m_blocks.empty() ? std::string_view() : std::string_view(m_blocks[m_unsentBlock]).substr(m_unsentBegin);
}

void KeptFrames::SetSent() {
    if (m_unsentBlock + 1 < m_blocks.size()) {
        ++m_unsentBlock;
        m_unsentBegin = 0;
    } else if (!m_blocks.empty()) {
        m_unsentBegin = m_blocks.back().size();
    }
}

void KeptFrames::SetAllSent() {
    while (!Unsent().empty()) SetSent();
}

void KeptFrames::DropDone() {
    while (!m_entries.empty() && (m_entries.front().isDone || IsMostlyDone())) DropFront();
}

bool KeptFrames::IsMostlyDone() const {
    return (m_doneEntries > kSlackEntries && m_doneEntries > m_entries.size() / 2) ||
           m_storedBytes > 2 * m_keptBytes + kSlackBytes;
}

void KeptFrames::DropFront() {
    const Entry& front = m_entries.front();
    if (front.isDone) {
        --m_doneEntries;
    } else {
        m_old.emplace(m_first, Old{front, front.stored == 0 ? "" : m_blocks.front().substr(m_begin, front.stored)});
    }
    DropFrontBytes(front.stored);
    m_entries.pop_front();
    ++m_first;
}

void KeptFrames::DropFrontBytes(std::size_t bytes) {
    if (bytes == 0) return;
    m_storedBytes -= bytes;
    m_begin += bytes;
    if (m_unsentBlock == 0) m_unsentBegin = std::max(m_unsentBegin, m_begin);
    if (m_begin != m_blocks.front().size()) return;
    m_begin = 0;
    if (m_unsentBlock == 0) m_unsentBegin = 0;
    if (m_unsentBlock != 0) --m_unsentBlock;
    if (m_blocks.size() == 1 && m_blocks.front().capacity() <= kBlockBytes) {
        m_blocks.front().clear();
    } else {
        m_blocks.pop_front();
    }
}

KeptFrames::Entry* KeptFrames::Find(std::uint64_t number) {
    if (const auto old = m_old.find(number); old != m_old.end()) return &old->second.entry;
    if (number < m_first || number >= Next()) return nullptr;
    Entry& entry = m_entries[number - m_first];
    return entry.isDone ? nullptr : &entry;
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
    auto block = m_blocks.begin();
    std::size_t begin = m_begin;
    std::uint64_t at = m_first;
    for (const Entry& entry : m_entries) {
        if (entry.stored != 0 && begin == block->size()) {
            ++block;
            begin = 0;
        }
        if (!entry.isDone) append(at, entry.stored == 0 ? "" : std::string_view(*block).substr(begin, entry.stored));
        begin += entry.stored;
        ++at;
    }
    if (next < Next()) AppendSkip(out, Next() - next);
    return out;
}

}  // namespace ipc_client
