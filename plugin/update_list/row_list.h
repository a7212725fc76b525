#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace DuiLib {

// The page's rows and separators in order, as pairs of (control name, kind). Process-wide: the list window appends, the
// rows take entries out when their rows go away, and what a closed page leaves behind stays. Under the UI turn.
inline std::vector<std::pair<std::wstring, std::wstring>> g_updateItemList;

inline constexpr const wchar_t* kRowKindDevice = L"Device";
inline constexpr const wchar_t* kRowKindLine = L"Line";

// Takes out every entry of exactly that name.
inline void RemoveRowEntries(const std::wstring& name) {
    std::erase_if(g_updateItemList, [&name](const auto& entry) { return entry.first == name; });
}

// Where the first entry of exactly that name stands; g_updateItemList.size() when there is none.
inline std::size_t FindRowEntry(const std::wstring& name) {
    const auto found = std::find_if(g_updateItemList.begin(), g_updateItemList.end(),
                                    [&name](const auto& entry) { return entry.first == name; });
    return static_cast<std::size_t>(found - g_updateItemList.begin());
}

}  // namespace DuiLib
