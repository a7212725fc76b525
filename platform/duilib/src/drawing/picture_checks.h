#pragma once

#include <cstdint>
#include <filesystem>

#include "duilib/geometry.h"

namespace DuiLib {

// Throws std::runtime_error with the reason why this is no file that a picture can be read from.
void CheckPictureFile(const std::filesystem::path& file);

// ... when the picture in a PNG file is too large.
void CheckPngSize(const std::filesystem::path& file);

}  // namespace DuiLib
