#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// The place of a virtual operation in its class's table, as the Itanium ABI writes it into a member pointer. A virtual
// destructor takes two places.
template <class Member>
std::size_t Slot(Member member) {
    std::uintptr_t words[2];
    static_assert(sizeof member == sizeof words);
    std::memcpy(words, &member, sizeof words);
    return (words[0] - 1) / sizeof(void*);
}
