#include "companions.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <system_error>

#include "base/path.h"
#include "base/text.h"

namespace {

using Json = nlohmann::json;

[[noreturn]] void Fail(const std::filesystem::path& file, const std::string& where, const std::string& reason) {
    throw std::runtime_error(base::Utf8FromPath(file) + ": " + (where.empty() ? "" : where + ": ") + reason);
}

Json Parse(const std::filesystem::path& file) {
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) Fail(file, "", "cannot be opened: " + std::generic_category().message(errno));
    try {
        return Json::parse(stream);
    } catch (const Json::parse_error& error) {
        // "[json.exception.parse_error.101] parse error at line 1, column 2: ..."
        const std::string text = error.what();
        Fail(file, "", text.substr(text.find("] ") + 2));
    }
}

// The only member that the object may have; fails for a missing or another one.
const Json& OnlyMember(const std::filesystem::path& file, const std::string& where, const Json& object,
                       const std::string& name) {
    if (!object.is_object()) Fail(file, where, "must be an object");
    const std::string prefix = where.empty() ? "" : where + ".";
    for (const auto& member : object.items()) {
        if (member.key() != name) Fail(file, prefix + member.key(), "is not known here");
    }
    if (!object.contains(name)) Fail(file, prefix + name, "is missing");
    return object[name];
}

}  // namespace

Companions ReadCompanions(const std::filesystem::path& file) {
    const Json root = Parse(file);
    const Json& list = OnlyMember(file, "", root, "companions");
    if (!list.is_object()) Fail(file, "companions", "must be an object");
    Companions companions;
    for (const auto& entry : list.items()) {
        const std::string where = "companions." + entry.key();
        const Json& program = OnlyMember(file, where, entry.value(), "program");
        if (!program.is_string()) Fail(file, where + ".program", "must be a text");
        const auto& name = program.get_ref<const std::string&>();
        if (name.empty()) Fail(file, where + ".program", "must not be empty");
        if (name.find_first_of("/\\") != std::string::npos) {
            Fail(file, where + ".program", "must be a file name without a folder");
        }
        companions[base::WideFromUtf8(entry.key())] = name;
    }
    return companions;
}
