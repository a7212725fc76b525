#include "duilib/control.h"

#include <algorithm>

#include "duilib/container.h"
#include "duilib/render_engine.h"
#include "foundation/diagnostics.h"
#include "foundation/geometry_math.h"
#include "tree/control_attributes.h"
#include "tree/tree_window.h"

namespace DuiLib {

namespace {

const CDuiString kEmpty;

}  // namespace

CControlUI::CControlUI() : m_textStyle(kTextSingleLine | kTextVCenter) {}

CControlUI::~CControlUI() {
    if (m_parent || m_window) AssertUiTurn();
    if (m_parent) m_parent->Forget(this);
    if (!m_window) return;
    m_window->Names().Remove(this);
    m_window->Forget(*this);
}

std::wstring_view CControlUI::GetClass() const { return L"Control"; }

// ---- Texts

const CDuiString& CControlUI::GetName() const {
    AssertUiTurn();
    return m_name.Get();
}

void CControlUI::SetName(std::wstring_view name) {
    AssertUiTurn();
    SharedText taken(name);  // the name may be this control's own
    if (m_window) m_window->Names().Remove(this);
    m_name = std::move(taken);
    if (m_window) m_window->Names().Add(this);
}

const CDuiString& CControlUI::GetText() const {
    AssertUiTurn();
    return m_text.Get();
}

void CControlUI::SetText(std::wstring_view text) {
    AssertUiTurn();
    SharedText next(text);
    if (next == m_text) return;
    m_text = std::move(next);
    Invalidate();
    if (IsSizedByText() && !(m_fixedWidth && m_fixedHeight)) NeedLayout();
}

const CDuiString& CControlUI::GetToolTip() const {
    AssertUiTurn();
    return m_extras ? m_extras->toolTip.Get() : kEmpty;
}

void CControlUI::SetToolTip(std::wstring_view text) {
    AssertUiTurn();
    SharedText next(text);
    const bool changed = m_extras ? m_extras->toolTip != next : !next.IsEmpty();
    if (changed) Extras().toolTip = std::move(next);
    if (m_window) m_window->ToolTipSet(*this, changed);
}

void CControlUI::SetVirtualWnd(std::wstring_view name) {
    AssertUiTurn();
    if (m_extras || !name.empty()) Extras().virtualWnd = SharedText(name);
}

const CDuiString& CControlUI::GetVirtualWnd() const {
    AssertUiTurn();
    return m_extras ? m_extras->virtualWnd.Get() : kEmpty;
}

ControlExtras& CControlUI::Extras() {
    if (!m_extras) m_extras = std::make_unique<ControlExtras>();
    return *m_extras;
}

// ---- State

bool CControlUI::IsVisible() const {
    AssertUiTurn();
    return m_visible;
}

void CControlUI::SetVisible(bool visible) {
    AssertUiTurn();
    if (m_visible == visible) return;
    Invalidate();
    m_visible = visible;
    Invalidate();
    NeedLayoutAround();
    if (m_window) m_window->Changed();  // also in a place that is hidden: somebody may look for it
}

bool CControlUI::IsEnabled() const {
    AssertUiTurn();
    return m_enabled;
}

void CControlUI::SetEnabled(bool enabled) {
    AssertUiTurn();
    if (m_enabled == enabled) return;
    m_enabled = enabled;
    Invalidate();
}

CContainerUI* CControlUI::GetParent() const {
    AssertUiTurn();
    return m_parent;
}

CPaintManagerUI* CControlUI::GetManager() const {
    AssertUiTurn();
    return m_window ? m_window->Manager() : nullptr;
}

// ---- For readers

ControlRole CControlUI::GetRole() const {
    AssertUiTurn();
    return m_role != ControlRole::kNone ? m_role : ClassRole();
}

ControlProgress CControlUI::GetProgress() const {
    AssertUiTurn();
    if (GetRole() != ControlRole::kProgress || !m_extras || !m_extras->pos) return {};
    const int whole = std::max(0, m_extras->pos->right);
    return {std::clamp(m_extras->pos->left, 0, whole), whole};
}

// ---- Sizes

void CControlUI::SetFixedHeight(int height) {
    AssertUiTurn();
    height = std::clamp(height, 0, kMaxExtent);
    if (m_fixedHeight == height && !m_fixedHeightInPixels) return;
    m_fixedHeight = height;
    m_fixedHeightInPixels = false;
    NeedLayout();
}

void CControlUI::SetFixedHeightInPixels(int height) {
    AssertUiTurn();
    height = std::clamp(height, 0, kMaxExtent);
    if (m_fixedHeight == height && m_fixedHeightInPixels) return;
    m_fixedHeight = height;
    m_fixedHeightInPixels = true;
    NeedLayout();
}

void CControlUI::SetFixedWidth(int width) {
    AssertUiTurn();
    width = std::clamp(width, 0, kMaxExtent);
    if (m_fixedWidth == width) return;
    m_fixedWidth = width;
    NeedLayout();
}

int CControlUI::GetFixedHeight() const {
    AssertUiTurn();
    return m_fixedHeightInPixels ? m_fixedHeight : CResourceManager::GetInstance()->Scale(m_fixedHeight);
}

int CControlUI::GetFixedWidth() const {
    AssertUiTurn();
    return CResourceManager::GetInstance()->Scale(m_fixedWidth);
}

int CControlUI::GetHeight() {
    AssertUiTurn();
    if (!m_window || !m_visible) return 0;
    if (HasPlace(LayoutAxis::kVertical)) return PosInPixels().Height();
    if (m_fixedHeight) return GetFixedHeight();
    m_window->Layout();
    return m_place.Height();
}

int CControlUI::GetWidth() {
    AssertUiTurn();
    if (!m_window || !m_visible) return 0;
    if (HasPlace(LayoutAxis::kHorizontal)) return PosInPixels().Width();
    if (m_fixedWidth) return GetFixedWidth();
    m_window->Layout();
    return m_place.Width();
}

CDuiRect CControlUI::GetPos() {
    AssertUiTurn();
    if (!IsShown()) return {};
    m_window->Layout();
    return PlaceInWindow();
}

CDuiRect CControlUI::PlaceInWindow() const {
    CDuiRect place = m_place;
    for (const CControlUI* control = m_parent; control; control = control->m_parent) {
        const int x = ClampExtent(std::int64_t{place.left} + control->m_place.left);
        const int y = ClampExtent(std::int64_t{place.top} + control->m_place.top);
        place = {x, y, x + place.Width(), y + place.Height()};
    }
    return place;
}

bool CControlUI::IsShown() const {
    if (!m_window) return false;
    for (const CControlUI* control = this; control; control = control->m_parent) {
        if (!control->m_visible) return false;
    }
    return true;
}

// ---- Text look

void CControlUI::SetFont(int index) {
    AssertUiTurn();
    if (m_font == index) return;
    m_font = index;
    Invalidate();
    if (IsSizedByText()) NeedLayout();
}

int CControlUI::GetFont() const {
    AssertUiTurn();
    return m_font;
}

void CControlUI::SetTextColor(CDuiColor color) {
    AssertUiTurn();
    if (m_textColor == color) return;
    m_textColor = color;
    Invalidate();
}

CDuiColor CControlUI::GetTextColor() const {
    AssertUiTurn();
    return m_textColor;
}

void CControlUI::SetTextStyle(unsigned style) {
    AssertUiTurn();
    if (m_textStyle == style) return;
    m_textStyle = style;
    Invalidate();
    if (IsSizedByText()) NeedLayout();
}

unsigned CControlUI::GetTextStyle() const {
    AssertUiTurn();
    return m_textStyle;
}

bool CControlUI::Wraps() const { return !(m_textStyle & kTextSingleLine); }

CDuiSize CControlUI::MeasureText(int width) const {
    const CDuiRect padding = m_extras ? ScaleThickness(m_extras->textPadding) : CDuiRect{};
    const CResourceManager& resources = *CResourceManager::GetInstance();
    const int room = std::max(1, width - padding.left - padding.right);
    const CDuiSize text = CRenderEngine::GetTextMeasurer().Measure(m_text.Get(), resources.GetFont(m_font),
                                                                   resources.GetScale(), room, Wraps());
    return {std::max(0, ClampExtent(std::int64_t{text.cx} + padding.left + padding.right)),
            std::max(0, ClampExtent(std::int64_t{text.cy} + padding.top + padding.bottom))};
}

CDuiRect CControlUI::GetTextRect(CDuiSize available) {
    AssertUiTurn();
    const CDuiSize text = MeasureText(available.cx);
    return {0, 0, std::min(text.cx, std::max(0, available.cx)), std::min(text.cy, std::max(0, available.cy))};
}

// ---- Painting

void CControlUI::Invalidate() {
    AssertUiTurn();
    if (m_window && m_window->WatchesChanges() && IsShown()) m_window->Invalidate(*this);
}

// ---- The tree

const std::vector<CControlUI*>& CControlUI::Children() const {
    static const std::vector<CControlUI*> none;
    return none;
}

void CControlUI::AttachTree(TreeWindow& window) {
    m_window = &window;
    window.Names().Add(this);
    for (CControlUI* child : Children()) child->AttachTree(window);
}

// ---- Controls that show a text

std::wstring_view CLabelUI::GetClass() const { return L"Label"; }
std::wstring_view CTextUI::GetClass() const { return L"Text"; }
std::wstring_view CButtonUI::GetClass() const { return L"Button"; }

CTextUI::CTextUI() { SetTextStyle(kTextWordBreak); }
CButtonUI::CButtonUI() { SetTextStyle(kTextSingleLine | kTextCenter | kTextVCenter); }

int CLabelUI::ContentWidth() { return MeasureText(kMaxExtent).cx; }
int CLabelUI::ContentHeight(int width) { return MeasureText(width).cy; }
bool CLabelUI::ContentIsFlexible(LayoutAxis axis) { return axis == LayoutAxis::kHorizontal && Wraps(); }

}  // namespace DuiLib
