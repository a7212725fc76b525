#include <librsvg/rsvg.h>

#include <stdexcept>

#include "drawing/linux/cairo_owned.h"
#include "drawing/pictures.h"

namespace DuiLib {

namespace {

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};

void Check(cairo_status_t status) {
    if (status != CAIRO_STATUS_SUCCESS) throw std::runtime_error(cairo_status_to_string(status));
}

void Check(GError* error) {
    if (!error) return;
    const std::string message = error->message;
    g_error_free(error);
    throw std::runtime_error(message);
}

class RsvgDrawing final : public VectorDrawing {
public:
    // A drawing that can be read may still be one that cannot be drawn: it is tried once.
    explicit RsvgDrawing(const std::filesystem::path& file) {
        GError* error = nullptr;
        m_handle.reset(rsvg_handle_new_from_file(file.c_str(), &error));
        Check(error);
        PaintSurface trial({32, 32});
        Draw(trial);
        double ownWidth = 0;
        double ownHeight = 0;
        if (rsvg_handle_get_intrinsic_size_in_pixels(m_handle.get(), &ownWidth, &ownHeight)) {
            width = ownWidth;
            height = ownHeight;
        }
    }

    void Draw(PaintSurface& raster) const override {
        const CairoSurface surface = CairoView(raster);
        const CairoContext context(cairo_create(surface.get()));
        const RsvgRectangle viewport{0, 0, static_cast<double>(raster.Size().cx),
                                     static_cast<double>(raster.Size().cy)};
        GError* error = nullptr;
        rsvg_handle_render_document(m_handle.get(), context.get(), &viewport, &error);
        Check(error);
    }

private:
    std::unique_ptr<RsvgHandle, Unref> m_handle;
};

}  // namespace

bool CanDrawSvg() { return true; }

std::unique_ptr<VectorDrawing> ReadDrawing(const std::filesystem::path& file) {
    return std::make_unique<RsvgDrawing>(file);
}

PaintSurface Resized(const PaintSurface& raster, CDuiSize size) {
    const CDuiSize own = raster.Size();
    const CairoSurface source = CairoView(raster);
    PaintSurface resized(size);
    const CairoSurface target = CairoView(resized);
    const CairoContext context(cairo_create(target.get()));
    cairo_scale(context.get(), size.cx / static_cast<double>(own.cx), size.cy / static_cast<double>(own.cy));
    cairo_set_source_surface(context.get(), source.get(), 0, 0);
    cairo_pattern_set_filter(cairo_get_source(context.get()), CAIRO_FILTER_BEST);
    cairo_paint(context.get());
    return resized;
}

void WritePng(const PaintSurface& picture, const std::filesystem::path& file) {
    const CairoSurface view = CairoView(picture);
    Check(cairo_surface_status(view.get()));
    Check(cairo_surface_write_to_png(view.get(), file.c_str()));
}

PaintSurface ReadPng(const std::filesystem::path& file) {
    const CairoSurface png(cairo_image_surface_create_from_png(file.c_str()));
    Check(cairo_surface_status(png.get()));
    PaintSurface loaded({cairo_image_surface_get_width(png.get()), cairo_image_surface_get_height(png.get())});
    const CairoSurface copy = CairoView(loaded);
    const CairoContext context(cairo_create(copy.get()));
    cairo_set_operator(context.get(), CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(context.get(), png.get(), 0, 0);
    cairo_paint(context.get());
    Check(cairo_status(context.get()));
    return loaded;
}

}  // namespace DuiLib
