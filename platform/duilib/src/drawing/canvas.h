#pragma once

#include <memory>
#include <string_view>

#include "duilib/geometry.h"
#include "duilib/paint_surface.h"
#include "duilib/resource_manager.h"

namespace DuiLib {

class CPaintManagerUI;

// Draws on a surface with the system's drawing library. All coordinates are device pixels of the surface; corners are
// the two radii of an ellipse. UI turn.
class Canvas {
public:
    explicit Canvas(PaintSurface& surface);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    // Until the matching Restore nothing is drawn outside the rectangle.
    void Clip(const CDuiRect& area);
    // ... nor outside round corners, which are smooth whatever is drawn over what.
    void ClipRounded(const CDuiRect& area, CDuiSize corner);
    void Restore();

    void Clear(const CDuiRect& area, CDuiColor color);  // replaces what was there
    void Fill(const CDuiRect& area, CDuiSize corner, CDuiColor color);
    void Border(const CDuiRect& area, CDuiSize corner, int thickness, CDuiColor color);  // within the rectangle

    // A picture file (SVG or PNG) in the middle of the rectangle, as large as fits in its own proportions.
    void Picture(const CDuiRect& area, const std::filesystem::path& file, bool mirrored, double opacity);

    // `style` is CRenderEngine's text flags, "left" being the side where reading starts.
    void Text(const CDuiRect& area, std::wstring_view text, const FontDescription& font, unsigned scale,
              CDuiColor color, unsigned style);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

// What the texts of a window are measured and painted with. It has a canvas while the window is being painted, and what
// is painted at other times goes nowhere.
class PaintDC {
public:
    explicit PaintDC(CPaintManagerUI* manager) : m_manager(manager) {}
    CPaintManagerUI* Manager() const { return m_manager; }
    Canvas* GetCanvas() const { return m_canvas; }
    void SetCanvas(Canvas* canvas) { m_canvas = canvas; }

private:
    CPaintManagerUI* m_manager;
    Canvas* m_canvas = nullptr;
};

}  // namespace DuiLib
