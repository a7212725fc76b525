#include "duilib/control.h"
#include "duilib/render_engine.h"
#include "foundation/geometry_math.h"

namespace DuiLib {

std::wstring_view CLabelUI::GetClass() const { return L"Label"; }
std::wstring_view CTextUI::GetClass() const { return L"Text"; }
std::wstring_view CButtonUI::GetClass() const { return L"Button"; }

CTextUI::CTextUI() { SetTextStyle(kTextWordBreak); }
CButtonUI::CButtonUI() { SetTextStyle(kTextSingleLine | kTextCenter | kTextVCenter); }

int CLabelUI::ContentWidth() { return MeasureText(kMaxExtent).cx; }
int CLabelUI::ContentHeight(int width) { return MeasureText(width).cy; }
bool CLabelUI::ContentIsFlexible(LayoutAxis axis) { return axis == LayoutAxis::kHorizontal && Wraps(); }

}  // namespace DuiLib
