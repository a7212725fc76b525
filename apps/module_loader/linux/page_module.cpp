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

PageModule::PageModule(const std::filesystem::path& file)
    : m_file(file), m_library(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (m_library == nullptr)
        throw std::runtime_error(base::Utf8FromPath(file) + ": the module cannot be loaded: " + dlerror());
    m_create = reinterpret_cast<CreateFunction>(Lookup(m_library, kCreateSetting, file));
    m_close = reinterpret_cast<CloseFunction>(Lookup(m_library, kCloseWnd, file));
}

bool PageModule::Unload() {
    dlclose(m_library);
    void* const still = dlopen(m_file.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (still != nullptr) dlclose(still);
    return still == nullptr;
}

std::filesystem::path PageModule::DefaultPath() {
    return base::ProgramFolder().parent_path() / "lib" / "libAccessoriesUpgrade.so";
}
