#pragma once

#include <string>

// Conversions between the service's own UTF-8 and what the pipe carries.
namespace update_service {

std::wstring WideFromUtf8(const std::string& text);
std::string AnsiFromUtf8(const std::string& text);
std::string Utf8FromAnsi(const std::string& text);
std::string Utf8FromWide(const std::wstring& text);

}  // namespace update_service
