#include "console.h"

#include <windows.h>

#include <cstdio>
#include <string>

#include "base/text.h"

// The system's consoles have a code page of their own, which is the program's business: text goes there as wide
// characters.
void WriteToConsole(std::string_view text) {
    const HANDLE console = GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode = 0;
    if (GetConsoleMode(console, &mode)) {
        const std::wstring wide = base::WideFromUtf8(text);
        DWORD written = 0;
        WriteConsoleW(console, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
    } else {
        std::fwrite(text.data(), 1, text.size(), stderr);
        std::fflush(stderr);
    }
}
