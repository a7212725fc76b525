#include "command_line_win32.h"

#include <windows.h>

#include <map>

#include "base/text.h"

namespace app_system {
namespace {

// A quotation mark is written with a backslash before it, and backslashes before one are doubled.
void AppendQuoted(std::wstring& line, const std::wstring& word) {
    if (!word.empty() && word.find_first_of(L" \t\n\v\"") == std::wstring::npos) {
        line += word;
        return;
    }
    line += L'"';
    std::size_t backslashes = 0;
    for (const wchar_t c : word) {
        if (c == L'"') line.append(backslashes + 1, L'\\');
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        line += c;
    }
    line.append(backslashes, L'\\');
    line += L'"';
}

bool IsInterpretersText(const std::vector<std::string>& command, std::size_t index) {
    return index == 4 && command[0] == "cmd.exe" && command[2] == "/s" && command[3] == "/c";
}

// Names of variables are the same in any case.
struct NameLess {
    bool operator()(const std::wstring& a, const std::wstring& b) const {
        return CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(), static_cast<int>(b.size()), TRUE) ==
               CSTR_LESS_THAN;
    }
};

// The system's own "=C:" variables begin with the sign that ends other names.
std::map<std::wstring, std::wstring, NameLess> OwnEnvironment() {
    std::map<std::wstring, std::wstring, NameLess> variables;
    wchar_t* const block = GetEnvironmentStringsW();
    if (block == nullptr) return variables;
    for (const wchar_t* entry = block; *entry != L'\0'; entry += std::char_traits<wchar_t>::length(entry) + 1) {
        const std::wstring text = entry;
        const std::size_t end = text.find(L'=', 1);
        if (end != std::wstring::npos) variables[text.substr(0, end)] = text.substr(end + 1);
    }
    FreeEnvironmentStringsW(block);
    return variables;
}

}  // namespace

std::wstring CommandLineOf(const std::vector<std::string>& command) {
    std::wstring line;
    for (std::size_t i = 0; i < command.size(); ++i) {
        if (i != 0) line += L' ';
        if (IsInterpretersText(command, i)) {
            return line + L'"' + base::WideFromUtf8(command[i]) + L'"';
        }
        AppendQuoted(line, base::WideFromUtf8(command[i]));
    }
    return line;
}

std::wstring ProgramPath(const std::string& program, const std::filesystem::path& folder) {
    if (program.find_first_of("/\\") == std::string::npos) return {};
    return (folder / std::filesystem::path(base::WideFromUtf8(program))).make_preferred();
}

std::wstring EnvironmentWith(const std::vector<std::pair<std::string, std::string>>& added) {
    auto variables = OwnEnvironment();
    for (const auto& [name, value] : added) variables[base::WideFromUtf8(name)] = base::WideFromUtf8(value);
    std::wstring block;
    for (const auto& [name, value] : variables) block += name + L'=' + value + L'\0';
    return block + L'\0';
}

}  // namespace app_system
