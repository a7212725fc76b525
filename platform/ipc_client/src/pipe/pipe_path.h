#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace ipc_client {

// What begins a pipe's name; taken in any case.
inline constexpr std::wstring_view kPipePrefix = L"\\\\.\\Pipe\\";

// The name without its prefix, if it has one. Characters that a file name cannot carry have become '_'.
std::wstring PlainPipeName(const std::wstring& pipeName);

// Where the pipe of that name is on this system: "\\.\Pipe\NAME" is NAME.sock in the pipe folder, which is
// $BRINDLE_PIPE_DIR, else brindle/ in $XDG_RUNTIME_DIR if that is an absolute path of a folder of this user, else
// /tmp/brindle-UID/, for which another folder stands in where another user has it (linux/pipe_folder.h). Creates and
// checks nothing.
//
// On Windows it is that pipe; $BRINDLE_PIPE_DIR puts a mark of that folder before NAME, so that programs with another
// one do not meet it.
std::filesystem::path PipePath(const std::wstring& pipeName);

// What $BRINDLE_PIPE_DIR says; empty when it says nothing.
std::filesystem::path ChosenPipeFolder();

// Why a pipe cannot be had, for the systems' sources. Each throws std::runtime_error naming the path.
[[noreturn]] void FailAt(const std::filesystem::path& path, const std::string& reason);
[[noreturn]] void FailAsTaken(const std::filesystem::path& path, const std::string& reason);  // by another broker
void CheckBrokersUser(const std::filesystem::path& path, bool isThisUser);
// `what` has the name ("a pipe's name"), counted in `unit`s of the path's own characters.
void CheckLength(const std::filesystem::path& path, const char* what, std::size_t limit, const char* unit);

}  // namespace ipc_client
