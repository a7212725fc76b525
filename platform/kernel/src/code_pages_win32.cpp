#include <windows.h>

#include "kernel/code_pages.h"

namespace kernel {
namespace {

// The system reads a length of -1 as "up to the zero", and other pages take flags; neither is part of the contract.
template <typename From, typename To>
bool IsUsable(std::uint32_t flags, const From* source, int length, const To* destination, int capacity) {
    return flags == 0 && source && length > 0 && capacity >= 0 && (capacity == 0 || destination);
}

}  // namespace

int MultiByteToWideChar(unsigned codePage, std::uint32_t flags, const char* source, int length, wchar_t* destination,
                        int capacity) {
    if (!IsUsable(flags, source, length, destination, capacity)) return 0;
    return ::MultiByteToWideChar(codePage, flags, source, length, destination, capacity);
}

int WideCharToMultiByte(unsigned codePage, std::uint32_t flags, const wchar_t* source, int length, char* destination,
                        int capacity, const char* defaultCharacter, bool* usedDefaultCharacter) {
    if (!IsUsable(flags, source, length, destination, capacity) || defaultCharacter || usedDefaultCharacter) return 0;
    return ::WideCharToMultiByte(codePage, flags, source, length, destination, capacity, nullptr, nullptr);
}

bool SetAnsiCodePage(unsigned codePage) { return codePage == GetACP(); }

}  // namespace kernel
