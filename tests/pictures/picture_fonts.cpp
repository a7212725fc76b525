#include "picture_fonts.h"

#include <fontconfig/fontconfig.h>

#include <cstdlib>
#include <memory>
#include <string_view>

namespace {

struct Destroy {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
using Pattern = std::unique_ptr<FcPattern, Destroy>;

std::string_view FamilyOf(const Pattern& pattern) {
    FcChar8* family = nullptr;
    if (!pattern || FcPatternGetString(pattern.get(), FC_FAMILY, 0, &family) != FcResultMatch) return {};
    return reinterpret_cast<const char*>(family);
}

// The family that Fontconfig gives for a pattern such as "Noto Sans" or ":charset=62a".
bool Gives(const char* wanted, std::string_view family) {
    const Pattern pattern(FcNameParse(reinterpret_cast<const FcChar8*>(wanted)));
    FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    const Pattern match(FcFontMatch(nullptr, pattern.get(), &result));
    return FamilyOf(match) == family;
}

}  // namespace

std::string WhatFontsLack() {
    const char* const file = std::getenv("FONTCONFIG_FILE");
    if (file == nullptr || std::string_view(file) != PICTURES_FONTS_FILE) {
        return "the pictures are drawn with fonts of their own: run this through ctest, or with "
               "FONTCONFIG_FILE=" PICTURES_FONTS_FILE;
    }
    if (!Gives("Noto Sans", "Noto Sans")) return "\"Noto Sans\" is missing: apt-get install fonts-noto-core";
    if (!Gives("Noto Sans Arabic:lang=ar", "Noto Sans Arabic")) {
        return "\"Noto Sans Arabic\" is missing: apt-get install fonts-noto-core";
    }
    return {};
}
