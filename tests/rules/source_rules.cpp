#include "source_rules.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <regex>
#include <set>

namespace source_rules {
namespace {

constexpr std::size_t kMostLines = 400;

// Headers of the C++ library have neither a folder nor an ending.
bool IsStandard(const std::string& header) { return header.find_first_of("./") == std::string::npos; }

bool IsOfOneSystem(const std::string& file) {
    return file.find("/linux/") != std::string::npos || file.find("/windows/") != std::string::npos;
}

bool IsTest(const std::string& file) { return file.starts_with("tests/") || Matches("*_test.cpp", file); }

// The header that the build makes for each library of platform/; the library's public headers include it.
bool IsOwnExportHeader(const std::string& file, const std::string& header) {
    const std::string library = NameOf(FolderOf(file));
    return header == library + "/export.h" && Matches("platform/" + library + "/include/*", file);
}

bool AsksForTheSystem(const std::string& line) {
    static const std::regex pattern(
        R"(\s*#\s*(if|ifdef|ifndef|elif)\b.*\b(_WIN32|_WIN64|WIN32|__linux__|__unix__|_MSC_VER|__MINGW32__|__MINGW64__|__APPLE__)\b.*)");
    return std::regex_match(line, pattern);
}

// Empty when `file` may include that.
std::string WrongInclude(const SourceTree& sources, const RoomTable& rooms, const std::string& file,
                         const Include& what) {
    if (what.name.starts_with("../") || what.name.find("/../") != std::string::npos) {
        return "includes by a path that goes up: " + what.name;
    }
    const std::vector<std::string> candidates = Candidates(sources, file, what.name);
    const auto allowed = [&](const std::string& candidate) { return rooms.MayInclude(file, candidate); };
    if (std::any_of(candidates.begin(), candidates.end(), allowed)) return "";
    if (!candidates.empty()) return "may not include " + candidates.front();
    if (IsOwnExportHeader(file, what.name)) return "";
    if (what.quoted) return "includes a file that the project does not have: " + what.name;
    if (IsStandard(what.name) || IsOfOneSystem(file) || rooms.MayIncludeForeign(file, what.name)) return "";
    return "may not include <" + what.name + ">";
}

void CheckRooms(const SourceTree& sources, const RoomTable& rooms, Violations& violations) {
    for (const Room& room : rooms.Rooms()) {
        const bool empty = std::none_of(sources.begin(), sources.end(),
                                        [&](const auto& source) { return rooms.RoomOf(source.first) == &room; });
        if (empty) violations.push_back(room.folder + ": is a room without a file");
    }
}

// The fields of each class or struct of a namespace, by its name.
using Fields = std::map<std::string, std::vector<std::string>>;

void AddFields(const std::vector<std::string>& lines, Fields& fields) {
    static const std::regex head(R"((?:class|struct) (?:[A-Z_]+ )?(\w+)(?: final)?(?: : .*)? \{)");
    static const std::regex field(
        R"(    (?!using |friend |return )(?:const )?[\w:]+(?:<.*>)?[ *&]+(\w+)(?: = [^;]*|\{[^;]*\})?;.*)");
    std::string owner;
    for (const std::string& line : lines) {
        std::smatch match;
        if (std::regex_match(line, match, head)) owner = match[1];
        if (line == "};") owner.clear();
        if (!owner.empty() && std::regex_match(line, match, field)) fields[owner].push_back(match[1]);
    }
}

// What `lines` ask for the place of, by class. An instance of a template counts as its template.
std::map<std::string, std::set<std::string>> CheckedFields(const std::vector<std::string>& lines) {
    static const std::regex alias(R"(\s*using (\w+) = (\w+)<.*>;)");
    static const std::regex place(R"(offsetof\((\w+), (\w+)\))");
    std::map<std::string, std::string> templates;
    std::map<std::string, std::set<std::string>> checked;
    for (const std::string& line : lines) {
        std::smatch match;
        if (std::regex_match(line, match, alias)) templates[match[1]] = match[2];
        for (std::sregex_iterator i(line.begin(), line.end(), place), end; i != end; ++i) {
            const auto known = templates.find((*i)[1]);
            checked[known == templates.end() ? std::string((*i)[1]) : known->second].insert((*i)[2]);
        }
    }
    return checked;
}

}  // namespace

Violations CheckIncludes(const SourceTree& sources, const RoomTable& rooms) {
    Violations violations;
    CheckRooms(sources, rooms, violations);
    for (const auto& [file, lines] : sources) {
        if (rooms.RoomOf(file) == nullptr) violations.push_back(file + ": stands in no room");
        for (const std::string& line : lines) {
            const auto include = IncludeOf(line);
            if (!include) continue;
            const std::string wrong = WrongInclude(sources, rooms, file, *include);
            if (!wrong.empty()) violations.push_back(file + ": " + wrong);
        }
    }
    return violations;
}

Violations CheckSystems(const SourceTree& sources) {
    static const std::regex system_name(R"(.*_(posix|win32|linux|windows)(_test)?\.(h|cpp))");
    Violations violations;
    for (const auto& [file, lines] : sources) {
        if (std::regex_match(file, system_name))
            violations.push_back(file + ": names its system instead of standing in its folder");
        if (file.ends_with(".cpp") && (IsTest(file) || IsOfOneSystem(file))) continue;
        if (std::any_of(lines.begin(), lines.end(), AsksForTheSystem))
            violations.push_back(file + ": asks for the system");
    }
    return violations;
}

Violations CheckFieldOrders(const SourceTree& sources) {
    Fields fields;
    for (const auto& [file, lines] : sources) AddFields(lines, fields);
    Violations violations;
    for (const auto& [file, lines] : sources) {
        if (IsTest(file)) continue;
        for (const auto& [owner, checked] : CheckedFields(lines)) {
            for (const std::string& field : fields[owner]) {
                if (!checked.contains(field)) violations.push_back(file + ": does not check " + owner + "::" + field);
            }
            if (fields[owner].empty()) violations.push_back(file + ": checks " + owner + ", which has no fields");
        }
    }
    return violations;
}

Violations CheckLengths(const SourceTree& sources) {
    Violations violations;
    for (const auto& [file, lines] : sources) {
        if (lines.size() > kMostLines) violations.push_back(file + ": has more than 400 lines");
    }
    return violations;
}

}  // namespace source_rules
