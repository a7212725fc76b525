#pragma once

#include <chrono>
#include <filesystem>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

namespace update_service {

struct InstallerCall {
    std::vector<std::string> command;  // program and arguments
    std::filesystem::path folder;      // in which it runs; a program with a slash in its name is looked up from there
    std::vector<std::pair<std::string, std::string>> environment;  // added to the service's own
};

enum class InstallerEnd { kSucceeded, kFailed, kAbandoned };

struct InstallerResult {
    InstallerEnd end;
    std::string reason;  // of a failure: "exit status 3", "signal 9", "PROGRAM: cannot be started: ..."
};

// Runs the installer and waits for its end; exit status 0 is success. Its output goes to standard error, and it runs in
// a process group of its own, so that what stops the service from a terminal does not stop it.
//
// When `stop` is requested the installer is given `grace` to end; then it is abandoned: it runs on, but
// nobody waits for it any more.
InstallerResult RunInstaller(const InstallerCall& call, const std::stop_token& stop, std::chrono::milliseconds grace);

}  // namespace update_service
