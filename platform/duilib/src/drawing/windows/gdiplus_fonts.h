#pragma once

#include <string>
#include <string_view>

#include "drawing/windows/gdiplus_session.h"
#include "duilib/resource_manager.h"

namespace DuiLib {

struct SystemFont {
    const Gdiplus::Font* font;
    int lineHeight;  // [device px] rounded up
};

// The font in its size at a display scale [percent] for this text: of the wanted family; where the system has no such
// family, of that of its own texts; where that lacks letters of the text, of the first well-known family that has them
// all. Kept until the process ends. UI turn.
const SystemFont& FindFont(const FontDescription& font, unsigned scale, std::wstring_view text);

// Whether a family has all letters of the text; characters beyond the basic plane are not looked at. Each family is
// read once. UI turn.
bool HasLetters(const std::wstring& family, std::wstring_view text);

}  // namespace DuiLib
