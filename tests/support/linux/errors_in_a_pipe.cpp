#include "errors_in_a_pipe.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>

namespace test_support {

ErrorsInAPipe::ErrorsInAPipe() : m_before(dup(STDERR_FILENO)), m_writer(STDERR_FILENO) {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    m_reader = ends[0];
    dup2(ends[1], STDERR_FILENO);
    close(ends[1]);
}

ErrorsInAPipe::~ErrorsInAPipe() {
    EndWriting();
    close(static_cast<int>(m_reader));
    close(static_cast<int>(m_before));
}

void ErrorsInAPipe::EndWriting() {
    if (m_writer != 0) dup2(static_cast<int>(m_before), STDERR_FILENO);
    m_writer = 0;
}

std::string ErrorsInAPipe::ReadAll() {
    std::string all;
    std::array<char, 65536> buffer{};
    for (ssize_t got = 1; got > 0;) {
        got = read(static_cast<int>(m_reader), buffer.data(), buffer.size());
        if (got > 0) all.append(buffer.data(), static_cast<std::size_t>(got));
    }
    return all;
}

std::size_t ErrorsInAPipe::Readable() const {
    int bytes = 0;
    EXPECT_EQ(ioctl(static_cast<int>(m_reader), FIONREAD, &bytes), 0);
    return static_cast<std::size_t>(bytes);
}

}  // namespace test_support
