#include <windows.h>
// The snapshot's header needs the one before it.
#include <tlhelp32.h>

#include <string>
#include <string_view>

#include "kernel/code_pages.h"
#include "running_programs.h"

namespace {

constexpr std::wstring_view kExtension = L".exe";

bool AreSame(std::wstring_view a, std::wstring_view b) {
    return CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(), static_cast<int>(b.size()), TRUE) ==
           CSTR_EQUAL;
}

// A configuration may say "pen_studio" or "pen_studio.exe", in any case.
std::wstring_view WithoutExtension(std::wstring_view name) {
    if (name.size() <= kExtension.size()) return name;
    const std::wstring_view end = name.substr(name.size() - kExtension.size());
    return AreSame(end, kExtension) ? name.substr(0, name.size() - kExtension.size()) : name;
}

std::wstring WideFromUtf8(const std::string& text) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');
    const int length = kernel::MultiByteToWideChar(kernel::kCodePageUtf8, 0, text.data(), size, wide.data(), size);
    wide.resize(static_cast<std::size_t>(length));
    return wide;
}

}  // namespace

bool IsProgramRunning(const std::string& fileName) {
    const std::wstring wide = WideFromUtf8(fileName);
    const std::wstring_view wanted = WithoutExtension(wide);
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (snapshot == INVALID_HANDLE_VALUE) return false;
    bool found = false;
    PROCESSENTRY32W process{};
    process.dwSize = sizeof process;
    for (BOOL more = Process32FirstW(snapshot, &process); more && !found; more = Process32NextW(snapshot, &process)) {
        found = AreSame(WithoutExtension(process.szExeFile), wanted);
    }
    CloseHandle(snapshot);
    return found;
}
