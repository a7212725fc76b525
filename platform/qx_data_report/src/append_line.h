#pragma once

#include <filesystem>
#include <string>

// Appends the text to the file in one piece, so that lines of several threads and processes stay whole; makes the file
// when it is missing. False when it could not be written completely.
bool AppendWhole(const std::filesystem::path& file, const std::string& text);
