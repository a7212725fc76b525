#include "reason_win32.h"

#include <windows.h>

#include <algorithm>
#include <array>

#include "path_text.h"

namespace app_system {

std::string Reason(unsigned long error) {
    std::array<const wchar_t*, 9> inserts;  // "%1 is not a valid Win32 application."
    inserts.fill(L"the file");
    std::array<wchar_t, 1024> text{};
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_ARGUMENT_ARRAY, nullptr, error, 0,
                                        text.data(), static_cast<DWORD>(text.size()),
                                        reinterpret_cast<va_list*>(const_cast<wchar_t**>(inserts.data())));
    std::wstring line(text.data(), length);
    std::replace_if(
        line.begin(), line.end(), [](wchar_t c) { return c == L'\r' || c == L'\n'; }, L' ');
    line.erase(line.find_last_not_of(L" .") + 1);
    return line.empty() ? "error " + std::to_string(error) : Utf8(line);
}

std::string LastReason() { return Reason(GetLastError()); }

}  // namespace app_system
