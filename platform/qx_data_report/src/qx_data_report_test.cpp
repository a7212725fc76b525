#include "qx_data_report/qx_data_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <regex>
#include <thread>

#include "kernel/code_pages.h"
#include "temporary_folder.h"

namespace {

using Json = nlohmann::ordered_json;

// Where the system decides, only the cases of its own page can be looked at.
bool ChooseAnsiPage(unsigned page) {
    const bool isChosen = kernel::SetAnsiCodePage(page);
#if !defined(_WIN32)
    EXPECT_TRUE(isChosen) << page;
#endif
    return isChosen;
}

// As testing::MatchesRegex, which does not know all of these expressions everywhere.
MATCHER_P(MatchesWholly, expression, "") { return std::regex_match(arg, std::regex(expression)); }

class Report : public testing::Test {
protected:
    Report() { QxDataReport::Instance()->SetFile(File()); }
    ~Report() override {
        QxDataReport::Instance()->SetFile({});
        kernel::SetAnsiCodePage(kernel::kCodePageUtf8);
    }

    std::filesystem::path File() const { return m_folder / "events.jsonl"; }

    std::vector<Json> Lines() const {
        std::ifstream file(File());
        std::vector<Json> lines;
        for (std::string line; std::getline(file, line);) lines.push_back(Json::parse(line));
        return lines;
    }

    const test_support::TemporaryFolder m_folder;
};

TEST_F(Report, AnEventIsAppendedAsOneLine) {
    QxDataEvent first("631990010", REPORT_PLATFORM_DEFAULT);
    first.PutString("modelID", "ABC-01");
    first.PutString("versionInfo", "1.2.3");
    EXPECT_EQ(QxDataReport::Instance()->SendMsg(first), 0);
    EXPECT_EQ(QxDataReport::Instance()->SendMsg(QxDataEvent("631990011", REPORT_PLATFORM_DEFAULT)), 0);

    const auto lines = Lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0]["event"], "631990010");
    EXPECT_EQ(lines[0]["platform"], 0);
    EXPECT_EQ(lines[0]["fields"].dump(), R"({"modelID":"ABC-01","versionInfo":"1.2.3"})");
    EXPECT_EQ(lines[1]["event"], "631990011");
    EXPECT_EQ(lines[1]["fields"].dump(), "{}");
}

TEST_F(Report, TheTimeIsWrittenInUtcWithMilliseconds) {
    QxDataReport::Instance()->SendMsg(QxDataEvent("1", REPORT_PLATFORM_DEFAULT));
    EXPECT_THAT(Lines().at(0)["time"].get<std::string>(),
                MatchesWholly("[0-9]+-[0-9][0-9]-[0-9][0-9]T[0-9][0-9]:[0-9][0-9]:[0-9][0-9]\\.[0-9][0-9][0-9]Z"));
}

TEST_F(Report, FieldsKeepTheOrderInWhichTheyWerePut) {
    QxDataEvent event("1", REPORT_PLATFORM_DEFAULT);
    for (const char* key : {"z", "a", "m"}) event.PutString(key, key);
    QxDataReport::Instance()->SendMsg(event);
    EXPECT_EQ(Lines().at(0)["fields"].dump(), R"({"z":"z","a":"a","m":"m"})");
}

TEST_F(Report, AKeyThatWasPutTwiceHasBothValues) {
    QxDataEvent event("1", REPORT_PLATFORM_DEFAULT);
    for (const char* value : {"one", "two", "three"}) event.PutString("key", value);
    EXPECT_EQ(event.Fields().size(), 3u);
    QxDataReport::Instance()->SendMsg(event);
    EXPECT_EQ(Lines().at(0)["fields"].dump(), R"({"key":["one","two","three"]})");
}

