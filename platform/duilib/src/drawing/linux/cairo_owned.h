#pragma once

#include <cairo.h>

#include <memory>

#include "duilib/paint_surface.h"

namespace DuiLib {

struct CairoRelease {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using CairoContext = std::unique_ptr<cairo_t, CairoRelease>;
using CairoSurface = std::unique_ptr<cairo_surface_t, CairoRelease>;

// The pixels of a surface, which must outlive it, as Cairo sees them.
inline CairoSurface CairoView(PaintSurface& surface) {
    return CairoSurface(cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(surface.Pixels()),
                                                            CAIRO_FORMAT_ARGB32, surface.Size().cx, surface.Size().cy,
                                                            surface.BytesPerRow()));
}

// ... only to read from.
inline CairoSurface CairoView(const PaintSurface& surface) { return CairoView(const_cast<PaintSurface&>(surface)); }

}  // namespace DuiLib
