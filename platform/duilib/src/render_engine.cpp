#include "duilib/render_engine.h"

#include <algorithm>

#include "duilib/paint_manager.h"
#include "extent.h"
#include "system_text_measurer.h"

namespace DuiLib {

namespace {

TextMeasurer* replacement = nullptr;

}  // namespace

void CRenderEngine::DrawText(PaintDC*, CPaintManagerUI*, CDuiRect& rect, std::wstring_view text, CDuiColor, int font,
                             unsigned style) {
    if (!(style & kTextCalcRect)) return;  // no paint DC has a surface
    const CResourceManager& resources = *CResourceManager::GetInstance();
    const bool wrap = !(style & kTextSingleLine);
    const CDuiSize size =
        GetTextMeasurer().Measure(text, resources.GetFont(font), resources.GetScale(), std::max(1, rect.Width()), wrap);
    rect.right = ClampExtent(std::int64_t{rect.left} + size.cx);
    rect.bottom = ClampExtent(std::int64_t{rect.top} + size.cy);
}

void CRenderEngine::SetTextMeasurer(TextMeasurer* measurer) {
    if (replacement == measurer) return;
    replacement = measurer;
    CPaintManagerUI::LayOutEveryWindowAgain();
}

TextMeasurer& CRenderEngine::GetTextMeasurer() { return replacement ? *replacement : SystemTextMeasurer(); }

}  // namespace DuiLib
