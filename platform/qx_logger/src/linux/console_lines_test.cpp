// A standard error that nobody reads.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <sstream>
#include <string>
#include <thread>

#include "qx_logger/qx_logger.h"

namespace {

constexpr int kLines = 40000;
const std::wstring kText(100, L'x');

void Log() {
    std::wstringstream line;
    line << kText;
    QxLogger::GetInstance()->Log(LOG_LEVEL_EVENT, line);
}

// Standard error is a pipe while this lives.
class ErrorsInAPipe {
public:
    ErrorsInAPipe() : m_before(dup(STDERR_FILENO)) {
        std::array<int, 2> ends{};
        EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
        m_reader = ends[0];
        dup2(ends[1], STDERR_FILENO);
        close(ends[1]);
    }
    ~ErrorsInAPipe() {
        EndWriting();
        close(m_reader);
        close(m_before);
    }
    void EndWriting() { dup2(m_before, STDERR_FILENO); }

    std::string ReadAll() const {
        std::string all;
        std::array<char, 65536> buffer{};
        for (ssize_t got = 1; got > 0;) {
            got = read(m_reader, buffer.data(), buffer.size());
            if (got > 0) all.append(buffer.data(), static_cast<std::size_t>(got));
        }
        return all;
    }

private:
    int m_before;
    int m_reader = -1;
};

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

}  // namespace
