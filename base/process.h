#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// This process: its command line, its environment, its user's language, what asks it to stop, its standard error. Texts
// are UTF-8.
namespace base {

// The command line in UTF-8; and, on Windows, UTF-8 is what a console shows of this program's output from now on. Make
// it once, first of all in main:
//
//     const base::Arguments arguments(argc, argv);
//     ReadCommandLine(arguments.Count(), arguments.Values(), exitCode);
class Arguments {
public:
    Arguments(int argc, const char* const* argv);

    int Count() const { return static_cast<int>(m_texts.size()); }
    const char* const* Values() const { return m_values.data(); }

private:
    void List() {
        for (const std::string& text : m_texts) m_values.push_back(text.c_str());
        m_values.push_back(nullptr);
    }

    std::vector<std::string> m_texts;
    std::vector<const char*> m_values;
};

// The environment, which children get: every variable as "NAME=VALUE". Windows has names that begin with "=", such as
// "=C:".
std::vector<std::string> OwnEnvironment();

// The order of names; of two names neither of which comes first, both mean the same variable. Capitals do not count on
// Windows.
bool ComesBefore(const std::string& name, const std::string& other);

// A variable of the environment, if it is set.
std::optional<std::string> Variable(const std::string& name);

// Sets a variable, or removes it. While there is one thread, or none that reads the environment.
void SetVariable(const std::string& name, const std::optional<std::string>& value);

// The locale of the user's texts: on Windows the language of the system's own texts, such as "de-DE"; elsewhere the
// first that is not empty of LC_ALL, LC_MESSAGES and LANG. Empty when none is set.
std::string SystemLocale();

// Holds back the signals that ask the process to stop, so that WaitForStopSignal gets them. Call in main, before any
// thread is made.
void HoldStopSignals();

// From now on the end of the standard input asks the process to stop, too, as the death of whoever started it brings it
// about; nothing else may read it. Call after HoldStopSignals.
void StopWithInput();

// Waits until the process is asked to stop, and returns that signal's name, or "end of input".
const char* WaitForStopSignal();

// Writes the text to standard error at once: a console shows it as such, a file or pipe gets the bytes. Text that
// cannot be written is lost. A process ends although a thread waits in here. Any thread.
void WriteToErrors(std::string_view text);

// Whether standard error takes so many bytes without making this thread wait for whoever reads it. Windows does not
// tell that of its pipes and consoles.
enum class ErrorsTake { kAtOnce, kNotNow, kNobodyKnows };
ErrorsTake HowErrorsTake(std::size_t bytes);

// Keeps the library or program that this is part of in memory until the process ends, for a thread of its that may live
// as long.
void StayLoaded();

}  // namespace base
