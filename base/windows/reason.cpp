#include "base/reason.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>

#include "base/file.h"
#include "base/text.h"

namespace base {
namespace {

// The pipe library has a category of its own for the system's numbers.
bool IsOfTheSystem(const std::error_category& category) {
    return category == std::system_category() || std::string_view(category.name()) == "asio.system";
}

std::string ReasonWithPaths(const std::filesystem::filesystem_error& error) {
    std::string text = Reason(error.code());
    for (const std::filesystem::path& path : {error.path1(), error.path2()}) {
        if (!path.empty()) text += " [" + Utf8FromPath(path) + "]";
    }
    return text;
}

}  // namespace

std::string Reason(int error) {
    std::array<const wchar_t*, 9> inserts;  // "%1 is not a valid Win32 application."
    inserts.fill(L"the file");
    std::array<wchar_t, 1024> text{};
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_ARGUMENT_ARRAY, nullptr,
                                        static_cast<DWORD>(error), 0, text.data(), static_cast<DWORD>(text.size()),
                                        reinterpret_cast<va_list*>(const_cast<wchar_t**>(inserts.data())));
    std::wstring line(text.data(), length);
    std::replace_if(
        line.begin(), line.end(), [](wchar_t c) { return c == L'\r' || c == L'\n'; }, L' ');
    line.erase(line.find_last_not_of(L" .") + 1);
    return line.empty() ? "error " + std::to_string(static_cast<DWORD>(error)) : Utf8FromWide(line);
}

std::string LastReason() { return Reason(static_cast<int>(GetLastError())); }

std::string Reason(const std::error_code& error) {
    return IsOfTheSystem(error.category()) ? Reason(error.value()) : error.message();
}

std::string Reason(const std::exception& error) {
    if (const auto* file = dynamic_cast<const std::filesystem::filesystem_error*>(&error))
        return ReasonWithPaths(*file);
    std::string text = error.what();
    const auto* failure = dynamic_cast<const std::system_error*>(&error);
    if (failure == nullptr) return text;
    const std::string message = failure->code().message();
    const std::size_t at = text.rfind(message);
    if (at != std::string::npos && !message.empty()) text.replace(at, message.size(), Reason(failure->code()));
    return text;
}

}  // namespace base
