#pragma once

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

// Programs in processes of their own, for tests:
//
//     test_process::Process service(program, {"--catalogue", file});
//     ASSERT_TRUE(service.Errors().WaitFor("ready"));
//     service.Signal(SIGTERM);
//     EXPECT_EQ(service.WaitForEnd(), 0) << service.Errors().Text();
namespace test_process {

inline constexpr std::chrono::seconds kPatience{30};  // for what must happen; sanitizers are slow

// What a program has written to one of its streams. A thread of its own reads it, so the program never waits for the
// test. Any thread.
class Stream {
public:
    // Reads until the other side has closed the file; owns it.
    explicit Stream(int file);
    ~Stream();
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    // Waits for a whole line that contains `text`; lines that came before the call count. False once the stream has
    // ended without one, or when patience ends.
    bool WaitFor(const std::string& text, std::chrono::milliseconds patience = kPatience) const;

    // Waits for the stream's end; false when patience ends first.
    bool WaitForEnd(std::chrono::milliseconds patience = kPatience) const;

    // All that has come so far.
    std::string Text() const;
    std::vector<std::string> Lines() const;

private:
    void ReadAll();

    const int m_file;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::string m_text;
    bool m_ended = false;
    std::thread m_reader;  // last: it uses the rest
};

class Process {
public:
    // Starts the program with the test's own environment and what `environment` adds or replaces. Throws
    // std::system_error, naming the program.
    Process(const std::filesystem::path& program, const std::vector<std::string>& arguments,
            const std::map<std::string, std::string>& environment = {});
    ~Process();  // kills it if it still runs
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    int Id() const { return m_id; }
    const Stream& Output() const { return *m_output; }
    const Stream& Errors() const { return *m_errors; }

    // Writes to its standard input; what it does not read any more is dropped.
    void Write(const std::string& text);
    void CloseInput();

    void Signal(int number);

    // The exit code, or minus the signal that ended it; nothing when patience ends first. Its streams have been read
    // to their ends then, unless a program that it started still holds them.
    std::optional<int> WaitForEnd(std::chrono::milliseconds patience = kPatience);

private:
    int m_id = 0;
    int m_input = -1;
    std::optional<int> m_result;
    std::optional<Stream> m_output;
    std::optional<Stream> m_errors;
};

}  // namespace test_process
