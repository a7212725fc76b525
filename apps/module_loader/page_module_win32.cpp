#include <windows.h>

#include <stdexcept>
#include <string>
#include <system_error>

#include "module_loader/page_module.h"

namespace {

constexpr const char* kCreateSetting = "CreateSetting";
constexpr const char* kCloseWnd = "?CloseWnd@@YAXXZ";  // void CloseWnd(), as the system's own compiler decorates it

std::string LastReason() { return std::error_code(static_cast<int>(GetLastError()), std::system_category()).message(); }

template <typename Function>
Function Lookup(HMODULE library, const char* name, const std::filesystem::path& file) {
    const FARPROC address = GetProcAddress(library, name);
    if (address == nullptr) {
        throw std::runtime_error(file.string() + ": the module does not export " + name + ": " + LastReason());
    }
    return reinterpret_cast<Function>(reinterpret_cast<void*>(address));
}

// The whole path, however long.
std::filesystem::path Program() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) return path.substr(0, length);
        path.resize(path.size() * 2);
    }
}

}  // namespace

PageModule::PageModule(const std::filesystem::path& file) {
    const HMODULE library = LoadLibraryW(file.c_str());
    if (library == nullptr) {
        throw std::runtime_error(file.string() + ": the module cannot be loaded: " + LastReason());
    }
    m_create = Lookup<CreateFunction>(library, kCreateSetting, file);
    m_close = Lookup<CloseFunction>(library, kCloseWnd, file);
}

void PageModule::CreateSetting(DuiLib::CPaintManagerUI* paintManager, DuiLib::CNotifyPump* notifyPump,
                               DuiLib::CContainerUI* parent) const {
    m_create(paintManager, notifyPump, parent);
}

void PageModule::CloseWnd() const { m_close(); }

// Libraries stand beside the programs here.
std::filesystem::path PageModule::DefaultPath() { return Program().parent_path() / "AccessoriesUpgrade.dll"; }
