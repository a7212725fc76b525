#include "picture_files_cairo.h"

#include <librsvg/rsvg.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "cairo_owned.h"
#include "canvas.h"
#include "duilib/paint_surface.h"

namespace DuiLib {

namespace {

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};

constexpr std::int64_t kMaxRasterPixels = 16 << 20;  // 64 MB, more than a screen full
constexpr int kMaxSide = 8192;                       // [device px] of what is drawn
constexpr std::uint64_t kMaxPicturePixels = 64'000'000;
constexpr std::uintmax_t kMaxFileSize = 64 << 20;  // [bytes]

// A picture that was read: a drawing or a raster. With neither it could not be.
struct PictureFile {
    std::unique_ptr<RsvgHandle, Unref> drawing;
    PaintSurface raster;
    double width = 0;  // in whatever unit: what counts is the proportion; 0 where a drawing has none
    double height = 0;
    std::string error;

    bool IsReadable() const { return error.empty(); }
};

void CheckFile(const std::filesystem::path& file) {
    std::error_code error;
    const auto status = std::filesystem::status(file, error);
    if (status.type() == std::filesystem::file_type::not_found) throw std::runtime_error("there is no such file");
    if (error) throw std::runtime_error(error.message());
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

void Check(GError* error) {
    if (!error) return;
    const std::string message = error->message;
    g_error_free(error);
    throw std::runtime_error(message);
}

void Draw(RsvgHandle* drawing, cairo_t* context, CDuiSize size) {
    const RsvgRectangle viewport{0, 0, static_cast<double>(size.cx), static_cast<double>(size.cy)};
    GError* error = nullptr;
    rsvg_handle_render_document(drawing, context, &viewport, &error);
    Check(error);
}

// A drawing that can be read may still be one that cannot be drawn: it is tried once.
void ReadDrawing(const std::filesystem::path& file, PictureFile& picture) {
    GError* error = nullptr;
    picture.drawing.reset(rsvg_handle_new_from_file(file.c_str(), &error));
    Check(error);
    const CairoSurface trial(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 32, 32));
    Draw(picture.drawing.get(), CairoContext(cairo_create(trial.get())).get(), {32, 32});
    double width = 0;
    double height = 0;
    if (rsvg_handle_get_intrinsic_size_in_pixels(picture.drawing.get(), &width, &height)) {
        picture.width = width;
        picture.height = height;
    }
}

PictureFile Read(const std::filesystem::path& file) {
    PictureFile picture;
    try {
        CheckFile(file);
        if (file.extension() == ".svg") {
            ReadDrawing(file, picture);
            return picture;
        }
        CheckPngSize(file);
        picture.raster = PaintSurface::LoadPng(file);
        picture.width = picture.raster.Size().cx;
        picture.height = picture.raster.Size().cy;
    } catch (const std::exception& error) {
        const std::string_view reason = error.what();
        picture.error = reason.starts_with(file.string()) ? std::string(reason) : file.string() + ": " + error.what();
    }
    return picture;
}

class Pictures {
public:
    const PictureFile& File(const std::filesystem::path& file) {
        const auto found = m_files.find(file);
        return found != m_files.end() ? found->second : m_files.emplace(file, Read(file)).first->second;
    }

    cairo_surface_t* Raster(const std::filesystem::path& file, CDuiSize room) {
        const PictureFile& picture = File(file);
        if (!picture.IsReadable()) return nullptr;
        const CDuiSize size = Fitted(picture, room);
        if (size.cx <= 0 || size.cy <= 0 || size.cx > kMaxSide || size.cy > kMaxSide) return nullptr;
        const Key key{file, size.cx, size.cy};
        if (const auto found = m_rasters.find(key); found != m_rasters.end()) return found->second.get();
        m_pixels += std::int64_t{size.cx} * size.cy;
        if (m_pixels > kMaxRasterPixels) {
            m_rasters.clear();
            m_pixels = std::int64_t{size.cx} * size.cy;
        }
        return m_rasters.emplace(key, Rastered(picture, size)).first->second.get();
    }

private:
    using Key = std::tuple<std::filesystem::path, int, int>;

    // As large as fits in its own proportions.
    static CDuiSize Fitted(const PictureFile& picture, CDuiSize room) {
        if (picture.width <= 0 || picture.height <= 0) return room;
        const double scale = std::min(room.cx / picture.width, room.cy / picture.height);
        return {static_cast<int>(std::lround(picture.width * scale)),
                static_cast<int>(std::lround(picture.height * scale))};
    }

    static CairoSurface Rastered(const PictureFile& picture, CDuiSize size) {
        CairoSurface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size.cx, size.cy));
        const CairoContext context(cairo_create(surface.get()));
        if (picture.drawing) {
            Draw(picture.drawing.get(), context.get(), size);
        } else {
            DrawRaster(context.get(), picture.raster, size);
        }
        return surface;
    }

    static void DrawRaster(cairo_t* context, const PaintSurface& raster, CDuiSize size) {
        const CDuiSize own = raster.Size();
        if (own.cx <= 0 || own.cy <= 0) return;
        const CairoSurface source = CairoView(raster);
        cairo_scale(context, size.cx / static_cast<double>(own.cx), size.cy / static_cast<double>(own.cy));
        cairo_set_source_surface(context, source.get(), 0, 0);
        cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_BEST);
        cairo_paint(context);
    }

    std::map<std::filesystem::path, PictureFile> m_files;
    std::map<Key, CairoSurface> m_rasters;
    std::int64_t m_pixels = 0;
};

Pictures& AllPictures() {
    static Pictures pictures;
    return pictures;
}

}  // namespace

cairo_surface_t* RasterOf(const std::filesystem::path& file, CDuiSize size) { return AllPictures().Raster(file, size); }

bool IsPictureReadable(const std::filesystem::path& file, std::string& reason) {
    const PictureFile& picture = AllPictures().File(file);
    reason = picture.error;
    return picture.IsReadable();
}

}  // namespace DuiLib
