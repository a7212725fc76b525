#pragma once

#include <string>
#include <utility>
#include <vector>

namespace DuiLib {

// The page's rows and separators in order, as pairs of (control name, kind). Process-wide: the list window appends, the
// rows take entries out when their rows go away, and what a closed page leaves behind stays. Under the UI turn.
extern std::vector<std::pair<std::wstring, std::wstring>> g_updateItemList;

inline constexpr const wchar_t* kRowKindDevice = L"Device";
inline constexpr const wchar_t* kRowKindLine = L"Line";

// Takes out every entry of exactly that name.
void RemoveRowEntries(const std::wstring& name);

// Where the first entry of exactly that name stands; g_updateItemList.size() when there is none.
std::size_t FindRowEntry(const std::wstring& name);

}  // namespace DuiLib
