#include <windows.h>
// The snapshot's header needs the one before it.
#include <tlhelp32.h>

#include <string>
#include <string_view>

#include "base/handle.h"
#include "base/text.h"
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

}  // namespace

bool IsProgramRunning(const std::string& fileName) {
    const std::wstring wide = base::WideFromUtf8(fileName);
    const std::wstring_view wanted = WithoutExtension(wide);
    const base::OwnedHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    if (!snapshot) return false;
    bool found = false;
    PROCESSENTRY32W process{};
    process.dwSize = sizeof process;
    for (BOOL more = Process32FirstW(snapshot.Handle(), &process); more && !found;
         more = Process32NextW(snapshot.Handle(), &process)) {
        found = AreSame(WithoutExtension(process.szExeFile), wanted);
    }
    return found;
}
