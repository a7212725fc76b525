#pragma once

#include <windows.h>
// These belong after windows.h, in this order, and GDI+ wants its own min and max.
#include <objidl.h>

#include <algorithm>
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <gdiplus.h>

#include "duilib/paint_surface.h"

namespace DuiLib {

// Starts GDI+ at the first call; it runs until the process ends. Whoever makes an object of GDI+ calls this first.
// Throws std::runtime_error. Any thread.
void StartGdiplus();

// The pixels of a surface, which must outlive it, as GDI+ sees them.
inline Gdiplus::Bitmap GdiplusView(PaintSurface& surface) {
    StartGdiplus();
    return Gdiplus::Bitmap(surface.Size().cx, surface.Size().cy, surface.BytesPerRow(), PixelFormat32bppPARGB,
                           reinterpret_cast<BYTE*>(surface.Pixels()));
}

}  // namespace DuiLib
