#pragma once

#include <filesystem>
#include <pugixml.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace DuiLib {

// What is wrong with a file: "file:line: reason", UTF-8.
class XmlError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A UTF-8 file as it was read.
std::string ReadXmlFile(const std::filesystem::path& path);  // throws XmlError

// A parsed XML file that knows on which line everything stands. Well-formed means: UTF-8 throughout, one root element,
// no attribute twice in an element.
class XmlSource {
public:
    XmlSource(const std::filesystem::path& path, std::string text);  // throws XmlError
    XmlSource(const XmlSource&) = delete;
    XmlSource& operator=(const XmlSource&) = delete;

    pugi::xml_node Root() const { return m_root; }
    int LineOf(const pugi::xml_node& node) const;
    int LineOf(const pugi::xml_attribute& attribute) const;
    [[noreturn]] void Fail(int line, std::string_view reason) const;

private:
    int LineAt(const char* place) const;  // in m_buffer
    int LineAt(std::size_t offset) const;
    void CheckBytes(std::string_view text) const;
    void CheckNode(const pugi::xml_node& node) const;

    std::string m_path;
    std::vector<std::size_t> m_lineStarts;
    std::string m_buffer;  // the parser works in it, so names point into it
    pugi::xml_document m_document;
    pugi::xml_node m_root;
};

}  // namespace DuiLib
