#include "options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

namespace update_service {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;
using testing::StartsWith;

class Options : public testing::Test {
protected:
    std::optional<CommandLine> Read(std::vector<const char*> arguments) {
        arguments.insert(arguments.begin(), "update_service");
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const auto result = ReadCommandLine(static_cast<int>(arguments.size()), arguments.data(), m_exitCode);
        m_error = testing::internal::GetCapturedStderr();
        m_output = testing::internal::GetCapturedStdout();
        return result;
    }

    int m_exitCode = 0;
    std::string m_output;
    std::string m_error;
};

TEST_F(Options, AllAreRead) {
    const auto line = Read({"--catalogue", "c.json", "--work-dir", "w", "--rate", "5000000000", "--log-file", "l.log",
                            "--fail", "pen:40", "--fail", "a:b:0", "--end-with-input"});
    ASSERT_TRUE(line);
    EXPECT_EQ(line->catalogue, "c.json");
    EXPECT_EQ(line->workFolder, "w");
    EXPECT_EQ(line->logFile, "l.log");
    EXPECT_EQ(line->bytesPerSecond, 5000000000u);
    EXPECT_TRUE(line->endWithInput);
    EXPECT_THAT(line->failAt, ElementsAre(Pair("a:b", 0), Pair("pen", 40)));
}

TEST_F(Options, WhatIsLeftOutHasNoLimitAndNoLogFile) {
    const auto line = Read({"--catalogue", "c.json", "--work-dir", "w"});
    ASSERT_TRUE(line);
    EXPECT_EQ(line->bytesPerSecond, 0u);
    EXPECT_TRUE(line->logFile.empty());
    EXPECT_TRUE(line->failAt.empty());
    EXPECT_FALSE(line->endWithInput);
}

TEST_F(Options, HelpIsShownAndIsNoError) {
    EXPECT_FALSE(Read({"--help"}));
    EXPECT_EQ(m_exitCode, 0);
    for (const char* option : {"--catalogue", "--work-dir", "--rate", "--fail", "--log-file", "--end-with-input"}) {
        EXPECT_THAT(m_output, HasSubstr(option));
    }
}

TEST_F(Options, ErrorsAreTold) {
    struct Case {
        std::vector<const char*> arguments;
        const char* expected;
    };
    const Case cases[] = {
        {{"--work-dir", "w"}, "--catalogue is required"},
        {{"--catalogue", "c"}, "--work-dir is required"},
        {{"--catalogue", "c", "--work-dir", "w", "--rate", "-1"}, "--rate: \"-1\" is no number of bytes"},
        {{"--catalogue", "c", "--work-dir", "w", "--rate", "fast"}, "--rate: \"fast\" is no number of bytes"},
        {{"--catalogue", "c", "--work-dir", "w", "--rate", "18446744073709551616"},
         "--rate: \"18446744073709551616\" is no number of bytes"},
        {{"--catalogue", "c", "--work-dir"}, "--work-dir"},
        {{"--catalogue", "c", "--catalogue", "d", "--work-dir", "w"}, "--catalogue"},
        {{"--catalogue", "c", "--work-dir", "w", "--fail", "pen"}, "\"pen\" is not KEY:PERCENT"},
        {{"--catalogue", "c", "--work-dir", "w", "--fail", ":5"}, "\":5\" is not KEY:PERCENT"},
        {{"--catalogue", "c", "--work-dir", "w", "--fail", "pen:"}, "\"pen:\" is not KEY:PERCENT"},
        {{"--catalogue", "c", "--work-dir", "w", "--fail", "pen:101"}, "\"pen:101\" is not KEY:PERCENT"},
        {{"--catalogue", "c", "--work-dir", "w", "--fail", "pen:-1"}, "\"pen:-1\" is not KEY:PERCENT"},
        {{"--catalogue", "c", "--work-dir", "w", "--fail", "pen:4x"}, "\"pen:4x\" is not KEY:PERCENT"},
        {{"--catalogue", "c", "--work-dir", "w", "extra"}, "extra"},
    };
    for (const Case& c : cases) {
        EXPECT_FALSE(Read(c.arguments)) << c.expected;
        EXPECT_NE(m_exitCode, 0);
        EXPECT_THAT(m_error, StartsWith("update_service: "));
        EXPECT_THAT(m_error, HasSubstr(c.expected));
        EXPECT_EQ(m_error.find('\n'), m_error.size() - 1) << m_error;
        EXPECT_EQ(m_output, "");
    }
}

TEST_F(Options, AFailureOfAnUnknownAccessoryIsAnError) {
    CommandLine line;
    line.catalogue = "c.json";
    line.failAt = {{"pen", 40}};
    Catalogue catalogue;
    EXPECT_THAT([&] { CheckFailKeys(line, catalogue); },
                testing::ThrowsMessage<std::runtime_error>("--fail: c.json has no accessory \"pen\""));
    catalogue.accessories.emplace_back().deviceKey = "pen";
    EXPECT_NO_THROW(CheckFailKeys(line, catalogue));
}

}  // namespace
}  // namespace update_service
