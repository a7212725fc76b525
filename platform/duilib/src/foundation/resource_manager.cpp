#include "duilib/resource_manager.h"

#include <map>
#include <system_error>

#include "base/file.h"
#include "base/text.h"
#include "foundation/diagnostics.h"
#include "foundation/geometry_math.h"
#include "foundation/layout_basis.h"

namespace DuiLib {

namespace {

std::filesystem::path ProgramFolder() {
    try {
        return base::ProgramFolder();
    } catch (const std::system_error&) {
        return std::filesystem::current_path();  // where programs are mostly started
    }
}

}  // namespace

struct CResourceManager::State {
    unsigned scale BASE_GUARDED_BY(kUiTurn) = 100;
    std::filesystem::path base BASE_GUARDED_BY(kUiTurn) = ProgramFolder();
    std::filesystem::path skin BASE_GUARDED_BY(kUiTurn) = base.parent_path() / "res";
    std::filesystem::path fallbackPicture BASE_GUARDED_BY(kUiTurn);
    FontDescription defaultFont BASE_GUARDED_BY(kUiTurn);
    std::map<int, FontDescription> fonts BASE_GUARDED_BY(kUiTurn);
};

namespace {

// value * multiplier / divisor, rounded to the nearest, halves up
int MultiplyRounded(std::int64_t value, std::int64_t multiplier, std::int64_t divisor) {
    const std::int64_t doubled = 2 * value * multiplier + divisor;
    const std::int64_t quotient = doubled / (2 * divisor);
    return ClampExtent(quotient - (doubled % (2 * divisor) < 0 ? 1 : 0));
}

std::filesystem::path PathOf(std::wstring_view file) { return base::PathFromUtf8(base::Utf8FromWide(file)); }

}  // namespace

CResourceManager::CResourceManager() : m_state(std::make_unique<State>()) {}
CResourceManager::~CResourceManager() = default;

// Never destroyed: controls with static storage may go later.
CResourceManager* CResourceManager::GetInstance() {
    static auto* const instance = new CResourceManager;
    return instance;
}

unsigned CResourceManager::GetScale() const {
    AssertUiTurn();
    return m_state->scale;
}

void CResourceManager::SetScale(unsigned percent) {
    AssertUiTurn();
    if (m_state->scale == percent) return;
    m_state->scale = percent;
    TellLayoutBasisChanged();
}

int CResourceManager::Scale(int design, const CPaintManagerUI*) const {
    AssertUiTurn();
    return m_state->scale == 100 ? ClampExtent(design) : MultiplyRounded(design, m_state->scale, 100);
}

CDuiSize CResourceManager::Scale(CDuiSize design, const CPaintManagerUI* manager) const {
    AssertUiTurn();
    return {Scale(design.cx, manager), Scale(design.cy, manager)};
}

int CResourceManager::RestoreScale(int device, const CPaintManagerUI*) const {
    AssertUiTurn();
    return m_state->scale == 0 ? 0 : MultiplyRounded(device, 100, m_state->scale);
}

void CResourceManager::SetResourceBase(const std::filesystem::path& folder) {
    AssertUiTurn();
    m_state->base = folder;
}

std::filesystem::path CResourceManager::Resolve(std::wstring_view file) const {
    AssertUiTurn();
    return (m_state->base / PathOf(file)).lexically_normal();
}

void CResourceManager::SetSkinFolder(const std::filesystem::path& folder) {
    AssertUiTurn();
    m_state->skin = folder;
}

std::filesystem::path CResourceManager::ResolveSkinFile(std::wstring_view file) const {
    AssertUiTurn();
    return (m_state->skin / PathOf(file)).lexically_normal();
}

void CResourceManager::SetFallbackPicture(const std::filesystem::path& file) {
    AssertUiTurn();
    m_state->fallbackPicture = file;
}

std::filesystem::path CResourceManager::GetFallbackPicture() const {
    AssertUiTurn();
    return m_state->fallbackPicture;
}

void CResourceManager::SetFont(int index, const FontDescription& font) {
    AssertUiTurn();
    const bool changed = GetFont(index) != font;
    (index == -1 ? m_state->defaultFont : m_state->fonts[index]) = font;
    if (changed) TellLayoutBasisChanged();
}

const FontDescription& CResourceManager::GetFont(int index) const {
    AssertUiTurn();
    const auto found = m_state->fonts.find(index);
    return found == m_state->fonts.end() ? m_state->defaultFont : found->second;
}

}  // namespace DuiLib
