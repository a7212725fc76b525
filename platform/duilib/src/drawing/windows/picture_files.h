#pragma once

#include <filesystem>

#include "duilib/geometry.h"
#include "duilib/paint_surface.h"

namespace DuiLib {

// The picture of a PNG file as a raster as large as fits into the room [device px] in its own proportions; null when
// the file cannot be read, or the raster would be absurdly large. Kept as long as there is space, and valid until the
// next call. UI turn.
const PaintSurface* RasterOf(const std::filesystem::path& file, CDuiSize room);

}  // namespace DuiLib
