#include <windows.h>

#include "kernel/code_pages.h"
#include "kernel/sleep.h"

namespace kernel {

static_assert(kCodePageAnsi == CP_ACP && kCodePageUtf8 == CP_UTF8);

void Sleep(std::uint32_t milliseconds) { ::Sleep(milliseconds); }

int MultiByteToWideChar(unsigned codePage, std::uint32_t flags, const char* source, int length, wchar_t* destination,
                        int capacity) {
    return ::MultiByteToWideChar(codePage, flags, source, length, destination, capacity);
}

int WideCharToMultiByte(unsigned codePage, std::uint32_t flags, const wchar_t* source, int length, char* destination,
                        int capacity, const char* defaultCharacter, bool* usedDefaultCharacter) {
    BOOL used = FALSE;
    const int converted = ::WideCharToMultiByte(codePage, flags, source, length, destination, capacity,
                                                defaultCharacter, usedDefaultCharacter ? &used : nullptr);
    if (usedDefaultCharacter) *usedDefaultCharacter = used != FALSE;
    return converted;
}

}  // namespace kernel
