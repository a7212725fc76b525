#pragma once

#include <chrono>
#include <filesystem>

namespace campaign {

struct RoundOptions {
    std::filesystem::path folder;        // empty, of the round's own
    std::chrono::milliseconds patience;  // without any news, after which what is missing will not come
    bool calm = false;                   // nothing goes wrong: whatever is found then is a fault of the campaign itself
};

}  // namespace campaign
