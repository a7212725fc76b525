#include "transcript.h"

#include <iostream>
#include <mutex>

namespace settings_host {

void Say(const std::string& line) {
    static std::mutex mutex;
    const std::lock_guard<std::mutex> guard(mutex);
    std::cout << line << std::endl;
}

}  // namespace settings_host
