#include "support/toolkit/test_system.h"

#include <windows.h>

#include <string>

namespace DuiLib {

std::filesystem::path FolderOfThisTest() {
    std::wstring program(1 << 15, L'\0');
    program.resize(::GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
    return std::filesystem::path(program).parent_path();
}

bool MakePipe(const std::filesystem::path&) { return false; }  // pipes have a place of their own

}  // namespace DuiLib
