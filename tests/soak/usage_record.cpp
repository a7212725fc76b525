#include "usage_record.h"

#include <algorithm>
#include <cstdio>

namespace soak {

namespace {

constexpr double kMegabyte = 1024 * 1024;
constexpr double kMemoryAllowed = kMegabyte;
constexpr int kThreadsAllowed = 5;   // an update that runs has one,
constexpr int kHandlesAllowed = 10;  // and two files
constexpr std::size_t kFewestSamples = 20;

template <class Number>
Number MedianOf(std::vector<Number> numbers) {
    if (numbers.empty()) return {};
    const auto middle = numbers.begin() + static_cast<std::ptrdiff_t>(numbers.size() / 2);
    std::nth_element(numbers.begin(), middle, numbers.end());
    return *middle;
}

std::string Megabytes(double bytes) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", bytes / kMegabyte);
    return text;
}

}  // namespace

void UsageRecord::Add(const test_support::ProcessUsage& usage, std::uint64_t documented) {
    m_samples.push_back({usage, documented});
}

std::size_t UsageRecord::WarmUp() const {
    return std::min(std::max(m_warmUp, m_samples.size() / 10), m_samples.size());
}

UsageRecord::Median UsageRecord::OfThird(std::size_t third) const {
    const std::size_t warmUp = WarmUp();
    const std::size_t counted = m_samples.size() - warmUp;
    std::vector<double> memory;
    std::vector<int> threads;
    std::vector<int> handles;
    for (std::size_t i = warmUp + counted * third / 3; i < warmUp + counted * (third + 1) / 3; ++i) {
        const Sample& sample = m_samples[i];
        memory.push_back(static_cast<double>(sample.usage.memory) - static_cast<double>(sample.documented));
        threads.push_back(sample.usage.threads);
        handles.push_back(sample.usage.handles);
    }
    return {MedianOf(memory), MedianOf(threads), MedianOf(handles)};
}

std::vector<std::string> UsageRecord::Findings() const {
    const std::size_t counted = m_samples.size() - WarmUp();
    if (counted < kFewestSamples) return {"too few samples: " + std::to_string(counted)};
    const Median first = OfThird(0);
    const Median last = OfThird(2);
    std::vector<std::string> findings;
    const auto add = [&](const std::string& what, const std::string& before, const std::string& after) {
        findings.push_back(what + ": " + before + ", then " + after);
    };
    if (last.memory > first.memory + kMemoryAllowed)
        add("memory", Megabytes(first.memory) + " MB", Megabytes(last.memory) + " MB");
    if (last.threads > first.threads + kThreadsAllowed)
        add("threads", std::to_string(first.threads), std::to_string(last.threads));
    if (last.handles > first.handles + kHandlesAllowed)
        add("handles", std::to_string(first.handles), std::to_string(last.handles));
    return findings;
}

std::string UsageRecord::Figures() const {
    const Median first = OfThird(0);
    const Median last = OfThird(2);
    test_support::ProcessUsage most;
    for (const Sample& sample : m_samples) {
        most.memory = std::max(most.memory, sample.usage.memory);
        most.threads = std::max(most.threads, sample.usage.threads);
        most.handles = std::max(most.handles, sample.usage.handles);
    }
    return "memory " + Megabytes(first.memory) + " -> " + Megabytes(last.memory) + " MB, threads " +
           std::to_string(first.threads) + " -> " + std::to_string(last.threads) + ", handles " +
           std::to_string(first.handles) + " -> " + std::to_string(last.handles) + "; most " +
           Megabytes(static_cast<double>(most.memory)) + " MB, " + std::to_string(most.threads) + ", " +
           std::to_string(most.handles) + " of " + std::to_string(m_samples.size()) + " samples";
}

}  // namespace soak
