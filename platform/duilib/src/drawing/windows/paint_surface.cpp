#include <cstring>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

#include "base/path.h"
#include "drawing/windows/gdiplus_session.h"
#include "drawing/windows/pixel_blending.h"

namespace DuiLib {

namespace {

constexpr CLSID kPngEncoder{0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

[[noreturn]] void Fail(const std::filesystem::path& file, const std::string& reason) {
    throw std::runtime_error(base::Utf8FromPath(file) + ": " + reason);
}

void Check(Gdiplus::Status status, const std::filesystem::path& file, const char* what) {
    if (status != Gdiplus::Ok) Fail(file, what + std::string(", status ") + std::to_string(static_cast<int>(status)));
}

// GDI+ reads other formats, too, some of which do more than draw.
void CheckIsPng(const std::filesystem::path& file) {
    constexpr std::string_view kSignature("\x89PNG\r\n\x1a\n", 8);
    char head[kSignature.size()] = {};
    std::ifstream stream(file, std::ios::binary);
    if (!stream) Fail(file, "it cannot be opened");
    stream.read(head, sizeof head);
    if (std::string_view(head, sizeof head) != kSignature) Fail(file, "it is no PNG file");
}

}  // namespace

// Files hold colours that are not multiplied: GDI+ and this library shall not round them differently.
void PaintSurface::SavePng(const std::filesystem::path& file) const {
    if (m_pixels.empty()) Fail(file, "there is nothing to save");
    StartGdiplus();
    std::vector<std::uint32_t> plain(m_pixels.size());
    std::transform(m_pixels.begin(), m_pixels.end(), plain.begin(), Divided);
    Gdiplus::Bitmap picture(m_size.cx, m_size.cy, BytesPerRow(), PixelFormat32bppARGB,
                            reinterpret_cast<BYTE*>(plain.data()));
    Check(picture.Save(file.c_str(), &kPngEncoder, nullptr), file, "it cannot be written");
}

PaintSurface PaintSurface::LoadPng(const std::filesystem::path& file) {
    CheckIsPng(file);
    StartGdiplus();
    Gdiplus::Bitmap png(file.c_str());
    Check(png.GetLastStatus(), file, "it cannot be read");
    PaintSurface loaded({static_cast<int>(png.GetWidth()), static_cast<int>(png.GetHeight())});
    const Gdiplus::Rect whole(0, 0, loaded.m_size.cx, loaded.m_size.cy);
    Gdiplus::BitmapData data{};
    Check(png.LockBits(&whole, Gdiplus::ImageLockModeRead, PixelFormat32bppARGB, &data), file, "it cannot be read");
    for (int y = 0; y < loaded.m_size.cy; ++y) {
        const auto* const row = reinterpret_cast<const std::uint32_t*>(static_cast<const BYTE*>(data.Scan0) +
                                                                       std::ptrdiff_t{y} * data.Stride);
        std::transform(row, row + loaded.m_size.cx, loaded.m_pixels.data() + std::ptrdiff_t{y} * loaded.m_size.cx,
                       Multiplied);
    }
    png.UnlockBits(&data);
    return loaded;
}

}  // namespace DuiLib
