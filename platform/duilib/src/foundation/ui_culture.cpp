#include "duilib/ui_culture.h"

#include <unordered_map>

#include "base/text.h"
#include "foundation/attribute_values.h"
#include "foundation/diagnostics.h"
#include "foundation/layout_basis.h"
#include "foundation/xml_source.h"

namespace DuiLib {

namespace {

constexpr std::wstring_view kPlaceholder = L"{0}";
constexpr std::wstring_view kPlainPercent = L"{0}%";
constexpr std::wstring_view kPlainDigits = L"0123456789";

struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::wstring_view text) const { return std::hash<std::wstring_view>{}(text); }
};

using Texts = std::unordered_map<std::wstring, CDuiString, Hash, std::equal_to<>>;

}  // namespace

struct UICulture::State {
    std::string language BASE_GUARDED_BY(kUiTurn);
    std::wstring percentPattern BASE_GUARDED_BY(kUiTurn){kPlainPercent};
    std::wstring digits BASE_GUARDED_BY(kUiTurn){kPlainDigits};  // 0 to 9 in order
    bool rightToLeft BASE_GUARDED_BY(kUiTurn) = false;
    Texts texts BASE_GUARDED_BY(kUiTurn);
};

UICulture::UICulture() : m_state(std::make_unique<State>()) {}
UICulture::~UICulture() = default;

UICulture* UICulture::GetInstance() {
    static auto* const instance = new UICulture;  // never destroyed, like the other singletons
    return instance;
}

CDuiString UICulture::GetString(std::wstring_view id) const {
    AssertUiTurn();
    const auto found = m_state->texts.find(id);
    return found == m_state->texts.end() ? CDuiString() : found->second;
}

CDuiString UICulture::GetBindString(std::wstring_view bindText) const {
    AssertUiTurn();
    constexpr std::wstring_view kHead = L"bind='";
    if (bindText.size() <= kHead.size() || !bindText.starts_with(kHead) || !bindText.ends_with(L'\'')) return {};
    return GetString(bindText.substr(kHead.size(), bindText.size() - kHead.size() - 1));
}

CDuiString UICulture::GetNumberString(int number) const {
    AssertUiTurn();
    std::wstring text = std::to_wstring(number);
    for (wchar_t& character : text) {
        const std::size_t digit = kPlainDigits.find(character);
        if (digit != kPlainDigits.npos) character = m_state->digits[digit];
    }
    return text;
}

CDuiString UICulture::GetPercentString(int percent) const {
    AssertUiTurn();
    std::wstring text = m_state->percentPattern;
    const std::size_t at = text.find(kPlaceholder);
    if (at != text.npos) text.replace(at, kPlaceholder.size(), GetNumberString(percent).Str());
    return text;
}

const std::string& UICulture::GetLanguage() const {
    AssertUiTurn();
    return m_state->language;
}

bool UICulture::IsRightToLeft() const {
    AssertUiTurn();
    return m_state->rightToLeft;
}

void UICulture::Clear() {
    AssertUiTurn();
    *m_state = State{};
    TellLayoutBasisChanged();
}

void UICulture::SetString(std::wstring_view id, std::wstring_view text) {
    AssertUiTurn();
    m_state->texts.insert_or_assign(std::wstring(id), CDuiString(text));
}

void UICulture::SetPercentPattern(std::wstring_view pattern) {
    AssertUiTurn();
    m_state->percentPattern = pattern;
}

namespace {

struct LanguageHead {
    std::string name;
    std::wstring percentPattern{kPlainPercent};
    std::wstring digits{kPlainDigits};  // 0 to 9 in order
    bool rightToLeft = false;
};

LanguageHead ReadHead(const XmlSource& source) {
    LanguageHead head;
    for (const pugi::xml_attribute& attribute : source.Root().attributes()) {
        const std::string_view key = attribute.name();
        const std::wstring value = base::WideFromUtf8(attribute.value());
        if (key == "name" && !value.empty()) {
            head.name = attribute.value();
        } else if (key == "percent" && value.find(kPlaceholder) != value.npos) {
            head.percentPattern = value;
        } else if (key == "digits" && value.size() == kPlainDigits.size()) {
            head.digits = value;
        } else if (key == "rtl" && ParseBool(value)) {
            head.rightToLeft = *ParseBool(value);
        } else {
            source.Fail(source.LineOf(attribute),
                        "<Language> cannot have " + std::string(key) + "=\"" + attribute.value() + "\"");
        }
    }
    if (head.name.empty()) source.Fail(source.LineOf(source.Root()), "<Language> without name");
    return head;
}

void ReadText(const XmlSource& source, const pugi::xml_node& node, Texts& texts) {
    const int line = source.LineOf(node);
    if (node.type() != pugi::node_element || node.name() != std::string_view("Text")) {
        source.Fail(line, "only <Text> elements are expected in <Language>");
    }
    std::wstring id;
    for (const pugi::xml_attribute& attribute : node.attributes()) {
        if (attribute.name() != std::string_view("id")) {
            source.Fail(source.LineOf(attribute), "unknown attribute \"" + std::string(attribute.name()) + "\"");
        }
        id = base::WideFromUtf8(attribute.value());
    }
    if (id.empty()) source.Fail(line, "<Text> without id");
    std::string content;
    for (const pugi::xml_node& piece : node.children()) {
        if (piece.type() == pugi::node_element) source.Fail(source.LineOf(piece), "an element within a text");
        content += piece.value();
    }
    if (!texts.try_emplace(id, base::WideFromUtf8(content)).second)
        source.Fail(line, "id \"" + base::Utf8FromWide(id) + "\" twice");
}

}  // namespace

void UICulture::Load(const std::filesystem::path& file) {
    AssertUiTurn();
    const XmlSource source(file, ReadXmlFile(file));
    const pugi::xml_node root = source.Root();
    if (root.name() != std::string_view("Language")) {
        source.Fail(source.LineOf(root), "the root element is <" + std::string(root.name()) + ">, not <Language>");
    }
    LanguageHead head = ReadHead(source);
    Texts texts;
    for (const pugi::xml_node& node : root.children()) ReadText(source, node, texts);
    *m_state = State{std::move(head.name), std::move(head.percentPattern), std::move(head.digits), head.rightToLeft,
                     std::move(texts)};
    TellLayoutBasisChanged();
}

}  // namespace DuiLib
