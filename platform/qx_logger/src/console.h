#pragma once

#include <string_view>

// Writes UTF-8 text to standard error at once: a console shows it as such, a file or pipe gets the bytes. Text that
// cannot be written is lost.
void WriteToConsole(std::string_view text);
