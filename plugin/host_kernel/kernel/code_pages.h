#pragma once

#include <cstdint>

// The system's conversions, under the names and in the types that page code calls them with.
namespace kernel {

inline constexpr unsigned kCodePageAnsi = 0;      // CP_ACP
inline constexpr unsigned kCodePageUtf8 = 65001;  // CP_UTF8

// Results as the system gives them: the number of characters or bytes, needed ones for a capacity of 0; 0 on an error
// and for an empty source.
int MultiByteToWideChar(unsigned codePage, std::uint32_t flags, const char* source, int length, wchar_t* destination,
                        int capacity);
int WideCharToMultiByte(unsigned codePage, std::uint32_t flags, const wchar_t* source, int length, char* destination,
                        int capacity, const char* defaultCharacter, bool* usedDefaultCharacter);

}  // namespace kernel
