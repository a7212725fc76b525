#include "process_usage.h"

#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace test_support {

namespace {

// The number behind `name` in the file.
std::uint64_t Number(const std::string& file, const std::string& name) {
    std::ifstream stream(file);
    std::string word;
    while (stream >> word) {
        std::uint64_t number = 0;
        if (word == name && stream >> number) return number;
    }
    throw std::runtime_error(file + ": " + name + " cannot be read");
}

}  // namespace

ProcessUsage UsageOf(int process) {
    const std::string folder = "/proc/" + std::to_string(process);
    ProcessUsage usage;
    usage.memory = 1024 * Number(folder + "/status", "RssAnon:");
    usage.threads = static_cast<int>(Number(folder + "/status", "Threads:"));
    const std::filesystem::directory_iterator handles(folder + "/fd");
    usage.handles = static_cast<int>(std::distance(begin(handles), end(handles)));
    return usage;
}

ProcessUsage OwnUsage() { return UsageOf(getpid()); }

std::uint64_t HeapInUse() {
    const auto heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

}  // namespace test_support
