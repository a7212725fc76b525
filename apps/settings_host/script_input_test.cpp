#include <fcntl.h>
#include <gtest/gtest.h>

#include "script.h"
#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace settings_host {
namespace {

#if defined(_WIN32)
int MakePipe(int (&ends)[2]) { return _pipe(ends, 1 << 20, _O_BINARY | _O_NOINHERIT); }
#else
int MakePipe(int (&ends)[2]) { return pipe2(ends, O_CLOEXEC); }
#endif

class Pipe {
public:
    Pipe() {
        int ends[2];
        if (MakePipe(ends) != 0) throw std::runtime_error("no pipe");
        m_read = ends[0];
        m_write = ends[1];
    }
    ~Pipe() {
        End();
        close(m_read);
    }

    int ReadEnd() const { return m_read; }
    void Write(const std::string& text) {
#if defined(_WIN32)
        EXPECT_EQ(_write(m_write, text.data(), static_cast<unsigned>(text.size())), static_cast<int>(text.size()));
#else
        EXPECT_EQ(write(m_write, text.data(), text.size()), static_cast<ssize_t>(text.size()));
#endif
    }
    void End() {
        if (m_write >= 0) close(std::exchange(m_write, -1));
    }

private:
    int m_read = -1;
    int m_write = -1;
};

// Writes one piece each time that there is nothing to read, then ends the pipe.
class Writer {
public:
    Writer(Pipe& pipe, std::vector<std::string> pieces) : m_pipe(pipe), m_pieces(std::move(pieces)) {}

    void operator()() {
        if (m_next < m_pieces.size()) {
            m_pipe.Write(m_pieces[m_next++]);
        } else {
            m_pipe.End();
        }
    }

private:
    Pipe& m_pipe;
    std::vector<std::string> m_pieces;
    std::size_t m_next = 0;
};

std::vector<std::string> ReadLines(std::istream& stream) {
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

void NeverIdle() { ADD_FAILURE() << "there was something to read"; }

TEST(ScriptInput, LinesThatComeInPiecesArePutTogether) {
    Pipe pipe;
    script::Input input(pipe.ReadEnd(), Writer(pipe, {"cl", "ick A\nclick", " B", "\n", "close"}));
    EXPECT_EQ(ReadLines(input.Stream()), (std::vector<std::string>{"click A", "click B", "close"}));
}

TEST(ScriptInput, WhatIsThereIsReadWithoutIdling) {
    Pipe pipe;
    pipe.Write("click A\nclick B\n");
    pipe.End();
    script::Input input(pipe.ReadEnd(), NeverIdle);
    EXPECT_EQ(ReadLines(input.Stream()), (std::vector<std::string>{"click A", "click B"}));
    EXPECT_TRUE(input.Stream().eof());
}

TEST(ScriptInput, IdleIsCalledAgainAndAgainUntilSomethingComes) {
    Pipe pipe;
    int calls = 0;
    script::Input input(pipe.ReadEnd(), [&] {
        if (++calls == 5) pipe.Write("close\n");
    });
    std::string line;
    std::getline(input.Stream(), line);
    EXPECT_EQ(line, "close");
    EXPECT_EQ(calls, 5);
}

#if !defined(_WIN32)  // where files have no such state
TEST(ScriptInput, AFileThatDoesNotWaitIsReadJustTheSame) {
    Pipe pipe;
    ASSERT_EQ(fcntl(pipe.ReadEnd(), F_SETFL, O_NONBLOCK), 0);
    script::Input input(pipe.ReadEnd(), Writer(pipe, {"op", "en\n"}));
    EXPECT_EQ(ReadLines(input.Stream()), std::vector<std::string>{"open"});
}
#endif

TEST(ScriptInput, MoreThanOneBufferComesWhole) {
    Pipe pipe;
    const std::string text(10'000, 'x');
    script::Input input(pipe.ReadEnd(), Writer(pipe, {text, text}));
    EXPECT_EQ(ReadLines(input.Stream()), std::vector<std::string>{text + text});
}

TEST(ScriptInput, AScriptIsReadToItsEnd) {
    Pipe pipe;
    script::Input input(pipe.ReadEnd(), Writer(pipe, {"# first\nclick", " A\n\nclo", "se"}));
    script::Reader reader(input.Stream(), "standard input");
    script::Command command;
    ASSERT_TRUE(reader.Next(command));
    EXPECT_EQ(std::get<script::Click>(command).control, "A");
    ASSERT_TRUE(reader.Next(command));
    EXPECT_TRUE(std::holds_alternative<script::Close>(command));
    EXPECT_FALSE(reader.Next(command));
    EXPECT_FALSE(reader.Next(command));
    EXPECT_EQ(reader.Line(), 4);
}

struct WindowClosed {
    int number;
};

TEST(ScriptInput, WhatIdleThrowsReachesWhoeverReadsTheScript) {
    Pipe pipe;
    pipe.Write("click A\nclick");
    script::Input input(pipe.ReadEnd(), [] { throw WindowClosed{7}; });
    script::Reader reader(input.Stream(), "standard input");
    script::Command command;
    ASSERT_TRUE(reader.Next(command));
    try {
        reader.Next(command);
        ADD_FAILURE() << "the exception was lost";
    } catch (const WindowClosed& closed) {
        EXPECT_EQ(closed.number, 7);
    }
    EXPECT_THROW(reader.Next(command), std::ios_base::failure);
}

TEST(ScriptInput, AFileThatCannotBeReadIsNotTakenForTheEnd) {
#if defined(_WIN32)
    const int unreadable = _open("NUL", _O_WRONLY | _O_NOINHERIT);  // a folder cannot be opened as a file there
    const std::errc reason = std::errc::bad_file_descriptor;
#else
    const int unreadable = open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::errc reason = std::errc::is_a_directory;
#endif
    ASSERT_GE(unreadable, 0);
    script::Input input(unreadable, NeverIdle);
    script::Reader reader(input.Stream(), "standard input");
    script::Command command;
    try {
        reader.Next(command);
        ADD_FAILURE() << "it was read as a script";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), reason);
    }
    close(unreadable);
}

}  // namespace
}  // namespace settings_host
