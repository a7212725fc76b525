#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <tuple>
#include <utility>

#include "duilib/geometry.h"
#include "foundation/text_utf8.h"

namespace DuiLib {

// The picture files of a process and their rasters in the sizes that were asked for, as many as there is space for. The
// system says what a file and a raster is: `File` has `error`, a text that is empty when it was read, and `width` and
// `height`, in whatever unit, 0 where it has none. UI turn.
template <class File, class Raster>
class PictureCache {
public:
    using Read = File (*)(const std::filesystem::path&);   // does not throw
    using Drawn = Raster (*)(const File&, CDuiSize size);  // as large as `size`

    PictureCache(Read read, Drawn drawn) : m_read(read), m_drawn(drawn) {}

    const File& FileOf(const std::filesystem::path& file) {
        const auto found = m_files.find(file);
        return found != m_files.end() ? found->second : m_files.emplace(file, m_read(file)).first->second;
    }

    // Null where the file could not be read, or the raster would be absurdly large.
    const Raster* RasterOf(const std::filesystem::path& file, CDuiSize room) {
        const File& picture = FileOf(file);
        if (!picture.error.empty()) return nullptr;
        const CDuiSize size = Fitted(picture, room);
        if (size.cx <= 0 || size.cy <= 0 || size.cx > kMaxSide || size.cy > kMaxSide) return nullptr;
        const Key key{file, size.cx, size.cy};
        if (const auto found = m_rasters.find(key); found != m_rasters.end()) return &found->second;
        m_pixels += std::int64_t{size.cx} * size.cy;
        if (m_pixels > kMaxRasterPixels) {
            m_rasters.clear();
            m_pixels = std::int64_t{size.cx} * size.cy;
        }
        return &m_rasters.emplace(key, m_drawn(picture, size)).first->second;
    }

private:
    using Key = std::tuple<std::filesystem::path, int, int>;
    static constexpr std::int64_t kMaxRasterPixels = 16 << 20;  // 64 MB, more than a screen full
    static constexpr int kMaxSide = 8192;                       // [device px] of what is drawn

    // As large as fits in its own proportions.
    static CDuiSize Fitted(const File& picture, CDuiSize room) {
        if (picture.width <= 0 || picture.height <= 0) return room;
        const double scale = std::min(room.cx / picture.width, room.cy / picture.height);
        return {static_cast<int>(std::lround(picture.width * scale)),
                static_cast<int>(std::lround(picture.height * scale))};
    }

    const Read m_read;
    const Drawn m_drawn;
    std::map<std::filesystem::path, File> m_files;
    std::map<Key, Raster> m_rasters;
    std::int64_t m_pixels = 0;
};

// What is wrong with a file, with its name once.
inline std::string PictureError(const std::filesystem::path& file, const std::string& reason) {
    const std::string name = PathText(file);
    return reason.starts_with(name) ? reason : name + ": " + reason;
}

}  // namespace DuiLib
