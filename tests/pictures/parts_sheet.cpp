#include "parts_sheet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace {

using namespace DuiLib;

constexpr int kGap = 12;  // [device px]
constexpr std::uint32_t kGray = 0xFF808080;

std::int64_t IndexOf(const PaintSurface& picture, int x, int y) { return std::int64_t{y} * picture.Size().cx + x; }

void PutInto(PaintSurface& sheet, const PaintSurface& part, int top) {
    for (int y = 0; y < part.Size().cy; ++y) {
        std::copy_n(part.Pixels() + IndexOf(part, 0, y), part.Size().cx,
                    sheet.Pixels() + IndexOf(sheet, kGap, top + y));
    }
}

}  // namespace

PaintSurface CutOut(const PaintSurface& picture, const CDuiRect& place) {
    const CDuiSize whole = picture.Size();
    if (place.left < 0 || place.top < 0 || place.right > whole.cx || place.bottom > whole.cy || place.Width() <= 0 ||
        place.Height() <= 0) {
        ADD_FAILURE() << "what is to be cut out does not lie in the picture";
        return {};
    }
    PaintSurface part({place.Width(), place.Height()});
    for (int y = 0; y < place.Height(); ++y) {
        std::copy_n(picture.Pixels() + IndexOf(picture, place.left, place.top + y), place.Width(),
                    part.Pixels() + IndexOf(part, 0, y));
    }
    return part;
}

PaintSurface PartsSheet::Compose() const {
    CDuiSize size{0, kGap};
    for (const PaintSurface& part : m_parts) {
        size.cx = std::max(size.cx, part.Size().cx + 2 * kGap);
        size.cy += part.Size().cy + kGap;
    }
    PaintSurface sheet(size);
    std::fill_n(sheet.Pixels(), IndexOf(sheet, 0, size.cy), kGray);
    int top = kGap;
    for (const PaintSurface& part : m_parts) {
        PutInto(sheet, part, top);
        top += part.Size().cy + kGap;
    }
    return sheet;
}
