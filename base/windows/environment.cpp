#include "base/environment.h"

#include <windows.h>

#include <cstdlib>

#include "base/text.h"

namespace base {

std::vector<std::string> OwnEnvironment() {
    std::vector<std::string> variables;
    wchar_t* const block = GetEnvironmentStringsW();
    if (block == nullptr) return variables;
    for (const wchar_t* entry = block; *entry != L'\0'; entry += std::char_traits<wchar_t>::length(entry) + 1) {
        variables.push_back(Utf8FromWide(entry));
    }
    FreeEnvironmentStringsW(block);
    return variables;
}

// Capitals do not count.
bool ComesBefore(const std::string& name, const std::string& other) {
    const std::wstring a = WideFromUtf8(name);
    const std::wstring b = WideFromUtf8(other);
    return CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(), static_cast<int>(b.size()), TRUE) ==
           CSTR_LESS_THAN;
}

// Through the C library, which keeps a copy for std::getenv. It takes an empty value for none.
void SetVariable(const std::string& name, const std::optional<std::string>& value) {
    _wputenv_s(WideFromUtf8(name).c_str(), WideFromUtf8(value.value_or("")).c_str());
}

}  // namespace base
