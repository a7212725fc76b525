#include "pipe/pipe_path.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include "base/file.h"
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

void FailAt(const std::filesystem::path& path, const std::string& reason) {
    throw std::runtime_error(base::Utf8FromPath(path) + ": " + reason);
}

void FailAsTaken(const std::filesystem::path& path, const std::string& reason) {
    FailAt(path, "the name is taken by another broker (" + reason + ")");
}

void CheckBrokersUser(const std::filesystem::path& path, bool isThisUser) {
    if (!isThisUser) FailAt(path, "the broker belongs to another user");
}

void CheckLength(const std::filesystem::path& path, const char* what, std::size_t limit, const char* unit) {
    const std::size_t length = path.native().size();
    if (length <= limit) return;
    FailAt(path, std::string(what) + " may have " + std::to_string(limit) + " " + unit + ", this one has " +
                     std::to_string(length));
}

}  // namespace ipc_client
