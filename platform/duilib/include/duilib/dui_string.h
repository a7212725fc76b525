#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace DuiLib {

// The toolkit's wide string: a value that converts to and from the standard ones, so that either can be passed.
class CDuiString {
public:
    CDuiString() = default;
    CDuiString(const wchar_t* text) : m_text(text) {}
    CDuiString(std::wstring text) : m_text(std::move(text)) {}
    CDuiString(std::wstring_view text) : m_text(text) {}

    const wchar_t* GetData() const { return m_text.c_str(); }  // zero-terminated, lives as long as this string
    const std::wstring& Str() const { return m_text; }
    int GetLength() const { return static_cast<int>(m_text.size()); }
    bool IsEmpty() const { return m_text.empty(); }
    void Empty() { m_text.clear(); }

    operator std::wstring_view() const { return m_text; }

    CDuiString& operator+=(std::wstring_view tail) {
        m_text += tail;
        return *this;
    }
    friend bool operator==(const CDuiString& a, const CDuiString& b) { return a.m_text == b.m_text; }
    friend bool operator==(const CDuiString& a, std::wstring_view b) { return a.m_text == b; }
    friend bool operator==(const CDuiString& a, const std::wstring& b) { return a.m_text == b; }
    friend bool operator==(const CDuiString& a, const wchar_t* b) { return a.m_text == b; }

private:
    std::wstring m_text;
};

}  // namespace DuiLib
