#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace settings_host {

// Programs of the host's own folder. Their standard input is empty and ends with the host, however that ends. What
// still runs at the end is stopped.
class ChildPrograms {
public:
    ~ChildPrograms();

    // Returns once the program runs. Its output goes to a new file, or else nowhere, but its errors where the host's
    // go. Throws std::runtime_error, naming the program and the reason.
    void Start(const std::string& program, const std::vector<std::string>& arguments = {},
               const std::filesystem::path& output = {});

    // Returns once the program has ended: asked to by a signal, on Windows by the end of its input. Throws
    // std::runtime_error when it was not started.
    void Stop(const std::string& program);

    // Whether it was started and has neither ended by itself nor been stopped.
    bool Runs(const std::string& program) const;

private:
#if defined(_WIN32)
    struct Child;
    std::map<std::string, std::shared_ptr<Child>> m_running;  // by program
#else
    std::map<std::string, int> m_running;  // process ids by program
#endif
};

}  // namespace settings_host
