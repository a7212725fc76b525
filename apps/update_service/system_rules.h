#pragma once

#include <string>
#include <vector>

// How the system differs from others in shells and in names of files.
namespace update_service {

// The program and arguments that let the system's shell carry out a text. Arguments that are put behind them are the
// text's own, where the shell knows such.
std::vector<std::string> ShellCommand(std::string text);

// Whether files whose names differ in capitals only are different files.
bool CapitalsCount();

// Whether the name, in small letters, is a device's in every folder, whatever follows a dot.
bool IsDeviceName(const std::string& name);

}  // namespace update_service
