#pragma once

#include <array>
#include <chrono>
#include <functional>
#include <istream>
#include <optional>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <variant>

// A script drives the host: one command a line, words separated by blanks, "..." around words with blanks, # for
// comments.
//
//     click NAME                       presses the control as a pointer would, within 3 seconds from now
//     hover NAME                       moves the pointer there
//     where NAME                       writes its place on the desktop: "where NAME X Y WIDTH HEIGHT" in pixels
//     picture FILE                     paints the window into a PNG file of the folder --pictures, once all that the
//                                      page has told the host until now is shown
//     wait CONDITION [within SECONDS]  until it holds; 10 seconds unless said otherwise
//     start PROGRAM, stop PROGRAM      a program of the host's own folder
//     waits PERCENT                    how long the page's own waits last from now on, those that run included, until
//                                      the host ends; the option --wait-percent says it for the start
//     say WORDS                        writes them into the transcript
//     close [waits PERCENT]            leaves the page; with its own waits set as above while it is being left: until
//     then
//                                      what waits goes on waiting
//     open                             shows the page again
//
// Conditions:
//     shown NAME, hidden NAME          the control is there and visible with all around it, or not
//     text NAME "TEXT"                 the control's text
//     tooltip NAME "TEXT"              the control's tool tip
//     tip NAME                         its tool tip is seen
//     focus NAME                       it has the keyboard's focus
//     percent NAME N                   the control's text is a percentage of at least N
//     height N                         the page's content height in design pixels
//     running N                        so many updates run
//     nothing-left                     the page said that no row is left
//     connected, disconnected          the message pipe
namespace settings_host::script {

struct Click {
    std::string control;
};
struct Hover {
    std::string control;
};
struct Where {
    std::string control;
};
struct Picture {
    std::string file;
};
struct Wait {
    std::string condition;
    std::string control;  // for conditions of a control
    std::string text;     // for text and tooltip
    int number = 0;       // for percent, height and running
    std::chrono::seconds limit{10};
};
struct Waits {
    int percent = 100;
};
struct Start {
    std::string program;
};
struct Stop {
    std::string program;
};
struct Words {
    std::string text;
};
struct Close {
    std::optional<int> waits;  // [percent]
};
struct Open {};

using Command = std::variant<Click, Hover, Where, Picture, Wait, Waits, Start, Stop, Words, Close, Open>;

// What is wrong with a script, or what went wrong in it: "FILE:LINE: reason".
class Error : public std::runtime_error {
public:
    Error(const std::string& file, int line, const std::string& reason)
        : std::runtime_error(file + ":" + std::to_string(line) + ": " + reason) {}
};

// Reads a script command by command, so that it may come from a terminal.
class Reader {
public:
    Reader(std::istream& input, std::string fileName) : m_input(input), m_file(std::move(fileName)) {}

    // False at the end. Throws Error.
    bool Next(Command& command);

    int Line() const { return m_line; }
    const std::string& File() const { return m_file; }

private:
    std::istream& m_input;
    std::string m_file;
    int m_line = 0;
};

// A script that somebody may still be writing, read on the thread of the window: while nothing has come, the window
// goes on.
//
//     script::Input input(0, [&window] { window.HandleEvents(10ms); });
//     script::Reader reader(input.Stream(), "standard input");
//
// One thread: whoever reads the stream calls `idle`.
class Input : private std::streambuf {
public:
    // Reads `file`, a file descriptor that stays the caller's. Calls `idle` again and again while there is nothing to
    // read; it should wait a few milliseconds, or the processor is kept busy.
    Input(int file, std::function<void()> idle);

    // What `idle` throws goes through the read to whoever reads, and so does std::system_error when the file cannot be
    // read; a usual std::istream would take both for its end. The stream is of no use after either: reading on throws
    // std::ios_base::failure.
    std::istream& Stream() { return m_stream; }

private:
    int_type underflow() override;

    // Reads what is there: the number of bytes, 0 at the end, nothing when the read would wait. Throws
    // std::system_error.
    static std::optional<std::size_t> ReadIfReady(int file, char* buffer, std::size_t size);

    const int m_file;
    const std::function<void()> m_idle;
    std::array<char, 4096> m_buffer;
    std::istream m_stream;
};

}  // namespace settings_host::script
