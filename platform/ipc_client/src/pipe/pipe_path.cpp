#include "pipe/pipe_path.h"

#include <algorithm>
#include <cstdint>

#include "base/path.h"
#include "base/process.h"

namespace ipc_client {
namespace {

bool HasPrefix(std::wstring_view name) {
    const auto lower = [](wchar_t c) { return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c; };
    const auto alike = [&](wchar_t a, wchar_t b) { return lower(a) == lower(b); };
    return name.size() >= kPipePrefix.size() && std::equal(kPipePrefix.begin(), kPipePrefix.end(), name.begin(), alike);
}

bool IsForbidden(wchar_t c) { return c == L'/' || c == L'\\' || static_cast<std::uint32_t>(c) < 32; }

}  // namespace

std::wstring PlainPipeName(const std::wstring& pipeName) {
    std::wstring name = HasPrefix(pipeName) ? pipeName.substr(kPipePrefix.size()) : pipeName;
    std::replace_if(name.begin(), name.end(), IsForbidden, L'_');
    return name;
}

std::filesystem::path ChosenPipeFolder() {
    return base::PathFromUtf8(base::Variable("BRINDLE_PIPE_DIR").value_or(std::string()));
}

}  // namespace ipc_client
