#include "foundation/program_folder.h"

#include <windows.h>

#include <string>

namespace DuiLib {

std::filesystem::path ProgramFolder() {
    std::wstring program(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = ::GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
        if (length == 0) return std::filesystem::current_path();
        if (length < program.size()) return std::filesystem::path(program.substr(0, length)).parent_path();
        program.resize(program.size() * 2);
    }
}

}  // namespace DuiLib
