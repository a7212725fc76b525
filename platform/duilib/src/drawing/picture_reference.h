#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "duilib/shared_text.h"

namespace DuiLib {

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

}  // namespace DuiLib
