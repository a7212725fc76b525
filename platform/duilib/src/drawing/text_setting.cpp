#include "drawing/text_setting.h"

#include <cmath>

namespace DuiLib {

TextSetting SettingOf(std::wstring_view text, const FontDescription& font, unsigned scale, int width, unsigned style) {
    const bool wrap = !(style & kTextSingleLine);
    const bool ellipsis = !wrap && (style & kTextEndEllipsis);
    return {text, font, scale, wrap || ellipsis ? width : -1, wrap, ellipsis};
}

double LineOffset(unsigned style, bool rightToLeft, double space) {
    if (style & kTextCenter) return std::floor(space / 2);
    const bool atEnd = (style & kTextRight) != 0;
    return atEnd != rightToLeft ? space : 0;
}

double TextTop(unsigned style, double space) {
    if (style & kTextVCenter) return std::floor(space / 2);
    return style & kTextBottom ? space : 0;
}

}  // namespace DuiLib
