#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "process_usage.h"

namespace soak {

// What a process had of the system, second by second, and whether that is flat. One thread.
//
// The rule: what comes first is warm-up and does not count. Of what is left, the median of the last third is at most a
// little above that of the first third: 1 MiB of memory, five threads, ten handles.
class UsageRecord {
public:
    // `warmUp`: so many samples, but a tenth of all at least.
    explicit UsageRecord(std::size_t warmUp = 0) : m_warmUp(warmUp) {}

    // `documented`: what the process has leaked on purpose so far [bytes].
    void Add(const test_support::ProcessUsage& usage, std::uint64_t documented = 0);

    // "memory: 10.5 MB, then 14.2 MB"; empty when everything is flat. Fewer than twenty samples that count are a
    // finding, too.
    std::vector<std::string> Findings() const;

    // "memory 10.5 -> 10.6 MB, threads 5 -> 5, handles 12 -> 12, most 11.0 MB, 9, 16 of 108 samples".
    std::string Figures() const;

private:
    struct Sample {
        test_support::ProcessUsage usage;
        std::uint64_t documented = 0;
    };

    // Medians of a third, 0 to 2, less what is documented.
    struct Median {
        double memory = 0;  // [bytes]
        int threads = 0;
        int handles = 0;
    };
    std::size_t WarmUp() const;
    Median OfThird(std::size_t third) const;

    std::size_t m_warmUp;  // at least
    std::vector<Sample> m_samples;
};

}  // namespace soak
