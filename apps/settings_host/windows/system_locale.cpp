#include <windows.h>

#include "language_choice.h"

namespace settings_host {

// The language that the user chose for the system's own texts. Names of locales are ASCII.
std::string SystemLocale() {
    wchar_t name[LOCALE_NAME_MAX_LENGTH] = {};
    const int size =
        LCIDToLocaleName(MAKELCID(GetUserDefaultUILanguage(), SORT_DEFAULT), name, LOCALE_NAME_MAX_LENGTH, 0);
    std::string ascii;
    for (int i = 0; i + 1 < size; ++i) ascii.push_back(static_cast<char>(name[i]));
    return ascii;
}

}  // namespace settings_host
