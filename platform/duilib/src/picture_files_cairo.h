#pragma once

#include <cairo.h>

#include <filesystem>

#include "duilib/geometry.h"

namespace DuiLib {

// The picture of a file as a raster of exactly that size [device px], in the middle and as large as fits; null when the
// file cannot be read. Kept as long as there is room, and valid until the next call. UI turn.
cairo_surface_t* RasterOf(const std::filesystem::path& file, CDuiSize size);

}  // namespace DuiLib
