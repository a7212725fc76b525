#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "duilib/paint_surface.h"
#include "duilib/shared_text.h"

namespace DuiLib {

// ---- What layouts name

// What a picture attribute names: "file='drawable/x.png' reverse='true'".
struct PictureReference {
    SharedText file;       // relative to the skin folder
    bool reverse = false;  // mirrored in right-to-left languages
    friend bool operator==(const PictureReference&, const PictureReference&) = default;
};

// Nothing when the text is not of that form. The empty text is a reference to no file, and draws nothing.
std::optional<PictureReference> ParsePicture(std::wstring_view text);

// The file to draw at a display scale [percent]: of "x.png" the drawing "x.svg" where there is one; else, above 100,
// the smallest of "x@125.png", "x@150.png", "x@200.png" and "x@300.png" that is made for that scale or a larger one, or
// the largest there is; else itself. Where the system draws no SVG files, the same PNG files are taken for "x.svg" and
// "x.png". Where the file cannot be read, that is reported once, and the fallback picture of
// CResourceManager is taken; the empty path when there is none.
std::filesystem::path FindPicture(const std::wstring& file, unsigned scale);

// ---- What is drawn of it

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
