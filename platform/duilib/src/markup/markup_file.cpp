#include "markup/markup_file.h"

#include <array>
#include <map>

#include "base/path.h"
#include "base/text.h"
#include "duilib/container.h"
#include "duilib/control.h"
#include "duilib/scroll_view.h"
#include "foundation/attribute_values.h"
#include "foundation/xml_source.h"
#include "markup/file_stamp.h"

namespace DuiLib {

namespace {

template <class Class>
CControlUI* Make() {
    return new Class;
}

struct ElementRule {
    std::string_view name;
    CControlUI* (*make)();
};

constexpr std::array kElements = {
    ElementRule{"Control", Make<CControlUI>},
    ElementRule{"Label", Make<CLabelUI>},
    ElementRule{"Text", Make<CTextUI>},
    ElementRule{"Button", Make<CButtonUI>},
    ElementRule{"Container", Make<CContainerUI>},
    ElementRule{"VerticalLayout", Make<CVerticalLayoutUI>},
    ElementRule{"HorizontalLayout", Make<CHorizontalLayoutUI>},
    ElementRule{"ScrollView", Make<CScrollViewUI>},
};

auto FindMaker(std::string_view name) -> CControlUI* (*)() {
    for (const ElementRule& rule : kElements) {
        if (rule.name == name) return rule.make;
    }
    return nullptr;
}

void RequireElement(const XmlSource& source, const pugi::xml_node& node) {
    if (node.type() != pugi::node_element) source.Fail(source.LineOf(node), "text between the elements");
}

MarkupElement ReadElement(const XmlSource& source, const pugi::xml_node& node) {
    MarkupElement element{node.name(), FindMaker(node.name()), source.LineOf(node), {}, {}, {}};
    for (const pugi::xml_attribute& attribute : node.attributes()) {
        element.given.Add(base::WideFromUtf8(attribute.name()), base::WideFromUtf8(attribute.value()));
        element.places.push_back({source.LineOf(attribute)});
    }
    for (const pugi::xml_node& child : node.children()) {
        RequireElement(source, child);
        element.children.push_back(ReadElement(source, child));
    }
    return element;
}

std::pair<int, FontDescription> ReadFont(const XmlSource& source, const pugi::xml_node& node) {
    std::optional<int> id;
    FontDescription font;
    if (node.first_child()) source.Fail(source.LineOf(node.first_child()), "<Font> has no content");
    for (const pugi::xml_attribute& attribute : node.attributes()) {
        const std::string_view name = attribute.name();
        const std::wstring value = base::WideFromUtf8(attribute.value());
        const std::optional<int> number = ParseInt(value);
        const std::optional<bool> flag = ParseBool(value);
        if (name == "id" && number && *number >= -1) {
            id = number;
        } else if (name == "name" && !value.empty()) {
            font.family = attribute.value();
        } else if (name == "size" && number && *number > 0) {
            font.size = *number;
        } else if (name == "bold" && flag) {
            font.bold = *flag;
        } else {
            source.Fail(source.LineOf(attribute),
                        "<Font> cannot have " + std::string(name) + "=\"" + attribute.value() + "\"");
        }
    }
    if (!id) source.Fail(source.LineOf(node), "<Font> without id");
    return {*id, font};
}

MarkupFile ParseMarkup(const std::filesystem::path& path, std::string text) {
    const XmlSource source(path, std::move(text));
    const pugi::xml_node window = source.Root();
    if (window.name() != std::string_view("Window")) {
        source.Fail(source.LineOf(window), "the root element is <" + std::string(window.name()) + ">, not <Window>");
    }
    if (const pugi::xml_attribute attribute = window.first_attribute()) {
        source.Fail(source.LineOf(attribute), "<Window> has no attributes");
    }
    MarkupFile file{base::Utf8FromPath(path), {}, {}};
    bool hasControl = false;
    for (const pugi::xml_node& node : window.children()) {
        RequireElement(source, node);
        if (node.name() == std::string_view("Font")) {
            file.fonts.push_back(ReadFont(source, node));
            continue;
        }
        if (std::exchange(hasControl, true)) source.Fail(source.LineOf(node), "a second control in <Window>");
        file.root = ReadElement(source, node);
    }
    if (!hasControl) source.Fail(source.LineOf(window), "no control in <Window>");
    return file;
}

// ---- Files that are kept

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
    if (!stamp) throw XmlError(base::Utf8FromPath(path) + ":1: there is no such file");
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
