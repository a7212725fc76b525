#pragma once

#include "duilib/render_engine.h"

// Measures text as a terminal would: every UTF-16 unit has one fixed cell, whatever the font. The text is split at line
// feeds, a last empty piece does not count; a piece takes ceil(units / floor(width / cell width)) lines when it wraps,
// at least one. Cells are not rounded, only what comes of them.
class FixedCellMeasurer : public DuiLib::TextMeasurer {
public:
    explicit FixedCellMeasurer(DuiLib::CDuiSize designCell) : m_cell(designCell) {}

    DuiLib::CDuiSize Measure(std::wstring_view text, const DuiLib::FontDescription& font, unsigned scale, int maxWidth,
                             bool wrap) override;

    int calls = 0;  // of Measure

private:
    DuiLib::CDuiSize m_cell;  // [design px]
};
