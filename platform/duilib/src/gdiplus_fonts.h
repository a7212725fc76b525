#pragma once

#include "duilib/resource_manager.h"
#include "gdiplus_session.h"

namespace DuiLib {

struct SystemFont {
    const Gdiplus::Font* font;
    int lineHeight;  // [device px] rounded up
};

// The font in its size at a display scale [percent]; where the system has no such family, the family of its own texts.
// Kept until the process ends. UI turn.
const SystemFont& FindFont(const FontDescription& font, unsigned scale);

}  // namespace DuiLib
