#include "drawing/picture_reference.h"

#include <map>
#include <utility>

#include "drawing/picture_files.h"
#include "duilib/resource_manager.h"
#include "foundation/diagnostics.h"

namespace DuiLib {

std::optional<PictureReference> ParsePicture(std::wstring_view text) {
    if (text.empty()) return PictureReference{};
    PictureReference picture;
    constexpr std::wstring_view kHead = L"file='";
    constexpr std::wstring_view kReverse = L" reverse='true'";
    constexpr std::wstring_view kPlain = L" reverse='false'";
    if (text.ends_with(kReverse)) {
        picture.reverse = true;
        text.remove_suffix(kReverse.size());
    } else if (text.ends_with(kPlain)) {
        text.remove_suffix(kPlain.size());
    }
    if (!text.starts_with(kHead) || !text.ends_with(L'\'')) return {};
    text.remove_prefix(kHead.size());
    if (text.size() < 2 || text.find(L"' ") != text.npos) return {};  // something else follows the file
    picture.file = SharedText(text.substr(0, text.size() - 1));
    return picture;
}

namespace {

std::filesystem::path VersionFor(const std::filesystem::path& file, unsigned scale) {
    const bool drawing = file.extension() == ".svg";
    if (file.extension() != ".png" && (!drawing || CanDrawSvg())) return file;
    std::error_code ignored;
    std::filesystem::path version = file;
    version.replace_extension(".svg");
    if (CanDrawSvg() && std::filesystem::exists(version, ignored)) return version;
    std::filesystem::path largest = file;
    largest.replace_extension(".png");
    for (const unsigned made : {125u, 150u, 200u, 300u}) {
        version = file.parent_path() / file.stem();
        version += "@" + std::to_string(made) + ".png";
        if (scale <= 100 || !std::filesystem::exists(version, ignored)) continue;
        if (made >= scale) return version;
        largest = version;
    }
    return largest;
}

std::filesystem::path Choose(const std::wstring& file, unsigned scale) {
    const CResourceManager& resources = *CResourceManager::GetInstance();
    std::string reason;
    const std::filesystem::path found = VersionFor(resources.ResolveSkinFile(file), scale);
    if (IsPictureReadable(found, reason)) return found;
    Report("the picture cannot be shown: " + reason);
    const std::filesystem::path fallback = VersionFor(resources.GetFallbackPicture(), scale);
    return !fallback.empty() && IsPictureReadable(fallback, reason) ? fallback : std::filesystem::path();
}

}  // namespace

std::filesystem::path FindPicture(const std::wstring& file, unsigned scale) {
    static std::map<std::pair<std::filesystem::path, unsigned>, std::filesystem::path> chosen;
    const std::pair key{CResourceManager::GetInstance()->ResolveSkinFile(file), scale};
    const auto found = chosen.find(key);
    return found != chosen.end() ? found->second : chosen.emplace(key, Choose(file, scale)).first->second;
}

}  // namespace DuiLib
