#pragma once

#include <chrono>
#include <istream>
#include <stdexcept>
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
//     close, open                      leaves the page; shows it again
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
struct Close {};
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

}  // namespace settings_host::script
