#pragma once

#include <cstdint>

namespace test_support {

// What a process has of the system at this moment.
struct ProcessUsage {
    std::uint64_t memory = 0;  // [bytes] its own, in use: shared code and files do not count
    int threads = 0;
    int handles = 0;  // descriptors, on Windows handles
};

// Of a process of this user by its id. Throws std::runtime_error when it is gone.
ProcessUsage UsageOf(int process);

// Of this one.
ProcessUsage OwnUsage();

// Bytes that this program's allocations hold, those of all its libraries included. Of no use under a sanitizer, which
// brings its own allocation.
std::uint64_t HeapInUse();

}  // namespace test_support
