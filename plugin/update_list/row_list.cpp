#include "update_list/row_list.h"

#include <algorithm>

namespace DuiLib {

std::vector<std::pair<std::wstring, std::wstring>> g_updateItemList;

void RemoveRowEntries(const std::wstring& name) {
    std::erase_if(g_updateItemList, [&name](const auto& entry) { return entry.first == name; });
}

std::size_t FindRowEntry(const std::wstring& name) {
    const auto found = std::find_if(g_updateItemList.begin(), g_updateItemList.end(),
                                    [&name](const auto& entry) { return entry.first == name; });
    return static_cast<std::size_t>(found - g_updateItemList.begin());
}

}  // namespace DuiLib
