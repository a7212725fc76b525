#include "module_loader/page_module.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

#include "base/file.h"

namespace {

constexpr const char* kCreateSetting = "CreateSetting";
constexpr const char* kCloseWnd = "_Z8CloseWndv";  // void CloseWnd(), as the compiler decorates it

void* Lookup(void* library, const char* name, const std::filesystem::path& file) {
    void* const address = dlsym(library, name);
    if (address == nullptr) throw std::runtime_error(base::Utf8FromPath(file) + ": the module does not export " + name);
    return address;
}

}  // namespace

PageModule::PageModule(const std::filesystem::path& file) {
    void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr)
        throw std::runtime_error(base::Utf8FromPath(file) + ": the module cannot be loaded: " + dlerror());
    m_create = reinterpret_cast<CreateFunction>(Lookup(library, kCreateSetting, file));
    m_close = reinterpret_cast<CloseFunction>(Lookup(library, kCloseWnd, file));
}

std::filesystem::path PageModule::DefaultPath() {
    return base::ProgramFolder().parent_path() / "lib" / "libAccessoriesUpgrade.so";
}
