#include "duilib/paint_surface.h"

#include <algorithm>
#include <stdexcept>

#include "base/path.h"
#include "drawing/picture_files.h"

namespace DuiLib {

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
