#include "drawing/canvas.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "drawing/canvas_clips.h"
#include "drawing/pictures.h"
#include "drawing/windows/gdiplus_library.h"
#include "drawing/windows/pixels.h"
#include "drawing/windows/text_lines.h"
#include "foundation/geometry_math.h"

namespace DuiLib {

namespace {

// What is drawn on: the canvas's surface, or a layer with its left top corner somewhere in it. GDI+ looks at the pixels
// once it has text to draw.
class Target {
public:
    explicit Target(PaintSurface& surface) : m_surface(&surface) {}
    explicit Target(const CDuiRect& area)
        : m_layer(std::make_unique<PaintSurface>(CDuiSize{area.Width(), area.Height()})),
          m_surface(m_layer.get()),
          m_left(area.left),
          m_top(area.top) {}

    // The pixel in the column `left` of the canvas, which others of the row follow.
    std::uint32_t* Pixels(int left, int y) const {
        return m_surface->Pixels() + std::ptrdiff_t{y - m_top} * m_surface->Size().cx + (left - m_left);
    }

    // ... with the canvas's coordinates, cut at `bounds`.
    Gdiplus::Graphics& Graphics(const CDuiRect& bounds) {
        if (!m_graphics) {
            m_bitmap =
                std::make_unique<Gdiplus::Bitmap>(m_surface->Size().cx, m_surface->Size().cy, m_surface->BytesPerRow(),
                                                  PixelFormat32bppPARGB, reinterpret_cast<BYTE*>(m_surface->Pixels()));
            m_graphics = std::make_unique<Gdiplus::Graphics>(m_bitmap.get());
            m_graphics->TranslateTransform(static_cast<float>(-m_left), static_cast<float>(-m_top));
        }
        m_graphics->SetClip(Gdiplus::Rect(bounds.left, bounds.top, bounds.Width(), bounds.Height()));
        return *m_graphics;
    }

private:
    std::unique_ptr<PaintSurface> m_layer;
    PaintSurface* m_surface;
    int m_left = 0;
    int m_top = 0;
    std::unique_ptr<Gdiplus::Bitmap> m_bitmap;
    std::unique_ptr<Gdiplus::Graphics> m_graphics;
};

}  // namespace

// Shapes and pictures are put onto the pixels here: not every GDI+ has smooth edges (that of Wine has none).
struct Canvas::State {
    explicit State(PaintSurface& surface) : clips(surface.Size()) { targets.emplace_back(surface); }

    // Calls `draw(pixels, cover, count)` with each row of the area, as far as it can be drawn on.
    template <class Draw>
    void EachRow(const CDuiRect& area, const RoundShape& shape, Draw draw) {
        const CDuiRect seen = Intersection(area, clips.Bounds());
        cover.resize(static_cast<std::size_t>(seen.Width()));
        for (int y = seen.top; y < seen.bottom && seen.Width() > 0; ++y) {
            shape.CoverRow(y, seen.left, cover);
            draw(targets.back().Pixels(seen.left, y), seen.left, y);
        }
    }

    void Blend(std::uint32_t* pixels, std::uint32_t color) const {
        const std::uint32_t multiplied = Multiplied(color);
        for (std::size_t i = 0; i < cover.size(); ++i) {
            if (cover[i]) pixels[i] = Over(cover[i] == 255 ? multiplied : Weakened(multiplied, cover[i]), pixels[i]);
        }
    }

