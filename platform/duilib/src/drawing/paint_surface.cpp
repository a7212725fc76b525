#include "duilib/paint_surface.h"

#include <algorithm>

namespace DuiLib {

PaintSurface::PaintSurface(CDuiSize size) : m_size{std::max(0, size.cx), std::max(0, size.cy)} {
    m_pixels.resize(static_cast<std::size_t>(m_size.cx) * static_cast<std::size_t>(m_size.cy));
}

}  // namespace DuiLib
