#include "duilib/render_engine.h"

#include <algorithm>

#include "drawing/canvas.h"
#include "drawing/text_measurer.h"
#include "foundation/geometry_math.h"
#include "foundation/layout_basis.h"
#include "foundation/ui_turn_assertion.h"

namespace DuiLib {

namespace {

TextMeasurer* replacement = nullptr;

}  // namespace

void CRenderEngine::DrawText(PaintDC* dc, CPaintManagerUI*, CDuiRect& rect, std::wstring_view text, CDuiColor color,
                             int font, unsigned style) {
    const CResourceManager& resources = *CResourceManager::GetInstance();
    if (!(style & kTextCalcRect)) {
        Canvas* const canvas = dc ? dc->GetCanvas() : nullptr;
        if (canvas) canvas->Text(rect, text, resources.GetFont(font), resources.GetScale(), color, style);
        return;
    }
    const bool wrap = !(style & kTextSingleLine);
    const CDuiSize size =
        GetTextMeasurer().Measure(text, resources.GetFont(font), resources.GetScale(), std::max(1, rect.Width()), wrap);
    rect.right = ClampExtent(std::int64_t{rect.left} + size.cx);
    rect.bottom = ClampExtent(std::int64_t{rect.top} + size.cy);
}

void CRenderEngine::SetTextMeasurer(TextMeasurer* measurer) {
    AssertUiTurn();
    if (replacement == measurer) return;
    replacement = measurer;
    TellLayoutBasisChanged();
}

TextMeasurer& CRenderEngine::GetTextMeasurer() { return replacement ? *replacement : SystemTextMeasurer(); }

}  // namespace DuiLib
