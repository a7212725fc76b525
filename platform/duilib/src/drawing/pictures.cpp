#include "drawing/pictures.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <map>
#include <stdexcept>
#include <tuple>
#include <utility>

#include "base/file.h"
#include "base/reason.h"
#include "duilib/resource_manager.h"
#include "foundation/diagnostics.h"

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

// ---- What layouts name

std::optional<PictureReference> ParsePicture(std::wstring_view text) {
    if (text.empty()) return PictureReference{};
    PictureReference picture;
    constexpr std::wstring_view kHead = L"file='";
    constexpr std::wstring_view kReverse = L" reverse='true'";
    constexpr std::wstring_view kPlain = L" reverse='false'";
    if (text.ends_with(kReverse)) {
        picture.reverse = true;
        text.remove_suffix(kReverse.size());
    } else if (text.ends_with(kPlain)) {
        text.remove_suffix(kPlain.size());
    }
    if (!text.starts_with(kHead) || !text.ends_with(L'\'')) return {};
    text.remove_prefix(kHead.size());
    if (text.size() < 2 || text.find(L"' ") != text.npos) return {};  // something else follows the file
    picture.file = SharedText(text.substr(0, text.size() - 1));
    return picture;
}

namespace {

std::filesystem::path VersionFor(const std::filesystem::path& file, unsigned scale) {
    const bool drawing = file.extension() == ".svg";
    if (file.extension() != ".png" && (!drawing || CanDrawSvg())) return file;
    std::error_code ignored;
    std::filesystem::path version = file;
    version.replace_extension(".svg");
    if (CanDrawSvg() && std::filesystem::exists(version, ignored)) return version;
    std::filesystem::path largest = file;
    largest.replace_extension(".png");
    for (const unsigned made : {125u, 150u, 200u, 300u}) {
        version = file.parent_path() / file.stem();
        version += "@" + std::to_string(made) + ".png";
        if (scale <= 100 || !std::filesystem::exists(version, ignored)) continue;
        if (made >= scale) return version;
        largest = version;
    }
    return largest;
}

std::filesystem::path Choose(const std::wstring& file, unsigned scale) {
    const CResourceManager& resources = *CResourceManager::GetInstance();
    std::string reason;
    const std::filesystem::path found = VersionFor(resources.ResolveSkinFile(file), scale);
    if (IsPictureReadable(found, reason)) return found;
    Report("the picture cannot be shown: " + reason);
    const std::filesystem::path fallback = VersionFor(resources.GetFallbackPicture(), scale);
    return !fallback.empty() && IsPictureReadable(fallback, reason) ? fallback : std::filesystem::path();
}

}  // namespace

std::filesystem::path FindPicture(const std::wstring& file, unsigned scale) {
    static std::map<std::pair<std::filesystem::path, unsigned>, std::filesystem::path> chosen;
    const std::pair key{CResourceManager::GetInstance()->ResolveSkinFile(file), scale};
    const auto found = chosen.find(key);
    return found != chosen.end() ? found->second : chosen.emplace(key, Choose(file, scale)).first->second;
}

// ---- Pictures in memory

namespace {

// Names the file in what the work throws.
template <class Work>
auto NamingFile(const std::filesystem::path& file, Work work) {
    try {
        return work();
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(base::Utf8FromPath(file) + ": " + error.what());
    }
}

}  // namespace

PaintSurface::PaintSurface(CDuiSize size) : m_size{std::max(0, size.cx), std::max(0, size.cy)} {
    m_pixels.resize(static_cast<std::size_t>(m_size.cx) * static_cast<std::size_t>(m_size.cy));
}

void PaintSurface::SavePng(const std::filesystem::path& file) const {
    NamingFile(file, [&] { WritePng(*this, file); });
}

PaintSurface PaintSurface::LoadPng(const std::filesystem::path& file) {
    return NamingFile(file, [&] { return ReadPng(file); });
}

}  // namespace DuiLib
