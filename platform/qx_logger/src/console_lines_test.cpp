// A standard error that nobody reads, or somebody does at his own pace.

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <thread>

#include "errors_in_a_pipe.h"
#include "qx_logger/qx_logger.h"

namespace {

using test_support::ErrorsInAPipe;

constexpr int kLines = 40000;
const std::wstring kText(100, L'x');

void Log() {
    std::wstringstream line;
    line << kText;
    QxLogger::GetInstance()->Log(LOG_LEVEL_EVENT, line);
}

TEST(LoggerWithoutAReader, LinesNeverWaitAndThoseLeftOutAreCounted) {
    ErrorsInAPipe errors;
    for (int i = 0; i < kLines; ++i) Log();  // does not come to its end where a line waits for its reader
    QxLogger::GetInstance()->Flush();        // nor does this
    std::string all;
    std::thread reader([&] { all = errors.ReadAll(); });
    QxLogger::GetInstance()->Flush();
    Log();
    QxLogger::GetInstance()->Flush();
    errors.EndWriting();
    reader.join();

    int written = 0, leftOut = 0, notes = 0;
    std::istringstream lines(all);
    for (std::string line; std::getline(lines, line);) {
        if (line.find(std::string(100, 'x')) != std::string::npos) {
            ++written;
        } else if (line.find(" log lines were left out here") != std::string::npos) {
            ++notes;
            leftOut += std::stoi(line);
        } else {
            ADD_FAILURE() << line;
        }
    }
    EXPECT_EQ(written + leftOut, kLines + 1);
    EXPECT_EQ(notes, 1);
    EXPECT_GT(leftOut, 0);
    EXPECT_GT(written, 8000);  // a mebibyte of them
}

TEST(LoggerWithoutAReader, AProcessEndsAllTheSame) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            new ErrorsInAPipe;  // to the end
            for (int i = 0; i < kLines; ++i) Log();
            std::exit(7);
        },
        testing::ExitedWithCode(7), "");
}

TEST(LoggerWithAReader, ALineIsOutWhenItHasBeenLogged) {
    constexpr int kTries = 20;  // fewer than fill a pipe
    ErrorsInAPipe errors;
    int out = 0;
    std::size_t before = 0;
    for (int i = 0; i < kTries; ++i) {
        Log();
        const std::size_t now = errors.Readable();
        if (now != before) ++out;
        QxLogger::GetInstance()->Flush();
        before = errors.Readable();
    }
    EXPECT_GT(out, kTries / 2);  // all of them, where the machine has nothing else to do
}

}  // namespace
