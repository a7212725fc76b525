#include "duilib/paint_surface.h"

#include <stdexcept>

#include "base/path.h"
#include "drawing/linux/cairo_owned.h"

namespace DuiLib {

namespace {

void Check(cairo_status_t status, const std::filesystem::path& file) {
    if (status != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error(base::Utf8FromPath(file) + ": " + cairo_status_to_string(status));
}

}  // namespace

void PaintSurface::SavePng(const std::filesystem::path& file) const {
    const CairoSurface picture = CairoView(*this);
    Check(cairo_surface_status(picture.get()), file);
    Check(cairo_surface_write_to_png(picture.get(), file.c_str()), file);
}

PaintSurface PaintSurface::LoadPng(const std::filesystem::path& file) {
    const CairoSurface png(cairo_image_surface_create_from_png(file.c_str()));
    Check(cairo_surface_status(png.get()), file);
    PaintSurface loaded({cairo_image_surface_get_width(png.get()), cairo_image_surface_get_height(png.get())});
    const CairoSurface copy = CairoView(loaded);
    const CairoContext context(cairo_create(copy.get()));
    cairo_set_operator(context.get(), CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(context.get(), png.get(), 0, 0);
    cairo_paint(context.get());
    Check(cairo_status(context.get()), file);
    return loaded;
}

}  // namespace DuiLib
