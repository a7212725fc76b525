#pragma once

#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

inline constexpr std::uint32_t kWhite = 0xFFFFFFFF;
inline constexpr std::uint32_t kRed = 0xFFFF0000;
inline constexpr std::uint32_t kGreen = 0xFF00FF00;
inline constexpr std::uint32_t kBlue = 0xFF0000FF;
inline constexpr std::uint32_t kFocusBlue = 0xFF0A59F7;

// A window of 400 x 300 and its picture.
class PaintingTest : public WindowTest<CContainerUI> {
protected:
    std::uint32_t At(int x, int y) {
        window.Paint(picture);
        return picture.Pixel(x, y);
    }
    std::vector<CDuiRect> Repainted() { return window.Paint(picture); }

    static constexpr CPaintManagerUI::TimePoint kStart{std::chrono::hours(1)};
    PaintSurface picture;
};

}  // namespace DuiLib
