#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "duilib/paint_surface.h"

namespace DuiLib {

// The picture of a file (SVG or PNG) as a raster as large as fits into the room [device px] in its own proportions;
// null when the file cannot be read, or the raster would be absurdly large. Kept as long as there is space, and valid
// until the next call. UI turn.
const PaintSurface* RasterOf(const std::filesystem::path& file, CDuiSize room);

// Whether a picture can be drawn; if not, says why with the file's name. Each file is looked at once. UI turn.
bool IsPictureReadable(const std::filesystem::path& file, std::string& reason);

// ---- What the system's drawing library does of it (linux/, windows/)

// An SVG file that was read and can be drawn.
class VectorDrawing {
public:
    virtual ~VectorDrawing() = default;
    virtual void Draw(PaintSurface& raster) const = 0;  // over all of it; throws std::runtime_error

    double width = 0;  // in whatever unit: what counts is the proportion; 0 where a drawing has none
    double height = 0;
};

// Whether the drawing library draws SVG files; if not, PNG files of the same name stand in for them.
bool CanDrawSvg();
std::unique_ptr<VectorDrawing> ReadDrawing(const std::filesystem::path& file);  // throws std::runtime_error

// PNG files; what is thrown, std::runtime_error, has the reason and does not name the file.
PaintSurface ReadPng(const std::filesystem::path& file);
void WritePng(const PaintSurface& picture, const std::filesystem::path& file);

PaintSurface Resized(const PaintSurface& raster, CDuiSize size);  // smoothly; neither of them is empty

}  // namespace DuiLib
