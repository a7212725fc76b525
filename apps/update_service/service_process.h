#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace update_service {

// The built service in a process of its own, for tests. It writes its standard error to a file.
class ServiceProcess {
public:
    // Starts it with these options; the file is made anew. Throws std::system_error.
    ServiceProcess(std::vector<std::string> options, const std::filesystem::path& errors);
    ~ServiceProcess();  // ends it as a crash would, when it still runs
    ServiceProcess(const ServiceProcess&) = delete;
    ServiceProcess& operator=(const ServiceProcess&) = delete;

    // What the service logs when it is asked to end, for each way in which this system asks.
    static std::vector<std::string> WaysToEnd();

    // Asks it in the way of that place in the list.
    void AskToEnd(std::size_t way = 0);

    // Ends it at once, as a crash or a power cut would. Returns when it is gone.
    void Kill();

    // Waits for its end and returns its exit status; minus the number of the signal that ended it.
    int Wait();

private:
    std::intptr_t m_process = 0;                 // 0: it has ended
    [[maybe_unused]] std::intptr_t m_input = 0;  // Windows: our end of its standard input
};

}  // namespace update_service
