#pragma once

#include <cstdint>

namespace campaign {

// Numbers that look random and are the same for a seed on every system.
class Random {
public:
    explicit Random(std::uint64_t seed) : m_state(seed) {}

    std::uint64_t Next() {
        m_state += 0x9E3779B97F4A7C15;
        std::uint64_t mixed = m_state;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
        return mixed ^ (mixed >> 31);
    }

    // From `least` to `most`, both included.
    int Between(int least, int most) {
        const auto count = static_cast<std::uint64_t>(most - least) + 1;
        return least + static_cast<int>(Next() % count);
    }

    bool Chance(int percent) { return Between(0, 99) < percent; }

private:
    std::uint64_t m_state;
};

}  // namespace campaign
