#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/child_process.h"
#include "wait_until.h"

// Programs in processes of their own, for tests:
//
//     test_process::Process service(program, {"--catalogue", file});
//     ASSERT_TRUE(service.Errors().WaitFor("ready"));
//     service.AskToEnd();
//     EXPECT_EQ(service.WaitForEnd(), 0) << service.Errors().Text();
namespace test_process {

using test_support::kPatience;

// What a program has written to one of its streams (base::ChildOutput). Any thread.
class Stream {
public:
    explicit Stream(const base::ChildOutput& output) : m_output(output) {}

    bool WaitFor(const std::string& text, std::chrono::milliseconds patience = kPatience) const {
        return m_output.WaitForLine(text, patience);
    }
    std::string Text() const { return m_output.Text(); }
    std::vector<std::string> Lines() const { return m_output.Lines(); }

private:
    const base::ChildOutput& m_output;
};

class Process {
public:
    // Starts the program with the test's own environment and what `environment` adds or replaces. Throws
    // std::runtime_error, naming the program.
    Process(const std::filesystem::path& program, const std::vector<std::string>& arguments,
            const std::map<std::string, std::string>& environment = {});
    ~Process();  // kills it if it still runs
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    int Id() const { return m_child.Id(); }
    Stream Output() const { return Stream(m_child.Output()); }
    Stream Errors() const { return Stream(m_child.Errors()); }

    // Writes to its standard input; what it does not read any more is dropped.
    void Write(const std::string& text) { m_child.Write(text); }
    void CloseInput() { m_child.CloseInput(); }

    void AskToEnd() { m_child.AskToEnd(); }
    void Kill() { m_child.Kill(); }

    // The exit code, or minus the signal that ended it; nothing when patience ends first. Its streams have been read
    // to their ends then, unless a program that it started still holds them.
    std::optional<int> WaitForEnd(std::chrono::milliseconds patience = kPatience);

private:
    base::ChildProcess m_child;
};

}  // namespace test_process