TEST_F(Report, FieldsAreReadInTheAnsiCodePage) {
    struct Case {
        unsigned page;
        const char* value;
        const char* expected;
    };
    const Case cases[] = {
        {65001, "\xC3\xA9", "\xC3\xA9"},
        {65001, "a\xFFz", "a\xEF\xBF\xBDz"},
        {1252, "\xE9\x80", "\xC3\xA9\xE2\x82\xAC"},
        {936, "\xB1\xCA", "\xE7\xAC\x94"},
        {65001, "\"\\\n", "\"\\\n"},
        {65001, "", ""},
    };
    for (const Case& c : cases) {
        if (!ChooseAnsiPage(c.page)) continue;
        QxDataEvent event("1", REPORT_PLATFORM_DEFAULT);
        event.PutString("key", c.value);
        ASSERT_EQ(QxDataReport::Instance()->SendMsg(event), 0);
        EXPECT_EQ(Lines().back()["fields"]["key"], c.expected);
    }
}

TEST_F(Report, WithoutAFileEventsAreAcceptedAndDropped) {
    QxDataReport::Instance()->SetFile({});
    EXPECT_EQ(QxDataReport::Instance()->SendMsg(QxDataEvent("1", REPORT_PLATFORM_DEFAULT)), 0);
    EXPECT_TRUE(std::filesystem::is_empty(m_folder.Path()));
}

TEST_F(Report, ALineThatCannotBeWrittenIsAnError) {
    QxDataReport::Instance()->SetFile(m_folder / "missing" / "events.jsonl");
    EXPECT_EQ(QxDataReport::Instance()->SendMsg(QxDataEvent("1", REPORT_PLATFORM_DEFAULT)), -1);
    if (std::filesystem::exists("/dev/full")) {
        QxDataReport::Instance()->SetFile("/dev/full");
        EXPECT_EQ(QxDataReport::Instance()->SendMsg(QxDataEvent("1", REPORT_PLATFORM_DEFAULT)), -1);
    }
}

TEST_F(Report, InitWithNothingKeepsWhatIsSet) {
    QxDataReport::Instance()->Init(7, "");
    QxDataReport::Instance()->Init(0, "");
    EXPECT_EQ(QxDataReport::Instance()->SendMsg(QxDataEvent("1", REPORT_PLATFORM_DEFAULT)), 0);
    ASSERT_EQ(Lines().size(), 1u);
    EXPECT_EQ(Lines()[0]["application"], 7);
}

// In a process of its own: an application that was set stays set.
TEST_F(Report, WithoutAnApplicationEventsNameNone) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto name_none = [this] {
        QxDataReport::Instance()->Init(0, "");
        QxDataReport::Instance()->SendMsg(QxDataEvent("1", REPORT_PLATFORM_DEFAULT));
        const auto lines = Lines();
        std::filesystem::remove_all(m_folder);
        std::exit(lines.size() == 1 && !lines[0].contains("application") ? 0 : 1);
    };
    EXPECT_EXIT(name_none(), testing::ExitedWithCode(0), "");
}

TEST_F(Report, InitChoosesApplicationAndFolder) {
    if (!ChooseAnsiPage(1252)) GTEST_SKIP() << "this system has another page";
    const auto folder = m_folder / u8"caf\u00E9";
    std::filesystem::create_directory(folder);
    QxDataReport::Instance()->Init(7, m_folder.Path().string() + "/caf\xE9");
    EXPECT_EQ(QxDataReport::Instance()->SendMsg(QxDataEvent("1", REPORT_PLATFORM_DEFAULT)), 0);
    std::ifstream file(folder / "events.jsonl");
    EXPECT_EQ(Json::parse(file)["application"], 7);
}

TEST_F(Report, LinesOfSeveralThreadsStayWhole) {
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([thread] {
                QxDataEvent event(std::to_string(thread), REPORT_PLATFORM_DEFAULT);
                event.PutString("text", std::string(300, 'x'));
                for (int i = 0; i < 50; ++i) EXPECT_EQ(QxDataReport::Instance()->SendMsg(event), 0);
            });
        }
    }
    EXPECT_EQ(Lines().size(), 200u);
}

}  // namespace
