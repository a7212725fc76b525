#include "drawing/picture_files.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <map>
#include <stdexcept>
#include <tuple>

#include "base/path.h"
#include "base/reason.h"

namespace DuiLib {

namespace {

constexpr std::uint64_t kMaxPicturePixels = 64'000'000;
constexpr std::uintmax_t kMaxFileSize = 64 << 20;    // [bytes]
constexpr std::int64_t kMaxRasterPixels = 16 << 20;  // 64 MB, more than a screen full
constexpr int kMaxSide = 8192;                       // [device px] of what is drawn

// A picture that was read: a drawing or a raster. With neither it could not be, and the error says why.
struct PictureFile {
    std::unique_ptr<VectorDrawing> drawing;
    PaintSurface raster;
    std::string error;

    double Width() const { return drawing ? drawing->width : raster.Size().cx; }
    double Height() const { return drawing ? drawing->height : raster.Size().cy; }
};

// ---- Reading

// Throws std::runtime_error with the reason why this is no file that a picture can be read from.
void CheckFile(const std::filesystem::path& file) {
    std::error_code error;
    const auto status = std::filesystem::status(file, error);
    if (status.type() == std::filesystem::file_type::not_found) throw std::runtime_error("there is no such file");
    if (error) throw std::runtime_error(base::Reason(error));
    if (!std::filesystem::is_regular_file(status)) throw std::runtime_error("it is no file");
    if (std::filesystem::file_size(file) > kMaxFileSize) throw std::runtime_error("the file is too large");
}

// Width and height stand at the beginning of every PNG file, in the 16th to the 23rd byte.
void CheckPngSize(const std::filesystem::path& file) {
    unsigned char head[24] = {};
    std::ifstream(file, std::ios::binary).read(reinterpret_cast<char*>(head), sizeof head);
    const auto number = [&head](int at) {
        return std::uint64_t{head[at]} << 24 | std::uint64_t{head[at + 1]} << 16 | std::uint64_t{head[at + 2]} << 8 |
               head[at + 3];
    };
    if (number(16) * number(20) > kMaxPicturePixels) throw std::runtime_error("the picture is too large");
}

PictureFile Read(const std::filesystem::path& file) {
    PictureFile picture;
    try {
        CheckFile(file);
        if (file.extension() == ".svg") {
            picture.drawing = ReadDrawing(file);
        } else {
            CheckPngSize(file);
            picture.raster = ReadPng(file);
        }
    } catch (const std::exception& error) {
        picture.error = base::Utf8FromPath(file) + ": " + base::Reason(error);
    }
    return picture;
}

const PictureFile& FileOf(const std::filesystem::path& file) {
    static std::map<std::filesystem::path, PictureFile> files;
    const auto found = files.find(file);
    return found != files.end() ? found->second : files.emplace(file, Read(file)).first->second;
}

// ---- Rasters

// As large as fits in its own proportions.
CDuiSize Fitted(const PictureFile& picture, CDuiSize room) {
    const double width = picture.Width();
    const double height = picture.Height();
    if (width <= 0 || height <= 0) return room;
    const double scale = std::min(room.cx / width, room.cy / height);
    return {static_cast<int>(std::lround(width * scale)), static_cast<int>(std::lround(height * scale))};
}

PaintSurface Rastered(const PictureFile& picture, CDuiSize size) {
    if (picture.drawing) {
        PaintSurface raster(size);
        picture.drawing->Draw(raster);
        return raster;
    }
    const CDuiSize own = picture.raster.Size();
    return own.cx > 0 && own.cy > 0 ? Resized(picture.raster, size) : PaintSurface(size);
}

}  // namespace

const PaintSurface* RasterOf(const std::filesystem::path& file, CDuiSize room) {
    static std::map<std::tuple<std::filesystem::path, int, int>, PaintSurface> rasters;
    static std::int64_t pixels = 0;
    const PictureFile& picture = FileOf(file);
    if (!picture.error.empty()) return nullptr;
    const CDuiSize size = Fitted(picture, room);
    if (size.cx <= 0 || size.cy <= 0 || size.cx > kMaxSide || size.cy > kMaxSide) return nullptr;
    const std::tuple key{file, size.cx, size.cy};
    if (const auto found = rasters.find(key); found != rasters.end()) return &found->second;
    pixels += std::int64_t{size.cx} * size.cy;
    if (pixels > kMaxRasterPixels) {
        rasters.clear();
        pixels = std::int64_t{size.cx} * size.cy;
    }
    return &rasters.emplace(key, Rastered(picture, size)).first->second;
}

bool IsPictureReadable(const std::filesystem::path& file, std::string& reason) {
    reason = FileOf(file).error;
    return reason.empty();
}

}  // namespace DuiLib
