#pragma once

#include <cstddef>

// Lets one allocation with new (std::nothrow) in the program's own objects, not in its shared libraries, fail: the nth
// from now on, counted from 1. One at a time. In a program that links this, an absurd size throws std::bad_alloc.
class NothrowFailure {
public:
    explicit NothrowFailure(int nth);
    ~NothrowFailure();
    NothrowFailure(const NothrowFailure&) = delete;
    NothrowFailure& operator=(const NothrowFailure&) = delete;

    bool Happened() const;

    // [bytes] What the last new (std::nothrow) T[] in the program's own objects asked for.
    static std::size_t LastArraySize();
};
