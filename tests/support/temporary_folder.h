#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>

#include "base/file.h"
#include "wait_until.h"

namespace test_support {

// A new, empty folder for one test, for this user only, removed at its end.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::string& prefix = "accessory_test")
        : m_path(std::filesystem::canonical(base::MakeTemporaryFolder(prefix))) {}
    ~TemporaryFolder() {
        std::error_code error;
        EXPECT_TRUE(WaitUntil([&] {  // on Windows the folder of a program that is just ending cannot be removed
            std::filesystem::remove_all(m_path, error);
            return !error;
        })) << error.message();
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return m_path; }
    operator const std::filesystem::path&() const { return m_path; }
    std::filesystem::path operator/(const std::filesystem::path& name) const { return m_path / name; }

    // A file of it. Returns its path.
    std::filesystem::path Write(const std::string& name, std::string_view text) const {
        std::ofstream(m_path / name, std::ios::binary) << text;
        return m_path / name;
    }

private:
    const std::filesystem::path m_path;
};

inline void WriteFile(const std::filesystem::path& file, const std::string& content) {
    std::ofstream(file, std::ios::binary) << content;
}

inline std::string ReadFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

// Bytes that do not repeat with any power of two.
inline std::string Bytes(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * i % 251);
    return bytes;
}

}  // namespace test_support
