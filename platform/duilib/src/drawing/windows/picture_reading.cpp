#include <stdexcept>

#include "drawing/picture_files.h"
#include "drawing/windows/gdiplus_session.h"

namespace DuiLib {

bool CanDrawSvg() { return false; }

std::unique_ptr<VectorDrawing> ReadDrawing(const std::filesystem::path&) {
    throw std::runtime_error("drawings cannot be read here, and no PNG file is made of it");
}

PaintSurface Resized(const PaintSurface& raster, CDuiSize size) {
    const CDuiSize own = raster.Size();
    if (own.cx == size.cx && own.cy == size.cy) return raster;
    PaintSurface source = raster;
    PaintSurface resized(size);
    Gdiplus::Bitmap from = GdiplusView(source);
    Gdiplus::Bitmap to = GdiplusView(resized);
    Gdiplus::Graphics graphics(&to);
    graphics.SetCompositingMode(Gdiplus::CompositingModeSourceCopy);
    graphics.SetInterpolationMode(Gdiplus::InterpolationModeHighQualityBicubic);
    graphics.SetPixelOffsetMode(Gdiplus::PixelOffsetModeHalf);
    Gdiplus::ImageAttributes mirroredAtEdges;  // nothing shines in from beyond the edges
    mirroredAtEdges.SetWrapMode(Gdiplus::WrapModeTileFlipXY);
    graphics.DrawImage(&from, Gdiplus::Rect(0, 0, size.cx, size.cy), 0, 0, own.cx, own.cy, Gdiplus::UnitPixel,
                       &mirroredAtEdges);
    graphics.Flush(Gdiplus::FlushIntentionSync);
    return resized;
}

}  // namespace DuiLib
