#include "catalogue.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <system_error>

#include "base/child_process.h"
#include "base/file.h"
#include "base/reason.h"
#include "work_folder.h"

namespace update_service {
namespace {

using Json = nlohmann::json;

// One place of the file that is being read, and how an error there is reported.
struct Place {
    const std::filesystem::path& file;
    std::string name;  // "accessories[2].sha256"; empty for the whole file

    Place Inside(const std::string& suffix) const { return {file, name + suffix}; }
    Place Element(std::size_t index) const { return {file, name + '[' + std::to_string(index) + ']'}; }

    [[noreturn]] void Fail(const std::string& reason) const {
        throw std::runtime_error(base::Utf8FromPath(file) + ": " + (name.empty() ? "" : name + ": ") + reason);
    }
};

// Refuses objects that have a member twice, of which the parser would keep the last. For Json::parse.
class DoubleMembers {
public:
    explicit DoubleMembers(const Place& place) : m_place(place) {}

    bool operator()(int, Json::parse_event_t event, const Json& parsed) {
        if (event == Json::parse_event_t::object_start) m_open.emplace_back();
        if (event == Json::parse_event_t::object_end) m_open.pop_back();
        if (event == Json::parse_event_t::key && !m_open.back().insert(parsed.get<std::string>()).second) {
            m_place.Fail("the member \"" + parsed.get<std::string>() + "\" is there twice");
        }
        return true;  // keeps what was read
    }

private:
    const Place& m_place;
    std::vector<std::set<std::string>> m_open;  // members of the objects around
};

Json Parse(const Place& place) {
    std::error_code ignored;
    if (std::filesystem::is_directory(place.file, ignored)) place.Fail("is a folder");
    errno = 0;
    std::ifstream stream(place.file, std::ios::binary);
    if (!stream) place.Fail("cannot be opened: " + base::Reason(std::error_code(errno, std::generic_category())));
    try {
        return Json::parse(stream, DoubleMembers(place));
    } catch (const Json::exception& error) {  // also for a number that is too large
        // "[json.exception.parse_error.101] parse error at line 1, column 2: ..."
        const std::string text = error.what();
        place.Fail(text.substr(text.find("] ") + 2));
    }
}

const Json& Member(const Place& place, const Json& object, const std::string& name) {
    if (!object.contains(name)) place.Inside((place.name.empty() ? "" : ".") + name).Fail("is missing");
    return object[name];
}

void CheckMembers(const Place& place, const Json& object, std::initializer_list<std::string_view> known) {
    if (!object.is_object()) place.Fail("must be an object");
    for (const auto& member : object.items()) {
        if (std::find(known.begin(), known.end(), member.key()) != known.end()) continue;
        place.Inside((place.name.empty() ? "" : ".") + member.key()).Fail("is not known here");
    }
}

std::string Text(const Place& place, const Json& value) {
    if (!value.is_string()) place.Fail("must be a text");
    return value.get<std::string>();
}

std::string NonEmptyText(const Place& place, const Json& value) {
    std::string text = Text(place, value);
    if (text.empty()) place.Fail("must not be empty");
    return text;
}

std::vector<std::string> Texts(const Place& place, const Json& value) {
    if (!value.is_array()) place.Fail("must be a list of texts");
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < value.size(); ++i) {
        texts.push_back(Text(place.Element(i), value[i]));
    }
    return texts;
}

std::string DeviceKey(const Place& place, const Json& value) {
    std::string key = NonEmptyText(place, value);
    if (key.find('\0') != std::string::npos) place.Fail("must not hold a zero character");
    if (SafeFileName(key).size() > kMaxSafeFileName) place.Fail("is too long");
    return key;
}

std::string Sha256(const Place& place, const Json& value) {
    std::string digits = Text(place, value);
    const auto isHex = [](unsigned char c) { return std::isxdigit(c) != 0; };
    if (digits.size() != 64 || !std::all_of(digits.begin(), digits.end(), isHex)) {
        place.Fail("must be 64 hexadecimal digits");
    }
    for (char& c : digits) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return digits;
}

std::vector<std::string> Installer(const Place& place, const Json& value) {
    if (value.is_string()) return base::ShellCommand(NonEmptyText(place, value), "installer");
    if (!value.is_array()) place.Fail("must be a text or a list of texts");
    std::vector<std::string> command = Texts(place, value);
    if (command.empty() || command[0].empty()) place.Fail("must name a program");
    return command;
}

Accessory ReadAccessory(const Place& place, const Json& entry, const std::filesystem::path& folder) {
    CheckMembers(
        place, entry,
        {"deviceKey", "modelId", "image", "version", "description", "driver", "package", "sha256", "installer"});
    const auto read = [&](const char* name, auto convert) {
        return convert(place.Inside(std::string(".") + name), Member(place, entry, name));
    };
    Accessory accessory;
    accessory.deviceKey = read("deviceKey", DeviceKey);
    accessory.modelId = read("modelId", Text);
    accessory.image = read("image", Text);
    accessory.version = read("version", Text);
    if (entry.contains("description")) accessory.description = read("description", Texts);
    accessory.isDriver = read("driver", [](const Place& at, const Json& value) {
        if (!value.is_boolean()) at.Fail("must be true or false");
        return value.get<bool>();
    });
    const std::string package = read("package", NonEmptyText);
    accessory.package = folder / base::PathFromUtf8(package);
    accessory.sha256 = read("sha256", Sha256);
    accessory.installer = read("installer", Installer);
    return accessory;
}

}  // namespace

Catalogue ReadCatalogue(const std::filesystem::path& file) {
    const Place root{file, ""};
    const Json json = Parse(root);
    CheckMembers(root, json, {"accessories"});
    const Json& entries = Member(root, json, "accessories");
    const Place list = root.Inside("accessories");
    if (!entries.is_array()) list.Fail("must be a list");
    Catalogue catalogue{std::filesystem::absolute(file).parent_path(), {}};
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const Place place = list.Element(i);
        Accessory accessory = ReadAccessory(place, entries[i], catalogue.folder);
        if (Find(catalogue, accessory.deviceKey)) {
            place.Inside(".deviceKey").Fail("\"" + accessory.deviceKey + "\" is there already");
        }
        catalogue.accessories.push_back(std::move(accessory));
    }
    return catalogue;
}

const Accessory* Find(const Catalogue& catalogue, const std::string& deviceKey) {
    for (const Accessory& accessory : catalogue.accessories) {
        if (accessory.deviceKey == deviceKey) return &accessory;
    }
    return nullptr;
}

}  // namespace update_service
