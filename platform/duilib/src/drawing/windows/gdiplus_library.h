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

#include <string>
#include <string_view>

#include "duilib/paint_surface.h"
#include "duilib/resource_manager.h"

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

// ---- Fonts

struct SystemFont {
    const Gdiplus::Font* font;
    int lineHeight;  // [device px] rounded up
};

// The font in its size at a display scale [percent] for this text: of the wanted family; where the system has no such
// family, of that of its own texts; where that lacks letters of the text, of the first well-known family that has them
// all. Kept until the process ends. UI turn.
const SystemFont& FindFont(const FontDescription& font, unsigned scale, std::wstring_view text);

// Whether a family has all letters of the text; characters beyond the basic plane are not looked at. Each family is
// read once. UI turn.
bool HasLetters(const std::wstring& family, std::wstring_view text);

}  // namespace DuiLib
