#pragma once

#include <filesystem>

namespace DuiLib {

// What tests need of the operating system, found without the library under test.

std::filesystem::path FolderOfThisTest();  // where the running program lies

// Makes something that opens like a file and would keep a reader waiting. False where the system has no such thing in
// folders.
bool MakePipe(const std::filesystem::path& path);

}  // namespace DuiLib
