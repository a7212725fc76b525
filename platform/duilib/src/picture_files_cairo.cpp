#include "picture_files_cairo.h"

#include <librsvg/rsvg.h>

#include <algorithm>
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
constexpr int kMaxSide = 4096;                       // [device px] no picture of a page is larger

// A picture that was read: a drawing or a raster. With neither it could not be.
struct PictureFile {
    std::unique_ptr<RsvgHandle, Unref> drawing;
    PaintSurface raster;
    std::string error;

    bool IsReadable() const { return error.empty(); }
};

PictureFile Read(const std::filesystem::path& file) {
    PictureFile picture;
    if (file.extension() == ".svg") {
        GError* error = nullptr;
        picture.drawing.reset(rsvg_handle_new_from_file(file.c_str(), &error));
        if (error) {
            picture.error = file.string() + ": " + error->message;
            g_error_free(error);
        }
        return picture;
    }
    try {
        picture.raster = PaintSurface::LoadPng(file);
    } catch (const std::runtime_error& error) {
        picture.error = error.what();
    }
    return picture;
}

class Pictures {
public:
    const PictureFile& File(const std::filesystem::path& file) {
        const auto found = m_files.find(file);
        return found != m_files.end() ? found->second : m_files.emplace(file, Read(file)).first->second;
    }

    cairo_surface_t* Raster(const std::filesystem::path& file, CDuiSize size) {
        if (size.cx <= 0 || size.cy <= 0 || size.cx > kMaxSide || size.cy > kMaxSide) return nullptr;
        const Key key{file, size.cx, size.cy};
        if (const auto found = m_rasters.find(key); found != m_rasters.end()) return found->second.get();
        const PictureFile& picture = File(file);
        if (!picture.IsReadable()) return nullptr;
        m_pixels += std::int64_t{size.cx} * size.cy;
        if (m_pixels > kMaxRasterPixels) {
            m_rasters.clear();
            m_pixels = std::int64_t{size.cx} * size.cy;
        }
        return m_rasters.emplace(key, Draw(picture, size)).first->second.get();
    }

private:
    using Key = std::tuple<std::filesystem::path, int, int>;

    static CairoSurface Draw(const PictureFile& picture, CDuiSize size) {
        CairoSurface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size.cx, size.cy));
        const CairoContext context(cairo_create(surface.get()));
        if (picture.drawing) {
            const RsvgRectangle viewport{0, 0, static_cast<double>(size.cx), static_cast<double>(size.cy)};
            rsvg_handle_render_document(picture.drawing.get(), context.get(), &viewport, nullptr);
        } else {
            DrawRaster(context.get(), picture.raster, size);
        }
        return surface;
    }

    static void DrawRaster(cairo_t* context, const PaintSurface& raster, CDuiSize size) {
        const CDuiSize own = raster.Size();
        if (own.cx <= 0 || own.cy <= 0) return;
        const CairoSurface source = CairoView(raster);
        const double scale = std::min(size.cx / static_cast<double>(own.cx), size.cy / static_cast<double>(own.cy));
        cairo_translate(context, (size.cx - own.cx * scale) / 2, (size.cy - own.cy * scale) / 2);
        cairo_scale(context, scale, scale);
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
