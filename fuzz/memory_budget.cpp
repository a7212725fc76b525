#include "memory_budget.h"

#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

std::size_t bytesLeft = SIZE_MAX;  // all that there are: no budget

}  // namespace

namespace fuzz {

MemoryBudget::MemoryBudget(std::size_t bytes) { bytesLeft = bytes; }
MemoryBudget::~MemoryBudget() { bytesLeft = SIZE_MAX; }

}  // namespace fuzz

// The program's own, as AddressSanitizer's would end the program instead of throwing.
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    if (bytes > bytesLeft) return nullptr;
    if (bytesLeft != SIZE_MAX) bytesLeft -= bytes;
    return std::malloc(bytes == 0 ? 1 : bytes);
}
void* operator new(std::size_t bytes) {
    if (void* const memory = operator new(bytes, std::nothrow)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
