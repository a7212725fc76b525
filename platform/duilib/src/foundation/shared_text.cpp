#include "duilib/shared_text.h"

#include <functional>
#include <memory>
#include <unordered_set>

#include "foundation/diagnostics.h"

namespace DuiLib {

struct SharedText::Copy {
    CDuiString text;
    std::size_t hash;
    unsigned users;
};

struct SharedTextPool {
    using Copy = SharedText::Copy;
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(const Copy* copy) const noexcept { return copy->hash; }
        std::size_t operator()(std::wstring_view text) const noexcept { return std::hash<std::wstring_view>{}(text); }
    };
    struct Equal {
        using is_transparent = void;
        bool operator()(const Copy* a, const Copy* b) const { return a == b; }
        bool operator()(const Copy* a, std::wstring_view b) const { return a->text.Str() == b; }
        bool operator()(std::wstring_view a, const Copy* b) const { return b->text.Str() == a; }
    };
    std::unordered_set<Copy*, Hash, Equal> copies;

    // Never destroyed: controls with static storage may go later.
    static SharedTextPool& Instance() {
        static auto& pool = *new SharedTextPool;
        return pool;
    }
};

SharedText::SharedText(std::wstring_view text) {
    AssertUiTurn();
    if (text.empty()) return;
    auto& copies = SharedTextPool::Instance().copies;
    if (const auto found = copies.find(text); found != copies.end()) {
        m_copy = *found;
        ++m_copy->users;
        return;
    }
    auto copy = std::make_unique<Copy>(Copy{CDuiString(text), SharedTextPool::Hash{}(text), 1});
    copies.insert(copy.get());
    m_copy = copy.release();
}

SharedText::SharedText(const SharedText& other) : m_copy(other.m_copy) {
    AssertUiTurn();
    if (m_copy) ++m_copy->users;
}

SharedText::~SharedText() {
    if (!m_copy || --m_copy->users > 0) return;
    SharedTextPool::Instance().copies.erase(m_copy);
    delete m_copy;
}

const CDuiString& SharedText::Get() const {
    static const CDuiString empty;
    return m_copy ? m_copy->text : empty;
}

SharedText SharedText::Find(std::wstring_view text) {
    AssertUiTurn();
    SharedText result;
    const auto& copies = SharedTextPool::Instance().copies;
    if (const auto found = copies.find(text); found != copies.end()) {
        result.m_copy = *found;
        ++result.m_copy->users;
    }
    return result;
}

}  // namespace DuiLib
