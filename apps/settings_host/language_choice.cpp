#include "language_choice.h"

#include <algorithm>
#include <string_view>

#include "base/file.h"

namespace settings_host {

namespace {

constexpr std::string_view kPseudoLanguage = "qps";

// A language tag or locale in parts, all in lower case: "zh_TW.UTF-8" is "zh", "hant", "tw".
struct Tag {
    std::string language;
    std::string script;  // empty: the usual one of the language
    std::string region;  // may be empty

    bool operator==(const Tag&) const = default;
};

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return lower;
}

// Chinese has two scripts that its readers do not exchange; the region tells which where the tag does not.
std::string UsualScript(const Tag& tag) {
    if (tag.language != "zh") return {};
    return tag.region == "tw" || tag.region == "hk" || tag.region == "mo" ? "hant" : "hans";
}

Tag ReadTag(std::string_view text) {
    const std::string name = LowerCase(text.substr(0, text.find_first_of(".@")));
    Tag tag;
    for (std::size_t begin = 0; begin <= name.size();) {
        const std::size_t end = std::min(name.find_first_of("_-", begin), name.size());
        const std::string part = name.substr(begin, end - begin);
        if (begin == 0) {
            tag.language = part;
        } else if (part.size() == 4 && tag.script.empty() && tag.region.empty() && tag.language != kPseudoLanguage) {
            tag.script = part;
        } else if (tag.region.empty()) {
            tag.region = part;
        }
        begin = end + 1;
    }
    if (tag.script.empty()) tag.script = UsualScript(tag);
    return tag;
}

}  // namespace

std::string ChooseLanguage(const std::vector<std::string>& available, const std::string& locale) {
    const Tag wanted = ReadTag(locale);
    for (const std::string& name : available) {
        if (ReadTag(name) == wanted) return name;
    }
    for (const std::string& name : available) {
        const Tag tag = ReadTag(name);
        if (tag.language == kPseudoLanguage) continue;
        if (tag.language == wanted.language && tag.script == wanted.script) return name;
    }
    return kFallbackLanguage;
}

std::vector<std::string> AvailableLanguages(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    std::error_code error;
    std::filesystem::directory_iterator file(folder, error);
    for (; !error && file != std::filesystem::directory_iterator(); file.increment(error)) {
        if (file->path().extension() == ".xml") names.push_back(base::Utf8FromPath(file->path().stem()));
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace settings_host
