#pragma once

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

// What tests of every system need and no standard library has.
namespace test_support {

// A new, empty folder that nothing else uses, for this user alone; whoever asked removes it.
inline std::filesystem::path MakeOwnFolder(const std::string& prefix) {
    std::random_device random;
    for (;;) {
        const std::filesystem::path folder =
            std::filesystem::temp_directory_path() / (prefix + '_' + std::to_string(random()));
        if (!std::filesystem::create_directory(folder)) continue;
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
        return folder;
    }
}

// Sets a variable of this process's environment; null removes it.
inline void SetVariable(const std::string& name, const char* value) {
#if defined(_WIN32)
    _putenv_s(name.c_str(), value != nullptr ? value : "");
#else
    value != nullptr ? setenv(name.c_str(), value, 1) : unsetenv(name.c_str());
#endif
}

}  // namespace test_support
