#pragma once

#include <string_view>

#include "duilib/dui_string.h"
#include "duilib/export.h"

namespace DuiLib {

// An immutable text of which equal ones share one copy: the rows of a page carry the same names, texts and attribute
// values over and over. The size of a pointer, compared as one. UI turn.
class DUILIB_API SharedText {
public:
    SharedText() = default;  // empty
    explicit SharedText(std::wstring_view text);
    SharedText(const SharedText& other);
    SharedText(SharedText&& other) noexcept : m_copy(std::exchange(other.m_copy, nullptr)) {}
    SharedText& operator=(SharedText other) noexcept {
        std::swap(m_copy, other.m_copy);
        return *this;
    }
    ~SharedText();

    // Lives as long as any SharedText of this value.
    const CDuiString& Get() const;
    bool IsEmpty() const { return m_copy == nullptr; }

    // The text if anybody has it, else the empty one; makes no copy.
    static SharedText Find(std::wstring_view text);

    friend bool operator==(const SharedText& a, const SharedText& b) { return a.m_copy == b.m_copy; }

    // Identity of the text, for use as a key while a SharedText of it lives; null for the empty text.
    const void* Key() const { return m_copy; }

private:
    friend struct SharedTextPool;
    struct Copy;
    Copy* m_copy = nullptr;
};

}  // namespace DuiLib
