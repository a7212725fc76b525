#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "duilib/export.h"
#include "duilib/geometry.h"

namespace DuiLib {

// A picture in memory that a window's tree is painted onto: rows of pixels from the top, each 0xAARRGGBB with the
// colours multiplied by the alpha. A value; any thread, one at a time.
class DUILIB_API PaintSurface {
public:
    PaintSurface() = default;              // empty
    explicit PaintSurface(CDuiSize size);  // [device px] transparent

    CDuiSize Size() const { return m_size; }
    std::uint32_t* Pixels() { return m_pixels.data(); }
    const std::uint32_t* Pixels() const { return m_pixels.data(); }
    int BytesPerRow() const { return m_size.cx * 4; }
    std::uint32_t Pixel(int x, int y) const {  // within the size
        return m_pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_size.cx) +
                        static_cast<std::size_t>(x)];
    }

    // PNG files. Throw std::runtime_error, naming the file and the reason.
    void SavePng(const std::filesystem::path& file) const;
    static PaintSurface LoadPng(const std::filesystem::path& file);

private:
    CDuiSize m_size;
    std::vector<std::uint32_t> m_pixels;
};

}  // namespace DuiLib
