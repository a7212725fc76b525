#include "drawing/canvas.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "drawing/canvas_clips.h"
#include "drawing/linux/cairo_owned.h"
#include "drawing/linux/text_lines.h"
#include "drawing/pictures.h"
#include "duilib/ui_culture.h"

namespace DuiLib {

struct Canvas::State {
    explicit State(PaintSurface& target)
        : surface(CairoView(target)), owned(cairo_create(surface.get())), context(owned.get()), clips(target.Size()) {}

    void SetColor(CDuiColor color) const {
        const auto part = [color](int shift) { return ((color >> shift) & 0xFF) / 255.0; };
        cairo_set_source_rgba(context, part(16), part(8), part(0), part(24));
    }

    // A rectangle with round corners, as the path or in addition to it.
    void Path(const CDuiRect& area, CDuiSize radii) const {
        cairo_new_path(context);
        AddPath(area, radii);
    }
    void AddPath(const CDuiRect& area, CDuiSize radii) const {
        const double left = area.left, top = area.top, width = area.Width(), height = area.Height();
        const double rx = std::min<double>(radii.cx, width / 2);
        const double ry = std::min<double>(radii.cy, height / 2);
        if (rx <= 0 || ry <= 0) {
            cairo_rectangle(context, left, top, width, height);
            return;
        }
        cairo_new_sub_path(context);
        constexpr double kQuarter = std::numbers::pi / 2;
        const auto quarter = [&](double x, double y, double from) {
            cairo_save(context);
            cairo_translate(context, x, y);
            cairo_scale(context, rx, ry);
            cairo_arc(context, 0, 0, 1, from, from + kQuarter);
            cairo_restore(context);
        };
        quarter(left + width - rx, top + ry, -kQuarter);
        quarter(left + width - rx, top + height - ry, 0);
        quarter(left + rx, top + height - ry, kQuarter);
        quarter(left + rx, top + ry, 2 * kQuarter);
        cairo_close_path(context);
    }

    const CairoSurface surface;
    const CairoContext owned;
    cairo_t* const context;
    CanvasClips clips;
};

Canvas::Canvas(PaintSurface& surface) : m_state(std::make_unique<State>(surface)) {}
Canvas::~Canvas() = default;

void Canvas::Clip(const CDuiRect& area) {
    const CDuiRect bounds = m_state->clips.Push(area).bounds;
    cairo_save(m_state->context);
    m_state->Path(bounds, {});
    cairo_clip(m_state->context);
}

// What is drawn within goes onto a layer of its own first: were each drawing cut by itself, the smooth edge of one
// would shine through the next.
void Canvas::ClipRounded(const CDuiRect& area, CDuiSize corner) {
    const CDuiRect bounds = m_state->clips.PushRounded(area, corner).bounds;
    cairo_save(m_state->context);
    m_state->Path(bounds, {});
    cairo_clip(m_state->context);
    cairo_push_group(m_state->context);
}

void Canvas::Restore() {
    const CanvasClips::Cut clip = m_state->clips.Pop();
    if (clip.rounded) {
        cairo_pop_group_to_source(m_state->context);
        m_state->Path(m_state->clips.WithEdgesNearby(clip.area, clip.corner), clip.corner);
        cairo_fill(m_state->context);
    }
    cairo_restore(m_state->context);
}

void Canvas::Clear(const CDuiRect& area, CDuiColor color) {
    cairo_save(m_state->context);
    cairo_set_operator(m_state->context, CAIRO_OPERATOR_SOURCE);
    Fill(area, {}, color);
    cairo_restore(m_state->context);
}

void Canvas::Fill(const CDuiRect& area, CDuiSize corner, CDuiColor color) {
    if (area.Width() <= 0 || area.Height() <= 0) return;
    m_state->SetColor(color);
    const CanvasClips::Shape shape = m_state->clips.Drawn(area, corner);
    m_state->Path(shape.area, shape.corner);
    cairo_fill(m_state->context);
}

void Canvas::Border(const CDuiRect& area, CDuiSize corner, int thickness, CDuiColor color) {
    if (thickness <= 0 || area.Width() <= 0 || area.Height() <= 0) return;
    // What lies between the outer shape and the inner one.
    m_state->SetColor(color);
    cairo_new_path(m_state->context);
    const CanvasClips::Shape outer = m_state->clips.Drawn(area, corner, thickness);
    m_state->AddPath(outer.area, outer.corner);
    const CanvasClips::Shape inner = CanvasClips::Within(outer, corner, thickness);
    if (inner.area.Width() > 0 && inner.area.Height() > 0) m_state->AddPath(inner.area, inner.corner);
    cairo_set_fill_rule(m_state->context, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_fill(m_state->context);
    cairo_set_fill_rule(m_state->context, CAIRO_FILL_RULE_WINDING);
}

void Canvas::Picture(const CDuiRect& area, const std::filesystem::path& file, bool mirrored, double opacity) {
    const PaintSurface* const picture = RasterOf(file, {area.Width(), area.Height()});
    if (!picture) return;
    const CairoSurface source = CairoView(*picture);
    const CDuiRect place = CanvasClips::Centered(picture->Size(), area);
    cairo_t* const context = m_state->context;
    cairo_save(context);
    cairo_translate(context, mirrored ? place.right : place.left, place.top);
    if (mirrored) cairo_scale(context, -1, 1);
    cairo_set_source_surface(context, source.get(), 0, 0);
    cairo_paint_with_alpha(context, opacity);
    cairo_restore(context);
}

// ---- Text

void Canvas::Text(const CDuiRect& area, std::wstring_view text, const FontDescription& font, unsigned scale,
                  CDuiColor color, unsigned style) {
    if (text.empty() || area.Width() <= 0 || area.Height() <= 0) return;
    PangoLayout* const layout = SetText(SettingOf(text, font, scale, area.Width(), style));
    PangoRectangle whole;
    pango_layout_get_extents(layout, nullptr, &whole);
    const double top = area.top + TextTop(style, area.Height() - PANGO_PIXELS_CEIL(whole.height));
    const bool rightToLeft = UICulture::GetInstance()->IsRightToLeft();

    Clip(area);
    m_state->SetColor(color);
    PangoLayoutIter* const line = pango_layout_get_iter(layout);
    do {
        PangoRectangle extent;
        pango_layout_iter_get_line_extents(line, nullptr, &extent);
        const double space = area.Width() - PANGO_PIXELS_CEIL(extent.width);
        const double y = top + PANGO_PIXELS(pango_layout_iter_get_baseline(line));
        if (std::abs(y) > kMaxReach) continue;  // far out of sight
        cairo_move_to(m_state->context, area.left + LineOffset(style, rightToLeft, space), y);
        pango_cairo_show_layout_line(m_state->context, pango_layout_iter_get_line_readonly(line));
    } while (pango_layout_iter_next_line(line));
    pango_layout_iter_free(line);
    Restore();
}

}  // namespace DuiLib
