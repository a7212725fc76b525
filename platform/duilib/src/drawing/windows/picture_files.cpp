#include "drawing/windows/picture_files.h"

#include <stdexcept>

#include "drawing/canvas.h"
#include "drawing/picture_cache.h"
#include "drawing/picture_checks.h"
#include "drawing/windows/gdiplus_session.h"

namespace DuiLib {

namespace {

struct PictureFile {
    PaintSurface raster;
    double width = 0;
    double height = 0;
    std::string error;
};

PictureFile Read(const std::filesystem::path& file) {
    PictureFile picture;
    try {
        CheckPictureFile(file);
        if (file.extension() == ".svg")
            throw std::runtime_error("drawings cannot be read here, and no PNG file is made of it");
        CheckPngSize(file);
        picture.raster = PaintSurface::LoadPng(file);
        picture.width = picture.raster.Size().cx;
        picture.height = picture.raster.Size().cy;
    } catch (const std::exception& error) {
        picture.error = PictureError(file, error.what());
    }
    return picture;
}

PaintSurface Rastered(const PictureFile& picture, CDuiSize size) {
    const CDuiSize own = picture.raster.Size();
    if (own.cx == size.cx && own.cy == size.cy) return picture.raster;
    PaintSurface source = picture.raster;
    PaintSurface raster(size);
    Gdiplus::Bitmap from = GdiplusView(source);
    Gdiplus::Bitmap to = GdiplusView(raster);
    Gdiplus::Graphics graphics(&to);
    graphics.SetCompositingMode(Gdiplus::CompositingModeSourceCopy);
    graphics.SetInterpolationMode(Gdiplus::InterpolationModeHighQualityBicubic);
    graphics.SetPixelOffsetMode(Gdiplus::PixelOffsetModeHalf);
    Gdiplus::ImageAttributes mirroredAtEdges;  // nothing shines in from beyond the edges
    mirroredAtEdges.SetWrapMode(Gdiplus::WrapModeTileFlipXY);
    graphics.DrawImage(&from, Gdiplus::Rect(0, 0, size.cx, size.cy), 0, 0, own.cx, own.cy, Gdiplus::UnitPixel,
                       &mirroredAtEdges);
    graphics.Flush(Gdiplus::FlushIntentionSync);
    return raster;
}

using Pictures = PictureCache<PictureFile, PaintSurface>;

Pictures& AllPictures() {
    static Pictures pictures(&Read, &Rastered);
    return pictures;
}

}  // namespace

const PaintSurface* RasterOf(const std::filesystem::path& file, CDuiSize room) {
    return AllPictures().RasterOf(file, room);
}

bool IsPictureReadable(const std::filesystem::path& file, std::string& reason) {
    reason = AllPictures().FileOf(file).error;
    return reason.empty();
}

bool CanDrawSvg() { return false; }

}  // namespace DuiLib
