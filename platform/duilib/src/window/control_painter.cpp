#include "window/control_painter.h"

#include <algorithm>

#include "duilib/container.h"
#include "duilib/render_engine.h"
#include "duilib/ui_culture.h"
#include "foundation/geometry_math.h"
#include "tree/control_attributes.h"
#include "tree/control_look.h"

namespace DuiLib {

namespace {

constexpr CDuiColor kFocusColor = 0xFF0A59F7;
constexpr int kFocusThickness = 2;        // [design px]
constexpr int kFocusDistance = 1;         // [design px] between a control and its ring
constexpr CDuiSize kFocusRound{8, 8};     // [design px] of a control that says nothing of its corners
constexpr double kDisabledOpacity = 0.4;  // of what names no look of its own for it

CDuiColor Faded(CDuiColor color, double opacity) {
    return (static_cast<CDuiColor>((color >> 24) * opacity) << 24) | (color & 0xFFFFFF);
}

}  // namespace

// How a control appears now.
struct ControlPainter::Appearance {
    const ControlLook& look;
    bool hot = false;
    bool pushed = false;
    bool enabled = true;
    CDuiSize corner{};  // [device px] radii

    double Opacity() const { return enabled ? 1 : kDisabledOpacity; }

    // The property of the most special state that has one.
    template <class Value>
    const LookProperty<Value>& Choose(const LookProperty<Value>& plain, const LookProperty<Value>& whenHot,
                                      const LookProperty<Value>& whenPushed) const {
        if (pushed && whenPushed.given) return whenPushed;
        return hot && whenHot.given ? whenHot : plain;
    }
};

// ---- The tree

void ControlPainter::PaintTree(CControlUI& control, CDuiPoint origin, bool enabled) const {
    if (!control.m_visible) return;
    const CDuiRect& at = control.m_place;
    const CDuiRect place{at.left + origin.x, at.top + origin.y, at.right + origin.x, at.bottom + origin.y};
    if (Intersection(place, area).Width() == 0) return;

    const Appearance appearance = AppearanceOf(control, enabled);
    PaintOwn(control, place, appearance);

    const std::vector<CControlUI*>& children = control.Children();
    if (!children.empty()) {
        const bool rounded = appearance.corner.cx > 0 && appearance.corner.cy > 0;
        rounded ? canvas.ClipRounded(place, appearance.corner) : canvas.Clip(place);
        const ControlPainter inner{canvas, window, Intersection(area, place)};
        for (CControlUI* child : children) inner.PaintTree(*child, {place.left, place.top}, appearance.enabled);
        canvas.Restore();
    }
    control.PaintOver(canvas, place);
}

auto ControlPainter::AppearanceOf(const CControlUI& control, bool enabled) const -> Appearance {
    Appearance appearance{control.Look()};
    appearance.enabled = enabled && control.m_enabled;
    const bool under = control.TakesPointer() ? window.hovered == &control : window.IsHot(control);
    appearance.pushed = appearance.enabled && window.pressed == &control && under;
    appearance.hot = appearance.enabled && under && (!window.pressed || appearance.pushed);
    const CDuiSize round = CResourceManager::GetInstance()->Scale(appearance.look.round.value);
    appearance.corner = {round.cx / 2, round.cy / 2};
    return appearance;
}

// ---- One control

void ControlPainter::PaintOwn(const CControlUI& control, const CDuiRect& place, const Appearance& appearance) const {
    const ControlLook& look = appearance.look;
    const auto& ground = appearance.Choose(look.ground, look.hotGround, look.pushedGround);
    if (ground.readable) canvas.Fill(place, appearance.corner, ground.value);
    PaintPicture(look.groundPicture, place, appearance);
    PaintPicture(appearance.Choose(look.picture, look.hotPicture, look.pushedPicture), place, appearance);
    PaintBorder(control, place, appearance);
    PaintText(control, place, appearance);
}

void ControlPainter::PaintPicture(const LookProperty<PictureReference>& picture, const CDuiRect& place,
                                  const Appearance& appearance) const {
    const auto& [name, reverse] = picture.value;
    if (name.IsEmpty()) return;
    const std::filesystem::path file = FindPicture(name.Get().Str(), CResourceManager::GetInstance()->GetScale());
    const bool mirrored = reverse && UICulture::GetInstance()->IsRightToLeft();
    if (!file.empty()) canvas.Picture(place, file, mirrored, appearance.Opacity());
}

// The fill belongs to the border: without one there is none.
void ControlPainter::PaintBorder(const CControlUI& control, const CDuiRect& place, const Appearance& appearance) const {
    const ControlLook& look = appearance.look;
    if (look.borderSize.value <= 0) return;
    if (look.borderFill.readable) canvas.Fill(place, appearance.corner, look.borderFill.value);
    canvas.Border(place, appearance.corner, CResourceManager::GetInstance()->Scale(look.borderSize.value),
                  look.borderColor.Or(control.m_textColor));
}

void ControlPainter::PaintText(const CControlUI& control, const CDuiRect& place, const Appearance& appearance) const {
    const CDuiString& text = control.m_text.Get();
    if (text.IsEmpty()) return;
    const ControlLook& look = appearance.look;
    CDuiColor color = control.m_textColor;
    if (!appearance.enabled) {
        color = look.disabledText.Or(Faded(color, appearance.Opacity()));
    } else if (appearance.hot) {
        color = look.hotText.Or(color);
    }
    CDuiRect padding = control.m_extras ? ScaleThickness(control.m_extras->textPadding) : CDuiRect{};
    if (UICulture::GetInstance()->IsRightToLeft()) std::swap(padding.left, padding.right);
    const CDuiRect room{place.left + padding.left, place.top + padding.top, place.right - padding.right,
                        place.bottom - padding.bottom};
    const CResourceManager& resources = *CResourceManager::GetInstance();
    canvas.Text(room, text, resources.GetFont(control.m_font), resources.GetScale(), color, control.m_textStyle);
}

// ---- Focus

int ControlPainter::FocusMargin() {
    const CResourceManager& resources = *CResourceManager::GetInstance();
    return resources.Scale(kFocusThickness) + resources.Scale(kFocusDistance);
}

void ControlPainter::PaintFocus(CControlUI& control) const {
    const CDuiRect place = control.PlaceInWindow();
    CDuiRect visible = area;
    for (CControlUI* around = control.m_parent; around; around = around->m_parent) {
        if (around->MovesContent()) visible = Intersection(visible, around->PlaceInWindow());
    }
    const int margin = FocusMargin();
    const LookProperty<CDuiSize>& round = control.Look().round;
    const CDuiSize scaled = CResourceManager::GetInstance()->Scale(round.given ? round.value : kFocusRound);
    canvas.Clip(visible);
    canvas.Border(Inflated(place, margin), {scaled.cx / 2 + margin, scaled.cy / 2 + margin},
                  CResourceManager::GetInstance()->Scale(kFocusThickness), kFocusColor);
    canvas.Restore();
}

}  // namespace DuiLib
