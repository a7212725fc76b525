#include "module_loader/page_module.h"

#include <windows.h>

#include <stdexcept>
#include <string>

#include "base/file.h"
#include "base/reason.h"

namespace {

using base::LastReason;
using base::Utf8FromPath;

constexpr const char* kCreateSetting = "CreateSetting";
constexpr const char* kCloseWnd = "?CloseWnd@@YAXXZ";  // void CloseWnd(), as the system's own compiler decorates it

template <typename Function>
Function Lookup(HMODULE library, const char* name, const std::filesystem::path& file) {
    const FARPROC address = GetProcAddress(library, name);
    if (address == nullptr) throw std::runtime_error(Utf8FromPath(file) + ": the module does not export " + name);
    return reinterpret_cast<Function>(reinterpret_cast<void*>(address));
}

}  // namespace

PageModule::PageModule(const std::filesystem::path& file) : m_file(file) {
    const HMODULE library = LoadLibraryW(file.c_str());
    m_library = library;
    if (library == nullptr)
        throw std::runtime_error(Utf8FromPath(file) + ": the module cannot be loaded: " + LastReason());
    m_create = Lookup<CreateFunction>(library, kCreateSetting, file);
    m_close = Lookup<CloseFunction>(library, kCloseWnd, file);
}

bool PageModule::Unload() {
    FreeLibrary(static_cast<HMODULE>(m_library));
    return GetModuleHandleW(m_file.c_str()) == nullptr;
}

// Libraries stand beside the programs here.
std::filesystem::path PageModule::DefaultPath() { return base::ProgramFolder() / "AccessoriesUpgrade.dll"; }
