#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "base/child_process.h"

namespace settings_host {

// Programs of the host's own folder. Their standard input is empty and ends with the host, however that ends. What
// still runs at the end is stopped.
class ChildPrograms {
public:
    ChildPrograms() = default;
    ~ChildPrograms();
    ChildPrograms(const ChildPrograms&) = delete;
    ChildPrograms& operator=(const ChildPrograms&) = delete;

    // Returns once the program runs. Its output goes to a new file, or else nowhere, but its errors where the host's
    // go. Throws std::runtime_error, naming the program and the reason.
    void Start(const std::string& program, const std::vector<std::string>& arguments = {},
               const std::filesystem::path& output = {});

    // Returns once the program has ended: asked to by a signal, on Windows by the end of its input; killed when it
    // takes too long. Throws std::runtime_error when it was not started.
    void Stop(const std::string& program);

    // Whether it was started and has neither ended by itself nor been stopped.
    bool Runs(const std::string& program);

private:
    std::map<std::string, base::ChildProcess> m_running;  // by program
};

}  // namespace settings_host
