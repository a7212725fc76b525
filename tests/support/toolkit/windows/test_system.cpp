#include "support/toolkit/test_system.h"

#include <windows.h>

#include <stdexcept>
#include <string>

namespace DuiLib {

std::filesystem::path FolderOfThisTest() {
    std::wstring program(1 << 15, L'\0');
    program.resize(::GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
    return std::filesystem::path(program).parent_path();
}

std::filesystem::path MakeTemporaryFolder() {
    static int made = 0;
    const auto base = std::filesystem::temp_directory_path();
    for (int attempt = 0; attempt < 1000; ++attempt) {
        const auto folder = base / ("duilib-test-" + std::to_string(::GetCurrentProcessId()) + "-" +
                                    std::to_string(::GetTickCount64()) + "-" + std::to_string(++made));
        if (std::filesystem::create_directory(folder)) return folder;
    }
    throw std::runtime_error("no temporary folder");
}

bool MakePipe(const std::filesystem::path&) { return false; }  // pipes have a place of their own

}  // namespace DuiLib
