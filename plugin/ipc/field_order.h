#pragma once

#include <algorithm>
#include <cstddef>
#include <initializer_list>

// Other modules read some objects of this one by their layout. A class whose fields are private lets a struct
// XFieldOrder in as a friend, which asserts them where the class is implemented.

// Whether fields at these offsets stand in this order.
constexpr bool InOrder(std::initializer_list<std::size_t> offsets) {
    return std::is_sorted(offsets.begin(), offsets.end());
}

// offsetof is well defined by every compiler in use, for classes with virtual functions and a base too.
#if defined(__GNUC__)
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
#endif
