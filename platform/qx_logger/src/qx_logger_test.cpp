#include "qx_logger/qx_logger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "base/file.h"
#include "temporary_folder.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

// As testing::MatchesRegex, which does not know all of these expressions everywhere.
MATCHER_P(MatchesWholly, expression, "") { return std::regex_match(arg, std::regex(expression)); }

class Logger : public testing::Test {
protected:
    ~Logger() override { QxLogger::GetInstance()->Open({}); }

    void OpenFile() { QxLogger::GetInstance()->Open({.file = File(), .console = false}); }
    std::filesystem::path File() const { return m_folder / "page.log"; }

    static void Log(LOG_MESSAGE_LEVEL level, const std::wstring& text) {
        std::wstringstream line;
        line << text;
        QxLogger::GetInstance()->Log(level, line);
    }

    std::vector<std::string> Lines() const {
        QxLogger::GetInstance()->Flush();
        std::ifstream file(File());
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);) lines.push_back(line);
        return lines;
    }

    const test_support::TemporaryFolder m_folder;
};

TEST_F(Logger, ALineHasTheTimeAndTheLevelNumberBesideTheText) {
    OpenFile();
    Log(LOG_LEVEL_DETAIL, L"[AccessoryLog]InitItemLayout enter(F)");
    Log(LOG_LEVEL_EVENT, L"[AccessoryLog]init access(G)");
    const std::string time = "[0-9]+-[0-9][0-9]-[0-9][0-9] [0-9][0-9]:[0-9][0-9]:[0-9][0-9]\\.[0-9][0-9][0-9]";
    EXPECT_THAT(Lines(), ElementsAre(MatchesWholly(time + " \\[3\\] \\[AccessoryLog\\]InitItemLayout enter\\(F\\)"),
                                     MatchesWholly(time + " \\[4\\] \\[AccessoryLog\\]init access\\(G\\)")));
}

TEST_F(Logger, EveryTextIsOneLineOfUtf8) {
    OpenFile();
    Log(LOG_LEVEL_EVENT, L"\u00E9\u6F22\U0001F5B1");
    Log(LOG_LEVEL_EVENT, L"unpaired " + std::wstring(1, wchar_t{0xD83D}) + L"z");
    Log(LOG_LEVEL_EVENT, L"");
    Log(LOG_LEVEL_EVENT, L"one\r\ntwo");
    Log(LOG_LEVEL_EVENT, L"\x1B[2J\ttab\x85");
    EXPECT_THAT(Lines(),
                ElementsAre(EndsWith("] \xC3\xA9\xE6\xBC\xA2\xF0\x9F\x96\xB1"), EndsWith("] unpaired \xEF\xBF\xBDz"),
                            EndsWith(" [4] "), EndsWith("] one\\r\\ntwo"), EndsWith("] \\x1B[2J\ttab\\u0085")));
}

TEST_F(Logger, AStreamInFailedStateDeliversWhatWasWrittenUpToThere) {
    OpenFile();
    std::wstringstream line;
    line << L"before";
    line.setstate(std::ios::failbit | std::ios::badbit);
    line << L"after";
    QxLogger::GetInstance()->Log(LOG_LEVEL_EVENT, line);
    EXPECT_THAT(Lines(), ElementsAre(EndsWith("] before")));
    EXPECT_TRUE(line.bad());
    EXPECT_EQ(line.str(), L"before");
}

TEST_F(Logger, AFileNameMayHoldAnyCharacter) {
    const std::filesystem::path file = m_folder / u8"\u00E9\u7B14.log";
    QxLogger::GetInstance()->Open({.file = file, .console = false});
    Log(LOG_LEVEL_EVENT, L"seen");
    QxLogger::GetInstance()->Open({});
    EXPECT_TRUE(std::filesystem::exists(file));
}

TEST_F(Logger, BracesInATextAreText) {
    OpenFile();
    Log(LOG_LEVEL_EVENT, L"{0} {} %s %v");
    EXPECT_THAT(Lines(), ElementsAre(EndsWith("] {0} {} %s %v")));
}

