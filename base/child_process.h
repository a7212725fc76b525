#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Programs in processes of their own: the one way in which this project starts them.
//
//     base::ChildProcess child({.command = {"sort", file}, .output = {base::ChildStream::Kind::kPipe}});
//     if (child.WaitForEnd().IsSuccess() && child.Output().WaitForEnd(1s)) Show(child.Output().Text());
//
// A child has the three standard streams that it is given and nothing else of what this process has open, and it starts
// with no signal ignored or held back. Texts are UTF-8.
namespace base {

// The command that lets the system's shell carry out a text; `name` is what the shell calls itself in its complaints,
// where it can. Arguments that are put behind it are the text's own, where the shell knows such.
std::vector<std::string> ShellCommand(std::string text, const std::string& name);

struct ChildStream {
    enum class Kind {
        kNothing,    // reads nothing; what is written is lost
        kInherited,  // this process's own
        kPipe,       // the ChildProcess has the other end
        kNewFile,    // written anew, for this user only
        kAsErrors,   // of the output: where the errors go
    };
    Kind kind = Kind::kInherited;
    std::filesystem::path file = {};  // of kNewFile; others may read it meanwhile
};

struct ChildSettings {
    // Program and arguments. A program with a slash in its name is looked up from `folder`, one without by the system.
    // Windows adds ".exe" to a name that has no extension.
    std::vector<std::string> command;
    std::filesystem::path folder = {};                                  // in which it runs; empty: this process's
    std::vector<std::pair<std::string, std::string>> environment = {};  // added to this process's own, or replaced

    ChildStream input = {};
    ChildStream output = {};
    ChildStream errors = {};

    // A group of its own: what a terminal sends to this process does not reach it, and Kill ends also what it has
    // started. On Windows a crash among these processes ends them without asking a person.
    bool ownGroup = false;

    // Windows ends it with this process, however that ends, but not what it has started; elsewhere the end of its input
    // has to be enough.
    bool endsWithThisProcess = false;
};

// How a child has ended.
struct ChildEnd {
    std::uint32_t code = 0;  // exit status; on Windows also an exception's number
    int signal = 0;          // that ended it; 0: it ended by itself. After Kill it is 9 on every system

    bool IsSuccess() const { return code == 0 && signal == 0; }
    bool operator==(const ChildEnd&) const = default;
};

// "exit status 3", "signal 9", "exception 0xC0000005".
std::string Description(const ChildEnd& end);

// What a child has written to a pipe so far. A thread of its own reads it, so that the child never waits. Any thread.
class ChildOutput {
public:
    ~ChildOutput();
    ChildOutput(const ChildOutput&) = delete;
    ChildOutput& operator=(const ChildOutput&) = delete;

    // Waits for a whole line that contains `text`; lines that came before the call count. False once the output has
    // ended without one, or when the limit has passed.
    bool WaitForLine(std::string_view text, std::chrono::milliseconds limit) const;

    // Waits until nobody can write to it any more: the child, and whoever has it from the child. False when the limit
    // has passed.
    bool WaitForEnd(std::chrono::milliseconds limit) const;

    std::string Text() const;
    std::vector<std::string> Lines() const;

private:
    friend class ChildProcess;
    struct State;
    explicit ChildOutput(std::unique_ptr<State> state);

    std::unique_ptr<State> m_state;
};

// A child from its start on. One thread, except for its outputs.
class ChildProcess {
public:
    // Returns once the program has taken its process over. Throws std::runtime_error: "PROGRAM: cannot be started:
    // REASON", or "FILE: cannot be written: REASON".
    explicit ChildProcess(const ChildSettings& settings);
    ~ChildProcess();  // lets go of one that still runs: it goes on, and its input ends
    ChildProcess(ChildProcess&&) noexcept;
    ChildProcess& operator=(ChildProcess&&) noexcept;

    int Id() const;
    bool IsRunning();

    // Waits for its end. Nothing when the limit has passed, or, within 20 ms, when `stop` is requested.
    std::optional<ChildEnd> WaitForEnd(std::chrono::milliseconds limit, const std::stop_token& stop = {});
    ChildEnd WaitForEnd();

    // Of an input that is a pipe. What the child does not read any more is dropped.
    void Write(std::string_view text);
    void CloseInput();

    // Of streams that are pipes; they live as long as this.
    const ChildOutput& Output() const;
    const ChildOutput& Errors() const;

    // Asks it to end: SIGTERM, or, on Windows, which has no such signal, the end of its input.
    void AskToEnd();

    // Ends it at once, as a crash would, with its group when it has one of its own. Leaves one whose end was seen
    // alone.
    ChildEnd Kill();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace base
