#pragma once

#include <cstdint>
#include <string>

#include "duilib/paint_surface.h"

// How far two pictures that count as equal may be apart: what another build of the drawing libraries may round
// otherwise, and less than one glyph or the faintest line of the page.
inline constexpr int kLevels = 2;               // of 255, in each channel of a pixel
inline constexpr std::int64_t kPixelsOff = 10;  // in a million, that may be further apart

struct PictureDifference {
    bool sameSize = true;
    std::int64_t pixelsOff = 0;  // further apart than kLevels; all of the larger picture where sizes differ
    int mostLevels = 0;          // the largest distance in a channel
    bool equal = true;

    std::string Words() const;  // for people, for example "31 pixels differ, by up to 120 levels"
};

PictureDifference Compare(const DuiLib::PaintSurface& expected, const DuiLib::PaintSurface& actual);

// The expected picture, faint, with everything that counts as different in red; as large as both together.
DuiLib::PaintSurface DrawDifference(const DuiLib::PaintSurface& expected, const DuiLib::PaintSurface& actual);
