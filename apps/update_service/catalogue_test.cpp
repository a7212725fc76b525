#include "catalogue.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "temporary_folder.h"
#include "text_case.h"

namespace update_service {
namespace {

using test_support::TemporaryFolder;
using test_support::WriteFile;

using Json = nlohmann::ordered_json;
using testing::ElementsAre;
using testing::HasSubstr;

const std::string kHash(64, 'a');

Json GoodEntry() {
    return {{"deviceKey", "pen-01"},
            {"modelId", "IDS_NAME_PEN"},
            {"image", "drawable/Brindle/pen.png"},
            {"version", "2.4.1"},
            {"description", {"One", "\xE7\xAC\x94"}},
            {"driver", true},
            {"package", "packages/pen.bin"},
            {"sha256", std::string(64, 'A')},
            {"installer", {"./install.sh", "--quiet"}}};
}

class CatalogueFile : public testing::Test {
protected:
    Catalogue Read(const std::vector<Json>& entries) { return ReadText(Json{{"accessories", entries}}.dump()); }
    Catalogue ReadText(const std::string& text) {
        WriteFile(File(), text);
        return ReadCatalogue(File());
    }
    std::string ErrorOf(const std::string& text) {
        try {
            ReadText(text);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "no error";
    }
    // The error of a good entry in which one field is another value; null removes the field.
    std::string ErrorWith(const std::string& field, const Json& value) {
        Json entry = GoodEntry();
        if (value.is_null()) {
            entry.erase(field);
        } else {
            entry[field] = value;
        }
        return ErrorOf(Json{{"accessories", {GoodEntry(), entry}}}.dump());
    }
    std::filesystem::path File() const { return m_folder / "catalogue.json"; }

    TemporaryFolder m_folder;
};

TEST_F(CatalogueFile, EveryFieldIsRead) {
    const Catalogue catalogue = Read({GoodEntry()});
    ASSERT_EQ(catalogue.accessories.size(), 1u);
    const Accessory& pen = catalogue.accessories[0];
    EXPECT_EQ(pen.deviceKey, "pen-01");
    EXPECT_EQ(pen.modelId, "IDS_NAME_PEN");
    EXPECT_EQ(pen.image, "drawable/Brindle/pen.png");
    EXPECT_EQ(pen.version, "2.4.1");
    EXPECT_THAT(pen.description, ElementsAre("One", "\xE7\xAC\x94"));
    EXPECT_TRUE(pen.isDriver);
    EXPECT_EQ(pen.sha256, kHash);  // in lower case
    EXPECT_THAT(pen.installer, ElementsAre("./install.sh", "--quiet"));
}

TEST_F(CatalogueFile, PathsStartAtItsFolder) {
    EXPECT_EQ(Read({GoodEntry()}).folder, m_folder.Path());
    EXPECT_EQ(Read({GoodEntry()}).accessories[0].package, m_folder / "packages/pen.bin");
    Json entry = GoodEntry();
#if defined(_WIN32)
    const std::string elsewhere = "D:/elsewhere/pen.bin";  // without its drive a path begins at the folder's
#else
    const std::string elsewhere = "/elsewhere/pen.bin";
#endif
    entry["package"] = elsewhere;
    EXPECT_EQ(Read({entry}).accessories[0].package, elsewhere);
}

TEST_F(CatalogueFile, DescriptionMayBeLeftOut) {
    Json entry = GoodEntry();
    entry.erase("description");
    EXPECT_TRUE(Read({entry}).accessories[0].description.empty());
}

TEST_F(CatalogueFile, AnInstallerThatIsOneTextGoesToTheShell) {
    Json entry = GoodEntry();
    entry["installer"] = "cp \"$1\" /tmp";
#if defined(_WIN32)
    const auto expected = ElementsAre("cmd.exe", "/d", "/s", "/c", "cp \"$1\" /tmp");
#else
    const auto expected = ElementsAre("/bin/sh", "-c", "cp \"$1\" /tmp", "installer");
#endif
    EXPECT_THAT(Read({entry}).accessories[0].installer, expected);
}

TEST_F(CatalogueFile, KeepsTheOrderAndFindsByKey) {
    Json second = GoodEntry();
    second["deviceKey"] = "a";
    const Catalogue catalogue = Read({GoodEntry(), second});
    EXPECT_EQ(Find(catalogue, "a"), &catalogue.accessories[1]);
    EXPECT_EQ(Find(catalogue, "pen-01"), &catalogue.accessories[0]);
    EXPECT_EQ(Find(catalogue, "A"), nullptr);
}

TEST_F(CatalogueFile, MayBeEmpty) { EXPECT_TRUE(Read({}).accessories.empty()); }

TEST_F(CatalogueFile, ErrorsNameTheEntryTheFieldAndTheReason) {
    struct Case {
        const char* field;
        Json value;
        const char* expected;
    };
    const Case cases[] = {
        {"deviceKey", nullptr, "deviceKey: is missing"},
        {"deviceKey", "", "deviceKey: must not be empty"},
        {"deviceKey", "pen-01", "deviceKey: \"pen-01\" is there already"},
        {"deviceKey", std::string("a\0b", 3), "deviceKey: must not hold a zero character"},
        {"deviceKey", std::string(201, 'k'), "deviceKey: is too long"},
        {"modelId", nullptr, "modelId: is missing"},
        {"image", 7, "image: must be a text"},
        {"version", true, "version: must be a text"},
        {"description", "text", "description: must be a list of texts"},
        {"description", {"a", 7}, "description[1]: must be a text"},
        {"driver", "yes", "driver: must be true or false"},
        {"package", "", "package: must not be empty"},
        {"sha256", std::string(63, 'a'), "sha256: must be 64 hexadecimal digits"},
        {"sha256", std::string(64, 'g'), "sha256: must be 64 hexadecimal digits"},
        {"installer", Json::array(), "installer: must name a program"},
        {"installer", {""}, "installer: must name a program"},
        {"installer", "", "installer: must not be empty"},
        {"installer", 7, "installer: must be a text or a list of texts"},
        {"instaler", "x", "instaler: is not known here"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ErrorWith(c.field, c.value), File().string() + ": accessories[1]." + c.expected);
    }
}

TEST_F(CatalogueFile, ErrorsOfTheWholeFileNameThePlaceAndTheReason) {
    const test_support::TextCase cases[] = {
        {"{\n  oops", ": parse error at line 2, column 3"},
        {"", ": parse error at line 1, column 1"},
        {"[1e400]", ": number overflow parsing '1e400'"},
        {"[]", ": must be an object"},
        {"{}", ": accessories: is missing"},
        {R"({"accessories": {}})", ": accessories: must be a list"},
        {R"({"accessories": [7]})", ": accessories[0]: must be an object"},
        {R"({"accessories": [], "more": 1})", ": more: is not known here"},
        {R"({"accessories": [], "accessories": []})", ": the member \"accessories\" is there twice"},
        {R"({"accessories": [{"driver": true, "driver": false}]})", ": the member \"driver\" is there twice"},
    };
    for (const auto& c : cases) EXPECT_THAT(ErrorOf(c.text), testing::StartsWith(File().string() + c.expected));
}

TEST_F(CatalogueFile, AMissingFileIsNamed) {
    EXPECT_THAT([&] { ReadCatalogue(m_folder / "missing.json"); },
                testing::ThrowsMessage<std::runtime_error>(HasSubstr("missing.json: cannot be opened: No such file")));
}

TEST_F(CatalogueFile, AFolderIsNoCatalogue) {
    EXPECT_THAT([&] { ReadCatalogue(m_folder.Path()); },
                testing::ThrowsMessage<std::runtime_error>(m_folder.Path().string() + ": is a folder"));
}

TEST_F(CatalogueFile, EntriesMayHaveTheSameMembers) {
    Json second = GoodEntry();
    second["deviceKey"] = "a";
    EXPECT_EQ(Read({GoodEntry(), second}).accessories.size(), 2u);
}

}  // namespace
}  // namespace update_service
