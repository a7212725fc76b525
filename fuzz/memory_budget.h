#pragma once

#include <cstddef>

namespace fuzz {

// While it lives, so many bytes can be allocated with `new`, whatever is released meanwhile; then std::bad_alloc is
// thrown, as by a system that has no more. One at a time.
class MemoryBudget {
public:
    explicit MemoryBudget(std::size_t bytes);
    ~MemoryBudget();
    MemoryBudget(const MemoryBudget&) = delete;
    MemoryBudget& operator=(const MemoryBudget&) = delete;
};

}  // namespace fuzz