    CanvasClips clips;
    std::vector<Target> targets;
    std::vector<std::uint8_t> cover;  // of the row that is being drawn
};

Canvas::Canvas(PaintSurface& surface) : m_state(std::make_unique<State>(surface)) {}
Canvas::~Canvas() = default;

void Canvas::Clip(const CDuiRect& area) { m_state->clips.Push(area); }

// What is drawn within goes onto a layer of its own first: were each drawing cut by itself, the smooth edge of one
// would shine through the next.
void Canvas::ClipRounded(const CDuiRect& area, CDuiSize corner) {
    m_state->targets.emplace_back(m_state->clips.PushRounded(area, corner).bounds);
}

void Canvas::Restore() {
    const CanvasClips::Cut cut = m_state->clips.Pop();
    if (!cut.rounded) return;
    const Target layer = std::move(m_state->targets.back());
    m_state->targets.pop_back();
    const CDuiRect area = m_state->clips.WithEdgesNearby(cut.area, cut.corner);
    m_state->EachRow(cut.bounds, RoundShape(area, cut.corner), [&](std::uint32_t* pixels, int left, int y) {
        const std::uint32_t* const drawn = layer.Pixels(left, y);
        for (std::size_t i = 0; i < m_state->cover.size(); ++i) {
            pixels[i] = Over(Weakened(drawn[i], m_state->cover[i]), pixels[i]);
        }
    });
}

void Canvas::Clear(const CDuiRect& area, CDuiColor color) {
    const std::uint32_t multiplied = Multiplied(color);
    m_state->EachRow(area, RoundShape(area, {}),
                     [&](std::uint32_t* pixels, int, int) { std::fill_n(pixels, m_state->cover.size(), multiplied); });
}

void Canvas::Fill(const CDuiRect& area, CDuiSize corner, CDuiColor color) {
    if (area.Width() <= 0 || area.Height() <= 0) return;
    const CanvasClips::Shape drawn = m_state->clips.Drawn(area, corner);
    const RoundShape shape(drawn.area, drawn.corner);
    m_state->EachRow(drawn.area, shape, [&](std::uint32_t* pixels, int, int) { m_state->Blend(pixels, color); });
}

// What lies between the outer shape and the inner one.
void Canvas::Border(const CDuiRect& area, CDuiSize corner, int thickness, CDuiColor color) {
    if (thickness <= 0 || area.Width() <= 0 || area.Height() <= 0) return;
    const CanvasClips::Shape drawn = m_state->clips.Drawn(area, corner, thickness);
    const CanvasClips::Shape within = CanvasClips::Within(drawn, corner, thickness);
    const RoundShape outer(drawn.area, drawn.corner);
    const RoundShape inner(within.area, within.corner);
    const bool hollow = within.area.Width() > 0 && within.area.Height() > 0;
    std::vector<std::uint8_t> hole;
    m_state->EachRow(drawn.area, outer, [&](std::uint32_t* pixels, int left, int y) {
        std::vector<std::uint8_t>& cover = m_state->cover;
        hole.resize(cover.size());
        if (hollow) inner.CoverRow(y, left, hole);
        for (std::size_t i = 0; i < cover.size(); ++i) {
            cover[i] = static_cast<std::uint8_t>(cover[i] - std::min(cover[i], hole[i]));
        }
        m_state->Blend(pixels, color);
    });
}

void Canvas::Picture(const CDuiRect& area, const std::filesystem::path& file, bool mirrored, double opacity) {
    const PaintSurface* const picture = RasterOf(file, {area.Width(), area.Height()});
    if (!picture) return;
    const CDuiSize size = picture->Size();
    const CDuiRect place = CanvasClips::Centered(size, area);
    const auto share = static_cast<unsigned>(std::lround(std::clamp(opacity, 0.0, 1.0) * 255));
    m_state->EachRow(place, RoundShape(place, {}), [&](std::uint32_t* pixels, int from, int y) {
        for (int i = 0; i < static_cast<int>(m_state->cover.size()); ++i) {
            const int column = from + i - place.left;
            const std::uint32_t pixel = picture->Pixel(mirrored ? size.cx - 1 - column : column, y - place.top);
            pixels[i] = Over(Weakened(pixel, share), pixels[i]);
        }
    });
}

void Canvas::Text(const CDuiRect& area, std::wstring_view text, const FontDescription& font, unsigned scale,
                  CDuiColor color, unsigned style) {
    if (text.empty() || area.Width() <= 0 || area.Height() <= 0) return;
    const CDuiRect bounds = Intersection(m_state->clips.Bounds(), area);
    if (bounds.Width() <= 0 || bounds.Height() <= 0) return;
    const TextLines lines = SetText(SettingOf(text, font, scale, area.Width(), style));
    double y = area.top + TextTop(style, area.Height() - lines.Size().cy);
    Gdiplus::Graphics& graphics = m_state->targets.back().Graphics(bounds);
    for (const TextLine& line : lines.lines) {
        const double x = area.left + LineOffset(style, lines.rightToLeft, area.Width() - line.width);
        if (y + lines.lineHeight > bounds.top && y < bounds.bottom) DrawLine(graphics, lines, line, x, y, color);
        y += lines.lineHeight;
    }
    graphics.Flush(Gdiplus::FlushIntentionSync);
}

}  // namespace DuiLib
