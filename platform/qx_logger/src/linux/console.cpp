#include "console.h"

#include <cstdio>

void WriteToConsole(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}
