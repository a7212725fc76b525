#include "markup/markup_cache.h"

#include <map>

#include "foundation/text_utf8.h"
#include "foundation/xml_source.h"
#include "markup/file_stamp.h"

namespace DuiLib {

namespace {

constexpr std::size_t kMaxFiles = 64;

struct Entry {
    FileStamp stamp;
    bool settled = false;
    std::string text;
    std::shared_ptr<const MarkupFile> file;
};

std::map<std::filesystem::path, Entry>& Entries() {
    static auto& entries = *new std::map<std::filesystem::path, Entry>;
    return entries;
}

}  // namespace

std::shared_ptr<const MarkupFile> LoadMarkup(const std::filesystem::path& path) {
    const std::optional<FileStamp> stamp = StampOf(path);
    if (!stamp) throw XmlError(PathText(path) + ":1: there is no such file");
    auto& entries = Entries();
    const auto known = entries.find(path);
    if (known != entries.end() && known->second.settled && known->second.stamp == *stamp) return known->second.file;

    const bool settled = IsSettled(*stamp);  // asked before reading: what changes meanwhile has another stamp
    std::string text = ReadXmlFile(path);
    if (known != entries.end() && known->second.text == text) {
        known->second.stamp = *stamp;
        known->second.settled = settled;
        return known->second.file;
    }
    if (known != entries.end()) entries.erase(known);
    auto file = std::make_shared<const MarkupFile>(ParseMarkup(path, text));
    if (entries.size() >= kMaxFiles) entries.clear();
    entries[path] = {*stamp, settled, std::move(text), file};
    return file;
}

}  // namespace DuiLib
