#include "foundation/xml_source.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <set>
#include <system_error>

#include "base/file.h"
#include "base/reason.h"
#include "base/text.h"

namespace DuiLib {

std::string ReadXmlFile(const std::filesystem::path& path) {
    errno = 0;
    try {
        std::ifstream file(path, std::ios::binary);
        file.exceptions(std::ios::badbit | std::ios::failbit);
        return std::string{std::istreambuf_iterator<char>(file), {}};
    } catch (const std::ios_base::failure&) {  // also what reading a folder comes to
        const std::string reason =
            errno == 0 ? "" : ": " + base::Reason(std::error_code(errno, std::generic_category()));
        throw XmlError(base::Utf8FromPath(path) + ":1: the file cannot be read" + reason);
    }
}

XmlSource::XmlSource(const std::filesystem::path& path, std::string text) : m_path(base::Utf8FromPath(path)) {
    m_lineStarts.push_back(0);
    for (std::size_t at = text.find('\n'); at != text.npos; at = text.find('\n', at + 1)) {
        m_lineStarts.push_back(at + 1);
    }
    CheckBytes(text);
    m_buffer = std::move(text);
    constexpr unsigned kOptions = pugi::parse_default | pugi::parse_fragment;
    const pugi::xml_parse_result result =
        m_document.load_buffer_inplace(m_buffer.data(), m_buffer.size(), kOptions, pugi::encoding_utf8);
    if (!result)
        Fail(LineAt(static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, result.offset))), result.description());
    for (const pugi::xml_node& node : m_document.children()) {
        if (node.type() != pugi::node_element) Fail(LineOf(node), "text outside of the root element");
        if (m_root) Fail(LineOf(node), "a second root element");
        m_root = node;
    }
    if (!m_root) Fail(1, "no root element");
    CheckNode(m_root);
}

int XmlSource::LineOf(const pugi::xml_node& node) const {
    return LineAt(node.type() == pugi::node_element ? node.name() : node.value());
}

int XmlSource::LineOf(const pugi::xml_attribute& attribute) const { return LineAt(attribute.name()); }

void XmlSource::Fail(int line, std::string_view reason) const {
    throw XmlError(m_path + ":" + std::to_string(line) + ": " + std::string(reason));
}

int XmlSource::LineAt(const char* place) const { return LineAt(static_cast<std::size_t>(place - m_buffer.data())); }

int XmlSource::LineAt(std::size_t offset) const {
    return static_cast<int>(std::ranges::upper_bound(m_lineStarts, offset) - m_lineStarts.begin());
}

void XmlSource::CheckBytes(std::string_view text) const {
    if (const std::size_t zero = text.find('\0'); zero != text.npos) Fail(LineAt(zero), "a zero byte");
    const std::string again = base::Utf8FromWide(base::WideFromUtf8(text));
    const auto [bad, unused] = std::ranges::mismatch(text, again);
    if (bad != text.end()) Fail(LineAt(static_cast<std::size_t>(bad - text.begin())), "not UTF-8");
}

namespace {

// Documents are shallow where they are valid; the parser itself is not recursive, what reads its result is.
constexpr int kMaxDepth = 100;

class NodeCheck : public pugi::xml_tree_walker {
public:
    explicit NodeCheck(const XmlSource& source) : m_source(source) {}
    bool for_each(pugi::xml_node& node) override {
        if (depth() > kMaxDepth) m_source.Fail(m_source.LineOf(node), "elements are nested too deep");
        std::set<std::string_view> names;
        for (const pugi::xml_attribute& attribute : node.attributes()) {
            if (names.insert(attribute.name()).second) continue;
            m_source.Fail(m_source.LineOf(attribute), "attribute \"" + std::string(attribute.name()) + "\" twice");
        }
        return true;
    }

private:
    const XmlSource& m_source;
};

}  // namespace

void XmlSource::CheckNode(const pugi::xml_node& node) const {
    NodeCheck check(*this);
    pugi::xml_node root = node;
    check.for_each(root);
    root.traverse(check);
}

}  // namespace DuiLib
