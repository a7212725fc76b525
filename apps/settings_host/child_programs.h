#pragma once

#include <map>
#include <memory>
#include <string>

namespace settings_host {

// Programs of the host's own folder, started and stopped by scripts. What still runs at the end is stopped.
class ChildPrograms {
public:
    ~ChildPrograms();

    // Returns once the program runs. Throws std::runtime_error, naming the program and the reason.
    void Start(const std::string& program);

    // Returns once the program has ended. Throws std::runtime_error when it was not started.
    void Stop(const std::string& program);

private:
#if defined(_WIN32)
    struct Child;
    std::map<std::string, std::shared_ptr<Child>> m_running;  // by program
#else
    std::map<std::string, int> m_running;  // process ids by program
#endif
};

}  // namespace settings_host
