#pragma once

#include <vector>

#include "duilib/paint_surface.h"

// A part of a picture; `place` lies in it [device px], or the test fails.
DuiLib::PaintSurface CutOut(const DuiLib::PaintSurface& picture, const DuiLib::CDuiRect& place);

// Parts of pictures, one below the other, for a look of which whole pictures would be too large to keep.
class PartsSheet {
public:
    void Add(DuiLib::PaintSurface part) { m_parts.push_back(std::move(part)); }

    // On gray, with gaps between the parts.
    DuiLib::PaintSurface Compose() const;

private:
    std::vector<DuiLib::PaintSurface> m_parts;
};
