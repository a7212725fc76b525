#include "accessory_update_config/accessory_update_config.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <thread>
#include <vector>

#include "temporary_folder.h"
#include "text_case.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class Config : public testing::Test {
protected:
    ~Config() override { Load(R"({"companions": {}})"); }

    void Load(const std::string& text) {
        std::ofstream(File()) << text;
        AccessoryUpdateConfig::Load(File());
    }

    std::string ErrorOf(const std::string& text) {
        try {
            Load(text);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "no error";
    }

    fs::path File() const { return m_folder / "companions.json"; }

    const test_support::TemporaryFolder m_folder;
};

TEST_F(Config, KnowsWhichAccessoriesHaveACompanion) {
    Load(R"({"companions": {"pen-01": {"program": "pen_studio"}, "\u7B14": {"program": "x"}}})");
    EXPECT_TRUE(AccessoryUpdateConfig::IsAccessoryApp(L"pen-01"));
    EXPECT_TRUE(AccessoryUpdateConfig::IsAccessoryApp(L"\u7B14"));
    EXPECT_FALSE(AccessoryUpdateConfig::IsAccessoryApp(L"pen-02"));
    EXPECT_FALSE(AccessoryUpdateConfig::IsAccessoryApp(L""));
}

TEST_F(Config, LoadingReplacesWhatWasThere) {
    Load(R"({"companions": {"a": {"program": "x"}}})");
    Load(R"({"companions": {"b": {"program": "x"}}})");
    EXPECT_FALSE(AccessoryUpdateConfig::IsAccessoryApp(L"a"));
    EXPECT_TRUE(AccessoryUpdateConfig::IsAccessoryApp(L"b"));
}

TEST_F(Config, ErrorsNameTheFileThePlaceAndTheReason) {
    const test_support::TextCase cases[] = {
        {"{\n  \"companions\": oops }", "parse error at line 2, column 17"},
        {"", "parse error at line 1, column 1"},
        {"[1e400]", "number overflow parsing '1e400'"},
        {"[]", "must be an object"},
        {"{}", "companions: is missing"},
        {R"({"companions": []})", "companions: must be an object"},
        {R"({"companion": {}})", "companion: is not known here"},
        {R"({"companions": {"pen": "x"}})", "companions.pen: must be an object"},
        {R"({"companions": {"pen": {}}})", "companions.pen.program: is missing"},
        {R"({"companions": {"pen": {"program": 7}}})", "companions.pen.program: must be a text"},
        {R"({"companions": {"pen": {"program": ""}}})", "companions.pen.program: must not be empty"},
        {R"({"companions": {"pen": {"program": "bin/x"}}})", "companions.pen.program: must be a file name"},
        {R"({"companions": {"pen": {"program": "x", "arg": 1}}})", "companions.pen.arg: is not known here"},
    };
    for (const auto& c : cases) {
        const std::string error = ErrorOf(c.text);
        EXPECT_THAT(error, testing::StartsWith(File().string() + ": "));
        EXPECT_THAT(error, HasSubstr(c.expected));
    }
}

TEST_F(Config, AMissingFileIsNamed) {
    try {
        AccessoryUpdateConfig::Load(m_folder / "missing.json");
        FAIL() << "loaded";
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), HasSubstr((m_folder / "missing.json").string()));
        EXPECT_THAT(error.what(), HasSubstr("No such file"));
    }
}

TEST_F(Config, ABadFileLeavesTheOldConfiguration) {
    Load(R"({"companions": {"a": {"program": "x"}}})");
    EXPECT_NE(ErrorOf("{"), "no error");
    EXPECT_TRUE(AccessoryUpdateConfig::IsAccessoryApp(L"a"));
}

TEST_F(Config, MayBeAskedWhileItIsLoaded) {
    std::ofstream(File()) << R"({"companions": {"a": {"program": "x"}}})";
    AccessoryUpdateConfig::Load(File());
    std::atomic<bool> loaded{false};
    std::jthread loader([&] {
        for (int i = 0; i < 50; ++i) AccessoryUpdateConfig::Load(File());
        loaded = true;
    });
    bool known = true;
    while (!loaded) known = known && AccessoryUpdateConfig::IsAccessoryApp(L"a");
    EXPECT_TRUE(known);
}

}  // namespace
