#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace settings_host {

// The language that the host shows when nobody names one: tags like "de-DE" or "ar", as language files are called.
inline constexpr const char* kFallbackLanguage = "en-US";

// The language of `available` that suits a locale such as "de_AT.UTF-8", "zh_CN.GB18030", "zh-Hans-SG", "ar_EG", "C" or
// "". The language of that very region comes first, then the first of the same language that is written in the same
// script, so "zh_TW" does not get "zh-CN". What nothing suits gets kFallbackLanguage. The pseudo language "qps-ploc"
// is only chosen when the locale names it in full.
std::string ChooseLanguage(const std::vector<std::string>& available, const std::string& locale);

// The languages that have a file in the folder ("de-DE" for de-DE.xml), sorted, the pseudo language among them. Empty
// when the folder cannot be read.
std::vector<std::string> AvailableLanguages(const std::filesystem::path& folder);

}  // namespace settings_host
