#include "duilib/dialog_builder.h"

#include <array>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "base/file.h"
#include "base/text.h"
#include "duilib/container.h"
#include "duilib/control.h"
#include "duilib/resource_manager.h"
#include "duilib/scroll_view.h"
#include "foundation/attribute_values.h"
#include "foundation/diagnostics.h"
#include "foundation/xml_source.h"
#include "tree/control_attributes.h"

namespace DuiLib {

namespace {

// One element of a layout file, shared by all controls that were built from it.
struct MarkupElement {
    std::string name;       // UTF-8
    CControlUI* (*make)();  // null when the toolkit does not know the class
    int line;
    AttributeList given;
    struct Place {
        int line;
        mutable bool reported = false;  // that something is wrong there: said once, however many controls are built
    };
    std::vector<Place> places;  // of the attributes
    std::vector<MarkupElement> children;
};

struct MarkupFile {
    std::string path;  // UTF-8
    std::vector<std::pair<int, FontDescription>> fonts;
    MarkupElement root;  // the one control in <Window>
};

// ---- Reading

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
    base::FileStamp stamp;
    bool settled = false;
    std::string text;
    std::shared_ptr<const MarkupFile> file;
};

std::map<std::filesystem::path, Entry>& Entries() {
    static auto& entries = *new std::map<std::filesystem::path, Entry>;
    return entries;
}

// The parsed layout of a file, kept from call to call while the file stays the same. A file that changed so lately that
// its time stamp could miss a further change is read and compared again. Throws XmlError. UI turn.
std::shared_ptr<const MarkupFile> LoadMarkup(const std::filesystem::path& path) {
    const std::optional<base::FileStamp> stamp = base::StampOf(path);
    if (!stamp) throw XmlError(base::Utf8FromPath(path) + ":1: there is no such file");
    auto& entries = Entries();
    const auto known = entries.find(path);
    if (known != entries.end() && known->second.settled && known->second.stamp == *stamp) return known->second.file;

    const bool settled = base::IsSettled(*stamp);  // asked before reading: what changes meanwhile has another stamp
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

}  // namespace

// ---- Building

// Builds the controls of one layout file.
class MarkupBuilder {
public:
    MarkupBuilder(std::shared_ptr<const MarkupFile> file, IDialogBuilderCallback* callback)
        : m_file(std::move(file)), m_callback(callback) {}

    std::unique_ptr<CControlUI> Build() {
        for (const auto& [id, font] : m_file->fonts) CResourceManager::GetInstance()->SetFont(id, font);
        return BuildElement(m_file->root);
    }

private:
    std::string At(int line) const { return m_file->path + ":" + std::to_string(line) + ": "; }

    std::unique_ptr<CControlUI> BuildElement(const MarkupElement& element) {
        std::unique_ptr<CControlUI> control(element.make ? element.make() : nullptr);
        if (!control && m_callback) control.reset(m_callback->CreateControl(base::WideFromUtf8(element.name)));
        if (!control) throw XmlError(At(element.line) + "unknown element <" + element.name + ">");
        if (element.make) {
            ApplyShared(*control, element);
        } else {
            for (const AttributeList::Attribute& attribute : element.given.attributes) {
                control->SetAttribute(attribute.name.Get(), attribute.text.Get());
            }
        }
        AddChildren(*control, element);
        return control;
    }

    // The control keeps the element's own list, not copies of its attributes.
    void ApplyShared(CControlUI& control, const MarkupElement& element) const {
        control.m_given = std::shared_ptr<const AttributeList>(m_file, &element.given);
        for (std::size_t i = 0; i < element.places.size(); ++i) {
            const AttributeList::Attribute& attribute = element.given.attributes[i];
            if (!attribute.ApplyTo(control) && !std::exchange(element.places[i].reported, true)) {
                Warn(element, attribute, element.places[i].line);
            }
        }
    }

    void Warn(const MarkupElement& element, const AttributeList::Attribute& attribute, int line) const {
        const std::string name = base::Utf8FromWide(attribute.name.Get());
        const std::string reason = attribute.rule ? "<" + element.name + "> cannot have " + name + "=\"" +
                                                        base::Utf8FromWide(attribute.text.Get()) + "\""
                                                  : "unknown attribute \"" + name + "\"";
        Report(At(line) + "warning: " + reason);
    }

    void AddChildren(CControlUI& control, const MarkupElement& element) {
        if (element.children.empty()) return;
        auto* const container = dynamic_cast<CContainerUI*>(&control);
        if (!container) {
            throw XmlError(At(element.children.front().line) + "<" + element.name + "> cannot have content");
        }
        for (const MarkupElement& childElement : element.children) {
            std::unique_ptr<CControlUI> child = BuildElement(childElement);
            if (!container->Add(child.get())) {
                throw XmlError(At(childElement.line) + "<" + element.name + "> refuses <" + childElement.name + ">");
            }
            static_cast<void>(child.release());  // the container has it now
        }
    }

    std::shared_ptr<const MarkupFile> m_file;
    IDialogBuilderCallback* m_callback;
};

CControlUI* CDialogBuilder::Create(std::wstring_view file, const wchar_t* type, IDialogBuilderCallback* callback,
                                   CPaintManagerUI*, CControlUI* parent) {
    AssertUiTurn();
    m_error.Empty();
    try {
        const std::filesystem::path path = CResourceManager::GetInstance()->Resolve(file);
        if (type)
            throw XmlError(base::Utf8FromPath(path) + ":1: resources of type \"" + base::Utf8FromWide(type) +
                           "\" are not supported");
        std::unique_ptr<CControlUI> root = MarkupBuilder(LoadMarkup(path), callback).Build();
        if (parent) {
            auto* const container = dynamic_cast<CContainerUI*>(parent);
            if (!container || !container->Add(root.get())) {
                throw XmlError(base::Utf8FromPath(path) + ":1: the parent is not a container");
            }
        }
        return root.release();
    } catch (const XmlError& error) {
        m_error = CDuiString(base::WideFromUtf8(error.what()));
        Report(error.what());
        return nullptr;
    }
}

}  // namespace DuiLib
