#include "fixed_cell_measurer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

int Units(std::wstring_view text) {
    int units = 0;
    for (const wchar_t c : text) units += (static_cast<std::uint32_t>(c) >> 16) != 0 ? 2 : 1;
    return units;
}

int Pixels(double length) {
    constexpr double kMost = 1e9;  // of an absurd scale
    return static_cast<int>(std::lround(std::min(length, kMost)));
}

// How many of these cells a line has.
int CellsIn(int width, double cellWidth) {
    if (cellWidth <= 0) return width;
    return std::max(1, static_cast<int>(std::floor(width / cellWidth)));
}

}  // namespace

DuiLib::CDuiSize FixedCellMeasurer::Measure(std::wstring_view text, const DuiLib::FontDescription&, unsigned scale,
                                            int maxWidth, bool wrap) {
    ++calls;
    const double cellWidth = m_cell.cx * (scale / 100.0);
    const double lineHeight = m_cell.cy * (scale / 100.0);
    const int perLine = CellsIn(maxWidth, cellWidth);
    int lines = 0;
    int widest = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(L'\n'), text.size());
        const int units = Units(text.substr(0, end));
        lines += wrap ? std::max(1, (units + perLine - 1) / perLine) : 1;
        widest = std::max(widest, wrap ? std::min(units, perLine) : units);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return {Pixels(widest * cellWidth), Pixels(lines * lineHeight)};
}
