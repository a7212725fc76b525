#pragma once

#include <filesystem>
#include <string>
#include <string_view>

// Paths as texts that a person reads or writes, which are UTF-8 on every system, as path::string() is not. Any thread.
namespace base {

// With the system's own separators. Bytes of a Linux path that are not UTF-8 stay as they are.
std::string Utf8FromPath(const std::filesystem::path& path);

std::filesystem::path PathFromUtf8(std::string_view text);

// Whether files whose names differ in capitals only are different files.
bool CapitalsCount();

// Whether the name, in small letters, is a device's in every folder, whatever follows a dot.
bool IsDeviceName(const std::string& name);

// The folder that the running program lies in. Throws std::system_error when the system does not tell.
std::filesystem::path ProgramFolder();

// Makes a new, empty folder for this user only among the system's temporary files; its name begins with `prefix`.
// Throws std::runtime_error, naming the folder and the reason.
std::filesystem::path MakeTemporaryFolder(const std::string& prefix);

}  // namespace base
