#include <cstring>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

#include "drawing/pictures.h"
#include "drawing/windows/gdiplus_library.h"
#include "drawing/windows/pixels.h"

namespace DuiLib {

namespace {

constexpr CLSID kPngEncoder{0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

void Check(Gdiplus::Status status, const std::string& what) {
    if (status != Gdiplus::Ok) throw std::runtime_error(what + ", status " + std::to_string(static_cast<int>(status)));
}

// GDI+ reads other formats, too, some of which do more than draw.
void CheckIsPng(const std::filesystem::path& file) {
    constexpr std::string_view kSignature("\x89PNG\r\n\x1a\n", 8);
    char head[kSignature.size()] = {};
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw std::runtime_error("it cannot be opened");
    stream.read(head, sizeof head);
    if (std::string_view(head, sizeof head) != kSignature) throw std::runtime_error("it is no PNG file");
}

}  // namespace

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

// Files hold colours that are not multiplied: GDI+ and this library shall not round them differently.
void WritePng(const PaintSurface& picture, const std::filesystem::path& file) {
    const CDuiSize size = picture.Size();
    const std::size_t count = static_cast<std::size_t>(size.cx) * static_cast<std::size_t>(size.cy);
    if (count == 0) throw std::runtime_error("there is nothing to save");
    StartGdiplus();
    std::vector<std::uint32_t> plain(count);
    std::transform(picture.Pixels(), picture.Pixels() + count, plain.begin(), Divided);
    Gdiplus::Bitmap png(size.cx, size.cy, picture.BytesPerRow(), PixelFormat32bppARGB,
                        reinterpret_cast<BYTE*>(plain.data()));
    Check(png.Save(file.c_str(), &kPngEncoder, nullptr), "it cannot be written");
}

PaintSurface ReadPng(const std::filesystem::path& file) {
    CheckIsPng(file);
    StartGdiplus();
    Gdiplus::Bitmap png(file.c_str());
    Check(png.GetLastStatus(), "it cannot be read");
    PaintSurface loaded({static_cast<int>(png.GetWidth()), static_cast<int>(png.GetHeight())});
    const CDuiSize size = loaded.Size();
    const Gdiplus::Rect whole(0, 0, size.cx, size.cy);
    Gdiplus::BitmapData data{};
    Check(png.LockBits(&whole, Gdiplus::ImageLockModeRead, PixelFormat32bppARGB, &data), "it cannot be read");
    for (int y = 0; y < size.cy; ++y) {
        const auto* const row = reinterpret_cast<const std::uint32_t*>(static_cast<const BYTE*>(data.Scan0) +
                                                                       std::ptrdiff_t{y} * data.Stride);
        std::transform(row, row + size.cx, loaded.Pixels() + std::ptrdiff_t{y} * size.cx, Multiplied);
    }
    png.UnlockBits(&data);
    return loaded;
}

}  // namespace DuiLib
