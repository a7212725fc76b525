#include "pipe/pipe_path.h"

#include <cstdint>
#include <string_view>

namespace ipc_client {
namespace {

// FNV-1a: the same number for the same folder in every process.
std::uint64_t Hash(std::wstring_view text) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const wchar_t unit : text) hash = (hash ^ unit) * 0x100000001B3;
    return hash;
}

// "brindle-0123456789abcdef-" for a chosen pipe folder, else empty.
std::wstring FolderMark() {
    const std::filesystem::path folder = ChosenPipeFolder();
    if (folder.empty()) return {};
    static constexpr wchar_t kDigits[] = L"0123456789abcdef";
    std::wstring mark = L"brindle-";
    const std::uint64_t hash = Hash(folder.native());
    for (int shift = 60; shift >= 0; shift -= 4) mark += kDigits[(hash >> shift) & 15];
    return mark + L'-';
}

}  // namespace

std::filesystem::path PipePath(const std::wstring& pipeName) {
    return std::wstring(kPipePrefix) + FolderMark() + PlainPipeName(pipeName);
}

}  // namespace ipc_client
