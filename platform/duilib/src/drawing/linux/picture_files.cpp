#include "drawing/linux/picture_files.h"

#include <librsvg/rsvg.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "drawing/canvas.h"
#include "drawing/linux/cairo_owned.h"
#include "drawing/picture_cache.h"
#include "drawing/picture_checks.h"
#include "duilib/paint_surface.h"

namespace DuiLib {

namespace {

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};

// A picture that was read: a drawing or a raster. With neither it could not be.
struct PictureFile {
    std::unique_ptr<RsvgHandle, Unref> drawing;
    PaintSurface raster;
    double width = 0;  // in whatever unit: what counts is the proportion; 0 where a drawing has none
    double height = 0;
    std::string error;
};

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
        CheckPictureFile(file);
        if (file.extension() == ".svg") {
            ReadDrawing(file, picture);
            return picture;
        }
        CheckPngSize(file);
        picture.raster = PaintSurface::LoadPng(file);
        picture.width = picture.raster.Size().cx;
        picture.height = picture.raster.Size().cy;
    } catch (const std::exception& error) {
        picture.error = PictureError(file, error.what());
    }
    return picture;
}

void DrawRaster(cairo_t* context, const PaintSurface& raster, CDuiSize size) {
    const CDuiSize own = raster.Size();
    if (own.cx <= 0 || own.cy <= 0) return;
    const CairoSurface source = CairoView(raster);
    cairo_scale(context, size.cx / static_cast<double>(own.cx), size.cy / static_cast<double>(own.cy));
    cairo_set_source_surface(context, source.get(), 0, 0);
    cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_BEST);
    cairo_paint(context);
}

CairoSurface Rastered(const PictureFile& picture, CDuiSize size) {
    CairoSurface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size.cx, size.cy));
    const CairoContext context(cairo_create(surface.get()));
    if (picture.drawing) {
        Draw(picture.drawing.get(), context.get(), size);
    } else {
        DrawRaster(context.get(), picture.raster, size);
    }
    return surface;
}

using Pictures = PictureCache<PictureFile, CairoSurface>;

Pictures& AllPictures() {
    static Pictures pictures(&Read, &Rastered);
    return pictures;
}

}  // namespace

cairo_surface_t* RasterOf(const std::filesystem::path& file, CDuiSize size) {
    const CairoSurface* const raster = AllPictures().RasterOf(file, size);
    return raster ? raster->get() : nullptr;
}

bool IsPictureReadable(const std::filesystem::path& file, std::string& reason) {
    reason = AllPictures().FileOf(file).error;
    return reason.empty();
}

bool CanDrawSvg() { return true; }

}  // namespace DuiLib