TEST_F(Logger, WritesToTheConsoleUntilAFileIsChosen) {
    QxLogger::GetInstance()->Open({});
    testing::internal::CaptureStderr();
    Log(LOG_LEVEL_DETAIL, L"seen");
    EXPECT_THAT(testing::internal::GetCapturedStderr(), EndsWith(" [3] seen\n"));
}

TEST_F(Logger, TheConsoleCanBeKeptBesideTheFileOrLeftOut) {
    for (const bool console : {true, false}) {
        QxLogger::GetInstance()->Open({.file = File(), .console = console});
        testing::internal::CaptureStderr();
        Log(LOG_LEVEL_EVENT, L"seen");
        EXPECT_EQ(testing::internal::GetCapturedStderr().find("seen") != std::string::npos, console);
    }
    EXPECT_EQ(Lines().size(), 2u);
}

TEST_F(Logger, AFileThatReachesItsSizeIsRotatedAndOldOnesAreDropped) {
    QxLogger::GetInstance()->Open({.file = File(), .maxFileBytes = 200, .maxFiles = 2, .console = false});
    for (int i = 0; i < 20; ++i) Log(LOG_LEVEL_EVENT, L"line " + std::to_wstring(i) + std::wstring(40, L'-'));
    EXPECT_THAT(Lines().back(), HasSubstr("line 19-"));
    EXPECT_LE(std::filesystem::file_size(File()), 200u);
    std::size_t files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(m_folder.Path())) ++files;
    EXPECT_EQ(files, 3u);
}

TEST_F(Logger, AFileHoldsFourMebibytesUnlessToldOtherwise) {
    constexpr std::size_t kLimit = 4 * 1024 * 1024;
    constexpr std::size_t kLine = 64 * 1024;
    OpenFile();
    for (std::size_t i = 0; i < kLimit / kLine + 1; ++i) Log(LOG_LEVEL_EVENT, std::wstring(kLine - 100, L'-'));
    QxLogger::GetInstance()->Flush();
    const auto full = m_folder / "page.1.log";
    ASSERT_TRUE(std::filesystem::exists(full));
    EXPECT_LE(std::filesystem::file_size(full), kLimit);
    EXPECT_GT(std::filesystem::file_size(full), kLimit - kLine);
    EXPECT_LE(std::filesystem::file_size(File()), kLine);
}

TEST_F(Logger, AFileThatCannotBeOpenedIsNamedAndTheOldSinksStay) {
    OpenFile();
    std::ofstream(m_folder / "plain") << "no folder";
    const auto bad = m_folder / "plain" / "page.log";
    try {
        QxLogger::GetInstance()->Open({.file = bad, .console = false});
        FAIL() << "opened";
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), HasSubstr(base::Utf8FromPath(bad)));
#if defined(_WIN32)
        EXPECT_THAT(error.what(), HasSubstr("No such file or directory"));
#else
        EXPECT_THAT(error.what(), HasSubstr("Not a directory"));
#endif
    }
    Log(LOG_LEVEL_EVENT, L"still here");
    EXPECT_THAT(Lines(), ElementsAre(EndsWith("still here")));
}

TEST_F(Logger, ALineThatCannotBeWrittenIsDropped) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no full device here";
    QxLogger::GetInstance()->Open({.file = "/dev/full", .console = false});
    testing::internal::CaptureStderr();
    Log(LOG_LEVEL_EVENT, L"lost");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(Logger, LinesOfSeveralThreadsStayWhole) {
    OpenFile();
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([thread] {
                for (int i = 0; i < 200; ++i)
                    Log(LOG_LEVEL_DETAIL, std::wstring(60, static_cast<wchar_t>(L'a' + thread)) + L".");
            });
        }
    }
    const auto lines = Lines();
    EXPECT_EQ(lines.size(), 800u);
    for (const std::string& line : lines) {
        EXPECT_THAT(line, MatchesWholly(".* \\[3\\] (a+|b+|c+|d+)\\."));
        EXPECT_THAT(line, testing::SizeIs(23 + 5 + 60 + 1));
    }
}

}  // namespace
